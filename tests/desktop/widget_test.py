#!/usr/bin/python3
"""tickwise-widget on real desktops: where it stands, what it follows, and what the pointer does with it."""

import json
import os
import signal
import time
import unittest

from accessible_tree import AccessibleTree
from application import BUILD, Texts, keep_picture, read
from desktop_session import SessionError, SwaySession, X11Session
from panel_pixels import bounds

PROGRAM = os.path.join(BUILD, "tickwise-widget")
APPLICATION = os.path.join(BUILD, "tickwise")
PROBE = os.path.join(BUILD, "tests", "surface_probe")
APPLICATION_ID = "com.pelmo.tickwise"
ENGLISH = Texts("en")
MEDIUM = (364, 166)
SMALL = (196, 166)
MARGIN = 24
BLUE = (40, 120, 200)  # of surface_probe's ordinary window
# A proxy that nobody runs: the application asks the real exchanges, and no byte of that may leave the machine.
NO_NETWORK = {f"{scheme}_proxy": "http://127.0.0.1:9" for scheme in ("http", "https", "all")}


def is_green(pixel):
    red, green, blue = pixel
    return green > 180 and red < 110 and blue < 110


def is_red(pixel):
    red, green, blue = pixel
    return red > 180 and green < 110 and blue < 110


def is_magenta(pixel):
    red, green, blue = pixel
    return red > 200 and green < 60 and blue > 200


def container(desktop):
    return os.path.join(desktop.environment["XDG_DATA_HOME"], "group.com.pelmo.tickwise")


def snapshot(change, language="en", coins=("bitcoin", "ethereum", "solana"), written=None):
    return {"writtenAt": time.strftime("%Y-%m-%dT%H:%M:%SZ", time.gmtime(written)), "language": language, "currency": "USD",
            "colorByChange": True, "upColorHex": "#00FF00", "downColorHex": "#FF0000", "displayedCoinId": "bitcoin",
            "watchlist": list(coins),
            "quotes": {coin: {"price": 67432.4 / (place + 1), "change24hPercent": change} for place, coin in enumerate(coins)}}


def write_snapshot(desktop, document):
    """Replaces the file as the application does."""
    path = os.path.join(container(desktop), "widget-snapshot.json")
    new = desktop.write_file(path + ".new", document if isinstance(document, str) else json.dumps(document))
    os.replace(new, path)


class Widget:
    """The program; without `change` it starts before there is a snapshot."""

    def __init__(self, desktop, change=1.5, env=None):
        self.desktop = desktop
        if change is not None:
            write_snapshot(desktop, snapshot(change))
        self.process = desktop.run(PROGRAM, env=env)

    def has_color(self, matches, left, top, width, height):
        picture = self.desktop.picture()
        return any(matches(picture.at(x, y)) for y in range(top, min(top + height, picture.height))
                   for x in range(left, min(left + width, picture.width)))

    def wait_for_color(self, matches, left, top, size=MEDIUM):
        self.desktop.wait_for(lambda: self.has_color(matches, left, top, *size), what=f"a color at {left}, {top}")

    def preferences(self):
        folder = os.path.join(self.desktop.environment["XDG_CONFIG_HOME"], "com.pelmo.tickwise.widget")
        return json.loads(read(os.path.join(folder, "widget.json")) or "{}")

    def wait_for_preference(self, name):
        return self.desktop.wait_for(lambda: self.preferences().get(name), what=f"the stored {name}")

    def stop(self):
        return self.desktop.stop_process(self.process)


class WidgetChecks:
    """What holds on every desktop."""

    top = MARGIN  # of the widget at its first place

    def make_session(self):
        raise NotImplementedError

    def drag(self, desktop, start, end):
        raise NotImplementedError

    def corner(self, desktop, size=MEDIUM):
        return desktop.width - size[0] - MARGIN, self.top

    def check_follows_the_file(self, name):
        with self.make_session() as desktop:
            place = self.corner(desktop)
            background = desktop.picture().at(place[0] + 100, place[1] + 100)
            widget = Widget(desktop, change=None)
            desktop.wait_for(lambda: desktop.picture().at(place[0] + 100, place[1] + 10) != background, what="the empty widget")
            write_snapshot(desktop, snapshot(1.5))
            widget.wait_for_color(is_green, *place)
            keep_picture(desktop, name)
            write_snapshot(desktop, snapshot(-2))
            widget.wait_for_color(is_red, *place)
            write_snapshot(desktop, '{"writtenAt": "2026-')
            write_snapshot(desktop, snapshot(3))
            widget.wait_for_color(is_green, *place)
            self.assertEqual(len([line for line in widget.process.errors().splitlines() if "not read" in line]) <= 1, True)
            self.assertEqual(widget.stop(), 0)

    def check_is_below_windows(self):
        with self.make_session() as desktop:
            widget = Widget(desktop)
            left, top = self.corner(desktop)
            widget.wait_for_color(is_green, left, top)
            ordinary = desktop.run(PROBE, ["ordinary"])
            ordinary.write_line(f"show {left - 50} {top} 400 300")
            spot = (left + 20, top + 60)
            desktop.wait_for(lambda: desktop.picture().at(*spot) == BLUE, what="the window over the widget")
            desktop.click(*spot)
            desktop.wait_for(lambda: "pressed" in ordinary.output(), what="the click on the window")
            desktop.stop_process(ordinary)
            widget.wait_for_color(is_green, left, top)
            self.assertEqual(widget.stop(), 0)

    def check_click_opens_the_popover(self):
        """Of the real application, which does not run yet."""
        with self.make_session() as desktop:
            desktop.write_file(os.path.join(desktop.bus.services, f"{APPLICATION_ID}.service"),
                               f"[D-BUS Service]\nName={APPLICATION_ID}\nExec={os.path.abspath(APPLICATION)}\n")
            desktop.bus.call_daemon("ReloadConfig")
            desktop.bus.call_daemon("UpdateActivationEnvironment", "(a{ss})", ({**desktop.environment, **NO_NETWORK},))
            widget = Widget(desktop)
            left, top = self.corner(desktop)
            widget.wait_for_color(is_green, left, top)
            before = desktop.picture()
            desktop.click(left + 40, top + 60)
            desktop.wait_for(lambda: desktop.bus.owner(APPLICATION_ID), what="the application")
            desktop.wait_for(lambda: self.popover_is_open(desktop, before), what="its popover")
            application = desktop.bus.process_id(APPLICATION_ID)
            os.kill(application, 15)
            desktop.wait_for(lambda: not desktop.bus.owner(APPLICATION_ID), what="the application's end")
            self.assertEqual(widget.stop(), 0)

    def popover_is_open(self, desktop, before):
        """In the middle of the screen, as there is no panel."""
        middle = (desktop.width // 2, desktop.height // 2)
        return desktop.picture().at(*middle) != before.at(*middle)

    def check_drag_is_remembered(self, prepare=lambda desktop: None):
        with self.make_session() as desktop:
            widget = Widget(desktop)
            left, top = self.corner(desktop)
            widget.wait_for_color(is_green, left, top)
            prepare(desktop)
            place = desktop.wait_for(lambda: self.dragged(desktop, widget, (left + 60, top + 100)), 20, "the drag")
            self.assertEqual(place, {"x": left - 300, "y": desktop.height - top - 200})
            widget.wait_for_color(is_green, left - 300, top + 200)
            self.assertFalse(widget.has_color(is_green, left + 100, top, 200, 100))
            self.assertEqual(widget.stop(), 0)
            again = Widget(desktop)
            again.wait_for_color(is_green, left - 300, top + 200)
            self.assertEqual(again.stop(), 0)

    def dragged(self, desktop, widget, start):
        """The place that is stored after a drag. A program may need a moment for a new pointer; a drag that it did not see
        changes nothing."""
        self.drag(desktop, start, (start[0] - 300, start[1] + 200))
        try:
            return desktop.wait_for(lambda: widget.preferences().get("topLeft"), 3, "the stored place")
        except SessionError:
            return None

    def check_menu_changes_the_size(self, name):
        with self.make_session() as desktop:
            widget = Widget(desktop)
            left, top = self.corner(desktop)
            widget.wait_for_color(is_green, left, top)
            entries = self.open_menu(desktop, (left + 100, top + 20))
            keep_picture(desktop, name)
            desktop.click(*entries["small"])
            self.assertEqual(widget.wait_for_preference("size"), "small")
            left, top = self.corner(desktop, SMALL)
            desktop.wait_for(lambda: not widget.has_color(is_green, left - 180, top, 170, 166), what="the small widget")
            widget.wait_for_color(is_green, left, top, SMALL)
            desktop.click(*self.open_menu(desktop, (left + 80, top + 20))["close"])
            self.assertEqual(widget.process.wait(), 0)

    def open_menu(self, desktop, position):
        """Opens the menu there; returns its entries' places, which it divides evenly but for two lines."""
        x, y = position
        desktop.move_pointer(x, y)
        before = desktop.picture()

        def drawn():
            after = desktop.picture()
            box = bounds([(column, row) for row in range(y - 60, y + 200) for column in range(x - 200, desktop.width)
                          if before.at(column, row) != after.at(column, row)])
            return box if box and box[3] > 100 else None
        desktop.click(x, y, button=3)
        left, top, width, height = desktop.wait_for(drawn, what="the menu")
        names = ("open", "small", "medium", "large", "close")
        return {name: (left + width // 2, top + height * (2 * place + 1) // 10) for place, name in enumerate(names)}

    def check_second_start_leaves_one(self):
        with self.make_session() as desktop:
            first = Widget(desktop)
            first.wait_for_color(is_green, *self.corner(desktop))
            second = Widget(desktop)
            self.assertEqual(second.process.wait(), 0)
            self.assertTrue(first.process.is_running())
            self.assertEqual(first.stop(), 0)


class X11Test(WidgetChecks, unittest.TestCase):
    def make_session(self):
        return X11Session(None, notifications=None)

    def drag(self, desktop, start, end):
        desktop.tool(["xdotool", "mousemove", *map(str, start), "mousedown", "1"])
        for step in range(1, 11):
            desktop.move_pointer(*(a + (b - a) * step // 10 for a, b in zip(start, end)))
        desktop.tool(["xdotool", "mouseup", "1"])

    def test_follows_the_file(self):
        self.check_follows_the_file("widget-x11.png")

    def test_is_below_windows(self):
        self.check_is_below_windows()

    def test_click_opens_the_popover(self):
        self.check_click_opens_the_popover()

    def test_drag_is_remembered(self):
        self.check_drag_is_remembered()

    def test_menu_changes_the_size(self):
        self.check_menu_changes_the_size("widget-menu-x11.png")

    def test_second_start_leaves_one(self):
        self.check_second_start_leaves_one()

    def test_is_in_no_task_bar(self):
        with self.make_session() as desktop:
            widget = Widget(desktop)
            widget.wait_for_color(is_green, *self.corner(desktop))
            window = desktop.windows("tickwise-widget")[0]

            def has_states():
                states = desktop.tool(["xprop", "-id", str(window), "-notype", "_NET_WM_STATE"]).decode()
                return all(f"_NET_WM_STATE_{state}" in states for state in ("BELOW", "SKIP_TASKBAR", "SKIP_PAGER"))
            desktop.wait_for(has_states, what="the window's states")
            self.assertEqual(widget.stop(), 0)

    def test_follows_the_scale(self):
        with self.make_session() as desktop:
            settings = desktop.start_process("xsettingsd", ["xsettingsd", "-c", self.write_scale(desktop, 1)])
            desktop.wait_for(lambda: self.catches_hangups(settings.pid), what="xsettingsd")
            widget = Widget(desktop)
            for scale in (1, 2, 1):
                self.write_scale(desktop, scale)
                os.kill(settings.pid, signal.SIGHUP)
                size = tuple(scale * length for length in MEDIUM)
                desktop.wait_for(lambda size=size: self.size_in_pixels(desktop) == size, what=f"{size} pixels")
            self.assertEqual(widget.stop(), 0)

    def write_scale(self, desktop, scale):
        return desktop.write_file("xsettings", f"Xft/DPI {scale * 96 * 1024}\n")

    def size_in_pixels(self, desktop):
        windows = desktop.windows("tickwise-widget")
        try:
            return tuple(desktop.window_geometry(windows[0])[2:]) if windows else None
        except SessionError:  # the window is made anew for another scale
            return None

    def catches_hangups(self, pid):
        """Before a program does, one would end it."""
        with open(f"/proc/{pid}/status", encoding="utf-8") as file:
            caught = next(line for line in file if line.startswith("SigCgt"))
        return int(caught.split()[1], 16) >> (signal.SIGHUP - 1) & 1

    def test_has_no_corners_without_a_compositor_below_a_tiling_window_manager(self):
        with X11Session(None, None, notifications=None) as desktop:
            desktop.tool(["xprop", "-root", "-f", "_NET_SUPPORTED", "32a", "-set", "_NET_SUPPORTED", "_NET_WM_STATE"])
            ground = desktop.picture().at(5, 5)
            widget = Widget(desktop)
            left, top = desktop.wait_for(lambda: self.place(desktop), what="the widget")
            widget.wait_for_color(is_green, left, top)
            self.assertEqual([desktop.picture().at(left + x, top + y) for x, y in ((1, 1), (362, 1), (1, 164))], 3 * [ground])
            self.assertEqual(widget.stop(), 0)

    def place(self, desktop):
        windows = desktop.windows("tickwise-widget")
        return desktop.window_geometry(windows[0])[:2] if windows else None

    def test_shows_a_logo_that_comes_later(self):
        with self.make_session() as desktop:
            written = snapshot(1.5, coins=("monero",))
            write_snapshot(desktop, written)
            widget = Widget(desktop, change=None)
            place = self.corner(desktop)
            widget.wait_for_color(is_green, *place)
            self.assertFalse(widget.has_color(is_magenta, *place, *MEDIUM))
            logo = os.path.join(container(desktop), "CoinLogos", "monero.img")
            desktop.make_directory(os.path.dirname(logo))
            desktop.tool(["convert", "-size", "64x64", "xc:#ff00ff", f"png:{logo}"])
            written["quotes"]["monero"]["price"] += 1
            write_snapshot(desktop, written)
            widget.wait_for_color(is_magenta, *place)
            self.assertEqual(widget.stop(), 0)

    def test_loads_nothing_that_only_the_application_needs(self):
        with self.make_session() as desktop:
            widget = Widget(desktop)
            widget.wait_for_color(is_green, *self.corner(desktop))
            loaded = read(f"/proc/{widget.process.pid}/maps")
            self.assertIn("libQt6Widgets", loaded)
            for library in ("libcurl", "libproxy", "libsodium", "libssl"):
                self.assertNotIn(library, loaded)
            self.assertEqual(widget.stop(), 0)

    def test_reads_its_rows_out(self):
        with self.make_session() as desktop:
            tree = AccessibleTree(desktop)
            widget = Widget(desktop, env=tree.environment)
            widget.wait_for_color(is_green, *self.corner(desktop))
            found = desktop.wait_for(lambda: [(node.role, node.name) for node in tree.nodes("tickwise-widget")], what="the tree")
            self.assertIn(("frame", "Tickwise"), found)
            self.assertIn(("list", ENGLISH.text("widget.list.title")), found)
            self.assertEqual([name for role, name in found if role == "list item"],
                             ["Bitcoin, 67,432 USD, +1.50%", "Ethereum, 33,716 USD, +1.50%", "Solana, 22,477 USD, +1.50%"])
            self.assertEqual(widget.stop(), 0)


class SwayTest(WidgetChecks, unittest.TestCase):
    def make_session(self):
        return SwaySession(None, notifications=None)

    def drag(self, desktop, start, end):
        desktop.drag(start, end)

    def test_follows_the_file(self):
        self.check_follows_the_file("widget-sway.png")

    def test_is_below_windows(self):
        self.check_is_below_windows()

    def test_click_opens_the_popover(self):
        self.check_click_opens_the_popover()

    def test_drag_is_remembered(self):
        self.check_drag_is_remembered()

    def test_menu_changes_the_size(self):
        self.check_menu_changes_the_size("widget-menu-sway.png")

    def test_drag_by_a_pointer_that_came_later(self):
        def replug(desktop):
            desktop.unplug_pointer()
            desktop.plug_pointer()
        self.check_drag_is_remembered(replug)

    def test_second_start_leaves_one(self):
        self.check_second_start_leaves_one()


if __name__ == "__main__":
    unittest.main()
