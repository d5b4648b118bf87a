"""Checks that the core neither prints nor ends the process: it reports through its return values, messages and exceptions.

    print_check.py ROOT

The core is host/, codebook/ and runtime/. Writing to a stream that was handed in is fine; the process's own streams and
its end are the program's. Prints one line a violation (file:line: what) and ends with status 1 when there is any.
"""

import re
import sys
from pathlib import Path

from sources import code_only, run_check, sources

CORE = ["host", "codebook", "runtime"]

# A name of the process's own streams, a call that writes to them, and a call that ends the process. A member of the same
# name (cursor.exit(), table->puts()) is somebody else's.
FORBIDDEN = re.compile(
    r"""
      \bstd\s*::\s*w?(?:cout|cerr|clog)\b
    | (?<![\w.>:])(?:stdout|stderr|STDOUT_FILENO|STDERR_FILENO)\b
    | (?<![\w.>:])(?:(?:std\s*)?::\s*)?
      (?:v?f?w?printf|f?puts|f?putc|putchar|perror|assert|abort|exit|_exit|_Exit|quick_exit|terminate)\s*\(
    | \bfmt\s*::\s*v?print(?:ln)?\s*\(
    | ^[ \t]*\#[ \t]*include[ \t]*<iostream>
    """,
    re.VERBOSE | re.MULTILINE,
)


def violations(root: Path) -> list[str]:
    found = []
    for path in sources(root, CORE):
        code = code_only((root / path).read_text(encoding="utf-8"))
        for match in FORBIDDEN.finditer(code):
            line = code.count("\n", 0, match.start()) + 1
            found.append(f"{path.as_posix()}:{line}: the core uses {match.group().strip().rstrip('( ')}")
    return found


def main(arguments: list[str]) -> int:
    return run_check("print_check.py", violations, arguments)


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
