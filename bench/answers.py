"""The answers of everybody, in one form, and whether they are the same.

One form: {NAME: {"counts": {"VALUE": number of cases, ...}, "blank": cases without a value}} for a column of codes or texts,
{NAME: {"count", "mean", "sd", "quartiles": [three]}} for a column of doubles.
"""

import math
from typing import Dict, List, Optional

from bench.measuring import BenchmarkError


class Mismatch(BenchmarkError):
    """Two answers that should be the same are not. Nobody's time is worth printing then."""


def of_ours(report: dict) -> Dict[str, dict]:
    """The answers in our JSON report."""
    answers = {}
    for procedure in report["procedures"]:
        for table in procedure["tables"]:
            if "variable" in table["title"] or table["subtype"]["text"] == "Variable Information":
                answers[table["title"]["text"]] = _of_table(table)
    return answers


def _of_table(table: dict) -> dict:
    answer: dict = {"counts": {}, "blank": 0}
    rows = {}
    for dimension in table["dimensions"]:
        if dimension["place"] != "rows":
            continue
        for group in dimension["items"]:
            for item in group.get("items", []):
                cells = {cell["column"]: cell for cell in item.get("cells", [])}
                category = item["category"]
                rows[(group["group"]["text"], category["text"])] = cells
                if "Count" not in cells:
                    continue
                if "value" in category:
                    answer["counts"][_text_of(category["value"])] = cells["Count"]["number"]
                elif category["text"] == "System":
                    answer["blank"] = cells["Count"]["number"]
    spread = "Central Tendency and Dispersion"
    if (spread, "Mean") not in rows:
        return answer

    def number(group: str, row: str) -> Optional[float]:
        return rows[(group, row)]["Value"]["number"]

    return {
        "count": number("N", "Valid"),
        "mean": number(spread, "Mean"),
        "sd": number(spread, "Standard Deviation"),
        "quartiles": [number(spread, f"Percentile {p}") for p in (25, 50, 75)],
    }


def _text_of(value) -> str:
    return value if isinstance(value, str) else str(int(value)) if value == int(value) else repr(value)


def moments_of_counts(counts: Dict[str, float]) -> tuple:
    """Mean and standard deviation (divisor n - 1) of codes, from how often each was met."""
    n = sum(counts.values())
    mean = math.fsum(float(value) * count for value, count in counts.items()) / n
    return mean, math.sqrt(math.fsum((float(value) - mean) ** 2 * count for value, count in counts.items()) / (n - 1))


def near(a: Optional[float], b: Optional[float], relative: float, absolute: float = 0.0) -> bool:
    if a is None or b is None:
        return a is b
    return math.isclose(a, b, rel_tol=relative, abs_tol=absolute)


def compare_exact(
    ours: Dict[str, dict], theirs: Dict[str, dict], who: str, same_quartiles: bool, relative: float = 1e-9
) -> int:
    """Compares our answers with another's exact ones, for the columns that the other answers; returns how many numbers
    were compared. Mean and standard deviation may differ by rounding, `relative`.

    `same_quartiles`: the other takes the weighted average at (n + 1)p too; otherwise at (n - 1)p + 1, half a place away for
    the first and third quartile, which may then differ by some of the distance of neighbouring values."""
    compared = 0
    for name, other in theirs.items():
        mine = _mine(ours, name, who)
        if set(mine) != set(other):
            raise Mismatch(f"{name}: we give {sorted(mine)}, {who} gives {sorted(other)}")
        if "counts" in other:
            _same_counts(name, mine, other, who)
            compared += len(other["counts"]) + 1
            continue
        _same(name, "number of values", mine["count"], other["count"], who, 1e-14)
        _same(name, "mean", mine["mean"], other["mean"], who, relative)
        _same(name, "standard deviation", mine["sd"], other["sd"], who, relative)
        for at, p in enumerate((25, 50, 75)):
            # Of n values spread like these, n times the distance of neighbours is about four standard deviations.
            apart = 0.0 if same_quartiles or p == 50 else 40 * 4 * other["sd"] / other["count"]
            _same(name, f"percentile {p}", mine["quartiles"][at], other["quartiles"][at], who, 1e-12, apart)
        compared += 6
    return compared


def compare_summary(ours: Dict[str, dict], theirs: Dict[str, dict], who: str) -> int:
    """Compares with DuckDB's SUMMARIZE: shares of blanks to its two decimals, moments by rounding, approximate quartiles
    of doubles to a twentieth of a standard deviation. Returns how many numbers were compared."""
    compared = 0
    for name, other in theirs.items():
        mine = _mine(ours, name, who)
        if "counts" in mine:
            blank = 100.0 * mine["blank"] / (sum(mine["counts"].values()) + mine["blank"])
            _same(name, "percent of blanks", blank, other["blankPercent"], who, 0.0, 0.0051)
            compared += 1
            if other["mean"] is None:  # texts
                continue
            mean, sd = moments_of_counts(mine["counts"])
            _same(name, "mean", mean, other["mean"], who, 1e-9)
            _same(name, "standard deviation", sd, other["sd"], who, 1e-9)
            compared += 2
            continue
        _same(name, "mean", mine["mean"], other["mean"], who, 1e-9)
        _same(name, "standard deviation", mine["sd"], other["sd"], who, 1e-9)
        for at, p in enumerate((25, 50, 75)):
            _same(name, f"percentile {p}", mine["quartiles"][at], other["quartiles"][at], who, 0.0, other["sd"] / 20)
        compared += 5
    return compared


def check_survey(answers: Dict[str, dict]) -> None:
    """The data is what its description says: 80 % of the columns hold codes 1 to 7 with 3 % of -9 and 5 % of blanks (up to
    five standard errors), 15 % doubles, 5 % texts."""
    codes = texts = doubles = 0
    for name, answer in answers.items():
        if "counts" not in answer:
            doubles += 1
            continue
        cases = sum(answer["counts"].values()) + answer["blank"]
        if not all(value.lstrip("-").isdigit() for value in answer["counts"]):
            texts += 1
            continue
        codes += 1
        if set(answer["counts"]) != {"-9", *"1234567"}:
            raise Mismatch(f"{name} of the synthetic survey holds {sorted(answer['counts'])}")
        for what, share, expected in (("blank", answer["blank"], 0.05), ("-9", answer["counts"]["-9"], 0.03)):
            if abs(share / cases - expected) > 5 * math.sqrt(expected * (1 - expected) / cases):
                raise Mismatch(f"{name} of the synthetic survey: {100 * share / cases:.1f} % are {what}")
    columns = len(answers)
    for what, number, share in (("codes", codes, 0.80), ("doubles", doubles, 0.15), ("texts", texts, 0.05)):
        if abs(number / columns - share) > 0.001:
            raise Mismatch(f"{number} of the synthetic survey's {columns} columns hold {what}")


def _mine(ours: Dict[str, dict], name: str, who: str) -> dict:
    if name not in ours:
        raise Mismatch(f"{who} answers for {name}, we do not")
    return ours[name]


def _same_counts(name: str, mine: dict, other: dict, who: str) -> None:
    met = {value: count for value, count in mine["counts"].items() if count}  # a labelled value that nobody gave
    if len(met) != len(other["counts"]):
        raise Mismatch(f"{name}: we met {len(met)} values, {who} {len(other['counts'])}")
    for value, count in other["counts"].items():
        _same(name, f"count of {value}", met.get(value), count, who, 1e-13)
    _same(name, "blanks", mine["blank"], other["blank"], who, 1e-13)


def _same(name: str, what: str, mine, other, who: str, relative: float, absolute: float = 0.0) -> None:
    if not near(mine, other, relative, absolute):
        raise Mismatch(f"{name}, {what}: we say {mine!r}, {who} says {other!r}")


def columns_of_interest(names: List[str]) -> List[str]:
    """The columns that the reference works through: one of each kind among the first twenty, and the last twenty's."""
    wanted = [at for at in (0, 4, 11, 17, 19) if at < len(names)]
    wanted += [len(names) - 20 + at for at in (4, 11, 17, 19) if len(names) >= 40]
    return [names[at] for at in wanted]
