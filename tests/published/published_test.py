#!/usr/bin/env python3
"""Reports of published datasets: each is compared with the one that was checked by hand (CHECKED.md), and counted anew.

--update shows what differs and writes the reports: to be read line by line, and checked anew, before it is believed."""

import argparse
import difflib
import os
import subprocess
import sys

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), os.pardir, "golden"))

from datasets import DATASETS, PROJECT  # noqa: E402
from recount import Recount, json_report  # noqa: E402
from reportdump import dump_report  # noqa: E402


def readable(out):
    """Messages and report, a line a row; where the project lies is of no account."""
    messages, report, _ = dump_report(out)
    return f"--- messages\n{messages}--- report\n{report}".replace(PROJECT + os.sep, "")


def differences(dataset, got):
    expected = ""
    if os.path.exists(dataset.golden()):
        with open(dataset.golden(), encoding="utf-8") as file:
            expected = file.read()
    lines = difflib.unified_diff(expected.splitlines(), got.splitlines(), "expected", "got", lineterm="", n=3)
    return "".join(f"    {line}\n" for line in lines)


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--program", required=True, help="the program to try")
    parser.add_argument("--update", action="store_true", help="show what differs and write it into the reports")
    parser.add_argument("name", nargs="*", help="names of datasets (otherwise all)")
    arguments = parser.parse_args()
    if arguments.update and os.environ.get("CI"):
        sys.exit("published_test.py: --update is refused where CI is set: expectations are changed by people who read them")
    unknown = set(arguments.name) - {dataset.name for dataset in DATASETS}
    if unknown:
        sys.exit(f"published_test.py: there is no dataset {', '.join(sorted(unknown))}")

    failed = 0
    for dataset in DATASETS:
        if arguments.name and dataset.name not in arguments.name:
            continue
        out = json_report(arguments.program, dataset)
        got = readable(out)
        difference = differences(dataset, got)
        recount = Recount(dataset, out)
        faults = recount.run()
        failed += bool(difference or faults)
        print(f"{dataset.name}: {'as checked' if not difference else 'differs'}; {recount.compared} facts counted anew, {len(faults)} differ")
        print(difference + "".join(f"    {fault}\n" for fault in faults), end="")
        if difference and arguments.update:
            with open(dataset.golden(), "w", encoding="utf-8") as file:
                file.write(got)
            print("    written")
    sys.exit(1 if failed else 0)


if __name__ == "__main__":
    main()
