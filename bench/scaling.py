"""How cost and memory grow: with rows and columns, with many columns, members, values and labels, and under a limit.

Each check says what it measured, what it may be at most, and whether that is kept. A check without a bound only has to end.
"""

import json
import random
from pathlib import Path
from typing import Callable, List, Optional

from bench import answers, contenders
from bench.comparison import stages_of
from bench.measuring import BenchmarkError, Measured, Plan, in_turn, measure, median_of, median_ratio
from bench.shapes import Shape, make
from bench.tables import markdown, memory_bound, significant

MEMBERS = 500
LABELS = 200
DISTINCT = 1_000_000
STATISTICS = "/STATISTICS COUNT PERCENT MEAN STDDEV QUARTILES"


class Scaling:
    def __init__(self, build: Path, folder: Path, runs: int, quick: bool, tell: Callable[[str], None]):
        self.program = build / "codebook"
        self.generator = build / "bench" / "survey_generator"
        self.duckdb = build / "bench" / "duckdb_rival"
        self.folder = folder
        self.runs = runs
        self.part = 20 if quick else 1
        self.suffix = "-quick" if quick else ""
        self.tell = tell
        self.rows: List[List[str]] = []

    def all(self) -> str:
        self.ten_times("rows", self._shape("rows-1", 500_000, 20), self._shape("rows-10", 5_000_000, 20))
        self.ten_times("columns", self._shape("columns-1", 10_000, 500), self._shape("columns-10", 10_000, 5_000))
        self.many_columns()
        self.sets()
        self.many_values()
        self.many_labels()
        self.memory_limit()
        return markdown(["check", "measured", "at most", ""], self.rows)

    # --- the checks

    def ten_times(self, what: str, small: Shape, large: Shape) -> None:
        """Ten times the cells at most eleven times the cost, with a dictionary and without."""
        for path in ("csv", "plain"):
            runs = self._in_turn({"small": self._command(small, path), "large": self._command(large, path)})
            ratio = median_ratio(runs["large"], runs["small"])
            words = f"10 times the {what}, {'dictionary' if path == 'csv' else 'no dictionary'}: CPU"
            self._row(words, ratio, 11.0, f"{significant(ratio)} times ({self._cpu(runs['large'])})")

    def many_columns(self) -> None:
        shape = self._shape("wide", 3_125, 32_000)
        for path in ("csv", "plain"):
            run = measure(self._command(shape, path))
            words = f"32,000 columns × {shape.rows:,} rows, {'dictionary' if path == 'csv' else 'no dictionary'}: ends"
            per_cell = 1e9 * run.cpu / shape.cells
            self._row(words, None, None, f"{run.cpu:.2f} s CPU, {per_cell:.0f} ns a cell, {run.memory / 1e6:.0f} MB")
            bound = memory_bound(shape.compact_bytes())
            self._row("– its peak memory", run.memory, bound, f"{run.memory / 1e6:.0f} MB", f"{bound / 1e6:.0f} MB")

    def sets(self) -> None:
        """A set of 500 members against the same 500 variables one by one; only the pass counts, both read the same file."""
        shape = self._shape("sets", 100_000, 640)
        codes = [name for name, type_ in shape.fields() if type_ == "integer"][:MEMBERS]
        descriptor = json.loads(shape.dictionary.read_text())
        descriptor["codebook"] = {
            "multipleResponseSets": [
                {"name": "$mentioned", "label": "", "type": "dichotomy", "variables": codes, "countedValue": "1",
                 "categoryLabels": "variableLabels"},
                {"name": "$given", "label": "", "type": "category", "variables": codes},
            ]
        }
        dictionary = self.folder / "sets-with-sets.schema.json"
        dictionary.write_text(json.dumps(descriptor))

        def command(items: str) -> List:
            text = f"CODEBOOK {items} /STATISTICS COUNT PERCENT /OPTIONS MAXCATS=1000."
            return self._words(shape.csv, dictionary, text)

        runs = self._in_turn(
            {"variables": command(" ".join(codes)),
             "dichotomy": command("$mentioned"), "category": command("$given")}
        )
        for kind in ("dichotomy", "category"):
            ratio = median_ratio([_passed(run) for run in runs[kind]], [_passed(run) for run in runs["variables"]])
            per_cell = 1e9 * median_of([_passed(run) for run in runs[kind]], "cpu") / (shape.rows * MEMBERS)
            self._row(f"{kind} set of {MEMBERS} members against as many variables: CPU of the pass", ratio, 2.0,
                      f"{significant(ratio)} times ({per_cell:.1f} ns a member and case)")

    def many_values(self) -> None:
        """Variables with a different value in each of 10^6 cases: as categories that are all kept (and all stand in the
        report), as categories dropped for their number, as doubles with quartiles. Ten times the cases at most eleven
        times the cost."""
        files = {}
        for name, rows in (("few", DISTINCT // self.part // 10), ("many", DISTINCT // self.part)):
            data = self.folder / f"distinct-{name}{self.suffix}.csv"
            dictionary = self.folder / f"distinct-{name}{self.suffix}.schema.json"
            _write_distinct(data, dictionary, rows)
            files[name] = (data, dictionary)
        for words, variable, option in (
            ("whole numbers, all kept as categories", "number", f"/OPTIONS MAXCATS={2 * DISTINCT}"),
            ("whole numbers, dropped past MAXCATS", "number", ""),
            ("texts, all kept as categories", "text", f"/OPTIONS MAXCATS={2 * DISTINCT}"),
            ("texts, dropped past MAXCATS", "text", ""),
            ("doubles with quartiles", "measured", ""),
        ):
            command = f"CODEBOOK {variable} {STATISTICS} {option}."
            runs = self._in_turn({name: self._words(*file, command) for name, file in files.items()})
            ratio = median_ratio(runs["many"], runs["few"])
            memory = median_of(runs["many"], "memory") / 1e6
            shown = f"{significant(ratio)} times ({self._cpu(runs['many'])}, {memory:.0f} MB)"
            self._row(f"{DISTINCT // self.part:,} different {words}: CPU of 10 times the cases", ratio, 11.0, shown)

    def many_labels(self) -> None:
        """200 value labels on every code variable against seven: reading and pass with statistics, where labels that nobody
        gave do not show, then tables and report without, where all do."""
        shape = self._shape("labels", 100_000, 500)
        descriptor = json.loads(shape.dictionary.read_text())
        for field_ in descriptor["fields"]:
            if field_["type"] == "integer":
                field_["categories"] = [{"value": code, "label": f"Answer {code}"} for code in range(1, LABELS + 1)]
        dictionary = self.folder / "labels-many.schema.json"
        dictionary.write_text(json.dumps(descriptor))
        runs = self._in_turn(
            {name: self._words(shape.csv, file, f"CODEBOOK {STATISTICS} /OPTIONS MAXCATS=1000.")
             for name, file in (("few", shape.dictionary), ("many", dictionary))}
        )
        reading = {name: [_passed(run, ("read", "pass")) for run in them] for name, them in runs.items()}
        ratio = median_ratio(reading["many"], reading["few"])
        words = f"{LABELS} value labels on every variable against 7: CPU of reading and pass"
        self._row(words, ratio, 1.5, f"{significant(ratio)} times")
        listed = self._in_turn(
            {name: self._words(shape.csv, file, "CODEBOOK /STATISTICS NONE /OPTIONS MAXCATS=1000.")
             for name, file in (("few", shape.dictionary), ("many", dictionary))}
        )
        seconds = {name: median_of([_passed(run, ("tables", "write")) for run in them], "cpu") for name, them in listed.items()}
        variables = sum(1 for _, type_ in shape.fields() if type_ == "integer")
        a_label = (seconds["many"] - seconds["few"]) / (variables * (LABELS - 7))
        shown = f"{1e6 * a_label:.2f} µs ({seconds['many']:.2f} s)"
        self._row(f"– {variables * LABELS:,} labels in tables and report: CPU a label", 1e6 * a_label, 10.0, shown, "10 µs")

    def memory_limit(self) -> None:
        """--memory-limit 256MB on L: kept, and the same report to the byte."""
        shape = self._shape("L", 5_000_000, 20)
        limit = 256_000_000
        reports = []
        for words, options in (("none", []), ("256 MB", ["--memory-limit", "256MB"])):
            report = self.folder / "limit.json"
            contender = contenders.ours(self.program, report, options=options)
            run = measure(contender.command(shape, "csv", 2))
            reports.append(report.read_bytes())
            bound = limit if options else memory_bound(shape.compact_bytes())
            self._row(f"peak memory on L with two threads, limit {words}", run.memory, bound,
                      f"{run.memory / 1e6:.0f} MB ({run.cpu:.2f} s CPU)", f"{bound / 1e6:.0f} MB")
        if reports[0] != reports[1]:
            raise answers.Mismatch("the report is another under --memory-limit")

    # --- their common steps

    def _shape(self, name: str, rows: int, columns: int) -> Shape:
        shape = Shape(name + self.suffix, rows // self.part, columns, self.folder)
        self.tell(f"making {shape.name}")
        make(shape, self.generator, Path("no Parquet is needed here"))
        return shape

    def _command(self, shape: Shape, path: str) -> List:
        return contenders.ours(self.program, self.folder / "report.txt").command(shape, path, 1)

    def _words(self, data: Path, dictionary: Path, text: str) -> List:
        return [self.program, data, "-d", dictionary, "-c", text, "-o", self.folder / "report.txt", "--threads", "1",
                "--timing=json"]

    def _in_turn(self, commands: dict) -> dict:
        plans = {name: Plan(command, self.runs) for name, command in commands.items()}
        return in_turn(plans, lambda name: self.tell(f"check {len(self.rows) + 1}: {name}"))

    def _cpu(self, runs: List[Measured]) -> str:
        return f"{median_of(runs, 'cpu'):.2f} s"

    def _row(self, words: str, found: Optional[float], bound: Optional[float], shown: str, bound_shown: str = "") -> None:
        if bound is None:
            self.rows.append([words, shown, "–", "done"])
            return
        self.rows.append([words, shown, bound_shown or significant(bound), "kept" if found <= bound else "**missed**"])


def _passed(run: Measured, stages: tuple = ("pass", "percentiles")) -> Measured:
    """The run with the processor time of some stages only."""
    said = stages_of(run)
    if not said:
        raise BenchmarkError(f"the program said nothing of its time:\n{run.said}")
    return Measured(sum(said[stage]["cpu"] for stage in stages), run.wall, run.memory, run.said)


def _write_distinct(data: Path, dictionary: Path, rows: int) -> None:
    order = list(range(rows))
    random.Random(7).shuffle(order)
    with data.open("w", encoding="ascii") as out:
        out.write("number,text,measured\n")
        out.writelines(f"{at},t{at:07d},{at * 0.37:.6f}\n" for at in order)
    fields = [
        {"name": "number", "type": "integer", "codebook": {"measure": "nominal"}},
        {"name": "text", "type": "string"},
        {"name": "measured", "type": "number", "codebook": {"measure": "scale"}},
    ]
    dictionary.write_text(json.dumps({"fields": fields}))


def run(build: Path, folder: Path, runs: int, quick: bool, machine: str, tell: Callable[[str], None]) -> str:
    scaling = Scaling(build, folder, runs, quick, tell)
    table = scaling.all()
    return f"Measured {machine}; medians of {runs} runs in turn, one thread where nothing else is said.\n\n{table}"
