"""Real desktops for tests: an X server or a Wayland compositor without a screen, with a real panel, a message bus and a
notification service, all private to one test.

    with X11Session(panel="xfce4-panel") as desktop:
        program = desktop.run("build/debug/tickwise")
        item = desktop.wait_for_item()
        desktop.activate(10, 10)
        desktop.screenshot("after-click.png")

Nothing here skips: a program that is missing or does not start raises SessionError with the logs of the session.
"""

from desktop_base import WATCHER, DesktopSession
from message_bus import GLib, MessageBus
from notification_services import NOTIFICATIONS, DunstNotifications, RecordingNotifications
from nested_sway_session import NestedSwaySession
from picture import Picture
from session_process import Process, SessionError, is_alive
from sway_session import SwaySession
from x11_session import X11Session

__all__ = ["NOTIFICATIONS", "WATCHER", "DesktopSession", "DunstNotifications", "GLib", "MessageBus", "NestedSwaySession", "Picture",
           "Process", "RecordingNotifications", "SessionError", "SwaySession", "X11Session", "is_alive"]
