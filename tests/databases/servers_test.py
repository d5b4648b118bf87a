"""The servers that tests run against: they start, keep to themselves, hold the tables of cases, and go with the test."""

import json
import os
import signal
import subprocess
import sys
import tempfile
import time
import unittest

import loading
from clickhouse import ClickHouseServer
from clickhouse import program as clickhouse_program
from postgres import COORDINATOR, DATABASE, GUARDED, PASSWORD, READER, PostgresServers, programs, require_driver
from serverprocess import NotInstalled, ServerError, skipped_where_missing

HERE = os.path.dirname(os.path.abspath(__file__))
SECONDS_TO_END = 20

ROWS = [["n", "x", "d", "b", "on", "at", "m", "t"],
        ["1", "0.5", "1.50", "true", "2024-02-29", "2024-02-29T12:00:01", "23:59:59", "tab\there, \\N and \\."],
        ["", "", "", "", "", "", "", ""],
        ["-3", "2", "-0.25", "false", "0001-01-01", "1999-12-31T00:00:00", "00:00:00", "line\nend \"quoted\" 'so' ü 😀"],
        ["900719925474099312", "0.1", "0.00", "true", "9999-12-31", "2024-01-01T00:00:00", "12:00:00", " blanks  "]]


def is_running(pid):
    try:
        with open(f"/proc/{pid}/stat", encoding="utf-8") as file:
            return file.read().rpartition(")")[2].split()[0] != "Z"
    except OSError:
        return False


def wait_for(condition):
    end = time.monotonic() + SECONDS_TO_END
    while not condition():
        if time.monotonic() > end:
            return False
        time.sleep(0.05)
    return True


class Postgres(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.servers = PostgresServers(workers=2, is_small=True)
        cls.servers.__enter__()
        cls.addClassCleanup(cls.servers.__exit__)

    def test_serversListenOnTheLocalAddressAlone(self):
        for server in self.servers.all():
            self.assertEqual(server.run("SHOW listen_addresses; SHOW port;").split(), ["127.0.0.1", str(server.port)])

    def test_dataSourcesStandInAFileOfTheirOwn(self):
        with open(self.servers.environment()["ODBCINI"], encoding="utf-8") as file:
            text = file.read()
        self.assertTrue(self.servers.odbc_ini.startswith(self.servers.folder.path))
        for name in (COORDINATOR, "codebook_worker1", "codebook_worker2"):
            self.assertIn(f"[{name}]\n", text)
        self.assertNotIn("assword", text)

    def test_oneRoleNeedsItsPassword(self):
        def ask(user, password=None):
            environment = {name: value for name, value in os.environ.items() if not name.startswith("PG")}
            if password:
                environment["PGPASSWORD"] = password
            command = [os.path.join(programs(), "psql"), "-X", "-A", "-t", "-w", "-h", "127.0.0.1", "-p", str(self.servers.coordinator.port), "-U", user, "-d", DATABASE,
                       "-c", "SELECT 'answered'"]
            return subprocess.run(command, capture_output=True, text=True, env=environment, check=False).stdout

        self.assertEqual(ask(READER), "answered\n")
        self.assertEqual(ask(GUARDED, PASSWORD), "answered\n")
        self.assertEqual(ask(GUARDED, "wrong"), "")
        self.assertEqual(ask(GUARDED), "")

    def test_readerMayReadAndNotWrite(self):
        self.servers.coordinator.run("CREATE TABLE kept (a int); INSERT INTO kept VALUES (7);")
        self.assertEqual(self.servers.coordinator.run("SELECT a FROM kept;", user=READER), "7\n")
        with self.assertRaisesRegex(ServerError, "permission denied"):
            self.servers.coordinator.run("INSERT INTO kept VALUES (8);", user=READER)


class Ends(unittest.TestCase):
    def start(self, folder):
        """Servers beside a command that waits; their process ids."""
        ids = os.path.join(folder, "ids")
        script = f"for data in $(dirname $ODBCINI)/*/data; do head -1 $data/postmaster.pid; done > {ids}.new; mv {ids}.new {ids}; exec sleep 600"
        run = subprocess.Popen([sys.executable, "-B", os.path.join(HERE, "postgres.py"), "--workers", "1", "--", "sh", "-c", script],
                               env={**os.environ, "TMPDIR": folder}, stderr=subprocess.DEVNULL, start_new_session=True)
        self.addCleanup(self.end_group, run.pid)
        self.assertTrue(wait_for(lambda: os.path.exists(ids)))
        with open(ids, encoding="utf-8") as file:
            servers = [int(line) for line in file.read().split()]
        self.assertEqual(len(servers), 2)
        self.assertTrue(all(map(is_running, servers)))
        return run, servers

    def end_group(self, group):
        try:
            os.killpg(group, signal.SIGKILL)
        except ProcessLookupError:
            pass

    def test_serversGoWithTheTestHoweverItEnds(self):
        for number in (signal.SIGINT, signal.SIGTERM, signal.SIGKILL):
            with tempfile.TemporaryDirectory(prefix="ends.") as folder, self.subTest(number=number):
                os.chmod(folder, 0o755)
                run, servers = self.start(folder)
                run.send_signal(number)
                run.wait(SECONDS_TO_END)
                self.assertTrue(wait_for(lambda: not any(map(is_running, servers))))
                if number != signal.SIGKILL:
                    self.assertEqual(os.listdir(folder), ["ids"])

    def test_killedServerIsGoneAtOnceAndTheOthersGoOn(self):
        with PostgresServers(workers=1, is_small=True) as servers:
            servers.workers[0].kill()
            self.assertFalse(is_running(servers.workers[0].process.pid))
            self.assertEqual(servers.coordinator.run("SELECT 1;"), "1\n")


class Tables(unittest.TestCase):
    def test_typesAreThoseThatGiveTheCellsBack(self):
        self.assertEqual(loading.exact_types(ROWS), ["integer", "number", ("decimal", 2), "boolean", "date", "datetime", "time", "text"])
        for cells, type_ in ((["01"], "text"), (["-0"], "text"), (["1e3"], "text"), (["1.50", "2.5"], "text"), (["0.1", "1"], "number"),
                             (["2.50", ""], ("decimal", 2)), (["-0.00"], "text"), (["", ""], "text"), (["true", "x"], "text")):
            self.assertEqual(loading.exact_type(cells), type_, cells)

    def test_tablesHoldTheCellsOfTheCase(self):
        table = loading.Table('the "case" 1', ROWS, loading.exact_types(ROWS))
        with loading.Databases(loading.ALL) as databases:
            databases.load([table])
            coordinator = databases.server.coordinator
            cells = [ROWS[0]] + [[cell if cell or column == len(row) - 1 else None for column, cell in enumerate(row)] for row in ROWS[1:]]
            expected = sorted(map(repr, cells[1:]))
            for schema in ("plain", "public", "inherited"):
                rows = coordinator.run(f"SELECT to_json(array[{', '.join(as_text(c) for c in ROWS[0])}]) FROM {schema}.{loading.quoted(table.name)};",
                                       user=READER)
                self.assertEqual(sorted(repr(json.loads(line)) for line in rows.splitlines()), expected, schema)
            counts = [int(worker.run(f"SELECT COUNT(*) FROM inherited.{loading.quoted(table.name)};")) for worker in databases.server.workers]
            self.assertEqual(counts, [2, 1, 1])

    def test_boundsOfThePartitionsHold(self):
        rows = [["k", "v"]] + [[str(i % 10), str(i)] for i in range(300)]
        table = loading.Table("bounds", rows, loading.exact_types(rows))
        with loading.Databases([loading.SHARDS]) as databases:
            databases.load([table])
            counts = [int(worker.run("SELECT COUNT(*) FROM bounds;")) for worker in databases.server.workers]
            self.assertEqual(sum(counts), 300)
            self.assertGreater(min(counts), 50)
            found = databases.server.coordinator.run("".join(f"SELECT v FROM bounds WHERE k = {i % 10} AND v = {i};\n" for i in range(300)))
            self.assertEqual(found.splitlines(), [str(i) for i in range(300)])


def as_text(column):
    """A column as the text of its cell in the file."""
    return {"at": "to_char(at, 'YYYY-MM-DD\"T\"HH24:MI:SS')", "on": "lpad(\"on\"::text, 10, '0')"}.get(column, f"{loading.quoted(column)}::text")


class ClickHouse(unittest.TestCase):
    def test_answersAndReadsOnlyForTheReader(self):
        try:
            clickhouse_program()
        except NotInstalled as reason:
            self.skipTest(str(reason))
        with ClickHouseServer() as server:
            server.ask("CREATE TABLE t (k Int32, w Float64) ENGINE = Memory")
            server.ask("INSERT INTO t FORMAT TabSeparated\n1\t0.5\n1\t0.25\n2\t3\n")
            self.assertEqual(server.ask("SELECT k, count(), sum(w) FROM t GROUP BY k ORDER BY k", user="reader"), "1\t2\t0.75\n2\t1\t3\n")
            with self.assertRaisesRegex(ServerError, "readonly"):
                server.ask("DROP TABLE t", user="reader")
            pid = server.process.pid
            self.assertTrue(is_running(pid))
        self.assertFalse(is_running(pid))


if __name__ == "__main__":
    with skipped_where_missing():
        programs()
        require_driver()
    unittest.main()
