#!/usr/bin/python3
"""The watchlist and its search panel, read from outside as a screen reader does, and used by what is found there."""

import json
import unittest

from accessible_tree import AccessibleTree
from application import IDENTIFIER, Application, Texts, coin, read, settings_file
from desktop_session import X11Session

PROGRAM = "app_probe"
ENGLISH = Texts("en")
PRICES = (("BTC", 67432.4, 1.5), ("ETH", 3188, -2))


class AccessibilityTest(unittest.TestCase):
    def setUp(self):
        self.desktop = X11Session("xfce4-panel", notifications=None).start()
        self.addCleanup(self.desktop.stop)
        self.tree = AccessibleTree(self.desktop)
        self.application = Application(self.desktop, PRICES, addedCoins=[coin("bitcoin"), coin("ethereum")],
                                       env=self.tree.environment)
        self.application.wait_for_content(text="BTC 67,432")
        self.desktop.bus.call(IDENTIFIER, "/" + IDENTIFIER.replace(".", "/"), "org.freedesktop.Application",
                              "ActivateAction", "(sava{sv})", ("watchlist", [], {}))
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
        self.wait_for(ENGLISH.text("watchlist.search.placeholder"), "text")
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


if __name__ == "__main__":
    unittest.main()
