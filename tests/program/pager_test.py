"""The pager: what goes through it, which one it is, and what becomes of the report when it ends early or never begins."""

import fcntl
import os
import pty
import re
import select
import shutil
import struct
import termios
import time
import unittest

from program import PROGRAM, ProgramTest

PATIENCE = 120  # seconds
COLOUR = "\x1b["


class OnTerminal:
    """A run of the program that has a terminal of its own, as a person's has."""

    def __init__(self, arguments, folder, environment, rows=24, columns=80):
        self.process, self.master = pty.fork()
        if self.process == 0:
            fcntl.ioctl(0, termios.TIOCSWINSZ, struct.pack("HHHH", rows, columns, 0, 0))
            os.chdir(folder)
            os.execve(PROGRAM, [PROGRAM, *arguments], environment)
        self.written = b""
        self.ended = False

    @property
    def shown(self):
        return self.written.decode("utf-8", errors="replace").replace("\r\n", "\n")

    def _take(self):
        readable, _, _ = select.select([self.master], [], [], 0.05)
        if not readable:
            return
        try:
            piece = os.read(self.master, 65536)
        except OSError:  # how Linux tells that nobody holds the other end any longer
            piece = b""
        self.ended = not piece
        self.written += piece

    def wait_for(self, pattern):
        deadline = time.monotonic() + PATIENCE
        while not re.search(pattern, self.shown):
            if self.ended or time.monotonic() > deadline:
                raise AssertionError(f"{pattern!r} did not come; there is {self.shown!r}")
            self._take()

    def type(self, keys):
        os.write(self.master, keys)

    def finish(self):
        """The status, once the run has ended."""
        deadline = time.monotonic() + PATIENCE
        while not self.ended:
            if time.monotonic() > deadline:
                raise AssertionError(f"the program did not end; there is {self.shown!r}")
            self._take()
        os.close(self.master)
        _, status = os.waitpid(self.process, 0)
        return os.waitstatus_to_exitcode(status)


class Pager(ProgramTest):
    def setUp(self):
        super().setUp()
        self.write("data.csv", "a,b\n1,x\n2,y\n")

    def start(self, *arguments, data="data.csv", rows=24, **environment):
        without = {name: value for name, value in self.environment(TERM="xterm").items()
                   if name not in ("PAGER", "CODEBOOK_PAGER", "LESS", "LV", "NO_COLOR")}
        return OnTerminal([data, *arguments], self.folder, {**without, **environment}, rows)

    def run_on_terminal(self, *arguments, data="data.csv", status=0, **environment):
        """What the terminal shows in the end."""
        run = self.start(*arguments, data=data, **environment)
        self.assertEqual(run.finish(), status, run.shown)
        return run.shown

    def seen(self):
        """What the pager `cat >seen` has read; None when it was not called."""
        return self.read("seen").decode() if os.path.exists(self.path("seen")) else None

    def fake_less(self):
        """A folder to be the PATH, in which less tells how it was called."""
        self.write("bin/less", '#!/bin/sh\necho "less $* LESS=$LESS LV=$LV"\n/bin/cat >/dev/null\n')
        os.chmod(self.path("bin/less"), 0o755)
        return self.path("bin")

    def write_long_data(self):
        """A report of some hundred kilobytes, which no pipe holds."""
        names = [f"variable{i}" for i in range(400)]
        return self.write("long.csv", ",".join(names) + "\n" + ",".join("1" for _ in names) + "\n")

    def test_readsTheReportInTheTerminalsStead(self):
        self.assertEqual(self.run_on_terminal(CODEBOOK_PAGER="cat >seen"), "")
        self.assertIn("File Information", self.seen())
        self.assertIn("Valid Values", self.seen())

    def test_readsTheBytesThatTheTerminalWouldShow(self):
        direct = self.run_on_terminal("--no-pager")
        self.run_on_terminal(CODEBOOK_PAGER="cat >seen")
        self.assertEqual(self.seen(), direct)

    def test_variableOfTheProgramGoesBeforeTheGeneralOne(self):
        self.run_on_terminal(CODEBOOK_PAGER="cat >seen", PAGER="cat >other")
        self.assertIsNotNone(self.seen())
        self.assertFalse(os.path.exists(self.path("other")))

    def test_generalVariableServesToo(self):
        self.run_on_terminal(PAGER="cat >seen")
        self.assertIsNotNone(self.seen())

    def test_lessIsTakenWhereNoneIsNamed(self):
        self.assertEqual(self.run_on_terminal(PATH=self.fake_less()), "less  LESS=FRX LV=-c\n")

    def test_ownWishesOfLessStay(self):
        self.assertEqual(self.run_on_terminal(PATH=self.fake_less(), LESS="S", LV="-x"), "less  LESS=S LV=-x\n")

    def test_noneIsNeededWhereLessIsNotInstalled(self):
        self.write("empty/file", "")
        self.assertIn("File Information", self.run_on_terminal(PATH=self.path("empty")))

    def test_terminalThatCannotMoveItsCursorGetsNoLess(self):
        for terminal in ("dumb", ""):
            self.assertIn("File Information", self.run_on_terminal(PATH=self.fake_less(), TERM=terminal))

    def test_catAndEmptyAreNone(self):
        for pager in ("cat", ""):
            self.assertIn("File Information", self.run_on_terminal(CODEBOOK_PAGER=pager, PAGER="cat >seen"))
            self.assertIn("File Information", self.run_on_terminal(PAGER=pager, PATH=self.fake_less()))
        self.assertIsNone(self.seen())

    def test_optionSwitchesItOff(self):
        self.assertIn("File Information", self.run_on_terminal("--no-pager", CODEBOOK_PAGER="cat >seen"))
        self.assertIsNone(self.seen())

    def test_otherFormatsAndFilesGoByIt(self):
        self.assertIn('"format"', self.run_on_terminal("-F", "json", CODEBOOK_PAGER="cat >seen"))
        self.assertEqual(self.run_on_terminal("-o", "report.txt", CODEBOOK_PAGER="cat >seen"), "")
        self.assertIn(b"File Information", self.read("report.txt"))
        self.assertIsNone(self.seen())

    def test_outputThatIsNoTerminalGoesByIt(self):
        result = self.run_program("data.csv", CODEBOOK_PAGER="cat >seen")
        self.assert_done(result)
        self.assertIn(b"File Information", result.out)
        self.assertIsNone(self.seen())

    def test_helpGoesByIt(self):
        self.assertIn("--no-pager", self.run_on_terminal("--help", CODEBOOK_PAGER="cat >seen"))
        self.assertIsNone(self.seen())

    def test_whatEndsEarlyIsNoError(self):
        data = self.write_long_data()
        for pager in ("true", "head -n 3"):
            shown = self.run_on_terminal(data=data, CODEBOOK_PAGER=pager)
            self.assertNotIn("codebook:", shown)
        self.assertIn("File Information", shown)

    def test_whatCannotBeStartedIsToldAndDoneWithout(self):
        self.write("unusable", "no program")
        for pager in ("nosuchpager", "nosuchpager -x", "./unusable"):
            shown = self.run_on_terminal(CODEBOOK_PAGER=pager)
            self.assertIn(f'codebook: warning: The pager "{pager}" cannot be started', shown)
            self.assertIn("File Information", shown)

    def test_itsNameDoesNotReachTheTerminalRaw(self):
        shown = self.run_on_terminal(CODEBOOK_PAGER="nosuch\u202epager")
        self.assertIn('The pager "nosuch\\u202epager"', shown)

    def test_itsOwnStatusIsOfNoAccount(self):
        self.assertEqual(self.run_on_terminal(CODEBOOK_PAGER="cat >seen; exit 3"), "")

    def test_statusOfTheCommandsStays(self):
        shown = self.run_on_terminal("-c", "CODEBOOK a.\nCODEBOOK nosuch.", status=1, CODEBOOK_PAGER="cat >seen")
        self.assertIn("codebook: error: ", shown)
        self.assertIn("Valid", self.seen())

    def test_messagesComeWhenItHasEnded(self):
        self.write("data.schema.json", '{"fields": [{"name": "a"}, {"name": "b", "type": "integer"}]}')
        shown = self.run_on_terminal(CODEBOOK_PAGER="cat >seen; sleep 0.2; echo the pager ends")
        self.assertRegex(shown, r"^the pager ends\ncodebook: warning: ")

    def test_interruptIsItsOwn(self):
        self.write("pager", 'trap "echo passed over" INT\ncat >seen\necho ready\nread key </dev/tty || read key </dev/tty\necho "it ends"\n')
        run = self.start(CODEBOOK_PAGER="exec sh ./pager")
        run.wait_for("ready")
        run.type(b"\x03")
        run.wait_for("passed over")
        run.type(b"\n")
        self.assertEqual(run.finish(), 0, run.shown)
        self.assertIn("it ends", run.shown)
        self.assertNotIn("interrupted", run.shown)

    @unittest.skipUnless(shutil.which("less"), "there is no less here")
    def test_lessShowsPageByPageAndEndsWithItsKey(self):
        run = self.start(data=self.write_long_data())
        run.wait_for(r"File Information(.*\n)+:")
        self.assertNotIn("variable300", run.shown)
        run.type(b"q")
        self.assertEqual(run.finish(), 0, run.shown)
        self.assertNotIn("codebook:", run.shown)

    @unittest.skipUnless(shutil.which("less"), "there is no less here")
    def test_lessEndsByItselfWhenAllFitsOnThePage(self):
        shown = self.run_on_terminal("-c", "CODEBOOK /VARINFO POSITION /STATISTICS NONE.", rows=60)
        self.assertIn("Position", shown)
        self.assertIn("Method", shown)

    def test_coloursAreForTerminalsThatHaveThem(self):
        self.assertIn(COLOUR, self.run_on_terminal("--no-pager"))
        self.assertIn(COLOUR, self.run_on_terminal("--no-pager", NO_COLOR=""))
        self.assertNotIn(COLOUR, self.run_on_terminal("--no-pager", NO_COLOR="0"))
        self.assertNotIn(COLOUR, self.run_on_terminal("--no-pager", TERM="dumb"))
        self.assertNotIn(COLOUR, self.run_on_terminal("--no-pager", TERM=""))
        self.assertNotIn(COLOUR, self.run_program("data.csv", TERM="xterm").out.decode())

    def differences_on_terminal(self, *arguments, **environment):
        self.write("new.csv", "a,c\n1,x\n2,y\n")
        return self.run_on_terminal("data.csv", "new.csv", *arguments, data="diff", status=1, **environment)

    def test_differencesGoThroughItAsReportsDo(self):
        self.assertEqual(self.differences_on_terminal(CODEBOOK_PAGER="cat >seen"), "")
        self.assertIn("1 variable added, 1 removed, 1 the same", self.seen())
        self.assertIn("1 variable added", self.differences_on_terminal("--no-pager", CODEBOOK_PAGER="cat >other"))
        self.assertIn("1 variable added", self.differences_on_terminal(CODEBOOK_PAGER="cat"))
        self.assertFalse(os.path.exists(self.path("other")))

    def test_differencesHaveColoursWhereReportsHaveThem(self):
        self.assertIn(COLOUR, self.differences_on_terminal("--no-pager"))
        self.assertNotIn(COLOUR, self.differences_on_terminal("--no-pager", NO_COLOR="1"))
        self.assertNotIn(COLOUR, self.differences_on_terminal("--no-pager", TERM="dumb"))
        self.assertNotIn(COLOUR, self.run_program("diff", "data.csv", "new.csv", TERM="xterm").out.decode())


if __name__ == "__main__":
    unittest.main()
