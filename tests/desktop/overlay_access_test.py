#!/usr/bin/python3
"""The overlay as a screen reader reaches it, and the way to it through the settings window."""

import time
import unittest

from accessible_tree import AccessibleTree
from application import Texts, coin
from desktop_session import SwaySession, X11Session
from overlay_test import HEIGHT, WIDTH, Overlay
from settings_window import open_settings, wait_for_settings_on_x11

ENGLISH = Texts("en")
ADJUST = ENGLISH.text("desktop.adjust.start")
WHEEL_DOWN = 5
WIDE = 1700  # pixels, of a screen on which the settings window and the overlay stand beside each other
ROWS = ["Bitcoin, 67,432 USD, +1.50%", "Ethereum, 3,188 USD, -2.00%", "Solana, 150 USD, +0.40%"]


class AccessibilityTest(unittest.TestCase):
    WINDOW = ("frame", "Tickwise")
    LIST = ("list", ENGLISH.text("widget.list.title"))
    HINT = ("label", ENGLISH.text("desktop.adjust.hint"))
    DONE = ("push button", ENGLISH.text("desktop.adjust.done"))

    def setUp(self):
        self.desktop = X11Session(None, "xfwm4", notifications=None).start()
        self.addCleanup(self.desktop.stop)
        self.tree = AccessibleTree(self.desktop)
        self.overlay = Overlay(self.desktop, env=self.tree.environment, desktopOverlayTopLeft={"x": 200, "y": 500})
        self.overlay.wait_until_at(200, 300)
        self.desktop.wait_for(self.rows, what="the rows in the tree")

    def shown(self):
        return [node for node, _ in self.tree.nodes_with_ancestors("app_probe", only_shown=True)]

    def find(self, role_and_name):
        return next((node for node in self.shown() if (node.role, node.name) == role_and_name), None)

    def rows(self):
        return [node.name for node in self.shown() if node.role == "list item"]

    def test_reads_its_rows(self):
        self.assertEqual(self.rows(), ROWS)
        self.assertTrue(self.find(self.WINDOW))
        left, top, width, height = self.find(self.LIST).extents()
        self.assertTrue(200 < left and left + width < 200 + WIDTH and 300 < top and top + height < 300 + HEIGHT)
        self.overlay.application.set_price("BTC", 70000.5, -1)
        self.desktop.wait_for(lambda: self.find(("list item", "Bitcoin, 70,000 USD, -1.00%")), what="the new price")

    def test_tells_of_another_price(self):
        hear = self.tree.listen("object:property-change:accessible-name")
        self.overlay.application.set_price("BTC", 70000.5, -1)
        heard = self.desktop.wait_for(hear, what="an event")
        self.assertEqual({node.name for node, _ in heard}, {"Bitcoin, 70,000 USD, -1.00%"})

    def test_tells_of_coins_that_come_and_go(self):
        hear = self.tree.listen("object:children-changed")
        watched = [coin("bitcoin"), coin("ethereum"), coin("solana")]
        self.overlay.application.change_settings(addedCoins=[*watched, coin("ripple")])
        heard = self.desktop.wait_for(hear, what="an event")
        self.assertEqual({(node.role, node.name, detail) for node, detail in heard}, {(*self.LIST, "add")})
        self.assertEqual(len(self.rows()), 4)
        self.overlay.application.change_settings(addedCoins=watched)
        self.desktop.wait_for(lambda: len(self.rows()) == 3, what="three rows")

    def test_tells_that_it_is_being_adjusted(self):
        self.assertIsNone(self.find(self.HINT))
        self.assertIsNone(self.find(self.DONE))
        self.overlay.begin_adjusting()
        self.desktop.wait_for(lambda: self.find(self.HINT), what="the hint")
        done = self.desktop.wait_for(lambda: self.find(self.DONE), what="the button")
        self.desktop.wait_for(lambda: done.has_state("focused"), what="the focus on the button")
        done.press()
        self.desktop.wait_for(lambda: not self.find(self.HINT) and not self.find(self.DONE), what="the end of adjusting")
        self.overlay.wait_until_saved(200, 500)


class AdjustButtonTest(unittest.TestCase):
    """From the button in the settings window to the stored place."""

    def check_keys_move_it(self, desktop, overlay):
        overlay.application.wait_for_window_text(ENGLISH.text("desktop.adjust.hint"))
        overlay.move_until_at(lambda: desktop.press_key("shift+Down"), (40, 300), (40, 324))
        desktop.press_key("Up")
        self.assertEqual(overlay.saved(), (40, 500))
        desktop.press_key("Return")
        overlay.wait_until_left()
        overlay.wait_until_saved(40, 477)

    def test_pressed_by_the_pointer(self):
        with X11Session("xfce4-panel", "xfwm4", notifications=None, width=WIDE) as desktop:
            overlay = Overlay(desktop, desktopOverlayTopLeft={"x": 40, "y": 500})
            overlay.wait_until_at(40, 300)
            open_settings(desktop)
            left, top, width, height = desktop.window_geometry(wait_for_settings_on_x11(desktop))

            places = []

            def in_sight():
                """Turns the wheel only once its last turn has been answered."""
                time.sleep(0.1)
                places.append(overlay.application.window_with_button(ADJUST)["buttons"][ADJUST])
                if places[-3:] != [places[-1]] * 3:
                    return None
                if places[-1][1] < top + height - 20:
                    return places[-1]
                places.clear()
                return desktop.click(left + width - 30, top + height // 2, button=WHEEL_DOWN)
            button = desktop.wait_for(in_sight, 30, "the button in sight")
            desktop.click(*button)
            overlay.application.wait_for_window_text(ENGLISH.text("desktop.adjust.hint"))
            # The click gives the keyboard to the settings window; the overlay takes it again.
            desktop.click(*button)
            self.check_keys_move_it(desktop, overlay)

    def test_pressed_by_a_screen_reader(self):
        with SwaySession("waybar", notifications=None, width=WIDE) as desktop:
            tree = AccessibleTree(desktop)
            overlay = Overlay(desktop, env=tree.environment, desktopOverlayTopLeft={"x": 40, "y": 500})
            overlay.wait_until_at(40, 300)
            open_settings(desktop)
            tree.wait_for("app_probe", ADJUST, "push button").press()
            self.check_keys_move_it(desktop, overlay)


if __name__ == "__main__":
    unittest.main()
