#!/usr/bin/env python3
"""Reads again what the program wrote in one format and compares it, cell by cell, with the JSON report of the same case.

Then shows that the reader can fail: in copies of the JSON reports something small is changed (plants.py), and the reader must find
each change that the format is documented to hold."""

import argparse
import importlib
import os
import sys

import plants
from outputs import Outputs

PLANTED_CASES = 5  # for each kind of change


def status_differences(outputs, format_):
    if outputs.status(format_) != outputs.status("json"):
        yield f"the exit status is {outputs.status(format_)}, with -F json {outputs.status('json')}"
    elif outputs.status(format_) < 0:
        yield f"the program was ended by signal {-outputs.status(format_)}"


def check(reader, format_, outputs):
    """The differences of a case."""
    report = outputs.report()
    found = list(status_differences(outputs, format_))
    if report is None:
        return found + ([] if outputs.bytes(format_) == b"" else ["there is a report where -F json has none"])
    return found + list(reader.differences(report, outputs))


def overlooked(reader, cases):
    """What was planted and not found, and how much was planted."""
    planted = 0
    missed = []
    for what, outputs, changed in plants.planted(cases, getattr(reader, "OVERLOOKS", ()), PLANTED_CASES):
        planted += 1
        if not any(reader.differences(changed, outputs)):
            missed.append(f"{outputs.name}: {what}")
    if hasattr(reader, "spoilt"):
        for outputs in cases[:: len(cases) // PLANTED_CASES]:
            for what, changed in reader.spoilt(outputs.report() or {}):
                planted += 1
                if not reader.refuses(changed):
                    missed.append(f"{outputs.name}: {what}")
    return missed, planted


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--outputs", required=True, help="the folder that collect.py filled")
    parser.add_argument("--format", required=True)
    parser.add_argument("case", nargs="*", help="names of cases (otherwise all)")
    arguments = parser.parse_args()

    reader = importlib.import_module("readers." + arguments.format)
    names = arguments.case or sorted(os.listdir(arguments.outputs))
    cases = [Outputs(os.path.join(arguments.outputs, name)) for name in names]
    if not cases:
        sys.exit("compare.py: there is nothing to compare")
    failed = 0
    for outputs in cases:
        found = check(reader, arguments.format, outputs)
        failed += bool(found)
        for difference in found[:10]:
            print(f"{outputs.name}: {difference[:1000]}")
        if len(found) > 10:
            print(f"{outputs.name}: and {len(found) - 10} more")
    print(f"{len(cases) - failed} cases as in the JSON report, {failed} not")

    try:
        missed, planted = overlooked(reader, cases) if not arguments.case else ([], 0)
    except plants.NoPlaceError as error:
        sys.exit(f"compare.py: {error}")
    for what in missed:
        print(f"not noticed: {what}")
    print(f"{planted - len(missed)} of {planted} planted changes found")
    sys.exit(1 if failed or missed else 0)


if __name__ == "__main__":
    main()
