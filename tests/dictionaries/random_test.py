"""Random descriptors, as the unit tests write them: every file is valid."""

import glob
import os
import subprocess
import sys
import tempfile
import unittest

from validation import problems_of_ddi, problems_of_json

if "CODEBOOK_UNIT_DATA" not in os.environ:
    sys.exit("Say which test program writes the descriptors: CODEBOOK_UNIT_DATA=build/dev/tests/unit_data")
SANITIZED = os.environ.get("CODEBOOK_SANITIZED", "0") == "1"
WANTED = int(os.environ.get("CODEBOOK_RANDOM_DESCRIPTORS", "50" if SANITIZED else "200"))
# The profiles are slow to apply in Python: a share of the files, unless all are asked for.
VALIDATED = WANTED if "CODEBOOK_RANDOM_DESCRIPTORS" in os.environ else 60


class RandomDescriptors(unittest.TestCase):
    def testEveryFileIsValid(self):
        with tempfile.TemporaryDirectory(prefix="dictionaries.") as folder:
            environment = dict(os.environ, CODEBOOK_DICTIONARY_FOLDER=folder, CODEBOOK_RANDOM_DESCRIPTORS=str(WANTED))
            subprocess.run([os.environ["CODEBOOK_UNIT_DATA"], "--gtest_filter=RoundTrip.*", "--gtest_brief=1"],
                           env=environment, check=True)
            ddi = sorted(glob.glob(os.path.join(folder, "*.xml")))
            self.assertEqual(len(ddi), WANTED)
            self.assertEqual(problems_of_ddi(ddi), [])
            for path in sorted(glob.glob(os.path.join(folder, "*.json")))[: 2 * VALIDATED]:
                self.assertEqual(problems_of_json(path), [])


if __name__ == "__main__":
    unittest.main()
