"""The runner of the golden cases, with a little program in the place of the real one."""

import os
import subprocess
import sys
import tempfile
import unittest

HERE = os.path.dirname(os.path.abspath(__file__))

# Counts the lines of the file it is given and says so in a report.
STAND_IN = """#!{python}
import json, sys
path = sys.argv[1]
chunk = sys.argv[sys.argv.index("--chunk-rows") + 1] if "--chunk-rows" in sys.argv else "all"
count = sum(1 for _ in open(path)) - 1
text = "wrong" if "WRONG IN CHUNKS OF 3" in sys.argv and chunk == "3" else path
row = {{"category": {{"text": "Cases", "fixed": True}}, "cells": [{{"column": None, "text": str(count), "number": count, "format": "F.0"}}]}}
table = {{"title": {{"text": text, "fixed": False}}, "subtype": {{"text": "T", "fixed": True}}, "flag": False,
         "dimensions": [{{"label": {{"text": "Rows", "fixed": True}}, "place": "rows", "items": [row]}}]}}
facts = {{"file": "f", "cases": 2 if "OTHER FACTS" in sys.argv and chunk == "3" else count, "notes": [{{"name": "N", "text": "t"}}], "items": []}}
messages = [{{"severity": "warning", "source": "data", "text": "many\\nlines"}}]
print("codebook: warning: many\\nlines", file=sys.stderr)
print(json.dumps({{"format": "codebook-report/1", "messages": messages, "procedures": [{{"title": "P", "tables": [table]}}], "facts": facts}}))
"""

CASE = """--- about
Counts.
--- data
a,b
1,2
3,4
--- command
{command}
--- status
0
--- messages
warning data: many
  | lines
--- report
procedure 'P'
table 'FOLDER/DATAFILE' "T"
  rows "Rows"
    "Cases" | = {count} F.0 '2'
"""


class Runner(unittest.TestCase):
    def setUp(self):
        temporary = tempfile.TemporaryDirectory(prefix="golden.")
        self.addCleanup(temporary.cleanup)
        self.folder = temporary.name
        self.program = os.path.join(self.folder, "program")
        with open(self.program, "w", encoding="utf-8") as file:
            file.write(STAND_IN.format(python=sys.executable))
        os.chmod(self.program, 0o755)

    def write(self, name, text):
        path = os.path.join(self.folder, name + ".golden")
        with open(path, "w", encoding="utf-8") as file:
            file.write(text)
        return path

    def run_cases(self, *arguments, **environment):
        variables = {name: value for name, value in os.environ.items() if name != "CI"}
        return subprocess.run([sys.executable, "-B", os.path.join(HERE, "run.py"), "--program", self.program, "--cases", self.folder, "--quick", *arguments],
                              capture_output=True, text=True, env={**variables, **environment}, check=False)

    def test_caseThatHoldsPasses(self):
        self.write("counts", CASE.format(command="COUNT", count=2))
        done = self.run_cases()
        self.assertEqual((done.returncode, done.stdout), (0, "1 passed, 0 failed\n"), done.stderr)

    def test_differenceIsShownAndFails(self):
        self.write("counts", CASE.format(command="COUNT", count=2))
        self.write("miscounts", CASE.format(command="COUNT", count=3))
        done = self.run_cases()
        self.assertEqual(done.returncode, 1)
        self.assertIn("-    \"Cases\" | = 3 F.0 '2'\n", done.stdout)
        self.assertIn("+    \"Cases\" | = 2 F.0 '2'\n", done.stdout)
        self.assertTrue(done.stdout.endswith("1 passed, 1 failed\n"), done.stdout)

    def test_differenceOfOneSettingIsFound(self):
        self.write("chunks", CASE.format(command="COUNT", count=2).replace("--- command", "--- options\nWRONG IN CHUNKS OF 3\n--- command"))
        done = self.run_cases("chunks")
        self.assertEqual(done.returncode, 1)
        self.assertIn("chunks of 3 rows", done.stdout)
        self.assertNotIn("chunks of all rows", done.stdout)

    def test_factsOfOneSettingThatAreOthersAreFound(self):
        text = CASE.format(command="COUNT", count=3).replace("1,2\n", "1,2\n5,6\n").replace("'2'", "'3'")
        self.write("facts", text)
        self.assertEqual(self.run_cases().returncode, 0)
        self.write("facts", text.replace("--- command", "--- options\nOTHER FACTS\n--- command"))
        done = self.run_cases()
        self.assertEqual(done.returncode, 1)
        self.assertIn("chunks of 3 rows: the facts are not those of", done.stdout)
        self.assertIn("+cases 2\n", done.stdout)

    def test_factsAreComparedWhereTheCaseHasThem(self):
        text = CASE.format(command="COUNT", count=2) + "--- facts\nfile 'f'\ncases 2\nnote \"N\" \"t\"\n"
        self.write("facts", text)
        self.assertEqual(self.run_cases().returncode, 0)
        path = self.write("facts", text.replace("cases 2", "cases 4"))
        self.assertIn("-cases 4\n", self.run_cases().stdout)
        self.run_cases("--update")
        with open(path, encoding="utf-8") as file:
            self.assertEqual(file.read(), text)

    def test_updateWritesWhatTheProgramSaysAndNothingElse(self):
        path = self.write("miscounts", CASE.format(command="COUNT", count=3))
        done = self.run_cases("--update")
        self.assertIn("-    \"Cases\" | = 3", done.stdout)
        with open(path, encoding="utf-8") as file:
            self.assertEqual(file.read(), CASE.format(command="COUNT", count=2))
        self.assertEqual(self.run_cases().returncode, 0)

    def test_updateIsRefusedWhereCiIsSet(self):
        text = CASE.format(command="COUNT", count=3)
        path = self.write("miscounts", text)
        done = self.run_cases("--update", CI="true")
        self.assertNotEqual(done.returncode, 0)
        self.assertIn("--update is refused", done.stderr)
        with open(path, encoding="utf-8") as file:
            self.assertEqual(file.read(), text)

    def test_unknownCaseAndUnknownSectionAreErrors(self):
        self.write("counts", CASE.format(command="COUNT", count=2))
        done = self.run_cases("nosuch")
        self.assertIn("has no case nosuch", done.stderr)
        self.assertNotEqual(done.returncode, 0)
        self.write("typo", CASE.format(command="COUNT", count=2).replace("--- messages", "--- mesages"))
        done = self.run_cases("typo")
        self.assertIn("there is no section 'mesages'", done.stderr)
        self.assertNotEqual(done.returncode, 0)

    def test_folderWithoutCasesFails(self):
        done = self.run_cases()
        self.assertNotEqual(done.returncode, 0)
        self.assertIn("no case", done.stderr)


if __name__ == "__main__":
    unittest.main()
