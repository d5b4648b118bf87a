"""The print check finds what is planted, and nothing else."""

import unittest

from planted import Tree
from print_check import main, violations


class PrintCheck(unittest.TestCase):
    def found(self, line: str, file: str = "runtime/data/x.cpp") -> list[str]:
        with Tree({file: f"// first line\n{line}\n"}) as root:
            return violations(root)

    def test_sound_tree_passes_and_the_app_may_print(self) -> None:
        with Tree() as root:
            self.assertEqual(violations(root), [])
            self.assertEqual(main([str(root)]), 0)

    def test_violation_is_the_exit_status(self) -> None:
        with Tree({"codebook/x.cpp": "void F() { std::abort(); }\n"}) as root:
            self.assertEqual(main([str(root)]), 1)

    def test_printing_and_ending_are_found_with_their_line(self) -> None:
        for planted in [
            "void F() { std::cout << 1; }",
            "void F() { std::cerr << 1; }",
            "void F() { std :: clog << 1; }",
            'void F() { printf("x"); }',
            'void F() { std::fprintf(file, "x"); }',
            'void F() { std::puts("x"); }',
            'void F() { fmt::print("x"); }',
            'void F() { perror("x"); }',
            "void F() { Write(stderr); }",
            "void F() { abort(); }",
            "void F() { std::exit(1); }",
            "void F() { ::_exit(1); }",
            "void F() { std::terminate(); }",
            "void F() { assert(false); }",
            "#include <iostream>",
        ]:
            with self.subTest(planted):
                found = self.found(planted)
                self.assertEqual(len(found), 1, found)
                self.assertIn("runtime/data/x.cpp:2:", found[0])

    def test_every_folder_of_the_core_is_looked_at(self) -> None:
        for file in ["host/data/x.h", "codebook/x.cpp", "codebook/parser/x.h", "runtime/output/render/x.cpp"]:
            with self.subTest(file):
                self.assertEqual(len(self.found("void F() { std::abort(); }", file)), 1)

    def test_code_behind_a_text_with_quotes_is_still_looked_at(self) -> None:
        self.assertEqual(len(self.found(r'''void F() { G("\""); H('"'); I(1'000); std::abort(); }''')), 1)

    def test_what_only_looks_like_it_passes(self) -> None:
        for sound in [
            "// std::cout << 1; abort();",
            "/* exit(1) */",
            'const char* kText = "std::cerr exit(1)";',
            'const char* kRaw = R"(abort())";',
            "void F(std::ostream& out) { out << 1; }",
            "void F() { cursor.exit(1); table->puts(2); Door::exit(3); }",
            "static_assert(sizeof(int) == 4);",
            'void F() { std::snprintf(text, 8, "x"); }',
        ]:
            with self.subTest(sound):
                self.assertEqual(self.found(sound), [])


if __name__ == "__main__":
    unittest.main()
