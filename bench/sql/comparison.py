"""Counting in the database beside fetching its rows, in turn."""

import os
import subprocess
import threading
import time
from dataclasses import dataclass, field
from pathlib import Path
from statistics import median
from typing import Callable, Dict, List, Tuple

from bench import contenders
from bench.measuring import BenchmarkError, Measured, measure
from bench.sql import survey
from bench.sql.servers import COUNTED_SOURCE, RELATIONS, SOURCE, SurveyServers

import postgres  # of tests/databases, found by bench.sql.servers

COUNTING, FETCHING, COPYING = CONTENDERS = ("counting", "fetching", "copy")
RUN_LIMIT = 580.0  # seconds after which a run is stopped


@dataclass(frozen=True)
class Run:
    """A run of a program, and the processor time of all servers meanwhile."""

    measured: Measured
    servers_cpu: float

    @property
    def wall(self) -> float:
        return self.measured.wall

    @property
    def cpu(self) -> float:
        """Of program and servers."""
        return self.measured.cpu + self.servers_cpu


@dataclass
class Setting:
    """A form of the table, weighted or not, and what was measured of each contender there. COPYING knows no weights: it
    stands beside the unweighted ones alone."""

    form: str
    weighted: bool
    runs: Dict[str, List[Run]] = field(default_factory=dict)
    # Between program and server, and between coordinator and workers.
    moved: Dict[str, Tuple[int, int]] = field(default_factory=dict)

    def median_of(self, name: str, what: str) -> float:
        return median(getattr(run, what) for run in self.runs[name])

    def ratio(self, name: str, what: str = "wall") -> float:
        """The median of the ratios of counting to a contender, pair by pair."""
        pairs = zip(self.runs[COUNTING], self.runs[name])
        return median(getattr(ours, what) / getattr(theirs, what) for ours, theirs in pairs)

    def bytes_ratio(self, name: str) -> float:
        return self.moved[COUNTING][0] / self.moved[name][0]


class Comparison:
    def __init__(self, program: Path, servers: SurveyServers, folder: Path, tell: Callable[[str], None]):
        self.program = program
        self.servers = servers
        self.folder = folder
        self.tell = tell
        self.reports: Dict[bool, bytes] = {}
        self.compared = 0

    def command(self, name: str, form: str, weighted: bool, source: str = SOURCE, report: str = "report.json") -> List[str]:
        if name == COPYING:
            port = self.servers.relay.ports[0] if source == COUNTED_SOURCE else self.servers.coordinator.port
            psql = os.path.join(postgres.programs(), "psql")
            return [psql, "-X", "-q", "-h", "127.0.0.1", "-p", str(port), "-U", postgres.READER, "-d", postgres.DATABASE,
                    "-c", f"COPY (SELECT * FROM {RELATIONS[form]}) TO STDOUT"]
        words = [str(self.program), f"odbc:DSN={source}", "--table", RELATIONS[form], "-c", contenders.COMMAND, "-q", "--timing=json",
                 "-o", str(self.folder / report)]
        words += ["--fetch-rows"] if name == FETCHING else []
        return words + (["--weight", "weight"] if weighted else [])

    def _check_answers(self, form: str, weighted: bool, names: List[str]) -> None:
        """Throws BenchmarkError unless all reports on these rows are the same to the byte, but for the table's name."""
        for name in names:
            report = (self.folder / f"{name}.json").read_bytes().replace(RELATIONS[form].encode(), survey.TABLE.encode())
            if self.reports.setdefault(weighted, report) != report:
                raise BenchmarkError(f"{_words(form, weighted)}: {name}: the report is another one than before")
            self.compared += 1

    def run(self, form: str, weighted: bool, names: List[str], runs: int) -> Setting:
        """Counts the bytes of each contender and compares the reports, then times them in turn, without the relay. Throws
        BenchmarkError when a report differs."""
        setting = Setting(form, weighted, {name: [] for name in names})
        for name in names:
            self.tell(f"{_words(form, weighted)}: bytes: {name}")
            setting.moved[name] = self.servers.bytes_of(
                lambda name=name: measure(self.command(name, form, weighted, COUNTED_SOURCE, f"{name}.json"), RUN_LIMIT))
        self._check_answers(form, weighted, [name for name in names if name != COPYING])
        for _ in range(runs):
            for name in names:
                self.tell(f"{_words(form, weighted)}: {name}")
                before = self.servers.cpu()
                measured = measure(self.command(name, form, weighted), RUN_LIMIT)
                setting.runs[name].append(Run(measured, self.servers.cpu() - before))
        return setting

    def statements(self, form: str, weighted: bool) -> List[Tuple[float, str]]:
        """One run that tells its statements: the seconds from each to the next, and the statement."""
        self.tell(f"{_words(form, weighted)}: statements")
        command = self.command(COUNTING, form, weighted)
        command.remove("-q")
        lines: List[Tuple[float, str]] = []
        with subprocess.Popen([*command, "--show-queries"], stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL,
                              stderr=subprocess.PIPE, text=True) as process:
            stop = threading.Timer(RUN_LIMIT, process.kill)
            stop.start()
            for line in process.stderr:
                lines.append((time.monotonic(), line.rstrip("\n")))
            process.wait()
            ended = time.monotonic()
            stop.cancel()
        if process.returncode != 0:
            raise BenchmarkError(f"ended with status {process.returncode}: " + "\n".join(line for _, line in lines)[-2000:])
        start = f"codebook: query: odbc:DSN={SOURCE}: "
        told = [(at, line[len(start):]) for at, line in lines if line.startswith(start)]
        ends = [at for at, _ in told[1:]] + [ended]
        return [(end - at, words) for (at, words), end in zip(told, ends)]


def _words(form: str, weighted: bool) -> str:
    return f"{form}, {'weighted' if weighted else 'unweighted'}"
