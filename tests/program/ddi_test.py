"""Dictionaries as DDI-Codebooks and REDCap data dictionaries: beside the data, with -d, and those that are refused."""

import json
import os
import shutil
import socket
import subprocess
import time
import unittest

from program import LITTLE, PROGRAM, PROJECT, SANITIZED, ProgramTest

DOCUMENTS = os.path.join(PROJECT, "tests", "data", "ddi")
LABELS = "CODEBOOK /VARINFO LABEL VALUELABELS ATTRIBUTES /STATISTICS NONE."
SMALL = ('<codeBook><dataDscr><var name="a"><labl>The letter</labl><catgry><catValu>1</catValu><labl>one</labl></catgry>'
         '</var></dataDscr></codeBook>')


class Ddi(ProgramTest):
    def copy(self, *names):
        for name in names:
            shutil.copy(os.path.join(DOCUMENTS, name), self.folder)

    def shown(self, *arguments, **more):
        result = self.run_program(*arguments, **more)
        self.assertEqual(result.status, 0, repr(result))
        return result.out.decode()

    def test_documentBesideTheDataIsTaken(self):
        self.write("data.csv", "a\n1\n2\n")
        self.write("data.ddi.xml", SMALL)
        text = self.shown("data.csv", "-c", LABELS)
        self.assertIn("The letter", text)
        self.assertIn("one", text)

    def test_tableSchemaGoesBeforeIt(self):
        self.write("data.csv", "a\n1\n")
        self.write("data.ddi.xml", SMALL)
        self.write("data.schema.json", '{"fields": [{"name": "a", "type": "integer", "title": "Of the schema"}]}')
        self.assertIn("Of the schema", self.shown("data.csv", "-c", LABELS))

    def test_documentWithAnyNameIsKnownByItsContent(self):
        self.write("data.csv", "a\n1\n")
        self.write("dictionary", SMALL)
        self.assertIn("The letter", self.shown("data.csv", "-d", "dictionary", "-c", LABELS))

    def test_dataOfStandardInputCanHaveOne(self):
        self.write("study.xml", SMALL)
        self.assertIn("The letter", self.shown("-", "-d", "study.xml", "-c", LABELS, stdin=b"a\n1\n"))

    def test_fileOfTheDocumentIsFoundByTheHeaderOrNamed(self):
        self.copy("household-budget/HBS_2023_synth_ground-truth.xml", "household-budget/microdata_HBS_individual_raw.csv")
        command = ["-d", "HBS_2023_synth_ground-truth.xml", "-c", LABELS]
        found = self.run_program("microdata_HBS_individual_raw.csv", *command)
        self.assertEqual(found.status, 0, repr(found))
        self.assertIn("Spouse/partner", found.out.decode())
        self.assertIn('"F2"', found.messages())
        self.assertEqual(self.shown("microdata_HBS_individual_raw.csv", "--resource", "F2", *command), found.out.decode())
        data = self.read("microdata_HBS_individual_raw.csv")
        refused = self.run_program("-", *command, stdin=data)
        self.assert_refused(refused, 3, "--resource", "F1", "LFS_2023_synth_household_ground-truth", "F2")

    def test_redcapDictionaryMakesSetsOfCheckboxes(self):
        self.write("data.csv", "id,media___1,media___2,form_complete\n1,0,1,2\n2,1,1,0\n")
        self.write("dictionary.csv", "field_name,form_name,section_header,field_type,field_label,select_choices_or_calculations\n"
                   'id,form,,text,Number,\nmedia,form,,checkbox,Which media?,"1 ,Radio|2,  TV"\n')
        text = self.shown("data.csv", "-d", "dictionary.csv", "-F", "json", "-c", "CODEBOOK $media form_complete.")
        report = json.dumps(json.loads(text))
        for word in ("$media", "Which media?", "Radio", "TV", "Incomplete"):
            self.assertIn(word, report)

    def test_fileThatIsNoDictionaryIsRefused(self):
        self.write("data.csv", "a\n1\n")
        self.write("other.csv", "x,y\n1,2\n")
        self.assert_refused(self.run_program("data.csv", "-d", "other.csv", "-c", LITTLE), 3, "other.csv")


class Refused(ProgramTest):
    """Documents made to cost: refused before they do."""

    def refused(self, text, *words):
        self.write("data.csv", "a\n1\n")
        self.write("data.ddi.xml", text)
        self.assert_refused(self.run_program("data.csv", "-c", LITTLE), 3, "codebook: error: data.ddi.xml:", *words)

    def cost(self, text):
        """Processor seconds and megabytes of a run over such a document."""
        self.write("data.csv", "a\n1\n")
        self.write("data.ddi.xml", text)
        with open(os.devnull, "wb") as nowhere:
            child = subprocess.Popen([PROGRAM, "data.csv", "-c", LITTLE], cwd=self.folder, stdout=nowhere, stderr=nowhere)
            _, status, usage = os.wait4(child.pid, 0)
        child.returncode = os.waitstatus_to_exitcode(status)
        self.assertEqual(child.returncode, 3)
        return usage.ru_utime + usage.ru_stime, usage.ru_maxrss / 1024

    def laughs(self):
        entities = "".join(f'<!ENTITY l{i} "{f"&l{i - 1};" * 10}">' for i in range(1, 10))
        return f'<?xml version="1.0"?>\n<!DOCTYPE codeBook [<!ENTITY l0 "lol">{entities}]>\n<codeBook>&l9;</codeBook>'

    def test_entitiesThatGrow(self):
        self.refused(self.laughs(), "data.ddi.xml:2:1: ", "DOCTYPE", "delete")

    @unittest.skipIf(SANITIZED, "a sanitizer takes its own time and memory")
    def test_entitiesThatGrowCostNothing(self):
        quadratic = f'<!DOCTYPE c [<!ENTITY a "{"a" * 100000}">]><c>{"&a;" * 100000}</c>'
        for text in (self.laughs(), quadratic, "<a>" * 5_000_000, "<a " + "b='' " * 10):
            seconds, megabytes = min(self.cost(text) for _ in range(3))
            self.assertLess(seconds, 0.1)
            self.assertLess(megabytes, 50)

    def test_entitiesThatNameFilesOpenNone(self):
        os.mkfifo(self.path("pipe"))  # opening it would wait for ever
        started = time.monotonic()
        for declaration in ('<!DOCTYPE c SYSTEM "pipe">', '<!DOCTYPE c [<!ENTITY x SYSTEM "pipe">]>',
                            '<!DOCTYPE c [<!ENTITY % x SYSTEM "pipe"> %x;]>'):
            self.refused(f"{declaration}<c>&x;</c>", "DOCTYPE")
        self.assertLess(time.monotonic() - started, 60)

    def test_entitiesThatNameHostsAskNone(self):
        with socket.create_server(("127.0.0.1", 0)) as server:
            server.settimeout(0.2)
            port = server.getsockname()[1]
            self.refused(f'<!DOCTYPE c SYSTEM "http://127.0.0.1:{port}/x.dtd"><c/>', "DOCTYPE")
            with self.assertRaises(TimeoutError):
                server.accept()

    def test_includesAreElementsLikeOthers(self):
        self.write("data.csv", "a\n1\n")
        self.write("data.ddi.xml", SMALL.replace("<labl>", '<xi:include xmlns:xi="http://www.w3.org/2001/XInclude" '
                                                 'href="/etc/passwd"/><labl>'))
        result = self.run_program("data.csv", "-c", LABELS)
        self.assertEqual(result.status, 0, repr(result))
        self.assertNotIn(b"root", result.out)

    def test_otherFaultsAreToldWithTheirPlace(self):
        self.refused("<codeBook>\n<dataDscr>\n<var name='a'>", "data.ddi.xml:3:", "cut off")
        self.refused("<codeBook>&nbsp;</codeBook>", "data.ddi.xml:1:11: ", "entity")
        self.refused(b"<codeBook>\n\0</codeBook>", "data.ddi.xml:2:1: ", "NUL")
        self.refused(b"<codeBook>\n\xe4</codeBook>", "data.ddi.xml:2:1: ", "UTF-8")
        self.refused("<a>" * 101, "data.ddi.xml:1:301: ", "deeper")
        self.refused("<html/>", "data.ddi.xml:1: ", "DDI-Codebook")

    def test_whatADocumentSaysReachesTheTerminalEscaped(self):
        self.write("data.csv", "a\n1\n")
        self.write("data.ddi.xml", SMALL.replace('name="a"', 'name="a&#x9b;31m" nature="&#x202e;x"'))
        result = self.run_program("data.csv", "-c", LITTLE)
        self.assert_nothing_raw(result.out, result.err)


if __name__ == "__main__":
    unittest.main()
