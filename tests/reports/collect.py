#!/usr/bin/env python3
"""Runs every golden case and every hostile one once in each format and keeps what was written, for the readers (compare.py)."""

import argparse
import concurrent.futures
import os
import shutil
import subprocess
import sys

HERE = os.path.dirname(os.path.abspath(__file__))
GOLDEN = os.path.join(os.path.dirname(HERE), "golden")
sys.path.insert(0, GOLDEN)

import datafiles  # noqa: E402
import evil  # noqa: E402
from casefile import find_cases  # noqa: E402

SECONDS_A_RUN = 60
# Options that show the whole of a report in its format.
OPTIONS = {"text": ["--width", "10000"]}
ENVIRONMENT = {**os.environ, "LC_ALL": "C.UTF-8", "SOURCE_DATE_EPOCH": "0"}


def kind_of(case):
    wanted = case.sources() if hasattr(case, "sources") else None
    return next((kind for kind in datafiles.WITHOUT_DUCKDB if not wanted or kind in wanted), None)


def collect(program, formats, folder, case):
    """Runs a case in all formats. What it says of itself other than the report goes to `log`."""
    kind = kind_of(case)
    if kind is None:
        return
    folder = os.path.join(folder, case.name)
    os.makedirs(folder)
    data = datafiles.write_data(kind, folder, case.rows(), None)
    if case.dictionary() is not None:
        with open(os.path.join(folder, "data.schema.json"), "w", encoding="utf-8") as file:
            file.write(case.dictionary())
    for name in formats:
        command = [program, data, "-F", name, "-c", case.command(), *OPTIONS.get(name, []), *case.options()]
        with open(os.path.join(folder, "report." + name), "wb") as report, open(os.path.join(folder, "log." + name), "wb") as log:
            status = subprocess.run(command, stdin=subprocess.DEVNULL, stdout=report, stderr=log, timeout=SECONDS_A_RUN, env=ENVIRONMENT, check=False).returncode
        with open(os.path.join(folder, "status." + name), "w", encoding="ascii") as file:
            file.write(str(status))


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--program", required=True, help="the program to try")
    parser.add_argument("--outputs", required=True, help="the folder for what is written; emptied first")
    parser.add_argument("--every", type=int, default=1, help="only every so many of the golden cases, for builds with sanitizers")
    parser.add_argument("format", nargs="+", help="formats, beside json")
    arguments = parser.parse_args()

    shutil.rmtree(arguments.outputs, ignore_errors=True)
    os.makedirs(arguments.outputs)
    formats = list(dict.fromkeys(["json", *arguments.format]))
    cases = [*find_cases(GOLDEN, [])[:: arguments.every], *evil.all_cases()]
    with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
        list(pool.map(lambda case: collect(os.path.abspath(arguments.program), formats, arguments.outputs, case), cases))
    print(f"{len(cases)} cases in {len(formats)} formats")


if __name__ == "__main__":
    main()
