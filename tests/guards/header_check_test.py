"""The header check finds what is planted, and nothing else."""

import os
import unittest

from header_check import main, violations
from planted import Tree

COMPILER = os.environ.get("CXX", "g++")


class HeaderCheck(unittest.TestCase):
    def test_sound_tree_passes(self) -> None:
        with Tree() as root:
            self.assertEqual(violations(root, [COMPILER]), [])
            self.assertEqual(main([str(root), COMPILER]), 0)

    def test_header_that_forgets_an_include_is_found(self) -> None:
        with Tree({"runtime/output/cell.h": "#pragma once\nstd::string Cell();\n"}) as root:
            found = violations(root, [COMPILER])
            self.assertEqual(main([str(root), COMPILER]), 1)
        self.assertEqual(len(found), 1)
        self.assertIn("runtime/output/cell.h does not compile alone", found[0])

    def test_every_folder_is_looked_at(self) -> None:
        for folder in ["host/data", "codebook/parser", "runtime/data/store", "app"]:
            with self.subTest(folder), Tree({f"{folder}/x.h": "#pragma once\nUnknown F();\n"}) as root:
                self.assertEqual(len(violations(root, [COMPILER])), 1)


if __name__ == "__main__":
    unittest.main()
