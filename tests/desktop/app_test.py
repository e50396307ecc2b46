#!/usr/bin/python3
"""The whole application on real panels: what the user sees of prices, menu, settings and other copies."""

import os
import signal
import unittest

from application import (BUILD, IDENTIFIER, PROBE, Application, Texts, coin, keep_picture, read, settings_file,
                         wait_for_saved)
from desktop_session import SwaySession, X11Session
from panel_pixels import GREEN, NEAR_WHITE, RED, WHITE, box_of, coloured, middle, wait_for_box

ENGLISH = Texts("en")
DEMO = os.path.join(BUILD, "tickwise-demo")
NO_HOST = "No panel shows status items"
TWO_COINS = [coin("bitcoin"), coin("ethereum")]
TWO_PRICES = (("BTC", 67432.4, 1.5), ("ETH", 3188, -2))


class PanelChecks:
    """What holds on every panel that shows the whole text."""

    def make_session(self):
        raise NotImplementedError

    def make_bare_session(self):
        """One without a panel, until `start_panel`."""
        raise NotImplementedError

    def check_prices_and_colours(self):
        with self.make_session() as desktop:
            application = Application(desktop)
            application.wait_for_content(text="BTC 67,432", color="#2cbd84")
            wide = wait_for_box(desktop, GREEN, lambda box: box[2] > 40)
            application.set_price("BTC", 9.5, -3)
            application.wait_for_content(text="BTC 9.5", color="#f6465d")
            narrow = wait_for_box(desktop, RED, lambda box: box[2] > 20)
            self.assertLess(narrow[2], wide[2])
            desktop.wait_for(lambda: box_of(desktop.picture(), coloured(GREEN)) is None, what="the end of the green text")
            application.change_settings(colorScheme="redUpGreenDown")
            wait_for_box(desktop, GREEN, lambda box: abs(box[2] - narrow[2]) < 5)

    def check_looks(self):
        with self.make_session() as desktop:
            application = Application(desktop, showMenuBarBackground=True)
            pill = wait_for_box(desktop, GREEN, lambda box: box[2] > 50)
            self.assertGreater(pill[3], 14)
            self.assertTrue(box_of(desktop.picture(), coloured(WHITE)), "there is no text on the pill")
            application.change_settings(showMenuBarBackground=False, priceColorEnabled=False)
            desktop.wait_for(lambda: box_of(desktop.picture(), coloured(GREEN)) is None, what="the pill's end")
            neutral = wait_for_box(desktop, NEAR_WHITE, lambda box: box[2] > 40)
            application.change_settings(menuBarContent="icon")
            wait_for_box(desktop, NEAR_WHITE, lambda box: 8 <= box[2] < neutral[2] // 2)
            application.change_settings(menuBarContent="price", priceColorEnabled=True)
            wait_for_box(desktop, GREEN, lambda box: box[2] > 40)

    def check_logo_until_the_first_price(self):
        with self.make_session() as desktop:
            application = Application(desktop, commands=["fault exchanges hang"])
            wait_for_box(desktop, NEAR_WHITE, lambda box: 8 <= box[2] < 30)
            application.tell("heal exchanges")
            wait_for_box(desktop, GREEN, lambda box: box[2] > 40)

    def check_panel_that_comes_late(self):
        with self.make_bare_session() as desktop:
            application = Application(desktop)
            desktop.wait_for(lambda: application.log_lines(NO_HOST), what="the log line")
            application.set_price("BTC", 50000, 1)
            application.wait_for_content(text="BTC 50,000")
            desktop.start_panel()
            wait_for_box(desktop, GREEN, lambda box: box[2] > 40)
            self.assertEqual(len(application.log_lines(NO_HOST)), 1)

    def check_panel_that_returns(self):
        with self.make_session() as desktop:
            application = Application(desktop)
            wide = wait_for_box(desktop, GREEN, lambda box: box[2] > 40)
            desktop.stop_panel()
            application.set_price("BTC", 9.5, 1)
            desktop.start_panel()
            wait_for_box(desktop, GREEN, lambda box: 20 < box[2] < wide[2])

    def check_tooltip_names_price_and_trouble(self):
        with self.make_session() as desktop:
            application = Application(desktop)
            shown = application.wait_for_content(text="BTC 67,432", toolTipTitle="Bitcoin")
            *figures, fetched = shown["toolTipBody"].splitlines()
            self.assertEqual(figures, [ENGLISH.text("tooltip.exactPrice", "67,432.4", "USD"),
                                       ENGLISH.text("tooltip.change24h", "+1.50%")])
            self.assertRegex(fetched, "^" + ENGLISH.text("tooltip.fetchedAt", r"\d+:\d\d( [AP]M)?") + "$")
            application.tell("fault exchanges reset")
            self.assertEqual(application.poll(), ENGLISH.text("failure.unreachable"))
            trouble = [ENGLISH.text("tooltip.failure.title"), ENGLISH.text("failure.unreachable")]
            desktop.wait_for(lambda: application.content()["toolTipBody"].splitlines()[-2:] == trouble, what="the reason")
            self.assertEqual(application.content()["text"], "BTC 67,432", "the last good price is gone")
            self.check_shown_tooltip(desktop, application.content())
            application.tell("heal exchanges")
            self.assertEqual(application.set_price("BTC", 50000), "")
            self.assertNotIn(trouble[0], application.content()["toolTipBody"])

    def check_shown_tooltip(self, desktop, content):
        raise NotImplementedError


class XfceTest(PanelChecks, unittest.TestCase):
    def make_session(self):
        return X11Session("xfce4-panel", notifications=None)

    def make_bare_session(self):
        return X11Session("xfce4-panel", notifications=None, with_panel=False)

    def check_shown_tooltip(self, desktop, content):
        """The window in the tray has a tooltip of its own."""
        before = len(desktop.windows("app_probe"))
        desktop.move_pointer(*middle(wait_for_box(desktop, GREEN)))
        desktop.wait_for(lambda: len(desktop.windows("app_probe")) > before, what="the tooltip")

    def test_prices_and_colours(self):
        self.check_prices_and_colours()

    def test_looks(self):
        self.check_looks()

    def test_logo_until_the_first_price(self):
        self.check_logo_until_the_first_price()

    def test_panel_that_comes_late(self):
        self.check_panel_that_comes_late()

    def test_panel_that_returns(self):
        self.check_panel_that_returns()

    def test_tooltip_names_price_and_trouble(self):
        self.check_tooltip_names_price_and_trouble()

    def open_menu(self, desktop):
        """Right-clicks the item; returns the menu's window."""
        item = middle(wait_for_box(desktop, GREEN, lambda box: box[2] > 40))
        return desktop.open_popup("app_probe", lambda: desktop.click(*item, button=3))

    def test_menu_changes_the_coin(self):
        with self.make_session() as desktop:
            application = Application(desktop, TWO_PRICES, addedCoins=TWO_COINS)
            menu = self.open_menu(desktop)
            self.assertGreater(desktop.window_geometry(menu)[3], 50)
            for key in ("Down", "Right", "Down", "Return"):
                desktop.press_key(key)
            application.wait_for_content(text="ETH 3,188")
            wait_for_box(desktop, RED, lambda box: box[2] > 30)
            wait_for_saved(desktop, '"displayedCoinId":"ethereum"')

    def test_settings_window(self):
        """The desktop's action opens it; its delete button takes a coin out; Escape closes it and keeps its frame."""
        with self.make_session() as desktop:
            application = Application(desktop, TWO_PRICES, addedCoins=TWO_COINS)
            wait_for_box(desktop, GREEN, lambda box: box[2] > 40)
            before = set(desktop.windows("app_probe"))
            desktop.bus.call(IDENTIFIER, "/" + IDENTIFIER.replace(".", "/"), "org.freedesktop.Application",
                             "ActivateAction", "(sava{sv})", ("watchlist", [], {}))
            window = desktop.wait_for(lambda: set(desktop.windows("app_probe")) - before, what="the window").pop()
            desktop.wait_for(lambda: desktop.window_geometry(window)[1] > 100, what="the window in the middle")
            left, top, width, height = desktop.window_geometry(window)
            self.assertEqual((width, height), (786, 500))
            keep_picture(desktop, "settings-watchlist.png")
            desktop.click(left + width - 42, top + 102)
            application.wait_for_content(text="ETH 3,188")
            wait_for_saved(desktop, '"displayedCoinId":"ethereum"')
            desktop.press_key("Escape")
            frame = os.path.join(os.path.dirname(settings_file(desktop)), "SettingsWindow.json")
            desktop.wait_for(lambda: (read(frame) or "").endswith(",786,500]"), what="the stored frame")
            desktop.wait_for(lambda: set(desktop.windows("app_probe")) == before, what="the window's end")

    def test_menu_quits(self):
        with self.make_session() as desktop:
            application = Application(desktop)
            self.open_menu(desktop)
            for key in ("Up", "Return"):
                desktop.press_key(key)
            self.assertEqual(application.process.wait(), 0)

    def test_left_click_activates_also_after_the_menu(self):
        with self.make_session() as desktop:
            application = Application(desktop)
            self.open_menu(desktop)
            desktop.press_key("Escape")
            place = middle(wait_for_box(desktop, GREEN, lambda box: box[2] > 40))
            desktop.wait_for(lambda: len(desktop.windows("app_probe")) == 1, what="the menu's end")
            desktop.click(*place)
            application.wait_for_event("activated", 1)

    def test_without_session_bus(self):
        """The tray is found through X11, compact because nobody says who it is."""
        with self.make_session() as desktop:
            nowhere = f"unix:path={desktop.directory}/nowhere"
            application = Application(desktop, env={"DBUS_SESSION_BUS_ADDRESS": nowhere})
            wait_for_box(desktop, GREEN)
            application.set_price("BTC", 9.5, -3)
            wait_for_box(desktop, RED)
            again = Application(desktop, env={"DBUS_SESSION_BUS_ADDRESS": nowhere})
            self.assertEqual(again.process.wait(), 0, "the second copy did not see the first")
            self.assertTrue(application.process.is_running())
            self.assertEqual(application.stop(), 0)


class WaybarTest(PanelChecks, unittest.TestCase):
    def make_session(self):
        return SwaySession("waybar", notifications=None)

    def make_bare_session(self):
        return SwaySession(None, notifications=None)

    def check_shown_tooltip(self, desktop, content):
        item = desktop.wait_for_item()
        shown = (content["toolTipTitle"], content["toolTipBody"])
        desktop.wait_for(lambda: tuple(desktop.item_property("ToolTip", item)[2:]) == shown, what=f"the tooltip {shown}")

    def test_prices_and_colours(self):
        self.check_prices_and_colours()

    def test_looks(self):
        self.check_looks()

    def test_logo_until_the_first_price(self):
        self.check_logo_until_the_first_price()

    def test_panel_that_comes_late(self):
        self.check_panel_that_comes_late()

    def test_panel_that_returns(self):
        self.check_panel_that_returns()

    def test_tooltip_names_price_and_trouble(self):
        self.check_tooltip_names_price_and_trouble()

    def test_item_tells_its_title(self):
        with self.make_session() as desktop:
            application = Application(desktop)
            desktop.wait_for_item()
            desktop.wait_for(lambda: desktop.item_property("Title") == "BTC 67,432", what="the title")
            application.set_price("BTC", 50000)
            desktop.wait_for(lambda: desktop.item_property("Title") == "BTC 50,000", what="the new title")

    def test_menu(self):
        with self.make_session() as desktop:
            watchlist = [*TWO_COINS, coin("unheard-of")]
            application = Application(desktop, TWO_PRICES, addedCoins=watchlist)
            desktop.wait_for_item()
            change, *others = desktop.menu_layout()["children"]
            keys = ("menu.setting", "menu.about", "menu.checkForUpdates", "menu.quit")
            labels = [entry["properties"].get("label") for entry in others]
            self.assertEqual([label for label in labels if label], [ENGLISH.text(key) for key in keys])
            self.assertEqual(change["properties"]["label"], ENGLISH.text("menu.change"))
            coins = [(entry["properties"]["label"], entry["properties"]["toggle-state"]) for entry in change["children"]]
            self.assertEqual(coins, [("BTC - Bitcoin", 1), ("ETH - Ethereum", 0)])
            desktop.click_menu_item(change["children"][1]["id"])
            application.wait_for_content(text="ETH 3,188")
            wait_for_box(desktop, RED, lambda box: box[2] > 30)
            wait_for_saved(desktop, '"displayedCoinId":"ethereum"')
            desktop.click_menu_item(desktop.menu_layout()["children"][-1]["id"])
            self.assertEqual(application.process.wait(), 0)

    def test_menu_speaks_the_chosen_language(self):
        with self.make_session() as desktop:
            application = Application(desktop)
            desktop.wait_for_item()
            for language in ("zh-Hans", "zh-Hant"):
                application.change_settings(language=language)
                quit_text = Texts(language).text("menu.quit")
                desktop.wait_for(lambda: desktop.menu_layout()["children"][-1]["properties"]["label"] == quit_text,
                                 what=quit_text)

    def test_click_activates(self):
        with self.make_session() as desktop:
            application = Application(desktop)
            desktop.click(*middle(wait_for_box(desktop, GREEN, lambda box: box[2] > 40)))
            application.wait_for_event("activated", 1)


class LifeTest(unittest.TestCase):
    def make_session(self):
        return X11Session(None, notifications=None)

    def test_signals_end_it(self):
        with self.make_session() as desktop:
            for number in (signal.SIGTERM, signal.SIGINT, signal.SIGHUP):
                application = Application(desktop)
                application.wait_for_polls(1)
                self.assertEqual(desktop.stop_process(application.process, number), 0, number)

    def test_second_copy_quits_and_shows_the_first(self):
        with self.make_session() as desktop:
            first = Application(desktop)
            first.wait_for_polls(1)
            second = Application(desktop, env={"XDG_ACTIVATION_TOKEN": "token-1"}, stored=True)
            self.assertEqual(second.process.wait(), 0)
            self.assertEqual(second.events("content"), [])
            self.assertEqual(first.wait_for_event("activated", 1), "token-1")
            self.assertEqual(first.set_price("BTC", 50000), "")
            first.wait_for_content(text="BTC 50,000")
            # What a launcher does when it starts the application by its desktop file.
            desktop.bus.call(IDENTIFIER, "/" + IDENTIFIER.replace(".", "/"), "org.freedesktop.Application", "Activate",
                             "(a{sv})", ({},))
            self.assertEqual(first.wait_for_event("activated", 2), "")

    def test_addresses_open_the_first_copy(self):
        with self.make_session() as desktop:
            first = Application(desktop, arguments=["TICKWISE://popover"])
            first.wait_for_polls(1)
            self.assertEqual(first.events("activated"), [])
            self.assertEqual(first.stop(), 0)
            first = Application(desktop, arguments=["tickwise://popover"], env={"XDG_ACTIVATION_TOKEN": "token-1"})
            self.assertEqual(first.wait_for_event("activated", 1), "token-1")
            second = Application(desktop, arguments=["tickwise://popover"], stored=True)
            self.assertEqual(second.process.wait(), 0)
            self.assertEqual(first.wait_for_event("activated", 2), "")

    def test_actions_of_the_desktop_file(self):
        with self.make_session() as desktop:
            application = Application(desktop)
            application.wait_for_polls(1)
            for count, (action, tab) in enumerate((("watchlist", "watchlist"), ("settings", "general")), start=1):
                desktop.bus.call(IDENTIFIER, "/" + IDENTIFIER.replace(".", "/"), "org.freedesktop.Application",
                                 "ActivateAction", "(sava{sv})", (action, [], {}))
                self.assertEqual(application.wait_for_event("settingsWindow", count), tab)
            desktop.bus.call(IDENTIFIER, "/" + IDENTIFIER.replace(".", "/"), "org.freedesktop.Application",
                             "ActivateAction", "(sava{sv})", ("quit", [], {}))
            self.assertEqual(application.process.wait(), 0)

    def test_first_copy_after_one_that_was_killed(self):
        with self.make_session() as desktop:
            first = Application(desktop)
            first.wait_for_polls(1)
            desktop.stop_process(first.process, signal.SIGKILL)
            Application(desktop).wait_for_polls(1)

    def start_damaged(self, desktop, document):
        path = desktop.write_file(settings_file(desktop), document)
        application = Application(desktop, TWO_PRICES, stored=True)
        application.wait_for_content(text="BTC 67,432")
        self.assertEqual(read(path), document, "the damaged file was changed")
        return application

    def test_damaged_settings_file(self):
        with self.make_session() as desktop:
            document = '{"language": \x01 nothing of ours'
            application = self.start_damaged(desktop, document)
            self.assertEqual(len(application.log_lines("Failed to decode stored settings")), 1)
            application.change_settings(displayedCoinId="ethereum", addedCoins=TWO_COINS)
            application.wait_for_content(text="ETH 3,188")
            wait_for_saved(desktop, "ethereum")
            self.assertEqual(len(application.log_lines("Failed to decode stored settings")), 1)
            self.assertEqual(read(settings_file(desktop) + ".broken"), document)

    def test_settings_survive_a_restart(self):
        with self.make_session() as desktop:
            application = Application(desktop, TWO_PRICES, addedCoins=TWO_COINS, displayedCoinId="ethereum")
            application.wait_for_content(text="ETH 3,188")
            self.assertEqual(application.stop(), 0)
            Application(desktop, TWO_PRICES, stored=True).wait_for_content(text="ETH 3,188")

    def test_failover_keeps_the_prices_coming(self):
        with self.make_session() as desktop:
            application = Application(desktop)
            application.wait_for_content(text="BTC 67,432")
            for price, fault in enumerate(("binanceMain reset", "binanceData garbage", "okx status-429"), start=1001):
                application.tell("fault", fault)
                self.assertEqual(application.set_price("BTC", price), "")
                application.wait_for_content(text=f"BTC {price:,}")
            application.tell("price BTC 2000")
            application.tell("fault bybit missing:BTC")
            application.poll()
            self.assertEqual(application.content()["text"], "BTC 1,003")

    def test_log_lines_name_their_component(self):
        with self.make_session() as desktop:
            application = Application(desktop, commands=["fault binanceMain reset"])
            application.wait_for_polls(1)
            self.assertTrue(application.log_lines("binance gives no prices"))
            for line in application.process.errors().splitlines():
                self.assertRegex(line, r"^com\.pelmo\.tickwise\.[A-Za-z]+: (info|error): ")

    def test_demo_moves_by_itself_and_touches_nothing_of_the_users(self):
        with self.make_session() as desktop:
            demo = desktop.run(DEMO)
            desktop.wait_for(lambda: len(set(demo.output().splitlines())) >= 3, 20, "three prices")
            self.assertRegex(demo.output().splitlines()[-1], r"^BTC [0-9,]+ [\u25b2\u25bc]$")
            self.assertEqual(desktop.stop_process(demo), 0)
            folders = os.listdir(desktop.environment["XDG_CONFIG_HOME"])
            self.assertIn("com.pelmo.tickwise.demo", folders)
            self.assertNotIn("com.pelmo.tickwise", folders)

    def test_no_display(self):
        with self.make_session() as desktop:
            process = desktop.run(PROBE, env={"DISPLAY": None})
            self.assertEqual(process.wait(), 1)
            self.assertEqual(process.errors().count("\n"), 1)


if __name__ == "__main__":
    unittest.main()
