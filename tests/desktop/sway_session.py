"""A desktop on a Wayland compositor without a screen."""

import json
import os

from desktop_base import WATCHER, DesktopSession, make_socket_directory
from picture import Picture
from session_process import SessionError
from virtual_pointer import VirtualPointer

UNPRIVILEGED_ID = 65534
SEAT_POINTER = 1  # the seat's capability

_SWAY = """{outputs}
xwayland enable
default_border normal
focus_follows_mouse no
{lines}
exec printf '%s %s %s\\n' "$SWAYSOCK" "$WAYLAND_DISPLAY" "$DISPLAY" > {ready}
"""

_SWAYBAR = """bar {
    position top
    tray_output *
    status_command while echo; do sleep 3600; done
}
"""

_WAYBAR = {
    "layer": "top",
    "position": "top",
    "height": 30,
    "modules-left": ["sway/workspaces"],
    "modules-right": ["tray"],
    "tray": {"icon-size": 22, "spacing": 8},
}

_WAYBAR_STYLE = """* { font-family: sans-serif; font-size: 13px; min-height: 0; }
window#waybar { background: #2b303b; color: #ffffff; }
#workspaces button { background: #64727d; color: #ffffff; padding: 0 5px; }
"""


class SwaySession(DesktopSession):
    """A headless sway with a bar: "waybar", "swaybar" or None. It refuses to run as root, so that a test that does run as
    root gives the whole session, programs included, to an unprivileged user."""

    def __init__(self, bar="waybar", notifications="dunst", width=1280, height=800):
        super().__init__(notifications, UNPRIVILEGED_ID if os.getuid() == 0 else None)
        self.width = width
        self.height = height
        self._bar_kind = bar
        self._pointer = None
        self.compositor = None
        self.panel = None

    def start_panel(self):
        """Starts waybar again after `stop_panel`."""
        configuration = self.write_file("waybar/config", json.dumps(_WAYBAR))
        style = self.write_file("waybar/style.css", _WAYBAR_STYLE)
        self.panel = self.start_process("waybar", ["waybar", "-c", configuration, "-s", style], {"GDK_BACKEND": "wayland"})
        self._wait_for_item_host()

    def stop_panel(self):
        self.stop_process(self.panel)
        self.panel = None
        self.wait_for(lambda: not self.bus.owner(WATCHER), what="the end of the bar's item host")

    def message(self, *words):
        """Sends a command or, with "-t", a question to sway; returns its JSON answer."""
        return json.loads(self.tool(["swaymsg", "-r", *words]))

    def add_output(self, *settings):
        """Adds an output at the right of the others, with sway's settings for it."""
        before = {output["name"] for output in self.outputs()}
        self.message("create_output")
        self.wait_for(lambda: len(self.outputs()) > len(before), what="another output")
        (name,) = {output["name"] for output in self.outputs()} - before
        for setting in settings:
            self.message(f"output {name} {setting}")
        self.measure_outputs()

    def outputs(self):
        """The outputs as sway describes them."""
        return self.message("-t", "get_outputs")

    def measure_outputs(self):
        """Tells the pointer where the outputs are."""
        places = [output["rect"] for output in self.outputs()]
        self._pointer.set_extent(max(each["x"] + each["width"] for each in places),
                                 max(each["y"] + each["height"] for each in places))

    def windows(self, name):
        """The windows of the layout whose title or application id contains the text, as sway describes them."""
        found = []
        pending = [self.message("-t", "get_tree")]
        while pending:
            node = pending.pop()
            pending += node["nodes"] + node["floating_nodes"]
            if node.get("pid") and name in f"{node.get('name')} {node.get('app_id')}":
                found.append(node)
        return found

    def unplug_pointer(self):
        self._pointer.close()
        self._pointer = None
        self.wait_for(lambda: not self._has_pointer(), what="the seat without a pointer")

    def plug_pointer(self):
        socket_path = os.path.join(self.environment["XDG_RUNTIME_DIR"], self.environment["WAYLAND_DISPLAY"])
        self._pointer = VirtualPointer(socket_path, self.width, self.height)

    def _has_pointer(self):
        return any(seat["capabilities"] & SEAT_POINTER for seat in self.message("-t", "get_seats"))

    def move_pointer(self, x, y):
        self._pointer.move(x, y)

    def click(self, x, y, button=1):
        self._pointer.move(x, y)
        self._pointer.press(button)
        self._pointer.release(button)

    def drag(self, start, end, steps=10):
        """With the left button from one place to the other."""
        self._pointer.move(*start)
        self._pointer.press(1)
        for step in range(1, steps + 1):
            self._pointer.move(*(a + (b - a) * step // steps for a, b in zip(start, end)))
        self._pointer.release(1)

    def type_text(self, text):
        self.tool(["wtype", text])

    def press_key(self, key):
        *modifiers, name = key.split("+")
        self.tool(["wtype", *sum((["-M", modifier] for modifier in modifiers), []), "-k", name])

    def picture_of(self, output):
        """What that output shows, in its own pixels."""
        return Picture(self.tool(["grim", "-o", output, "-t", "ppm", "-"]))

    def _capture(self, kind):
        return self.tool(["grim", "-t", kind, "-"])

    def _start_desktop(self):
        make_socket_directory()
        self.environment["XDG_CURRENT_DESKTOP"] = "sway"
        self.environment["XDG_SESSION_TYPE"] = "wayland"
        self._start_compositor()
        self.plug_pointer()
        # A seat has the keyboard only while a client holds one.
        self.start_process("wtype", ["wtype", "-s", "100000000"])
        self._start_notifications()
        if self._bar_kind == "waybar":
            self.start_panel()
        elif self._bar_kind == "swaybar":
            self._wait_for_item_host()

    def _start_compositor(self):
        headless = {"WLR_BACKENDS": "headless", "WLR_LIBINPUT_NO_DEVICES": "1"}
        bar = _SWAYBAR if self._bar_kind == "swaybar" else ""
        outputs = f"output HEADLESS-1 mode {self.width}x{self.height}"
        self.compositor, found = self.start_sway("sway", outputs, bar, headless)
        self.environment.update(found)

    def start_sway(self, name, outputs, lines, environment):
        """Starts a sway with these lines in its configuration. Returns its process and what programs need to reach it."""
        ready = os.path.join(self.directory, f"{name}.ready")
        configuration = self.write_file(f"{name}.conf", _SWAY.format(outputs=outputs, lines=lines, ready=ready))
        process = self.start_process(name, ["sway", "-c", configuration], {"WLR_RENDERER": "pixman", **environment})
        words = self.wait_for(lambda: _read_ready(process, ready), what=name)
        return process, dict(zip(("SWAYSOCK", "WAYLAND_DISPLAY", "DISPLAY"), words))

    def _stop_desktop(self):
        if self._pointer is not None:
            self._pointer.close()
            self._pointer = None


def _read_ready(process, path):
    if not process.is_running():
        raise SessionError(f"sway did not start\n{process.log()}")
    if not os.path.exists(path):
        return None
    with open(path, encoding="utf-8") as file:
        words = file.read().split()
    return words if len(words) == 3 else None
