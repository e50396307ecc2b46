#!/usr/bin/python3
"""The status item on real panels, judged by what is on the screen."""

import json
import os
import unittest

from desktop_session import SwaySession, X11Session
from panel_pixels import GREEN, NEAR_WHITE, RED, WHITE, box_of, changed_box, coloured, is_near, middle, wait_for_box

PROBE = os.path.join(os.environ.get("TICKWISE_BUILD_DIR", "build/debug"), "tests", "statusitem_probe")


def text(title, color=None, pill=None):
    symbol, price = title.split()
    return {"text": f" {title} " if pill else title, "symbol": symbol, "price": price, "color": color, "pill": pill, "trend": "up"}


UP = text("BTC 67,432", "#2cbd84")
DOWN = text("ETH 3,188", "#f6465d")
PILL = text("BTC 67,432", "#ffffff", "#2cbd84")
PLAIN = text("BTC 67,432")
LOGO = {"logo": True}
POINTER_HEIGHT = 40


class StatusItemChecks:
    """What holds on every panel that shows the whole text."""

    def make_session(self):
        raise NotImplementedError

    def start(self, desktop, content):
        probe = desktop.run(PROBE)
        self.show(probe, content)
        return probe

    def show(self, probe, content):
        probe.write_line(json.dumps(content))

    def check_text_follows_the_content(self):
        with self.make_session() as desktop:
            probe = self.start(desktop, UP)
            wide = wait_for_box(desktop, GREEN, lambda box: box[2] > 40)
            self.assertLess(abs(2 * middle(wide)[1] - 30), 8, "the text is not in the middle of the panel")
            self.show(probe, DOWN)
            narrow = wait_for_box(desktop, RED, lambda box: box[2] > 30)
            self.assertLess(narrow[2], wide[2])
            desktop.wait_for(lambda: box_of(desktop.picture(), coloured(GREEN)) is None, what="the end of the green text")

    def check_pill(self):
        with self.make_session() as desktop:
            probe = self.start(desktop, PILL)
            left, top, width, height = wait_for_box(desktop, GREEN, lambda box: box[2] > 50)
            self.assertGreater(width, 2 * height)
            picture = desktop.picture()
            for x in (left, left + width - 1):
                for y in (top, top + height - 1):
                    self.assertFalse(is_near(picture.at(x, y), GREEN, 20), "the corners are not round")
            self.assertTrue(box_of(picture, coloured(WHITE)), "there is no white text")
            self.show(probe, LOGO)
            desktop.wait_for(lambda: box_of(desktop.picture(), coloured(GREEN)) is None, what="the pill's end")

    def check_plain_text_can_be_read(self):
        with self.make_session() as desktop:
            probe = self.start(desktop, UP)
            wait_for_box(desktop, GREEN)
            self.show(probe, PLAIN)
            box = wait_for_box(desktop, NEAR_WHITE, lambda found: found[2] > 40)
            self.show(probe, LOGO)
            wait_for_box(desktop, NEAR_WHITE, lambda found: 8 <= found[2] < box[2] // 2)

    def check_returning_panel(self):
        with self.make_session() as desktop:
            self.start(desktop, UP)
            wait_for_box(desktop, GREEN, lambda box: box[2] > 40)
            desktop.stop_panel()
            desktop.wait_for(lambda: box_of(desktop.picture(), coloured(GREEN)) is None, what="the item's end")
            desktop.start_panel()
            wait_for_box(desktop, GREEN, lambda box: box[2] > 40)


class XfceTest(StatusItemChecks, unittest.TestCase):
    def make_session(self):
        return X11Session("xfce4-panel", notifications=None)

    def test_text_follows_the_content(self):
        self.check_text_follows_the_content()

    def test_pill(self):
        self.check_pill()

    def test_plain_text_can_be_read(self):
        self.check_plain_text_can_be_read()

    def test_returning_panel(self):
        self.check_returning_panel()

    def test_panel_that_comes_late(self):
        with X11Session("xfce4-panel", notifications=None, with_panel=False) as desktop:
            probe = self.start(desktop, UP)
            desktop.wait_for(lambda: "No panel shows status items" in probe.errors(), what="the log line")
            desktop.start_panel()
            wait_for_box(desktop, GREEN, lambda box: box[2] > 40)
            self.assertEqual(probe.errors().count("No panel shows status items"), 1)

    def test_left_click_tells_where(self):
        with self.make_session() as desktop:
            probe = self.start(desktop, PILL)
            pill = wait_for_box(desktop, GREEN, lambda box: box[2] > 50)
            x, y = middle(pill)
            desktop.click(x, y)
            desktop.wait_for(lambda: f"clicked {x} {y}\n" in probe.output(), what="the click")
            desktop.wait_for(lambda: "item at" in probe.output(), what="the item's position")
            self.assert_item_is_at(probe, pill)

    def assert_item_is_at(self, probe, pill):
        """The pill is as wide as the item and stands in the middle of its height."""
        left, top, width, height = (int(part) for part in probe.output().rsplit("item at ", 1)[1].split()[:4])
        self.assertEqual((left, width), (pill[0], pill[2]))
        self.assertLessEqual(top, pill[1])
        self.assertGreaterEqual(top + height, pill[1] + pill[3])

    def test_right_click_opens_the_menu_and_the_next_left_click_is_a_click(self):
        with self.make_session() as desktop:
            probe = self.start(desktop, PILL)
            x, y = middle(wait_for_box(desktop, GREEN, lambda box: box[2] > 50))
            before = set(desktop.windows("statusitem_probe"))
            desktop.click(x, y, button=3)
            menu, = desktop.wait_for(lambda: set(desktop.windows("statusitem_probe")) - before, what="the menu")
            left, top, width, height = desktop.window_geometry(menu)
            self.assertLessEqual(left + width, desktop.width)
            desktop.click(left + width // 2, top + height - 12)
            desktop.wait_for(lambda: "menu Quit" in probe.output(), what="the menu entry")
            self.assertNotIn("clicked", probe.output())
            desktop.wait_for(lambda: menu not in desktop.windows("statusitem_probe"), what="the menu's end")
            desktop.click(x, y)
            desktop.wait_for(lambda: "clicked" in probe.output(), what="the click after the menu")


class WaybarTest(StatusItemChecks, unittest.TestCase):
    def make_session(self):
        return SwaySession("waybar", notifications=None)

    def test_text_follows_the_content(self):
        self.check_text_follows_the_content()

    def test_pill(self):
        self.check_pill()

    def test_plain_text_can_be_read(self):
        self.check_plain_text_can_be_read()

    def test_returning_panel(self):
        self.check_returning_panel()

    def test_click_and_menu(self):
        with self.make_session() as desktop:
            probe = self.start(desktop, PILL)
            x, y = middle(wait_for_box(desktop, GREEN, lambda box: box[2] > 50))
            desktop.click(x, y)
            desktop.wait_for(lambda: "clicked" in probe.output(), what="the click")
            quit_entry = desktop.menu_layout()["children"][-1]
            self.assertEqual(quit_entry["properties"]["label"], "Quit")
            desktop.click_menu_item(quit_entry["id"])
            desktop.wait_for(lambda: "menu Quit" in probe.output(), what="the menu entry")

    def test_a_menu_that_has_grown_opens_whole(self):
        with self.make_session() as desktop:
            probe = self.start(desktop, PILL)
            item = middle(wait_for_box(desktop, GREEN, lambda box: box[2] > 50))
            self.click_last_entry(desktop, item)
            desktop.wait_for(lambda: "menu Quit" in probe.output(), what="the last entry of the first menu")
            self.show(probe, {"menu": ["One", "Two", "Three", "Four", "Five", "Six", "Seven", "Eight", "Last"]})
            desktop.wait_for(lambda: "menu changed" in probe.output(), what="the new menu")
            self.click_last_entry(desktop, item)
            desktop.wait_for(lambda: "menu Last" in probe.output(), what="the last entry of the new menu")

    def click_last_entry(self, desktop, item):
        """Opens the menu as a user does, in the panel, and clicks its lowest entry."""
        before = desktop.picture()
        desktop.click(*item, button=3)
        boxes = []

        def standing_menu():
            boxes.append(changed_box(before, desktop.picture()))
            is_menu = boxes[-1] and boxes[-1][3] > POINTER_HEIGHT
            return boxes[-1] if is_menu and boxes[-2:] == [boxes[-1]] * 2 else None
        left, top, width, height = desktop.wait_for(standing_menu, what="the menu")
        desktop.click(left + width // 2, top + height - 16)
        desktop.move_pointer(10, 600)  # screenshots show the pointer
        desktop.wait_for(lambda: changed_box(before, desktop.picture()) is None, what="the menu's end")


class ScaledTest(StatusItemChecks, unittest.TestCase):
    """Programs drawn larger than the panel: its height stays, and so does the text's whole width."""

    def check_text_is_whole(self, scale):
        with X11Session("xfce4-panel", notifications=None) as desktop:
            probe = desktop.run(PROBE, env={"QT_SCALE_FACTOR": scale})
            for content, color, narrowest in ((UP, GREEN, 75), (DOWN, RED, 65), (PILL, GREEN, 75)):
                self.show(probe, content)
                desktop.wait_for(lambda: self.is_whole(desktop, color, narrowest), what=f"all of {content['text']}")

    def is_whole(self, desktop, color, narrowest):
        """Whether the text or pill is as wide as its window but for a margin, and ends inside of it."""
        box = box_of(desktop.picture(), coloured(color))
        windows = [desktop.window_geometry(window) for window in desktop.windows("statusitem_probe")]
        if not box or len(windows) != 1:
            return False
        left, top, width, height = windows[0]
        is_inside = left <= box[0] and top <= box[1] and box[0] + box[2] <= left + width and box[1] + box[3] <= top + height
        return is_inside and height <= 30 and narrowest <= box[2] and width - box[2] < 20

    def test_at_one_and_a_half(self):
        self.check_text_is_whole("1.5")

    def test_at_double(self):
        self.check_text_is_whole("2")


class SwaybarTest(StatusItemChecks, unittest.TestCase):
    def test_compact_icon(self):
        with SwaySession("swaybar", notifications=None) as desktop:
            probe = self.start(desktop, PILL)
            left, top, width, height = wait_for_box(desktop, GREEN)
            self.assertLess(abs(width - height), 3)
            x, y = middle((left, top, width, height))
            desktop.click(x, y)
            desktop.wait_for(lambda: "clicked" in probe.output(), what="the click")


if __name__ == "__main__":
    unittest.main()
