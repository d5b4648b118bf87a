"""Values that PostgreSQL has and files do not, among more of them than are fetched: the report of the counted groups is that of
the fetched rows."""

import json
import os
import sys
import unittest

from postgres import COORDINATOR, PostgresServers, programs, require_driver
from serverprocess import skipped_where_missing

sys.path.append(os.path.join(os.path.dirname(os.path.abspath(__file__)), os.pardir, "program"))

from program import ProgramTest  # noqa: E402

ROWS = 60_000
COMMAND = "CODEBOOK ALL /STATISTICS COUNT PERCENT MEAN STDDEV QUARTILES."
# The odd ones stand behind the first rows, which are looked at beforehand, in the tables whose names say so.
EARLY, LATE = 700, ROWS - 700
COLUMNS = {
    "notnumbers": "CASE g WHEN {at} THEN 'NaN' WHEN {at} + 1 THEN 'Infinity' WHEN {at} + 2 THEN '-Infinity' ELSE (g * 7 % 99991)::numeric(12,2) / 100 END",
    "notdoubles": "CASE g WHEN {at} THEN 'NaN' WHEN {at} + 1 THEN 'Infinity' WHEN {at} + 2 THEN '-Infinity' WHEN {at} + 3 THEN NULL ELSE sin(g) END",
    "nonebutnan": "CASE WHEN g < {at} THEN NULL ELSE 'NaN'::float8 END",
    "moredecimals": "CASE g WHEN {at} THEN 1.123456 ELSE (g * 7 % 99991)::numeric END",
    "morezeros": "CASE g WHEN {at} THEN 1.5000 ELSE ((g * 7 % 99991) / 10.0)::numeric(12,1)::numeric END",
    "morebits": "CASE g WHEN {at} THEN 1e-9::float8 ELSE g / 4.0::float8 END",
    "days": "CASE g WHEN {at} THEN 'infinity' WHEN {at} + 1 THEN '0044-03-15 BC' ELSE DATE '1990-01-01' + g % 3 END",
    "moments": "CASE g WHEN {at} THEN '-infinity' ELSE TIMESTAMP '1990-01-01 12:00' + g % 3 * INTERVAL '1 day' END",
    "wholes": "CASE g WHEN {at} THEN 5000000000 ELSE g::bigint * 7 - 1000 END",
}
DICTIONARY = """{"fields": [{"name": "notnumbers", "type": "integer"}, {"name": "notdoubles", "type": "number", "missingValues": ["", "0.8414709848078965"]},
  {"name": "nonebutnan", "type": "number"}, {"name": "moredecimals", "type": "integer"}, {"name": "morezeros", "type": "number"},
  {"name": "morebits", "type": "integer"}, {"name": "days", "type": "date"}, {"name": "moments", "type": "datetime"},
  {"name": "wholes", "type": "number"}, {"name": "w", "type": "number"}]}"""


class OwnValues(ProgramTest):
    @classmethod
    def setUpClass(cls):
        cls.servers = PostgresServers(workers=0, is_small=True)
        cls.servers.__enter__()
        cls.addClassCleanup(cls.servers.__exit__)
        for name, at in (("early", EARLY), ("late", LATE)):
            columns = ", ".join(f"{make.format(at=at)} AS {column}" for column, make in COLUMNS.items())
            cls.servers.coordinator.run(f"CREATE TABLE {name} AS SELECT {columns}, (g % 5) / 4.0 + 0.25 AS w FROM generate_series(1, {ROWS}) g;")

    def setUp(self):
        super().setUp()
        self.write("whole.schema.json", DICTIONARY)

    def report(self, table, *options):
        result = self.run_program(f"odbc:DSN={COORDINATOR}", "--table", table, "-c", COMMAND, "-F", "json", *options, **self.servers.environment())
        self.assert_status(result, 0)
        return json.loads(result.out)

    def assert_counted_as_fetched(self, *options):
        for table in ("early", "late"):
            with self.subTest(table=table):
                counted, fetched = (self.report(table, *options, *more) for more in ((), ("--fetch-rows",)))
                for mine, theirs in zip(counted["procedures"][0]["tables"], fetched["procedures"][0]["tables"]):
                    self.assertEqual(mine, theirs)
                # Of cells that do not read, each names one; which is first, only rows know.
                del counted["messages"], fetched["messages"]
                self.assertEqual(counted, fetched)

    def test_areCountedAsTheyAreFetched(self):
        self.assert_counted_as_fetched()

    def test_haveTheWeightsOfTheirRows(self):
        self.assert_counted_as_fetched("--weight", "w")

    def test_areReadAsTheDictionaryDeclaresThem(self):
        for weight in ([], ["--weight", "w"], ["--weight", "morebits"]):
            with self.subTest(weight=weight):
                self.assert_counted_as_fetched("-d", "whole.schema.json", *weight)

    def test_areTold(self):
        for options in ([], ["--fetch-rows"]):
            with self.subTest(options=options):
                messages = "\n".join(message["text"] for message in self.report("late", *options)["messages"])
                self.assertRegex(messages, r'"days".* "(infinity|0044-03-15 BC)" does not read as a date; it is one of 2 such cells')
                self.assertRegex(messages, r'"moments".* "-infinity" does not read as a date with time')

    def test_mayBeWeightsThemselves(self):
        for weight in ("notnumbers", "notdoubles", "morebits"):
            with self.subTest(weight=weight):
                self.assert_counted_as_fetched("--weight", weight)


if __name__ == "__main__":
    with skipped_where_missing():
        programs()
        require_driver()
    unittest.main()
