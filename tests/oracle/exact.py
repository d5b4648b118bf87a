"""Exact statistics over weighted values: fractions throughout, rounded once at the end.

A value or weight is a double; as a Fraction it is that double exactly. Results are the doubles nearest to the exact
results (ties to even), None where a statistic is system-missing."""

from fractions import Fraction
from math import isqrt


def nearest_double(exact):
    """The double nearest to a Fraction: the division of two integers rounds correctly."""
    return exact.numerator / exact.denominator


def nearest_root(exact):
    """The double nearest to the square root of a Fraction that is not negative.

    The root is taken to at least 64 binary digits, and one more digit says whether anything is left over: enough to
    decide every rounding to 53 digits."""
    if exact == 0:
        return 0.0
    scale = 0
    while exact * 4**scale < 4**64:
        scale += 16
    scaled = exact * 4**scale
    whole = scaled.numerator // scaled.denominator
    root = isqrt(whole)
    left_over = root * root != scaled
    return nearest_double(Fraction(2 * root + (1 if left_over else 0), 2 * 2**scale))


def weight_sum(cases):
    return sum((w for _, w in cases), Fraction(0))


def mean(cases):
    """`cases` is a list of pairs of value and weight (both Fractions, weights positive)."""
    total = weight_sum(cases)
    if total == 0:
        return None
    return nearest_double(sum((x * w for x, w in cases), Fraction(0)) / total)


def standard_deviation(cases):
    """Frequency weights, divisor: sum of the weights minus 1."""
    total = weight_sum(cases)
    if total <= 1:
        return None
    centre = sum((x * w for x, w in cases), Fraction(0)) / total
    squares = sum((w * (x - centre)**2 for x, w in cases), Fraction(0))
    return nearest_root(squares / (total - 1))


def percentile(cases, percent):
    """Weighted average at (W + 1) p over the sorted distinct values."""
    if not cases:
        return None
    weights = {}
    for x, w in cases:
        weights[x] = weights.get(x, Fraction(0)) + w
    distinct = sorted(weights)
    t = (weight_sum(cases) + 1) * Fraction(percent) / 100
    cumulative = []
    running = Fraction(0)
    for x in distinct:
        running += weights[x]
        cumulative.append(running)
    if t < cumulative[0]:
        return nearest_double(distinct[0])
    if t >= cumulative[-1]:
        return nearest_double(distinct[-1])
    i = 0
    while not (cumulative[i] <= t < cumulative[i + 1]):
        i += 1
    d = t - cumulative[i]
    low, high, next_weight = distinct[i], distinct[i + 1], weights[distinct[i + 1]]
    if d >= 1:
        return nearest_double(high)
    if next_weight < 1:
        d = d / next_weight
    return nearest_double((1 - d) * low + d * high)
