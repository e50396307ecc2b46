"""Notification services that a test's desktop can run."""

import json
import os

NOTIFICATIONS = "org.freedesktop.Notifications"
_HERE = os.path.dirname(os.path.abspath(__file__))


class DunstNotifications:
    """dunst, a real notification service."""

    def __init__(self, session):
        self._session = session
        configuration = session.write_file("dunstrc", "[global]\n    origin = bottom-right\n    notification_limit = 5\n")
        self.process = session.start_process("dunst", ["dunst", "-conf", configuration])

    def displayed_count(self):
        """How many notifications are on the screen."""
        return self._session.bus.property(NOTIFICATIONS, "/org/freedesktop/Notifications", "org.dunstproject.cmd0",
                                          "displayedLength")

    def invoke_first(self):
        """Does what a click with the action button on the newest notification does."""
        self._session.tool(["dunstctl", "action", "0"])


class RecordingNotifications:
    """The recording service of recording_notifications.py."""

    def __init__(self, session, arguments=()):
        self._session = session
        self._path = os.path.join(session.directory, "notifications.jsonl")
        self.process = session.run(os.path.join(_HERE, "recording_notifications.py"), [self._path, *arguments])

    def calls(self):
        """Every call so far, as dictionaries; see recording_notifications.py."""
        if not os.path.exists(self._path):
            return []
        with open(self._path, encoding="utf-8") as file:
            return [json.loads(line) for line in file if line.endswith("\n")]

    def notified(self):
        """The calls of Notify so far."""
        return [call for call in self.calls() if call["method"] == "Notify"]

    def wait_for_count(self, count, timeout=10):
        self._session.wait_for(lambda: len(self.notified()) >= count, timeout, f"{count} notifications")
        return self.notified()

    def command(self, *words):
        """"action ID KEY", "token ID TOKEN", "close ID REASON", "hang", "answer"."""
        self.process.write_line(" ".join(map(str, words)))
