"""An interrupt ends the program at once, whatever it is at, and leaves nothing behind."""

import fcntl
import json
import os
import random
import signal
import subprocess
import time
import unittest

from program import LITTLE, PROGRAM, WITH_DUCKDB, ProgramTest
from pseudoterminal import Run

AT_ONCE = 0.2  # seconds
ATTEMPTS = 8  # a machine that is busy with other work may not give the program its turn in that time
LONG_ENOUGH = 0.8  # seconds that a run lasts, of which the program's start is a small part
CSV = ("a,b,c,d\n", "%d,%d,%r,%s\n")
JSON_LINES = ("", '{"a": %d, "b": %d, "c": %r, "d": "%s"}\n')
EVERYTHING = "CODEBOOK /STATISTICS COUNT PERCENT MEAN STDDEV QUARTILES."


def obey():
    """As a program begins in front of a terminal, however these tests were begun."""
    signal.signal(signal.SIGINT, signal.SIG_DFL)
    signal.signal(signal.SIGHUP, signal.SIG_DFL)


class Interrupt(ProgramTest):
    def setUp(self):
        super().setUp()
        self.write("out/report.json", "older")
        os.mkdir(self.path("temporary"))

    def start(self, *arguments, **more):
        more = {"stdin": subprocess.PIPE, "stdout": subprocess.PIPE, "stderr": subprocess.PIPE, "preexec_fn": obey, **more}
        run = subprocess.Popen([PROGRAM, *arguments], cwd=self.folder, env=self.environment(TMPDIR=self.path("temporary")), **more)
        for pipe in (run.stdin, run.stdout, run.stderr):
            if pipe:
                self.addCleanup(pipe.close)
        return run

    def end(self, run, number=signal.SIGINT):
        """Seconds from the interrupt to the end."""
        begun = time.monotonic()
        run.send_signal(number)
        run.wait(60)
        return time.monotonic() - begun

    def assert_nothing_temporary(self, told=None):
        self.assertEqual(os.listdir(self.path("temporary")), [], told)
        self.assertEqual(os.listdir(self.path("out")), ["report.json"], told)

    def assert_nothing_left(self):
        self.assert_nothing_temporary()
        self.assertEqual(self.read("out/report.json"), b"older")

    def assert_ends_at_once(self, start, number=signal.SIGINT):
        """`start` gives a run that is to be interrupted now."""
        taken = []
        for _ in range(ATTEMPTS):
            run = start()
            taken.append(self.end(run, number))
            self.assertEqual(run.returncode, 130)
            self.assert_nothing_left()
            if taken[-1] < AT_ONCE:
                return
        self.fail(f"the end took {taken} seconds")

    def begun_reading(self, *arguments, **more):
        run = self.start("-", *arguments, **more)
        run.stdin.write(b"a,b\n1,2\n")
        run.stdin.flush()
        time.sleep(0.3)
        return run

    def test_whileStandardInputIsRead(self):
        self.assert_ends_at_once(lambda: self.begun_reading("-o", "out/report.json"))

    def test_whileAFileIsRead(self):
        os.mkfifo(self.path("data.csv"))
        pipes = []

        def begin():
            run = self.start("data.csv", "-o", "out/report.json")
            pipes.append(open(self.path("data.csv"), "wb", buffering=0))  # waits until the program has opened it
            self.addCleanup(pipes[-1].close)
            pipes[-1].write(b"a,b\n1,2\n")
            time.sleep(0.2)
            return run

        self.assert_ends_at_once(begin)

    def test_whileTheReportIsWritten(self):
        self.write("big.csv", "\n".join([",".join(f"v{i}" for i in range(2000))] + [",".join("1" * 2000)] * 3))

        def begin():
            run = self.start("big.csv", "-F", "json")
            run.stdout.read(1)  # the report has begun, and nobody reads on: the program waits at the full pipe
            time.sleep(0.2)
            return run

        self.assert_ends_at_once(begin)

    def test_requestToTerminateAndClosedTerminalAreInterruptsToo(self):
        for number in (signal.SIGTERM, signal.SIGHUP):
            self.assert_ends_at_once(lambda: self.begun_reading("-o", "out/report.json"), number)

    def test_backgroundJobOfAScriptIsInterruptedToo(self):
        # A shell that has no job control lets what it begins with & ignore SIGINT.
        run = self.begun_reading(preexec_fn=lambda: signal.signal(signal.SIGINT, signal.SIG_IGN))
        self.end(run)
        self.assertEqual(run.returncode, 130)

    def test_closedTerminalIsIgnoredWhereThatIsAskedFor(self):
        run = self.begun_reading("-c", LITTLE, preexec_fn=lambda: signal.signal(signal.SIGHUP, signal.SIG_IGN))
        run.send_signal(signal.SIGHUP)
        out, _ = run.communicate(timeout=60)
        self.assertEqual(run.returncode, 0)
        self.assertIn(b"Position", out)

    def test_wordOfItIsOnStandardErrorUnlessQuiet(self):
        for options, word in (((), b"codebook: interrupted\n"), (("-q",), b"")):
            run = self.begun_reading(*options)
            self.end(run)
            self.assertEqual(run.returncode, 130)
            self.assertEqual((run.stdout.read(), run.stderr.read()), (b"", word))

    def test_fullStandardErrorDelaysNothing(self):
        def begin():
            reader, writer = os.pipe()
            self.addCleanup(os.close, reader)
            flags = fcntl.fcntl(writer, fcntl.F_GETFL)
            fcntl.fcntl(writer, fcntl.F_SETFL, flags | os.O_NONBLOCK)
            try:
                while os.write(writer, b"x" * 4096):
                    pass
            except BlockingIOError:
                pass
            fcntl.fcntl(writer, fcntl.F_SETFL, flags)
            run = self.begun_reading(stderr=writer)
            os.close(writer)
            return run

        self.assert_ends_at_once(begin)

    def test_terminalIsLeftInOrder(self):
        environment = self.environment(TERM="xterm", TMPDIR=self.path("temporary"))
        for options, left in (((), ["codebook: interrupted", ""]), (("-q",), [""])):
            run = Run(["-", *options], self.folder, environment, stdin=subprocess.PIPE, preexec_fn=obey)
            run.process.stdin.write(b"a,b\n1,2\n")
            run.process.stdin.flush()
            run.take_for(1.0)
            self.assertEqual(bool(run.drawings()), not options)
            run.process.send_signal(signal.SIGINT)
            self.assertEqual(run.finish(), 130)
            run.process.stdin.close()
            self.assertEqual(run.screen(), left, run.written)

    def interrupt_at_any_time(self, name, head, row, *options):
        """Interrupts at random moments of a run's whole length, over data that keep the program busy long enough."""
        arguments = (name, *options, "-c", EVERYTHING, "-o", "out/report.json")
        silent = {"stdin": subprocess.DEVNULL, "stdout": subprocess.DEVNULL, "stderr": subprocess.DEVNULL}
        block = "".join(row % cells for cells in self.rows(20_000))
        length = 0
        blocks = 8
        while length < LONG_ENOUGH and blocks < 1000:
            blocks *= 2
            self.write(name, head + block * blocks)
            begun = time.monotonic()
            run = self.start(*arguments, **silent)
            self.assertEqual(run.wait(120), 0)
            length = time.monotonic() - begun
        self.write("out/report.json", "older")

        seed = random.randrange(1_000_000)
        moments = random.Random(seed)
        interrupted = 0
        for _ in range(8):
            moment = moments.uniform(0.05, 0.95) * length
            taken = []
            for _ in range(ATTEMPTS):
                run = self.start(*arguments, **silent)
                time.sleep(moment)
                taken.append(self.end(run))
                told = f"seed {seed}, {moment:.3f} s into a run of {length:.3f} s: status {run.returncode} after {taken} s"
                self.assert_nothing_temporary(told)
                if self.read("out/report.json") != b"older":  # the run was at its very end
                    self.assertEqual(json.loads(self.read("out/report.json"))["format"], "codebook-report/1", told)
                    self.write("out/report.json", "older")
                if run.returncode in (0, -signal.SIGINT):  # done already, or not begun yet
                    taken.clear()
                    break
                self.assertEqual(run.returncode, 130, told)
                if taken[-1] < AT_ONCE:
                    interrupted += 1
                    break
            if taken:
                self.assertLess(taken[-1], AT_ONCE, told)
        self.assertGreaterEqual(interrupted, 3, f"seed {seed}: too few of the moments lay within the run")

    def rows(self, count):
        numbers = random.Random(7)
        return [(numbers.randrange(1, 8), numbers.randrange(1000), round(numbers.gauss(100, 15), 6), f"town {numbers.randrange(500)}")
                for _ in range(count)]

    def test_atAnyTimeOverCsv(self):
        for threads in ("1", "4"):
            with self.subTest(threads=threads):
                self.interrupt_at_any_time("data.csv", *CSV, "--threads", threads)

    def test_atAnyTimeOverCsvInLittleMemory(self):
        self.interrupt_at_any_time("data.csv", *CSV, "--memory-limit", "64MB")

    @unittest.skipUnless(WITH_DUCKDB, "built without DuckDB")
    def test_atAnyTimeOverJsonLines(self):
        self.interrupt_at_any_time("data.jsonl", *JSON_LINES, "--threads", "4")


if __name__ == "__main__":
    unittest.main()
