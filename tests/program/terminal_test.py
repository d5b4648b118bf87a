"""Nothing from data, dictionary, command or file name reaches the terminal raw: not in tables, not in messages."""

import json
import os
import pty
import select
import subprocess
import unittest

from program import CONTROLS, PROGRAM, ProgramTest

ESCAPES = "\x1b[31mred\x1b]0;title\x07"
CONTROL_SEQUENCE = "\u009b31m"  # one character that begins a sequence as ESC [ does
BIDI = "\u202egnp.\u202c \u2066isolated\u2069 \u200f"
BAD = [ESCAPES, CONTROL_SEQUENCE, BIDI, "back\bspace\rreturn", "null\x00byte", "delete\x7f", "tab\tulator", "line\nend\vand\f"]


class Terminal(ProgramTest):
    def setUp(self):
        super().setUp()
        rows = "".join('1,"' + text + '"\n' for text in BAD)
        self.write("data.csv", "n,s\n" + rows)

    def check(self, *arguments, **more):
        """Runs as text in a UTF-8 and in a plain locale; gives the first."""
        utf8 = self.run_program("data.csv", *arguments, **more)
        self.assert_nothing_raw(utf8.out, utf8.err)
        plain = self.run_program("data.csv", *arguments, LC_ALL="C", **more)
        self.assert_nothing_raw(plain.out, plain.err)
        self.assertTrue(plain.out.isascii() and plain.err.isascii(), repr(plain))
        self.assertEqual(utf8.status, plain.status)
        return utf8

    def test_valuesInTables(self):
        result = self.check("-c", "CODEBOOK s.", "--width", "200")
        self.assert_status(result, 0)
        for readable in ("red", "title", "gnp.", "isolated", "space", "return", "byte", "delete"):
            self.assertIn(readable, result.out.decode())

    def test_labelsNamesAndDocuments(self):
        bad = ESCAPES + BIDI + CONTROL_SEQUENCE
        self.write("data.schema.json", json.dumps({
            "title": bad,
            "codebook": {"documents": [[bad, bad]], "attributes": {bad: bad},
                         "multipleResponseSets": [{"name": "$m", "label": bad, "type": "dichotomy", "variables": ["n"], "countedValue": "1"}]},
            "fields": [{"name": "n", "type": "integer", "title": bad, "description": bad, "categories": [{"value": 1, "label": bad}],
                        "codebook": {"attributes": {bad: [bad, bad]}}}, {"name": "s", "type": "string"}]}))
        result = self.check()
        self.assert_status(result, 0)

    def test_formatThatIsNoTextIsKeptFromTheTerminal(self):
        master, slave = pty.openpty()
        self.addCleanup(os.close, master)
        done = subprocess.run([PROGRAM, "data.csv", "-F", "xlsx"], stdin=subprocess.DEVNULL, stdout=slave, stderr=subprocess.PIPE, cwd=self.folder, check=False)
        readable, _, _ = select.select([master], [], [], 0)
        os.close(slave)
        self.assertFalse(readable, "something went to the terminal")
        self.assertEqual(done.returncode, 2)
        self.assertIn(b"-o FILE.xlsx", done.stderr)

    def test_formatThatIsNoTextMayGoToAPipe(self):
        self.assertEqual(self.run_program("data.csv", "-F", "xlsx").out[:2], b"PK")

    def test_messagesAboutData(self):
        self.write("data.schema.json", '{"fields": [{"name": "n"}, {"name": "s", "type": "integer"}]}')
        result = self.check("-c", "CODEBOOK n /STATISTICS NONE.")
        self.assert_status(result, 0)
        self.assert_says(result, "does not read as")

    def test_messagesAboutTheDictionary(self):
        self.write("data.schema.json", json.dumps({"fields": [{"name": ESCAPES + BIDI}, {"name": "s", "codebook": {"role": ESCAPES + BIDI}}]}))
        self.assert_status(self.check(), 3)
        self.write("data.schema.json", json.dumps({"fields": [{"name": ESCAPES + BIDI}], "codebook": {}}))
        self.assert_status(self.check("-c", "CODEBOOK n /STATISTICS NONE."), 0)

    def test_messagesAboutTheCommand(self):
        for command in (f"CODEBOOK {ESCAPES}.", f"{ESCAPES} x.", f"CODEBOOK /{BIDI} x.", f"CODEBOOK '{ESCAPES}{BIDI}'.", f"CODEBOOK n /VARINFO {BIDI}."):
            self.assert_status(self.check("-c", command), 1)

    def test_headersAndWarningsThatNameVariables(self):
        self.write("data.csv", f"{ESCAPES},{BIDI}\n1,2\n")
        self.assert_status(self.check("-c", "CODEBOOK /VARINFO VALUELABELS /STATISTICS NONE."), 0)

    def test_fileNames(self):
        self.write("\x1b[31m.csv", "n\n1\n")
        result = self.run_program("\x1b[31m.csv")
        self.assert_status(result, 0)
        self.assert_nothing_raw(result.out, result.err)

    def test_standardErrorOfAJsonReport(self):
        self.write("data.schema.json", '{"fields": [{"name": "n"}, {"name": "s", "type": "integer"}]}')
        result = self.run_program("data.csv", "-F", "json", "-c", "CODEBOOK n /STATISTICS NONE.")
        self.assert_says(result, "does not read as")
        self.assert_nothing_raw(result.err)

    def test_jsonEscapesControlCharacters(self):
        result = self.run_program("data.csv", "-F", "json", "-c", "CODEBOOK s /STATISTICS COUNT.")
        self.assertIsNone(CONTROLS.search(result.out), repr(result))
        table = json.loads(result.out)["procedures"][0]["tables"][0]
        groups = {item["group"]["text"]: item["items"] for item in table["dimensions"][0]["items"]}
        self.assertEqual(sorted(row["category"]["value"] for row in groups["Valid Values"]), sorted(BAD))


if __name__ == "__main__":
    unittest.main()
