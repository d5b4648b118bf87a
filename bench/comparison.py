"""The comparison: every shape, path and number of threads, ours weighted and not beside the rivals, in turn."""

import json
from dataclasses import dataclass, field
from typing import Callable, Dict, List

from bench import contenders
from bench.measuring import Measured, Plan, in_turn
from bench.shapes import PATHS, Shape

RUN_LIMIT = 300.0  # seconds after which a run is stopped


@dataclass
class Setting:
    """One shape, path and number of threads with the runs of each contender there, by name; no run where the first one was
    stopped at RUN_LIMIT."""

    shape: Shape
    path: str
    threads: int
    runs: Dict[str, List[Measured]] = field(default_factory=dict)

    def stages(self) -> List[Dict[str, dict]]:
        """What our program said of its stages, a run each: {"read": {"wall", "cpu"}, ...}."""
        return [stages_of(run) for run in self.runs.get("ours", [])]


@dataclass
class TwoThreads:
    """Our runs with one thread and with two, in turn."""

    shape: Shape
    path: str
    one: List[Measured]
    two: List[Measured]


def stages_of(run: Measured) -> Dict[str, dict]:
    start = "codebook: timings: "
    lines = [line for line in run.said.splitlines() if line.startswith(start)]
    return json.loads(lines[-1][len(start) :]) if lines else {}


def compare(
    shape: Shape, path: str, threads: int, entrants: List[contenders.Contender], runs: int, tell: Callable[[str], None]
) -> Setting:
    """Times all entrants that take part here, in turn."""
    present = [entrant for entrant in entrants if entrant.takes_part(path, threads)]
    plans = {
        entrant.name: Plan(entrant.command(shape, path, threads), min(runs, entrant.most_runs), entrant.budget, RUN_LIMIT)
        for entrant in present
    }
    where = f"{shape.name}, {PATHS[path]}, {threads} thread{'s' if threads > 1 else ''}"
    labels = {entrant.name: entrant.label for entrant in present}
    results = in_turn(plans, lambda name: tell(f"{where}: {labels[name]}"))
    return Setting(shape, path, threads, results)


def one_and_two_threads(
    shape: Shape, path: str, program: contenders.Contender, runs: int, tell: Callable[[str], None]
) -> TwoThreads:
    plans = {str(threads): Plan(program.command(shape, path, threads), runs) for threads in (1, 2)}
    results = in_turn(plans, lambda name: tell(f"{shape.name}, {PATHS[path]}: one and two threads in turn"))
    return TwoThreads(shape, path, results["1"], results["2"])
