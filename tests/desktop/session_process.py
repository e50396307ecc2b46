"""The programs of a test's desktop."""

import ctypes
import os
import signal
import subprocess

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


def is_alive(pid):
    """Whether the process runs; one that has ended and only waits for its parent to notice does not."""
    try:
        with open(f"/proc/{pid}/stat", encoding="utf-8", errors="replace") as file:
            return file.read().rpartition(")")[2].split()[0] not in "ZX"
    except OSError:
        return False


def die_with_parent():
    _libc.prctl(_PR_SET_PDEATHSIG, signal.SIGTERM)
