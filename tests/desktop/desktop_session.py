#!/usr/bin/python3
"""Real desktops for tests: an X server or a Wayland compositor without a screen, with a real panel, a message bus and a
notification service, all private to one test.

    with X11Session(panel="xfce4-panel") as desktop:
        program = desktop.run("build/debug/tickwise")
        item = desktop.wait_for_item()
        desktop.activate(10, 10)
        desktop.screenshot("after-click.png")

Nothing here skips: a program that is missing or does not start raises SessionError with the logs of the session.
"""

import ctypes
import json
import os
import shutil
import signal
import subprocess
import tempfile
import time
import uuid

from message_bus import GLib, MessageBus
from picture import Picture
from virtual_pointer import VirtualPointer

WATCHER = "org.kde.StatusNotifierWatcher"
WATCHER_PATH = "/StatusNotifierWatcher"
ITEM_INTERFACE = "org.kde.StatusNotifierItem"
MENU_INTERFACE = "com.canonical.dbusmenu"
NOTIFICATIONS = "org.freedesktop.Notifications"
UNPRIVILEGED_ID = 65534
TOKEN = "TICKWISE_DESKTOP_SESSION"

_HERE = os.path.dirname(os.path.abspath(__file__))
_PR_SET_PDEATHSIG = 1
_libc = ctypes.CDLL(None)


class SessionError(Exception):
    """The desktop is not as it has to be; the text carries the logs."""


class Process:
    """A program of the session. Its output goes to files, so that a chatty one never blocks."""

    def __init__(self, name, popen, directory):
        self.name = name
        self.pid = popen.pid
        self._popen = popen
        self._directory = directory

    def output(self):
        """Everything that it has written to its standard output."""
        return self._read("out")

    def errors(self):
        """Everything that it has written to its standard error."""
        return self._read("err")

    def is_running(self):
        return self._popen.poll() is None

    def exit_code(self):
        """None while it runs; negative: the signal that ended it."""
        return self._popen.poll()

    def wait(self, timeout=10):
        """The exit code. Raises SessionError when it does not end in time."""
        try:
            return self._popen.wait(timeout)
        except subprocess.TimeoutExpired:
            raise SessionError(f"{self.name} did not end within {timeout} s\n{self.log()}") from None

    def send_signal(self, number):
        self._popen.send_signal(number)

    def write_line(self, text):
        """Writes a line to its standard input."""
        self._popen.stdin.write(text.encode() + b"\n")
        self._popen.stdin.flush()

    def close_input(self):
        self._popen.stdin.close()

    def log(self):
        return f"--- {self.name} (pid {self.pid}, exit {self._popen.poll()})\n{self.output()}{self.errors()}"

    def _read(self, stream):
        with open(os.path.join(self._directory, stream), encoding="utf-8", errors="replace") as file:
            return file.read()


class DesktopSession:
    """What every kind of session shares. `start()` and `stop()`, or `with`."""

    width = 1280
    height = 800

    def __init__(self, notifications="dunst", as_user=None):
        self._notifications_kind = notifications
        self._user = as_user
        self._token = uuid.uuid4().hex
        self._processes = []
        self._parts = []
        self._names = {}
        self.directory = None
        self.environment = {}
        self.bus = None
        self.system_bus = None
        self.notifications = None

    # Life

    def start(self):
        """Returns when the panel is there and hosts status items, and the notification service answers."""
        try:
            self._prepare()
            self._start_desktop()
            self._parts = list(self._processes)
        except BaseException:
            self._end(quiet=True)
            raise
        return self

    def stop(self):
        """Ends what the session started, last started first, waits for it, and raises when anything is left over."""
        self._end(quiet=False)

    def __enter__(self):
        return self.start()

    def __exit__(self, kind, value, traceback):
        if kind is None:
            self.stop()
        else:
            self._end(quiet=True)

    # Programs

    def run(self, program, args=(), env=None, name=None):
        """Starts a program as the session's user, with the session's environment and `env`; a value None removes a variable."""
        path = shutil.which(program) if os.sep not in program else os.path.abspath(program)
        if path is None or not os.path.exists(path):
            raise SessionError(f"there is no program {program}")
        return self.start_process(name or os.path.basename(path), [path, *map(str, args)], env)

    def start_process(self, name, command, env=None, pass_fds=()):
        if shutil.which(command[0]) is None:
            raise SessionError(f"{command[0]} is not installed")
        number = self._names[name] = self._names.get(name, 0) + 1
        directory = self.make_directory(os.path.join(self.directory, "logs", f"{name}-{number}"))
        environment = self._merged(env)
        with open(os.path.join(directory, "out"), "wb") as out, open(os.path.join(directory, "err"), "wb") as err:
            try:
                popen = subprocess.Popen(command, stdin=subprocess.PIPE, stdout=out, stderr=err, env=environment,
                                         cwd=self.directory, pass_fds=pass_fds, start_new_session=True,
                                         preexec_fn=_die_with_parent, **self._credentials())
            except OSError as error:
                raise SessionError(f"{command[0]} cannot be started: {error}") from error
        process = Process(name, popen, directory)
        self._processes.append(process)
        return process

    def stop_process(self, process, number=signal.SIGTERM, timeout=10):
        """Asks a program of the session to end and waits for it. Returns its exit code."""
        if process.is_running():
            process.send_signal(number)
        try:
            code = process.wait(timeout)
        except SessionError:
            process.send_signal(signal.SIGKILL)
            process.wait(timeout)
            raise
        finally:
            process.close_input()
            if process in self._processes:
                self._processes.remove(process)
        return code

    def wait_for(self, predicate, timeout=10, what="the condition"):
        """The first true value of `predicate`. Raises SessionError with the logs after `timeout` seconds, or as soon as a part
        of the desktop has died."""
        deadline = time.monotonic() + timeout
        while True:
            value = predicate()
            if value:
                return value
            dead = [part.name for part in self._parts if part in self._processes and not part.is_running()]
            if dead:
                raise SessionError(f"{dead} ended while waiting for {what}\n{self.logs()}")
            if time.monotonic() > deadline:
                raise SessionError(f"waited {timeout} s in vain for {what}\n{self.logs()}")
            time.sleep(0.02)

    def logs(self):
        return "\n".join(process.log() for process in self._processes)

    # Files

    def make_directory(self, path, mode=0o755):
        os.makedirs(path, mode=mode, exist_ok=True)
        os.chmod(path, mode)
        self._give(path)
        return path

    def write_file(self, path, text):
        """Writes a file of the session's user; a relative path is in the session's directory. Returns the whole path."""
        whole = os.path.join(self.directory, path)
        self.make_directory(os.path.dirname(whole))
        with open(whole, "w", encoding="utf-8") as file:
            file.write(text)
        self._give(whole)
        return whole

    # Status items

    def registered_items(self):
        """The items that the panel knows: pairs of bus name and object path."""
        try:
            items = self.bus.property(WATCHER, WATCHER_PATH, WATCHER, "RegisteredStatusNotifierItems")
        except GLib.Error:
            return []
        return [_split_item(item) for item in items]

    def wait_for_item(self, timeout=10):
        """Waits until exactly one item is registered and answers; returns it."""
        def answering_item():
            items = self.registered_items()
            return len(items) == 1 and self._answers(items[0]) and items[0]
        return self.wait_for(answering_item, timeout, "a status item")

    def item_property(self, name, item=None):
        """A property of the item; raises GLib.Error when the item has no such property."""
        service, path = item or self._only_item()
        return self.bus.property(service, path, ITEM_INTERFACE, name)

    def call_item(self, method, signature="()", arguments=(), item=None):
        service, path = item or self._only_item()
        return self.bus.call(service, path, ITEM_INTERFACE, method, signature, arguments)

    def activate(self, x, y, item=None):
        self.call_item("Activate", "(ii)", (x, y), item)

    def context_menu(self, x, y, item=None):
        self.call_item("ContextMenu", "(ii)", (x, y), item)

    def menu_layout(self, item=None):
        """The item's menu: a dictionary with "id", "properties" and "children", nested."""
        service, path = item or self._only_item()
        menu = self.item_property("Menu", (service, path))
        _, layout = self.bus.call(service, menu, MENU_INTERFACE, "GetLayout", "(iias)", (0, -1, []))
        return _menu_node(layout)

    def click_menu_item(self, entry_id, item=None):
        service, path = item or self._only_item()
        menu = self.item_property("Menu", (service, path))
        event = (entry_id, "clicked", GLib.Variant("s", ""), 0)
        self.bus.call(service, menu, MENU_INTERFACE, "Event", "(isvu)", event)

    # Screen and input; each kind of session has its own way.

    def screenshot(self, path):
        """Writes a PNG of the whole screen; a relative path is in the current directory."""
        whole = os.path.abspath(path)
        with open(whole, "wb") as file:
            file.write(self._capture("png"))
        return whole

    def picture(self):
        """The whole screen as a Picture."""
        return Picture(self._capture("ppm"))

    def move_pointer(self, x, y):
        raise NotImplementedError

    def click(self, x, y, button=1):
        """Buttons: 1 left, 2 middle, 3 right."""
        raise NotImplementedError

    def type_text(self, text):
        raise NotImplementedError

    def press_key(self, key):
        """`key` as the X key names spell it: "Escape", "Return"."""
        raise NotImplementedError

    def _capture(self, kind):
        raise NotImplementedError

    def _start_desktop(self):
        raise NotImplementedError

    def _stop_desktop(self):
        """Undoes what is not a process."""

    # Inside

    def tool(self, command, timeout=20):
        """Runs a short-lived helper of the desktop and returns what it printed (bytes)."""
        if shutil.which(command[0]) is None:
            raise SessionError(f"{command[0]} is not installed")
        done = subprocess.run(command, env=self._merged(None), cwd=self.directory, stdin=subprocess.DEVNULL,
                              capture_output=True, timeout=timeout, check=False, **self._credentials())
        if done.returncode != 0:
            raise SessionError(f"{command} failed: {done.stderr.decode(errors='replace')}\n{self.logs()}")
        return done.stdout

    def _prepare(self):
        self.directory = tempfile.mkdtemp(prefix="tickwise-desktop-")
        os.chmod(self.directory, 0o755)
        self._give(self.directory)
        folders = {"HOME": "home", "XDG_CONFIG_HOME": "home/.config", "XDG_DATA_HOME": "home/.local/share",
                   "XDG_CACHE_HOME": "home/.cache", "XDG_STATE_HOME": "home/.local/state"}
        for variable, folder in folders.items():
            self.environment[variable] = self.make_directory(os.path.join(self.directory, folder))
        self._give(os.path.join(self.directory, "home", ".local"))
        self.environment["XDG_RUNTIME_DIR"] = self.make_directory(os.path.join(self.directory, "run"), 0o700)
        self.environment.update({TOKEN: self._token, "PATH": os.environ.get("PATH", "/usr/bin:/bin"), "LC_ALL": "C.UTF-8",
                                 "GIO_USE_VFS": "local", "NO_AT_BRIDGE": "1", "TMPDIR": self.directory})
        self.bus = MessageBus(self, "session-bus")
        self.system_bus = MessageBus(self, "system-bus")
        self.bus.start()
        self.system_bus.start()
        self.environment["DBUS_SESSION_BUS_ADDRESS"] = self.bus.address
        self.environment["DBUS_SYSTEM_BUS_ADDRESS"] = self.system_bus.address

    def _start_notifications(self):
        if self._notifications_kind is None:
            return
        if self._notifications_kind == "recording":
            self.notifications = RecordingNotifications(self)
        elif self._notifications_kind == "dunst":
            self.notifications = DunstNotifications(self)
        else:
            raise SessionError(f"no way to start the notification service {self._notifications_kind}")
        self.wait_for(lambda: self.bus.owner(NOTIFICATIONS), what="the notification service")

    def _wait_for_item_host(self):
        def has_host():
            try:
                return self.bus.property(WATCHER, WATCHER_PATH, WATCHER, "IsStatusNotifierHostRegistered")
            except GLib.Error:
                return False
        self.wait_for(has_host, 20, "a host of status items")
        self.wait_for(self._shows_panel, what="the panel on the screen")

    def _shows_panel(self):
        picture = self.picture()
        background = picture.at(self.width // 2, self.height // 2)
        return set(picture.colours(height=16)) - {background}

    def _answers(self, item):
        try:
            return bool(self.item_property("Id", item))
        except GLib.Error:
            return False

    def _only_item(self):
        items = self.registered_items()
        if len(items) != 1:
            raise SessionError(f"expected one status item, there are {items}\n{self.logs()}")
        return items[0]

    def _merged(self, env):
        merged = {**self.environment, **(env or {})}
        return {name: str(value) for name, value in merged.items() if value is not None}

    def _credentials(self):
        return {} if self._user is None else {"user": self._user, "group": self._user, "extra_groups": []}

    def _give(self, path):
        if self._user is not None:
            os.chown(path, self._user, self._user)

    def _end(self, quiet):
        problems = []
        self._parts = []
        for step in (self._stop_programs, self._stop_desktop, self._stop_buses, self._check_nothing_is_left):
            try:
                step()
            except Exception as error:  # every step has to have its turn, whatever the one before met
                problems.append(str(error))
        if self.directory is not None:
            shutil.rmtree(self.directory, ignore_errors=True)
            self.directory = None
        if problems and not quiet:
            raise SessionError("\n".join(problems))

    def _stop_programs(self):
        buses = [bus.process for bus in (self.bus, self.system_bus) if bus is not None]
        problems = []
        for process in [each for each in reversed(self._processes) if each not in buses]:
            try:
                self.stop_process(process)
            except SessionError as error:
                problems.append(str(error))
        if problems:
            raise SessionError("\n".join(problems))

    def _stop_buses(self):
        for bus in (self.system_bus, self.bus):
            if bus is not None:
                bus.stop()

    def _check_nothing_is_left(self):
        """Grandchildren end with their parents or with the bus; one that does not is a defect, and is ended here."""
        try:
            self.wait_for(lambda: not self.descendants(), 5, "the end of every process of the session")
        except SessionError:
            left = self.descendants()
            for pid in left:
                try:
                    os.kill(pid, signal.SIGKILL)
                except ProcessLookupError:
                    left[pid] += " (ended meanwhile)"
            raise SessionError(f"left over after the session: {left}") from None

    def descendants(self):
        """Every process that carries this session's mark in its environment, by id."""
        mark = f"{TOKEN}={self._token}".encode()
        found = {}
        for pid in (int(entry) for entry in os.listdir("/proc") if entry.isdigit()):
            try:
                with open(f"/proc/{pid}/environ", "rb") as file:
                    if mark not in file.read().split(b"\0"):
                        continue
                with open(f"/proc/{pid}/comm", encoding="utf-8") as file:
                    found[pid] = file.read().strip()
            except OSError:
                continue
        return found


class X11Session(DesktopSession):
    """Xvfb with a window manager and a panel.

    panel: "xfce4-panel", "mate-panel", "lxqt-panel", "plasma" or None.
    window_manager: "openbox", "xfwm4", "kwin_x11" or None.
    notifications: "dunst", "recording" or None.
    """

    def __init__(self, panel="xfce4-panel", window_manager="openbox", notifications="dunst", width=1280, height=800):
        super().__init__(notifications)
        self.width = width
        self.height = height
        self._panel_kind = panel
        self._window_manager_kind = window_manager
        self.server = None
        self.window_manager = None
        self.panel = None

    def start_panel(self):
        """Starts the panel again after `stop_panel`."""
        if self._panel_kind == "xfce4-panel":
            self._configure_xfce()
        elif self._panel_kind == "mate-panel":
            self._configure_mate()
        elif self._panel_kind == "lxqt-panel":
            self._configure_lxqt()
        elif self._panel_kind == "plasma":
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

    def window_geometry(self, window):
        """x, y, width and height on the screen."""
        lines = self.tool(["xdotool", "getwindowgeometry", "--shell", str(window)]).decode().splitlines()
        values = dict(line.split("=", 1) for line in lines)
        return tuple(int(values[key]) for key in ("X", "Y", "WIDTH", "HEIGHT"))

    def move_pointer(self, x, y):
        self.tool(["xdotool", "mousemove", str(x), str(y)])

    def click(self, x, y, button=1):
        self.tool(["xdotool", "mousemove", str(x), str(y), "click", str(button)])

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
        self._start_notifications()
        if self._panel_kind is not None:
            self.start_panel()

    def _start_server(self):
        _make_socket_directory()
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
        properties = self.tool(["xprop", "-root", "-notype", "_NET_SUPPORTING_WM_CHECK"])
        return b"window id" in properties

    def _configure_xfce(self):
        self.bus.allow_activation("org.xfce.Xfconf", self.environment)
        self.environment["XDG_CURRENT_DESKTOP"] = "XFCE"
        self.write_file(os.path.join(self.environment["XDG_CONFIG_HOME"], "xfce4/xfconf/xfce-perchannel-xml/xfce4-panel.xml"),
                        _XFCE_PANEL)

    def _configure_mate(self):
        for service in ("ca.desrt.dconf", *(f"org.mate.panel.applet.{name}Factory" for name in _MATE_APPLETS)):
            self.bus.allow_activation(service, self.environment)
        self.environment["XDG_CURRENT_DESKTOP"] = "MATE"

    def _configure_lxqt(self):
        self.environment["XDG_CURRENT_DESKTOP"] = "LXQt"
        self.write_file(os.path.join(self.environment["XDG_CONFIG_HOME"], "lxqt/panel.conf"), _LXQT_PANEL)


class SwaySession(DesktopSession):
    """A headless sway with a bar: "waybar", "swaybar" or None. It refuses to run as root, so that a test that does run as
    root gives the whole session, programs included, to an unprivileged user."""

    def __init__(self, bar="waybar", notifications="dunst"):
        super().__init__(notifications, UNPRIVILEGED_ID if os.getuid() == 0 else None)
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

    def move_pointer(self, x, y):
        self._pointer.move(x, y)

    def click(self, x, y, button=1):
        self._pointer.move(x, y)
        self._pointer.press(button)
        self._pointer.release(button)

    def type_text(self, text):
        self.tool(["wtype", text])

    def press_key(self, key):
        self.tool(["wtype", "-k", key])

    def _capture(self, kind):
        return self.tool(["grim", "-t", kind, "-"])

    def _start_desktop(self):
        _make_socket_directory()
        self.environment["XDG_CURRENT_DESKTOP"] = "sway"
        ready = os.path.join(self.directory, "ready")
        bar = _SWAYBAR if self._bar_kind == "swaybar" else ""
        configuration = self.write_file("sway.conf", _SWAY.format(width=self.width, height=self.height, bar=bar, ready=ready))
        headless = {"WLR_BACKENDS": "headless", "WLR_LIBINPUT_NO_DEVICES": "1", "WLR_RENDERER": "pixman"}
        self.compositor = self.start_process("sway", ["sway", "-c", configuration], headless)
        words = self.wait_for(lambda: self._read_ready(ready), what="sway")
        self.environment.update(zip(("SWAYSOCK", "WAYLAND_DISPLAY", "DISPLAY"), words))
        self.environment["XDG_SESSION_TYPE"] = "wayland"
        socket_path = os.path.join(self.environment["XDG_RUNTIME_DIR"], self.environment["WAYLAND_DISPLAY"])
        self._pointer = VirtualPointer(socket_path, self.width, self.height)
        # A seat has the keyboard only while a client holds one.
        self.start_process("wtype", ["wtype", "-s", "100000000"])
        self._start_notifications()
        if self._bar_kind == "waybar":
            self.start_panel()
        elif self._bar_kind == "swaybar":
            self._wait_for_item_host()

    def _read_ready(self, path):
        if not self.compositor.is_running():
            raise SessionError(f"sway did not start\n{self.compositor.log()}")
        if not os.path.exists(path):
            return None
        with open(path, encoding="utf-8") as file:
            words = file.read().split()
        return words if len(words) == 3 else None

    def _stop_desktop(self):
        if self._pointer is not None:
            self._pointer.close()
            self._pointer = None


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


def is_alive(pid):
    """Whether the process runs; one that has ended and only waits for its parent to notice does not."""
    try:
        with open(f"/proc/{pid}/stat", encoding="utf-8", errors="replace") as file:
            return file.read().rpartition(")")[2].split()[0] not in "ZX"
    except OSError:
        return False


def _die_with_parent():
    _libc.prctl(_PR_SET_PDEATHSIG, signal.SIGTERM)


def _make_socket_directory():
    """An X server of another user can only make its socket where everybody may."""
    path = "/tmp/.X11-unix"
    if not os.path.isdir(path):
        os.makedirs(path, exist_ok=True)
        os.chmod(path, 0o1777)


def _split_item(item):
    service, slash, path = item.partition("/")
    return service, (slash + path) or "/StatusNotifierItem"


def _menu_node(layout):
    entry_id, properties, children = layout
    return {"id": entry_id, "properties": properties, "children": [_menu_node(child) for child in children]}


_MATE_APPLETS = ("NotificationAreaApplet", "ClockApplet", "Wncklet")

_PLASMA_ENVIRONMENT = {"QT_QUICK_BACKEND": "software", "LIBGL_ALWAYS_SOFTWARE": "1", "KDE_FULL_SESSION": "true",
                       "KDE_SESSION_VERSION": "5", "XDG_CURRENT_DESKTOP": "KDE"}

_XFCE_PANEL = """<?xml version="1.0" encoding="UTF-8"?>
<channel name="xfce4-panel" version="1.0">
  <property name="configver" type="int" value="2"/>
  <property name="panels" type="array">
    <value type="int" value="1"/>
    <property name="dark-mode" type="bool" value="true"/>
    <property name="panel-1" type="empty">
      <property name="position" type="string" value="p=6;x=0;y=0"/>
      <property name="length" type="uint" value="100"/>
      <property name="position-locked" type="bool" value="true"/>
      <property name="size" type="uint" value="30"/>
      <property name="plugin-ids" type="array">
        <value type="int" value="1"/>
        <value type="int" value="2"/>
        <value type="int" value="3"/>
      </property>
    </property>
  </property>
  <property name="plugins" type="empty">
    <property name="plugin-1" type="string" value="tasklist"/>
    <property name="plugin-2" type="string" value="separator">
      <property name="expand" type="bool" value="true"/>
      <property name="style" type="uint" value="0"/>
    </property>
    <property name="plugin-3" type="string" value="systray">
      <property name="square-icons" type="bool" value="false"/>
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

_SWAY = """output HEADLESS-1 mode {width}x{height}
xwayland enable
default_border normal
focus_follows_mouse no
{bar}
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
