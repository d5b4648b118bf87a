"""The C++ sources of a tree, and a source as its code alone."""

import re
import sys
from collections.abc import Callable
from pathlib import Path

_NOT_CODE = re.compile(
    r"""
      //(?:[^\n\\]|\\.|\\\n)*                      # a comment to the end of the line
    | /\*.*?\*/
    | (?:u8|[uUL])?R"([^ ()\\\t\n]{0,16})\(.*?\)\1"    # a raw text
    | (?:u8|[uUL])?"(?:[^"\\\n]|\\.|\\\n)*"
    | (?<![0-9A-Fa-f])'(?:[^'\\\n]|\\.)+'          # a character; not the separator within a number
    """,
    re.VERBOSE | re.DOTALL,
)


def sources(root: Path, folders: list[str], endings: tuple[str, ...] = (".h", ".cpp")) -> list[Path]:
    """The sources below the folders, as paths relative to the root, in order."""
    found = []
    for folder in folders:
        found += [path.relative_to(root) for path in (root / folder).rglob("*") if path.suffix in endings]
    return sorted(found)


def code_only(text: str) -> str:
    """The text with comments, texts and characters emptied; every line stays where it was."""

    def emptied(match: re.Match) -> str:
        return '""' if match.group().count("\n") == 0 else "\n" * match.group().count("\n")

    return _NOT_CODE.sub(emptied, text)


def run_check(name: str, violations: Callable[[Path], list[str]], arguments: list[str]) -> int:
    """The main function of a check: `NAME ROOT` prints what `violations` finds in the tree; 1 when it finds anything."""
    if len(arguments) != 1:
        print(f"usage: {name} ROOT", file=sys.stderr)
        return 2
    found = violations(Path(arguments[0]))
    for line in found:
        print(line)
    return 1 if found else 0
