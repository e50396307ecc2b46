"""Input for Wayland compositors that run without input devices."""

import socket
import struct
import time

_DISPLAY = 1
_REGISTRY = 2


class WaylandInput:
    """A client of a compositor's interface for input, written out message by message: the protocols' descriptions are not
    among the files that a machine usually has. It has to live as long as its devices are wanted."""

    BUTTONS = {1: 0x110, 2: 0x112, 3: 0x111}
    interface = ""
    version = 1

    def __init__(self, socket_path):
        self._socket = socket.socket(socket.AF_UNIX, socket.SOCK_STREAM)
        self._socket.settimeout(5)
        self._socket.connect(socket_path)
        self._received = b""
        self._next_id = 3
        self._send(_DISPLAY, 1, struct.pack("=I", _REGISTRY))
        globals_ = self._list_globals()
        if self.interface not in globals_:
            raise RuntimeError(f"the compositor has no {self.interface}: {sorted(globals_)}")
        self._manager = self._new_id()
        name = struct.pack("=I", globals_[self.interface])
        self._send(_REGISTRY, 0, name + string(self.interface) + struct.pack("=II", self.version, self._manager))

    def close(self):
        self._socket.close()

    def press(self, button):
        self._button(button, 1)

    def release(self, button):
        self._button(button, 0)

    def _button(self, button, state):
        raise NotImplementedError

    def _new_id(self):
        self._next_id += 1
        return self._next_id - 1

    def _send(self, target, opcode, body):
        self._socket.sendall(struct.pack("=II", target, (8 + len(body)) << 16 | opcode) + body)

    def _list_globals(self):
        names = {}
        for target, opcode, body in self._round_trip():
            if target == _REGISTRY and opcode == 0:
                name, length = struct.unpack_from("=II", body)
                names[body[8:8 + length - 1].decode()] = name
        return names

    def _round_trip(self):
        """Returns when the compositor has handled everything sent so far; the result is what it said meanwhile."""
        callback = self._new_id()
        self._send(_DISPLAY, 0, struct.pack("=I", callback))
        messages = []
        while True:
            target, opcode, body = self._receive()
            if target == callback:
                return messages
            if target == _DISPLAY and opcode == 0:
                raise RuntimeError(f"Wayland protocol error: {body!r}")
            messages.append((target, opcode, body))

    def _receive(self):
        target, size_and_opcode = struct.unpack("=II", self._read(8))
        return target, size_and_opcode & 0xFFFF, self._read((size_and_opcode >> 16) - 8)

    def _read(self, length):
        while len(self._received) < length:
            data = self._socket.recv(65536)
            if not data:
                raise RuntimeError("the compositor closed the pointer's connection")
            self._received += data
        result, self._received = self._received[:length], self._received[length:]
        return result


class VirtualPointer(WaylandInput):
    """A pointer of zwlr_virtual_pointer_manager_v1."""

    interface = "zwlr_virtual_pointer_manager_v1"

    def __init__(self, socket_path, width, height):
        super().__init__(socket_path)
        self._width = width
        self._height = height
        self._pointer = self._new_id()
        self._send(self._manager, 0, struct.pack("=II", 0, self._pointer))
        self._round_trip()

    def set_extent(self, width, height):
        """The size of all outputs together: what positions are measured in."""
        self._width = width
        self._height = height

    def move(self, x, y):
        position = struct.pack("=IIIII", _milliseconds(), int(x), int(y), self._width, self._height)
        self._send(self._pointer, 1, position)
        self._frame()

    def scroll(self, steps):
        """Positive steps scroll down."""
        source_wheel = 0
        vertical = 0
        fixed = int(steps * 15 * 256)
        self._send(self._pointer, 5, struct.pack("=I", source_wheel))
        self._send(self._pointer, 7, struct.pack("=IIii", _milliseconds(), vertical, fixed, steps))
        self._frame()

    def _button(self, button, state):
        self._send(self._pointer, 2, struct.pack("=III", _milliseconds(), self.BUTTONS[button], state))
        self._frame()

    def _frame(self):
        self._send(self._pointer, 4, b"")
        self._round_trip()


def string(text):
    data = text.encode() + b"\0"
    return struct.pack("=I", len(data)) + data + b"\0" * (-len(data) % 4)


def _milliseconds():
    return int(time.monotonic() * 1000) & 0xFFFFFFFF
