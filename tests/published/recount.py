#!/usr/bin/env python3
"""Counts the published files anew and compares with every number and label of a report.

Reads only the raw files (Python's csv module) and the published dictionaries, and counts in the plainest way: a dictionary of
values, fractions of whole numbers, sorted lists. Prints what differs, and how many facts were compared."""

import argparse
import csv
import gzip
import json
import math
import os
import re
import subprocess
import sys
from fractions import Fraction

from datasets import DATASETS, PROJECT
from dictionaries import MISSING, Variable, inferred_kind, read_dictionary

MAXCATS = 200
FEW_VALUES = 24


def read_columns(dataset, dictionary):
    """The published names and of each its cells, of all files one behind the other."""
    names, rows = None, []
    for path in dataset.files:
        opened = gzip.open if path.endswith(".gz") else open
        with opened(os.path.join(PROJECT, path), "rt", encoding=dataset.encoding, newline="") as file:
            header, *body = csv.reader(file, delimiter=dataset.separator)
        if dataset.header_rows > 1:
            header, body = list(dictionary.variables), body[dataset.header_rows - 1:]
        if names is not None and names != header:
            raise ValueError(f"{path} has other columns")
        names = header
        rows += body
    return names, {name: [row[k] for row in rows] for k, name in enumerate(names)}, len(rows)


def shown_names(names):
    """Of each name in the report the published one. Names that differ only in case get a number behind."""
    shown = {}
    for name in names:
        valid = re.sub(r"[^\w.$#@]+", "_", name)
        earlier = sum(valid.lower() == re.sub(r"[^\w.$#@]+", "_", other).lower() for other in shown.values())
        shown[f"{valid}_{earlier + 1}" if earlier else valid] = name
    return shown


def nested(items, path=()):
    """(the names of the groups, category, cells) of each row of a table."""
    for item in items:
        if "group" in item:
            yield from nested(item["items"], path + (item["group"]["text"],))
        else:
            yield path, item["category"], item["cells"]


class Recount:
    def __init__(self, dataset, report):
        """`report` is the text of the JSON report."""
        self.dataset = dataset
        self.report = json.loads(report)
        self.faults = []
        self.compared = 0
        self.dictionary = read_dictionary(dataset.dictionary, dataset.resource)
        names, self.columns, self.cases = read_columns(dataset, self.dictionary)
        self.names = shown_names(names)
        self.weights = [Fraction(1)] * self.cases
        if self.dictionary.weight:
            self.weights = [Fraction(cell) for cell in self.columns[self.dictionary.weight]]
        self.total = sum(self.weights)
        self.hidden = []

    def same(self, what, expected, got):
        self.compared += 1
        if isinstance(expected, (Fraction, float)) and isinstance(got, (int, float)):
            # Rounding to the nearest double may differ in the last place; no more.
            if math.isclose(float(expected), got, rel_tol=1e-14, abs_tol=0):
                return
        elif expected == got:
            return
        if isinstance(expected, Fraction):
            expected = float(expected)
        self.faults.append(f"{self.dataset.name}: {what}: recounted {expected!r}, the report has {got!r}")

    def run(self):
        tables = [table for procedure in self.report["procedures"] for table in procedure["tables"]]
        seen = []
        for table in tables:
            title = table["title"]["text"]
            rows = list(nested(table["dimensions"][0]["items"]))
            if table["title"]["fixed"]:
                self.file_information(rows)
                continue
            seen.append(title)
            if title.startswith("$"):
                self.multiple_response(title, rows)
            else:
                self.variable(title, rows)
        self.same("variables and sets", sorted(list(self.names) + list(self.dictionary.sets)), sorted(seen))
        warned = [m["text"] for m in self.report["messages"] if m["text"].startswith("Value labels, counts, and/or percents not")]
        listed = warned[0].rstrip(".").split(" for ")[1].split(",") if warned else []
        self.same("items past MAXCATS in the warning", self.hidden, listed)
        return self.faults

    def file_information(self, rows):
        facts = {(*path, category["text"]): cells for path, category, cells in rows}
        self.same("unweighted cases", float(self.cases), facts["Number of Cases", "Unweighted"][0]["number"])
        self.same("weighted cases", self.total, facts["Number of Cases", "Weighted"][0]["number"])
        self.same("weight variable", self.dictionary.weight or "<none>", facts["Weight Variable",][0]["text"])
        self.same("file label", self.dictionary.title or "<none>", facts["Label",][0]["text"])

    def described(self, title):
        name = self.names[title]
        cells = self.columns[name]
        variable = self.dictionary.variables.get(name) or Variable(name, inferred_kind(cells))
        if variable.label is None and name != title:
            variable.label = name
        return variable, [variable.read(cell) for cell in cells]

    def level(self, variable, values):
        if variable.level:
            return variable.level
        if variable.kind in ("string", "boolean"):
            return "Nominal"
        if variable.kind == "datetime":
            return "Scale"
        different = {value for value in values if value is not MISSING}
        few = len(different) <= FEW_VALUES and all(value == int(value) for value in different)
        return "Nominal" if few else "Scale"

    def variable(self, title, rows):
        variable, values = self.described(title)
        level = self.level(variable, values)
        facts = {(*path, category["text"]): cells[0]["text"] for path, category, cells in rows if path and cells}
        standard = {
            "Label": variable.label or "<none>",
            "Type": "String" if variable.kind == "string" else "Numeric",
            "Measurement": level,
            "Role": variable.role,
        }
        for fact, expected in standard.items():
            self.same(f"{title}: {fact}", expected, facts.get(("Standard Attributes", fact)))
        if variable.description:
            self.same(f"{title}: Description", variable.description, facts.get(("Custom Attributes", "Description")))
        if level == "Scale":
            self.scale(title, variable, values, rows)
        else:
            self.categorical(title, variable, values, rows)

    def categorical(self, title, variable, values, rows):
        """Valid Values and Missing Values: which values, in which order, with which label, count and percent."""
        missing_codes = variable.missing_codes()
        weight_of = {}
        for value, weight in zip(values, self.weights):
            weight_of[value] = weight_of.get(value, 0) + weight
        system = weight_of.pop(MISSING, 0)
        if len(weight_of) > MAXCATS:
            self.hidden.append(title)
            weight_of = {}
        if not weight_of:  # a list without a single value is not shown, and System not by itself
            system = 0
        in_order = sorted(weight_of, key=lambda v: v.encode() if isinstance(v, str) else v)
        expected = [("Valid Values", v) for v in in_order if v not in missing_codes]
        expected += [("Missing Values", v) for v in in_order if v in missing_codes]
        if system:
            expected.append(("Missing Values", "System"))
        found = [(path[0], category.get("value", category["text"]), cells) for path, category, cells in rows
                 if path and path[0] in ("Valid Values", "Missing Values")]
        self.same(f"{title}: values", expected, [(group, value) for group, value, _ in found])
        for group, value, cells in found:
            by_column = {cell["column"]: cell for cell in cells}
            is_system = (group, value) == ("Missing Values", "System") and value not in weight_of
            weight = system if is_system else weight_of.get(value, 0)
            what = f"{title}: {value!r}"
            self.same(f"{what}: label", None if is_system else variable.labels.get(value), by_column.get("Value", {}).get("text"))
            self.count_and_percent(what, weight, by_column)

    def count_and_percent(self, what, weight, by_column):
        count, percent = by_column["Count"], by_column["Percent"]
        share = 100 * weight / self.total
        self.same(f"{what}: count", Fraction(weight), count["number"])
        self.same(f"{what}: percent", Fraction(share), percent["number"])
        self.same(f"{what}: count as shown", rounded(weight, 0), count["text"])
        self.same(f"{what}: percent as shown", rounded(share, 1) + "%", percent["text"])

    def scale(self, title, variable, values, rows):
        numbers = {category["text"]: cells[0]["number"] for path, category, cells in rows
                   if path and path[0] in ("N", "Central Tendency and Dispersion")}
        missing_codes = variable.missing_codes()
        valid = [(Fraction(value), weight) for value, weight in zip(values, self.weights)
                 if value is not MISSING and value not in missing_codes]
        size = sum((weight for _, weight in valid), Fraction(0))
        self.same(f"{title}: valid", size, numbers["Valid"])
        self.same(f"{title}: missing", self.total - size, numbers["Missing"])
        mean = sum(x * w for x, w in valid) / size if size else None
        self.same(f"{title}: mean", mean, numbers.get("Mean"))
        deviation = None
        if size > 1:
            deviation = math.sqrt(sum(w * (x - mean)**2 for x, w in valid) / (size - 1))
        self.same(f"{title}: standard deviation", deviation, numbers.get("Standard Deviation"))
        for percent in (25, 50, 75):
            self.same(f"{title}: percentile {percent}", percentile(valid, Fraction(percent, 100)), numbers.get(f"Percentile {percent}"))

    def multiple_response(self, title, rows):
        """A set of "choose all that apply": of each member the people who have the counted value."""
        label, members, counted = self.dictionary.sets[title]
        texts = {category["text"]: cells[0]["text"] for path, category, cells in rows if path == ("Standard Attributes",)}
        self.same(f"{title}: Label", label, texts["Label"])
        found = [(category["text"], cells) for path, category, cells in rows if path == ("Multiple Response Categories",)]
        if counted is None:
            self.category_set(title, members, found)
            return
        self.same(f"{title}: members", members, [name for name, _ in found])
        for name, cells in found:
            by_column = {cell["column"]: cell for cell in cells}
            variable, values = self.described(name)
            weight = sum((w for value, w in zip(values, self.weights) if value == counted), Fraction(0))
            self.same(f"{title}: {name}: label", variable.label, by_column["Value"]["text"])
            self.count_and_percent(f"{title}: {name}", weight, by_column)


    def category_set(self, title, members, found):
        """A set of answers: of each answer the people who gave it, in whichever member."""
        weight_of = {}
        described = [self.described(name) for name in members]
        for row, weight in enumerate(self.weights):
            answers = {values[row] for variable, values in described
                       if values[row] is not MISSING and values[row] not in variable.missing_codes()}
            for answer in answers:
                weight_of[answer] = weight_of.get(answer, 0) + weight
        self.same(f"{title}: answers", sorted(weight_of), [answer for answer, _ in found])
        for answer, cells in found:
            self.count_and_percent(f"{title}: {answer}", weight_of[answer], {cell["column"]: cell for cell in cells})


def rounded(exact, places):
    """With so many places, halves away from zero."""
    scaled = int(exact * 10**places + Fraction(1, 2))
    return f"{scaled // 10**places}.{scaled % 10**places}" if places else str(scaled)


def percentile(valid, share):
    """Weighted average at (W + 1) p: the value at that place of the cumulated weights, or between its neighbours."""
    weight_of = {}
    for value, weight in valid:
        weight_of[value] = weight_of.get(value, 0) + weight
    if not weight_of:
        return None
    place = (sum(weight_of.values()) + 1) * share
    below, reached = None, Fraction(0)
    for value in sorted(weight_of):
        if reached + weight_of[value] > place:
            break
        reached += weight_of[value]
        below = value
    else:
        return below
    if below is None:
        return value
    way = (place - reached) / min(weight_of[value], 1)
    return below + (value - below) * min(way, 1) if place - reached < 1 else value


def json_report(program, dataset):
    """What the program writes with -F json."""
    command = [os.path.abspath(program), *dataset.arguments, "-F", "json", "-c", dataset.command]
    done = subprocess.run(command, cwd=PROJECT, stdin=subprocess.DEVNULL, capture_output=True, timeout=120, check=False)
    if done.returncode != 0:
        raise RuntimeError(f"{dataset.name}: status {done.returncode}\n{done.stderr.decode()}")
    return done.stdout


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--program", required=True, help="the program whose reports are compared")
    parser.add_argument("name", nargs="*", help="names of datasets (otherwise all)")
    arguments = parser.parse_args()
    failed = False
    for dataset in DATASETS:
        if arguments.name and dataset.name not in arguments.name:
            continue
        recount = Recount(dataset, json_report(arguments.program, dataset))
        for fault in recount.run():
            failed = True
            print(fault)
        print(f"{dataset.name}: {recount.compared} facts compared, {len(recount.faults)} differ")
    sys.exit(1 if failed else 0)


if __name__ == "__main__":
    main()
