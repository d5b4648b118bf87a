"""DDI-Codebooks as published by others, to Table Schema and back: valid, and the same bytes."""

import glob
import os
import sys
import unittest

TESTS = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
sys.path[:0] = [os.path.join(TESTS, "program")]

from program import ProgramTest  # noqa: E402
from validation import problems_of_ddi, problems_of_json  # noqa: E402

# Of the two files that each of these documents describes.
OF_TWO_FILES = {"household-budget": ("F1", "F2")}


class PublishedDocuments(ProgramTest):
    def convert(self, *arguments):
        self.assert_status(self.run_program("convert", "-q", *arguments), 0)

    def testThereAndBackNothingIsLost(self):
        documents = sorted(glob.glob(os.path.join(TESTS, "data", "ddi", "**", "*.xml"), recursive=True))
        self.assertGreater(len(documents), 10)
        written = []
        for document in documents:
            folder = os.path.basename(os.path.dirname(document))
            for resource in OF_TWO_FILES.get(folder, (None,)):
                with self.subTest(document=document, resource=resource):
                    ddi = f"{len(written)}.xml"
                    self.convert(document, ddi, *(["--resource", resource] if resource else []))
                    self.convert(ddi, "a.schema.json")
                    self.convert("a.schema.json", "again.xml")
                    self.convert("again.xml", "again.schema.json")
                    self.assertEqual(self.read(ddi), self.read("again.xml"))
                    self.assertEqual(self.read("a.schema.json"), self.read("again.schema.json"))
                    self.assertEqual(problems_of_json(self.path("a.schema.json")), [])
                    written.append(self.path(ddi))
        self.assertEqual(problems_of_ddi(written), [])


if __name__ == "__main__":
    unittest.main()
