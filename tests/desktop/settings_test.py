#!/usr/bin/python3
"""The settings window on real window managers, and as a screen reader and a keyboard reach it."""

import json
import os
import unittest

from accessible_tree import AccessibleTree
from application import Application, Texts, coin, read, settings_file
from desktop_session import SwaySession, X11Session
from settings_window import open_settings, wait_for_settings_on_x11

ENGLISH = Texts("en")
PRICES = (("BTC", 67432.4, 1.5), ("ETH", 3188, -2))
COINS = [coin("bitcoin"), coin("ethereum")]
LIMITS = ((600, 420), (800, 500))
HINTS = {kind: ENGLISH.text(f"general.statusItem.needs{kind}") for kind in ("Extension", "TrayBar", "Panel")}


def start(desktop, env=None, **settings):
    application = Application(desktop, PRICES, env=env, addedCoins=COINS, **settings)
    application.wait_for_content(text="BTC 67,432")
    return application


def settings_window(application):
    """The window as it describes itself, or None."""
    return next((window for window in application.windows() if window["title"] == ENGLISH.text("window.settings.title")), None)


class WindowTest(unittest.TestCase):
    def check_limits_on_x11(self, window_manager):
        with X11Session("xfce4-panel", window_manager, notifications=None) as desktop:
            application = start(desktop)
            open_settings(desktop)
            window = wait_for_settings_on_x11(desktop)
            for asked, got in (((300, 300), LIMITS[0]), ((1200, 780), LIMITS[1]), ((700, 450), (700, 450))):
                desktop.tool(["xdotool", "windowsize", str(window), *map(str, asked)])
                desktop.wait_for(lambda: desktop.window_geometry(window)[2:] == got, what=f"{got} for {asked}")
            self.assertTrue(settings_window(application))

    def test_limits_under_openbox(self):
        self.check_limits_on_x11("openbox")

    def test_limits_under_xfwm4(self):
        self.check_limits_on_x11("xfwm4")

    def test_limits_under_sway(self):
        """A window that sway tiles would have another size."""
        with SwaySession("waybar", notifications=None) as desktop:
            start(desktop)
            open_settings(desktop)

            def content():
                found = desktop.windows("Tickwise")
                box = found[0]["window_rect"] if found and found[0]["type"] == "floating_con" else {}
                return box.get("width"), box.get("height")
            desktop.wait_for(lambda: content() == (786, 500), what="the floating window")
            for asked, got in (((300, 300), LIMITS[0]), ((1200, 700), LIMITS[1])):
                desktop.message(f"[app_id=.*] resize set width {asked[0]} px height {asked[1]} px")
                desktop.wait_for(lambda: content() == got, what=f"{got} for {asked}")

    def check_minimized_window_comes_back(self, window_manager):
        with X11Session("xfce4-panel", window_manager, notifications=None) as desktop:
            start(desktop)
            open_settings(desktop)
            window = wait_for_settings_on_x11(desktop)
            desktop.tool(["xdotool", "windowminimize", str(window)])
            desktop.wait_for(lambda: window not in desktop.windows("app_probe"), what="the minimized window")
            open_settings(desktop)
            desktop.wait_for(lambda: window in desktop.windows("app_probe"), what="the window")
            active = f"_NET_ACTIVE_WINDOW: window id # {window:#x}".encode()
            desktop.wait_for(lambda: active in desktop.tool(["xprop", "-root", "-notype", "_NET_ACTIVE_WINDOW"]),
                             what="the focus on the window")

    def test_minimized_window_comes_back_under_openbox(self):
        self.check_minimized_window_comes_back("openbox")

    def test_minimized_window_comes_back_under_xfwm4(self):
        self.check_minimized_window_comes_back("xfwm4")

    def test_a_frame_that_is_on_no_screen(self):
        with X11Session("xfce4-panel", notifications=None) as desktop:
            frame = os.path.join(os.path.dirname(settings_file(desktop)), "SettingsWindow.json")
            desktop.write_file(frame, "[5000,5000,2000,10]")
            application = start(desktop)
            open_settings(desktop)
            left, top, width, height = desktop.wait_for(lambda: settings_window(application), what="the window")["place"]
            self.assertEqual((width, height), (800, 420))
            self.assertTrue(0 <= left <= desktop.width - width and 0 <= top <= desktop.height - height, (left, top))


class StatusItemHintTest(unittest.TestCase):
    def wait_for_hint(self, desktop, application, kind):
        """Waits until the window shows the hint of that kind, and no other; None: no hint."""
        def shown():
            texts = (settings_window(application) or {"texts": []})["texts"]
            return texts and [each for each in HINTS if HINTS[each] in texts] == ([kind] if kind else [])
        desktop.wait_for(shown, what=f"the hint {kind}")

    def test_follows_the_panel(self):
        with X11Session("xfce4-panel", with_panel=False, notifications=None) as desktop:
            application = start(desktop)
            open_settings(desktop)
            self.wait_for_hint(desktop, application, "Panel")
            desktop.start_panel()
            self.wait_for_hint(desktop, application, None)
            desktop.stop_panel()
            self.wait_for_hint(desktop, application, "Panel")

    def test_names_the_extension_on_gnome(self):
        with X11Session(None, notifications=None) as desktop:
            application = start(desktop, {"XDG_CURRENT_DESKTOP": "GNOME"})
            open_settings(desktop)
            self.wait_for_hint(desktop, application, "Extension")

    def test_names_waybar_on_sway(self):
        with SwaySession(None, notifications=None) as desktop:
            application = start(desktop, {"XDG_CURRENT_DESKTOP": None})
            open_settings(desktop)
            self.wait_for_hint(desktop, application, "TrayBar")
            desktop.start_panel()
            self.wait_for_hint(desktop, application, None)


class AccessibilityTest(unittest.TestCase):
    """What a screen reader finds and does, over its own bus."""

    CONTROLS = {"check box", "combo box", "slider", "text", "push button", "page tab"}

    def setUp(self):
        self._session = X11Session("xfce4-panel", notifications=None)
        self.desktop = self._session.start()
        self.addCleanup(self._session.stop)
        self.tree = AccessibleTree(self.desktop)
        self.application = start(self.desktop, self.tree.environment, colorScheme="custom", desktopOverlayEnabled=True)

    def open(self, action="settings"):
        open_settings(self.desktop, action)
        self.desktop.wait_for(lambda: self.shown("page tab"), what="the window")
        self.desktop.wait_for(self.focused, what="the focus in the window")

    def shown(self, *roles):
        """The nodes of these roles that are shown with all that contains them."""
        return [node for node, _ in self.tree.nodes_with_ancestors("app_probe", only_shown=True) if node.role in roles]

    def find(self, role, name):
        return next((node for node in self.shown(role) if name in (node.name, *node.labels(), node.description())), None)

    def wait_for_stored(self, key, value):
        def stored():
            return json.loads(read(settings_file(self.desktop)) or "{}").get(key) == value
        self.desktop.wait_for(stored, what=f"{key} {value} in the settings file")

    def test_every_control_has_a_name_and_a_value(self):
        self.open()
        self.assertTrue(self.find("frame", ENGLISH.text("window.settings.title")))
        for tab, fewest in (("general", 16), ("watchlist", 12), ("about", 5)):
            self.find("page tab", ENGLISH.text(f"settings.tab.{tab}")).press()
            self.desktop.wait_for(lambda tab=tab: self.find("page tab list", ENGLISH.text(f"settings.tab.{tab}")), what=tab)
            controls = self.shown(*self.CONTROLS)
            self.assertGreaterEqual(len(controls), fewest, tab)
            for node in controls:
                self.assertTrue(node.name, (tab, node.role))
                if node.role == "combo box":
                    # Its name is its value; what it is for is its label or its description.
                    self.assertTrue(node.labels() or node.description(), (tab, node.name))
                elif node.role == "text":
                    self.assertTrue(node.text(), (tab, node.name))
                elif node.role == "slider":
                    self.assertEqual(node.number(), 100)

    def test_operates_controls(self):
        self.open()
        self.find("check box", ENGLISH.text("general.launch.atLogin")).press()
        self.wait_for_stored("launchAtLogin", True)
        self.assertTrue(self.find("check box", ENGLISH.text("general.launch.atLogin")).has_state("checked"))
        self.find("combo box", ENGLISH.text("general.display.menubarContent")).press()
        for key in ("Down", "Return"):
            self.desktop.press_key(key)
        self.wait_for_stored("menuBarContent", "icon")
        self.assertEqual(self.find("combo box", ENGLISH.text("general.display.menubarContent")).name,
                         ENGLISH.text("menubarContent.icon"))
        self.find("page tab", ENGLISH.text("settings.tab.watchlist")).press()
        self.find("push button", ENGLISH.text("a11y.delete", "Ethereum")).press()
        self.wait_for_stored("addedCoins", [coin("bitcoin")])

    def focused(self):
        return [node for node in self.shown(*self.CONTROLS) if node.has_state("focused")]

    def look(self, box):
        return self.desktop.picture().colours(*box)

    def settled_look(self, box):
        """The colors in that box once they have stopped changing."""
        looks = [self.look(box)]

        def settled():
            looks.append(self.look(box))
            return looks[-1] == looks[-2]
        self.desktop.wait_for(settled, what="a look that stays")
        return looks[-1]

    def test_tab_reaches_every_control_in_order_and_shows_where_it_is(self):
        self.open()
        key = ENGLISH.text
        order = [("check box", key("general.launch.atLogin")), ("check box", key("general.display.textColor")),
                 ("combo box", key("colorScheme.custom")), ("push button", key("general.priceColor.upColor")),
                 ("text", key("general.priceColor.upColor")), ("push button", key("general.priceColor.downColor")),
                 ("text", key("general.priceColor.downColor")), ("check box", key("general.display.textBackground")),
                 ("combo box", key("menubarContent.price")), ("combo box", "BTC - Bitcoin"),
                 ("check box", key("general.desktop.overlay")), ("combo box", key("desktop.textSize.normal")),
                 ("slider", key("desktop.opacity")), ("push button", key("desktop.adjust.start")), ("combo box", "USD"),
                 ("check box", key("general.notification.priceAlert")), ("combo box", "English"),
                 ("page tab", key("settings.tab.general"))]
        # Styles show where the focus is once a key has moved it.
        first = self.desktop.wait_for(self.focused, what="a focus")[0]
        self.desktop.press_key("Tab")
        before = self.desktop.wait_for(lambda: [n for n in self.focused() if n.key != first.key], what="a new focus")[0]
        seen = []
        for _ in order:
            box = before.extents()
            look = self.settled_look(box)
            self.desktop.press_key("Tab")
            now = self.desktop.wait_for(lambda old=before.key: [n for n in self.focused() if n.key != old], what="a new focus")[0]
            seen.append((now.role, now.name))
            # Where the page has not scrolled, what has lost the focus looks different.
            if before.extents() == box:
                self.desktop.wait_for(lambda box=box, look=look: self.look(box) != look,
                                      what=f"a look of {before.name} without the focus")
            before = now
        self.assertEqual(seen[seen.index(order[0]):] + seen[:seen.index(order[0])], order)


if __name__ == "__main__":
    unittest.main()
