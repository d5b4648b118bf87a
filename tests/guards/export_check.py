#!/usr/bin/env python3
"""The module shows the two functions that the program calls, and nothing else.

    tests/guards/export_check.py build/dev/codebook.so
"""

import subprocess
import sys

EXPORTED = {"CODEBOOK", "LoadNotification"}


def exported(module: str) -> set:
    """Names of the symbols that a shared library defines for others."""
    symbols = subprocess.run(["nm", "-D", "--defined-only", module], capture_output=True, text=True, check=True).stdout
    return {line.split()[-1] for line in symbols.splitlines()}


def main(module: str) -> int:
    found = exported(module)
    for name in sorted(found - EXPORTED):
        print(f"{module}: exports {name}, which is not part of the module")
    for name in sorted(EXPORTED - found):
        print(f"{module}: does not export {name}")
    return 0 if found == EXPORTED else 1


if __name__ == "__main__":
    sys.exit(main(sys.argv[1]))
