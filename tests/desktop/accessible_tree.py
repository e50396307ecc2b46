"""The accessibility bus of a session, read as a screen reader reads it."""

import time

import gi

gi.require_version("Gio", "2.0")
from gi.repository import Gio, GLib  # noqa: E402

_LAUNCHER = "/usr/libexec/at-spi-bus-launcher"
_BUS = "org.a11y.Bus"
_ACCESSIBLE = "org.a11y.atspi.Accessible"
_COMPONENT = "org.a11y.atspi.Component"
_SCREEN = 0  # the kind of coordinates
_LABELLED_BY = 2
# Numbers of states in the protocol.
_STATES = {"checked": 4, "focused": 12, "sensitive": 24, "showing": 25}
_REGISTRY = ("org.a11y.atspi.Registry", "/org/a11y/atspi/accessible/root")


class Node:
    """An accessible object of a program."""

    def __init__(self, tree, service, path):
        self._tree = tree
        self._service = service
        self._path = path
        self.key = (service, path)
        self.name = self._property("Name")
        self.role = self._call(_ACCESSIBLE, "GetRoleName")[0]

    def children(self):
        return [Node(self._tree, *reference) for reference in self._call(_ACCESSIBLE, "GetChildren")[0]]

    def has_state(self, name):
        """Whether it is "checked", "focused", "sensitive" or "showing"."""
        low, high = self._call(_ACCESSIBLE, "GetState")[0]
        return bool((low | high << 32) >> _STATES[name] & 1)

    def extents(self):
        """Left, top, width and height on the screen."""
        return self._call(_COMPONENT, "GetExtents", "(u)", (_SCREEN,))[0]

    def labels(self):
        """The names of what labels it."""
        relations = self._call(_ACCESSIBLE, "GetRelationSet")[0]
        return [Node(self._tree, *target).name for kind, targets in relations if kind == _LABELLED_BY for target in targets]

    def description(self):
        return self._property("Description")

    def number(self):
        """The value of a slider."""
        return self._call("org.freedesktop.DBus.Properties", "Get", "(ss)", ("org.a11y.atspi.Value", "CurrentValue"))[0]

    def text(self):
        """What a text field holds."""
        return self._call("org.a11y.atspi.Text", "GetText", "(ii)", (0, -1))[0]

    def press(self):
        """Does the first thing that can be done with it."""
        self._call("org.a11y.atspi.Action", "DoAction", "(i)", (0,))

    def middle(self):
        """The point on the screen in its middle."""
        left, top, width, height = self._call("org.a11y.atspi.Component", "GetExtents", "(u)", (0,))[0]
        return left + width // 2, top + height // 2

    def _property(self, name):
        return self._call("org.freedesktop.DBus.Properties", "Get", "(ss)", (_ACCESSIBLE, name))[0]

    def _call(self, interface, method, signature="()", arguments=()):
        return self._tree.call(self._service, self._path, interface, method, signature, arguments)


class AccessibleTree:
    """Starts the session's accessibility bus. Programs take part that start afterwards with `environment`."""

    environment = {"QT_LINUX_ACCESSIBILITY_ALWAYS_ON": "1"}

    def __init__(self, desktop):
        self._desktop = desktop
        desktop.start_process("at-spi-bus-launcher", [_LAUNCHER, "--launch-immediately"])
        desktop.wait_for(lambda: desktop.bus.owner(_BUS), what="the accessibility bus")
        address = desktop.bus.call(_BUS, "/org/a11y/bus", _BUS, "GetAddress")[0]
        flags = Gio.DBusConnectionFlags.AUTHENTICATION_CLIENT | Gio.DBusConnectionFlags.MESSAGE_BUS_CONNECTION
        self._connection = Gio.DBusConnection.new_for_address_sync(address, flags, None, None)
        self._connection.set_exit_on_close(False)
        # The first call starts the registry, which programs announce themselves to.
        self.call(*_REGISTRY, _ACCESSIBLE, "GetChildren", "()", ())

    def nodes(self, program):
        """Every object of the program, parents before children; empty until the program has announced itself."""
        return [node for node, _ in self.nodes_with_ancestors(program)]

    def nodes_with_ancestors(self, program, only_shown=False):
        """The same as pairs of an object and the list of those that contain it; `only_shown`: without what is hidden, and
        without what that contains."""
        for _ in range(10):
            try:
                return self._read(program, only_shown)
            except GLib.Error:  # an object went while the tree was read
                time.sleep(0.05)
        return self._read(program, only_shown)

    def _read(self, program, only_shown):
        for application in Node(self, *_REGISTRY).children():
            if application.name == program:
                return list(self._below(application, [], only_shown))
        return []

    def listen(self, event):
        """Listens to an event such as "object:property-change:accessible-name". Returns a function that gives all events so
        far, as pairs of the object and the event's detail."""
        category, member = (part.title().replace("-", "") for part in event.split(":")[:2])
        heard = []
        self._connection.signal_subscribe(None, f"org.a11y.atspi.Event.{category}", member, None, None, Gio.DBusSignalFlags.NONE,
                                          lambda _, sender, path, *signal: heard.append((Node(self, sender, path), signal[2][0])))
        self.call("org.a11y.atspi.Registry", "/org/a11y/atspi/registry", "org.a11y.atspi.Registry", "RegisterEvent", "(sass)",
                  (event, [], ""))
        # The registry has told the programs before it answered; a program that answers now has heard it.
        for program in Node(self, *_REGISTRY).children():
            program.children()

        def hear():
            while GLib.MainContext.default().iteration(False):
                pass
            return heard
        return hear

    def wait_for(self, program, name, role=None):
        """The program's object with that name (and role), once it is there."""
        def found():
            try:
                return next((node for node in self.nodes(program) if node.name == name and role in (None, node.role)), None)
            except GLib.Error:  # an object went while the tree was read
                return None
        return self._desktop.wait_for(found, what=f"{name!r} in the accessible tree")

    def call(self, service, path, interface, method, signature, arguments):
        parameters = GLib.Variant(signature, arguments)
        return self._connection.call_sync(service, path, interface, method, parameters, None, Gio.DBusCallFlags.NONE, 5000,
                                          None).unpack()

    def _below(self, node, ancestors, only_shown):
        if only_shown and ancestors and not node.has_state("showing"):
            return
        yield node, ancestors
        for child in node.children():
            yield from self._below(child, [*ancestors, node], only_shown)
