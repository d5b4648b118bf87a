#!/usr/bin/env python3
"""Tests of the oracle itself, on examples worked by hand."""

import decimal
import json
import math
import os
import random
import tempfile
import unittest
from fractions import Fraction

import exact
from commandtext import CommandError, parse_command, split_commands
from dictionary import Dataset, ResponseSet, Variable, made_well_formed, read_dataset
from generate import make_case
from listing import ListFailed, ListReader
from oracle import report_for
from procedure import Run, attribute_rows, counted_value, document_text
from report import Messages
from run import differences, message_differences
from settings import CommandStopped, interpret
from showing import Format, number_text


def cases(*pairs):
    return [(Fraction(x), Fraction(w)) for x, w in pairs]


def once(*values):
    return cases(*[(x, 1) for x in values])


class ExactStatistics(unittest.TestCase):

    def test_meanIsTheNearestDouble(self):
        self.assertEqual(exact.mean(once(0.1, 0.2, 0.3)), 0.2)
        self.assertEqual(exact.mean(once(1e16, 1.0, -1e16)), 1 / 3)

    def test_meanTakesWeightsAsFrequencies(self):
        self.assertEqual(exact.mean(cases((1, 3), (5, 1))), 2.0)
        self.assertEqual(exact.mean(cases((1, 0.5), (2, 0.5))), 1.5)

    def test_noCasesGiveSystemMissing(self):
        self.assertIsNone(exact.mean([]))
        self.assertIsNone(exact.standard_deviation([]))
        self.assertIsNone(exact.percentile([], 50))

    def test_deviationHasTheSumOfWeightsMinusOneAsDivisor(self):
        self.assertEqual(exact.standard_deviation(once(2, 4, 4, 4, 5, 5, 7, 9)), math.sqrt(32 / 7))
        self.assertEqual(exact.standard_deviation(cases((1, 2), (3, 2))), exact.standard_deviation(once(1, 1, 3, 3)))

    def test_deviationIsSystemMissingUpToWeightOne(self):
        self.assertIsNone(exact.standard_deviation(once(7)))
        self.assertIsNone(exact.standard_deviation(cases((1, 0.5), (2, 0.5))))
        self.assertIsNotNone(exact.standard_deviation(cases((1, 0.5), (2, 0.75))))

    def test_deviationOfAConstantIsZero(self):
        self.assertEqual(exact.standard_deviation(once(0.1, 0.1, 0.1)), 0.0)

    def test_rootIsTheNearestDouble(self):
        numbers = random.Random(1)
        with decimal.localcontext() as context:
            context.prec = 400
            for _ in range(500):
                q = Fraction(numbers.randrange(1, 10**numbers.randrange(1, 40)), numbers.randrange(1, 10**30))
                root = (decimal.Decimal(q.numerator) / decimal.Decimal(q.denominator)).sqrt()
                self.assertEqual(exact.nearest_root(q), float(root))

    def test_rootOfASquareIsExact(self):
        for x in (1.0, 0.1, 3e-200, 1.7e150):
            self.assertEqual(exact.nearest_root(Fraction(x)**2), x)

    def test_percentilesOfWholeWeightsEqualRepeatedCases(self):
        numbers = random.Random(2)
        for _ in range(200):
            weighted = [(numbers.randrange(10), numbers.randrange(1, 4)) for _ in range(numbers.randrange(1, 8))]
            repeated = once(*[x for x, w in weighted for _ in range(w)])
            for percent in (25, 50, 75):
                self.assertEqual(exact.percentile(cases(*weighted), percent), exact.percentile(repeated, percent))

    def test_percentileIsTheWeightedAverageAtTheRank(self):
        self.assertEqual(exact.percentile(once(1, 2, 3, 4), 25), 1.25)
        self.assertEqual(exact.percentile(once(1, 2, 3, 4), 50), 2.5)
        self.assertEqual(exact.percentile(once(1, 2, 3, 4), 75), 3.75)

    def test_percentileBeyondTheEndsIsTheSmallestOrLargest(self):
        self.assertEqual(exact.percentile(once(5, 9), 25), 5.0)
        self.assertEqual(exact.percentile(once(5, 9), 75), 9.0)
        self.assertEqual(exact.percentile(once(5), 50), 5.0)

    def test_percentileWithinASmallWeightIsTakenInProportion(self):
        # W = 2.5, t = 1.75, d = 0.75 over the next weight 1 (a) or 0.5 with d = 0.25 (b)
        self.assertEqual(exact.percentile(cases((0, 1), (8, 1), (9, 0.5)), 50), 6.0)
        # W = 2, t = 1.5, c = 1.25, next weight 0.5: d = 0.25 / 0.5
        self.assertEqual(exact.percentile(cases((0, 1.25), (8, 0.5), (9, 0.25)), 50), 4.0)


class Showing(unittest.TestCase):

    def test_halvesAreRoundedAwayFromZero(self):
        self.assertEqual(number_text(0.5, Format("F", 8, 0)), "1")
        self.assertEqual(number_text(-2.5, Format("F", 8, 0)), "-3")
        self.assertEqual(number_text(0.125, Format("F", 8, 2)), "0.13")

    def test_theBinaryValueIsRoundedNotTheShortestText(self):
        self.assertEqual(number_text(2.675, Format("F", 8, 2)), "2.67")

    def test_groupsAndMarks(self):
        self.assertEqual(number_text(1234567.5, Format("COMMA", 12, 1)), "1,234,567.5")
        self.assertEqual(number_text(-1234.5, Format("DOT", 12, 2)), "-1.234,50")
        self.assertEqual(number_text(12.34, Format("PCT", 8, 1)), "12.3%")
        self.assertEqual(number_text(None, Format("F", 8, 2)), ".")

    def test_days(self):
        leap_day = 18321 * 86400.0
        self.assertEqual(number_text(leap_day, Format("SDATE", 10, 0)), "2020/02/29")
        self.assertEqual(number_text(leap_day, Format("DATE", 11, 0)), "29-FEB-2020")
        self.assertEqual(number_text(-1.0, Format("ADATE", 10, 0)), "12/31/1969")


class CommandText(unittest.TestCase):

    def parsed(self, text):
        return parse_command(split_commands(text)[0])

    def test_aPeriodEndsACommandOnlyAtALineEnd(self):
        self.assertEqual(len(split_commands("CODEBOOK a.b\n c.\nCODEBOOK.")), 2)
        self.assertEqual([t.text for t in split_commands("CODEBOOK a. b")[0]], ["CODEBOOK", "a.", "b"])

    def test_commasAndLineEndsSeparate(self):
        self.assertEqual([t.text for t in split_commands("x,a\r\nb[N]")[0]], ["x", "a", "b", "[", "N", "]"])

    def test_quotesAreDoubledInside(self):
        self.assertEqual([t.text for t in split_commands("x 'it''s' \"/\"")[0]], ["x", "it's", "/"])

    def test_valuesStandBehindAnEqualSignOrInParentheses(self):
        options = self.parsed("codebook /options maxcats(5) varorder=attribute(x) sort=descending").subcommands["OPTIONS"]
        self.assertEqual(options, {"MAXCATS": "5", "VARORDER": ("ATTRIBUTE", "x"), "SORT": "DESCENDING"})

    def test_syntaxErrors(self):
        for text in ("FOO", "CODEBOOK /FOO", "CODEBOOK /VARINFO FOO", "CODEBOOK /VARINFO /VARINFO", "CODEBOOK /",
                     "CODEBOOK /OPTIONS MAXCATS", "CODEBOOK /OPTIONS MAXCATS=(5)", "CODEBOOK /OPTIONS MAXCATS()",
                     "CODEBOOK /OPTIONS SORT=UP", "CODEBOOK /OPTIONS VARORDER=ATTRIBUTE", "CODEBOOK /VARINFO 'LABEL'",
                     "CODEBOOK /OPTIONS MAXCATS=5 MAXCATS=5", "CODEBOOK /VARINFO LABEL=3", "CODEBOOK /OPTIONS MAXCATS(5"):
            with self.assertRaises(CommandError, msg=text):
                self.parsed(text)


    def test_readingGoesOnAtTheSlashBehindASyntaxError(self):
        for text, count in (("CODEBOOK /OPTIONS SORT=UP /FOO LABEL /VARINFO LABEL FOO BAR", 3), ("CODEBOOK /FOO /VARINFO", 1),
                            ("CODEBOOK /OPTIONS MAXCATS(5 /OPTIONS", 2), ("CODEBOOK //", 2)):
            with self.assertRaises(CommandError) as caught:
                self.parsed(text)
            self.assertEqual(caught.exception.count, count, text)


def numeric(name, values, **facts):
    variable = Variable()
    variable.name = name
    variable.format = Format("F", 8, 0)
    variable.values = values
    variable.level = 1
    for fact, value in facts.items():
        setattr(variable, fact, value)
    return variable


def dataset_of(*variables, sets=()):
    dataset = Dataset()
    dataset.variables = list(variables)
    dataset.case_count = len(variables[0].values)
    dataset.weights = [Fraction(1)] * dataset.case_count
    dataset.sets = [ResponseSet(entry) for entry in sets]
    dataset.path = "/data/survey.csv"
    return dataset


def texts(report):
    return [m["text"] for m in report["messages"]]


class Lists(unittest.TestCase):

    def setUp(self):
        self.messages = Messages()
        variables = [numeric(name, [], level=3) for name in "abc"]
        variables.append(numeric("s", [], width=3, level=1))
        members = {"type": "dichotomy", "variables": ["a", "b"], "countedValue": "1"}
        self.dataset = dataset_of(*variables, sets=[{"name": "$a", **members}, {"name": "$b", **members}])
        self.reader = ListReader(self.dataset, self.messages)

    def read(self, text):
        self.reader.read(split_commands("CODEBOOK " + text)[0][1:])
        return [item.name for item in self.reader.items]

    def assert_fails(self, text, *expected):
        with self.assertRaises(ListFailed):
            self.read(text)
        self.assertEqual([m["text"] for m in self.messages.entries], list(expected))

    def test_aDuplicateRangeEndIsReportedAndTheListGoesOn(self):
        self.assertEqual(self.read("a b a TO c"), ["a", "b", "c"])
        self.assertEqual([m["text"] for m in self.messages.entries], ["Duplicate variable or MRset name."])

    def test_aListedVariableInsideARangeIsSkippedWithoutAWord(self):
        self.assertEqual(self.read("b a to c"), ["b", "a", "c"])
        self.assertEqual(self.messages.entries, [])

    def test_aBackwardRangeIsWalkedForwards(self):
        self.assertEqual(self.read("c [N] TO a [S]"), ["a", "b", "c"])
        self.assertEqual(self.reader.kinds[:3], [2, 1, 1])

    def test_aSetNamedTwiceGivesBothMessages(self):
        self.assert_fails("$a $A", "Duplicate variable or MRset name.", "$A Invalid or non-existent variable name.")

    def test_aSetBeforeAllSetsIsListedTwice(self):
        self.assertEqual(self.read("$b $all"), ["$b", "$a", "$b"])

    def test_aSetBehindAllSetsIsRefused(self):
        self.assert_fails("$ALL $a", "Duplicate variable or MRset name.")

    def test_setsHaveNoRanges(self):
        self.assert_fails("$a TO $b", "$a TO $b keyword used for multiple response sets.")

    def test_rangesNeedTwoDifferentEnds(self):
        self.assert_fails("a TO A", "Keyword TO is misplaced in the variable list.")
        self.messages.entries.clear()
        self.assert_fails("b TO", "Keyword TO is misplaced in the variable list.")

    def test_aLoneBracketIsAnError(self):
        self.assert_fails("a [N", "Error in < CODEBOOK > command.")

    def test_aBracketBehindAllHoldsForEveryVariable(self):
        self.read("ALL [O]")
        self.assertEqual(self.reader.kinds, [3, 3, 3, 3, 2, 2])

    def test_stringsAreNeverScale(self):
        self.read("s [S]")
        self.assertEqual(self.reader.kinds[3], 2)
        self.assertEqual([m["text"] for m in self.messages.entries], ["Scale (continuous) measurement."])


class Runs(unittest.TestCase):

    def passed(self, values, **facts):
        dataset = dataset_of(numeric("a", values, **facts))
        messages = Messages()
        command = parse_command(split_commands("CODEBOOK /OPTIONS MAXCATS=3")[0])
        run = Run(interpret(command, dataset, messages), dataset, messages)
        run.items = run.settings.items
        run.prepare_entries()
        return run.pass_cases(), run.has_statistics

    def test_thePassEndsAfterOneCaseThatNobodyTook(self):
        self.assertEqual(self.passed([1., 2., 3., 4., 5., 6., 7.]), (5, [False]))
        self.assertEqual(self.passed([1., 2., 3., 4., 5.]), (5, [False]))

    def test_fewDistinctValuesAreCountedToTheEnd(self):
        self.assertEqual(self.passed([1., 2., 1., 2., 1.]), (5, [True]))

    def test_aValueFirstMetOnTheLastCaseIsKept(self):
        self.assertEqual(self.passed([1., 2., 3., 3., 4.]), (5, [True]))
        self.assertEqual(self.passed([1., 2., 3., 3., 4., 4.]), (6, [False]))

    def test_moreLabelsThanAllowedTakeNoCase(self):
        labels = [(float(k), str(k)) for k in range(4)]
        self.assertEqual(self.passed([1., 2., 3.], labels=labels), (1, [False]))

    def test_anEmptyDatasetIsAnErrorUnlessNothingIsCounted(self):
        dataset = dataset_of(numeric("a", []))
        report, status = report_for(dataset, "CODEBOOK /FILEINFO NAME")
        self.assertEqual((texts(report), status, report["procedures"][0]["tables"]), (["Empty dataset."], 1, []))
        report, status = report_for(dataset, "CODEBOOK /STATISTICS NONE")
        self.assertEqual((texts(report), status, len(report["procedures"][0]["tables"])), ([], 0, 1))

    def test_statisticsOfAnotherVariableAreWarnedOf(self):
        dataset = dataset_of(numeric("a", [1., 2.], level=3), numeric("b", [5., 6.], level=1))
        report, status = report_for(dataset, "CODEBOOK /STATISTICS MEAN")
        self.assertEqual(report["messages"][0]["begins"], "Statistics shown for b are those of a.")
        self.assertEqual((report["messages"][0]["source"], status), ("host", 0))

    def test_aSetBehindAScaleVariableFailsTheCheck(self):
        entry = {"name": "$s", "type": "category", "variables": ["a"]}
        dataset = dataset_of(numeric("a", [1., 2.], level=3), sets=[entry])
        self.assertEqual(report_for(dataset, "CODEBOOK /STATISTICS MEAN"), (None, 70))

    def test_theListOfSilentItemsKeepsItsBlanks(self):
        dataset = dataset_of(numeric("a", [1.]), numeric("b", [1.]))
        report, _ = report_for(dataset, "CODEBOOK /VARINFO MISSING /STATISTICS NONE")
        self.assertEqual(texts(report), ["No Variable Information for a ,b ."])

    def test_noneExcludesTheOtherStatistics(self):
        report, status = report_for(dataset_of(numeric("a", [1.])), "CODEBOOK /STATISTICS NONE COUNT")
        self.assertEqual(texts(report), ["Keyword NONE of subcommand STATISTICS cannot be combined with any other keyword."])
        self.assertEqual(status, 1)

    def test_maxcatsOfZeroIsNoKeyword(self):
        report, _ = report_for(dataset_of(numeric("a", [1.])), "CODEBOOK /OPTIONS MAXCATS=0")
        self.assertEqual(texts(report), ["MAXCATS must be a positive integer.",
                                         "< OPTIONS > must be followed by one or more keywords. This subcommand ignored."])

    def test_attributesOrderAgainstTheirKeyword(self):
        variables = [numeric(n, [1.], attributes=[("Rank", [r])]) for n, r in (("x", "2"), ("y", "3"), ("z", "1"))]
        for direction, order in (("ASCENDING", "yxz"), ("DESCENDING", "zxy")):
            text = f"CODEBOOK /OPTIONS VARORDER=ATTRIBUTE(rank) SORT={direction}"
            report, _ = report_for(dataset_of(*variables), text)
            self.assertEqual("".join(t["title"]["text"] for t in report["procedures"][0]["tables"]), order)

    def test_systemMissingStandsAloneUnderMissingValues(self):
        report, _ = report_for(dataset_of(numeric("a", [1., None])), "CODEBOOK /VARINFO MISSING /STATISTICS COUNT")
        groups = report["procedures"][0]["tables"][0]["dimensions"][0]["items"]
        self.assertEqual([g["group"]["text"] for g in groups], ["Standard Attributes", "Valid Values", "Missing Values"])
        self.assertEqual(groups[2]["items"][0]["category"]["text"], "System")
        self.assertEqual(groups[2]["items"][0]["cells"][0]["number"], 1.0)


class Pieces(unittest.TestCase):

    def test_theFirstTwoLinesOfADocumentAreJoined(self):
        self.assertEqual(document_text(["a", "b", "c"]), "ab\nc\n")
        self.assertEqual(document_text(["a"]), "a")

    def test_arrayValuesAreNumbered(self):
        self.assertEqual(attribute_rows([("n", ["", "y"])], lambda n: True), [("n[1]", " "), ("n[2]", "y")])
        self.assertEqual(attribute_rows([("n", ["x"] * 10)], lambda n: True)[0][0], "n[01]")

    def test_countedValues(self):
        numbers = [numeric("abc", []), numeric("abcdefghij", [])]
        self.assertEqual(counted_value("1", numbers), 1.0)
        self.assertEqual(counted_value("yes", numbers), 0.0)
        strings = [numeric("a", [], width=3, format=Format("A", 3, 0))]
        self.assertEqual(counted_value("abcdefghij", strings), "abcdefgh")

    def test_namesAreChangedAsLittleAsPossible(self):
        self.assertEqual([made_well_formed(n) for n in ("q_1", "q - 1", "2nd", "a(b")], ["q_1", "q_1", "@2nd", "a_b"])

    def test_weightsThatAreNotPositiveCountNothing(self):
        with tempfile.TemporaryDirectory() as folder:
            with open(os.path.join(folder, "d.csv"), "w", encoding="utf-8") as file:
                file.write("w\n2.5\n0\n-1\n\"\"\n9\n")
            with open(os.path.join(folder, "d.schema.json"), "w", encoding="utf-8") as file:
                json.dump({"fields": [{"name": "w", "type": "number", "missingValues": ["", "9"]}],
                           "codebook": {"weight": "w"}}, file)
            dataset = read_dataset(os.path.join(folder, "d.csv"), os.path.join(folder, "d.schema.json"))
        self.assertEqual(dataset.weights, [Fraction(5, 2), 0, 0, 0, 0])


class Comparison(unittest.TestCase):
    """The comparison can fail."""

    def found(self, expected, got):
        return [place for place, _ in differences(expected, got)]

    def test_equalReportsDoNotDiffer(self):
        report, _ = report_for(dataset_of(numeric("a", [1., 2.])), "CODEBOOK")
        self.assertEqual(self.found(report, json.loads(json.dumps(report))), [])

    def test_everyChangeIsSeen(self):
        cell = {"column": "Count", "text": "1", "number": 1.0, "format": "F"}
        for key, value in (("column", "Value"), ("text", "2"), ("number", 1.0000000000000002), ("number", None),
                           ("format", "F.1")):
            self.assertEqual(self.found([cell], [{**cell, key: value}]), [f"[0].{key}"])
        self.assertEqual(self.found([cell], []), [""])
        self.assertEqual(self.found([], [cell]), [""])
        self.assertEqual(self.found({"fixed": True}, {"fixed": 1}), [".fixed"])
        self.assertEqual(self.found({"a": 1}, {"b": 1}), [".a", ".b"])

    def test_onlyAPercentMayDifferByOneUnitInTheLastPlace(self):
        cell = {"column": "Percent", "number": 50.0}
        one, two = 50.0 + math.ulp(50.0), 50.0 + 2 * math.ulp(50.0)
        self.assertEqual(self.found(cell, {**cell, "number": one}), [])
        self.assertEqual(self.found(cell, {**cell, "number": two}), [".number"])
        self.assertEqual(self.found({**cell, "column": "Count"}, {**cell, "column": "Count", "number": one}), [".number"])

    def test_messagesAreCountedAndOnlyThoseOfReadingTheDataLetPass(self):
        expected = [{"severity": "error", "source": "command", "text": None}]
        same = [{"severity": "warning", "source": "data", "text": "x"}, {"severity": "error", "source": "command", "text": "y"}]
        self.assertEqual(list(message_differences(expected, same)), [])
        self.assertEqual(len(list(message_differences(expected, same[:1]))), 1)
        self.assertEqual(len(list(message_differences(expected, [{**same[1], "severity": "warning"}]))), 1)

    def test_generatedCasesAreTheSameForTheSameSeed(self):
        for number in range(20):
            one, other = make_case(3, number), make_case(3, number)
            self.assertEqual((one.files, one.command, one.weight), (other.files, other.command, other.weight))
        self.assertNotEqual(make_case(3, 0).files, make_case(4, 0).files)


if __name__ == "__main__":
    unittest.main()
