"""Every option of the command line, and what is wrong use of it."""

import json
import unittest

from program import LITTLE, ProgramTest

DATA = "a,b\n1,x\n2,y\n1,x\n"
SCHEMA = '{"fields": [{"name": "a", "type": "integer", "title": "From the %s"}, {"name": "b", "type": "string"}]}'
LABEL = "CODEBOOK a /VARINFO LABEL /STATISTICS NONE."


class Options(ProgramTest):
    def setUp(self):
        super().setUp()
        self.write("data.csv", DATA)

    def report(self, *arguments, **more):
        result = self.run_program(*arguments, "-F", "json", **more)
        self.assert_status(result, 0)
        return json.loads(result.out)

    def tables(self, *arguments, **more):
        return [table["title"]["text"] for table in self.report(*arguments, **more)["procedures"][0]["tables"]]

    def label_of_a(self, *arguments):
        table = self.report(*arguments, "-c", LABEL)["procedures"][0]["tables"][0]
        return table["dimensions"][0]["items"][0]["items"][0]["cells"][0]["text"]

    def test_withoutCommandTheFileAndEveryVariableAreDescribed(self):
        self.assertEqual(self.tables("data.csv"), ["File Information", "a", "b"])

    def test_defaultCommandShowsTheFactsOfTheFileInOrder(self):
        rows = self.report("data.csv")["procedures"][0]["tables"][0]["dimensions"][0]["items"]
        shown = [(row.get("category") or row["group"])["text"] for row in rows]
        self.assertEqual(shown, ["File Name", "Location", "Label", "Documents", "Weight Variable", "Number of Cases", "Custom Attributes"])

    def test_commandIsTheCommandsText(self):
        for option in (("-c", LITTLE), ("--command", LITTLE), (f"--command={LITTLE}",)):
            self.assertEqual(self.tables("data.csv", *option), ["a", "b"])

    def test_fileHoldsCommands(self):
        self.write("commands.txt", "CODEBOOK b\n  /STATISTICS NONE.\n")
        for option in ("-f", "--file"):
            self.assertEqual(self.tables("data.csv", option, "commands.txt"), ["b"])

    def test_fileOfCommandsMayBeStandardInput(self):
        self.assertEqual(self.tables("data.csv", "-f", "-", stdin=b"CODEBOOK b /STATISTICS NONE."), ["b"])

    def test_dataMayBeStandardInput(self):
        report = self.report("-", "-c", "CODEBOOK /FILEINFO NAME LOCATION CASECOUNT /STATISTICS COUNT.", stdin=DATA.encode())
        name, location, count = report["procedures"][0]["tables"][0]["dimensions"][0]["items"]
        self.assertEqual(name["cells"], [{"column": None, "text": "<none>", "fixed": True}])
        self.assertEqual(location["cells"], [{"column": None, "text": "<none>", "fixed": True}])
        self.assertEqual(count["items"][0]["cells"][0]["number"], 3)

    def test_standardInputTakesADictionary(self):
        self.write("x.json", SCHEMA % "option")
        result = self.run_program("-", "-d", "x.json", "-c", LABEL, stdin=DATA.encode())
        self.assert_done(result)
        self.assertIn("From the option", result.out.decode())

    def test_dictionaryIsLookedForBesideTheData(self):
        self.assertEqual(self.label_of_a("data.csv"), "<none>")
        self.write("data.schema.json", SCHEMA % "schema")
        self.assertEqual(self.label_of_a("data.csv"), "From the schema")

    def test_packageThatListsTheFileGoesBeforeTheSchema(self):
        self.write("data.schema.json", SCHEMA % "schema")
        package = '{"resources": [{"name": "r", "path": "%s", "schema": ' + SCHEMA % "package" + "}]}"
        self.write("datapackage.json", package % "other.csv")
        self.assertEqual(self.label_of_a("data.csv"), "From the schema")
        self.write("datapackage.json", package % "data.csv")
        self.assertEqual(self.label_of_a("data.csv"), "From the package")

    def test_dictionaryOptionGoesBeforeAll(self):
        self.write("data.schema.json", SCHEMA % "schema")
        self.write("x.json", SCHEMA % "option")
        for option in ("-d", "--dictionary"):
            self.assertEqual(self.label_of_a("data.csv", option, "x.json"), "From the option")

    def test_resourceChoosesOneOfAPackage(self):
        self.write("more.csv", "c\n1\n")
        self.write("datapackage.json", '{"resources": [{"name": "one", "path": "data.csv"}, {"name": "two", "path": "more.csv"}]}')
        self.assertEqual(self.tables("datapackage.json", "--resource", "two", "-c", LITTLE), ["c"])
        self.assertEqual(self.tables("datapackage.json", "--resource", "one", "-c", LITTLE), ["a", "b"])

    def test_formatIsTextOrJson(self):
        self.assertIn("Position", self.run_program("data.csv", "-c", LITTLE, "-F", "text").out.decode())
        self.assertEqual(json.loads(self.run_program("data.csv", "-c", LITTLE, "--format", "json").out)["format"], "codebook-report/1")

    def test_outputTakesItsFormatFromItsEnding(self):
        for option in ("-o", "--output"):
            result = self.run_program("data.csv", "-c", LITTLE, option, "report.json")
            self.assert_done(result)
            self.assertEqual(result.out, b"")
            self.assertEqual(json.loads(self.read("report.json"))["format"], "codebook-report/1")

    def test_jsonLinesAreALineATable(self):
        for arguments in (("-F", "jsonl"), ("-o", "report.jsonl")):
            result = self.run_program("data.csv", "-c", LITTLE, *arguments)
            self.assert_done(result)
            lines = (result.out or self.read("report.jsonl")).decode().splitlines()
            self.assertEqual([json.loads(line)["kind"] for line in lines], ["report", "procedure", "table", "table"])

    def test_schemaIsPrintedForItsWordAndAFileOfThatNameStaysInReach(self):
        self.write("schema", DATA)
        result = self.run_program("schema")
        self.assert_done(result)
        self.assertEqual(json.loads(result.out)["$schema"], "https://json-schema.org/draft/2020-12/schema")
        self.assertEqual(self.tables("./schema"), ["File Information", "a", "b"])
        self.assert_refused(self.run_program("schema", "-F", "json"), 2, "codebook schema", "./schema")

    def test_factsStandBesideTheTables(self):
        facts = self.report("data.csv", "-c", "CODEBOOK b.")["facts"]
        self.assertEqual((facts["file"], facts["cases"], facts["variables"], facts["weightedCases"]), ("data.csv", 3, 2, 3))
        self.assertEqual([item["name"] for item in facts["items"]], ["b"])
        self.assertIn({"name": "Weight", "text": "The cases are not weighted: each counts as 1."}, facts["notes"])
        self.assertIsNone(self.report("data.csv", "-c", LITTLE)["facts"]["weightedCases"])
        self.assertIsNone(self.report("-", stdin=DATA.encode())["facts"]["file"])

    def test_formatGoesBeforeTheEndingOfTheOutput(self):
        self.assert_done(self.run_program("data.csv", "-c", LITTLE, "-o", "report.json", "-F", "text"))
        self.assertTrue(self.read("report.json").startswith(b"a\n"))

    def test_weightNamesAnotherVariable(self):
        self.write("w.csv", "a,w\n1,2\n1,3\n")
        counts = self.report("w.csv", "--weight", "w", "-c", "CODEBOOK a /FILEINFO CASECOUNT /STATISTICS COUNT.")
        group = counts["procedures"][0]["tables"][0]["dimensions"][0]["items"][0]
        self.assertEqual([row["cells"][0]["number"] for row in group["items"]], [2, 5])

    def test_emptyWeightSwitchesWeightingOff(self):
        self.write("w.csv", "a,w\n1,2\n1,3\n")
        self.write("w.schema.json", '{"fields": [{"name": "a"}, {"name": "w"}], "codebook": {"weight": "w"}}')
        for option, weighted in (((), 5), (("--weight", ""), 2), (("--weight=",), 2)):
            counts = self.report("w.csv", *option, "-c", "CODEBOOK a /FILEINFO CASECOUNT /STATISTICS COUNT.")
            group = counts["procedures"][0]["tables"][0]["dimensions"][0]["items"][0]
            self.assertEqual(group["items"][1]["cells"][0]["number"], weighted)

    def test_widthBoundsTextTables(self):
        self.write("wide.csv", "a\n1\n")
        self.write("wide.schema.json", '{"fields": [{"name": "a", "title": "' + "a long label " * 20 + '"}]}')
        for width in (40, 60, 200):
            out = self.run_program("wide.csv", "-c", LABEL, "--width", str(width)).out.decode()
            self.assertLessEqual(max(map(len, out.splitlines())), width)
        wide = self.run_program("wide.csv", "-c", LABEL, "--width", "400").out.decode()
        self.assertIn("a long label " * 19 + "a long label", wide)

    def test_timingIsATableOnStandardError(self):
        result = self.run_program("data.csv", "-c", LITTLE, "--timing")
        self.assert_status(result, 0)
        first, head, *rows, memory = result.messages().splitlines()
        self.assertEqual(first, "codebook: where the time went")
        self.assertEqual(head.split(), ["wall", "s", "CPU", "s"])
        self.assertEqual([row.split()[0] for row in rows], ["read", "pass", "percentiles", "tables", "write", "total"])
        self.assertEqual({len(row) for row in rows}, {len(head)})
        for row in rows:
            self.assertRegex(row, r" +\d+\.\d{3} +\d+\.\d{3}\Z")
        self.assertRegex(memory, r"\A  peak memory +\d+\.\d MB\Z")

    def test_timingAsJsonIsALineOnStandardError(self):
        result = self.run_program("data.csv", "-c", LITTLE, "--timing=json")
        self.assert_status(result, 0)
        (line,) = result.messages().splitlines()
        prefix = "codebook: timings: "
        self.assertTrue(line.startswith(prefix), repr(result))
        timings = json.loads(line[len(prefix):])
        self.assertEqual(list(timings), ["read", "pass", "percentiles", "tables", "write", "total", "memory"])
        stages = [timings[stage] for stage in ("read", "pass", "percentiles", "tables", "write")]
        for clock in ("wall", "cpu"):
            self.assertGreaterEqual(timings["total"][clock] + 1e-4, sum(stage[clock] for stage in stages))
        self.assertGreater(timings["total"]["wall"], 0)
        self.assertGreater(timings["memory"], 1_000_000)

    def test_timingTellsTheStagesApart(self):
        self.write("long.csv", "a,b\n" + "1,0.25\n2,7.5\n" * 100_000)
        result = self.run_program("long.csv", "--timing=json", "-c", "CODEBOOK /STATISTICS COUNT MEAN QUARTILES.")
        timings = json.loads(result.messages().removeprefix("codebook: timings: "))
        for stage in ("read", "pass", "percentiles", "tables", "write"):
            self.assertGreater(timings[stage]["wall"], 0, stage)
        self.assertGreater(timings["read"]["cpu"], timings["write"]["cpu"])

    def test_quietRunSaysNothingButWarningsAndErrors(self):
        for option in ("-q", "--quiet"):
            self.assert_done(self.run_program("data.csv", "-c", " ", option))
            warned = self.run_program("data.csv", "-c", "CODEBOOK /STATISTICS NONE /FILEINFO.", option)
            self.assert_says(warned, "codebook: warning: ")
            self.assert_says(self.run_program("nosuch.csv", option), "codebook: error: ")
        self.assert_says(self.run_program("data.csv", "-c", " "), "no command")

    def test_memoryLimitTakesAmountsOfMemory(self):
        plain = self.run_program("data.csv").out
        for amount in ("64MB", "64000000", "512MiB", "1GB", "1.5gb"):
            result = self.run_program("data.csv", "--memory-limit", amount)
            self.assert_done(result)
            self.assertEqual(result.out, plain)

    def test_strictMakesMisfitsErrors(self):
        self.write("data.schema.json", '{"fields": [{"name": "a"}, {"name": "b", "type": "integer"}]}')
        lenient = self.run_program("data.csv", "-c", LITTLE)
        self.assert_status(lenient, 0)
        self.assert_says(lenient, "warning", 'column "b"', '"x"', "3 such cells")
        self.assert_refused(self.run_program("data.csv", "-c", LITTLE, "--strict"), 3, "data.csv:2", 'column "b"', "row 1", '"x"', "integer")

    def test_helpNamesEveryOptionAndEveryStatus(self):
        result = self.run_program("--help")
        self.assert_done(result)
        for word in ("-d,--dictionary", "--resource", "-c,--command", "-f,--file", "-F,--format", "-o,--output", "--weight", "--strict",
                     "--threads", "--width", "--memory-limit", "-q,--quiet", "--timing", "--lang", "--no-pager", "--version", "codebook [OPTIONS] DATA", "130 interrupted", "CODEBOOK /FILEINFO NAME LOCATION"):
            self.assertIn(word, result.out.decode())

    def test_versionIsNameAndNumber(self):
        result = self.run_program("--version")
        self.assert_done(result)
        self.assertRegex(result.out.decode(), r"\Acodebook \d+\.\d+\.\d+\n\Z")

    def test_plainAsciiWhereTheLocaleIsNotUtf8(self):
        self.write("u.csv", "a\n1\n")
        self.write("u.schema.json", '{"fields": [{"name": "a", "title": "Größe 質問"}]}')
        plain = self.run_program("u.csv", "-c", LABEL, LC_ALL="C", LANG="C")
        self.assert_status(plain, 0)
        self.assertTrue(plain.out.isascii(), repr(plain))
        self.assertIn("Größe 質問", self.run_program("u.csv", "-c", LABEL).out.decode())


class WrongUse(ProgramTest):
    def refused(self, arguments, *words, **more):
        self.assert_refused(self.run_program(*arguments, **more), 2, *words)

    def setUp(self):
        super().setUp()
        self.write("data.csv", DATA)

    def test_withoutData(self):
        self.refused((), "DATA", "--help")

    def test_unknownOption(self):
        self.refused(("data.csv", "--nosuch"), "--nosuch", "--help")
        self.refused(("--nosuch",), "--nosuch", "--help")

    def test_optionWithoutItsValue(self):
        self.refused(("data.csv", "-c"), "-c", "--help")

    def test_weightThatNamesNoVariable(self):
        for arguments in (("data.csv", "--weight"), ("data.csv", "--weight", "-c", LITTLE), ("--weight",)):
            self.refused(arguments, "--weight", "--weight ''")

    def test_memoryLimitThatIsNoAmount(self):
        for amount in ("lots", "-1GB", "1XB", "256M", "1e9", "99999999TB"):
            self.refused(("data.csv", f"--memory-limit={amount}"), "--memory-limit", "256MB")

    def test_memoryLimitThatIsTooLow(self):
        for amount in ("63MB", "63999999", "0", "1KB"):
            self.refused(("data.csv", "--memory-limit", amount), amount, "64MB")

    def test_formOfTimingThatIsNotKnown(self):
        self.refused(("data.csv", "--timing=xml"), "--timing", '"xml"', "json")

    def test_unknownFormat(self):
        self.refused(("data.csv", "-F", "pdf"), '"pdf"', "text", "json")

    def test_outputWhoseEndingNamesNoFormat(self):
        self.refused(("data.csv", "-o", "report.pdf"), '"report.pdf"', "-F", "json")

    def test_commandAndFileOfCommands(self):
        self.refused(("data.csv", "-c", LITTLE, "-f", "x"), "-c", "-f")

    def test_dataAndCommandsFromStandardInput(self):
        self.refused(("-", "-f", "-"), "standard input")

    def test_fileOfCommandsThatIsNotThere(self):
        self.refused(("data.csv", "-f", "nosuch.txt"), '"nosuch.txt"', "No such file")

    def test_fileOfCommandsThatIsADirectory(self):
        self.refused(("data.csv", "-f", "."), '"."', "directory")

    def test_threadsOutOfRange(self):
        for threads in ("0", "-1", "1025", "many"):
            self.refused(("data.csv", "--threads", threads), "--threads", threads, "1 to 1024")

    def test_widthOutOfRange(self):
        self.refused(("data.csv", "--width", "19"), "--width", "20 to 10000")

    def test_outputThatWouldOverwriteWhatIsRead(self):
        self.write("commands.json", LITTLE)
        self.write("d.json", '{"fields": [{"name": "a"}, {"name": "b"}]}')
        self.refused(("data.csv", "-F", "json", "-o", "./data.csv"), '"data.csv"', "-o")
        self.refused(("data.csv", "-f", "commands.json", "-o", "commands.json"), '"commands.json"')
        self.refused(("data.csv", "-d", "d.json", "-o", "d.json"), '"d.json"')
        self.assertEqual(self.read("data.csv"), DATA.encode())

    def test_nothingOfTheCommandLineReachesTheTerminalRaw(self):
        self.refused(("data.csv", "--\x1b[31mred"), "--")
        self.refused(("data.csv", "-F", "\x1b]0;title\x07"), "format")


if __name__ == "__main__":
    unittest.main()
