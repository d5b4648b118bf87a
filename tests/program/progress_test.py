"""The progress line: on a terminal, when the work lasts, and gone before anything else is said."""

import os
import pty
import re
import subprocess
import sys
import time
import unittest

from program import LITTLE, PROGRAM, ProgramTest
from pseudoterminal import Run, screen

SHOWN_AFTER = 0.5
BETWEEN_DRAWINGS = 0.2


class Progress(ProgramTest):
    def start(self, *arguments, columns=100, environment=None, **more):
        return Run(arguments, self.folder, self.environment(**{"TERM": "xterm", **(environment or {})}), columns, **more)

    def read_slowly(self, seconds, *arguments, **more):
        """A finished run whose data, "a" of 1 and 2, came that slowly, which no machine's speed changes."""
        run = self.start("-", "-c", LITTLE, *arguments, stdin=subprocess.PIPE, **more)
        run.process.stdin.write(b"a\n1\n2\n")
        run.process.stdin.flush()
        run.take_for(seconds)
        run.process.stdin.close()
        self.assertEqual(run.finish(), 0, run.written)
        return run

    def test_longReadingIsShownAndTakenAway(self):
        run = self.read_slowly(1.5)
        self.assertTrue(run.drawings(), run.written)
        for line in run.drawings():
            self.assertTrue(line.startswith("reading"), line)
        self.assertEqual(run.screen(), [""], run.written)

    def test_shortWorkIsNotShown(self):
        self.write("data.csv", "a\n1\n2\n")
        seconds = 0
        for _ in range(10):  # on a machine that has other work too, a short run may last
            begun = time.monotonic()
            run = self.start("data.csv")
            self.assertEqual(run.finish(), 0)
            seconds = time.monotonic() - begun
            if seconds < SHOWN_AFTER:
                break
        self.assertLess(seconds, SHOWN_AFTER, "no run was short enough to tell")
        self.assertEqual(run.written, b"")

    def test_redrawnAFewTimesASecond(self):
        begun = time.monotonic()
        run = self.read_slowly(2.5)
        lasted = time.monotonic() - begun  # longer than it was asked for, on a machine that has other work too
        self.assertLessEqual(len(run.drawings()), lasted / BETWEEN_DRAWINGS + 1)
        self.assertGreaterEqual(len(run.drawings()), 2)

    def test_quietRunShowsNothing(self):
        for option in ("-q", "--quiet"):
            self.assertEqual(self.read_slowly(1.0, option).written, b"")

    def test_terminalThatCannotRedrawShowsNothing(self):
        for terminal in ("dumb", ""):
            self.assertEqual(self.read_slowly(1.0, environment={"TERM": terminal}).written, b"")

    def test_standardErrorThatIsNoTerminalShowsNothing(self):
        with subprocess.Popen([PROGRAM, "-", "-c", LITTLE], stdin=subprocess.PIPE, stdout=subprocess.PIPE, stderr=subprocess.PIPE,
                              env=self.environment(TERM="xterm")) as run:
            run.stdin.write(b"a\n1\n2\n")
            run.stdin.flush()
            time.sleep(1.0)
            _, err = run.communicate()
            self.assertEqual((run.returncode, err), (0, b""))

    def test_neverWiderThanTheTerminalNorInItsLastColumn(self):
        for columns in (100, 40, 6):
            run = self.read_slowly(1.0, columns=columns)
            self.assertTrue(run.drawings())
            for line in run.drawings():
                self.assertLess(len(line), columns)

    def test_messagesComeWhenItIsGone(self):
        run = self.start("-", "-c", "CODEBOOK /STATISTICS NONE /FILEINFO.", stdin=subprocess.PIPE)
        run.process.stdin.write(b"a\n1\n")
        run.process.stdin.flush()
        self.assertTrue(run.wait_for("reading"))
        run.process.stdin.close()
        self.assertEqual(run.finish(), 0)
        first, last = run.screen()
        self.assertTrue(first.startswith("codebook: warning: "), run.written)
        self.assertEqual(last, "")

    def test_errorsComeWhenItIsGone(self):
        run = self.start("-", "-c", LITTLE, stdin=subprocess.PIPE)
        run.process.stdin.write(b"a,b\n1,2\n")
        run.process.stdin.flush()
        self.assertTrue(run.wait_for("reading"))
        run.process.stdin.write(b'1,"never ended')
        run.process.stdin.close()
        status = run.finish()
        self.assertTrue(run.screen()[0].startswith("codebook: "), run.written)
        self.assertNotIn("reading", "".join(run.screen()))
        self.assertIn(status, (0, 3))

    def test_programInTheBackgroundLeavesTheTerminalAlone(self):
        # A session of its own, whose leader stays in front while the program runs behind.
        leader = ("import os, subprocess, sys, time\n"
                  "run = subprocess.Popen(sys.argv[1:], stdin=subprocess.PIPE, stdout=subprocess.DEVNULL, preexec_fn=os.setpgrp)\n"
                  "run.stdin.write(b'a\\n1\\n'); run.stdin.flush(); time.sleep(1.5); run.stdin.close(); sys.exit(run.wait())\n")
        self.write("leader.py", leader)
        child, terminal = pty.fork()
        if child == 0:
            os.environ["TERM"] = "xterm"
            os.execv(sys.executable, ["python3", self.path("leader.py"), PROGRAM, "-", "-c", LITTLE])
        written = b""
        while True:
            try:
                piece = os.read(terminal, 65536)
            except OSError:
                break
            if not piece:
                break
            written += piece
        os.close(terminal)
        _, status = os.waitpid(child, 0)
        self.assertEqual(os.waitstatus_to_exitcode(status), 0, written)
        self.assertEqual(written, b"")

    def counting(self, **environment):
        """A finished run that showed how far the counting had come."""
        rows = 20_000
        while rows <= 20_000 * 64:
            names = ",".join(f"a{i},b{i},c{i}" for i in range(12))
            self.write("data.csv", names + "\n" + (",".join(["1,2,0.5"] * 12) + "\n" + ",".join(["3,1,2.25"] * 12) + "\n") * rows)
            run = self.start("data.csv", "--chunk-rows", "1", "-c", "CODEBOOK /STATISTICS COUNT MEAN.", environment=environment)
            self.assertEqual(run.finish(), 0)
            if [line for line in run.drawings() if re.match(r"counting.*%", line)]:
                return run, 2 * rows
            rows *= 2
        self.fail("a pass that lasts is not shown")

    def test_countingIsShownWithItsShareAndCases(self):
        run, rows = self.counting()
        line = [line for line in run.drawings() if re.match(r"counting.*%", line)][-1]
        found = re.search(r"(\d+) %  ([0-9,]+) cases", line)
        self.assertIsNotNone(found, line)
        share, cases = int(found[1]), int(found[2].replace(",", ""))
        self.assertAlmostEqual(share, 100 * cases / rows, delta=1.01)
        self.assertEqual(run.screen(), [""])

    def test_plainAsciiWhereTheLocaleIsNotUtf8(self):
        run, _ = self.counting(LC_ALL="C")
        self.assertTrue(run.written.isascii(), run.written)
        self.assertTrue([line for line in run.drawings() if re.search(r"\[#*\.*\]", line)], run.written)

    def test_noColours(self):
        self.assertNotRegex(self.read_slowly(1.0, environment={"NO_COLOR": "1"}).text(), r"\x1b\[[0-9;]*m")


class Screen(unittest.TestCase):
    def test_lineThatIsClearedIsGone(self):
        self.assertEqual(screen("\rreading 10\x1b[K\r\x1b[Kcodebook: done\r\n"), ["codebook: done", ""])

    def test_lineThatIsNotClearedStays(self):
        self.assertEqual(screen("\rreading 10\x1b[K\rend\r\n"), ["endding 10", ""])

    def test_nothingElseIsUnderstood(self):
        with self.assertRaises(ValueError):
            screen("\x1b[2J")


if __name__ == "__main__":
    unittest.main()
