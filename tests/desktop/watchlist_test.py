#!/usr/bin/python3
"""The watchlist and its search panel, read from outside as a screen reader does, and used by what is found there."""

import json
import subprocess
import time
import unittest

from accessible_tree import AccessibleTree
from application import IDENTIFIER, Application, Texts, coin, read, settings_file
from desktop_session import SessionError, X11Session
from settings_window import wait_for_settings_on_x11

PROGRAM = "app_probe"
ENGLISH = Texts("en")
PRICES = (("BTC", 67432.4, 1.5), ("ETH", 3188, -2))


def open_watchlist(desktop):
    desktop.bus.call(IDENTIFIER, "/" + IDENTIFIER.replace(".", "/"), "org.freedesktop.Application", "ActivateAction",
                     "(sava{sv})", ("watchlist", [], {}))


class AccessibilityTest(unittest.TestCase):
    def setUp(self):
        self.desktop = X11Session("xfce4-panel", notifications=None).start()
        self.addCleanup(self.desktop.stop)
        self.tree = AccessibleTree(self.desktop)
        self.application = Application(self.desktop, PRICES, addedCoins=[coin("bitcoin"), coin("ethereum")],
                                       env=self.tree.environment)
        self.application.wait_for_content(text="BTC 67,432")
        open_watchlist(self.desktop)
        self.add = self.wait_for(ENGLISH.text("watchlist.addCoin"), "push button")

    def wait_for(self, name, role=None):
        return self.tree.wait_for(PROGRAM, name, role)

    def names(self, role):
        return [node.name for node in self.tree.nodes(PROGRAM) if node.role == role]

    def wait_for_watchlist(self, *identifiers):
        def saved():
            stored = json.loads(read(settings_file(self.desktop)) or "{}")
            return [entry["coinId"] for entry in stored.get("addedCoins", [])] == list(identifiers)
        self.desktop.wait_for(saved, what=f"the saved watchlist {identifiers}")

    def test_rows_and_their_controls(self):
        for name in ("Bitcoin", "Ethereum"):
            for key in ("a11y.reorder", "a11y.delete"):
                self.wait_for(ENGLISH.text(key, name), "push button")
            self.wait_for(ENGLISH.text("a11y.alertThreshold", name), "text")
        self.wait_for(ENGLISH.text("a11y.delete", "Bitcoin")).press()
        self.wait_for_watchlist("ethereum")

    def test_recommended_rows_toggle(self):
        self.wait_for(ENGLISH.text("watchlist.recommended"), "list")
        self.wait_for(ENGLISH.text("a11y.coinNotAdded", "Solana", "SOL"), "list item").press()
        self.wait_for_watchlist("bitcoin", "ethereum", "solana")
        self.wait_for(ENGLISH.text("a11y.coinAdded", "Solana", "SOL"), "list item").press()
        self.wait_for_watchlist("bitcoin", "ethereum")

    def test_search(self):
        self.add.press()
        field = self.wait_for(ENGLISH.text("watchlist.search.placeholder"), "text")
        self.desktop.wait_for(lambda: field.has_state("focused"), what="the focus in the search")
        self.desktop.type_text("wrapped bit")
        self.wait_for(ENGLISH.text("watchlist.search.clear"), "push button")
        found = self.wait_for(ENGLISH.text("a11y.coinNotAdded", "Wrapped Bitcoin", "WBTC"), "list item")
        found.press()
        self.wait_for_watchlist("bitcoin", "ethereum", "wrapped-bitcoin")
        self.wait_for(ENGLISH.text("a11y.coinAdded", "Wrapped Bitcoin", "WBTC"), "list item")
        self.wait_for(ENGLISH.text("watchlist.search.clear"), "push button").press()
        self.wait_for(ENGLISH.text("a11y.coinNotAdded", "Bitcoin Cash", "BCH"), "list item")
        self.desktop.press_key("Escape")
        self.wait_for(ENGLISH.text("a11y.delete", "Wrapped Bitcoin"), "push button").press()
        self.wait_for_watchlist("bitcoin", "ethereum")


class InputMethodTest(unittest.TestCase):
    """The search with an input method that composes what is typed: \\alp becomes a Greek letter."""

    ENGINE = "table:latex"

    def start_input_method(self, desktop):
        environment = {"GSETTINGS_BACKEND": "memory"}
        desktop.start_process("ibus-daemon", ["ibus-daemon", "--panel=disable", "--config=disable", "--emoji-extension=disable"],
                              environment)

        def chosen():
            try:  # it fails while the service starts, and when it waits for too long
                desktop.tool(["ibus", "engine", self.ENGINE])
            except (SessionError, subprocess.TimeoutExpired):
                pass
            try:
                return desktop.tool(["ibus", "engine"]).decode().strip() == self.ENGINE
            except SessionError:
                return False
        desktop.wait_for(chosen, 30, "the input method")

    def wait_for_window(self, desktop, application):
        """The settings window where the window manager has put it."""
        wait_for_settings_on_x11(desktop)
        places = []

        def settled():
            time.sleep(0.3)
            button = ENGLISH.text("watchlist.addCoin")
            places.extend(window["buttons"][button] for window in application.all_windows() if button in window["buttons"])
            return len(places) > 1 and places[-1] == places[-2] and places[-1]
        return desktop.wait_for(settled, what="the settings window")

    def settled_color(self, desktop, point):
        colors = []

        def settled():
            time.sleep(0.3)
            colors.append(desktop.picture().at(*point))
            return colors[-1] if colors[-2:] == [colors[-1]] * 2 else None
        return desktop.wait_for(settled, what="the drawn window")

    def test_escape_ends_a_composition_before_it_closes_the_search(self):
        with X11Session(None, notifications=None) as desktop:
            self.start_input_method(desktop)
            application = Application(desktop, PRICES, env={"QT_IM_MODULE": "ibus"})
            application.wait_for_event("content", 1)
            open_watchlist(desktop)
            x, y = self.wait_for_window(desktop, application)
            beside = (x, y + 24)
            bright = self.settled_color(desktop, beside)
            desktop.click(x, y)
            desktop.wait_for(lambda: desktop.picture().at(*beside) != bright, what="the search over the window")
            desktop.type_text("\\alp")
            desktop.press_key("Escape")
            desktop.type_text("\\alp ")
            application.wait_for_window_text(ENGLISH.text("watchlist.search.noResults"))
            desktop.press_key("Escape")
            desktop.wait_for(lambda: desktop.picture().at(*beside) == bright, what="the window without the search")


if __name__ == "__main__":
    unittest.main()
