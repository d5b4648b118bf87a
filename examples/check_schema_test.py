#!/usr/bin/env python3
"""Plants one fault at a time in a sound example and expects check_schema.py to find exactly it."""

import copy
import json
import tempfile
import unittest
from pathlib import Path

import check_schema

SOUND = Path(__file__).resolve().parent / "quickstart" / "library.csv"


class PlantedFault(unittest.TestCase):
    def setUp(self):
        self.schema = json.loads(SOUND.with_suffix(".schema.json").read_text(encoding="utf-8"))
        self.data = SOUND.read_text(encoding="utf-8")

    def field(self, name):
        return next(field for field in self.schema["fields"] if field["name"] == name)

    def response_set(self, name):
        return next(s for s in self.schema["codebook"]["multipleResponseSets"] if s["name"] == name)

    def findings(self, text=None):
        with tempfile.TemporaryDirectory() as folder:
            path = Path(folder) / "library.csv"
            path.write_text(self.data, encoding="utf-8")
            path.with_suffix(".schema.json").write_text(text or json.dumps(self.schema), encoding="utf-8")
            return check_schema.Check(path).run()

    def expect(self, part, text=None):
        found = self.findings(text)
        self.assertTrue(any(part in finding for finding in found), f"{part!r} not in {found}")

    def testSoundExampleHasNoFinding(self):
        self.assertEqual(self.findings(), [])

    def testInvalidJson(self):
        self.expect("file:", text=json.dumps(self.schema)[:-1])

    def testPropertyGivenTwice(self):
        self.expect("given twice", text=json.dumps(self.schema).replace('"title"', '"title": "x", "title"', 1))

    def testColumnWithoutField(self):
        self.schema["fields"].remove(self.field("visits"))
        self.expect("visits: column without a field")

    def testFieldWithoutColumn(self):
        self.schema["fields"].append({"name": "age", "title": "Age", "type": "integer"})
        self.expect("age: field without a column")

    def testFieldsInAnotherOrderThanColumns(self):
        self.schema["fields"].reverse()
        self.expect("order of the columns")

    def testFieldTwice(self):
        self.schema["fields"].append(copy.deepcopy(self.field("visits")))
        self.expect("visits: stands twice")

    def testRaggedRecord(self):
        self.data += "N,1\n"
        self.expect("record 14 has 2 cells")

    def testValueOutsideCategories(self):
        del self.field("satisfied")["categories"][3]
        self.expect("satisfied: '4' (1 cells) is neither category nor missing value")

    def testMissingCodeUnlisted(self):
        del self.field("satisfied")["missingValues"][0]
        self.expect("satisfied: '8' (1 cells) is neither")

    def testMissingCodeThatDoesNotOccur(self):
        self.field("visits")["missingValues"].append({"value": "98", "label": "Refused"})
        self.expect("missing value '98' does not occur")

    def testCodeBothCategoryAndMissing(self):
        self.field("satisfied")["missingValues"][0]["value"] = "4"
        self.expect("both a category and a missing value: 4")

    def testCellThatIsNoNumber(self):
        self.data = self.data.replace("S,30,", "S,many,")
        self.expect("visits: 'many' (1 cells) does not read as integer")

    def testEmptyTitle(self):
        self.field("visits")["title"] = " "
        self.expect("visits, title: is empty")

    def testEmptyCategoryLabel(self):
        self.field("satisfied")["categories"][0]["label"] = ""
        self.expect("label of 1: is empty")

    def testEmptyMissingLabel(self):
        self.field("visits")["missingValues"][0]["label"] = ""
        self.expect("label of missing value '99': is empty")

    def testInvisibleCharacterInLabel(self):
        self.field("visits")["title"] = "Visits\u200b"
        self.expect("invisible character")

    def testLabelUsedTwice(self):
        self.field("satisfied")["categories"][0]["label"] = "Very dissatisfied"
        self.expect("category labels: not unique")

    def testCategoryOfWrongType(self):
        self.field("satisfied")["categories"][0]["value"] = "1"
        self.expect("'value' is not of type int")

    def testUnknownProperty(self):
        self.field("visits")["lable"] = "x"
        self.expect("unknown property 'lable'")

    def testUnknownMeasureAndRole(self):
        self.field("weight")["codebook"] = {"measure": "ratio", "role": "weight"}
        self.expect("unknown measure 'ratio'")
        self.expect("unknown role 'weight'")

    def testUnknownWeight(self):
        self.schema["codebook"]["weight"] = "wt"
        self.expect("no such field: 'wt'")

    def testStringWeight(self):
        self.schema["codebook"]["weight"] = "branch"
        self.expect("branch is a string field")

    def testNegativeWeight(self):
        self.data = self.data.replace("3,1.5\nN,2", "3,-1.5\nN,2")
        self.expect("record 2 has a negative weight")

    def testUnknownMember(self):
        self.response_set("$done")["variables"].append("films")
        self.expect("$done: no such field: films")

    def testMemberWithOtherCodes(self):
        self.response_set("$done")["variables"].append("wish_1")
        self.expect("wish_1 and loans do not share their codes")

    def testMemberWithUnexpectedCode(self):
        self.data = self.data.replace("S,30,1,1", "S,30,1,2")
        self.expect("loans holds unexpected codes: 2")

    def testCountedValueThatIsNoCategory(self):
        self.response_set("$done")["countedValue"] = "2"
        self.expect("counted value 2 is no category")

    def testSetNameWithoutDollar(self):
        self.response_set("$done")["name"] = "done"
        self.expect("is no name of a set")

    def testPrimaryKeyThatDoesNotIdentify(self):
        self.schema["primaryKey"] = ["branch"]
        self.expect("does not identify the rows")


if __name__ == "__main__":
    unittest.main()
