"""Data that cannot be read, or not as they stand: what is wrong, where, and what to do; nothing is lost silently."""

import json
import os
import shutil
import unittest

from program import LITTLE, PROGRAM, WITH_DUCKDB, ProgramTest

COUNTS = "CODEBOOK /VARINFO LABEL /STATISTICS COUNT."


class Unreadable(ProgramTest):
    def refused(self, name, *words, **more):
        result = self.run_program(name, **more)
        self.assert_refused(result, 3, "codebook: error: ", name, *words)

    def test_missingFile(self):
        self.refused("nosuch.csv", "no such file")

    def test_missingFileWhoseNameHoldsControlCharacters(self):
        self.assert_refused(self.run_program("\x1b[31mred\x07.csv"), 3, "no such file")

    def test_emptyFile(self):
        for name in ("empty.csv", "empty.tsv") + (("empty.jsonl", "empty.parquet") if WITH_DUCKDB else ()):
            self.write(name, b"")
            self.refused(name, "the file is empty")

    def test_emptyStandardInput(self):
        self.assert_refused(self.run_program("-", stdin=b""), 3, "empty", "header")

    def test_fileOfEmptyLines(self):
        self.write("blank.csv", "\n\n\r\n")
        self.refused("blank.csv", "header line")

    def test_fileOfAByteOrderMarkAlone(self):
        self.write("bom.csv", b"\xef\xbb\xbf")
        self.refused("bom.csv", "header line")

    def test_directory(self):
        os.mkdir(self.path("folder.csv"))
        self.refused("folder.csv", "directory", "name a data file")

    def test_binaryFile(self):
        self.write("binary.csv", bytes(range(256)) * 20)
        self.refused("binary.csv", "not a table of text", "give a CSV")
        self.write("short.csv", b"a\x00b,c\n1,2\n")
        self.refused("short.csv", "not a table of text")

    def test_programAsData(self):
        shutil.copy(PROGRAM, self.path("program.csv"))
        self.refused("program.csv", "not a table of text")

    def test_imageAsData(self):
        self.write("image.csv", b"\x89PNG\r\n\x1a\n\x00\x00\x00\rIHDR\x00\x00\x00\x01\x00\x00\x00\x01\x08\x06\x00\x00\x00\x1f\x15\xc4\x89")
        self.refused("image.csv", "not a table of text")

    @unittest.skipUnless(WITH_DUCKDB, "built without DuckDB")
    def test_damagedParquetFile(self):
        self.write("damaged.parquet", b"PAR1" + b"\x15\x04" * 100)
        self.refused("damaged.parquet")

    @unittest.skipIf(WITH_DUCKDB, "built with DuckDB")
    def test_parquetAndJsonLinesWithoutDuckDB(self):
        for name in ("data.parquet", "data.jsonl"):
            self.write(name, '{"a": 1}\n')
            self.refused(name, "DuckDB")

    @unittest.skipUnless(WITH_DUCKDB, "built without DuckDB")
    def test_textThatIsNoJsonLines(self):
        self.write("text.jsonl", '{"a": 1}\nno json\n')
        self.refused("text.jsonl", "line 2")

    def test_quoteThatIsNeverClosed(self):
        self.write("quote.csv", 'a,b\n1,2\n3,"4\n5,6\n')
        self.refused("quote.csv", "quote.csv:3", "cell 2", "quote", "not closed")

    def test_fileThatMayNotBeRead(self):
        self.write("secret.csv", "a\n1\n")
        os.chmod(self.path("secret.csv"), 0)
        self.assert_refused(self.run_bound_by_permissions("secret.csv"), 3, "secret.csv", "Permission denied")

    def test_folderThatMayNotBeEntered(self):
        self.write("inner/data.csv", "a\n1\n")
        os.chmod(self.path("inner"), 0)
        self.addCleanup(os.chmod, self.path("inner"), 0o700)
        self.assert_refused(self.run_bound_by_permissions("inner/data.csv"), 3, "inner/data.csv")


class Told(ProgramTest):
    """Data that are read all the same: each fault is told with its place."""

    def report(self, name, *arguments, **more):
        result = self.run_program(name, "-F", "json", *arguments, **more)
        self.assert_status(result, 0)
        return result, json.loads(result.out)

    def categories(self, table):
        groups = {item["group"]["text"]: item["items"] for item in table["dimensions"][0]["items"]}
        return {row["category"]["text"]: {cell["column"]: cell.get("number", cell["text"]) for cell in row["cells"]}.get("Count")
                for name in ("Valid Values", "Missing Values") for row in groups.get(name, [])}

    def test_raggedRowsByNumber(self):
        self.write("ragged.csv", "a,b\n1,2\n3\n4,5,6\n7,8\n")
        result, report = self.report("ragged.csv", "-c", COUNTS)
        self.assert_says(result, "warning", "ragged.csv:3", "row 2", "fewer cells than the 2 columns", "read as empty")
        self.assert_says(result, "ragged.csv:4", "row 3", "more cells than the 2 columns", "left out")
        self.assertEqual([m["source"] for m in report["messages"]], ["data", "data"])
        a, b = report["procedures"][0]["tables"]
        self.assertEqual(self.categories(a), {"1": 1, "3": 1, "4": 1, "7": 1})
        self.assertEqual(self.categories(b), {"2": 1, "5": 1, "8": 1, "System": 1})

    def test_raggedRowsAreErrorsWhenStrict(self):
        self.write("ragged.csv", "a,b\n1,2\n3\n")
        self.assert_refused(
            self.run_program("ragged.csv", "--strict"), 3, "ragged.csv:3", "row 2", "1 cell", "2 columns", "without --strict"
        )

    def test_manyRaggedRowsAreOneMessage(self):
        self.write("ragged.csv", "a,b\n" + "1\n" * 1000)
        result, _ = self.report("ragged.csv", "-c", LITTLE)
        self.assertEqual(len(result.messages().splitlines()), 1, repr(result))
        self.assert_says(result, "1000 rows", "ragged.csv:2")
        self.assertLess(len(result.err), 1000)

    def names_and_labels(self, report):
        return [(table["title"]["text"], table["dimensions"][0]["items"][0]["items"][0]["cells"][0]["text"])
                for table in report["procedures"][0]["tables"]]

    def test_duplicateHeadersAreToldAndNothingIsLost(self):
        self.write("twice.csv", "a,b,a\n1,2,3\n")
        result, report = self.report("twice.csv", "-c", "CODEBOOK /VARINFO LABEL /STATISTICS NONE.")
        self.assertEqual(self.names_and_labels(report), [("a", "<none>"), ("b", "<none>"), ("a_2", "a")])
        self.assert_says(result, "warning", "twice.csv", '"a"', "a_2")

    def test_emptyHeadersAreToldAndNothingIsLost(self):
        self.write("nameless.csv", "a,,c\n1,2,3\n")
        result, report = self.report("nameless.csv", "-c", "CODEBOOK /VARINFO LABEL /STATISTICS NONE.")
        self.assertEqual(len(self.names_and_labels(report)), 3)
        name = self.names_and_labels(report)[1][0]
        self.assert_says(result, "warning", "nameless.csv", "column 2", name)

    def test_invalidUtf8IsReplacedAndCountedOnce(self):
        self.write("bytes.csv", b"a,b\xc3\xa9\xc3\xa9\xc3\xa9\nx\xff,2\ny,3\nz\xc3,4\n")
        result, report = self.report("bytes.csv", "-c", "CODEBOOK a /VARINFO LABEL /STATISTICS COUNT.")
        self.assertEqual(len(result.messages().splitlines()), 1, repr(result))
        self.assert_says(result, "warning", "bytes.csv:2", "2 bytes", "UTF-8", "U+FFFD", "encoding")
        self.assertEqual(self.categories(report["procedures"][0]["tables"][0]), {"x\ufffd": 1, "y": 1, "z\ufffd": 1})

    def test_cellsThatDoNotReadAsTheirTypeAreCounted(self):
        self.write("data.csv", "n,m\n1,1\nx,2\n2,y\nz,3\n")
        self.write("data.schema.json", '{"fields": [{"name": "n", "type": "integer"}, {"name": "m", "type": "integer"}]}')
        result, report = self.report("data.csv", "-c", COUNTS)
        self.assertEqual(len(result.messages().splitlines()), 2, repr(result))
        self.assert_says(result, "data.csv:3", 'column "n"', "row 2", '"x"', "2 such cells", "data.csv:4", 'column "m"', "row 3", '"y"')
        self.assertEqual(self.categories(report["procedures"][0]["tables"][0]), {"1": 1, "2": 1, "System": 2})

    def test_headerWithoutACaseIsAnEmptyDataset(self):
        self.write("header.csv", "a,b\n")
        result = self.run_program("header.csv", "-F", "json")
        self.assert_status(result, 1)
        self.assert_says(result, "error: Empty dataset.")
        self.assertEqual(json.loads(result.out)["procedures"], [{"title": "Codebook", "tables": []}])

    def test_lastLineWithoutALineEnd(self):
        self.write("data.csv", "a\n1\n2")
        result, report = self.report("data.csv", "-c", COUNTS)
        self.assertEqual(result.err, b"")
        self.assertEqual(self.categories(report["procedures"][0]["tables"][0]), {"1": 1, "2": 1})

    def test_everyLineEndAndTheByteOrderMark(self):
        for end in ("\n", "\r\n", "\r"):
            self.write("data.csv", "\ufeffa,b" + end + "1,x" + end + "2,y" + end)
            result, report = self.report("data.csv", "-c", COUNTS)
            self.assertEqual(result.err, b"")
            self.assertEqual([self.categories(table) for table in report["procedures"][0]["tables"]], [{"1": 1, "2": 1}, {"x": 1, "y": 1}])


if __name__ == "__main__":
    unittest.main()
