"""Checks that the module needs nothing but the interface: its objects are linked with every symbol resolved, against a
library of the runtime that shows only what the headers in host/ declare.

    link_check.py COMPILER INTERFACE_LIBRARY OBJECT...

Prints what the linker says and ends with status 1 when it does not link.
"""

import subprocess
import sys
import tempfile
from pathlib import Path


def complaint(compiler: str, interface: str, objects: list[str]) -> str | None:
    """What the linker says of the objects as a library of their own; none when they link."""
    with tempfile.TemporaryDirectory() as folder:
        command = [compiler, "-shared", "-Wl,--no-undefined", "-Wl,--no-copy-dt-needed-entries"]
        command += ["-o", str(Path(folder, "module.so")), *objects, interface]
        run = subprocess.run(command, capture_output=True, text=True, check=False)
    return None if run.returncode == 0 else run.stderr


def main(arguments: list[str]) -> int:
    if len(arguments) < 3:
        print("usage: link_check.py COMPILER INTERFACE_LIBRARY OBJECT...", file=sys.stderr)
        return 2
    said = complaint(arguments[0], arguments[1], arguments[2:])
    if said:
        print(said)
    return 1 if said else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
