"""The include check finds what is planted, and nothing else."""

import unittest

from include_check import main, violations
from planted import Tree


class IncludeCheck(unittest.TestCase):
    def one(self, file: str, text: str) -> str:
        """The only violation of the sound tree with this file in it."""
        with Tree({file: text}) as root:
            found = violations(root)
        self.assertEqual(len(found), 1, found)
        return found[0]

    def test_sound_tree_passes(self) -> None:
        with Tree() as root:
            self.assertEqual(violations(root), [])
            self.assertEqual(main([str(root)]), 0)

    def test_violation_is_the_exit_status(self) -> None:
        with Tree({"codebook/cbkinfo.cpp": '#include "runtime/data/dataset.h"\n'}) as root:
            self.assertEqual(main([str(root)]), 1)

    def test_module_must_not_see_the_runtime(self) -> None:
        said = self.one("codebook/cbkinfo.cpp", '#include "host/data/names.h"\n#include "runtime/data/dataset.h"\n')
        self.assertIn("codebook/cbkinfo.cpp:2:", said)

    def test_module_must_not_see_a_library(self) -> None:
        self.assertIn("fmt/format.h", self.one("codebook/cbkinfo.cpp", "#include <fmt/format.h>\n"))

    def test_module_must_not_see_the_system(self) -> None:
        self.assertIn("unistd.h", self.one("codebook/cbkinfo.cpp", "#include <unistd.h>\n"))

    def test_host_must_not_see_the_runtime(self) -> None:
        self.assertIn("out of its sight", self.one("host/data/open.h", '#include "runtime/data/dataset.h"\n'))

    def test_host_must_not_see_a_library(self) -> None:
        self.assertIn("unicode/", self.one("host/data/text.h", "#include <unicode/uchar.h>\n"))

    def test_host_data_must_not_see_its_neighbour(self) -> None:
        self.assertIn("host/parser/token.h", self.one("host/data/open.h", '#include "host/parser/token.h"\n'))

    def test_host_output_sees_host_data(self) -> None:
        with Tree({"host/output/cell.h": '#include "host/data/names.h"\n'}) as root:
            self.assertEqual(violations(root), [])

    def test_runtime_must_not_see_the_module(self) -> None:
        files = {"codebook/cbkorder.h": "#pragma once\n", "runtime/data/x.cpp": '#include "codebook/cbkorder.h"\n'}
        with Tree(files) as root:
            self.assertEqual(len(violations(root)), 1)

    def test_runtime_folder_must_not_see_its_neighbour(self) -> None:
        self.assertIn("out of its sight", self.one("runtime/parser/x.cpp", '#include "runtime/data/dataset.h"\n'))

    def test_runtime_common_sees_the_whole_runtime_but_not_the_app(self) -> None:
        files = {"app/options.h": "#pragma once\n", "runtime/common/x.cpp": '#include "app/options.h"\n'}
        with Tree(files) as root:
            self.assertEqual(len(violations(root)), 1)

    def test_library_stays_in_its_folder(self) -> None:
        self.assertIn("runtime/data/source", self.one("runtime/data/csv/x.cpp", "#include <duckdb.h>\n"))
        with Tree({"runtime/data/source/x.cpp": "#include <duckdb.h>\n"}) as root:
            self.assertEqual(violations(root), [])

    def test_test_library_stays_in_the_tests(self) -> None:
        self.assertIn("tests", self.one("app/x.cpp", "#include <gtest/gtest.h>\n"))

    def test_unknown_library_is_found(self) -> None:
        self.assertIn("boost/any.hpp", self.one("app/x.cpp", "#include <boost/any.hpp>\n"))

    def test_own_header_is_named_from_the_root(self) -> None:
        self.assertIn("from the root", self.one("runtime/data/x.cpp", '#include "dataset.h"\n'))

    def test_include_behind_a_comment_is_seen_and_one_within_is_not(self) -> None:
        self.assertIn(":3:", self.one("codebook/x.cpp", "/* a\n b */\n#include <fmt/core.h>\n/*\n#include <CLI/CLI.hpp>\n*/\n"))


if __name__ == "__main__":
    unittest.main()
