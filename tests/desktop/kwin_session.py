"""KWin's Wayland compositor without a screen, with Plasma's panel."""

import os
import shutil
import struct
import sys

from desktop_base import DesktopSession, make_socket_directory
from message_bus import GLib
from session_process import SessionError
from sway_session import UNPRIVILEGED_ID
from virtual_pointer import WaylandInput, string

_PLASMA = {"QT_QUICK_BACKEND": "software", "LIBGL_ALWAYS_SOFTWARE": "1", "KDE_FULL_SESSION": "true", "KDE_SESSION_VERSION": "5",
           "XDG_CURRENT_DESKTOP": "KDE", "XDG_SESSION_TYPE": "wayland"}
_KEYS = {"Escape": 1, "Return": 28, "Left": 105, "Right": 106, "Up": 103, "Down": 108, "Tab": 15}


class FakeInput(WaylandInput):
    """A client of org_kde_kwin_fake_input."""

    interface = "org_kde_kwin_fake_input"
    version = 4

    def __init__(self, socket_path):
        super().__init__(socket_path)
        self._send(self._manager, 0, string("tests") + string("input of a desktop without devices"))
        self._round_trip()

    def execute(self, command, *numbers):
        """move X Y, button NUMBER STATE, key CODE STATE; the protocol's numbers."""
        if command == "move":
            self._send(self._manager, 9, struct.pack("=ii", *(256 * number for number in numbers)))
        else:
            self._send(self._manager, {"button": 2, "key": 10}[command], struct.pack("=II", *numbers))
        self._round_trip()


class KwinSession(DesktopSession):
    """For looking at it. The packaged program carries a capability that a container refuses: a copy of it has none."""

    def __init__(self, with_panel=True):
        super().__init__(None, UNPRIVILEGED_ID if os.getuid() == 0 else None)
        self._with_panel = with_panel
        self._input = None
        self.compositor = None

    def click(self, x, y, button=1):
        self.move_pointer(x, y)
        self._press(1, button)
        self._press(0, button)

    def drag(self, start, end, steps=10):
        self.move_pointer(*start)
        self._press(1)
        for step in range(1, steps + 1):
            self.move_pointer(*(a + (b - a) * step // steps for a, b in zip(start, end)))
        self._press(0)

    def move_pointer(self, x, y):
        self._tell_input("move", x, y)

    def press_key(self, key):
        for state in (1, 0):
            self._tell_input("key", _KEYS[key], state)

    def _press(self, state, button=1):
        self._tell_input("button", WaylandInput.BUTTONS[button], state)

    def _tell_input(self, *words):
        before = self._input.output().count("done")
        self._input.write_line(" ".join(map(str, words)))
        self.wait_for(lambda: self._input.output().count("done") > before, what=f"{words} in KWin")

    def _start_desktop(self):
        make_socket_directory()
        self.environment.update(_PLASMA)
        folder = self.make_directory(os.path.join(self.directory, "bin"))
        shutil.copy(shutil.which("kwin_wayland") or "kwin_wayland", folder)
        name = "tickwise-kwin"
        free = {"KWIN_SCREENSHOT_NO_PERMISSION_CHECKS": "1", "KWIN_WAYLAND_NO_PERMISSION_CHECKS": "1"}
        environment = {**free, "PATH": os.pathsep.join([folder, self.environment["PATH"]])}
        size = ["--width", str(self.width), "--height", str(self.height)]
        self.compositor = self.start_process("kwin_wayland", ["kwin_wayland", "--virtual", "--no-lockscreen", *size, "--socket", name,
                                                              "--xwayland"], environment)
        socket_path = os.path.join(self.environment["XDG_RUNTIME_DIR"], name)
        self.wait_for(lambda: self.compositor.is_running() and os.path.exists(socket_path), what="KWin's socket")
        self.environment.update({"WAYLAND_DISPLAY": name, "QT_QPA_PLATFORM": "wayland"})
        self.wait_for(lambda: self.bus.owner("org.kde.KWin"), what="KWin on the bus")
        # KWin lets only programs of its user do that.
        self._input = self.start_process("input", ["/usr/bin/python3", "-B", os.path.abspath(__file__), socket_path])
        self.wait_for(lambda: "ready" in self._input.output(), what="KWin's input")
        if self._with_panel:
            self.bus.allow_activation("org.kde.ActivityManager", self.environment)
            self.start_process("kded5", ["kded5"])
            self.start_process("plasmashell", ["plasmashell"])
            self._wait_for_item_host()
        self.environment.pop("QT_QPA_PLATFORM")

    def _shows_panel(self):
        return True

    def _capture(self, kind):
        if kind != "png":
            raise SessionError("KWin's pictures are converted to PNG only")
        reader, writer = os.pipe()
        with os.fdopen(reader, "rb") as pipe:
            options = {"native-resolution": GLib.Variant("b", True)}
            found = self.bus.call_with_file("org.kde.KWin", "/org/kde/KWin/ScreenShot2", "org.kde.KWin.ScreenShot2",
                                            "CaptureActiveScreen", "(a{sv}h)", (options, 0), writer)
            pixels = pipe.read()
        path = os.path.join(self.directory, "home", "screen")
        with open(path, "wb") as file:
            file.write(pixels)
        size = f"{found['width']}x{found['height']}"
        return self.tool(["convert", "-size", size, "-depth", "8", f"bgra:{path}", "-alpha", "off", "png:-"])


def main():
    fake_input = FakeInput(sys.argv[1])
    print("ready", flush=True)
    for line in sys.stdin:
        command, *numbers = line.split()
        fake_input.execute(command, *map(int, numbers))
        print("done", flush=True)


if __name__ == "__main__":
    main()
