"""The link check finds a module that calls past the interface.

    link_check_test.py COMPILER INTERFACE_LIBRARY PARSER_ARCHIVE

Works on the libraries of the build: a planted source declares a function of the runtime by hand and calls it.
"""

import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

from link_check import complaint, main

INSIDE = """
namespace runtime::parser {
struct CommandBinding;
CommandBinding* CurrentCommand();
}
extern "C" void* Planted() { return runtime::parser::CurrentCommand(); }
"""

INTERFACE = """
extern "C" void* pvGetCmnBpr();
extern "C" void* Planted() { return pvGetCmnBpr(); }
"""

compiler = interface = parser_archive = ""


class LinkCheck(unittest.TestCase):
    def setUp(self) -> None:
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = Path(folder.name)

    def compiled(self, text: str) -> str:
        source, compiled = self.folder / "planted.cpp", self.folder / "planted.o"
        source.write_text(text, encoding="utf-8")
        subprocess.run([compiler, "-fPIC", "-c", str(source), "-o", str(compiled)], check=True)
        return str(compiled)

    def test_call_into_the_runtime_does_not_link(self) -> None:
        planted = self.compiled(INSIDE)
        said = complaint(compiler, interface, [planted])
        self.assertIsNotNone(said)
        self.assertIn("runtime::parser::CurrentCommand", said)
        self.assertEqual(main([compiler, interface, planted]), 1)

    def test_it_is_the_interface_that_stops_it(self) -> None:
        # The function is there under that name: with the archive that holds it the same source links.
        self.assertIsNone(complaint(compiler, parser_archive, [self.compiled(INSIDE)]))

    def test_call_of_the_interface_links(self) -> None:
        planted = self.compiled(INTERFACE)
        self.assertIsNone(complaint(compiler, interface, [planted]))
        self.assertEqual(main([compiler, interface, planted]), 0)


if __name__ == "__main__":
    compiler, interface, parser_archive = sys.argv[1:4]
    unittest.main(argv=sys.argv[:1])
