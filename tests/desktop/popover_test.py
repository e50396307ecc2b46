#!/usr/bin/python3
"""The popover of the whole application, clicked open and closed on real panels and read from outside as a screen reader does."""

import time
import unittest

from accessible_tree import AccessibleTree
from application import IDENTIFIER, Application, Texts, coin, keep_picture, read, settings_file
from desktop_session import SwaySession, X11Session
from panel_pixels import GREEN, coloured, middle, wait_for_box
from settings_window import open_settings, wait_for_settings_on_x11

ENGLISH = Texts("en")
TITLE = ENGLISH.text("popover.watchlist")
PRICES = (("BTC", 67432.4, 1.5), ("ETH", 3188, -2), ("SOL", 150.25, 0.4))
COINS = [coin("bitcoin"), coin("ethereum"), coin("solana")]
SAME_CLICK = 0.3  # seconds
OBJECT = "/" + IDENTIFIER.replace(".", "/")


def start(desktop, **settings):
    application = Application(desktop, PRICES, addedCoins=COINS, **settings)
    application.wait_for_content(text="BTC 67,432")
    return application


def popover(application):
    """The popover's window as it describes itself, or None."""
    return next((window for window in application.windows() if TITLE in window["texts"]), None)


def wait_for_popover(desktop, application):
    """The popover, once its prices are on the screen."""
    def drawn():
        window = popover(application)
        if not window:
            return None
        left, top, width, height = window["place"]
        picture = desktop.picture()
        green = coloured(GREEN)
        columns = range(left + width // 2, min(left + width, picture.width))
        rows = range(top + 50, min(top + height, picture.height))
        return window if any(green(picture.at(x, y)) for x in columns for y in rows) else None
    return desktop.wait_for(drawn, what="the popover")


def wait_for_its_end(desktop, application):
    desktop.wait_for(lambda: popover(application) is None, what="the popover's end")


class PopoverChecks:
    """What holds on every panel."""

    def make_session(self):
        raise NotImplementedError

    def item(self, desktop):
        return middle(wait_for_box(desktop, GREEN, lambda box: box[2] > 40))

    def check_is_under_the_item(self, desktop, window, item):
        left, top, width, height = window["place"]
        self.assertEqual((width, height), (320, 298))
        self.assertTrue(30 <= top < 40, f"{top} is not under the panel")
        self.assertTrue(0 <= left and left + width <= desktop.width, f"{left} is not on the screen")
        self.assertTrue(left <= item[0] <= left + width, f"{left} is away from the item at {item[0]}")

    def check_clicks(self):
        with self.make_session() as desktop:
            application = start(desktop)
            item = self.item(desktop)
            for _ in range(2):
                window = self.open_again(desktop, application, item)
                self.check_is_under_the_item(desktop, window, item)
                self.assertTrue(any(self.closes(desktop, application, item) for _ in range(3)), "a click opens it again")

    def closes(self, desktop, application, item):
        """Whether a click on the item closes the popover. A panel that tells of the click too late opens it again."""
        time.sleep(SAME_CLICK)
        desktop.click(*item)
        wait_for_its_end(desktop, application)
        application.poll()  # a while in which a popover that opens again would be there
        return popover(application) is None

    def check_closing(self):
        with self.make_session() as desktop:
            application = start(desktop)
            item = self.item(desktop)
            desktop.click(*item)
            wait_for_popover(desktop, application)
            desktop.press_key("Escape")
            wait_for_its_end(desktop, application)
            self.open_again(desktop, application, item)
            left, top, _, _ = popover(application)["place"]
            desktop.click(left + 20, top + 80)
            self.assertTrue(popover(application), "a click inside closed it")
            desktop.click(200, 500)
            wait_for_its_end(desktop, application)

    def open_again(self, desktop, application, item):
        """Clicks when no click is taken for the one that closed it any more."""
        time.sleep(SAME_CLICK)
        desktop.click(*item)
        return wait_for_popover(desktop, application)

    def check_requests(self):
        with self.make_session() as desktop:
            application = start(desktop)
            self.item(desktop)
            desktop.move_pointer(300, 600)
            for method, signature, arguments in (("Activate", "(a{sv})", ({},)),
                                                 ("Open", "(asa{sv})", (["tickwise://popover"], {}))):
                desktop.bus.call(IDENTIFIER, OBJECT, "org.freedesktop.Application", method, signature, arguments)
                self.check_is_in_the_corner(desktop, application)
                desktop.press_key("Escape")
                wait_for_its_end(desktop, application)
            second = Application(desktop, stored=True)
            self.assertEqual(second.process.wait(), 0)
            wait_for_popover(desktop, application)

    def check_address_that_starts_the_application(self):
        with self.make_session() as desktop:
            desktop.move_pointer(300, 600)
            self.check_is_in_the_corner(desktop, start(desktop, arguments=["tickwise://popover"]))

    def check_is_in_the_corner(self, desktop, application):
        left, top, width, _ = wait_for_popover(desktop, application)["place"]
        self.assertTrue(top < 40 and left + width > desktop.width - 20, "it is not in the panel's corner")

    def check_prices_tick_while_it_is_open(self, name):
        with self.make_session() as desktop:
            application = start(desktop)
            desktop.click(*self.item(desktop))
            window = wait_for_popover(desktop, application)
            keep_picture(desktop, name)
            application.set_price("BTC", 70000.5, -1)
            left, top, width, _ = window["place"]
            row = (left + width // 2, top + 56, width // 2, 52)

            def shows_red():
                colours = desktop.picture().colours(*row)
                return any(red > 200 and green < 110 and blue < 130 for red, green, blue in colours)
            desktop.wait_for(shows_red, what="the new price")


    def check_panel_that_goes(self):
        with self.make_session() as desktop:
            application = start(desktop)
            desktop.click(*self.item(desktop))
            wait_for_popover(desktop, application)
            desktop.stop_panel()
            application.set_price("BTC", 70000.5, 1)
            if popover(application):
                desktop.press_key("Escape")
            wait_for_its_end(desktop, application)
            desktop.start_panel()
            self.open_again(desktop, application, self.item(desktop))

    def check_desktop_that_goes(self, display):
        """The display server ends with the popover open: the application ends too, and keeps its settings."""
        with self.make_session() as desktop:
            application = start(desktop)
            desktop.click(*self.item(desktop))
            wait_for_popover(desktop, application)
            stored = read(settings_file(desktop))
            desktop.stop_process(display(desktop))
            self.assertNotEqual(application.process.wait(), 0)
            self.assertEqual(read(settings_file(desktop)), stored)


class XfceTest(PopoverChecks, unittest.TestCase):
    def make_session(self):
        return X11Session("xfce4-panel", notifications=None)

    def test_clicks(self):
        self.check_clicks()

    def test_closing(self):
        self.check_closing()

    def test_requests(self):
        self.check_requests()

    def test_address_that_starts_the_application(self):
        self.check_address_that_starts_the_application()

    def test_prices_tick_while_it_is_open(self):
        self.check_prices_tick_while_it_is_open("popover-xfce.png")

    def test_stays_open_when_the_item_comes(self):
        with X11Session("xfce4-panel", notifications=None, with_panel=False) as desktop:
            application = start(desktop)
            desktop.bus.call(IDENTIFIER, OBJECT, "org.freedesktop.Application", "Activate", "(a{sv})", ({},))
            wait_for_popover(desktop, application)
            desktop.start_panel()
            self.item(desktop)
            self.assertTrue(popover(application), "the item's window closed it")

    def test_panel_goes_while_it_is_open(self):
        self.check_panel_that_goes()

    def test_x_server_goes_while_it_is_open(self):
        self.check_desktop_that_goes(lambda desktop: desktop.server)

    def test_quits_while_it_is_open(self):
        with self.make_session() as desktop:
            application = start(desktop)
            desktop.click(*self.item(desktop))
            x, y = wait_for_popover(desktop, application)["buttons"][ENGLISH.text("popover.quit.help")]
            desktop.click(x, y)
            self.assertEqual(application.process.wait(), 0)

    def test_without_a_panel_it_is_in_the_middle(self):
        with X11Session(None, notifications=None) as desktop:
            application = start(desktop)
            desktop.bus.call(IDENTIFIER, OBJECT, "org.freedesktop.Application", "Activate", "(a{sv})", ({},))
            left, top, width, height = wait_for_popover(desktop, application)["place"]
            self.assertLess(abs(2 * left + width - desktop.width), 4)
            self.assertLess(abs(2 * top + height - desktop.height), 4)


class WaybarTest(PopoverChecks, unittest.TestCase):
    def make_session(self):
        return SwaySession("waybar", notifications=None)

    def test_clicks(self):
        self.check_clicks()

    def test_closing(self):
        self.check_closing()

    def test_requests(self):
        self.check_requests()

    def test_address_that_starts_the_application(self):
        self.check_address_that_starts_the_application()

    def test_prices_tick_while_it_is_open(self):
        self.check_prices_tick_while_it_is_open("popover-waybar.png")

    def test_panel_goes_while_it_is_open(self):
        self.check_panel_that_goes()

    def test_on_an_output_of_double_scale(self):
        """A point is two pixels of the screen there; the windows tell points, the picture shows pixels."""
        with self.make_session() as desktop:
            desktop.message("output", "HEADLESS-1", "scale", "2")
            application = start(desktop)
            item = self.item(desktop)
            desktop.click(*item)
            window = desktop.wait_for(lambda: popover(application), what="the popover")
            left, top, width, height = window["place"]
            self.assertEqual((width, height), (320, 298))
            self.assertTrue(30 <= top and top + height <= desktop.height // 2)
            self.assertTrue(left <= item[0] // 2 <= left + width <= desktop.width // 2)
            prices = (2 * left + width, 2 * (top + 52), width, 2 * 52)
            green = coloured(GREEN)
            desktop.wait_for(lambda: any(map(green, desktop.picture().colours(*prices))), what="the price at its place")

    def test_compositor_goes_while_it_is_open(self):
        self.check_desktop_that_goes(lambda desktop: desktop.compositor)


class AccessibilityTest(unittest.TestCase):
    """What a screen reader finds, over its own bus."""

    def check_is_in_no_task_bar(self, desktop):
        states = [desktop.tool(["xprop", "-id", str(window), "_NET_WM_STATE"]).decode() for window in desktop.windows("^Tickwise$")]
        managed = [state for state in states if "_NET_WM_STATE_ABOVE" in state]
        self.assertEqual(len(managed), 1, states)
        self.assertIn("_NET_WM_STATE_SKIP_TASKBAR", managed[0])

    def test_reads_the_tree_and_presses_a_button(self):
        with X11Session("xfce4-panel", notifications=None) as desktop:
            tree = AccessibleTree(desktop)
            application = Application(desktop, PRICES, addedCoins=COINS, env=tree.environment)
            application.wait_for_content(text="BTC 67,432")
            desktop.click(*middle(wait_for_box(desktop, GREEN, lambda box: box[2] > 40)))
            wait_for_popover(desktop, application)
            self.check_is_in_no_task_bar(desktop)
            rows = ["Bitcoin, 67,432 USD, up 1.50 percent", "Ethereum, 3,188 USD, down 2.00 percent",
                    "Solana, 150 USD, up 0.40 percent"]
            found = desktop.wait_for(lambda: tree.nodes("app_probe"), what="the tree")
            names = [(node.role, node.name) for node in found]
            self.assertIn("BTC 67,432", [name for _, name in names])
            self.assertIn(("frame", "Tickwise"), names)
            self.assertIn(("list", TITLE), names)
            self.assertEqual([name for role, name in names if role == "list item"], rows)
            for key in ("popover.watchlist.help", "popover.settings.help", "popover.quit.help"):
                self.assertIn(("push button", ENGLISH.text(key)), names)
            quit_text = ENGLISH.text("popover.quit.help")
            next(node for node in found if node.name == quit_text).press()
            self.assertEqual(application.process.wait(), 0)

    def test_opens_while_the_settings_window_is_open(self):
        """A popover that screen readers see closes when it loses the focus: the settings window must not come to the front after it."""
        with X11Session("xfce4-panel", "xfwm4", notifications=None) as desktop:
            application = Application(desktop, PRICES, addedCoins=COINS, env=AccessibleTree(desktop).environment)
            application.wait_for_content(text="BTC 67,432")
            item = middle(wait_for_box(desktop, GREEN, lambda box: box[2] > 40))
            open_settings(desktop)
            wait_for_settings_on_x11(desktop)
            desktop.click(*item)
            wait_for_popover(desktop, application)
            # A poll is a while in which the popover would have closed.
            application.poll()
            wait_for_popover(desktop, application)
            self.check_is_in_no_task_bar(desktop)
            desktop.press_key("Escape")
            wait_for_its_end(desktop, application)


if __name__ == "__main__":
    unittest.main()
