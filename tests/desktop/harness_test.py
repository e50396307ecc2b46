#!/usr/bin/python3
"""The desktops of desktop_session are real, answer, and leave nothing behind."""

import os
import unittest

from desktop_session import NOTIFICATIONS, GLib, SessionError, SwaySession, X11Session, is_alive

PROBE = os.path.join(os.environ.get("TICKWISE_BUILD_DIR", "build/debug"), "tests", "DesktopProbe")
RED = (255, 0, 0)


def wait_for_red(desktop):
    """The middle of the red pixels in the panel, once it stays."""
    seen = []

    def settled():
        picture = desktop.picture()
        places = [(x, y) for y in range(32) for x in range(picture.width) if picture.at(x, y) == RED]
        seen.append(places[len(places) // 2] if places else None)
        return seen[-1] if seen[-2:] == [seen[-1]] * 2 else None
    return desktop.wait_for(settled, what="the item in the panel")


def shows_panel(picture):
    """Whether most of the upper edge differs from the middle, and has more than one colour."""
    panel = picture.colours(height=16)
    return len(panel) > 1 and panel.get(picture.at(640, 400), 0) < 1280 * 16 // 2


class DesktopChecks:
    """What holds on every desktop."""

    def make_session(self, **options):
        raise NotImplementedError

    expected_platform = None

    def check_panel_and_end(self):
        desktop = self.make_session().start()
        directory = desktop.directory
        processes = desktop.descendants()
        self.assertGreaterEqual(len(processes), 5)
        picture = desktop.picture()
        self.assertEqual((picture.width, picture.height), (desktop.width, desktop.height))
        desktop.wait_for(lambda: shows_panel(desktop.picture()), what="the panel")
        desktop.stop()
        self.assertEqual([pid for pid in processes if is_alive(pid)], [])
        self.assertFalse(os.path.exists(directory))

    def check_status_item(self):
        with self.make_session() as desktop:
            probe = desktop.run(PROBE)
            desktop.wait_for(lambda: self.expected_platform in probe.output(), what=self.expected_platform)
            item = desktop.wait_for_item()
            self.assertEqual(desktop.item_property("Status", item), "Active")
            self.assertEqual(desktop.item_property("ToolTip")[2], "Probe")
            entries = desktop.menu_layout()["children"]
            self.assertEqual([entry["properties"]["label"] for entry in entries], ["Leave"])
            desktop.activate(5, 5)
            desktop.wait_for(lambda: probe.output().count("activated 3") == 1, what="the activation")
            desktop.click(*wait_for_red(desktop))
            desktop.wait_for(lambda: probe.output().count("activated 3") == 2, what="the click")
            desktop.click_menu_item(entries[0]["id"])
            self.assertEqual(probe.wait(), 0)
            desktop.wait_for(lambda: desktop.registered_items() == [], what="the item's end")

    def check_panel_that_returns(self):
        with self.make_session() as desktop:
            desktop.stop_panel()
            desktop.start_panel()
            desktop.run(PROBE)
            desktop.wait_for_item()

    def check_notifications(self):
        with self.make_session(notifications="recording") as desktop:
            arguments = ("app", 0, "", "Summary", "Body", ["default", "Open"], {"urgency": GLib.Variant("y", 1)}, -1)
            desktop.bus.call(NOTIFICATIONS, "/org/freedesktop/Notifications", NOTIFICATIONS, "Notify", "(susssasa{sv}i)",
                             arguments)
            call = desktop.notifications.wait_for_count(1)[0]
            self.assertEqual((call["summary"], call["body"], call["hints"]), ("Summary", "Body", {"urgency": 1}))


class XfceTest(DesktopChecks, unittest.TestCase):
    expected_platform = "platform xcb\n"

    def make_session(self, **options):
        return X11Session("xfce4-panel", **options)

    def test_panel_is_there_and_everything_ends(self):
        self.check_panel_and_end()

    def test_status_item(self):
        self.check_status_item()

    def test_panel_that_returns(self):
        self.check_panel_that_returns()

    def test_recorded_notifications(self):
        self.check_notifications()


class SwayTest(DesktopChecks, unittest.TestCase):
    expected_platform = "platform wayland layer-shell\n"

    def make_session(self, **options):
        return SwaySession("waybar", **options)

    def test_panel_is_there_and_everything_ends(self):
        self.check_panel_and_end()

    def test_status_item(self):
        self.check_status_item()

    def test_panel_that_returns(self):
        self.check_panel_that_returns()

    def test_recorded_notifications(self):
        self.check_notifications()


class SwaybarTest(DesktopChecks, unittest.TestCase):
    def make_session(self, **options):
        return SwaySession("swaybar", **options)

    def test_panel_is_there_and_everything_ends(self):
        self.check_panel_and_end()


class DisplayTest(unittest.TestCase):
    def test_xwayland_when_the_user_says_so(self):
        with SwaySession(notifications=None) as desktop:
            probe = desktop.run(PROBE, env={"QT_QPA_PLATFORM": "xcb"})
            desktop.wait_for(lambda: probe.output() == "platform xcb\n", what="xcb")

    def test_no_display(self):
        with X11Session(panel=None, notifications=None) as desktop:
            probe = desktop.run(PROBE, env={"DISPLAY": None})
            self.assertEqual(probe.wait(), 1)
            self.assertEqual(probe.errors().count("\n"), 1)
            self.assertIn("there is no display", probe.errors())


class FailureTest(unittest.TestCase):
    def test_missing_program_is_an_error(self):
        with X11Session(panel=None, notifications=None) as desktop:
            with self.assertRaisesRegex(SessionError, "no program no-such-program"):
                desktop.run("no-such-program")

    def test_unknown_notification_service_is_an_error(self):
        with self.assertRaisesRegex(SessionError, "nothing-known"):
            X11Session(panel=None, notifications="nothing-known").start()

    def test_panel_that_dies_is_an_error(self):
        with X11Session() as desktop:
            os.kill(desktop.panel.pid, 9)
            with self.assertRaisesRegex(SessionError, "xfce4-panel.*ended while waiting for nothing"):
                desktop.wait_for(lambda: False, what="nothing")

    def test_process_that_is_left_over_is_an_error(self):
        desktop = X11Session(panel=None, notifications=None).start()
        parent = desktop.run("sh", ["-c", "sleep 600 & exit"])
        parent.wait()
        with self.assertRaisesRegex(SessionError, "left over.*sleep"):
            desktop.stop()
        desktop.wait_for(lambda: not desktop.descendants(), what="the end of what was left over")


if __name__ == "__main__":
    unittest.main()
