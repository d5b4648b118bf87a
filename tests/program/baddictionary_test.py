"""Dictionaries that cannot be used: the file, the place in it, and what to do; the data are never shown without it."""

import json
import os
import unittest

from program import LITTLE, ProgramTest

DATA = "a,b\n1,x\n2,y\n"
TWO = '{"name": "a", "type": "integer"}, {"name": "b", "type": "string"}'


class Dictionary(ProgramTest):
    def setUp(self):
        super().setUp()
        self.write("data.csv", DATA)

    def refused(self, text, *words, name="data.schema.json"):
        self.write(name, text)
        self.assert_refused(self.run_program("data.csv", "-c", LITTLE), 3, "codebook: error: ", name, *words)

    def field(self, member, *words):
        self.refused('{"fields": [{"name": "a", %s}, {"name": "b"}]}' % member, "/fields/0", *words)

    def sets(self, text, *words):
        self.refused('{"fields": [%s], "codebook": {"multipleResponseSets": [%s]}}' % (TWO, text), *words)

    def test_emptyFile(self):
        self.refused("", "empty")

    def test_textThatIsNoJson(self):
        self.refused('{"fields": [\n  {"name": "a",}\n]}', "data.schema.json:2:", "no JSON")
        self.refused("fields:\n- name: a\n", "data.schema.json:1:", "no JSON")
        self.refused('{"fields": []} more', "data.schema.json:1:", "no JSON")

    def test_bytesThatAreNoUtf8(self):
        self.refused(b'{"title": "\xff\xfe", "fields": []}', "data.schema.json:1:")

    def test_jsonThatIsNoObject(self):
        for text in ("[]", "3", '"x"', "null"):
            self.refused(text, "must be a JSON object")

    def test_objectThatIsNoDictionary(self):
        self.refused('{"name": "x"}', "fields", "resources")

    def test_wrongTypes(self):
        self.refused('{"fields": {"a": 1}}', "/fields", "must be a list", "object")
        self.refused('{"fields": ["a"]}', "/fields/0", "must be an object", "text")
        self.refused('{"fields": [{"name": 5}]}', "/fields/0/name", "must be a text", "number")
        self.refused('{"fields": [{"title": "x"}]}', "/fields/0", '"name" is missing')
        self.field('"title": 7', "/title", "must be a text")
        self.field('"type": ["integer", "string"]', "/type", "one type")
        self.field('"categories": {"1": "one"}', "/categories", "resource")
        self.field('"missingValues": {"9": "no"}', "/missingValues", "must be a list")
        self.field('"codebook": []', "/codebook", "must be an object")
        self.refused('{"fields": [%s], "codebook": {"weight": 3}}' % TWO, "/codebook/weight", "must be a text")

    def test_unknownWords(self):
        self.field('"codebook": {"measure": "interval"}', "/codebook/measure", '"interval"', "nominal, ordinal, scale, unknown")
        self.field('"codebook": {"role": "boss"}', "/codebook/role", '"boss"', "input, target, both, none, partition, split")
        self.field('"codebook": {"format": "Q9"}', "/codebook/format", '"Q9"', "F8.2")

    def test_nestedVeryDeep(self):
        for text in ("[" * 100000, "[" * 100000 + "]" * 100000, '{"fields":' * 100000 + "1" + "}" * 100000,
                     '{"fields": [], "x": ' + "[" * 100000 + "]" * 100000 + "}"):
            self.refused(text, "nested", "deep")

    def test_dictionaryThatIsADirectory(self):
        os.mkdir(self.path("x.json"))
        self.assert_refused(self.run_program("data.csv", "-d", "x.json"), 3, "x.json", "directory")

    def test_dictionaryThatIsNotThere(self):
        self.assert_refused(self.run_program("data.csv", "-d", "nosuch.json"), 3, "nosuch.json", "No such file")

    def test_fieldWithoutColumn(self):
        self.write("data.schema.json", '{"fields": [%s, {"name": "zz"}]}' % TWO)
        result = self.run_program("data.csv", "-c", LITTLE)
        self.assert_status(result, 0)
        self.assert_says(result, "warning", "data.schema.json", 'field "zz"', "no column")
        self.assert_refused(self.run_program("data.csv", "-c", LITTLE, "--strict"), 3, "data.schema.json", 'field "zz"')

    def test_columnWithoutField(self):
        self.write("data.schema.json", '{"fields": [{"name": "a"}]}')
        result = self.run_program("data.csv", "-c", LITTLE)
        self.assert_status(result, 0)
        self.assert_says(result, "warning", "data.schema.json", 'column 2 "b"', "no field")
        self.assert_refused(self.run_program("data.csv", "-c", LITTLE, "--strict"), 3, "data.schema.json", '"b"')

    def test_fieldsAndColumnsMeetByNameInAnyOrder(self):
        self.write("data.schema.json", '{"fields": [{"name": "b", "type": "string", "title": "Text"}, {"name": "a", "type": "integer", "title": "Number"}]}')
        result = self.run_program("data.csv", "-F", "json", "-c", "CODEBOOK /VARINFO LABEL /STATISTICS NONE.")
        self.assert_done(result)
        rows = [table["dimensions"][0]["items"][0]["items"][0] for table in json.loads(result.out)["procedures"][0]["tables"]]
        self.assertEqual([row["cells"][0]["text"] for row in rows], ["Number", "Text"])

    def test_unknownWeightVariable(self):
        self.refused('{"fields": [%s], "codebook": {"weight": "zz"}}' % TWO, '"zz"', "weight", "name one of the dataset")
        self.write("data.schema.json", '{"fields": [%s]}' % TWO)
        self.assert_refused(self.run_program("data.csv", "--weight", "zz"), 3, '"zz"', "weight")

    def test_stringWeightVariable(self):
        self.refused('{"fields": [%s], "codebook": {"weight": "b"}}' % TWO, '"b"', "string", "must be numeric")
        self.write("data.schema.json", '{"fields": [%s]}' % TWO)
        self.assert_refused(self.run_program("data.csv", "--weight", "b"), 3, '"b"', "string", "must be numeric")

    def test_setWithUnknownMembers(self):
        self.sets('{"name": "$s", "type": "category", "variables": ["a", "zz"]}', '"$s"', '"zz"', "name the members")

    def test_setOfNumbersAndStrings(self):
        self.sets('{"name": "$s", "type": "category", "variables": ["a", "b"]}', '"$s"', '"b"')

    def test_setWithoutMembers(self):
        self.sets('{"name": "$s", "type": "category", "variables": []}', "/codebook/multipleResponseSets/0/variables", "at least one")

    def test_setOfUnknownType(self):
        self.sets('{"name": "$s", "type": "other", "variables": ["a"]}', "/codebook/multipleResponseSets/0/type", '"other"', "category", "dichotomy")

    def test_setWithoutCountedValue(self):
        self.sets('{"name": "$s", "type": "dichotomy", "variables": ["a"]}', "countedValue")


class Package(ProgramTest):
    def setUp(self):
        super().setUp()
        self.write("outside.csv", "secret\n1\n")
        self.write("package/data.csv", DATA)
        self.write("package/inner/more.csv", DATA)

    def package(self, path):
        self.write("package/datapackage.json", json.dumps({"resources": [{"name": "r", "path": path}]}))
        return self.run_program("package/datapackage.json", "-c", LITTLE)

    def refused(self, path, *words):
        result = self.package(path)
        self.assert_refused(result, 3, "package/datapackage.json", "/resources/0/path", *words)
        self.assertNotIn("secret", result.messages().replace(path, ""))

    def test_pathsWithinTheFolder(self):
        for path in ("data.csv", "inner/more.csv", "./data.csv"):
            self.assert_done(self.package(path))

    def test_absolutePath(self):
        self.refused(self.path("outside.csv"), "refused", "absolute")
        self.refused(self.path("package/data.csv"), "refused", "absolute")
        self.refused("/etc/passwd", "refused")

    def test_pathThatClimbsOut(self):
        for path in ("../outside.csv", "inner/../../outside.csv", "./../outside.csv", "inner/../data.csv"):
            self.refused(path, "refused", '".."')

    def test_linkThatLeavesTheFolder(self):
        os.symlink("../outside.csv", self.path("package/link.csv"))
        os.symlink(self.folder, self.path("package/up"))
        self.refused("link.csv", "refused", "link")
        self.refused("up/outside.csv", "refused", "link")

    def test_linkWithinTheFolderIsFollowed(self):
        os.symlink("inner/more.csv", self.path("package/link.csv"))
        self.assert_done(self.package("link.csv"))

    def test_refusedBeforeOpening(self):
        # Opening a pipe that nobody writes to would wait for ever.
        os.mkfifo(self.path("pipe.csv"))
        os.symlink("../pipe.csv", self.path("package/link.csv"))
        self.refused("../pipe.csv", "refused")
        self.refused("link.csv", "refused")

    def test_pathThatIsNotThere(self):
        self.refused("nosuch.csv", '"nosuch.csv"')

    def test_addressOnTheNetwork(self):
        self.refused("https://example.org/data.csv", "nothing is fetched", "save it")

    def test_severalResources(self):
        self.write("package/datapackage.json", '{"resources": [{"name": "r", "path": "data.csv"}, {"name": "s", "path": "data.csv"}]}')
        self.assert_refused(self.run_program("package/datapackage.json"), 3, "--resource", "r, s")
        self.assert_refused(self.run_program("package/datapackage.json", "--resource", "t"), 3, '"t"', "r, s")

    def test_packageWithoutResources(self):
        self.write("package/datapackage.json", '{"resources": []}')
        self.assert_refused(self.run_program("package/datapackage.json"), 3, "package/datapackage.json", "resources")


if __name__ == "__main__":
    unittest.main()
