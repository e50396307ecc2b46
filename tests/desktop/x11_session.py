"""A desktop on an X server without a screen."""

import os
import re
import subprocess

from desktop_base import WATCHER, DesktopSession, make_socket_directory
from session_process import SessionError

_MATE_APPLETS = ("NotificationAreaApplet", "ClockApplet", "Wncklet")

_PLASMA_ENVIRONMENT = {"QT_QUICK_BACKEND": "software", "LIBGL_ALWAYS_SOFTWARE": "1", "KDE_FULL_SESSION": "true",
                       "KDE_SESSION_VERSION": "5", "XDG_CURRENT_DESKTOP": "KDE"}

_XFCE_PANEL = """<?xml version="1.0" encoding="UTF-8"?>
<channel name="xfce4-panel" version="1.0">
  <property name="configver" type="int" value="2"/>
  <property name="panels" type="array">
    <value type="int" value="1"/>
    <property name="dark-mode" type="bool" value="{dark}"/>
    <property name="panel-1" type="empty">
      <property name="position" type="string" value="p=6;x=0;y=0"/>
      <property name="length" type="uint" value="100"/>
      <property name="position-locked" type="bool" value="true"/>
      <property name="size" type="uint" value="30"/>
      <property name="plugin-ids" type="array">
{numbers}
      </property>
    </property>
  </property>
  <property name="plugins" type="empty">
{plugins}
  </property>
</channel>
"""

_XFCE_PLUGIN_SETTINGS = {
    "separator": """<property name="expand" type="bool" value="true"/><property name="style" type="uint" value="0"/>""",
    "systray": """<property name="square-icons" type="bool" value="false"/>""",
}

_XFCE_DESKTOP = """<?xml version="1.0" encoding="UTF-8"?>
<channel name="xfce4-desktop" version="1.0">
  <property name="desktop-icons" type="empty">
    <property name="style" type="int" value="0"/>
  </property>
  <property name="backdrop" type="empty">
    <property name="screen0" type="empty">
      <property name="monitorscreen" type="empty">
        <property name="workspace0" type="empty">
          <property name="image-style" type="int" value="5"/>
          <property name="last-image" type="string" value="{picture}"/>
        </property>
      </property>
    </property>
  </property>
</channel>
"""

_LXQT_PANEL = """[General]
__userfile__=true
panels=panel1

[panel1]
alignment=-1
desktop=0
iconSize=22
lineCount=1
panelSize=32
plugins=taskbar, spacer, statusnotifier
position=Top
width=100
width-percent=true

[spacer]
alignment=Left
expandable=true
type=spacer

[statusnotifier]
alignment=Right
type=statusnotifier

[taskbar]
alignment=Left
type=taskbar
"""


class X11Session(DesktopSession):
    """Xvfb with a window manager and a panel.

    panel: "xfce4-panel", "mate-panel", "lxqt-panel", "plasma" or None.
    window_manager: "openbox", "xfwm4", "kwin_x11" or None.
    notifications: "dunst", "recording" or None.
    with_panel: False leaves the panel to `start_panel`.
    dark_panel: whether XFCE's panel is dark.
    wallpaper: whether XFCE's desktop window is there; a path names its picture.
    """

    panel_plugins = ("tasklist", "separator", "systray")  # of XFCE's panel, in their order

    def __init__(self, panel="xfce4-panel", window_manager="openbox", notifications="dunst", width=1280, height=800,
                 with_panel=True, dark_panel=True, wallpaper=False):
        super().__init__(notifications)
        self.width = width
        self.height = height
        self._panel_kind = panel
        self._with_panel = with_panel
        self._dark_panel = dark_panel
        self._wallpaper = wallpaper
        self._window_manager_kind = window_manager
        self.server = None
        self.window_manager = None
        self.panel = None

    def start_panel(self):
        """Starts the panel, also again after `stop_panel`."""
        if self._panel_kind == "xfce4-panel":
            self._configure_xfce()
        elif self._panel_kind == "mate-panel":
            self._configure_mate()
        elif self._panel_kind == "lxqt-panel":
            self._configure_lxqt()
        elif self._panel_kind == "plasma":
            self.bus.allow_activation("org.kde.ActivityManager", self.environment)
            self.start_process("kded5", ["kded5"], _PLASMA_ENVIRONMENT)
        commands = {"xfce4-panel": ["xfce4-panel", "--disable-wm-check"], "mate-panel": ["mate-panel"],
                    "lxqt-panel": ["lxqt-panel"], "plasma": ["plasmashell"]}
        environment = _PLASMA_ENVIRONMENT if self._panel_kind == "plasma" else None
        self.panel = self.start_process(self._panel_kind, commands[self._panel_kind], environment)
        self._wait_for_item_host()

    def stop_panel(self):
        """Ends the panel and waits until nobody hosts status items."""
        self.stop_process(self.panel)
        self.panel = None
        self.wait_for(lambda: not self.bus.owner(WATCHER), what="the end of the panel's item host")

    def windows(self, name):
        """The ids of the visible windows whose title or class matches the pattern."""
        command = ["xdotool", "search", "--onlyvisible", "--any", "--name", "--class", "--classname", name]
        done = subprocess.run(command, env=self._merged(None), capture_output=True, check=False, timeout=20)
        return [int(line) for line in done.stdout.split()]

    def open_popup(self, program, action):
        """Does what opens a popup of the program. Returns its window once it is drawn: before that it may lack the keyboard."""
        windows = set(self.windows(program))
        before = self.picture()
        action()
        window = self.wait_for(lambda: set(self.windows(program)) - windows, what=f"a popup of {program}").pop()
        place = self.window_geometry(window)
        self.wait_for(lambda: self.picture().colours(*place) != before.colours(*place), what=f"a drawn popup of {program}")
        return window

    def window_geometry(self, window):
        """x, y, width and height on the screen."""
        # xdotool counts a window manager's frame twice.
        text = self.tool(["xwininfo", "-id", str(window)]).decode()
        fields = ("Absolute upper-left X", "Absolute upper-left Y", "Width", "Height")
        return tuple(int(re.search(rf"{field}: +(-?\d+)", text).group(1)) for field in fields)

    def move_pointer(self, x, y):
        self.tool(["xdotool", "mousemove", str(x), str(y)])

    def click(self, x, y, button=1):
        self.tool(["xdotool", "mousemove", str(x), str(y), "click", str(button)])

    def drag(self, x, y, way):
        """Presses the pointer at a point and moves it through others; `drop` ends it."""
        self.tool(["xdotool", "mousemove", str(x), str(y), "mousedown", "1"])
        for step in way:
            self.move_pointer(*step)

    def drop(self):
        self.tool(["xdotool", "mouseup", "1"])

    def type_text(self, text):
        self.tool(["xdotool", "type", "--delay", "5", text])

    def press_key(self, key):
        self.tool(["xdotool", "key", key])

    def _capture(self, kind):
        return self.tool(["import", "-window", "root", "-depth", "8", f"{kind}:-"])

    def _start_desktop(self):
        self._start_server()
        if self._window_manager_kind is not None:
            self._start_window_manager()
        if self._wallpaper:
            self._start_wallpaper()
        self._start_notifications()
        if self._panel_kind is not None and self._with_panel:
            self.start_panel()

    def _start_server(self):
        make_socket_directory()
        reader, writer = os.pipe()
        try:
            command = ["Xvfb", "-displayfd", str(writer), "-screen", "0", f"{self.width}x{self.height}x24", "-nolisten", "tcp",
                       "-noreset", "-wr"]
            self.server = self.start_process("Xvfb", command, pass_fds=(writer,))
            os.close(writer)
            writer = None
            os.set_blocking(reader, False)
            number = self.wait_for(lambda: self._read_display_number(reader), what="the X server's display number")
        finally:
            os.close(reader)
            if writer is not None:
                os.close(writer)
        self.environment["DISPLAY"] = f":{number}"

    def _read_display_number(self, reader):
        if not self.server.is_running():
            raise SessionError(f"the X server did not start\n{self.server.log()}")
        try:
            return os.read(reader, 32).decode().strip()
        except BlockingIOError:
            return None

    def _start_window_manager(self):
        commands = {"openbox": ["openbox", "--sm-disable"], "xfwm4": ["xfwm4", "--compositor=on"], "kwin_x11": ["kwin_x11"]}
        if self._window_manager_kind == "xfwm4":
            self.bus.allow_activation("org.xfce.Xfconf", self.environment)
        environment = _PLASMA_ENVIRONMENT if self._window_manager_kind == "kwin_x11" else None
        self.window_manager = self.start_process(self._window_manager_kind, commands[self._window_manager_kind], environment)
        self.wait_for(self._is_managed, what="the window manager")

    def _is_managed(self):
        if not self.window_manager.is_running():
            raise SessionError(f"the window manager ended\n{self.window_manager.log()}")
        # openbox announces itself first and lists its clients later; a window that asks in between to be shown may never be.
        name = "_NET_CLIENT_LIST" if self._window_manager_kind == "openbox" else "_NET_SUPPORTING_WM_CHECK"
        return b"window id" in self.tool(["xprop", "-root", "-notype", name])

    def _start_wallpaper(self):
        self.bus.allow_activation("org.xfce.Xfconf", self.environment)
        picture = os.path.abspath(self._wallpaper) if isinstance(self._wallpaper, str) else ""
        folder = os.path.join(self.environment["XDG_CONFIG_HOME"], "xfce4/xfconf/xfce-perchannel-xml")
        self.write_file(os.path.join(folder, "xfce4-desktop.xml"), _XFCE_DESKTOP.format(picture=picture))
        self.start_process("xfdesktop", ["xfdesktop", "--disable-wm-check"])
        self.wait_for(lambda: self.windows("xfdesktop"), what="the wallpaper's window")

    def _configure_xfce(self):
        self.bus.allow_activation("org.xfce.Xfconf", self.environment)
        self.environment["XDG_CURRENT_DESKTOP"] = "XFCE"
        self.write_file(os.path.join(self.environment["XDG_CONFIG_HOME"], "xfce4/xfconf/xfce-perchannel-xml/xfce4-panel.xml"),
                        _xfce_panel(self.panel_plugins, self._dark_panel))

    def _configure_mate(self):
        for service in ("ca.desrt.dconf", *(f"org.mate.panel.applet.{name}Factory" for name in _MATE_APPLETS)):
            self.bus.allow_activation(service, self.environment)
        self.environment["XDG_CURRENT_DESKTOP"] = "MATE"

    def _configure_lxqt(self):
        self.environment["XDG_CURRENT_DESKTOP"] = "LXQt"
        self.write_file(os.path.join(self.environment["XDG_CONFIG_HOME"], "lxqt/panel.conf"), _LXQT_PANEL)


def _xfce_panel(plugins, dark):
    numbered = list(enumerate(plugins, start=1))
    settings = [f'<property name="plugin-{number}" type="string" value="{name}">{_XFCE_PLUGIN_SETTINGS.get(name, "")}</property>'
                for number, name in numbered]
    return _XFCE_PANEL.format(dark=str(dark).lower(), plugins="\n".join(settings),
                              numbers="\n".join(f'<value type="int" value="{number}"/>' for number, _ in numbered))
