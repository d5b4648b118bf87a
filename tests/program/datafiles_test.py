"""Data files as people have them: compressed, in old encodings, in parts, in SQLite; and the types that are inferred from them."""

import glob
import gzip
import json
import os
import shutil
import sqlite3
import subprocess
import unittest

from program import LITTLE, PROJECT, WITH_DUCKDB, ProgramTest

CSV = "id,name\n1,Ann\n2,Bob\n3,Cy\n"
COUNTS = "CODEBOOK /VARINFO LABEL TYPE /STATISTICS COUNT."


class DataFiles(ProgramTest):
    def tables(self, *arguments, stdin=b"", done=True):
        result = self.run_program(*arguments, "-F", "json", "-c", COUNTS, stdin=stdin)
        self.assert_status(result, 0)
        if done:
            self.assert_done(result)
        return json.loads(result.out)["procedures"][0]["tables"], result

    def types(self, *arguments):
        result = self.run_program(*arguments, "--explain-types=json")
        self.assert_status(result, 0)
        return {entry["column"]: entry for entry in json.loads(result.out)}, result


class Compressed(DataFiles):
    def setUp(self):
        super().setUp()
        self.write("plain.csv", CSV)
        self.expected, _ = self.tables("plain.csv")

    def packed(self, name, text):
        if name.endswith(".gz"):
            self.write(name, gzip.compress(text.encode()))
        elif shutil.which("zstd"):
            done = subprocess.run(["zstd", "-q", "-c"], input=text.encode(), capture_output=True, check=True)
            self.write(name, done.stdout)
        else:
            self.skipTest("the program zstd is not there")
        return name

    def test_textIsReadAsIfItWereUnpacked(self):
        for name in ("data.csv.gz", "data.csv.zst", "data.csv"):
            self.packed("packed.gz" if name == "data.csv" else name, CSV)
            if name == "data.csv":
                os.rename(self.path("packed.gz"), self.path(name))
            self.assertEqual(self.tables(name)[0], self.expected, name)

    def test_standardInputToo(self):
        self.assertEqual(self.tables("-", stdin=gzip.compress(CSV.encode()))[0], self.expected)

    def test_tabsOfATsvFile(self):
        self.packed("data.tsv.gz", "id\tname, first\n1\tAnn\n2\tBob\n")
        types, _ = self.types("data.tsv.gz")
        self.assertEqual(list(types), ["id", "name, first"])

    def test_theDictionaryLiesBesideUnderTheNameOfTheText(self):
        self.packed("data.csv.gz", CSV)
        self.write("data.schema.json", '{"fields": [{"name": "id", "type": "string"}, {"name": "name", "type": "string"}]}')
        types, _ = self.types("data.csv.gz")
        self.assertEqual(types["id"]["from"], "dictionary")
        self.assertEqual(types["id"]["type"], "string")

    @unittest.skipUnless(WITH_DUCKDB, "built without DuckDB")
    def test_jsonLines(self):
        for name in ("data.jsonl.gz", "data.ndjson.zst"):
            self.packed(name, '{"id": 1, "name": "Ann"}\n{"id": 2, "name": "Bob"}\n{"id": 3, "name": "Cy"}\n')
            self.assertEqual(self.tables(name)[0], self.expected, name)

    @unittest.skipUnless(WITH_DUCKDB, "built without DuckDB")
    def test_textsAmongNumbersOfJsonLinesAreTold(self):
        self.write("data.jsonl", '{"a": 1, "b": "1"}\n{"a": "NA", "b": "NA"}\n')
        result = self.run_program("data.jsonl", "-c", LITTLE)
        self.assert_says(result, 'column "a" (holds whole numbers and "NA"', "stays text")
        self.assertNotIn('"b"', result.messages())

    @unittest.skipUnless(WITH_DUCKDB, "built without DuckDB")
    def test_badLineOfCompressedJsonLines(self):
        self.packed("data.jsonl.gz", '{"id": 1}\nno json\n')
        self.assert_refused(self.run_program("data.jsonl.gz"), 3, "data.jsonl.gz", "line 2")

    def test_cutOffAndDamagedFiles(self):
        whole = gzip.compress((CSV * 1000).encode())
        self.write("cut.csv.gz", whole[: len(whole) // 2])
        self.assert_refused(self.run_program("cut.csv.gz"), 3, "cut.csv.gz", "ends too early", "again")
        self.write("bad.csv.gz", whole[:40] + bytes([whole[40] ^ 255]) + whole[41:])
        self.assert_refused(self.run_program("bad.csv.gz"), 3, "bad.csv.gz", "compressed file")
        self.write("empty.csv.gz", gzip.compress(b""))
        self.assert_refused(self.run_program("empty.csv.gz"), 3, "empty.csv.gz", "empty")


class Encodings(DataFiles):
    TEXT = "größe,preis\nklein,5 €\nweiß,7 €\n"

    def setUp(self):
        super().setUp()
        self.write("utf8.csv", self.TEXT)
        self.expected, _ = self.tables("utf8.csv")

    def test_areFoundAndTold(self):
        for encoding, word in (("cp1252", "windows-1252"), ("utf-16-le", "UTF-16LE"), ("utf-16-be", "UTF-16BE")):
            self.write("data.csv", self.TEXT.encode(encoding))
            tables, result = self.tables("data.csv", done=False)
            self.assertEqual(tables, self.expected, encoding)
            self.assert_says(result, "warning", "data.csv", "read as " + word)
            self.assertEqual(len(result.messages().splitlines()), 1, repr(result))

    def test_withAMarkNothingIsToTell(self):
        for encoding in ("utf-8-sig", "utf-16"):
            self.write("data.csv", self.TEXT.encode(encoding))
            self.assertEqual(self.tables("data.csv")[0], self.expected, encoding)

    def test_sayingTheEncodingSilencesTheWarning(self):
        self.write("data.csv", self.TEXT.encode("cp1252"))
        self.write("datapackage.json", json.dumps({"resources": [{"name": "r", "path": "data.csv", "encoding": "cp1252"}]}))
        self.assertEqual(self.tables("data.csv")[0], self.expected)

    def test_aNulByteInACellIsKeptAndNeverRaw(self):
        self.write("nul.csv", b"a,b\nx\x00y,1\nz,2\n")
        result = self.run_program("nul.csv", "-c", "CODEBOOK a /STATISTICS COUNT.")
        self.assert_status(result, 0)
        self.assert_nothing_raw(result.out, result.err)


class Parts(DataFiles):
    def setUp(self):
        super().setUp()
        self.write("whole.csv", CSV)
        self.expected, _ = self.tables("whole.csv")
        self.write("part-1.csv", "id,name\n1,Ann\n")
        self.write("part-2.csv", "id,name\n2,Bob\n3,Cy\n")

    def test_severalFilesAreOneTable(self):
        self.assertEqual(self.tables("part-1.csv", "part-2.csv")[0], self.expected)

    def test_aPatternIsTheFilesThatFitIt(self):
        self.assertEqual(self.tables("part-*.csv")[0], self.expected)
        self.write("part-2.csv.gz", gzip.compress(b"id,name\n2,Bob\n3,Cy\n"))
        os.remove(self.path("part-2.csv"))
        self.assertEqual(self.tables("part-*")[0], self.expected)

    def test_aFileThatIsNamedLikeAPatternIsThatFile(self):
        self.write("part-?.csv", CSV)
        self.assertEqual(self.tables("part-?.csv")[0], self.expected)

    def test_otherColumnsAreRefused(self):
        self.write("part-3.csv", "id,other\n4,x\n")
        self.assert_refused(self.run_program("part-*.csv"), 3, "part-3.csv", "part-1.csv", "same header")

    def test_patternsThatFitNothing(self):
        self.assert_refused(self.run_program("nosuch-*.csv"), 3, "nosuch-*.csv", "none that fits")

    def test_whatCannotBeOneOfSeveral(self):
        self.write("datapackage.json", '{"resources": [{"name": "r", "path": "whole.csv"}]}')
        self.assert_refused(self.run_program("part-1.csv", "-"), 3, "standard input", "alone")
        self.assert_refused(self.run_program("part-1.csv", "datapackage.json"), 3, "datapackage.json", "alone")
        self.assert_refused(self.run_program("part-1.csv", "nosuch.csv"), 3, "nosuch.csv", "no such file")

    def test_theOutputIsNoneOfThem(self):
        result = self.run_program("part-1.csv", "part-2.csv", "-F", "csv", "-o", "part-2.csv")
        self.assert_refused(result, 2, "part-2.csv", "overwrite")

    @unittest.skipUnless(WITH_DUCKDB, "built without DuckDB")
    def test_jsonLinesInParts(self):
        self.write("j1.jsonl", '{"id": 1, "name": "Ann"}\n')
        self.write("j2.jsonl", '{"id": 2, "name": "Bob"}\n{"id": 3, "name": "Cy"}\n')
        self.assertEqual(self.tables("j*.jsonl")[0], self.expected)
        self.write("j3.jsonl", '{"id": 2, "nom": "Bob"}\n')
        self.assert_refused(self.run_program("j*.jsonl"), 3, "j3.jsonl", "column 2", '"nom"', '"name"')
        self.assert_refused(self.run_program("j1.jsonl", "part-1.csv"), 3, "part-1.csv", "one kind")


class Sqlite(DataFiles):
    def database(self, *statements, name="data.sqlite"):
        with sqlite3.connect(self.path(name)) as connection:
            for statement in statements:
                connection.execute(statement)
        connection.close()

    def test_theOnlyTable(self):
        self.write("plain.csv", CSV)
        self.database("CREATE TABLE people (id INTEGER, name TEXT)", "INSERT INTO people VALUES (1, 'Ann'), (2, 'Bob'), (3, 'Cy')")
        self.assertEqual(self.tables("data.sqlite")[0], self.tables("plain.csv")[0])
        self.assertEqual(sorted(os.listdir(self.folder)), ["data.sqlite", "plain.csv"])

    def test_oneOfSeveralTables(self):
        self.database("CREATE TABLE a (x)", "CREATE TABLE b (y)", "INSERT INTO b VALUES (1)")
        self.assert_refused(self.run_program("data.sqlite"), 3, "data.sqlite", "--table NAME", '"a"', '"b"')
        types, _ = self.types("data.sqlite", "--table", "b")
        self.assertEqual(types["y"]["type"], "integer")
        self.assertEqual(types["y"]["from"], "data file")
        self.assert_refused(self.run_program("data.sqlite", "--table", "c"), 3, "no table", '"c"')

    def test_textsAmongNumbersAreTold(self):
        self.database("CREATE TABLE t (mixed, texts TEXT)", "INSERT INTO t VALUES (1, '1'), ('NA', 'NA'), (3, '3')")
        result = self.run_program("data.sqlite", "-c", LITTLE)
        self.assert_status(result, 0)
        self.assert_says(result, 'column "mixed" (holds whole numbers and "NA" in 1 cell, first in row 2) stays text')
        self.assertNotIn("texts", result.messages())

    def test_onlySqliteHasTables(self):
        self.write("plain.csv", CSV)
        self.assert_refused(self.run_program("plain.csv", "--table", "t"), 3, "plain.csv", "--table")

    def test_damagedAndOtherFiles(self):
        self.write("data.sqlite", b"no database at all, but some text that is long enough\n" * 20)
        self.assert_refused(self.run_program("data.sqlite"), 3, "data.sqlite", "not a database")
        self.write("empty.sqlite", b"")
        self.assert_refused(self.run_program("empty.sqlite"), 3, "empty.sqlite", "empty")


class Inference(DataFiles):
    def test_isListedWithTheCellsThatDecided(self):
        self.write("data.csv", "id,wage,zip,na\n1,1,007,1\n2,1.5,8000,NA\n")
        result = self.run_program("data.csv", "--explain-types")
        self.assert_status(result, 0)
        lines = result.out.decode().splitlines()
        self.assertEqual([line.split()[:2] for line in lines],
                         [['"id"', "integer"], ['"wage"', "number"], ['"zip"', "string"], ['"na"', "string"]])
        self.assertIn("every cell", lines[0])
        self.assertIn('row 2: "1.5" is no integer', lines[1])
        self.assertIn('row 1: "007"', lines[2])
        self.assertIn("zero at its front", lines[2])
        self.assertIn('row 2: "NA" is no integer: a word that often stands for a missing value', lines[3])
        self.assert_says(result, "warning", 'column "na"', 'numbers and "NA" in 1 cell', "stays text", "missingValues")

    def test_listingsShowNothingRaw(self):
        self.write("data.csv", '"\x1b[31ma",b\nx\x07\x1b]0;t\x07,1\n')
        result = self.run_program("data.csv", "--explain-types")
        self.assert_nothing_raw(result.out, result.err)
        self.assert_status(self.run_program("data.csv", "--explain-types=xml"), 2)

    def test_isLeftOutWhenThatIsAskedFor(self):
        self.write("data.csv", "a,b\n1,2024-01-31\n2,NA\n")
        types, result = self.types("data.csv", "--no-inference")
        self.assertEqual({(entry["type"], entry["from"]) for entry in types.values()}, {("string", "asked")})
        self.assertEqual(result.err, b"")

    def test_declaredTypesStayWithoutInference(self):
        self.write("data.csv", "a,b\n1,2\n")
        self.write("data.schema.json", '{"fields": [{"name": "a", "type": "integer"}, {"name": "b"}]}')
        types, _ = self.types("data.csv", "--no-inference")
        self.assertEqual((types["a"]["type"], types["b"]["type"]), ("integer", "string"))

    def test_guessesNothing(self):
        self.write("data.csv", "zip,long,date,comma\n007,12345678901234567890,2/3/2024,\"1,5\"\n8001,1,4/5/2024,\"2,5\"\n")
        types, _ = self.types("data.csv")
        self.assertEqual({entry["type"] for entry in types.values()}, {"string"})

    def test_oneLateBadCellIsToldAndEndsNothing(self):
        self.write("data.csv", "a\n" + "7\n" * 5000 + "x7\n")
        tables, result = self.tables("data.csv", done=False)
        self.assert_says(result, "warning", 'column "a"', "stays text", '"x7"', "row 5001")


class Hostile(DataFiles):
    def test_aHundredThousandColumns(self):
        columns = 100_000
        self.write("wide.csv", ",".join(f"c{i}" for i in range(columns)) + "\n" + ",".join("1" for _ in range(columns)) + "\n")
        result = self.run_program("wide.csv", "-F", "json", "-c", "CODEBOOK c99999 /VARINFO POSITION /STATISTICS COUNT.")
        self.assert_done(result)

    def test_oneLineWithoutAnEnd(self):
        with open(self.path("line.csv"), "wb") as file:
            for _ in range(1000):
                file.write(b"x" * 1_000_000)
        self.assert_refused(self.run_program("line.csv"), 3, "line.csv:1", "first line does not end", "headers")
        self.write("short.csv", b"x" * 2_000_000 + b",b\n1,2\n")
        self.assert_refused(self.run_program("short.csv"), 3, "short.csv:1", "column 1", "headers")

    def test_longHeaders(self):
        self.write("long.csv", "a" * 950 + "," + "a" * 950 + "," + "b" * 950 + "\n1,2,3\n")
        result = self.run_program("long.csv", "-F", "json", "-c", LITTLE)
        self.assert_status(result, 0)
        self.assertEqual(len(json.loads(result.out)["procedures"][0]["tables"]), 3)


class Published(DataFiles):
    """Files as their publishers give them; see tests/data/published/README.md for where they come from."""

    def test_eachGivesACodebook(self):
        files = sorted(glob.glob(os.path.join(PROJECT, "tests", "data", "published", "*", "*.csv")))
        self.assertGreaterEqual(len(files), 4)
        for file in files + [os.path.join(PROJECT, "examples", "nonvoters", "nonvoters_data.csv")]:
            result = self.run_program(file, "-F", "json")
            self.assert_status(result, 0)
            self.assertGreater(len(json.loads(result.out)["procedures"][0]["tables"]), 1, file)


if __name__ == "__main__":
    unittest.main()
