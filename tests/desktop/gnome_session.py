"""A GNOME Shell without a screen, with the extension that shows status items."""

import glob
import os
import re

from desktop_base import WATCHER, DesktopSession
from session_process import SessionError
from sway_session import UNPRIVILEGED_ID

_SHELL = "org.gnome.Shell"
_SETTINGS = """[org/gnome/shell]
enabled-extensions=['ubuntu-appindicators@ubuntu.com']
welcome-dialog-last-shown-version='99'
"""


class GnomeSession(DesktopSession):
    """For pictures: there is no input. The shell aborts without a system bus that knows of logins, so that it gets a mocked one."""

    def __init__(self, notifications=None):
        super().__init__(notifications, UNPRIVILEGED_ID if os.getuid() == 0 else None)
        self.shell = None

    def _start_desktop(self):
        display = "tickwise-gnome"
        self.environment.update({"XDG_CURRENT_DESKTOP": "GNOME", "XDG_SESSION_TYPE": "wayland", "GSETTINGS_BACKEND": "keyfile"})
        self.write_file(os.path.join(self.environment["XDG_CONFIG_HOME"], "glib-2.0/settings/keyfile"), _SETTINGS)
        self.start_process("logind", ["/usr/bin/python3", "-m", "dbusmock", "--system", "--template", "logind"])
        self.wait_for(lambda: self.system_bus.owner("org.freedesktop.login1"), what="the mocked logins")
        size = f"{self.width}x{self.height}"
        self.shell = self.start_process("gnome-shell", ["gnome-shell", "--headless", "--virtual-monitor", size, "--wayland",
                                                        "--unsafe-mode", "--wayland-display", display])
        self._start_notifications()
        self.wait_for(lambda: self.bus.owner(WATCHER), 30, "GNOME's item host")
        self.environment["WAYLAND_DISPLAY"] = display
        self._find_x_display()
        self.wait_for(self._hides_overview, what="the end of the overview")

    def _hides_overview(self):
        """The overview opens by itself some time after the start."""
        hide = "Main.layoutManager._startingUp ? null : (Main.overview.hide(), !Main.overview.visible)"
        return self.bus.call(_SHELL, "/org/gnome/Shell", _SHELL, "Eval", "(s)", (hide,)) == (True, "true")

    def _find_x_display(self):
        """GNOME starts its X server for the first program that asks for it; its log and its folder tell how to ask."""
        found = self.wait_for(lambda: re.search(r"public X11 display (:\d+)", self.shell.log()), what="the X display")
        (authority,) = glob.glob(os.path.join(self.environment["XDG_RUNTIME_DIR"], ".mutter-Xwaylandauth*"))
        self.environment.update({"DISPLAY": found.group(1), "XAUTHORITY": authority})

    def _capture(self, kind):
        if kind != "png":
            raise SessionError("GNOME Shell makes no pictures but PNG")
        path = os.path.join(self.directory, "home", "screen.png")
        self.bus.call(_SHELL, "/org/gnome/Shell/Screenshot", "org.gnome.Shell.Screenshot", "Screenshot", "(bbs)",
                      (False, False, path))
        with open(path, "rb") as file:
            return file.read()
