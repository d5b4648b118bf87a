#!/usr/bin/env python3
"""Replays the golden cases and compares what the program says with what stands in them.

Each case is run from every kind of data file, with one and two threads and with text read and cases counted in small and
large portions: status, messages and report must always be those of the case file. --update writes what the program says into
the case files, after showing the difference: to be read line by line before it is believed."""

import argparse
import collections
import concurrent.futures
import contextlib
import difflib
import itertools
import json
import os
import subprocess
import sys
import tempfile

sys.path.append(os.path.join(os.path.dirname(os.path.abspath(__file__)), os.pardir, "databases"))

from casefile import CaseError, find_cases
from reportdump import as_text, dump_report
from serverprocess import skipped_where_missing
from sources import DICTIONARY, Files, Tables

THREADS = ("1", "2")
# Cases that are counted at a time, and bytes of text that are read at a time.
PORTIONS = (("1", "300"), ("3", "2000"), (None, None))
SECONDS_A_RUN = 60


class Runner:
    def __init__(self, program, sources, quick):
        self.program = os.path.abspath(program)
        self.sources = sources
        # A slow build shows each source, each number of threads and each chunk size once rather than all together.
        self.settings = list(itertools.product(THREADS, PORTIONS))
        if quick:
            self.settings = [("1", (None, None)), ("2", ("3", "2000"))]

    def outcome(self, case, folder, place, threads, portions):
        """What the program says to the case, in the notation of the case file, and the facts beside the report."""
        command = [self.program, *place.arguments, "-F", "json", "-c", case.command(), "--threads", threads, *case.options()]
        chunk_rows, segment_bytes = portions
        if chunk_rows:
            command += ["--chunk-rows", chunk_rows, "--segment-bytes", segment_bytes]
        done = subprocess.run(command, stdin=subprocess.DEVNULL, capture_output=True, timeout=SECONDS_A_RUN, check=False,
                              env={**os.environ, **self.sources.environment()})
        shown = {folder: "FOLDER", **place.shown}
        out, err = (normalised(text.decode("utf-8"), shown) for text in (done.stdout, done.stderr))
        facts = ""
        if out:
            messages, report, facts = dump_report(out)
            said = sum(line.startswith(("codebook: error: ", "codebook: warning: ")) for line in err.splitlines())
            held = sum(line.startswith(("error ", "warning ")) for line in messages.splitlines())
            if said != held:
                messages += f"but standard error tells {said} messages:\n{err}"
        else:
            messages, report = as_text("stderr: " + line for line in err.splitlines()), ""
        parts = {"status": f"{done.returncode}\n", "messages": messages, "report": report, "facts": facts}
        return case.outcome_of(parts), facts

    def outcomes(self, case):
        """Of each run its name, its outcome and its facts."""
        for kind in self.sources.kinds(case):
            with tempfile.TemporaryDirectory(prefix="golden.") as folder:
                folder = os.path.realpath(folder)
                place = self.sources.place(kind, case, folder)
                if case.dictionary() is not None:
                    with open(os.path.join(folder, DICTIONARY), "w", encoding="utf-8") as file:
                        file.write(case.dictionary())
                for threads, portions in self.sources.settings(self.settings, kind, case):
                    name = f"{kind}, {threads} threads, chunks of {portions[0] or 'all'} rows"
                    yield name, *self.outcome(case, folder, place, threads, portions)


def normalised(text, shown):
    """Names and places that differ from run to run are of no account."""
    for words, stands_for in shown.items():
        text = text.replace(json.dumps(words, ensure_ascii=False)[1:-1], stands_for).replace(words, stands_for)
    return text


def difference(expected, got):
    lines = difflib.unified_diff(expected.splitlines(), got.splitlines(), "expected", "got", lineterm="", n=3)
    return as_text("    " + line for line in lines)


def compare(runner, case, update):
    """The faults of a case as one text, empty when there is none; and whether its file was changed."""
    found = collections.OrderedDict()
    first, others = None, []
    for name, outcome, facts in runner.outcomes(case):
        if outcome != case.outcome():
            found.setdefault(outcome, []).append(name)
        first = first or (name, facts)
        if facts != first[1]:
            others.append((name, facts))
    if not found and not others:
        return "", False
    text = f"{case.name}\n"
    for name, facts in others[:1]:
        text += f"  {name}: the facts are not those of {first[0]}:\n{difference(first[1], facts)}"
    if not found:
        return text, False
    for outcome, names in found.items():
        further = f" and {len(names) - 1} more" if len(names) > 1 else ""
        text += f"  {names[0]}{further}:\n{difference(case.outcome(), outcome)}"
    if update:
        case.write_outcome(next(iter(found)))
    return text, update


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--program", required=True, help="the program to try")
    parser.add_argument("--duckdb", help="libduckdb.so, when the program was built with it: adds JSON lines and Parquet")
    parser.add_argument("--databases", help="replay from tables of these databases instead of from files: a list with commas, see tests/databases/loading.py")
    parser.add_argument("--cases", default=os.path.dirname(os.path.abspath(__file__)), help="the folder of the cases (otherwise this one)")
    parser.add_argument("--quick", action="store_true", help="fewer combinations, for builds with sanitizers")
    parser.add_argument("--update", action="store_true", help="show what differs and write it into the case files")
    parser.add_argument("case", nargs="*", help="names of cases (otherwise all)")
    arguments = parser.parse_args()
    if arguments.update and os.environ.get("CI"):
        sys.exit("run.py: --update is refused where CI is set: expectations are changed by people who read them")

    try:
        cases = find_cases(arguments.cases, arguments.case)
        with skipped_where_missing(), contextlib.ExitStack() as stack:
            if arguments.databases:
                sources = stack.enter_context(Tables(arguments.databases.split(","), cases))
            else:
                sources = Files(arguments.duckdb)
            cases = [case for case in cases if sources.kinds(case)]
            runner = Runner(arguments.program, sources, arguments.quick)
            pool = stack.enter_context(concurrent.futures.ThreadPoolExecutor(os.cpu_count()))
            results = list(pool.map(lambda case: compare(runner, case, arguments.update), cases))
    except CaseError as error:
        sys.exit(f"run.py: {error}")
    for faults, updated in results:
        print(faults + ("  written to the case file\n" if updated else ""), end="")
    failed = sum(bool(faults) for faults, _ in results)
    print(f"{len(results) - failed} passed, {failed} failed")
    sys.exit(1 if failed else 0)


if __name__ == "__main__":
    main()
