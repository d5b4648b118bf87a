"""Running the program as people run it. CODEBOOK_PROGRAM names it, CODEBOOK_DUCKDB=0 says that it was built without DuckDB."""

import os
import re
import shutil
import subprocess
import sys
import tempfile
import unittest

if "CODEBOOK_PROGRAM" not in os.environ:
    sys.exit("Say which program to try: CODEBOOK_PROGRAM=build/dev/codebook")
PROGRAM = os.path.abspath(os.environ["CODEBOOK_PROGRAM"])
WITH_DUCKDB = os.environ.get("CODEBOOK_DUCKDB", "1") == "1"  # 0: it was built without Parquet and JSON lines
SANITIZED = os.environ.get("CODEBOOK_SANITIZED", "0") == "1"  # it was built with a sanitizer
PROJECT = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
SECONDS_A_RUN = 120

LITTLE = "CODEBOOK /VARINFO POSITION /STATISTICS NONE."

# What a terminal would obey or be deceived by: control characters but the line end, in one byte or in UTF-8, and the
# marks that turn the writing direction.
CONTROLS = re.compile(rb"[\x00-\x09\x0b-\x1f\x7f]|\xc2[\x80-\x9f]")
DIRECTION_MARKS = re.compile("[\u061c\u200e\u200f\u202a-\u202e\u2066-\u2069]")


class Result:
    def __init__(self, status, out, err):
        self.status = status
        self.out = out
        self.err = err

    def __repr__(self):
        return f"status {self.status}\nstandard output: {self.out[:2000]!r}\nstandard error: {self.err[:2000]!r}"

    def messages(self):
        return self.err.decode("utf-8")


class ProgramTest(unittest.TestCase):
    """Each test has a folder of its own, in which the program runs."""

    def setUp(self):
        self.folder = tempfile.mkdtemp(prefix="program.")
        self.addCleanup(shutil.rmtree, self.folder, ignore_errors=True)

    def path(self, name):
        return os.path.join(self.folder, name)

    def write(self, name, content):
        """Writes a text or bytes into a file of the folder and returns the name."""
        os.makedirs(os.path.dirname(self.path(name)), exist_ok=True)
        with open(self.path(name), "wb") as file:
            file.write(content.encode() if isinstance(content, str) else content)
        return name

    def read(self, name):
        with open(self.path(name), "rb") as file:
            return file.read()

    def environment(self, **more):
        environment = {name: value for name, value in os.environ.items() if not name.startswith("LC_")}
        environment.update({"LANG": "C.UTF-8", "LC_ALL": "C.UTF-8", **more})
        return environment

    def run_program(self, *arguments, stdin=b"", **environment):
        done = subprocess.run([PROGRAM, *arguments], input=stdin, capture_output=True, cwd=self.folder,
                              env=self.environment(**environment), timeout=SECONDS_A_RUN, check=False)
        return Result(done.returncode, done.stdout, done.stderr)

    def run_bound_by_permissions(self, *arguments):
        """Root passes by the permissions of files: as root, the program runs without the two rights that let it."""
        rights = "-dac_override,-dac_read_search"
        command = ["setpriv", f"--bounding-set={rights}", f"--inh-caps={rights}"] if os.geteuid() == 0 else []
        if command and (not shutil.which("setpriv") or subprocess.run([*command, "true"], check=False).returncode):
            self.skipTest("run as root, and setpriv cannot take its rights away: permissions bind nobody")
        done = subprocess.run([*command, PROGRAM, *arguments], input=b"", capture_output=True, cwd=self.folder,
                              env=self.environment(), timeout=SECONDS_A_RUN, check=False)
        return Result(done.returncode, done.stdout, done.stderr)

    def run_shell(self, command, **environment):
        """A line of shell in which $program is the program."""
        done = subprocess.run(["sh", "-c", command], input=b"", capture_output=True, cwd=self.folder,
                              env=self.environment(program=PROGRAM, **environment), timeout=SECONDS_A_RUN, check=False)
        return Result(done.returncode, done.stdout, done.stderr)

    def assert_status(self, result, status):
        self.assertEqual(result.status, status, repr(result))

    def assert_done(self, result):
        self.assert_status(result, 0)
        self.assertEqual(result.err, b"", repr(result))

    def assert_says(self, result, *words):
        for word in words:
            self.assertIn(word, result.messages(), repr(result))

    def assert_nothing_raw(self, *texts):
        for text in texts:
            self.assertIsNone(CONTROLS.search(text), f"a control character is in {text[:2000]!r}")
            self.assertIsNone(DIRECTION_MARKS.search(text.decode("utf-8")), f"a direction mark is in {text[:2000]!r}")

    def assert_refused(self, result, status, *words):
        """The program stopped with this status, said all these words, and put nothing out."""
        self.assert_status(result, status)
        self.assertEqual(result.out, b"", repr(result))
        self.assertTrue(result.err.startswith(b"codebook: "), repr(result))
        self.assertTrue(result.err.endswith(b"\n"), repr(result))
        self.assert_says(result, *words)
        self.assert_nothing_raw(result.err)


