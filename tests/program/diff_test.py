"""codebook diff: two waves of real and of made datasets, its three formats, its exit status."""

import base64
import csv
import hashlib
import io
import json
import os
import shutil
import unittest
from xml.etree import ElementTree

import html5lib

from program import PROJECT, ProgramTest

SURVEY = os.path.join(PROJECT, "examples", "nonvoters", "nonvoters_data")
DDI = os.path.join(PROJECT, "tests", "data", "ddi")
XHTML = "{http://www.w3.org/1999/xhtml}"

OLD = "id,sex,age,open\n1,1,20,a\n2,2,30,b\n3,1,40,c\n4,2,-9,d\n"
FIELDS = [{"name": "id", "type": "integer", "title": "Number"},
          {"name": "sex", "type": "integer", "title": "Sex",
           "categories": [{"value": 1, "label": "Male"}, {"value": 2, "label": "Female"}]},
          {"name": "age", "type": "integer", "title": "Age", "missingValues": ["", "-9"], "codebook": {"measure": "scale"}},
          {"name": "open", "type": "string"}]


def fields(**changes):
    """The fields with some of their properties replaced."""
    return [{**field, **changes.get(field["name"], {})} for field in FIELDS]


class Diff(ProgramTest):
    def write_wave(self, name, data, schema_fields, **schema):
        self.write(f"{name}.csv", data)
        self.write(f"{name}.schema.json", json.dumps({"fields": schema_fields, **schema}))

    def setUp(self):
        super().setUp()
        self.write_wave("old", OLD, FIELDS)

    def report(self, *arguments, status=1):
        result = self.run_program("diff", *arguments, "-F", "json")
        self.assert_status(result, status)
        return json.loads(result.out)

    def changes_of(self, report, name):
        variable = next(v for v in report["variables"] if name in (v["old"], v["new"]))
        return [(c["code"], c.get("about"), c["old"], c["new"]) for c in variable["changes"]]

    def test_sameFilesAreTheSame(self):
        result = self.run_program("diff", "old.csv", "old.csv")
        self.assert_done(result)
        self.assertEqual(result.out.decode().splitlines(),
                         ["No differences: 4 variables the same", "old  old.csv: 4 cases, 4 variables",
                          "new  old.csv: 4 cases, 4 variables"])
        report = self.report("old.csv", "old.csv", status=0)
        self.assertTrue(report["same"])
        self.assertEqual(report["variables"], [])

    def test_theSurveyIsTheSameAsItself(self):
        self.assertTrue(self.report(SURVEY + ".csv", SURVEY + ".csv", status=0)["same"])

    def test_dictionaryChangesOfTheSurveyAreTold(self):
        with open(SURVEY + ".schema.json", encoding="utf-8") as file:
            schema = json.load(file)
        by_name = {field["name"]: field for field in schema["fields"]}
        by_name["Q1"]["title"] = "Citizen?"
        by_name["Q2_3"]["categories"][0]["label"] = "Very, very important"
        by_name["Q2_3"]["missingValues"] = [{"value": "-1", "label": "Refused"}, {"value": "-9"}]
        by_name["Q2_1"]["categoriesOrdered"] = False
        schema["codebook"]["multipleResponseSets"][0]["label"] = "Other"
        schema["title"] = "Wave 2"
        self.write("edited.json", json.dumps(schema))
        report = self.report(SURVEY + ".csv", SURVEY + ".csv", "--new-dictionary", "edited.json")
        self.assertEqual([(c["code"], c["new"]) for c in report["file"]],
                         [("file-label-changed", "Wave 2"), ("set-label-changed", "Other")])
        self.assertEqual({v["new"] for v in report["variables"]}, {"Q1", "Q2_1", "Q2_3"})
        self.assertEqual(self.changes_of(report, "Q1"), [("label-changed", None, "Are you a U.S. citizen?", "Citizen?")])
        self.assertEqual(self.changes_of(report, "Q2_1"), [("level-changed", None, "ordinal", "nominal")])
        self.assertEqual(self.changes_of(report, "Q2_3"),
                         [("value-label-changed", "1", "Very important", "Very, very important"),
                          ("missing-added", "-9", None, None)])

    def test_distributionsOfTheSurveyAreCompared(self):
        with open(SURVEY + ".csv", encoding="utf-8", newline="") as file:
            header, *rows = csv.reader(file)
        sex, age = header.index("gender"), header.index("ppage")
        count = len(rows)
        women = sum(row[sex] == "Female" for row in rows)
        ages = [int(row[age]) for row in rows]
        for number, row in enumerate(rows):
            if number % 2 == 0:
                row[sex] = "Female"
            row[age] = str(int(row[age]) + 10)
        women_after = sum(row[sex] == "Female" for row in rows)
        text = io.StringIO()
        csv.writer(text).writerows([header, *rows])
        self.write("new.csv", text.getvalue())
        report = self.report(SURVEY + ".csv", "new.csv", "--new-dictionary", SURVEY + ".schema.json", "--unweighted")
        self.assertEqual({v["new"] for v in report["variables"]}, {"gender", "ppage"})
        by_code = {c["about"]: c for v in report["variables"] for c in v["changes"] if c["code"] == "value-share-moved"}
        self.assertEqual(set(by_code), {"Female", "Male"})
        self.assertAlmostEqual(by_code["Female"]["old"], 100 * women / count)
        self.assertAlmostEqual(by_code["Female"]["new"], 100 * women_after / count)
        mean = next(c for v in report["variables"] for c in v["changes"] if c["code"] == "mean-moved")
        self.assertAlmostEqual(mean["old"], sum(ages) / count)
        self.assertAlmostEqual(mean["new"] - mean["old"], 10)

    def test_sharesAreWeightedByEachWavesWeight(self):
        data = "sex,w\n1,1\n2,3\n"
        schema = [{"name": "sex", "type": "integer", "codebook": {"measure": "nominal"}}, {"name": "w", "type": "number"}]
        self.write_wave("one", data, schema)
        self.write_wave("two", data, schema, codebook={"weight": "w"})
        report = self.report("one.csv", "two.csv")
        moved = [(c["about"], c["old"], c["new"]) for v in report["variables"] if v["new"] == "sex" for c in v["changes"]]
        self.assertEqual(moved, [("1", 50, 25), ("2", 50, 75)])
        self.assertEqual([c["code"] for c in report["file"]], ["weight-changed"])
        self.assertTrue(self.report("one.csv", "two.csv", "--unweighted", status=0)["same"])

    def test_recodingIsToldAndFollowed(self):
        self.write_wave("new", OLD.replace(",1,", ",7,"),
                        fields(sex={"categories": [{"value": 7, "label": "Male"}, {"value": 2, "label": "Female"}]}))
        report = self.report("old.csv", "new.csv")
        self.assertEqual(self.changes_of(report, "sex"), [("code-moved", "Male", "1", "7")])

    def test_renamesAreProposedWithTheirEvidence(self):
        self.write_wave("new", OLD.replace("sex", "gender"), fields(sex={"name": "gender"}))
        report = self.report("old.csv", "new.csv")
        self.assertEqual([(v["status"], v["old"], v["new"], v["score"]) for v in report["variables"]],
                         [("renamed", "sex", "gender", 1)])
        text = self.run_program("diff", "old.csv", "new.csv").out.decode()
        self.assertIn("1 variable perhaps renamed", text)
        self.assertIn("sex → gender ?", text)
        self.assertIn("same label, value labels and type; score 1.0", text)

    def test_movedMissingSharesAreTold(self):
        self.write_wave("new", OLD.replace(",20,", ",-9,"), FIELDS)
        self.assertEqual(self.changes_of(self.report("old.csv", "new.csv", "--mean-threshold", "9"), "age"),
                         [("missing-share-moved", None, 25, 50)])
        self.assertTrue(self.report("old.csv", "new.csv", "--mean-threshold", "9", "--missing-threshold", "26",
                                    status=0)["same"])

    def test_thresholdIsWhatCounts(self):
        self.write_wave("new", OLD.replace("2,2,", "2,1,"), FIELDS)
        self.assertEqual(self.changes_of(self.report("old.csv", "new.csv", "--threshold", "25"), "sex"),
                         [("value-share-moved", "1", 50, 75), ("value-share-moved", "2", 50, 25)])
        self.assertTrue(self.report("old.csv", "new.csv", "--threshold", "25.1", status=0)["same"])

    def test_dictionaryOnlyCountsNothing(self):
        self.write_wave("new", OLD.replace("2,2,", "2,1,"), FIELDS)
        report = self.report("old.csv", "new.csv", "--dictionary-only", status=0)
        self.assertFalse(report["distributionsCompared"])

    def test_emptyDataHaveNoDistributions(self):
        self.write_wave("new", "id,sex,age,open\n", FIELDS)
        report = self.report("old.csv", "new.csv", status=0)
        self.assertEqual((report["old"]["cases"], report["new"]["cases"]), (4, 0))

    def test_dictionariesAloneAreCompared(self):
        self.write("new.schema.json", json.dumps({"fields": fields(sex={"title": "Gender"})[:3]}))
        report = self.report("old.schema.json", "new.schema.json")
        self.assertIsNone(report["old"]["cases"])
        self.assertEqual([(v["status"], v["old"], v["new"]) for v in report["variables"]],
                         [("changed", "sex", "sex"), ("removed", "open", None)])

    def test_dataMeetADictionaryAlone(self):
        self.assertTrue(self.report("old.csv", "old.schema.json", status=0)["same"])

    def test_dataPackagesOfBothVersionsAreCompared(self):
        for version, profile in (("1", {"profile": "tabular-data-package"}),
                                 ("2", {"$schema": "https://datapackage.org/profiles/2.0/datapackage.json"})):
            os.mkdir(self.path(version))
            shutil.copy(self.path("old.csv"), self.path(version))
            self.write(f"{version}/datapackage.json", json.dumps({**profile, "name": "p", "resources": [
                {"name": "r", "path": "old.csv", "schema": {"fields": FIELDS}}]}))
        self.assertTrue(self.report("1/datapackage.json", "2/datapackage.json", status=0)["same"])

    def test_packageWithoutItsDataIsADictionary(self):
        self.write("p/datapackage.json", json.dumps({"name": "p", "resources": [
            {"name": "r", "path": "gone.csv", "schema": {"fields": FIELDS}}]}))
        self.assert_refused(self.run_program("diff", "p/datapackage.json", "old.csv"), 3, "gone.csv")
        report = self.report("p/datapackage.json", "old.csv", "--dictionary-only")
        self.assertEqual([(c["code"], c["about"], c["old"]) for c in report["file"]], [("attribute-removed", "Name", "p")])
        self.assertEqual(report["variables"], [])

    def test_redcapDictionaryIsOne(self):
        self.write("redcap.csv", "Variable / Field Name,Form Name,Field Type,Field Label,\"Choices, Calculations, OR Slider Labels\"\n"
                                 "sex,f,radio,Sex,\"1, Male | 2, Female\"\n")
        report = self.report("old.schema.json", "redcap.csv")
        self.assertIsNone(report["new"]["cases"])
        self.assertEqual([v["old"] for v in report["variables"] if v["status"] == "removed"], ["id", "age", "open"])
        self.assertNotIn("value-label-changed", report["counts"]["changes"])

    def test_ddiDocumentsAreTheSameAsThemselves(self):
        for name in ("german/studies/demo.xml", "german/studies/svr_fb_studie.xml", "tiny/101.xml"):
            document = os.path.join(DDI, name)
            self.assertTrue(self.report(document, document, status=0)["same"], name)

    def test_ddiDocumentsAreCompared(self):
        self.write("a.xml", '<codeBook><dataDscr><var name="a"><labl>The letter</labl></var></dataDscr></codeBook>')
        self.write("b.xml", '<codeBook><dataDscr><var name="a"><labl>A letter</labl></var></dataDscr></codeBook>')
        self.assertEqual(self.changes_of(self.report("a.xml", "b.xml"), "a"),
                         [("label-changed", None, "The letter", "A letter")])

    def test_variablesOfPublishedDdiDocumentsComeAndGo(self):
        old, new = (os.path.join(DDI, "household-budget", f"{name}_2023_synth_ground-truth.xml") for name in ("HBS", "LFS"))
        report = self.report(old, new, "--resource", "F2")
        names_of = {path: {variable.get("name") for variable in ElementTree.parse(path).findall(".//{*}var")
                           if "F2" in variable.get("files", "").split()} for path in (old, new)}
        self.assertEqual({v["old"] for v in report["variables"] if v["status"] == "removed"}, names_of[old] - names_of[new])
        self.assertEqual({v["new"] for v in report["variables"] if v["status"] == "added"}, names_of[new] - names_of[old])
        self.assertEqual(report["counts"]["same"] + report["counts"]["changed"], len(names_of[old] & names_of[new]))
        self.assertEqual(report["new"]["variables"], len(names_of[new]))

    def test_longTextsAreShownFromWhereTheyDiffer(self):
        common = "The same words for a long time. " * 30
        self.write_wave("new", OLD, fields(sex={"title": common + "Here it ends."}))
        self.write_wave("older", OLD, fields(sex={"title": common + "There it ends."}))
        text = " ".join(self.run_program("diff", "older.csv", "new.csv").out.decode().split())
        self.assertIn('There it ends." → …"', text)
        self.assertIn('Here it ends."', text)

    def write_hostile(self):
        evil = "<script>alert(1)</script>\x1b[31m\u202e \"&amp;"
        self.write_wave("new", OLD, fields(sex={"title": evil, "categories": [{"value": 1, "label": evil},
                                                                              {"value": 2, "label": "Female"}]}),
                        title=evil)
        return evil

    def test_textHoldsNothingRaw(self):
        self.write_hostile()
        for more in ([], ["--width", "20"], ["--width", "60"]):
            result = self.run_program("diff", "old.csv", "new.csv", *more)
            self.assert_status(result, 1)
            self.assert_nothing_raw(result.out)
            self.assertIn(b"\\x1b", result.out)

    def test_textIsAsciiWhereTheLocaleIs(self):
        self.write_hostile()
        result = self.run_program("diff", "old.csv", "new.csv", LC_ALL="C", LANG="C")
        self.assert_status(result, 1)
        self.assertTrue(result.out.isascii(), repr(result))
        self.assertIn(b" -> ", result.out)

    def test_textKeepsToTheWidth(self):
        self.write_hostile()
        for width in (20, 40, 80):
            lines = self.run_program("diff", "old.csv", "new.csv", "--width", str(width)).out.decode().splitlines()
            self.assertLessEqual(max(map(len, lines)), width)

    def test_pageHoldsNoMarkupOfTheData(self):
        evil = self.write_hostile()
        self.assert_status(self.run_program("diff", "old.csv", "new.csv", "-o", "d.html"), 1)
        page = self.read("d.html").decode()
        self.assertNotIn("\x1b", page)
        self.assertNotIn("\u202e", page)
        tree = html5lib.HTMLParser(strict=True).parse(page)
        tags = {element.tag.removeprefix(XHTML) for element in tree.iter() if isinstance(element.tag, str)}
        self.assertEqual(tags & {"script", "img", "iframe", "link", "object", "form", "base"}, set())
        shown = evil.replace("\x1b", "\\x1b").replace("\u202e", "\\u202e")
        cells = ["".join(cell.itertext()) for cell in tree.iter(XHTML + "td")]
        self.assertEqual(cells.count(shown), 4, "label of the file in two tables, of the variable, of a value")
        style = next(tree.iter(XHTML + "style")).text
        digest = base64.b64encode(hashlib.sha256(style.encode()).digest()).decode()
        policy = next(m for m in tree.iter(XHTML + "meta") if m.get("http-equiv")).get("content")
        self.assertIn(f"style-src 'sha256-{digest}'", policy)
        self.assertIn("default-src 'none'", policy)

    def test_pageTablesHaveCaptionsAndHeads(self):
        self.write_wave("new", OLD.replace("2,2,", "2,1,"), fields(age={"title": "Years"}))
        self.assert_status(self.run_program("diff", "old.csv", "new.csv", "-o", "d.html"), 1)
        tree = html5lib.HTMLParser(strict=True).parse(self.read("d.html").decode())
        tables = list(tree.iter(XHTML + "table"))
        self.assertEqual(len(tables), 4)  # the waves, two lists of changes, a distribution
        for table in tables:
            self.assertEqual(len(list(table.iter(XHTML + "caption"))), 1)
            for head in table.iter(XHTML + "th"):
                self.assertIn(head.get("scope"), ("col", "row"))

    def test_pageShowsWhatJsonTells(self):
        self.write_wave("new", OLD.replace("2,2,", "2,1,").replace("open", "text"),
                        fields(age={"title": "Years"}, open={"name": "text"}))
        report = self.report("old.csv", "new.csv")
        self.assert_status(self.run_program("diff", "old.csv", "new.csv", "-o", "d.html"), 1)
        tree = html5lib.HTMLParser(strict=True).parse(self.read("d.html").decode())
        articles = list(tree.iter(XHTML + "article"))
        self.assertEqual([article.get("class") for article in articles], [v["status"] for v in report["variables"]])
        for article, variable in zip(articles, report["variables"]):
            title = "".join(next(article.iter(XHTML + "h3")).itertext())
            self.assertTrue(title.startswith(variable["new"] or variable["old"]))
            rows = [row for row in article.iter(XHTML + "tr") if len(list(row.iter(XHTML + "td"))) == 3]
            self.assertEqual(len(rows), len(variable["changes"]))

    def test_sameInputGivesTheSameBytes(self):
        self.write_wave("new", OLD.replace("2,2,", "2,1,"), fields(age={"title": "Years"}))
        for form in ("text", "json", "html"):
            runs = {self.run_program("diff", "old.csv", "new.csv", "-F", form, "--threads", threads).out
                    for threads in ("1", "2", "2")}
            self.assertEqual(len(runs), 1, form)

    def test_wrongUseIsRefused(self):
        self.assert_refused(self.run_program("diff", "old.csv"), 2, "NEW")
        self.assert_refused(self.run_program("diff", "-", "-"), 2, "standard input")
        self.assert_refused(self.run_program("diff", "old.csv", "old.csv", "-F", "pdf"), 2, "pdf", "html")
        self.assert_refused(self.run_program("diff", "old.csv", "old.csv", "-o", "d.pdf"), 2, "d.pdf")
        self.assert_refused(self.run_program("diff", "old.csv", "old.csv", "-o", "old.csv", "-F", "text"), 2, "overwrite")
        self.assertEqual(self.read("old.csv").decode(), OLD)

    def test_whatCannotBeReadIsRefused(self):
        self.assert_refused(self.run_program("diff", "old.csv", "none.csv"), 3, "none.csv")
        self.assert_refused(self.run_program("diff", "none.xml", "old.csv"), 3, "none.xml")
        self.write("broken.json", "{")
        self.assert_refused(self.run_program("diff", "old.csv", "broken.json"), 3, "broken.json")

    def test_whatCannotBeWrittenIsTold(self):
        self.assert_refused(self.run_program("diff", "old.csv", "old.csv", "-o", "no/d.html"), 4, "no/d.html")

    def test_helpNamesTheStatus(self):
        result = self.run_program("diff", "--help")
        self.assert_done(result)
        self.assertIn(b"1 differences", result.out)


if __name__ == "__main__":
    unittest.main()
