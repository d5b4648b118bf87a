#!/usr/bin/env python3
"""Tests of what decides in the benchmark: bench_test.py"""

import copy
import json
import sys
import tempfile
import unittest
from fractions import Fraction
from pathlib import Path

sys.path.insert(0, str(Path(__file__).resolve().parent.parent.parent))

from bench import answers, comparison, measuring, reference, shapes, tables  # noqa: E402


def run(cpu: float, wall: float = 1.0) -> measuring.Measured:
    return measuring.Measured(cpu, wall, 1, "")


class Ratios(unittest.TestCase):
    def test_areTakenPairByPairBeforeTheMedian(self):
        ours = [run(1.0), run(10.0), run(2.0)]
        theirs = [run(10.0), run(20.0), run(4.0)]
        # The ratio of the medians would be 0.2.
        self.assertEqual(measuring.median_ratio(ours, theirs), 0.5)

    def test_leaveOutRunsWithoutAPartner(self):
        self.assertEqual(measuring.median_ratio([run(1.0), run(2.0), run(100.0)], [run(2.0), run(4.0)]), 0.5)

    def test_areNoneWithoutAPair(self):
        self.assertIsNone(measuring.median_ratio([run(1.0)], []))
        self.assertIsNone(measuring.median_of([], "cpu"))

    def test_canBeOfTheTimePassed(self):
        self.assertEqual(measuring.median_ratio([run(1.0, wall=3.0)], [run(5.0, wall=6.0)], "wall"), 0.5)


class Measuring(unittest.TestCase):
    def test_countsTheProcessorTimeOfTheProcessAndNotOfWaiting(self):
        slept = measuring.measure([sys.executable, "-c", "import time; time.sleep(0.5)"])
        self.assertGreaterEqual(slept.wall, 0.5)
        self.assertLess(slept.cpu, 0.4)
        worked = measuring.measure([sys.executable, "-c", "import time\nwhile time.process_time() < 0.5: pass"])
        self.assertGreaterEqual(worked.cpu, 0.5)

    def test_memoryIsTheMeasuredProgramsAndNotOurs(self):
        ballast = b"x" * 300_000_000
        small = measuring.measure([sys.executable, "-S", "-c", "pass"]).memory
        large = measuring.measure([sys.executable, "-S", "-c", "held = b'x' * 200_000_000"]).memory
        self.assertLess(small, 100_000_000)
        self.assertGreater(large, 200_000_000)
        self.assertEqual(len(ballast), 300_000_000)

    def test_aFailureIsNoMeasurement(self):
        with self.assertRaisesRegex(measuring.BenchmarkError, "status 3(.|\n)*out of paper"):
            measuring.measure([sys.executable, "-c", "import sys; print('out of paper', file=sys.stderr); sys.exit(3)"])

    def test_aProgramThatTakesTooLongIsStoppedAndNamed(self):
        with self.assertRaisesRegex(measuring.BenchmarkError, "stopped after 0 s: .*sleep"):
            measuring.measure([sys.executable, "-c", "import time; time.sleep(60)"], limit=0.2)


def nothing(runs: int, **limits) -> measuring.Plan:
    return measuring.Plan([sys.executable, "-S", "-c", "pass"], runs, **limits)


class InTurn(unittest.TestCase):
    def order(self, plans) -> list:
        order = []
        results = measuring.in_turn(plans, order.append)
        self.runs = {name: len(runs) for name, runs in results.items()}
        return order

    def test_theCommandsFollowOneAnother(self):
        self.assertEqual(self.order({"a": nothing(3), "b": nothing(2)}), ["a", "b", "a", "b", "a"])
        self.assertEqual(self.runs, {"a": 3, "b": 2})

    def test_whoHasSpentTheBudgetGetsNoFurtherRun(self):
        self.assertEqual(self.order({"a": nothing(3), "b": nothing(3, budget=0.001)}), ["a", "b", "a", "a"])

    def test_whoWasStoppedGetsNoFurtherRunAndTheOthersGoOn(self):
        endless = [sys.executable, "-c", "import time; time.sleep(60)"]
        plans = {"a": nothing(2), "b": measuring.Plan(endless, 2, budget=100, limit=0.2)}
        self.assertEqual(self.order(plans), ["a", "b", "a"])
        self.assertEqual(self.runs, {"a": 2, "b": 0})

    def test_withoutABudgetBeingStoppedEndsTheBenchmark(self):
        endless = [sys.executable, "-c", "import time; time.sleep(60)"]
        with self.assertRaises(measuring.TookTooLong):
            measuring.in_turn({"a": measuring.Plan(endless, 2, limit=0.2)})


CODES = {"counts": {"1": 60, "2": 30, "-9": 6}, "blank": 4}
DOUBLES = {"count": 1000, "mean": 5.0, "sd": 2.0, "quartiles": [3.0, 5.0, 7.0]}


def changed(answer: dict, **changes) -> dict:
    other = copy.deepcopy(answer)
    other.update(changes)
    return {"x": other}


class Answers(unittest.TestCase):
    def same(self, mine: dict, other: dict, same_quartiles: bool = True) -> int:
        return answers.compare_exact(mine, other, "the other", same_quartiles)

    def test_thatAgreePassAndAreCounted(self):
        self.assertEqual(self.same({"x": CODES}, {"x": CODES}), 4)
        self.assertEqual(self.same({"x": DOUBLES}, {"x": DOUBLES}), 6)

    def test_aLabelledValueThatNobodyGaveIsNoDifference(self):
        self.same(changed(CODES, counts={**CODES["counts"], "7": 0}), {"x": CODES})

    def test_oneCaseMoreIsAMismatch(self):
        with self.assertRaisesRegex(answers.Mismatch, "x, count of 2: we say 31, the other says 30"):
            self.same(changed(CODES, counts={"1": 60, "2": 31, "-9": 6}), {"x": CODES})
        with self.assertRaisesRegex(answers.Mismatch, "x, blanks: we say 5, the other says 4"):
            self.same(changed(CODES, blank=5), {"x": CODES})

    def test_aValueThatOneSideLacksIsAMismatch(self):
        with self.assertRaisesRegex(answers.Mismatch, "we met 2 values, the other 3"):
            self.same(changed(CODES, counts={"1": 60, "2": 30}), {"x": CODES})
        with self.assertRaisesRegex(answers.Mismatch, "count of 2: we say None"):
            self.same(changed(CODES, counts={"1": 60, "3": 30, "-9": 6}), {"x": CODES})

    def test_aVariableThatWeDoNotAnswerIsAMismatch(self):
        with self.assertRaisesRegex(answers.Mismatch, "answers for x, we do not"):
            self.same({}, {"x": CODES})

    def test_anotherKindOfAnswerIsAMismatch(self):
        with self.assertRaises(answers.Mismatch):
            self.same({"x": CODES}, {"x": DOUBLES})

    def test_meansAndDeviationsMayDifferByRoundingOnly(self):
        self.same(changed(DOUBLES, mean=5.0 + 1e-12, sd=2.0 - 1e-12), {"x": DOUBLES})
        for wrong in ({"mean": 5.0000001}, {"sd": 2.0000001}, {"count": 999}):
            with self.assertRaises(answers.Mismatch):
                self.same(changed(DOUBLES, **wrong), {"x": DOUBLES})

    def test_quartilesOfTheOtherDefinitionMayDifferByNeighboursButTheMedianMayNot(self):
        near = changed(DOUBLES, quartiles=[3.01, 5.0, 7.01])
        self.same(near, {"x": DOUBLES}, same_quartiles=False)
        with self.assertRaises(answers.Mismatch):
            self.same(near, {"x": DOUBLES}, same_quartiles=True)
        for wrong in ([3.0, 5.01, 7.0], [3.5, 5.0, 7.0], [3.0, 5.0, 6.5]):
            with self.assertRaises(answers.Mismatch):
                self.same(changed(DOUBLES, quartiles=wrong), {"x": DOUBLES}, same_quartiles=False)

    def test_momentsOfCodesComeFromTheirCounts(self):
        mean, sd = answers.moments_of_counts({"1": 2, "4": 1})
        self.assertEqual(mean, 2.0)
        self.assertAlmostEqual(sd, 3**0.5, delta=1e-15)

    def test_aSummaryIsComparedByMomentsAndBlanks(self):
        mean, sd = answers.moments_of_counts(CODES["counts"])
        summary = {"count": 100, "blankPercent": 4.0, "mean": mean, "sd": sd, "quartiles": [1, 1, 2]}
        self.assertEqual(answers.compare_summary({"x": CODES}, {"x": summary}, "the other"), 3)
        for wrong in ({"blankPercent": 4.02}, {"mean": mean + 1e-6}, {"sd": sd + 1e-6}):
            with self.assertRaises(answers.Mismatch):
                answers.compare_summary({"x": CODES}, changed(summary, **wrong), "the other")

    def test_areReadFromTheReport(self):
        def row(text, value=None, **numbers):
            category = {"text": text} if value is None else {"text": text, "variable": "x", "value": value}
            return {"category": category, "cells": [{"column": c, "text": "", "number": n} for c, n in numbers.items()]}

        def table(name, **groups):
            items = [{"group": {"text": group.replace("_", " ")}, "items": rows} for group, rows in groups.items()]
            return {
                "title": {"text": name},
                "subtype": {"text": "Variable Information"},
                "dimensions": [{"label": {"text": ""}, "place": "rows", "items": items}],
            }

        codes = table(
            "q",
            Valid_Values=[row("Yes", 1.0, Count=60), row("No", 2.0, Count=30)],
            Missing_Values=[row("-9", -9.0, Count=6), row("System", Count=4)],
        )
        doubles = table(
            "d",
            N=[row("Valid", Value=1000), row("Missing", Value=0)],
            Central_Tendency_and_Dispersion=[
                row("Mean", Value=5.0),
                row("Standard Deviation", Value=2.0),
                row("Percentile 25", Value=3.0),
                row("Percentile 50", Value=5.0),
                row("Percentile 75", Value=7.0),
            ],
        )
        report = {"procedures": [{"tables": [codes, doubles]}]}
        self.assertEqual(answers.of_ours(report), {"q": CODES, "d": DOUBLES})


class Survey(unittest.TestCase):
    def survey(self) -> dict:
        code = {"counts": {"-9": 30, **{str(value): 131 for value in range(1, 8)}}, "blank": 53}
        names = {f"q{at}": code for at in range(16)}
        names.update({f"d{at}": DOUBLES for at in range(3)})
        names["t"] = {"counts": {"Here": 500, "There": 500}, "blank": 0}
        return names

    def test_ofTheDescribedSharesPasses(self):
        answers.check_survey(self.survey())

    def test_withoutItsMissingCodesOrBlanksIsNone(self):
        for counts, blank in (({"-9": 0}, 53), ({}, 0), ({"9": 5}, 53)):
            survey = self.survey()
            survey["q3"] = {"counts": {**survey["q3"]["counts"], **counts}, "blank": blank}
            with self.assertRaises(answers.Mismatch):
                answers.check_survey(survey)

    def test_withTooFewDoublesIsNone(self):
        survey = self.survey()
        survey["d1"] = survey["t"]
        with self.assertRaises(answers.Mismatch):
            answers.check_survey(survey)


class Reference(unittest.TestCase):
    def test_quartilesAreTheWeightedAverageAtNPlusOne(self):
        # n = 9: t = 2.5, 5, 7.5.
        cells = [str(value) for value in range(1, 10)]
        self.assertEqual(reference.moments(cells)["quartiles"], [2.5, 5.0, 7.5])
        # n = 4: t = 1.25, 2.5, 3.75.
        self.assertEqual(reference.moments(["10", "20", "30", "40"])["quartiles"], [12.5, 25.0, 37.5])
        # n = 2: t = 0.75 is below the first, 2.25 above the last.
        self.assertEqual(reference.moments(["1", "2"])["quartiles"], [1.0, 1.5, 2.0])

    def test_wholeWeightsAreRepeatedCases(self):
        repeated = reference.moments(["1", "1", "1", "2", "2", "5", "7", "7"])
        weighted = reference.moments(["1", "2", "5", "7"], reference.weights_of(["3", "2", "1", "2"]))
        self.assertEqual(repeated, weighted)

    def test_aLightNeighbourIsReachedByItsShareOfWeight(self):
        # W = 1.6, t = 0.65: c_1 = 0.4, d = 0.25, w_2 = 0.5 < 1, so half the way.
        pairs = [(10.0, 4_000), (20.0, 5_000), (30.0, 7_000)]
        self.assertAlmostEqual(reference.quartiles(pairs)[0], 15.0, delta=1e-14)

    def test_moreThanOneBeyondIsTheNextValue(self):
        # W = 11, t = 3: c_1 = 1, d = 2 >= 1.
        self.assertEqual(reference.quartiles([(10.0, 10_000), (20.0, 100_000)])[0], 20.0)

    def test_momentsAreThoseOfExactFractions(self):
        cells, weights = ["0.1", "2.5", "-7.25"], [2_000, 15_000, 50_000]
        values = [Fraction(float(cell)) for cell in cells]
        shares = [Fraction(weight, 10_000) for weight in weights]
        mean = sum(v * w for v, w in zip(values, shares)) / sum(shares)
        variance = sum((v - mean) ** 2 * w for v, w in zip(values, shares)) / (sum(shares) - 1)
        answer = reference.moments(cells, weights)
        self.assertAlmostEqual(answer["mean"], float(mean), delta=1e-15)
        self.assertAlmostEqual(answer["sd"], float(variance) ** 0.5, delta=1e-14)
        self.assertEqual(answer["count"], 6.7)

    def test_blankCellsAreCountedApart(self):
        answer = reference.counts(["1", "", "1", "-9"], [5_000, 10_000, 5_001, 20_000])
        self.assertEqual(answer, {"counts": {"1": 1.0001, "-9": 2.0}, "blank": 1.0})
        self.assertEqual(reference.moments(["1", "", "3"])["count"], 2)

    def test_readsTheColumnsByName(self):
        with tempfile.TemporaryDirectory() as folder:
            path = Path(folder) / "some.csv"
            path.write_text("a,b,c\n1,2,\n4,,6\n")
            self.assertEqual(reference.read_columns(path, ["c", "a"]), {"c": ["", "6"], "a": ["1", "4"]})


class Tables(unittest.TestCase):
    def test_aGoalIsKeptUpToItsBoundAndMissedBeyond(self):
        self.assertEqual(tables.verdict(0.8, 0.8), "0.800 kept")
        self.assertEqual(tables.verdict(0.801, 0.8), "0.801 **missed**")
        self.assertEqual(tables.verdict(None, 0.8), "–")

    def test_numbersHaveTheirDigits(self):
        shown = [tables.significant(number) for number in (0.0123456, 0.123456, 1.23456, 12.3456, 123.456, 12345.6, 0)]
        self.assertEqual(shown, ["0.0123", "0.123", "1.23", "12.3", "123", "12,346", "0"])

    def setting(self, theirs) -> comparison.Setting:
        shape = shapes.Shape("W", 1000, 100, Path("."))
        ours = [run(1.0), run(2.0), run(3.0)]
        return comparison.Setting(shape, "csv", 1, {"ours": ours, "weighted": ours, "summarize": theirs})

    def row(self, theirs, rivals=(("summarize", "DuckDB SUMMARIZE"),)) -> str:
        return tables.comparison([self.setting(theirs)], rivals, 3).splitlines()[2]

    def test_aRivalsCellIsTheRatioAndItsSeconds(self):
        self.assertTrue(self.row([run(10.0), run(10.0), run(10.0)]).endswith("| **0.20** (10.00 s) |"))

    def test_fewerRunsThanAskedAreSaid(self):
        self.assertTrue(self.row([run(10.0), run(10.0)]).endswith("| **0.15** (10.00 s, 2 runs) |"))

    def test_whoWasStoppedIsToldFromWhoTookNoPart(self):
        self.assertTrue(self.row([]).endswith("| stopped after 300 s |"))
        self.assertTrue(self.row([], rivals=(("pandas", "pandas"),)).endswith("| – |"))

    def test_goalsOfTheShapeXAreItsOwn(self):
        setting = self.setting([run(6.0), run(12.0), run(18.0)])
        with tempfile.TemporaryDirectory() as folder:
            for name, word in (("W", "**missed**"), ("X", "kept")):
                setting.shape = shapes.Shape(name, 1000, 1, Path(folder))
                setting.shape.dictionary.write_text('{"fields": [{"name": "a", "type": "integer"}]}')
                line = tables.goals([setting], []).splitlines()[2]
                self.assertEqual(line, f"| CSV, dictionary: CPU at most 1/7 (X: 1/5) of SUMMARIZE | 0.167 {word} |")

    def test_memoryIsBoundByTheCompactColumns(self):
        with tempfile.TemporaryDirectory() as folder:
            shape = shapes.Shape("W", 1000, 3, Path(folder))
            types = ("integer", "number", "string")
            shape.dictionary.write_text(json.dumps({"fields": [{"name": type_, "type": type_} for type_ in types]}))
            self.assertEqual(shape.compact_bytes(), 1000 * (1 + 8 + 4))
        self.assertEqual(tables.memory_bound(13_000), 15_600 + 100e6)

    def test_ofStagesAreReadFromWhatTheProgramSays(self):
        said = 'codebook: warning: x\ncodebook: timings: {"read": {"wall": 1.0, "cpu": 2.0}}\n'
        self.assertEqual(comparison.stages_of(measuring.Measured(1, 1, 1, said)), {"read": {"wall": 1.0, "cpu": 2.0}})


if __name__ == "__main__":
    unittest.main()
