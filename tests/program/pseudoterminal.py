"""A terminal for the program's standard error, and what a person would see on it."""

import fcntl
import os
import pty
import re
import select
import struct
import subprocess
import termios
import time

from program import PROGRAM

PATIENCE = 120  # seconds
TOKEN = re.compile(r"\x1b\[K|\x1b\[[0-9;?]*[A-Za-z]|[\r\n]|.", re.DOTALL)


class Run:
    """A run of the program whose standard error is a terminal. What it writes there is taken up by the methods that wait."""

    def __init__(self, arguments, folder, environment, columns=100, **more):
        self.master, slave = pty.openpty()
        fcntl.ioctl(slave, termios.TIOCSWINSZ, struct.pack("HHHH", 24, columns, 0, 0))
        more = {"stdin": subprocess.DEVNULL, "stdout": subprocess.DEVNULL, **more}
        self.process = subprocess.Popen([PROGRAM, *arguments], cwd=folder, env=environment, stderr=slave, **more)
        os.close(slave)
        self.written = b""
        self.times = []  # of what was read, seconds

    def text(self):
        return self.written.decode("utf-8")

    def drawings(self):
        """Every progress line that was drawn."""
        return [line for line in re.findall(r"\r([^\r\n\x1b]+)\x1b\[K", self.text())]

    def _take(self, seconds):
        """Takes up what comes within that time; False at the end of the run."""
        readable, _, _ = select.select([self.master], [], [], seconds)
        if not readable:
            return True
        try:
            piece = os.read(self.master, 65536)
        except OSError:  # how Linux tells that nobody holds the other end any longer
            return False
        self.written += piece
        self.times.append(time.monotonic())
        return bool(piece)

    def wait_for(self, pattern):
        """Until the pattern stands in what was written; None when the run ends without it."""
        deadline = time.monotonic() + PATIENCE
        while time.monotonic() < deadline:
            found = re.search(pattern, self.text())
            if found or not self._take(0.05):
                return found
        raise TimeoutError(f"{pattern!r} did not come in {PATIENCE} seconds; there is {self.written!r}")

    def take_for(self, seconds):
        deadline = time.monotonic() + seconds
        while time.monotonic() < deadline:
            self._take(0.01)

    def finish(self):
        """The status, once the run has ended."""
        deadline = time.monotonic() + PATIENCE
        while self._take(0.05):
            if time.monotonic() > deadline:
                self.process.kill()
                raise TimeoutError(f"the program did not end in {PATIENCE} seconds; there is {self.written!r}")
        status = self.process.wait(PATIENCE)
        os.close(self.master)
        return status

    def screen(self):
        """What stands on the terminal in the end."""
        return screen(self.text())


def screen(text):
    """The lines that a terminal shows after this text; knows what a progress line needs, and refuses everything else."""
    lines = [""]
    column = 0
    for token in TOKEN.findall(text):
        if token == "\r":
            column = 0
        elif token == "\n":
            lines.append("")
        elif token == "\x1b[K":
            lines[-1] = lines[-1][:column]
        elif len(token) > 1:
            raise ValueError(f"the terminal is told {token!r}")
        else:
            lines[-1] = lines[-1][:column].ljust(column) + token + lines[-1][column + 1:]
            column += 1
    return lines
