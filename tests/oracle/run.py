#!/usr/bin/env python3
"""Compares the program with the oracle on random datasets and commands.

Numbers must be equal, percents within one unit in the last place (a percent is a quotient that the program may form in
two roundings). Texts that the oracle does not foretell, the words of syntax errors and what reading the data had to say
are let pass; how many messages there are, how severe and from whom, is not."""

import argparse
import concurrent.futures
import contextlib
import csv
import io
import json
import math
import os
import shlex
import shutil
import subprocess
import sys
import tempfile
import traceback

sys.path.append(os.path.join(os.path.dirname(os.path.abspath(__file__)), os.pardir, "databases"))

import loading
from dictionary import read_dataset
from generate import make_case
from oracle import CHECK_FAILED, report_for
from serverprocess import skipped_where_missing
from showing import ANY_TEXT

SECONDS_A_CASE = 60
CASES_A_TASK = 25


def is_number(value):
    return isinstance(value, (int, float)) and not isinstance(value, bool)


def differences(expected, got, path=""):
    """Pairs of place and what differs there."""
    if expected is ANY_TEXT:
        return
    if isinstance(expected, dict) and isinstance(got, dict):
        for key in list(expected) + [k for k in got if k not in expected]:
            place = f"{path}.{key}"
            if key not in got:
                yield place, f"expected {expected[key]!r}, got nothing"
            elif key not in expected:
                # The format of a number is let pass where the oracle does not foretell it.
                if not (key == "format" and "number" in expected):
                    yield place, f"expected nothing, got {got[key]!r}"
            elif key == "number" and expected.get("column") == "Percent" and is_number(got[key]):
                if abs(expected[key] - got[key]) > math.ulp(expected[key]):
                    yield place, f"expected {expected[key]!r}, got {got[key]!r}"
            else:
                yield from differences(expected[key], got[key], place)
    elif isinstance(expected, list) and isinstance(got, list):
        for i, (one, other) in enumerate(zip(expected, got)):
            yield from differences(one, other, f"{path}[{i}]")
        if len(expected) != len(got):
            longer = expected if len(expected) > len(got) else got
            word = "missing" if longer is expected else "too much"
            yield path, f"expected {len(expected)} entries, got {len(got)}; {word}: {longer[min(len(expected), len(got))]!r}"
    elif is_number(expected) and is_number(got):
        if float(expected) != float(got):
            yield path, f"expected {expected!r}, got {got!r}"
    elif type(expected) is not type(got) or expected != got:
        yield path, f"expected {expected!r}, got {got!r}"


def message_differences(expected, got):
    got = [m for m in got if m.get("source") != "data"]
    if len(expected) != len(got):
        yield "messages", f"expected {[m['text'] or m.get('begins', 'a syntax error') for m in expected]}, " \
                          f"got {[m.get('text') for m in got]}"
        return
    for i, (one, other) in enumerate(zip(expected, got)):
        for key in ("severity", "source", "text"):
            if one[key] is not None and one[key] != other.get(key):
                yield f"messages[{i}].{key}", f"expected {one[key]!r}, got {other.get(key)!r}"
        if "begins" in one and not other.get("text", "").startswith(one["begins"]):
            yield f"messages[{i}].text", f"expected {one['begins']!r} first, got {other.get('text')!r}"


def case_differences(program, case, folder, data):
    """`data`: the arguments that name the data where they do not lie in the case's own file."""
    dataset = read_dataset(os.path.join(folder, "data.csv"), os.path.join(folder, case.dictionary), case.weight)
    if data:
        dataset.path = data[0] + "/" + data[-1]  # the table's name in the place of the file's
    report, status = report_for(dataset, case.command)
    # Bytes that the program is not told about must not change it: no terminal, no locale but UTF-8.
    done = subprocess.run([program] + case.arguments(folder, data), capture_output=True, timeout=SECONDS_A_CASE, check=False,
                          stdin=subprocess.DEVNULL, env={**os.environ, "LC_ALL": "C.UTF-8"})
    if done.returncode != status:
        words = done.stderr.decode(errors="replace").strip().splitlines()[:3]
        return [("exit status", f"expected {status}, got {done.returncode}: {' | '.join(words)}")]
    if status == CHECK_FAILED:
        return [("output", f"expected none after a failed check, got {done.stdout[:200]!r}")] if done.stdout else []
    try:
        got = json.loads(done.stdout)
    except ValueError as error:
        return [("output", f"no JSON: {error}")]
    found = list(message_differences(report["messages"], got.get("messages", [])))
    for key in ("format", "procedures"):
        found += differences(report[key], got.get(key), key)
    return found


def run_case(program, seed, number, folder, keep, data=None):
    case = make_case(seed, number)
    if data:
        repeat_first_row(case)
    place = os.path.join(folder, f"case-{number}")
    case.write(place)
    try:
        found = case_differences(program, case, place, data)
    except Exception:  # a fault of the oracle, or a program that hangs: shown like a difference
        found = [("comparison", traceback.format_exc())]
    if found and keep:
        kept = os.path.join(keep, f"seed-{seed}-case-{number}")
        shutil.copytree(place, kept, dirs_exist_ok=True)
        place = kept
    elif not found:
        shutil.rmtree(place)
    again = "" if keep else f"tests/oracle/generate.py {seed} {number} {place} && "
    again += "codebook " + " ".join(shlex.quote(a) for a in case.arguments(place, data))
    return number, found, again, case.command


def run_cases(program, seed, numbers, folder, keep, places):
    return [run_case(program, seed, number, folder, keep, places.get(number)) for number in numbers]


def repeat_first_row(case):
    """Puts the first row twice behind the last. A value that is first met in the last row escapes the check for too many
    values; the rows of a table have no order, and so none of them is the last."""
    rows = rows_of(case)
    text = io.StringIO()
    csv.writer(text, lineterminator="\n").writerows(rows + rows[1:2] * 2)
    case.files["data.csv"] = text.getvalue()


def rows_of(case):
    """The cells, header first."""
    return list(csv.reader(io.StringIO(case.files["data.csv"], newline=""), strict=True))


def put_into_databases(kinds, seed, numbers, stack):
    """Of each case the arguments that name its table; the kinds take turns."""
    databases = stack.enter_context(loading.Databases(kinds))
    places, tables = {}, {kind: [] for kind in kinds}
    for number in numbers:
        case = make_case(seed, number)
        kind = kinds[number % len(kinds)]
        repeat_first_row(case)
        rows = rows_of(case)
        tables[kind].append(loading.Table(f"case {number}", rows, loading.exact_types(rows)))
        places[number] = databases.source(kind, f"case {number}")
    for kind in kinds:
        databases.load(tables[kind], [kind])
    os.environ.update(databases.environment())
    return places


def show(result, limit):
    number, found, again, command = result
    print(f"case {number}: {len(found)} differences")
    print("  command: " + command.strip().replace("\n", "\n           "))
    for place, words in found[:limit]:
        print(f"  {place}: {words}")
    print("  again:   " + again)


def main():
    options = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    options.add_argument("--program", required=True)
    options.add_argument("--cases", type=int, default=2000)
    options.add_argument("--seed", type=int, default=1)
    options.add_argument("--first", type=int, default=0, help="number of the first case")
    options.add_argument("--databases", help="take the data from tables of these databases: a list with commas, see tests/databases/loading.py")
    options.add_argument("--keep", help="folder for the files of cases that differ")
    options.add_argument("--jobs", type=int, default=2)
    options.add_argument("--show", type=int, default=5, help="how many failed cases to print")
    chosen = options.parse_args()

    program = os.path.abspath(chosen.program)
    if not os.access(program, os.X_OK):
        options.error(f"{program} is no program")
    numbers = list(range(chosen.first, chosen.first + chosen.cases))
    tasks = [numbers[i:i + CASES_A_TASK] for i in range(0, len(numbers), CASES_A_TASK)]
    failed = 0
    with contextlib.ExitStack() as stack:
        folder = os.path.realpath(stack.enter_context(tempfile.TemporaryDirectory(prefix="oracle-")))
        places = put_into_databases(chosen.databases.split(","), chosen.seed, numbers, stack) if chosen.databases else {}
        with concurrent.futures.ProcessPoolExecutor(chosen.jobs) as pool:
            runs = [pool.submit(run_cases, program, chosen.seed, task, folder, chosen.keep, places) for task in tasks]
            for run in runs:
                for result in run.result():
                    if not result[1]:
                        continue
                    failed += 1
                    if failed <= chosen.show:
                        show(result, 5)
    print(f"{len(numbers) - failed} passed, {failed} failed")
    return 1 if failed else 0


if __name__ == "__main__":
    with skipped_where_missing():
        sys.exit(main())
