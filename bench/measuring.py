"""Running a program once and what it took; pairs of runs and the median of their ratios.

The processor time and the most memory are the kernel's own, of that one process (wait4). A process begins as a copy of the
one that starts it, and the kernel counts that copy's memory as its own; so this file is also a program, a small one, which
starts the measured program and prints what it took:

    python3 measuring.py SECONDS PROGRAM ARGUMENT...    {"status", "cpu", "wall", "memory", "said"}

The program is killed after SECONDS (status null). `said` is what it wrote to standard error; its standard output is
thrown away.
"""

import json
import math
import os
import signal
import subprocess
import sys
import tempfile
import time
from dataclasses import dataclass
from statistics import median
from typing import Dict, List, Optional, Sequence


class BenchmarkError(Exception):
    """What stops the benchmark, in words for its user."""


class TookTooLong(BenchmarkError):
    """A run that was stopped at its limit."""


@dataclass(frozen=True)
class Measured:
    """One run: seconds of processor time (user and system, all threads), seconds passed, the most memory in bytes."""

    cpu: float
    wall: float
    memory: int
    said: str


def measure(command: Sequence, limit: float = 900.0) -> Measured:
    """Runs the command once. Throws BenchmarkError when it fails, TookTooLong when it does not end within `limit` seconds."""
    words = [str(word) for word in command]
    launcher = subprocess.run(
        [sys.executable, "-S", "-B", __file__, str(limit), *words], stdout=subprocess.PIPE, text=True, check=False
    )
    if launcher.returncode != 0:
        raise BenchmarkError(f"{words[0]} could not be measured")
    result = json.loads(launcher.stdout)
    shown = " ".join(words)[:300]
    if result["status"] is None:
        raise TookTooLong(f"stopped after {limit:.0f} s: {shown}\n{result['said']}")
    if result["status"] != 0:
        raise BenchmarkError(f"ended with status {result['status']}: {shown}\n{result['said']}")
    return Measured(result["cpu"], result["wall"], result["memory"], result["said"])


@dataclass(frozen=True)
class Plan:
    """A command, how often it runs, and how long: it gets no further run once its runs have taken `budget` seconds together,
    and none at all after one of them was stopped at `limit` seconds."""

    command: Sequence
    runs: int
    budget: float = math.inf
    limit: float = 900.0


def in_turn(plans: Dict[str, Plan], tell=lambda name: None) -> Dict[str, List[Measured]]:
    """Runs the commands in turn: A B C, A B C, A B, … so that what the machine does besides falls on all alike. The n-th
    runs of two commands are a pair. Throws TookTooLong only for a command without a budget."""
    results: Dict[str, List[Measured]] = {name: [] for name in plans}
    stopped = set()
    for round_ in range(max((plan.runs for plan in plans.values()), default=0)):
        for name, plan in plans.items():
            spent = sum(run.wall for run in results[name])
            if round_ >= plan.runs or name in stopped or spent >= plan.budget:
                continue
            tell(name)
            try:
                results[name].append(measure(plan.command, plan.limit))
            except TookTooLong:
                if math.isinf(plan.budget):
                    raise
                stopped.add(name)
    return results


def median_of(runs: Sequence[Measured], what: str) -> Optional[float]:
    """The median of `what` ("cpu", "wall", "memory") over the runs, None without one."""
    return median(getattr(run, what) for run in runs) if runs else None


def median_ratio(ours: Sequence[Measured], theirs: Sequence[Measured], what: str = "cpu") -> Optional[float]:
    """The median of the ratios ours / theirs, pair by pair. Runs without a partner do not count; None without a pair."""
    ratios = [getattr(one, what) / getattr(other, what) for one, other in zip(ours, theirs)]
    return median(ratios) if ratios else None


def _launch(limit: float, command: List[str]) -> dict:
    with tempfile.TemporaryFile() as said:
        started = time.monotonic()
        process = subprocess.Popen(command, stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL, stderr=said)
        stopped = False

        def stop(*_):
            nonlocal stopped
            stopped = True
            process.kill()

        signal.signal(signal.SIGALRM, stop)
        signal.setitimer(signal.ITIMER_REAL, limit)
        # Not process.wait(): what this child alone took is wanted.
        _, status, usage = os.wait4(process.pid, 0)
        wall = time.monotonic() - started
        signal.setitimer(signal.ITIMER_REAL, 0)
        process.returncode = os.waitstatus_to_exitcode(status)
        said.seek(0)
        text = said.read().decode("utf-8", "replace")
    return {
        "status": None if stopped else process.returncode,
        "cpu": usage.ru_utime + usage.ru_stime,
        "wall": wall,
        "memory": usage.ru_maxrss * 1024,
        "said": text[-20000:],
    }


if __name__ == "__main__":
    print(json.dumps(_launch(float(sys.argv[1]), sys.argv[2:])))
