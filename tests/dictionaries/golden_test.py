"""The dictionaries of all golden cases: converted there and back, and as -F ddi writes them."""

import json
import os
import sys
import unittest
from xml.etree import ElementTree

TESTS = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
sys.path[:0] = [os.path.join(TESTS, folder) for folder in ("golden", "program")]

from casefile import ENDING, PROJECT, GoldenCase  # noqa: E402
from datafiles import write_csv  # noqa: E402
from program import SANITIZED, ProgramTest  # noqa: E402
from validation import problems_of_ddi, problems_of_json  # noqa: E402

GOLDEN = os.path.join(PROJECT, "tests", "golden")
EVERYTHING = "CODEBOOK ALL /FILEINFO LABEL DOCUMENTS WEIGHT CASECOUNT ATTRIBUTES /STATISTICS COUNT MEAN STDDEV QUARTILES."


def cases():
    names = sorted(name for name in os.listdir(GOLDEN) if name.endswith(ENDING))
    return [GoldenCase(os.path.join(GOLDEN, name)) for name in (names[::10] if SANITIZED else names)]


class GoldenDictionaries(ProgramTest):
    def codebook(self, *arguments, statuses=(0,)):
        result = self.run_program(*arguments)
        self.assertIn(result.status, statuses, f"{arguments}: {result}")
        return result

    def testConvertedThereAndBackNothingIsLost(self):
        written = []
        for case in cases():
            if case.dictionary() is None:
                continue
            given = self.write(f"{case.name}.schema.json", case.dictionary())
            if self.run_program("convert", given, "plain.schema.json").status == 3:
                continue  # the case is one of a faulty dictionary
            with self.subTest(case.name):
                ddi = f"{case.name}.ddi.xml"
                self.codebook("convert", given, ddi)
                self.codebook("convert", ddi, "back.schema.json")
                self.codebook("convert", "back.schema.json", "again.ddi.xml")
                self.assertEqual(self.read("plain.schema.json"), self.read("back.schema.json"))
                self.assertEqual(self.read(ddi), self.read("again.ddi.xml"))
                self.assertEqual(problems_of_json(self.path("plain.schema.json")), [])
                written.append(self.path(ddi))
        self.assertEqual(problems_of_ddi(written), [])
        self.assertGreater(len(written), 5)

    def testWhatIsWrittenWithStatisticsIsTheSameDictionary(self):
        written = []
        for case in cases():
            folder = case.name
            os.makedirs(self.path(folder))
            data = os.path.join(folder, "data.csv")
            write_csv(self.path(data), case.rows(), ",")
            dictionary = []
            if case.dictionary() is not None:
                dictionary = ["-d", self.write(os.path.join(folder, "given.json"), case.dictionary())]
            expected = self.run_program(data, *dictionary, "-F", "json", "-c", EVERYTHING)
            ddi = os.path.join(folder, "out.ddi.xml")
            result = self.run_program(data, *dictionary, "-o", ddi)
            if result.status == 3:
                continue
            with self.subTest(case.name):
                self.assertIn(result.status, (0, 1), result)  # 1: there are no cases to count
                again = self.codebook(data, "-d", ddi, "-F", "json", "-c", EVERYTHING, statuses=(expected.status,))
                self.assertEqual(without_data_messages(expected.out), without_data_messages(again.out))
                written.append(self.path(ddi))
        self.assertEqual(problems_of_ddi(written), [])
        self.assertGreater(len(written), 10)

    def testStatisticsAreThoseOfTheDataWeightedAndNot(self):
        self.write("data.csv", "sex,age,w\n1,20,1\n2,30,2\n1,50,0.5\n9,,1\n")
        self.write("data.schema.json", json.dumps({
            "fields": [{"name": "sex", "type": "integer", "categories": [{"value": 1, "label": "man"}, {"value": 2, "label": "woman"}],
                        "missingValues": ["", "9"]},
                       {"name": "age", "type": "number", "codebook": {"measure": "scale"}}, {"name": "w", "type": "number"}],
            "codebook": {"weight": "w"}}))
        self.codebook("data.csv", "-o", "all.xml")
        variables = {var.get("name"): var for var in ElementTree.parse(self.path("all.xml")).getroot().iter(DDI + "var")}
        self.assertEqual(frequencies(variables["sex"]), {"1": ["2", "1.5"], "2": ["1", "2"], "9": ["1", "1"]})
        self.assertEqual(summary(variables["age"], "not-wgtd"),
                         {"vald": 3, "invd": 1, "mean": 100 / 3, "medn": 30, "stdev": 15.275252316519467})
        weighted = summary(variables["age"], "wgtd")
        self.assertEqual({name: weighted[name] for name in ("vald", "invd", "mean")}, {"vald": 3.5, "invd": 1, "mean": 30})
        self.assertAlmostEqual(weighted["stdev"], ((100 + 0 + 0.5 * 400) / 2.5) ** 0.5, 12)

        self.codebook("data.csv", "-F", "ddi", "-o", "some.xml", "-c", "CODEBOOK age.")
        variables = {var.get("name"): var for var in ElementTree.parse(self.path("some.xml")).getroot().iter(DDI + "var")}
        self.assertEqual(sorted(variables), ["age", "sex", "w"])
        self.assertEqual(frequencies(variables["sex"]), {"1": [], "2": []})
        self.assertEqual(summary(variables["sex"], "not-wgtd"), {})
        self.assertEqual(summary(variables["age"], "not-wgtd")["vald"], 3)

    def testFacultiesOfConvert(self):
        self.write("a.schema.json", json.dumps({"fields": [{"name": "a", "type": "integer", "codebook": {"role": "target"}}]}))
        result = self.codebook("convert", "a.schema.json", "a.xml")
        self.assertIn(b"codebook.role (1)", result.err)
        self.assertEqual(self.codebook("convert", "a.schema.json", "-q", "a.xml").err, b"")
        self.assertEqual(self.codebook("convert", "a.schema.json", "-", "--to", "ddi", "-q").out, self.read("a.xml"))
        self.codebook("convert", "a.xml", "datapackage.json")
        self.assertEqual(json.loads(self.read("datapackage.json"))["resources"][0]["path"], "a.csv")
        self.assertEqual(problems_of_json(self.path("datapackage.json")), [])

    def testWhatConvertRefuses(self):
        self.write("a.schema.json", '{"fields": [{"name": "a"}]}')
        before = self.read("a.schema.json")
        for status, *arguments in ((2, "a.schema.json"), (2, "a.schema.json", "a.txt"), (2, "a.schema.json", "a.xml", "--to", "word"),
                                   (2, "a.schema.json", "./a.schema.json"), (3, "absent.json", "a.xml"),
                                   (3, "a.schema.json", "a.xml", "--data", "absent.csv"), (4, "a.schema.json", "absent/a.xml")):
            self.assert_status(self.run_program("convert", *arguments), status)
        self.assertEqual(self.read("a.schema.json"), before)
        self.assertEqual(os.listdir(self.folder), ["a.schema.json"])

    def testDataOfACommandsNameAreReached(self):
        self.write("convert", "a\n1\n")
        self.codebook("./convert", "-c", "CODEBOOK a.")


DDI = "{ddi:codebook:2_5}"


def frequencies(variable):
    """By code: the frequencies, the one without weights first."""
    return {category.findtext(DDI + "catValu"): [statistic.text for statistic in category.findall(DDI + "catStat")]
            for category in variable.findall(DDI + "catgry")}


def summary(variable, weighting):
    return {statistic.get("type"): float(statistic.text) for statistic in variable.findall(DDI + "sumStat")
            if statistic.get("wgtd", "not-wgtd") == weighting}


def without_data_messages(report):
    """What reading has to say names the dictionary file, which is another one."""
    value = json.loads(report)
    value["messages"] = [message for message in value["messages"] if message["source"] != "data"]
    return value


if __name__ == "__main__":
    unittest.main()
