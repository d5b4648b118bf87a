#!/usr/bin/env python3
"""The README shows what `make demo` prints: the first fenced block behind its heading is the demo's output.

    tests/readme/readme_demo_test.py --program build/dev/codebook
"""

import argparse
import difflib
import os
import subprocess
import sys
from pathlib import Path

root = Path(__file__).resolve().parent.parent.parent
arguments = argparse.ArgumentParser(description=__doc__)
arguments.add_argument("--program", required=True)
program = Path(arguments.parse_args().program).resolve()

readme = (root / "README.md").read_text(encoding="utf-8")
shown = readme.split("## What `make demo` shows", 1)[1].split("```\n", 2)[1]
environment = {**os.environ, "CODEBOOK": str(program), "LC_ALL": "C.UTF-8"}
printed = subprocess.run([root / "scripts" / "demo"], env=environment, capture_output=True, text=True, check=True).stdout

difference = list(difflib.unified_diff(shown.splitlines(), printed.splitlines(), "README.md", "make demo", lineterm=""))
if difference:
    print("\n".join(difference))
    sys.exit("The README does not show what make demo prints.")
