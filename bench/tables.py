"""What the benchmark found, as Markdown."""

from statistics import median
from typing import Callable, List, Optional, Sequence

from bench.comparison import RUN_LIMIT, Setting, TwoThreads
from bench.measuring import Measured, median_of, median_ratio
from bench.shapes import PATHS

STAGES = ("read", "pass", "percentiles", "tables", "write", "total")


def markdown(header: Sequence[str], rows: Sequence[Sequence[str]], left: int = 1) -> str:
    """A table; the first `left` columns are aligned to the left, the others to the right."""
    lines = ["| " + " | ".join(header) + " |"]
    lines.append("|" + "|".join("---" if at < left else "---:" for at in range(len(header))) + "|")
    lines += ["| " + " | ".join(row) + " |" for row in rows]
    return "\n".join(lines) + "\n"


def significant(number: float, digits: int = 3) -> str:
    """Without an exponent: 0.0123, 1.23, 123, 12,345."""
    if number == 0:
        return "0"
    decimals = digits
    bound = 1.0
    while number >= bound and decimals > 0:
        decimals -= 1
        bound *= 10
    small = number
    while 0 < small < 0.1:
        decimals += 1
        small *= 10
    return f"{number:,.{decimals}f}"


def _seconds(runs: Sequence[Measured], what: str) -> str:
    found = median_of(runs, what)
    return "" if found is None else f"{found:.2f}"


def comparison(settings: List[Setting], rivals: Sequence[tuple], runs: int) -> str:
    """One row a setting and weighting; `rivals` are pairs of name and label. A rival's cell is the median of the ratios of
    processor time, ours to its, and its own seconds."""

    def against(ours: Sequence[Measured], theirs: Optional[Sequence[Measured]]) -> str:
        if theirs is None:
            return "–"
        ratio = median_ratio(ours, theirs)
        if ratio is None:
            return f"stopped after {RUN_LIMIT:.0f} s"
        fewer = f", {len(theirs)} runs" if len(theirs) < runs else ""
        return f"**{significant(ratio, 2)}** ({_seconds(theirs, 'cpu')} s{fewer})"

    rows = []
    for setting in settings:
        for name, words in (("ours", "no"), ("weighted", "yes")):
            ours = setting.runs.get(name)
            if not ours:
                continue
            cells = setting.shape.cells
            rows.append(
                [
                    setting.shape.name,
                    PATHS[setting.path],
                    str(setting.threads),
                    words,
                    _seconds(ours, "cpu"),
                    _seconds(ours, "wall"),
                    f"{1e9 * median_of(ours, 'cpu') / cells:.1f}",
                    f"{median_of(ours, 'memory') / 1e6:.0f}",
                    *(against(ours, setting.runs.get(rival)) for rival, _ in rivals),
                ]
            )
    header = ["shape", "path", "threads", "weighted", "CPU s", "wall s", "ns a cell", "peak MB"]
    return markdown(header + [label for _, label in rivals], rows, left=2)


def _find(settings: List[Setting], shape: str, path: str) -> Optional[Setting]:
    for setting in settings:
        if setting.shape.name == shape and setting.path == path and setting.threads == 1:
            return setting
    return None


def memory_bound(compact_bytes: int) -> float:
    """What the program may take at most: 1.2 times the compact columns and 100 MB."""
    return 1.2 * compact_bytes + 100e6


def goals(settings: List[Setting], pairs: List[TwoThreads]) -> str:
    """Goal by goal what was reached with one thread: the number and whether it is kept."""
    shapes = list(dict.fromkeys(setting.shape.name for setting in settings))

    def ratio(name: str, rival: str, what: str = "cpu") -> Callable[[Setting], Optional[float]]:
        return lambda setting: median_ratio(setting.runs.get(name, []), setting.runs.get(rival, []), what)

    def memory(setting: Setting) -> Optional[float]:
        peak = median_of(setting.runs.get("ours", []), "memory")
        return None if peak is None else peak / memory_bound(setting.shape.compact_bytes())

    def row(words: str, path: str, bound: Callable[[str], float], found: Callable[[Setting], Optional[float]]) -> List[str]:
        cells = []
        for shape in shapes:
            setting = _find(settings, shape, path)
            cells.append(verdict(found(setting) if setting else None, bound(shape)))
        return [words, *cells]

    def seventh(shape: str) -> float:
        return 1 / 5 if shape.startswith("X") else 1 / 7

    summary, read = ratio("ours", "summarize"), ratio("ours", "read")
    weighted = ratio("weighted", "ours")
    rows = []
    for path, against_summary, words, against_read in (
        ("csv", seventh, "1/7 (X: 1/5)", 0.8),
        ("plain", lambda _: 1 / 5, "1/5", 1.1),
        ("parquet", lambda _: 1 / 6, "1/6", 2.0),
    ):
        label = PATHS[path]
        rows.append(row(f"{label}: CPU at most {words} of SUMMARIZE", path, against_summary, summary))
        rows.append(row(f"{label}: CPU at most {against_read} of the bare read", path, lambda _, b=against_read: b, read))
        rows.append(row(f"{label}: weighted at most 1.5 of unweighted CPU", path, lambda _: 1.5, weighted))
        rows.append(row(f"{label}: share of the memory allowed (1.2 × compact columns + 100 MB)", path, lambda _: 1.0, memory))
    for path in dict.fromkeys(pair.path for pair in pairs):
        cells = []
        for shape in shapes:
            found = [median_ratio(p.two, p.one, "wall") for p in pairs if p.shape.name == shape and p.path == path]
            cells.append(verdict(found[0] if found else None, 0.6))
        rows.append([f"{PATHS[path]}: two threads take at most 0.6 of one thread's wall time", *cells])
    rows = [row for row in rows if any(cell != "–" for cell in row[1:])]
    return markdown(["goal", *shapes], rows)


def verdict(found: Optional[float], bound: float) -> str:
    if found is None:
        return "–"
    return f"{significant(found)} {'kept' if found <= bound else '**missed**'}"


def stages(settings: List[Setting]) -> str:
    """Where our time goes: medians of processor seconds a stage, unweighted, one thread."""
    rows = []
    for setting in settings:
        runs = [run for run in setting.stages() if run]
        if setting.threads != 1 or not runs:
            continue
        cells = [f"{median(run[stage]['cpu'] for run in runs):.3f}" if stage in runs[0] else "–" for stage in STAGES]
        rows.append([setting.shape.name, PATHS[setting.path], *cells])
    return markdown(["shape", "path", *STAGES], rows, left=2)
