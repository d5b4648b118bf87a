"""Random tables of some thousand rows, with everything that makes counting in a database another thing than reading a file:
columns of few and of many values, numbers of all sizes, weights that no double sums, codes of missing values, sets."""

import datetime
import json
import random

import loading

WORDS = ["low", "high", "Yes", "no", "Müller, A.", "it's", 'a "b"', "Süd", "^1 and ^2", "42", "零", "A", "a", "x ", "x", ""]
WEIGHTS = {
    "ones": lambda numbers: "1",
    "halves": lambda numbers: numbers.choice(["0.5", "1", "1.5", "2"]),
    "tenths": lambda numbers: numbers.choice(["0.1", "0.2", "0.7", "1.3"]),
    "some": lambda numbers: numbers.choice(["0", "-1", "", "2", "0.25"]),
    "many": lambda numbers: shortest(numbers.random() * 3),
    "wide": lambda numbers: shortest(numbers.random() * 10.0 ** numbers.randrange(-12, 12)),
    "wild": lambda numbers: shortest(numbers.random() * 10.0 ** numbers.randrange(-200, 200)),
    "whole": lambda numbers: str(numbers.randrange(1, 5000)),
    "none": lambda numbers: numbers.choice(["0", ""]),
}


def shortest(number):
    """As databases write a double: without a point when there is nothing behind it."""
    return repr(number).removesuffix(".0")


def uniform(numbers, count, make):
    """A maker of cells from as many values, some of which may be equal."""
    domain = [make() for _ in range(count)]
    return lambda: numbers.choice(domain)


class LargeTable:
    """`table` with the cells, `dictionary` for it, `command`."""

    def __init__(self, seed, number, times=1):
        """`times` as many rows."""
        self.numbers = numbers = random.Random(f"large:{seed}:{number}")
        self.name = f"large {number}"
        self.row_count = numbers.choice([4997, 4998, 4999, 5001, 7000, 12000]) * times
        self.fields, self.columns, self.types = [], [], []
        makers = [self.few_integers, self.many_integers, self.huge_integers, self.prices, self.doubles, self.wild_doubles, self.few_texts,
                  self.many_texts, self.dates, self.moments, self.times, self.booleans, self.constant, self.sparse, self.edge, self.late]
        for make in numbers.sample(makers, numbers.randrange(5, 11)):
            make()
        own = {}
        if numbers.random() < 0.7:
            self.weight_kind = numbers.choice(list(WEIGHTS))
            maker = WEIGHTS[self.weight_kind]
            if self.weight_kind in ("many", "wide", "wild") and numbers.random() < 0.5:
                maker_of_few = uniform(numbers, 30, lambda: WEIGHTS[self.weight_kind](numbers))
                self.add("wt", "number", maker_of_few, "number")
            else:
                self.add("wt", "integer" if self.weight_kind == "whole" else "number", lambda: maker(numbers),
                         "integer" if self.weight_kind in ("whole", "ones") else "number")
            own["weight"] = "wt"
        sets = self.sets()
        if sets:
            own["multipleResponseSets"] = sets
        self.schema = {"fields": self.fields, **({"codebook": own} if own else {})}
        self.command = self.make_command()

    def table(self):
        rows = [[field["name"] for field in self.fields], *map(list, zip(*self.columns))]
        # A value that is first met in the last row escapes the check for too many values; rows of tables have no order.
        rows += rows[1:2] * 2
        return loading.Table(self.name, rows, self.types)

    def dictionary(self):
        return json.dumps(self.schema, ensure_ascii=False, indent=1)

    def add(self, name, kind, maker, type_, **more):
        blank = self.numbers.choice([0, 0, 0, 0.02, 0.4])
        missing = more.pop("missing", None)
        field = {"name": name, "type": kind, **more}
        if missing is not None:
            field["missingValues"] = missing
        self.fields.append(field)
        self.types.append(type_)
        self.columns.append(["" if self.numbers.random() < blank else maker() for _ in range(self.row_count)])

    def own(self, measure=True):
        own = {}
        if measure and self.numbers.random() < 0.6:
            own["measure"] = self.numbers.choice(["nominal", "ordinal", "scale", "scale"])
        if self.numbers.random() < 0.3:
            own["missingRanges"] = [self.numbers.choice([{"min": 8}, {"max": -1}, {"min": 2, "max": 3.5}, {"min": 90, "max": 1e9}])]
        return {"codebook": own} if own else {}

    def codes(self):
        return self.numbers.choice([None, ["", "9"], ["", "-99", "3"], [""], ["", {"value": "7", "label": "Refused"}]][:4])

    # Columns.

    def few_integers(self):
        domain = self.numbers.choice([[1, 2], [1, 2, 3, 9], range(11), range(-3, 4), range(24), range(25), [10**12, 10**15 + 1, 7]])
        labels = {"categories": [{"value": v, "label": f"Label {v}"} for v in list(domain)[:5]]} if self.numbers.random() < 0.5 else {}
        self.add("few", "integer", lambda: str(self.numbers.choice(domain)), "integer", missing=self.codes(), **labels, **self.own())

    def many_integers(self):
        self.add("many", "integer", lambda: str(self.numbers.randrange(-50000, 50000)), "integer", missing=self.codes(), **self.own())

    def huge_integers(self):
        self.add("huge", "integer", lambda: str(self.numbers.randrange(2**53 - 3000, 2**53)), "integer", **self.own())

    def prices(self):
        self.add("price", "number", lambda: f"{self.numbers.randrange(-20000, 90000) / 100:.2f}".replace("-0.00", "0.00"), ("decimal", 2),
                 missing=self.codes(), **self.own())

    def doubles(self):
        self.add("x", "number", lambda: shortest(round(self.numbers.gauss(10, 25), self.numbers.randrange(1, 12))), "number", missing=self.codes(), **self.own())

    def wild_doubles(self):
        span = self.numbers.choice([3, 12, 40, 150, 300])
        self.add("wild", "number", lambda: shortest(self.numbers.choice([-1, 1, 1]) * self.numbers.random() * 10.0 ** self.numbers.randrange(-span, span)), "number", **self.own())

    def few_texts(self):
        self.add("word", "string", lambda: self.numbers.choice(WORDS), loading.TEXT, missing=self.numbers.choice([None, ["", "no"], ["42"]]))

    def many_texts(self):
        self.add("key", "string", lambda: f"{self.numbers.choice('abü')}{self.numbers.randrange(100000)}" + " " * self.numbers.randrange(2), loading.TEXT)

    def dates(self):
        days = self.numbers.choice([5, 300, 40000])
        first = datetime.date(1900, 1, 1)
        self.add("day", "date", lambda: (first + datetime.timedelta(self.numbers.randrange(days))).isoformat(), "date")

    def moments(self):
        first = datetime.datetime(1999, 12, 31)
        self.add("at", "datetime", lambda: (first + datetime.timedelta(seconds=self.numbers.randrange(10**8))).isoformat(), "datetime")

    def times(self):
        self.add("hour", "time", lambda: f"{self.numbers.randrange(24):02d}:{self.numbers.randrange(60):02d}:00", "time")

    def booleans(self):
        self.add("on", "boolean", lambda: self.numbers.choice(["true", "false"]), "boolean")

    def constant(self):
        self.add("same", "number", lambda: "3.25", "number", **self.own())

    def sparse(self):
        """A value in a few rows only, and those far behind."""
        count = self.row_count
        self.add("sparse", "integer", lambda: "", "integer", **self.own())
        for row in range(count - 5, count):
            self.columns[-1][row] = str(row % 3)

    def late(self):
        """Few values in the first rows, many behind them."""
        self.add("late", "number", lambda: "1", "number", **self.own())
        for row in range(min(5000, self.row_count), self.row_count):
            self.columns[-1][row] = shortest(row / 8)
        self.add("latetext", "string", lambda: "same", loading.TEXT)
        for row in range(min(4990, self.row_count), self.row_count):
            self.columns[-1][row] = f"row {row}"

    def edge(self):
        """About as many values as MAXCATS allows."""
        count = self.numbers.choice([199, 200, 201, 202])
        kind = self.numbers.choice(["integer", "string"])
        make = uniform(self.numbers, count, iter(map(str, range(count))).__next__)
        self.add("edge", kind, make, "integer" if kind == "integer" else loading.TEXT)

    # Sets and commands.

    def sets(self):
        numbers = self.numbers
        numeric = [f["name"] for f in self.fields if f["type"] in ("integer", "number", "boolean")]
        found = []
        if numeric and numbers.random() < 0.6:
            for name in numbers.sample(["$a", "$b"], numbers.randrange(1, 3)):
                entry = {"name": name, "type": numbers.choice(["category", "dichotomy"]), "variables": numbers.sample(numeric, numbers.randrange(1, min(3, len(numeric)) + 1))}
                if entry["type"] == "dichotomy":
                    entry["countedValue"] = numbers.choice(["1", "2", "3.25"])
                found.append(entry)
        return found

    def make_command(self):
        numbers = self.numbers
        text = "CODEBOOK"
        if numbers.random() < 0.3:
            text += " ALL" + numbers.choice(["", "[N]", "[S]", "[O]"]) + (" $ALL" if "multipleResponseSets" in self.schema.get("codebook", {}) else "")
        statistics = numbers.sample(["COUNT", "PERCENT", "MEAN", "STDDEV", "QUARTILES"], numbers.randrange(1, 6))
        text += " /FILEINFO CASECOUNT WEIGHT /VARINFO POSITION LABEL TYPE FORMAT MEASURE VALUELABELS MISSING"
        text += " /STATISTICS " + " ".join(statistics)
        if numbers.random() < 0.7:
            text += f" /OPTIONS MAXCATS={numbers.choice([1, 3, 10, 150, 200, 201, 1000, 5000, 20000])}"
        return text + "."
