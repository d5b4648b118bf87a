#!/usr/bin/env python3
"""Every fixed text of the sources is in every catalog, translated, and no translation loses what the text needs."""

import re
import subprocess
import unittest

from catalogs import CATALOGS, ROOT, TEMPLATE, read_entries

PLACEHOLDER = re.compile(r"\^[1-9]")


class Template(unittest.TestCase):
    def test_holdsTheFixedTextsOfTheSources(self):
        gathered = subprocess.run([ROOT / "scripts" / "messages", "--pot"], capture_output=True, text=True, check=True).stdout
        self.assertEqual(TEMPLATE.read_text(encoding="utf-8"), gathered, "po/ is behind the sources: run make messages")

    def test_isNotEmpty(self):
        texts = {entry.text for entry in read_entries(TEMPLATE)}
        for text in ("File Information", "Missing Values", "Percentile 25", "Multiple Dichotomy Set", "<none>", "(no rows)"):
            self.assertIn(text, texts)


class Catalogs(unittest.TestCase):
    def each(self, check):
        """Calls the check for every entry of every catalog."""
        for path in CATALOGS:
            for entry in read_entries(path):
                with self.subTest(language=path.stem, text=entry.text):
                    check(entry)

    def test_thereAreFive(self):
        self.assertEqual([path.stem for path in CATALOGS], ["de", "es", "fr", "ru", "zh"])

    def test_areWellFormed(self):
        for path in CATALOGS:
            done = subprocess.run(["msgfmt", "--check", "--output-file=/dev/null", path], capture_output=True, text=True, check=False)
            self.assertEqual((done.returncode, done.stderr), (0, ""))

    def test_nameTheirLanguage(self):
        for path in CATALOGS:
            self.assertIn(f'"Language: {path.stem}\\n"', path.read_text(encoding="utf-8"))

    def test_holdExactlyTheTextsOfTheTemplate(self):
        texts = [entry.text for entry in read_entries(TEMPLATE)]
        for path in CATALOGS:
            self.assertEqual([entry.text for entry in read_entries(path)], texts, path.name)

    def test_translateEveryText(self):
        def check(entry):
            self.assertNotIn("fuzzy", entry.flags)
            self.assertNotEqual(entry.translation.strip(), "")

        self.each(check)

    def test_keepPlaceholders(self):
        self.each(lambda entry: self.assertEqual(sorted(PLACEHOLDER.findall(entry.translation)), sorted(PLACEHOLDER.findall(entry.text))))

    def test_keepBlanksAtTheEnds(self):
        def check(entry):
            for blank in (str.lstrip, str.rstrip):
                self.assertEqual(blank(entry.text) == entry.text, blank(entry.translation) == entry.translation)

        self.each(check)

    def test_endSentencesAsTheTextDoes(self):
        self.each(lambda entry: self.assertEqual(entry.text.endswith("."), entry.translation.endswith((".", "。"))))

    def test_keepAngleBrackets(self):
        def check(entry):
            for bracket in "<>":
                self.assertEqual(entry.translation.count(bracket), entry.text.count(bracket))

        self.each(check)

    def test_wordsOfTheTablesStayApart(self):
        """What two words of the procedure tell apart, two translations do: renderers know the parts of a table by them."""
        for path in CATALOGS:
            own = [entry for entry in read_entries(path) if any(place.startswith("codebook/") for place in entry.places)]
            translations = [entry.translation for entry in own]
            twice = {text for text in translations if translations.count(text) > 1}
            self.assertEqual(twice, set(), path.name)


if __name__ == "__main__":
    unittest.main()
