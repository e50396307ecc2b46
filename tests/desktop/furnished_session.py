"""XFCE as somebody uses it, for looking at: a wallpaper, windows, and a panel with more than our status item."""

import os

from x11_session import X11Session

_ROOT = os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "..")


class FurnishedSession(X11Session):
    panel_plugins = ("applicationsmenu", "tasklist", "separator", "pager", "systray", "clock")

    def __init__(self):
        super().__init__("xfce4-panel", "xfwm4", notifications=None)

    def _start_desktop(self):
        super()._start_desktop()
        self.start_process("xfdesktop", ["xfdesktop", "--disable-wm-check"])
        self.wait_for(self._has_wallpaper, what="the wallpaper")
        self.start_process("note", ["xmessage", "-title", "Read me", "-geometry", "+60+360", "-file",
                                    os.path.join(_ROOT, "README.md")])
        self.start_process("picture", ["display", "-title", "Picture", "-geometry", "+90+90", "-size", "280x190",
                                       "radial-gradient:gold-tomato"])
        for window in ("Read me", "Picture"):
            self.wait_for(lambda: self.windows(window), what=f"the window {window!r}")

    def _has_wallpaper(self):
        return len(self.picture().colours(0, 200, 400, 400)) > 3
