"""Who runs: our program and its rivals, each as the command that does its work on one file."""

import math
import shutil
import subprocess
import sys
from dataclasses import dataclass
from pathlib import Path
from typing import Callable, List, Optional

from bench.shapes import WEIGHT, Shape

COMMAND = "CODEBOOK /STATISTICS COUNT PERCENT MEAN STDDEV QUARTILES."
RIVAL_BUDGET = 110.0  # seconds a rival may take in one setting: five runs for most, fewer for those of half a minute

here = Path(__file__).resolve().parent


@dataclass(frozen=True)
class Contender:
    """`command(shape, path, threads)` is the command to time; `paths` and `threads` say where it takes part, and
    `most_runs` how many runs at most; no further run begins once they have taken `budget` seconds together."""

    name: str
    label: str
    command: Callable[[Shape, str, int], List]
    paths: tuple = ("csv", "plain", "parquet")
    threads: tuple = (1, 2)
    most_runs: int = 1000
    budget: float = math.inf

    def takes_part(self, path: str, threads: int) -> bool:
        return path in self.paths and threads in self.threads


def ours(program: Path, report: Path, weighted: bool = False, options: Optional[List] = None) -> Contender:
    """Our program, the report written to `report` in the format of its ending."""

    def command(shape: Shape, path: str, threads: int) -> List:
        words = [program, shape.data(path), "-c", COMMAND, "-o", report, "--threads", threads, "--timing=json"]
        words += [] if path == "plain" else ["-d", shape.dictionary]
        return words + (["--weight", WEIGHT] if weighted else []) + (options or [])

    return Contender("weighted" if weighted else "ours", "codebook", command)


def duckdb(program: Path, mode: str) -> Contender:
    """The columns are declared where our program has a dictionary. The bare read has them declared everywhere: it is the
    measure of reading alone, and finding the types would make it slower."""

    def command(shape: Shape, path: str, threads: int) -> List:
        words = [program, mode, shape.data(path), "--threads", threads]
        declares = path == "csv" or (path == "plain" and mode == "read")
        return words + (["--columns", shape.declared] if declares else [])

    labels = {"summarize": "DuckDB SUMMARIZE", "read": "DuckDB bare read", "exact": "DuckDB exact form"}
    return Contender(mode, labels[mode], command, most_runs=3 if mode == "exact" else 1000, budget=RIVAL_BUDGET)


def pandas(python: str) -> Contender:
    """read_csv, describe, value_counts. It has no dictionary and, in Debian, no reader of Parquet; one thread."""

    def command(shape: Shape, path: str, threads: int) -> List:
        return [python, "-B", here / "pandas_rival.py", shape.data(path)]

    return Contender("pandas", "pandas", command, paths=("plain",), threads=(1,), most_runs=3, budget=RIVAL_BUDGET)


def data_table(rscript: str) -> Contender:
    """fread and statistics column by column. No dictionary, no Parquet."""

    def command(shape: Shape, path: str, threads: int) -> List:
        # Its threads would spin while they wait for one another, at ten times the processor time on a busy machine.
        calm = ["/usr/bin/env", "OMP_WAIT_POLICY=passive"]
        return [*calm, rscript, here / "datatable_rival.R", shape.data(path), threads]

    return Contender("data.table", "data.table", command, paths=("plain",), most_runs=3, budget=RIVAL_BUDGET)


def rivals(duckdb_program: Path) -> List[Contender]:
    """Those that this machine has, DuckDB first."""
    found = []
    if duckdb_program.exists():
        found += [duckdb(duckdb_program, mode) for mode in ("read", "summarize", "exact")]
    python = _python_with_pandas()
    if python:
        found.append(pandas(python))
    rscript = shutil.which("Rscript")
    if rscript and _works([rscript, "-e", "library(data.table)"]):
        found.append(data_table(rscript))
    return found


def _python_with_pandas() -> Optional[str]:
    # Debian's pandas belongs to Debian's Python, which need not be the first one in the search path.
    for python in (sys.executable, "/usr/bin/python3"):
        if _works([python, "-c", "import pandas"]):
            return python
    return None


def _works(command: List[str]) -> bool:
    try:
        return subprocess.run(command, capture_output=True, check=False).returncode == 0
    except OSError:
        return False
