#!/usr/bin/python3
"""What the whole application leaves for the desktop: the widget's snapshot, the login item, and updates."""

import json
import os
import time
import unittest

from application import IDENTIFIER, Application, Texts, coin, container, keep_picture, read
from desktop_session import GLib, X11Session
from panel_pixels import GREEN, wait_for_box

ENGLISH = Texts("en")
WIDGETS = "com.pelmo.tickwise.WidgetCenter"


class Signals:
    """Counts the signals of an interface that arrive on the session bus."""

    def __init__(self, desktop, interface, name):
        self.count = 0
        self._connection = desktop.bus.connect()
        self._connection.signal_subscribe(None, interface, name, None, None, 0, self._arrived)

    def wait_for(self, count, timeout=10):
        deadline = time.monotonic() + timeout
        while self.count < count and time.monotonic() < deadline:
            GLib.MainContext.default().iteration(False) or time.sleep(0.01)
        while GLib.MainContext.default().iteration(False):
            pass
        return self.count

    def close(self):
        self._connection.close_sync(None)

    def _arrived(self, *_):
        self.count += 1


class WidgetTest(unittest.TestCase):
    def make_session(self):
        return X11Session(None, window_manager=None, notifications=None)

    def wait_for_snapshot(self, desktop, accepts):
        def snapshot():
            text = read(os.path.join(container(desktop), "widget-snapshot.json"))
            value = json.loads(text) if text else None
            return value if value and accepts(value) else None
        return desktop.wait_for(snapshot, what="the snapshot")

    def test_snapshot_follows_prices_and_reloads_widgets(self):
        with self.make_session() as desktop:
            reloads = Signals(desktop, WIDGETS, "ReloadAllTimelines")
            application = Application(desktop, [("BTC", 100, 1.5), ("ETH", 50, -2)],
                                      addedCoins=[coin("bitcoin"), coin("ethereum")])
            written = self.wait_for_snapshot(desktop, lambda value: value["quotes"])
            self.assertEqual((written["language"], written["currency"], written["displayedCoinId"]), ("en", "USD", "bitcoin"))
            self.assertEqual(written["watchlist"], ["bitcoin", "ethereum"])
            self.assertEqual({key: quote["price"] for key, quote in written["quotes"].items()},
                             {"bitcoin": 100, "ethereum": 50})
            self.assertAlmostEqual(written["quotes"]["bitcoin"]["change24hPercent"], 1.5, 1)
            reloads.wait_for(1)
            application.set_price("BTC", 101)  # written, but no reason to redraw
            self.wait_for_snapshot(desktop, lambda value: value["quotes"]["bitcoin"]["price"] == 101)
            first = reloads.wait_for(1)
            self.assertIn(first, (1, 2))  # a slow start writes once before it has prices
            application.set_price("BTC", 102)
            self.wait_for_snapshot(desktop, lambda value: value["quotes"]["bitcoin"]["price"] == 102)
            self.assertEqual(reloads.wait_for(first + 1), first + 1)
            application.change_settings(displayedCoinId="ethereum", colorScheme="redUpGreenDown")
            swapped = self.wait_for_snapshot(desktop, lambda value: value["displayedCoinId"] == "ethereum")
            self.assertEqual((swapped["upColorHex"], swapped["downColorHex"]), ("#F6465D", "#2CBD84"))
            self.assertEqual(reloads.wait_for(first + 2), first + 2)
            reloads.close()

    def test_container_that_cannot_be_had(self):
        with self.make_session() as desktop:
            desktop.write_file(container(desktop), "a file where the folder would be")
            application = Application(desktop)
            application.wait_for_content(text="BTC 67,432")
            application.set_price("BTC", 50000)
            application.wait_for_content(text="BTC 50,000")


class SleepTest(unittest.TestCase):
    LOGIN = "org.freedesktop.login1"

    def announce(self, connection, starts):
        connection.emit_signal(None, "/org/freedesktop/login1", f"{self.LOGIN}.Manager", "PrepareForSleep",
                               GLib.Variant("(b)", (starts,)))

    def test_no_polls_from_sleep_to_wake(self):
        with X11Session(None, window_manager=None, notifications=None) as desktop:
            connection = desktop.system_bus.connect()
            connection.call_sync("org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus", "RequestName",
                                 GLib.Variant("(su)", (self.LOGIN, 0)), None, 0, 5000, None)
            application = Application(desktop, pollingInterval=0.1)
            application.wait_for_polls(3)
            self.announce(connection, True)
            polls = self.wait_for_rest(application)
            application.tell("poll")
            time.sleep(0.5)  # five periods
            self.assertEqual(len(application.events("polled")), polls)
            self.announce(connection, False)
            application.wait_for_polls(polls + 3)
            connection.close_sync(None)

    def wait_for_rest(self, application):
        """The number of polls once no more come; a slow machine may be still for ten periods."""
        counts = []

        def rests():
            time.sleep(0.5)
            counts.append(len(application.events("polled")))
            return counts[-3:] == [counts[-1]] * 3
        application.desktop.wait_for(rests, what="the end of the polls")
        return counts[-1]


class LoginItemTest(unittest.TestCase):
    def entry(self, desktop):
        return os.path.join(desktop.environment["XDG_CONFIG_HOME"], "autostart", f"{IDENTIFIER}.desktop")

    def test_entry_follows_the_setting(self):
        with X11Session(None, window_manager=None, notifications=None) as desktop:
            entry = self.entry(desktop)
            application = Application(desktop)
            application.wait_for_polls(1)
            for enabled in (False, True, False, True):
                application.change_settings(launchAtLogin=enabled)
                desktop.wait_for(lambda: os.path.exists(entry) == enabled, what=f"launch at login {enabled}")
            self.assertIn("app_probe", read(entry))
            desktop.tool(["desktop-file-validate", entry])

    def test_setting_is_applied_at_the_start(self):
        with X11Session(None, window_manager=None, notifications=None) as desktop:
            for enabled in (True, True, False, False):
                application = Application(desktop, launchAtLogin=enabled)
                application.wait_for_polls(1)
                self.assertEqual(os.path.exists(self.entry(desktop)), enabled)
                self.assertEqual(application.stop(), 0)

    def test_failure_is_one_log_line(self):
        with X11Session(None, window_manager=None, notifications=None) as desktop:
            desktop.write_file(os.path.join(desktop.environment["XDG_CONFIG_HOME"], "autostart"), "not a folder")
            application = Application(desktop, launchAtLogin=True)
            application.wait_for_content(text="BTC 67,432")
            self.assertEqual(len(application.log_lines("Failed to update login item: ")), 1)


class UpdateTest(unittest.TestCase):
    def start(self, desktop, update, env=None):
        application = Application(desktop, commands=["updater", update], env=env)
        application.wait_for_polls(1)
        return application

    def press(self, application, key):
        """Clicks a button of the one window, once the window manager has put it in its place."""
        places = []

        def stays():
            time.sleep(0.3)
            places.extend(window["buttons"][ENGLISH.text(key)] for window in application.windows())
            return len(places) > 2 and places[-3] == places[-2] == places[-1]
        application.desktop.wait_for(stays, what=f"the button {key} in its place")
        application.desktop.click(*places[-1])

    def install(self, application):
        """Asks for updates and accepts the one that is offered."""
        application.tell("checkForUpdates")
        offer = ENGLISH.text("update.available", "9.1", self.running_version())
        window = application.wait_for_window_text(offer)
        self.assertIn(ENGLISH.text("update.releaseNotes"), window["texts"])
        self.press(application, "update.install")

    def running_version(self):
        with open(os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "..", "CMakeLists.txt"),
                  encoding="utf-8") as file:
            return file.read().split("VERSION ", 2)[2].split()[0].rstrip(")")

    def test_signed_update_is_verified_and_offered(self):
        with X11Session("xfce4-panel", notifications=None) as desktop:
            application = self.start(desktop, "signedUpdate 9.1")
            application.tell("checkForUpdates")
            application.wait_for_window_text(ENGLISH.text("update.available", "9.1", self.running_version()))
            desktop.wait_for(lambda: desktop.windows(ENGLISH.text("update.window.title")), what="the window on the screen")
            wait_for_box(desktop, GREEN, lambda box: box[2] > 40)
            keep_picture(desktop, "update.png")
            self.install(application)
            application.wait_for_window_text(ENGLISH.text("update.ready"))
            desktop.press_key("Escape")
            desktop.wait_for(lambda: application.windows() == [], what="the window's end")
            application.set_price("BTC", 50000)
            application.wait_for_content(text="BTC 50,000")

    def test_package_that_nothing_opens_is_shown(self):
        with X11Session(None, notifications=None) as desktop:
            application = self.start(desktop, "signedUpdate 9.1")
            self.install(application)
            application.wait_for_window_text(ENGLISH.text("update.ready"))
            self.press(application, "update.install")
            cache = os.path.join(desktop.environment["XDG_CACHE_HOME"], IDENTIFIER, "updates")
            package = os.path.join(cache, "tickwise_amd64.deb")
            application.wait_for_window_text(ENGLISH.text("update.installManually", package))
            self.press(application, "update.close")
            desktop.wait_for(lambda: application.windows() == [], what="the window's end")
            self.assertTrue(os.path.exists(package), "the package is gone")

    def test_quits_while_a_package_is_opened(self):
        with X11Session(None, notifications=None) as desktop:
            # The handler runs as long as the application.
            handler = "while kill -0 $PPID 2>/dev/null; do sleep 0.05; done"
            for name, command in (("xdg-mime", "echo handler.desktop"), ("xdg-open", handler)):
                path = desktop.write_file(os.path.join("handler", name), f"#!/bin/sh\n{command}\n")
                os.chmod(path, 0o755)
            programs = os.path.dirname(path) + os.pathsep + desktop.environment["PATH"]
            application = self.start(desktop, "signedUpdate 9.1", {"PATH": programs})
            self.install(application)
            application.wait_for_window_text(ENGLISH.text("update.ready"))
            self.press(application, "update.install")
            application.wait_for_window_text(ENGLISH.text("update.installing"))
            self.assertEqual(application.stop(), 0)

    def check_refused(self, update, key):
        with X11Session(None, notifications=None) as desktop:
            application = self.start(desktop, update)
            self.install(application)
            application.wait_for_window_text(ENGLISH.text("update.failed", ENGLISH.text(key)))
            cache = os.path.join(desktop.environment["XDG_CACHE_HOME"], IDENTIFIER, "updates")
            self.assertEqual(sum((files for _, _, files in os.walk(cache)), []), [], "the refused package is still there")

    def test_unsigned_update_is_refused(self):
        with X11Session(None, notifications=None) as desktop:
            application = self.start(desktop, "unsignedUpdate 9.1")
            application.tell("checkForUpdates")
            application.wait_for_window_text(ENGLISH.text("update.failed", ENGLISH.text("update.error.noSignature")))

    def test_forged_update_is_refused(self):
        self.check_refused("forgedUpdate 9.1", "update.error.signature")

    def test_nothing_newer(self):
        with X11Session(None, notifications=None) as desktop:
            application = self.start(desktop, "signedUpdate 0.0.1")
            application.tell("checkForUpdates")
            application.wait_for_window_text(ENGLISH.text("update.upToDate", self.running_version()))
            self.press(application, "update.close")
            desktop.wait_for(lambda: application.windows() == [], what="the window's end")

    def test_server_away(self):
        with X11Session(None, notifications=None) as desktop:
            application = self.start(desktop, "fault files reset")
            application.tell("checkForUpdates")
            application.wait_for_window_text(ENGLISH.text("update.failed", ENGLISH.text("update.error.network")))


if __name__ == "__main__":
    unittest.main()
