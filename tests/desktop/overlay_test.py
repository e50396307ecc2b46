#!/usr/bin/python3
"""The desktop overlay of the whole application: where it lies, what passes through it, and how the user moves it."""

import json
import time
import unittest

from application import Application, Texts, coin, keep_picture, read, settings_file
from desktop_session import SwaySession, X11Session
from surface_test import Probe, drag_on_x11

ENGLISH = Texts("en")
PRICES = (("BTC", 67432.4, 1.5), ("ETH", 3188, -2), ("SOL", 150.25, 0.4))
COINS = [coin("bitcoin"), coin("ethereum"), coin("solana")]
WIDTH, HEIGHT = 364, 166
GROUND = (239, 239, 239)  # the window color of the style that runs without a desktop's settings


class Overlay:
    """The application with its overlay. Places are the screen's, y growing downwards."""

    def __init__(self, desktop, **settings):
        self.desktop = desktop
        self.application = Application(desktop, PRICES, addedCoins=COINS, desktopOverlayEnabled=True, **settings)
        self.application.wait_for_content(text="BTC 67,432")

    def is_at(self, left, top, ground=GROUND, scale=1):
        """Whether all edges are there, by the color just inside and outside of them; `scale` is in pixels a point."""
        picture = self.desktop.picture()
        right, bottom = left + WIDTH - 1, top + HEIGHT - 1
        inside = ((left + 60, top + 4), (left + 4, top + 60), (right - 4, top + 60), (left + 60, bottom - 4))
        outside = ((left + 60, top - 3), (left - 3, top + 60), (right + 3, top + 60), (left + 60, bottom + 3))

        def has_ground(x, y):
            x, y = int(x * scale), int(y * scale)
            inside_screen = 0 <= x < picture.width and 0 <= y < picture.height
            return inside_screen and all(abs(a - b) < 4 for a, b in zip(picture.at(x, y), ground))
        return all(has_ground(*point) for point in inside) and not any(has_ground(*point) for point in outside)

    def wait_until_at(self, left, top, ground=GROUND, scale=1):
        self.desktop.wait_for(lambda: self.is_at(left, top, ground, scale), what=f"the overlay at {left}, {top}")

    def saved(self):
        """The place in the settings file, or None."""
        corner = json.loads(read(settings_file(self.desktop)) or "{}").get("desktopOverlayTopLeft")
        return corner and (corner["x"], corner["y"])

    def wait_until_saved(self, x, y):
        self.desktop.wait_for(lambda: self.saved() == (x, y), what=f"{x}, {y} in the settings file, not {self.saved()}")

    def begin_adjusting(self):
        """Returns where the button is that ends it."""
        self.application.tell("adjustOverlay")
        return self.application.wait_for_window_text(ENGLISH.text("desktop.adjust.hint"))["buttons"]

    def move_until_at(self, move, before, after, scale=1):
        """Presses a key or drags. The window may not have the keyboard or take the pointer yet: then nothing moves. What is seen
        late must not count twice."""
        moves = []

        def moved():
            if self.is_at(*after, scale=scale):
                return True
            if (not moves or time.monotonic() - moves[-1] > 3) and self.is_at(*before, scale=scale):
                moves.append(time.monotonic())
                move()
            return False
        self.desktop.wait_for(moved, 30, f"the overlay at {after}")

    def is_adjusting(self):
        return any(ENGLISH.text("desktop.adjust.hint") in window["texts"] for window in self.application.windows())

    def wait_until_left(self):
        self.desktop.wait_for(lambda: not self.is_adjusting(), what="the end of adjusting")


class OverlayChecks:
    """What holds on every desktop. The overlay starts 24 points from the free part's right upper corner."""

    top = 24
    left = 1280 - WIDTH - 24

    def make_session(self):
        raise NotImplementedError

    def drag(self, desktop, start, end):
        raise NotImplementedError

    def check_lies_on_the_desktop(self):
        with self.make_session() as desktop:
            below = Probe(desktop, "takes-input")
            below.show(self.left + 10, self.top + 10, WIDTH - 20, HEIGHT - 20)
            overlay = Overlay(desktop)
            overlay.wait_until_at(self.left, self.top)
            self.check_is_in_no_list(desktop)
            below.click_until(self.left + 60, self.top + 60, "pressed 50 50")
            ordinary = Probe(desktop, "ordinary")
            ordinary.tell("show", self.left - 50, 100, 300, 300)
            desktop.wait_for(lambda: not overlay.is_at(self.left, self.top), what="a window above the overlay")
            self.assertEqual(overlay.application.stop(), 0)

    def check_is_in_no_list(self, desktop):
        raise NotImplementedError

    def check_is_moved_by_the_pointer(self, picture=None):
        with self.make_session() as desktop:
            overlay = Overlay(desktop)
            overlay.wait_until_at(self.left, self.top)
            overlay.begin_adjusting()
            end = (self.left - 400, self.top + 300)
            self.drag_until_at(desktop, overlay, (self.left, self.top), end)
            if picture:
                keep_picture(desktop, picture)
            self.assertIsNone(overlay.saved())
            self.press_done(desktop, overlay, end)
            overlay.wait_until_left()
            overlay.wait_until_saved(self.left - 400, 800 - self.top - 300)
            overlay.wait_until_at(*end)
            self.assertEqual(overlay.application.stop(), 0)
            again = Overlay(desktop, desktopOverlayTopLeft={"x": self.left - 400, "y": 800 - self.top - 300})
            again.wait_until_at(*end)

    def drag_until_at(self, desktop, overlay, start, end):
        """Moves the overlay's corner from one point to another."""
        grip = (30, 12)
        points = [tuple(map(sum, zip(corner, grip))) for corner in (start, end)]
        overlay.move_until_at(lambda: self.drag(desktop, *points), start, end)

    def press_done(self, desktop, overlay, corner):
        """The button is in the middle, below the hint."""
        def pressed():
            desktop.click(corner[0] + WIDTH // 2, corner[1] + HEIGHT // 2 + 16)
            return not overlay.is_adjusting()
        desktop.wait_for(pressed, what="the button to be pressed")

    def check_is_moved_by_keys(self):
        with self.make_session() as desktop:
            overlay = Overlay(desktop, desktopOverlayTopLeft={"x": 200, "y": 500})
            overlay.wait_until_at(200, 300)
            overlay.begin_adjusting()
            overlay.move_until_at(lambda: desktop.press_key("shift+Left"), (200, 300), (176, 300))
            for key, place in (("shift+Down", (176, 324)), ("shift+Right", (200, 324))):
                desktop.press_key(key)
                overlay.wait_until_at(*place)
            desktop.press_key("Escape")
            overlay.wait_until_left()
            overlay.wait_until_at(200, 300)
            self.assertEqual(overlay.saved(), (200, 500))
            overlay.begin_adjusting()
            overlay.move_until_at(lambda: desktop.press_key("shift+Right"), (200, 300), (224, 300))
            # Pictures do not tell a single point; the stored place does.
            for key in ("Left", "Up", "Right", "Down", "Down", "Left"):
                desktop.press_key(key)
            desktop.press_key("Return")
            overlay.wait_until_saved(223, 499)
            overlay.wait_until_left()


class X11Checks(OverlayChecks):
    def drag(self, desktop, start, end):
        drag_on_x11(desktop, start, end)

    def check_is_in_no_list(self, desktop):
        """The window manager has it on every workspace, below, and in no list."""
        pid = next(process.pid for process in desktop.processes("app_probe"))
        windows = desktop.tool(["xdotool", "search", "--onlyvisible", "--pid", str(pid), "--name", "Tickwise"]).split()
        self.assertEqual(len(windows), 1)

        def is_so():
            text = desktop.tool(["xprop", "-id", windows[0].decode(), "_NET_WM_STATE", "_NET_WM_DESKTOP"]).decode()
            return all(word in text for word in ("_BELOW", "_SKIP_TASKBAR", "_SKIP_PAGER", "4294967295"))
        desktop.wait_for(is_so, what="the window's states")


class XfceTest(X11Checks, unittest.TestCase):
    """xfwm4, which composes, and xfdesktop, which draws the wallpaper in a window of its own."""

    def make_session(self):
        return X11Session(None, "xfwm4", notifications=None, wallpaper=True)

    def test_lies_on_the_desktop(self):
        self.check_lies_on_the_desktop()

    def test_is_moved_by_the_pointer(self):
        self.check_is_moved_by_the_pointer("overlay-xfce-adjusting.png")

    def test_is_moved_by_keys(self):
        self.check_is_moved_by_keys()

    def test_stays_above_a_clicked_wallpaper(self):
        with self.make_session() as desktop:
            overlay = Overlay(desktop)
            overlay.wait_until_at(self.left, self.top)
            desktop.click(300, 600)
            desktop.click(self.left + 100, self.top + 100)
            overlay.application.poll()
            self.assertTrue(overlay.is_at(self.left, self.top))

    def test_wallpaper_menu_opens_through_it(self):
        with self.make_session() as desktop:
            overlay = Overlay(desktop)
            overlay.wait_until_at(self.left, self.top)
            before = len(desktop.windows("xfdesktop"))

            def opened():
                desktop.click(self.left + 100, self.top + 100, button=3)
                return len(desktop.windows("xfdesktop")) > before
            desktop.wait_for(opened, what="the wallpaper's menu")


class OpenboxTest(X11Checks, unittest.TestCase):
    """openbox without a compositor."""

    def make_session(self):
        return X11Session(None, "openbox", notifications=None)

    def test_lies_on_the_desktop(self):
        self.check_lies_on_the_desktop()

    def test_is_moved_by_the_pointer(self):
        self.check_is_moved_by_the_pointer()

    def test_is_moved_by_keys(self):
        self.check_is_moved_by_keys()

    def test_is_opaque_and_round_without_a_compositor(self):
        with self.make_session() as desktop:
            overlay = Overlay(desktop, desktopOverlayBackgroundOpacity=0.1)
            overlay.wait_until_at(self.left, self.top)
            picture = desktop.picture()
            wallpaper = picture.at(300, 600)
            self.assertEqual(picture.at(self.left + 2, self.top + 2), wallpaper)
            self.assertEqual(picture.at(self.left + WIDTH - 3, self.top + HEIGHT - 3), wallpaper)

    def test_keeps_out_of_the_panel(self):
        with X11Session("xfce4-panel", "openbox", notifications=None) as desktop:
            overlay = Overlay(desktop)
            overlay.wait_until_at(self.left, self.top + 30)
            desktop.stop_panel()
            overlay.wait_until_at(self.left, self.top)


class MonitorsTest(unittest.TestCase):
    """Two monitors of 640 points beside each other on X11."""

    def add_monitor(self, desktop, name, left, output):
        desktop.tool(["xrandr", "--setmonitor", name, f"640/170x800/200+{left}+0", output])

    def test_moves_to_the_monitor_that_is_left_and_back(self):
        with X11Session(None, "openbox", notifications=None) as desktop:
            self.add_monitor(desktop, "left", 0, "screen")
            self.add_monitor(desktop, "right", 640, "none")
            overlay = Overlay(desktop, desktopOverlayTopLeft={"x": 700, "y": 700})
            overlay.wait_until_at(700, 100)
            desktop.tool(["xrandr", "--delmonitor", "right"])
            overlay.wait_until_at(640 - WIDTH, 100)
            self.assertEqual(overlay.saved(), (700, 700))
            self.add_monitor(desktop, "right", 640, "none")
            overlay.wait_until_at(700, 100)

    def test_keeps_out_of_the_panel_of_its_monitor(self):
        with X11Session("xfce4-panel", "openbox", notifications=None, with_panel=False) as desktop:
            self.add_monitor(desktop, "left", 0, "screen")
            self.add_monitor(desktop, "right", 640, "none")
            overlay = Overlay(desktop)
            desktop.start_panel()
            left, top, _, height = desktop.window_geometry(desktop.windows("xfce4-panel")[0])
            self.assertEqual(top, 0)
            overlay.application.change_settings(desktopOverlayTopLeft={"x": left + 60, "y": 795})
            overlay.wait_until_at(left + 60, height)
            desktop.stop_panel()
            overlay.wait_until_at(left + 60, 5)


class SwayTest(OverlayChecks, unittest.TestCase):
    top = 30 + 24

    def make_session(self):
        return SwaySession("waybar", notifications=None)

    def drag(self, desktop, start, end):
        desktop.drag(start, end)

    def check_is_in_no_list(self, desktop):
        self.assertEqual(desktop.windows("Tickwise"), [])

    def test_lies_on_the_desktop(self):
        self.check_lies_on_the_desktop()

    def test_is_moved_by_the_pointer(self):
        self.check_is_moved_by_the_pointer("overlay-sway-adjusting.png")

    def test_is_moved_by_keys(self):
        self.check_is_moved_by_keys()

    def test_is_seen_through(self):
        with self.make_session() as desktop:
            wallpaper = desktop.picture().at(600, 600)
            overlay = Overlay(desktop, desktopOverlayBackgroundOpacity=0.5)
            overlay.wait_until_at(self.left, self.top, tuple((a + b) // 2 for a, b in zip(wallpaper, GROUND)))

    def test_several_screens(self):
        with self.make_session() as desktop:
            desktop.add_output()
            overlay = Overlay(desktop, desktopOverlayTopLeft={"x": 1500, "y": 500})
            overlay.wait_until_at(1500, 300)
            overlay.begin_adjusting()
            self.drag_until_at(desktop, overlay, (1500, 300), (200, 200))
            self.press_done(desktop, overlay, (200, 200))
            overlay.wait_until_saved(200, 600)
            overlay.wait_until_at(200, 200)

    def test_starts_where_the_screens_begin(self):
        """And not on the one that was there first."""
        with self.make_session() as desktop:
            desktop.add_output("mode 1280x800", "pos 0 0")
            desktop.message("output HEADLESS-1 pos 1280 0")
            Overlay(desktop).wait_until_at(self.left, self.top)

    def test_screen_goes_and_returns(self):
        """sway gives a screen that it was told to drop back at once: its surfaces are closed all the same."""
        with self.make_session() as desktop:
            desktop.add_output()
            overlay = Overlay(desktop, desktopOverlayTopLeft={"x": 1500, "y": 500})
            overlay.wait_until_at(1500, 300)
            desktop.message("output HEADLESS-2 disable")
            overlay.application.poll()
            overlay.wait_until_at(1500, 300)
            self.assertEqual(overlay.application.stop(), 0)

    def test_fractional_scale(self):
        with self.make_session() as desktop:
            overlay = Overlay(desktop)
            overlay.wait_until_at(self.left, self.top)
            desktop.message("output HEADLESS-1 scale 1.5")
            left = 1280 * 2 // 3 - WIDTH - 24
            overlay.wait_until_at(left, self.top, scale=1.5)
            overlay.begin_adjusting()
            overlay.move_until_at(lambda: desktop.press_key("shift+Left"), (left, self.top), (left - 24, self.top), 1.5)
            desktop.press_key("Return")
            overlay.wait_until_saved(left - 24, 533 - self.top)

    def test_follows_the_bar(self):
        with self.make_session() as desktop:
            overlay = Overlay(desktop)
            overlay.wait_until_at(self.left, self.top)
            desktop.stop_panel()
            overlay.wait_until_at(self.left, self.top - 30)
            desktop.start_panel()
            overlay.wait_until_at(self.left, self.top)


if __name__ == "__main__":
    unittest.main()
