"""A database server as a child of the test: in a folder of its own, on 127.0.0.1 alone, gone when the test is gone."""

import contextlib
import os
import pwd
import shutil
import signal
import socket
import subprocess
import sys
import tempfile
import time

SKIPPED = 77  # the exit status that tells ctest that a test was skipped
SECONDS_TO_START = 60
SECONDS_TO_STOP = 30
MEMORY_FOLDER = "/dev/shm"
ROOM_TO_SPARE = 4 << 30  # bytes


class NotInstalled(Exception):
    """The server is not on this machine; says which package brings it."""


class ServerError(Exception):
    """The server does not start or refuses a statement; holds what it said."""


class ServerFolder:
    """A temporary folder that the user of the servers owns. Servers refuse to run as root: root runs them as another user."""

    def __init__(self, users, is_small=False):
        """`users`: whom to take as root, the first that there is. `is_small`: it may be kept in memory."""
        self.path = os.path.realpath(tempfile.mkdtemp(prefix="databases.", dir=memory_folder() if is_small else None))
        self.user = None
        if os.geteuid() == 0:
            self.user = first_user(users)
            os.chown(self.path, self.user.pw_uid, self.user.pw_gid)

    def inside(self, *names):
        return os.path.join(self.path, *names)

    def command(self, command):
        """The command as that user; the process is interrupted when the thread that starts it ends, however it ends."""
        prefix = ["setpriv", "--pdeathsig", "INT"]
        if self.user:
            prefix += [f"--reuid={self.user.pw_uid}", f"--regid={self.user.pw_gid}", "--clear-groups"]
        return prefix + command

    def run(self, command, **more):
        done = subprocess.run(self.command(command), stdin=subprocess.DEVNULL, capture_output=True, text=True, cwd=self.path, check=False, **more)
        if done.returncode != 0:
            raise ServerError(f"{command[0]} ended with status {done.returncode}: {done.stderr.strip()}")
        return done.stdout

    def write(self, name, text, mode=0o600):
        """Writes a file that the servers may read."""
        path = self.inside(name)
        with open(os.open(path, os.O_WRONLY | os.O_CREAT | os.O_TRUNC, mode), "w", encoding="utf-8") as file:
            file.write(text)
        if self.user:
            os.chown(path, self.user.pw_uid, self.user.pw_gid)
        return path

    def remove(self):
        shutil.rmtree(self.path, ignore_errors=True)


class ServerProcess:
    """One server. What it says goes to a file of the folder."""

    def __init__(self, folder, name, command):
        self.name = name
        self.log_path = folder.inside(name + ".log")
        with open(self.log_path, "ab") as log:
            self.process = subprocess.Popen(folder.command(command), stdin=subprocess.DEVNULL, stdout=log, stderr=log, cwd=folder.path)

    @property
    def pid(self):
        return self.process.pid

    def wait_until(self, is_ready):
        """Asks `is_ready` again and again until it says so."""
        end = time.monotonic() + SECONDS_TO_START
        while not is_ready():
            if self.process.poll() is not None:
                raise ServerError(f"{self.name} ended with status {self.process.returncode}:\n{self.log()}")
            if time.monotonic() > end:
                self.stop(signal.SIGKILL)
                raise ServerError(f"{self.name} did not answer within {SECONDS_TO_START} s:\n{self.log()}")
            time.sleep(0.05)

    def stop(self, how=signal.SIGINT):
        """Ends the server by its process id and waits for it. Stopping one that is gone does nothing."""
        if self.process.poll() is not None:
            return
        self.process.send_signal(how)
        try:
            self.process.wait(SECONDS_TO_STOP)
        except subprocess.TimeoutExpired:
            self.process.kill()
            self.process.wait()

    def log(self):
        with open(self.log_path, encoding="utf-8", errors="replace") as file:
            return file.read()[-4000:]


def memory_folder():
    """Where files take memory and no disk, when that has room to spare; setting up a server takes a quarter of the time there."""
    try:
        has_room = shutil.disk_usage(MEMORY_FOLDER).free >= ROOM_TO_SPARE
    except OSError:
        return None
    return MEMORY_FOLDER if has_room and "TMPDIR" not in os.environ else None


def first_user(names):
    for name in names:
        try:
            return pwd.getpwnam(name)
        except KeyError:
            continue
    raise NotInstalled(f"servers do not run as root, and none of these users is there to run them: {', '.join(names)}")


def free_port():
    with socket.socket() as probe:
        probe.bind(("127.0.0.1", 0))
        return probe.getsockname()[1]


@contextlib.contextmanager
def skipped_where_missing():
    """Ends the program as a skipped test, with the reason, where a server that is asked for inside is not installed."""
    try:
        yield
    except NotInstalled as reason:
        print(f"skipped: {reason}")
        sys.exit(SKIPPED)


def run_beside(servers, command):
    """Runs the command while the servers are up, with their environment, and ends with its status."""
    end_on_signals()
    try:
        with servers:
            sys.exit(subprocess.run(command, env={**os.environ, **servers.environment()}, check=False).returncode)
    except ServerError as error:
        sys.exit(f"{os.path.basename(sys.argv[0])}: {error}")


def end_on_signals():
    """Lets a test that is told to end leave its context managers, which stop the servers."""

    def leave(number, _):
        raise SystemExit(128 + number)

    for number in (signal.SIGINT, signal.SIGTERM, signal.SIGHUP):
        signal.signal(number, leave)
