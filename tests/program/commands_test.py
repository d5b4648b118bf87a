"""Several commands in one run, commands that stop, and the exit status of each."""

import json
import unittest

from program import ProgramTest

NONE = " /VARINFO POSITION /STATISTICS NONE."


class Commands(ProgramTest):
    def setUp(self):
        super().setUp()
        self.write("data.csv", "x,q,r\n1,1,0\n2,0,1\n")
        self.write("data.schema.json", '''{"fields": [{"name": "x", "type": "integer", "codebook": {"measure": "scale"}},
            {"name": "q", "type": "integer"}, {"name": "r", "type": "integer"}],
            "codebook": {"multipleResponseSets": [{"name": "$s", "type": "dichotomy", "variables": ["q", "r"], "countedValue": "1"}]}}''')

    def run_commands(self, text):
        result = self.run_program("data.csv", "-F", "json", "-c", text)
        return result, json.loads(result.out) if result.out else None

    def titles(self, report):
        return [[table["title"]["text"] for table in procedure["tables"]] for procedure in report["procedures"]]

    def test_eachCommandHasItsProcedure(self):
        result, report = self.run_commands(f"CODEBOOK x{NONE}\nCODEBOOK q r{NONE}")
        self.assert_done(result)
        self.assertEqual(self.titles(report), [["x"], ["q", "r"]])

    def test_commandThatStopsLetsTheOthersRun(self):
        result, report = self.run_commands(f"CODEBOOK x{NONE}\nCODEBOOK nosuch{NONE}\nCODEBOOK q{NONE}")
        self.assert_status(result, 1)
        self.assertEqual(self.titles(report), [["x"], [], ["q"]])
        self.assertEqual([m["text"] for m in report["messages"]], ["nosuch Invalid or non-existent variable name."])
        self.assertEqual(result.messages(), "codebook: error: nosuch Invalid or non-existent variable name.\n")

    def test_warningsLeaveTheStatusZero(self):
        result, report = self.run_commands("CODEBOOK x /VARINFO POSITION /STATISTICS NONE /FILEINFO.")
        self.assert_status(result, 0)
        self.assertEqual([m["severity"] for m in report["messages"]], ["warning"])

    def test_errorThatDoesNotStopTheCommandLeavesTheStatusZero(self):
        result, report = self.run_commands("CODEBOOK x q x TO r" + NONE)
        self.assert_status(result, 0)
        self.assertEqual([m["severity"] for m in report["messages"]], ["error"])
        self.assertEqual(self.titles(report), [["x", "q", "r"]])

    def test_unknownCommandNamesTheNearestAndItsPlace(self):
        result, report = self.run_commands("CODEBOOK x" + NONE + "\n  CODEBOK q.\nCODEBOOK r" + NONE)
        self.assert_status(result, 1)
        self.assert_says(result, '"CODEBOK"', "line 2, column 3", "Did you mean CODEBOOK?", "\n    CODEBOK q.\n    ^\n")
        self.assertEqual(self.titles(report), [["x"], ["r"]])

    def test_syntaxErrorShowsItsPlaceInTheText(self):
        result, report = self.run_commands("CODEBOOK x\n  /STATISTICS MEEN.")
        self.assert_status(result, 1)
        self.assert_says(result, "line 2, column 15", "Did you mean MEAN?", "\n    /STATISTICS MEEN.\n                ^\n")
        self.assertEqual(self.titles(report), [[]])

    def test_failedInternalCheckEndsTheRun(self):
        result, report = self.run_commands(f"CODEBOOK x{NONE}\nCODEBOOK x $s /STATISTICS MEAN.\nCODEBOOK q{NONE}")
        self.assert_refused(result, 70, "mdSetVarIndice.size() >0", "backend/codebook/cbkoutput", "No report was written.")
        self.assertIsNone(report)

    def test_failedInternalCheckLeavesAnOlderReport(self):
        self.write("report.json", "older")
        result = self.run_program("data.csv", "-c", "CODEBOOK x $s /STATISTICS MEAN.", "-o", "report.json")
        self.assert_refused(result, 70, "mdSetVarIndice.size() >0")
        self.assertEqual(self.read("report.json"), b"older")

    def test_reportOfAStoppedCommandIsWrittenAllTheSame(self):
        result = self.run_program("data.csv", "-c", f"CODEBOOK nosuch.\nCODEBOOK x{NONE}", "-o", "report.json")
        self.assert_status(result, 1)
        self.assertEqual(self.titles(json.loads(self.read("report.json"))), [[], ["x"]])

    def test_commandsOfAFileMayEndWithoutAPeriodAndWithWindowsLineEnds(self):
        self.write("c.txt", "CODEBOOK x\r\n  /VARINFO POSITION\r\n  /STATISTICS NONE.\r\nCODEBOOK q /STATISTICS NONE")
        result = self.run_program("data.csv", "-F", "json", "-f", "c.txt")
        self.assert_done(result)
        self.assertEqual(self.titles(json.loads(result.out)), [["x"], ["q"]])


if __name__ == "__main__":
    unittest.main()
