#!/usr/bin/python3
"""A settings portal that knows the color scheme alone, and says dark."""

import gi

gi.require_version("Gio", "2.0")
from gi.repository import Gio, GLib  # noqa: E402

SERVICE = "org.freedesktop.portal.Desktop"
PATH = "/org/freedesktop/portal/desktop"
DARK = 1
DESCRIPTION = """<node><interface name="org.freedesktop.portal.Settings">
  <method name="Read">
    <arg type="s" direction="in"/><arg type="s" direction="in"/><arg type="v" direction="out"/>
  </method>
</interface></node>"""


def answer(_connection, _sender, _path, _interface, _method, parameters, invocation):
    if parameters.unpack() == ("org.freedesktop.appearance", "color-scheme"):
        value = GLib.Variant("v", GLib.Variant("u", DARK))  # a variant inside a variant, as real portals answer
        invocation.return_value(GLib.Variant("(v)", (value,)))
    else:
        invocation.return_dbus_error("org.freedesktop.portal.Error.NotFound", "no such setting")


def main():
    connection = Gio.bus_get_sync(Gio.BusType.SESSION, None)
    interface = Gio.DBusNodeInfo.new_for_xml(DESCRIPTION).interfaces[0]
    connection.register_object(PATH, interface, answer, None, None)
    Gio.bus_own_name_on_connection(connection, SERVICE, Gio.BusNameOwnerFlags.NONE, None, None)
    GLib.MainLoop().run()


if __name__ == "__main__":
    main()
