"""codebook draft: a Table Schema to start from."""

import json
import os
import shutil
import unittest

from program import PROJECT, ProgramTest

NONVOTERS = os.path.join(PROJECT, "examples", "nonvoters")

DATA = "q1,Q2_1,Q2_2,comment\n1,1,0,so\n2,0,1,\n-9,0,0,Refused\n3,1,1,and so\n"


def codes_of(field):
    entries = field.get("missingValues", [])
    return {entry["value"] if isinstance(entry, dict) else entry for entry in entries} - {""}


class Draft(ProgramTest):
    def test_writesASchemaThatIsFoundBesideTheData(self):
        self.write("data.csv", DATA)
        result = self.run_program("draft", "data.csv", "-o", "data.schema.json")
        self.assert_status(result, 0)
        self.assertEqual(result.out, b"")
        self.assert_says(result, "4 fields", "missing codes of 2 fields (-9, Refused)", "1 multiple response set ($Q2)")
        result = self.run_program("data.csv", "-F", "json")
        self.assert_done(result)
        self.assertIn(b"TODO: label of q1", result.out)
        result = self.run_program("check", "data.csv")
        self.assert_done(result)

    def test_goesToStandardOutputOtherwise(self):
        self.write("data.csv", DATA)
        result = self.run_program("draft", "data.csv", "-q")
        self.assert_done(result)
        schema = json.loads(result.out)
        self.assertEqual([field["name"] for field in schema["fields"]], ["q1", "Q2_1", "Q2_2", "comment"])
        self.assertEqual(schema["fields"][0]["codebook"]["draft"][0]["why"], "no other value, 1 to 3, is negative")

    def test_doesNotReplaceADictionaryUnasked(self):
        self.write("data.csv", DATA)
        self.write("data.schema.json", "somebody's labels")
        self.assert_refused(self.run_program("draft", "data.csv", "-o", "data.schema.json"), 2, "--replace")
        self.assertEqual(self.read("data.schema.json"), b"somebody's labels")
        self.assert_status(self.run_program("draft", "data.csv", "-o", "data.schema.json", "--replace"), 0)
        self.assertIn(b"TODO", self.read("data.schema.json"))

    def test_doesNotLookForADictionary(self):
        self.write("data.csv", DATA)
        self.write("data.schema.json", '{"fields": [')
        self.assert_status(self.run_program("draft", "data.csv"), 0)

    def test_readsStandardInput(self):
        result = self.run_program("draft", "-", "-q", stdin=DATA.encode())
        self.assert_done(result)
        self.assertEqual(len(json.loads(result.out)["fields"]), 4)

    def test_wrongUseAndUnreadableData(self):
        self.assert_refused(self.run_program("draft"), 2, "codebook draft --help")
        self.assert_refused(self.run_program("draft", "nosuch.csv"), 3, "nosuch.csv")
        self.write("datapackage.json", '{"resources": []}')
        self.assert_refused(self.run_program("draft", "datapackage.json"), 2, "data package")
        self.write("data.csv", DATA)
        self.assert_refused(self.run_program("draft", "data.csv", "-o", "data.csv", "--replace"), 2, "overwrite")

    def test_sameDraftWithAnyNumberOfThreads(self):
        self.write("data.csv", DATA)
        one = self.run_program("draft", "data.csv", "--threads", "1").out
        self.assertEqual(one, self.run_program("draft", "data.csv", "--threads", "3").out)

    def test_publishedSurveyAgainstItsQuestionnaire(self):
        """What the dictionary written from the published questionnaire says of sets and missing codes."""
        shutil.copy(os.path.join(NONVOTERS, "nonvoters_data.csv"), self.path("nonvoters_data.csv"))
        result = self.run_program("draft", "nonvoters_data.csv", "-o", "nonvoters_data.schema.json")
        self.assert_status(result, 0)
        drafted = json.loads(self.read("nonvoters_data.schema.json"))
        with open(os.path.join(NONVOTERS, "nonvoters_data.schema.json"), encoding="utf-8") as file:
            published = json.load(file)

        def sets_of(schema):
            return {s["name"]: (s["variables"], str(s["countedValue"])) for s in schema["codebook"]["multipleResponseSets"]}

        self.assertEqual(sets_of(drafted), sets_of(published))
        self.assertEqual({f["name"]: codes_of(f) for f in drafted["fields"]},
                         {f["name"]: codes_of(f) for f in published["fields"]})
        self.assertEqual({f["name"]: f["type"] for f in drafted["fields"]}, {f["name"]: f["type"] for f in published["fields"]})
        self.assertEqual(drafted["codebook"]["weight"], "weight")
        self.assert_done(self.run_program("nonvoters_data.csv", "-F", "json", "-o", "report.json"))


if __name__ == "__main__":
    unittest.main()
