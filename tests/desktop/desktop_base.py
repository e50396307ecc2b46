"""What every kind of desktop session shares."""

import os
import shutil
import signal
import subprocess
import tempfile
import time
import uuid

from message_bus import GLib, MessageBus
from notification_services import NOTIFICATIONS, DunstNotifications, RecordingNotifications
from picture import Picture
from session_process import Process, SessionError, die_with_parent

WATCHER = "org.kde.StatusNotifierWatcher"
WATCHER_PATH = "/StatusNotifierWatcher"
ITEM_INTERFACE = "org.kde.StatusNotifierItem"
MENU_INTERFACE = "com.canonical.dbusmenu"
TOKEN = "TICKWISE_DESKTOP_SESSION"


class DesktopSession:
    """What every kind of session shares. `start()` and `stop()`, or `with`."""

    width = 1280
    height = 800

    def __init__(self, notifications="dunst", as_user=None):
        self._notifications_kind = notifications
        self._user = as_user
        self._token = uuid.uuid4().hex
        self._processes = []
        self._programs = []  # those that a test has started
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
        process = self.start_process(name or os.path.basename(path), [path, *map(str, args)], env)
        self._programs.append(process)
        return process

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
                                         preexec_fn=die_with_parent, **self._credentials())
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

    def processes(self, name):
        """The programs of that name that run."""
        return [process for process in self._processes if process.name == name and process.is_running()]

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
        """The item's menu as a host gets it that is about to show it: a dictionary with "id", "properties" and "children", nested."""
        service, path = item or self._only_item()
        menu = self.item_property("Menu", (service, path))
        self.bus.call(service, menu, MENU_INTERFACE, "AboutToShow", "(i)", (0,))
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

    def settled_screenshot(self, path):
        """A screenshot of a screen that has stopped changing."""
        pictures = []

        def settled():
            pictures.append(self._capture("png"))
            return pictures[-2:-1] == pictures[-1:]
        self.wait_for(settled, 30, "a picture that stays")
        return self.screenshot(path)

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
        """`key` as the X key names spell it: "Escape", "shift+Left"."""
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
                if process in self._programs:  # panels hang now and then when they end; that is not ours to judge
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
            self.wait_for(lambda: not self.descendants(), 20, "the end of every process of the session")
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


def make_socket_directory():
    """An X server of another user can only make its socket where everybody may."""
    path = "/tmp/.X11-unix"
    if not os.path.isdir(path):
        os.makedirs(path, exist_ok=True)
        os.chmod(path, 0o1777)


def _split_item(item):
    service, slash, path = item.partition("/")
    service = service.removesuffix("@")  # GNOME puts one between the name and the path
    return service, (slash + path) or "/StatusNotifierItem"


def _menu_node(layout):
    entry_id, properties, children = layout
    return {"id": entry_id, "properties": properties, "children": [_menu_node(child) for child in children]}
