"""Checks that every header compiles alone, so that no file depends on what another one happened to include before.

    header_check.py ROOT COMPILER [FLAG...]

The flags are those of the build (the folders of libraries, definitions). Compiles as many headers at a time as the
machine has cores. Prints what the compiler says of those that do not compile and ends with status 1 when there is any.
"""

import os
import subprocess
import sys
from concurrent.futures import ThreadPoolExecutor
from pathlib import Path

from sources import sources

FOLDERS = ["host", "codebook", "runtime", "app"]


def complaint(root: Path, compiler: list[str], header: Path) -> str | None:
    """What the compiler says of a file that includes only the header; none when it compiles."""
    command = compiler + ["-std=c++20", "-fsyntax-only", "-w", f"-I{root}", "-x", "c++", "-"]
    source = f'#include "{header.as_posix()}"\n'
    run = subprocess.run(command, input=source, capture_output=True, text=True, check=False)
    return None if run.returncode == 0 else f"{header.as_posix()} does not compile alone:\n{run.stderr}"


def violations(root: Path, compiler: list[str]) -> list[str]:
    headers = sources(root, FOLDERS, (".h",))
    with ThreadPoolExecutor(os.cpu_count()) as pool:
        return [said for said in pool.map(lambda header: complaint(root, compiler, header), headers) if said]


def main(arguments: list[str]) -> int:
    if len(arguments) < 2:
        print("usage: header_check.py ROOT COMPILER [FLAG...]", file=sys.stderr)
        return 2
    found = violations(Path(arguments[0]), arguments[1:])
    for said in found:
        print(said)
    return 1 if found else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
