"""codebook check: what does not fit, with codes, places and an exit status."""

import json
import os
import unittest

from program import PROJECT, ProgramTest

DDI = os.path.join(PROJECT, "tests", "data", "ddi")

SCHEMA = """{"fields": [{"name": "id", "type": "integer", "constraints": {"unique": true}},
    {"name": "q", "type": "integer", "categories": [{"value": 1, "label": "yes"}, {"value": 2, "label": "no"}]}]}"""


class Check(ProgramTest):
    def found(self, *arguments):
        result = self.run_program("check", *arguments, "--format", "json")
        return result, json.loads(result.out) if result.out else None

    def test_cleanDataEndWithZero(self):
        self.write("data.csv", "id,q\n1,1\n2,2\n")
        self.write("data.schema.json", SCHEMA)
        result = self.run_program("check", "data.csv")
        self.assert_done(result)
        self.assertEqual(result.out, b"data.csv: 2 cases, 2 variables: 0 errors, 0 warnings, 0 remarks\n")

    def test_findingsEndWithOneAndTellThePlace(self):
        self.write("data.csv", "id,q\n1,1\n2,7\n2,2\n")
        self.write("data.schema.json", SCHEMA)
        result, report = self.found("data.csv")
        self.assert_status(result, 1)
        self.assertEqual(result.err, b"")
        self.assertEqual([(f["code"], f["variable"], f["value"], f["row"], f["count"]) for f in report["findings"]],
                         [("C204", "id", "2", 2, 2), ("C301", "q", "7", 2, 1)])
        self.assertEqual(report["summary"], {"errors": 2, "warnings": 0, "infos": 0})
        self.assertEqual((report["data"], report["cases"], report["variables"]), ("data.csv", 3, 2))
        self.assertTrue(report["dictionary"].endswith("data.schema.json"))

    def test_textNamesFileVariableCodeAndWhatToDo(self):
        self.write("data.csv", "id,q\n1,1\n2,7\n3,2\n")
        self.write("data.schema.json", SCHEMA)
        result = self.run_program("check", "data.csv")
        self.assert_status(result, 1)
        lines = result.out.decode().splitlines()
        self.assertEqual(lines[0], "data.csv: q: C301 error: 7 is none of the categories (row 2)")
        self.assertIn("add a category", lines[1])

    def test_remarksDoNotCount(self):
        self.write("data.csv", "id,q\n1,1\n2,1\n")
        self.write("data.schema.json", SCHEMA)
        result, report = self.found("data.csv", "--ignore", "constant")
        self.assert_status(result, 0)
        self.assertEqual([(f["code"], f["severity"]) for f in report["findings"]], [("C303", "info")])

    def test_ignoredCodesAreLeftOut(self):
        self.write("data.csv", "id,q\n1,1\n2,7\n3,2\n")
        self.write("data.schema.json", SCHEMA)
        result = self.run_program("check", "data.csv", "--ignore", "C301,C303")
        self.assert_done(result)
        result = self.run_program("check", "data.csv", "--ignore", "C999")
        self.assert_refused(result, 2, '"C999"')

    def test_outputGoesToAFile(self):
        self.write("data.csv", "id,q\n1,1\n2,2\n")
        result = self.run_program("check", "data.csv", "-o", "list.txt")
        self.assert_done(result)
        self.assertEqual(result.out, b"")
        self.assertIn(b"0 errors", self.read("list.txt"))

    def test_whatCannotBeReadEndsWithThree(self):
        self.write("data.csv", "id,q\n1,1\n")
        self.assert_refused(self.run_program("check", "nosuch.csv"), 3, "nosuch.csv")
        self.write("bad.json", '{"fields": [')
        self.assert_refused(self.run_program("check", "data.csv", "-d", "bad.json"), 3, "bad.json")
        self.write("bad.xml", "<codeBook><dataDscr></codeBook>")
        self.assert_refused(self.run_program("check", "data.csv", "-d", "bad.xml"), 3, "bad.xml")

    def test_wrongUseEndsWithTwo(self):
        self.assert_refused(self.run_program("check"), 2, "codebook check --help")
        self.assert_refused(self.run_program("check", "data.csv", "--format", "xml"), 2, '"xml"')

    def test_outputDoesNotReplaceWhatIsRead(self):
        self.write("data.csv", "id,q\n1,1\n2,2\n")
        self.assert_refused(self.run_program("check", "data.csv", "-o", "data.csv"), 2, "overwrite")
        self.assertEqual(self.read("data.csv"), b"id,q\n1,1\n2,2\n")

    def test_severalFilesAreOneTable(self):
        self.write("a.csv", "id,q\n1,1\n2,2\n")
        self.write("b.csv", "id,q\n2,1\n")
        self.write("t.json", SCHEMA)
        result, report = self.found("a.csv", "b.csv", "-d", "t.json")
        self.assert_status(result, 1)
        self.assertEqual([(f["code"], f["value"], f["row"], f["count"]) for f in report["findings"]], [("C204", "2", 2, 2)])

    def test_helpIsText(self):
        result = self.run_program("check", "--help")
        self.assert_done(result)
        self.assertIn(b"codebook check", result.out)

    def test_controlsOfTheDataAreNotShownRaw(self):
        self.write("data.csv", 'id,q\x1b[31m\n1,"a\x1b]0;x\x07"\n2,"\xe2\x80\xaeb"\n'.encode("latin-1"))
        self.write("data.schema.json", '{"fields": [{"name": "id"}, {"name": "q\\u001b[31m", "type": "string", "categories": ["c"]}]}')
        result = self.run_program("check", "data.csv")
        self.assert_status(result, 1)
        self.assertIn(b"C301", result.out)
        self.assert_nothing_raw(result.out, result.err)

    def test_dictionaryOfDdi(self):
        self.write("data.csv", "sex,age\n1,30\n3,-4\n2,41\n")
        self.write("data.ddi.xml", """<codeBook><dataDscr><var name="sex"><labl>Sex</labl>
            <catgry><catValu>1</catValu><labl>male</labl></catgry><catgry><catValu>2</catValu><labl>female</labl></catgry>
            </var><var name="age"><labl>Age</labl></var><var name="gone"><labl>Not there</labl></var></dataDscr></codeBook>""")
        result, report = self.found("data.csv")
        self.assert_status(result, 1)
        codes = {(f["code"], f.get("variable")) for f in report["findings"]}
        self.assertIn(("C101", "gone"), codes)
        self.assertTrue({("C301", "sex"), ("C302", "sex")} & codes, repr(report))
        self.assertIn(("C304", "age"), codes)

    def test_dictionaryOfRedcap(self):
        self.write("dict.csv", "Variable / Field Name,Form Name,Section Header,Field Type,Field Label,"
                   "\"Choices, Calculations, OR Slider Labels\"\nsex,f,,radio,Sex,\"1, male | 2, female\"\n")
        self.write("data.csv", "sex\n1\n3\n2\n")
        result, report = self.found("data.csv", "-d", "dict.csv")
        self.assert_status(result, 1)
        self.assertIn("3", [f.get("value") for f in report["findings"]])

    def test_publishedHouseholdsAreReadToTheEnd(self):
        folder = os.path.join(DDI, "household-budget")
        data = [name for name in sorted(os.listdir(folder)) if name.endswith(".csv")]
        if not data:
            self.skipTest("no data beside the published DDI")
        result, report = self.found(os.path.join(folder, data[0]))
        self.assertIn(result.status, (0, 1))
        self.assertGreater(report["cases"], 0)


if __name__ == "__main__":
    unittest.main()
