#!/usr/bin/python3
"""A notification service that shows nothing and writes down what it is asked.

    recording_notifications.py FILE [--capabilities=actions,body] [--hang] [--first-id=N]

Every call is one line of JSON in FILE: {"method": "Notify", "sender": ..., "id": ..., "app_name": ..., "replaces_id": ...,
"app_icon": ..., "summary": ..., "body": ..., "actions": [...], "hints": {...}, "expire_timeout": ...}; the other methods
have "method", "sender" and "arguments".

Commands on the standard input, one a line; a signal goes to the sender of the notification, as real services do it:
    action ID KEY      emit ActionInvoked
    token ID TOKEN     emit ActivationToken
    close ID REASON    emit NotificationClosed
    hang               answer nothing from now on
    answer             answer again, first everything that was held back
    fail               answer Notify with an error from now on; "answer" ends that
    quit               leave
"""

import argparse
import json
import os
import sys

import gi

gi.require_version("Gio", "2.0")
from gi.repository import Gio, GLib  # noqa: E402

SERVICE = "org.freedesktop.Notifications"
PATH = "/org/freedesktop/Notifications"
DESCRIPTION = """<node><interface name="org.freedesktop.Notifications">
  <method name="GetCapabilities"><arg type="as" direction="out"/></method>
  <method name="GetServerInformation">
    <arg type="s" direction="out"/><arg type="s" direction="out"/><arg type="s" direction="out"/><arg type="s" direction="out"/>
  </method>
  <method name="Notify">
    <arg type="s" direction="in"/><arg type="u" direction="in"/><arg type="s" direction="in"/><arg type="s" direction="in"/>
    <arg type="s" direction="in"/><arg type="as" direction="in"/><arg type="a{sv}" direction="in"/><arg type="i" direction="in"/>
    <arg type="u" direction="out"/>
  </method>
  <method name="CloseNotification"><arg type="u" direction="in"/></method>
  <signal name="NotificationClosed"><arg type="u"/><arg type="u"/></signal>
  <signal name="ActionInvoked"><arg type="u"/><arg type="s"/></signal>
  <signal name="ActivationToken"><arg type="u"/><arg type="s"/></signal>
</interface></node>"""
NOTIFY_FIELDS = ("app_name", "replaces_id", "app_icon", "summary", "body", "actions", "hints", "expire_timeout")


class RecordingNotifications:
    def __init__(self, options, loop):
        self._capabilities = [name for name in options.capabilities.split(",") if name]
        self._hangs = options.hang
        self._fails = False
        self._held = []
        self._next_id = options.first_id
        self._senders = {}
        self._loop = loop
        self._record = open(options.file, "a", encoding="utf-8", buffering=1)
        self._connection = Gio.bus_get_sync(Gio.BusType.SESSION, None)
        interface = Gio.DBusNodeInfo.new_for_xml(DESCRIPTION).interfaces[0]
        self._connection.register_object(PATH, interface, self._called, None, None)
        Gio.bus_own_name_on_connection(self._connection, SERVICE, Gio.BusNameOwnerFlags.NONE, None, self._lost)

    def command(self, line):
        words = line.split()
        if words[0] in ("action", "token"):
            name = {"action": "ActionInvoked", "token": "ActivationToken"}[words[0]]
            self._emit(int(words[1]), name, GLib.Variant("(us)", (int(words[1]), words[2])))
        elif words[0] == "close":
            self._emit(int(words[1]), "NotificationClosed", GLib.Variant("(uu)", (int(words[1]), int(words[2]))))
        elif words[0] == "hang":
            self._hangs = True
        elif words[0] == "fail":
            self._fails = True
        elif words[0] == "answer":
            self._hangs = self._fails = False
            held, self._held = self._held, []
            for method, arguments, sender, invocation in held:
                self._answer(method, arguments, sender, invocation)
        elif words[0] == "quit":
            self._loop.quit()
        else:
            raise ValueError(f"unknown command {line!r}")

    def _lost(self, connection, name):
        print(f"the name {name} is taken or lost", file=sys.stderr)
        os._exit(1)

    def _called(self, connection, sender, path, interface, method, parameters, invocation):
        arguments = parameters.unpack()
        if self._hangs:
            self._write(method, arguments, sender, 0)
            self._held.append((method, arguments, sender, invocation))
        else:
            self._answer(method, arguments, sender, invocation, record=True)

    def _answer(self, method, arguments, sender, invocation, record=False):
        identifier = self._take_id(arguments, sender) if method == "Notify" else 0
        if record:
            self._write(method, arguments, sender, identifier)
        if method == "GetCapabilities":
            invocation.return_value(GLib.Variant("(as)", (self._capabilities,)))
        elif method == "GetServerInformation":
            invocation.return_value(GLib.Variant("(ssss)", ("recorder", "tickwise", "1", "1.2")))
        elif method == "Notify" and self._fails:
            invocation.return_dbus_error("org.freedesktop.Notifications.Error", "refused")
        elif method == "Notify":
            invocation.return_value(GLib.Variant("(u)", (identifier,)))
        else:
            invocation.return_value(None)
            self._emit(arguments[0], "NotificationClosed", GLib.Variant("(uu)", (arguments[0], 3)))

    def _take_id(self, arguments, sender):
        identifier = arguments[1]
        if identifier == 0:
            identifier = self._next_id
            self._next_id += 1
        self._senders[identifier] = sender
        return identifier

    def _write(self, method, arguments, sender, identifier):
        if method == "Notify":
            entry = {"method": method, "sender": sender, "id": identifier, **dict(zip(NOTIFY_FIELDS, arguments))}
        else:
            entry = {"method": method, "sender": sender, "arguments": list(arguments)}
        self._record.write(json.dumps(entry) + "\n")

    def _emit(self, identifier, name, parameters):
        self._connection.emit_signal(self._senders.get(identifier), PATH, SERVICE, name, parameters)
        self._connection.flush_sync(None)


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("file")
    parser.add_argument("--capabilities", default="actions,body,body-markup")
    parser.add_argument("--hang", action="store_true")
    parser.add_argument("--first-id", type=int, default=1)
    loop = GLib.MainLoop()
    service = RecordingNotifications(parser.parse_args(), loop)

    pending = bytearray()

    def readable(source, condition):
        data = os.read(source, 65536)
        if not data:
            loop.quit()
            return False
        pending.extend(data)
        while b"\n" in pending:
            line, _, rest = bytes(pending).partition(b"\n")
            pending[:] = rest
            service.command(line.decode())
        return True

    GLib.io_add_watch(sys.stdin.fileno(), GLib.PRIORITY_DEFAULT, GLib.IO_IN | GLib.IO_HUP, readable)
    GLib.unix_signal_add(GLib.PRIORITY_DEFAULT, 15, loop.quit)
    loop.run()


if __name__ == "__main__":
    main()
