"""Reports of tables beyond what is fetched of them are those of the same data in a CSV file, byte for byte.
CODEBOOK_LARGE_TABLES says how many tables, CODEBOOK_LARGE_TIMES how many times as large ones, CODEBOOK_LARGE_SEED from which
seed, CODEBOOK_LARGE_KINDS in which databases."""

import concurrent.futures
import json
import os
import sys
import unittest

import clickhouse
import loading
from largetables import LargeTable
from postgres import programs, require_driver
from serverprocess import skipped_where_missing

sys.path.append(os.path.join(os.path.dirname(os.path.abspath(__file__)), os.pardir, "program"))

from program import ProgramTest  # noqa: E402

COUNT = int(os.environ.get("CODEBOOK_LARGE_TABLES", "8"))
TIMES = int(os.environ.get("CODEBOOK_LARGE_TIMES", "1"))
SEED = os.environ.get("CODEBOOK_LARGE_SEED", "1")
# Partitions are counted like inherited tables, and take much longer to fill.
KINDS = os.environ.get("CODEBOOK_LARGE_KINDS", f"{loading.SQLITE},{loading.POSTGRES},{loading.INHERITED},{loading.WORKERS}").split(",")


class LargeTables(ProgramTest):
    def test_reportsAreThoseOfTheFile(self):
        cases = [LargeTable(SEED, number, TIMES) for number in range(COUNT)]
        tables = [case.table() for case in cases]
        with loading.Databases(KINDS) as databases:
            databases.load(tables)
            if databases.server:
                databases.server.coordinator.run("ANALYZE;")
            with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
                for case, found in zip(cases, pool.map(lambda pair: self.differences(databases, *pair), zip(cases, tables))):
                    for kind, words in found.items():
                        with self.subTest(table=case.name, kind=kind, command=case.command):
                            self.fail(words)

    def differences(self, databases, case, table):
        """Of each kind of source what is not as in the file."""
        self.write(f"{case.name}/data.schema.json", case.dictionary())
        folder = self.path(case.name)
        file = loading.datafiles.write_data("comma", folder, [table.columns] + table.rows, None)
        options = ["-d", os.path.join(folder, "data.schema.json"), "-c", case.command, "-F", "json"]
        expected = self.run_program(file, *options)
        found = {}
        for kind in databases.kinds:
            got = self.run_program(*databases.source(kind, table.name), *options, **databases.environment())
            if got.status != expected.status:
                found[kind] = f"status {got.status} for {expected.status}: {got.messages()[:500]}"
            elif report_of(got) != report_of(expected):
                found[kind] = first_difference(report_of(expected), report_of(got))
        return found


def report_of(result):
    """The report as a text, without the name of the data."""
    if not result.out:
        return ""
    report = json.loads(result.out)
    if "facts" in report:
        report["facts"]["file"] = None
    return json.dumps(report, ensure_ascii=False)


def first_difference(expected, got):
    at = next((i for i, (one, other) in enumerate(zip(expected, got)) if one != other), min(len(expected), len(got)))
    begin = max(0, at - 300)
    return f"expected ...{expected[begin:at + 120]}...\n\n     got ...{got[begin:at + 120]}..."


if __name__ == "__main__":
    with skipped_where_missing():
        if KINDS != [loading.CLICKHOUSE]:
            programs()
            require_driver()
        else:
            clickhouse.program()
    unittest.main()
