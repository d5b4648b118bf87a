"""The language of reports: --lang alone decides, and it changes the program's own words only."""

import json
import unittest

from program import ProgramTest

LANGUAGES = {"de": "Gültige Werte", "es": "Valores válidos", "fr": "Valeurs valides", "ru": "Валидные значения", "zh": "有效值"}


class Language(ProgramTest):
    def setUp(self):
        super().setUp()
        self.write("data.csv", "Mean,Count\n1,Valid Values\n2,Missing Values\n")

    def test_speaksItsLanguages(self):
        for language, words in LANGUAGES.items():
            result = self.run_program("data.csv", "--lang", language)
            self.assert_done(result)
            self.assertIn(words, result.out.decode())
            self.assertNotIn("Standard Attributes", result.out.decode())

    def test_englishIsTheLanguageOfWhoSaysNothing(self):
        self.assertEqual(self.run_program("data.csv", "--lang", "en").out, self.run_program("data.csv").out)

    def test_environmentDoesNotDecide(self):
        plain = self.run_program("data.csv").out
        for name in ("LANG", "LC_MESSAGES", "LANGUAGE"):
            self.assertEqual(self.run_program("data.csv", LC_ALL="", LC_CTYPE="C.UTF-8", **{name: "de_DE.UTF-8"}).out, plain)

    def test_unknownLanguageIsWrongUseThatNamesTheKnownOnes(self):
        for language in ("xx", "DE", "de_DE", "deutsch", ""):
            self.assert_refused(self.run_program("data.csv", "--lang", language), 2, "language", "en, de, es, fr, ru, zh")

    def test_dataThatAreWordsOfTheProgramStay(self):
        text = self.run_program("data.csv", "--lang", "de", "-c", "CODEBOOK Mean[S] Count.").out.decode()
        for word in ("Mean", "Count", "Valid Values", "Missing Values"):  # as name or value
            self.assertIn(word, text)
        self.assertIn("Mittelwert", text)

    def test_numbersStayAsTheyAreFormatted(self):
        for language in LANGUAGES:
            self.assertIn("50.0%", self.run_program("data.csv", "--lang", language).out.decode())

    def test_messagesAreEnglish(self):
        result = self.run_program("data.csv", "--lang", "de", "-c", "CODEBOOK nosuch.")
        self.assert_status(result, 1)
        self.assert_says(result, "error: ")
        self.assertEqual(result.err, self.run_program("data.csv", "-c", "CODEBOOK nosuch.").err)

    def test_jsonReportNamesItsLanguage(self):
        for language in ("en", *LANGUAGES):
            self.assertEqual(json.loads(self.run_program("data.csv", "--lang", language, "-F", "json").out)["facts"]["language"], language)

    def test_methodNotesAreInTheLanguageToo(self):
        text = self.run_program("data.csv", "--lang", "de").out.decode()
        self.assertIn("\nMethode\n", text)
        self.assertIn("Die Fälle sind nicht gewichtet", text)

    def test_everyFormatSpeaksIt(self):
        for format_ in ("json", "jsonl", "md", "csv", "html"):
            result = self.run_program("data.csv", "--lang", "de", "-F", format_)
            self.assert_done(result)
            self.assertIn("Gültige Werte", result.out.decode(), format_)
            self.assertNotIn("Standard Attributes", result.out.decode(), format_)
        self.assert_done(self.run_program("data.csv", "--lang", "zh", "-o", "report.xlsx"))

    def test_wordsThatTheLocaleCannotShowAreEscaped(self):
        result = self.run_program("data.csv", "--lang", "ru", LC_ALL="C")
        self.assert_done(result)
        self.assertTrue(result.out.isascii())
        self.assertIn(b"\\u0437", result.out)


if __name__ == "__main__":
    unittest.main()
