#!/usr/bin/env python3
"""Mean and standard deviation of the NIST reference datasets, from the file to the report, to the last bit.

    tests/reference/nist_test.py --program build/dev/codebook

The certified doubles are those of exact arithmetic on the data, rounded once (tests/data/nist/README.md). The weighted forms hold
each distinct value once, weighted by how often it stands in the data.
"""

import argparse
import json
import subprocess
import sys
from pathlib import Path

data = Path(__file__).resolve().parent.parent / "data" / "nist"
COMMAND = "CODEBOOK y [S] /STATISTICS MEAN STDDEV."


def numbers(items: list) -> dict:
    """Row label to number, over all groups."""
    found = {}
    for item in items:
        if "group" in item:
            found.update(numbers(item["items"]))
        else:
            found.update({item["category"]["text"]: cell["number"] for cell in item["cells"] if "number" in cell})
    return found


def report_of(program: str, file: Path, options: list) -> dict:
    command = [program, file, "-F", "json", "-c", COMMAND, *options]
    report = json.loads(subprocess.run(command, capture_output=True, text=True, check=True).stdout)
    return numbers(report["procedures"][0]["tables"][0]["dimensions"][0]["items"])


def main() -> int:
    arguments = argparse.ArgumentParser(description=__doc__)
    arguments.add_argument("--program", required=True)
    program = str(Path(arguments.parse_args().program).resolve())

    passed, failed = 0, 0
    certified = json.loads((data / "certified.json").read_text(encoding="utf-8"))["datasets"]
    for name, dataset in certified.items():
        expected = {
            "Valid": float(dataset["n"]),
            "Mean": float.fromhex(dataset["binary64"]["mean_hex"]),
            "Standard Deviation": float.fromhex(dataset["binary64"]["sd_hex"]),
        }
        forms = [(data / f"{name}.csv", []), (data / "weighted" / f"{name}_w.csv", ["--weight", "w"])]
        for file, options in forms:
            shown = report_of(program, file, options)
            wrong = {label: shown.get(label) for label, value in expected.items() if shown.get(label) != value}
            failed, passed = failed + bool(wrong), passed + (not wrong)
            for label, value in wrong.items():
                print(f"{file.name}: {label} is {value!r}, certified {expected[label]!r}")
    print(f"{passed} passed, {failed} failed")
    return 1 if failed or passed != 18 else 0


if __name__ == "__main__":
    sys.exit(main())
