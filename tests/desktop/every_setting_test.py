#!/usr/bin/python3
"""Every control of the settings window, used with mouse and keys as a person would, and what is stored after each."""

import json
import os
import time
import unittest

from accessible_tree import AccessibleTree
from application import Application, Texts, coin, read, settings_file
from desktop_session import GLib, X11Session
from settings_window import open_settings, wait_for_settings_on_x11

ENGLISH = Texts("en")
PROGRAM = "app_probe"
PRICES = (("BTC", 67432.4, 1.5), ("ETH", 3188, -2))
WHEEL_DOWN = 5
MARGIN = 30  # pixels, at the window's right, without controls
EDGE = 12    # pixels: a control whose middle is so far inside the window is in sight


class EverySettingTest(unittest.TestCase):
    def setUp(self):
        # Wide enough for the overlay beside the window.
        self.desktop = X11Session("xfce4-panel", notifications=None, width=1700).start()
        self.addCleanup(self.desktop.stop)
        self.tree = AccessibleTree(self.desktop)
        self.application = Application(self.desktop, PRICES, addedCoins=[coin("bitcoin"), coin("ethereum")],
                                       commands=["updater"], env=self.tree.environment)
        self.application.wait_for_content(text="BTC 67,432")

    def open(self, tab):
        open_settings(self.desktop)
        self.window = self.desktop.window_geometry(wait_for_settings_on_x11(self.desktop))
        self.click("page tab", ENGLISH.text(f"settings.tab.{tab}"))

    # What a person does

    def find(self, role, name):
        """The control in sight with that name, label or description; scrolls down to it, and turns the wheel only once its last
        turn has been answered."""
        left, top, width, height = self.window

        def found():
            try:
                for node, _ in self.tree.nodes_with_ancestors(PROGRAM, only_shown=True):
                    if node.role != role or name not in (node.name, *node.labels(), node.description()):
                        continue
                    place = node.extents()
                    time.sleep(0.1)
                    if node.extents() != place:
                        return None
                    if self.is_in_sight(node):
                        return node
                    return self.desktop.click(left + width - MARGIN, top + height // 2, WHEEL_DOWN)
            except GLib.Error:  # an object went while the tree was read
                pass
            return None
        return self.desktop.wait_for(found, what=f"{role} {name!r} in sight")

    def is_in_sight(self, node):
        x, y = node.middle()
        left, top, width, height = self.window
        return left < x < left + width and top < y < top + height - EDGE

    def click(self, role, name):
        """In its middle; a check box's label may be shorter than the box is wide."""
        left, top, width, height = self.find(role, name).extents()
        self.desktop.click(left + (10 if role == "check box" else width // 2), top + height // 2)

    def choose(self, name, place):
        """The entry of a list at that place, from 0."""
        self.desktop.open_popup(PROGRAM, lambda: self.click("combo box", name))
        for key in ("Home", *["Down"] * place, "Return"):
            self.desktop.press_key(key)

    def write(self, name, text):
        self.click("text", name)
        self.wait_for_focus(name)
        self.desktop.press_key("ctrl+a")
        self.desktop.type_text(text)

    def wait_for_focus(self, name):
        self.desktop.wait_for(lambda: self.find("text", name).has_state("focused"), what=f"the focus in {name}")

    # What follows

    def stored(self):
        return json.loads(read(settings_file(self.desktop)) or "{}")

    def check_stored(self, key, value):
        self.desktop.wait_for(lambda: self.stored().get(key) == value, what=f"{key} {value}, not {self.stored().get(key)}")

    def test_general(self):
        self.open("general")
        text = ENGLISH.text
        for key, name, value in (("launchAtLogin", "general.launch.atLogin", True),
                                 ("priceColorEnabled", "general.display.textColor", False)):
            self.click("check box", text(name))
            self.check_stored(key, value)
        self.choose(text("general.display.colorScheme"), 2)
        self.check_stored("colorScheme", "custom")
        for key, name in (("customUpColorHex", "upColor"), ("customDownColorHex", "downColor")):
            self.write(text(f"general.priceColor.{name}"), "#0a1b2c")
            self.check_stored(key, "#0A1B2C")
        self.click("check box", text("general.display.textBackground"))
        self.check_stored("showMenuBarBackground", True)
        self.choose(text("general.display.menubarContent"), 1)
        self.check_stored("menuBarContent", "icon")
        self.choose(text("general.display.menubarCoin"), 1)
        self.check_stored("displayedCoinId", "ethereum")
        self.change_overlay()
        self.choose(text("general.display.currency"), 1)
        self.check_stored("baseCurrency", "CNY")
        self.click("check box", text("general.notification.priceAlert"))
        self.check_stored("priceChangeNotificationEnabled", False)
        self.choose(text("general.language.label"), 2)
        self.check_stored("language", "zh-Hans")
        self.application.wait_for_window_text(Texts("zh-Hans").text("general.language.label"))

    def change_overlay(self):
        self.click("check box", ENGLISH.text("general.desktop.overlay"))
        self.check_stored("desktopOverlayEnabled", True)
        self.choose(ENGLISH.text("desktop.textSize"), 1)
        self.check_stored("desktopOverlayTextSize", "large")
        self.click("slider", ENGLISH.text("desktop.opacity"))
        self.check_stored("desktopOverlayBackgroundOpacity", 0.9)
        self.click("push button", ENGLISH.text("desktop.adjust.start"))
        self.application.wait_for_window_text(ENGLISH.text("desktop.adjust.hint"))
        self.tree.wait_for(PROGRAM, ENGLISH.text("desktop.adjust.done"), "push button").press()
        self.desktop.wait_for(lambda: self.stored().get("desktopOverlayTopLeft"), what="the overlay's place")

    def test_watchlist(self):
        self.open("watchlist")
        bitcoin, ethereum, solana = coin("bitcoin"), coin("ethereum"), coin("solana")
        self.click("list item", ENGLISH.text("a11y.coinNotAdded", "Solana", "SOL"))
        self.check_stored("addedCoins", [bitcoin, ethereum, solana])
        self.click("push button", ENGLISH.text("a11y.delete", "Solana"))
        self.check_stored("addedCoins", [bitcoin, ethereum])
        self.choose(ENGLISH.text("a11y.alertKind", "Ethereum"), 1)
        self.check_stored("addedCoins", [bitcoin, coin("ethereum", "below")])
        self.write(ENGLISH.text("a11y.alertThreshold", "Bitcoin"), "7.5")
        self.check_stored("addedCoins", [coin("bitcoin", "change", 7.5), coin("ethereum", "below")])
        self.drag_down(self.find("push button", ENGLISH.text("a11y.reorder", "Bitcoin")).middle())
        self.check_stored("addedCoins", [coin("ethereum", "below"), coin("bitcoin", "change", 7.5)])
        self.click("push button", ENGLISH.text("watchlist.addCoin"))
        self.wait_for_focus(ENGLISH.text("watchlist.search.placeholder"))
        self.desktop.type_text("doge")
        self.click("list item", ENGLISH.text("a11y.coinNotAdded", "Dogecoin", "DOGE"))
        self.check_stored("addedCoins", [coin("ethereum", "below"), coin("bitcoin", "change", 7.5), coin("dogecoin")])

    def drag_down(self, start):
        x, y = start
        self.desktop.drag(x, y, [(x, y + distance) for distance in (4, 20, 40, 60)])
        self.desktop.drop()

    def test_about(self):
        self.open("about")
        updater = os.path.join(os.path.dirname(settings_file(self.desktop)), "updater.json")
        self.click("check box", ENGLISH.text("about.updates.automatic"))
        self.desktop.wait_for(lambda: '"automaticallyChecks":false' in (read(updater) or ""), what="the updater's setting")
        self.click("push button", ENGLISH.text("about.updates.check"))
        self.desktop.wait_for(lambda: len(self.application.all_windows()) > 1, what="what the update window says")


if __name__ == "__main__":
    unittest.main()
