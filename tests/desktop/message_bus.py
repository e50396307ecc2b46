"""Private D-Bus message buses and calls on them."""

import os
import shutil

import gi

gi.require_version("Gio", "2.0")
from gi.repository import Gio, GLib  # noqa: E402

_CONFIGURATION = """<!DOCTYPE busconfig PUBLIC "-//freedesktop//DTD D-Bus Bus Configuration 1.0//EN"
 "http://www.freedesktop.org/standards/dbus/1.0/busconfig.dtd">
<busconfig>
  <type>session</type>
  <keep_umask/>
  <listen>unix:path={socket}</listen>
  <servicedir>{services}</servicedir>
  <policy context="default">
    <allow user="*"/>
    <allow send_destination="*" eavesdrop="true"/>
    <allow eavesdrop="true"/>
    <allow own="*"/>
  </policy>
</busconfig>
"""


class MessageBus:
    """A dbus-daemon of a session. It activates only what has a service file in its own directory, never what happens to be
    installed on the machine."""

    def __init__(self, session, name):
        self._session = session
        self._socket = os.path.join(session.directory, f"{name}.socket")
        self.services = os.path.join(session.directory, f"{name}-services")
        self.address = f"unix:path={self._socket}"
        session.make_directory(self.services)
        self._configuration = session.write_file(
            f"{name}.conf", _CONFIGURATION.format(socket=self._socket, services=self.services))
        self._name = name
        self._connection = None
        self.process = None

    def start(self):
        self.process = self._session.start_process(
            self._name, ["dbus-daemon", f"--config-file={self._configuration}", "--nofork", "--nopidfile", "--nosyslog"])
        self._connection = self._session.wait_for(self._try_to_connect, what=f"an answer of {self._name}")

    def stop(self):
        if self._connection is not None:
            self._connection.set_exit_on_close(False)
            if not self._connection.is_closed():
                self._connection.close_sync(None)
            self._connection = None
        if self.process is not None:
            self._session.stop_process(self.process)
            self.process = None
        if os.path.exists(self._socket):
            os.unlink(self._socket)

    def _try_to_connect(self):
        """The socket is there a moment before the daemon listens on it."""
        try:
            return self.connect()
        except GLib.Error:
            return None

    def connect(self):
        """A new connection of the test's own."""
        flags = Gio.DBusConnectionFlags.AUTHENTICATION_CLIENT | Gio.DBusConnectionFlags.MESSAGE_BUS_CONNECTION
        return Gio.DBusConnection.new_for_address_sync(self.address, flags, None, None)

    def call(self, service, path, interface, method, signature="()", arguments=(), timeout=5):
        """Calls a method and returns its results as a tuple of plain values. Raises GLib.Error. `timeout` in seconds."""
        parameters = GLib.Variant(signature, arguments)
        return self._connection.call_sync(service, path, interface, method, parameters, None,
                                          Gio.DBusCallFlags.NO_AUTO_START, int(timeout * 1000), None).unpack()

    def call_with_file(self, service, path, interface, method, signature, arguments, file):
        """The same for a method that takes a file as the argument 0 of type h. Closes it. Returns the first result."""
        parameters = GLib.Variant(signature, arguments)
        files = Gio.UnixFDList.new_from_array([file])
        answer, _ = self._connection.call_with_unix_fd_list_sync(
            service, path, interface, method, parameters, None, Gio.DBusCallFlags.NO_AUTO_START, 10000, files, None)
        return answer.unpack()[0]

    def property(self, service, path, interface, name):
        return self.call(service, path, "org.freedesktop.DBus.Properties", "Get", "(ss)", (interface, name))[0]

    def owner(self, service):
        """The unique name of a service's owner, or None."""
        try:
            return self.call_daemon("GetNameOwner", "(s)", (service,))[0]
        except GLib.Error as error:
            if Gio.DBusError.get_remote_error(error) == "org.freedesktop.DBus.Error.NameHasNoOwner":
                return None
            raise

    def process_id(self, service):
        """The process id of a service's owner."""
        return self.call_daemon("GetConnectionUnixProcessID", "(s)", (service,))[0]

    def call_daemon(self, method, signature="()", arguments=()):
        """Asks the bus itself."""
        return self.call("org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus", method, signature, arguments)

    def allow_activation(self, service, environment):
        """Lets the bus start an installed service, with this environment."""
        source = f"/usr/share/dbus-1/services/{service}.service"
        if not os.path.exists(source):
            raise FileNotFoundError(f"{source} is missing")
        shutil.copy(source, self.services)
        # The daemon notices new files by itself only some time later.
        self.call_daemon("ReloadConfig")
        self.call_daemon("UpdateActivationEnvironment", "(a{ss})", (environment,))
