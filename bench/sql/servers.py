"""The servers of the benchmark, with the table in two forms: of one server, and of three workers behind a coordinator."""

import os
import subprocess
import sys
import threading
import time
from pathlib import Path

from bench.measuring import BenchmarkError
from bench.sql import survey

sys.path.append(str(Path(__file__).resolve().parents[2] / "tests" / "databases"))

import postgres  # noqa: E402

ONE_SERVER, SHARDS = FORMS = ("one server", "shards")
RELATIONS = {ONE_SERVER: "single.survey", SHARDS: "public.survey"}
WORKERS = 3
# Servers as they come, but for these. Shared memory of parallel workers lies in memory, as it does by default.
SETTINGS = """
shared_buffers = 256MB
dynamic_shared_memory_type = posix
max_wal_size = 4GB
"""
SOURCE, COUNTED_SOURCE = "survey", "survey_counted"
SECONDS_TO_END = 20.0
TICKS = os.sysconf("SC_CLK_TCK")


class CountingRelay:
    """Ports that pass on to others and count the bytes."""

    def __init__(self, program, ports):
        self.process = subprocess.Popen([str(program), *map(str, ports)], stdin=subprocess.PIPE, stdout=subprocess.PIPE, text=True)
        self.ports = [int(self.process.stdout.readline()) for _ in ports]

    def counts(self):
        """Bytes to and from each server since the beginning."""
        self.process.stdin.write("\n")
        self.process.stdin.flush()
        return [tuple(map(int, self.process.stdout.readline().split())) for _ in self.ports]

    def stop(self):
        self.process.stdin.close()
        self.process.wait()


class SurveyServers:
    """A context manager. Leaves SOURCE and COUNTED_SOURCE as data sources in the environment's ODBCINI: the coordinator, and
    the same through a relay that counts."""

    def __init__(self, relay_program, rows, tell):
        self.relay_program = relay_program
        self.rows = rows
        self.tell = tell
        self.servers = postgres.PostgresServers(WORKERS, SETTINGS)
        self.relay = None
        self.own_processes = set()  # that serve no session

    def __enter__(self):
        self.tell("starting the servers")
        try:
            postgres.require_driver()
            self.servers.__enter__()
        except (postgres.NotInstalled, postgres.ServerError) as error:
            raise BenchmarkError(str(error)) from error
        try:
            self._fill()
            self._set_up_relay()
            self.own_processes = self._processes()
        except BaseException:
            self.__exit__()
            raise
        return self

    def __exit__(self, *_):
        if self.relay:
            self.relay.stop()
        self.servers.__exit__()

    @property
    def coordinator(self):
        return self.servers.coordinator

    def _fill(self):
        self.tell(f"filling the tables with {self.rows:,} rows")
        worker_rows = survey.stretches(self.rows, WORKERS)
        scripts = [(self.coordinator, "CREATE SCHEMA single;\n" + survey.filling(RELATIONS[ONE_SERVER], 1, self.rows))]
        scripts += [(worker, survey.filling(RELATIONS[SHARDS], *stretch)) for worker, stretch in zip(self.servers.workers, worker_rows)]
        failures = []

        def run(server, script):
            try:
                server.run(script)
            except postgres.ServerError as error:
                failures.append(str(error))

        threads = [threading.Thread(target=run, args=pair) for pair in scripts]
        for thread in threads:
            thread.start()
        for thread in threads:
            thread.join()
        if failures:
            raise BenchmarkError("; ".join(failures))
        names = [worker.name for worker in self.servers.workers]
        self.coordinator.run(survey.partitioned(RELATIONS[SHARDS], names, RELATIONS[SHARDS], self.rows))

    def _set_up_relay(self):
        self.relay = CountingRelay(self.relay_program, [server.port for server in self.servers.all()])
        sources = postgres.data_source(SOURCE, self.coordinator.port) + postgres.data_source(COUNTED_SOURCE, self.relay.ports[0])
        os.environ["ODBCINI"] = self.servers.folder.write("sources.ini", sources)

    def _reach_workers_by(self, ports):
        pairs = zip(self.servers.workers, ports)
        self.coordinator.run("".join(f"ALTER SERVER {worker.name} OPTIONS (SET port '{port}');\n" for worker, port in pairs))

    def bytes_of(self, run):
        """Calls `run` while the coordinator reaches the workers through the relay. The bytes that went between the program
        and the server, and those between the coordinator and its workers, both ways together."""
        self._reach_workers_by(self.relay.ports[1:])
        try:
            before = self.relay.counts()
            run()
            after = self.relay.counts()
        finally:
            self._reach_workers_by([worker.port for worker in self.servers.workers])
        moved = [sum(last) - sum(first) for first, last in zip(before, after)]
        return moved[0], sum(moved[1:])

    def cpu(self):
        """Seconds of processor time that all servers have taken, those of sessions that have ended included. Waits until the
        sessions have ended."""
        end = time.monotonic() + SECONDS_TO_END
        while self._processes() - self.own_processes and time.monotonic() < end:
            time.sleep(0.02)
        if self._processes() - self.own_processes:
            raise BenchmarkError("a session of the servers does not end")
        return sum(_cpu_with_ended_children(server.process.pid) for server in self.servers.all())

    def _processes(self):
        """The servers' child processes, those that ended and were not waited for included."""
        return {child for server in self.servers.all() for child in _children(server.process.pid)}


def _children(pid):
    return Path(f"/proc/{pid}/task/{pid}/children").read_text(encoding="ascii").split()


def _cpu_with_ended_children(pid):
    fields = Path(f"/proc/{pid}/stat").read_text(encoding="utf-8").rpartition(")")[2].split()
    # utime, stime, cutime, cstime of proc(5), whose first two fields stand before the closing parenthesis.
    return sum(map(int, fields[11:15])) / TICKS
