"""Where the counting is done: the statements that the program sends let every worker count its own rows."""

import os
import random
import re
import sys
import unittest

import loading
import plans
from postgres import programs, require_driver
from serverprocess import skipped_where_missing

sys.path.append(os.path.join(os.path.dirname(os.path.abspath(__file__)), os.pardir, "program"))

from program import ProgramTest  # noqa: E402

QUERY = "codebook: query: "
COUNTS = re.compile(r"GROUP BY|\b(count|sum|min|max)\(", re.IGNORECASE)
PROBES = re.compile(r"\bLIMIT [0-9]+\) \w+$|WHERE 1 = 0\)", re.IGNORECASE)  # of the first rows or of none
SOURCE = re.compile(r"odbc:[^ ]*: ")
ROWS = 30_000
COMMAND = "CODEBOOK ALL /STATISTICS COUNT PERCENT MEAN STDDEV QUARTILES."
DICTIONARY = """{"fields": [{"name": "sex", "type": "integer", "missingValues": ["", "9"]}, {"name": "town", "type": "string"},
  {"name": "born", "type": "date"}, {"name": "on", "type": "boolean"}, {"name": "income", "type": "number"},
  {"name": "id", "type": "integer"}, {"name": "wt", "type": "number"}],
  "codebook": {"weight": "wt", "multipleResponseSets": [{"name": "$both", "type": "category", "variables": ["sex", "on"]}]}}"""


def survey():
    numbers = random.Random(3)
    rows = [["sex", "town", "born", "on", "income", "id", "wt"]]
    for i in range(ROWS):
        rows.append([numbers.choice(["1", "2", "9", ""]), numbers.choice(["Berlin", "Bonn", "Jena", "Ulm"]),
                     f"{numbers.randrange(1950, 1952)}-{numbers.randrange(1, 13):02d}-01", numbers.choice(["true", "false"]),
                     repr(numbers.random() * 5000), str(i), numbers.choice(["0.5", "1", "1.25"])])
    return loading.Table("survey", rows, loading.exact_types(rows))


class Pushdown(ProgramTest):
    @classmethod
    def setUpClass(cls):
        cls.databases = loading.Databases([loading.POSTGRES, loading.SHARDS, loading.INHERITED])
        cls.databases.__enter__()
        cls.addClassCleanup(cls.databases.__exit__)
        cls.databases.load([survey()])
        cls.coordinator = cls.databases.server.coordinator
        for i in range(loading.WORKER_COUNT):
            for kind in (loading.SHARDS, loading.INHERITED):
                cls.coordinator.run(f"ANALYZE {loading.leaf_schema(kind, i)}.survey;")

    def run_on(self, kind, *arguments):
        self.write("survey.schema.json", DICTIONARY)
        return self.run_program(*self.databases.source(kind, "survey"), "-d", "survey.schema.json", "-c", COMMAND, "-F", "json", *arguments,
                                **self.databases.environment())

    def statements(self, kind):
        """What the program sent: the settings, and the rest."""
        result = self.run_on(kind, "--show-queries")
        self.assert_status(result, 0)
        sent = [SOURCE.sub("", line.removeprefix(QUERY), count=1) for line in result.messages().splitlines() if line.startswith(QUERY)]
        return [s for s in sent if s.startswith("SET ")], [s for s in sent if not s.startswith("SET ")]

    def assert_workers_count(self, kind, own=()):
        settings, sent = self.statements(kind)
        counting = [s for s in sent if COUNTS.search(s) and not PROBES.search(s) and "pg_class" not in s and "pg_collation" not in s]
        self.assertGreaterEqual(len(counting), 5, sent)  # columns of few values share one
        for statement in counting:
            found = plans.faults_of(plans.plan_of(self.coordinator, statement, settings), loading.WORKER_COUNT, own)
            self.assertEqual(found, [], statement[:300])

    def test_workersOfAPartitionedTableCountTheirOwnRows(self):
        self.assert_workers_count(loading.SHARDS)

    def test_workersOfInheritedTablesCountTheirOwnRows(self):
        self.assert_workers_count(loading.INHERITED, own=("survey",))  # the parent may hold rows itself

    def test_noStatementFetchesRowsWithoutALimit(self):
        for kind in (loading.POSTGRES, loading.SHARDS):
            for statement in self.statements(kind)[1]:
                self.assertRegex(statement, r"(?i)GROUP BY|\b(count|sum|min|max)\(|\bLIMIT [0-9]+|pg_class|WHERE 1 = 0|^SHOW ")

    def test_reportsAreTheSame(self):
        first = self.run_on(loading.POSTGRES)
        self.assert_done(first)
        for kind in (loading.SHARDS, loading.INHERITED):
            other = self.run_on(kind)
            self.assert_done(other)
            self.assertEqual(other.out.replace(b"inherited.", b"plain.").replace(b"public.", b"plain."), first.out)

    def grouped(self, relations):
        arms = " UNION ALL ".join(f"SELECT town AS v, COUNT(*) AS n FROM {relation} GROUP BY town" for relation in relations)
        return plans.faults_of(plans.plan_of(self.coordinator, f"SELECT v, n FROM ({arms}) g"), loading.WORKER_COUNT)

    def test_groupingOfTheParentIsFound(self):
        found = self.grouped(["public.survey"])
        self.assertEqual(sum("asked for rows" in fault for fault in found), loading.WORKER_COUNT, found)

    def test_groupingOfEachLeafIsLeftToTheWorkers(self):
        self.assertEqual(self.grouped([f"{loading.leaf_schema(loading.SHARDS, i)}.survey" for i in range(loading.WORKER_COUNT)]), [])

    def test_forgottenLeafIsFound(self):
        found = self.grouped([f"{loading.leaf_schema(loading.SHARDS, i)}.survey" for i in range(loading.WORKER_COUNT - 1)])
        self.assertEqual(found, ["2 foreign scans for 3 workers"])

    def test_tableThatLiesHereIsFound(self):
        found = self.grouped(["plain.survey"])
        self.assertIn("a Seq Scan of survey reads rows here", found)


if __name__ == "__main__":
    with skipped_where_missing():
        programs()
        require_driver()
    unittest.main()
