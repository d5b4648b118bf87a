"""The answers for some columns by the shortest way: every value in a list, sorted. Unweighted and weighted.

The rule of the quartiles is our program's own: the weighted average at t = (W + 1)p over the distinct values x with weights
w and cumulative weights c. t below the first c gives the smallest value, at or above the last the largest; otherwise
c_i <= t < c_(i+1), d = t - c_i, and the answer is x_(i+1) when d >= 1, else (1 - d) x_i + d x_(i+1) when w_(i+1) >= 1, else
with d / w_(i+1) in place of d. Weights are counted in whole ten-thousandths, so sums of weights are exact.
"""

import math
from pathlib import Path
from typing import Dict, List, Optional, Sequence, Tuple

UNIT = 10_000  # parts of 1 in which weights are counted


def read_columns(path: Path, names: Sequence[str]) -> Dict[str, List[str]]:
    """The cells of some columns of a CSV file without quotes."""
    with path.open(encoding="utf-8") as lines:
        header = next(lines).rstrip("\n").split(",")
        places = {name: header.index(name) for name in names}
        columns: Dict[str, List[str]] = {name: [] for name in names}
        appends = [(columns[name].append, place) for name, place in places.items()]
        for line in lines:
            cells = line.rstrip("\n").split(",")
            for append, place in appends:
                append(cells[place])
    return columns


def weights_of(cells: Sequence[str]) -> List[int]:
    """Weights in ten-thousandths; the text has four decimals."""
    return [round(float(cell) * UNIT) for cell in cells]


def counts(cells: Sequence[str], weights: Optional[Sequence[int]] = None) -> dict:
    """Each value with its number of cases, or with the sum of their weights."""
    sums: Dict[str, int] = {}
    for cell, weight in zip(cells, weights if weights is not None else [UNIT] * len(cells)):
        sums[cell] = sums.get(cell, 0) + weight
    blank = sums.pop("", 0)
    return {"counts": {value: weight / UNIT for value, weight in sums.items()}, "blank": blank / UNIT}


def moments(cells: Sequence[str], weights: Optional[Sequence[int]] = None) -> dict:
    """Number of values (sum of weights), mean, standard deviation with divisor W - 1, quartiles; blank cells left out."""
    pairs = [
        (float(cell), weight)
        for cell, weight in zip(cells, weights if weights is not None else [UNIT] * len(cells))
        if cell != ""
    ]
    total = sum(weight for _, weight in pairs)
    mean = math.fsum(value * weight for value, weight in pairs) / total
    squares = math.fsum((value - mean) ** 2 * weight for value, weight in pairs) / UNIT
    return {
        "count": total / UNIT,
        "mean": mean,
        "sd": math.sqrt(squares / (total / UNIT - 1)),
        "quartiles": quartiles(pairs),
    }


def quartiles(pairs: Sequence[Tuple[float, int]]) -> List[float]:
    """The three quartiles of values with weights in ten-thousandths, by the rule above."""
    distinct: List[List] = []
    for value, weight in sorted(pairs):
        if distinct and distinct[-1][0] == value:
            distinct[-1][1] += weight
        else:
            distinct.append([value, weight])
    total = sum(weight for _, weight in distinct)
    answers = []
    for quarter in (1, 2, 3):
        # Four times t and four times the cumulative weight, in ten-thousandths: whole numbers.
        t = (total + UNIT) * quarter
        cumulative = 4 * distinct[0][1]
        if t < cumulative:
            answers.append(distinct[0][0])
            continue
        if t >= 4 * total:
            answers.append(distinct[-1][0])
            continue
        at = 0
        while cumulative + 4 * distinct[at + 1][1] <= t:
            at += 1
            cumulative += 4 * distinct[at][1]
        answers.append(_between(distinct[at][0], distinct[at + 1][0], (t - cumulative) / (4 * UNIT), distinct[at + 1][1]))
    return answers


def _between(low: float, high: float, d: float, weight_of_high: int) -> float:
    if d >= 1:
        return high
    share = d if weight_of_high >= UNIT else d / (weight_of_high / UNIT)
    return (1 - share) * low + share * high


def answers(path: Path, kinds: Dict[str, str], weight: Optional[str] = None) -> Dict[str, dict]:
    """The answers for the columns of `kinds` (name and type: integer, number, string), in the form of bench/answers.py."""
    wanted = list(kinds) + ([weight] if weight and weight not in kinds else [])
    columns = read_columns(path, wanted)
    weights = weights_of(columns[weight]) if weight else None
    return {
        name: (moments if type_ == "number" else counts)(columns[name], weights) for name, type_ in kinds.items()
    }
