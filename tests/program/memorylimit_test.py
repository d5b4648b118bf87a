"""Data beyond --memory-limit: the same report, no file left, and a clear word when there is no room for temporary files."""

import json
import os
import random
import unittest

from program import SANITIZED, ProgramTest

EVERYTHING = "CODEBOOK /STATISTICS COUNT PERCENT MEAN STDDEV QUARTILES."
COLUMNS = 10
LEAST = "64MB"


class MemoryLimit(ProgramTest):
    @classmethod
    def setUpClass(cls):
        # 8 million doubles, hardly two of a column the same: 64 MB as columns, and as much again as values for quartiles.
        numbers = random.Random(11)
        rows = [",".join("@" + f"{numbers.random():.6f}"[1:] for _ in range(COLUMNS)) for _ in range(4_000)]
        block = "\n".join(rows) + "\n"
        cls.data = ",".join(f"x{i}" for i in range(COLUMNS)) + "\n" + "".join(block.replace("@", str(i)) for i in range(200))

    def setUp(self):
        super().setUp()
        self.write("data.csv", self.data)
        os.mkdir(self.path("temporary"))
        os.mkdir(self.path("out"))

    def run_limited(self, *arguments, folder="temporary"):
        return self.run_program("data.csv", "-c", EVERYTHING, *arguments, TMPDIR=self.path(folder))

    def test_reportIsTheSame(self):
        for threads in ("1", "3"):
            self.assert_done(self.run_limited("-o", "out/plain.json", "--threads", threads))
            self.assert_done(self.run_limited("-o", "out/limited.json", "--threads", threads, "--memory-limit", LEAST))
            self.assertEqual(self.read("out/limited.json"), self.read("out/plain.json"))
        self.assertEqual(os.listdir(self.path("temporary")), [])

    @unittest.skipIf(SANITIZED, "a sanitizer keeps memory of its own")
    def test_memoryIsKeptWithinTheLimit(self):
        def peak(*arguments):
            result = self.run_limited("-o", "out/report.json", "--timing=json", *arguments)
            self.assert_status(result, 0)
            return json.loads(result.messages().removeprefix("codebook: timings: "))["memory"]

        self.assertGreater(peak("--threads", "1"), 100_000_000)
        for threads in ("1", "2"):
            self.assertLessEqual(peak("--threads", threads, "--memory-limit", LEAST), 64_000_000)

    def test_folderForTemporaryFilesThatIsNotThere(self):
        self.write("out/report.json", "older")
        result = self.run_limited("-o", "out/report.json", "--memory-limit", LEAST, folder="nosuch")
        self.assert_refused(result, 4, "codebook: error: ", "nosuch", "temporary file", "No such file", "TMPDIR", "--memory-limit")
        self.assertEqual(os.listdir(self.path("out")), ["report.json"])
        self.assertEqual(self.read("out/report.json"), b"older")

    def test_folderIsNotLookedAtWithoutNeed(self):
        self.assert_done(self.run_limited("-o", "out/report.json", folder="nosuch"))
        self.write("little.csv", "a\n1\n2\n")
        self.assert_done(self.run_program("little.csv", "--memory-limit", LEAST, TMPDIR=self.path("nosuch")))


if __name__ == "__main__":
    unittest.main()
