"""The same bytes from every run, and from every number of threads and cases at a time."""

import itertools
import os
import unittest

from program import PROJECT, ProgramTest

NONVOTERS = os.path.join(PROJECT, "examples", "nonvoters", "nonvoters_data.csv")


class SameResult(ProgramTest):
    def report(self, *options, format_="json"):
        result = self.run_program(NONVOTERS, "-F", format_, *options)
        self.assert_status(result, 0)
        self.assertGreater(len(result.out), 100000)
        return result.out, result.err

    def test_twoRunsGiveTheSameBytes(self):
        for format_ in ("json", "text"):
            self.assertEqual(self.report(format_=format_), self.report(format_=format_))

    def test_threadsAndCasesAtATimeChangeNothing(self):
        first = self.report()
        for threads, rows in itertools.product(("1", "2", "7"), (None, "1", "100", "5835", "5836", "100000")):
            options = ["--threads", threads] + (["--chunk-rows", rows] if rows else [])
            with self.subTest(threads=threads, rows=rows):
                self.assertTrue(self.report(*options) == first, "the report differs")

    def test_withoutTheWeightToo(self):
        first = self.report("--weight=")
        self.assertNotEqual(first, self.report())
        for threads, rows in itertools.product(("1", "3"), ("7", "1000")):
            self.assertTrue(self.report("--weight=", "--threads", threads, "--chunk-rows", rows) == first)


if __name__ == "__main__":
    unittest.main()
