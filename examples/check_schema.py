#!/usr/bin/env python3
"""Checks that each example's dictionary and data say the same.

    check_schema.py [DATA.csv ...]

Beside every DATA.csv stands DATA.schema.json. Without arguments all CSV files below this script's folder are
checked. Every finding is one line on standard output; the exit status is 1 when there is any, else 0.
"""

import csv
import json
import math
import re
import sys
import unicodedata
from pathlib import Path

FIELD_TYPES = {"integer", "number", "string"}  # all that the examples use
FIELD_PROPERTIES = {
    "name": str,
    "title": str,
    "description": str,
    "type": str,
    "categories": list,
    "categoriesOrdered": bool,
    "missingValues": list,
    "constraints": dict,
    "codebook": dict,
}
SCHEMA_PROPERTIES = {"$schema": str, "title": str, "primaryKey": list, "codebook": dict, "fields": list}
EXTENSION_OF_SCHEMA = {"weight": str, "documents": list, "multipleResponseSets": list}
EXTENSION_OF_FIELD = {"measure": str, "role": str, "format": str}
SET_PROPERTIES = {
    "name": str,
    "label": str,
    "type": str,
    "variables": list,
    "countedValue": str,
    "categoryLabels": str,
}
MEASURES = {"nominal", "ordinal", "scale", "unknown"}
ROLES = {"input", "target", "both", "none", "partition", "split"}
RESERVED_WORDS = {"ALL", "AND", "BY", "EQ", "GE", "GT", "LE", "LT", "NE", "NOT", "OR", "TO", "WITH"}
PROFILE = "https://datapackage.org/profiles/2.0/tableschema.json"


def is_well_formed_name(name):
    if not 1 <= len(name.encode()) <= 64 or name.endswith(".") or name.upper() in RESERVED_WORDS:
        return False
    if not (name[0].isalpha() or name[0] in "@#"):
        return False
    return all(c.isalnum() or c in "._$#@" for c in name[1:])


def text_fault(text):
    """What is wrong with a text that is shown to readers, or None."""
    if not isinstance(text, str):
        return f"is not text: {text!r}"
    if not text.strip():
        return "is empty"
    if text != text.strip() or "  " in text:
        return f"has superfluous blanks: {text!r}"
    if any(unicodedata.category(c) in ("Cc", "Cf", "Co", "Cn", "Zl", "Zp") for c in text):
        return f"has an invisible character: {text!r}"
    return None


def read_number(cell, kind):
    """The cell's number; ValueError where it does not read as the field's type."""
    pattern = r"[+-]?\d+" if kind == "integer" else r"[+-]?(\d+\.?\d*|\.\d+)([eE][+-]?\d+)?"
    if not re.fullmatch(pattern, cell, re.ASCII):
        raise ValueError(cell)
    value = float(cell) if kind == "number" else int(cell)
    if not math.isfinite(value):
        raise ValueError(cell)
    return value


def refuse_repeated_keys(pairs):
    keys = [key for key, _ in pairs]
    repeated = {key for key in keys if keys.count(key) > 1}
    if repeated:
        raise ValueError(f"property given twice: {', '.join(sorted(repeated))}")
    return dict(pairs)


class Check:
    def __init__(self, data_path):
        self.data_path = Path(data_path)
        self.schema_path = self.data_path.with_suffix(".schema.json")
        self.findings = []
        self.columns = {}  # name -> cells
        self.fields = {}  # name -> field descriptor, only those of sound structure

    def report(self, where, what):
        self.findings.append(f"{self.schema_path.name}: {where}: {what}")

    def run(self):
        try:
            schema = json.loads(self.schema_path.read_text(encoding="utf-8"), object_pairs_hook=refuse_repeated_keys)
        except (OSError, ValueError) as error:
            self.report("file", str(error))
            return self.findings
        if not self.has_form(schema, SCHEMA_PROPERTIES, ("fields",), "schema"):
            return self.findings
        if not self.has_form(schema.get("codebook", {}), EXTENSION_OF_SCHEMA, (), "codebook"):
            return self.findings
        if not self.read_data():
            return self.findings
        self.check_schema_texts(schema)
        for position, field in enumerate(schema["fields"], 1):
            self.check_field(field, position)
        self.check_columns(schema)
        for name, field in self.fields.items():
            if name in self.columns:
                self.check_cells(name, field)
        self.check_primary_key(schema.get("primaryKey", []))
        self.check_weight(schema.get("codebook", {}))
        self.check_sets(schema.get("codebook", {}))
        return self.findings

    def has_form(self, thing, allowed, required, where):
        """Whether thing is an object of only the allowed properties, each of its type, and has the required ones."""
        if not isinstance(thing, dict):
            self.report(where, f"is no object: {thing!r}")
            return False
        sound = True
        for key, value in thing.items():
            if key not in allowed:
                self.report(where, f"unknown property {key!r}")
                sound = False
            elif not isinstance(value, allowed[key]):
                self.report(where, f"property {key!r} is not of type {allowed[key].__name__}")
                sound = False
        for key in required:
            if key not in thing:
                self.report(where, f"property {key!r} is missing")
                sound = False
        return sound

    def check_text(self, text, where):
        fault = text_fault(text)
        if fault:
            self.report(where, fault)

    def read_data(self):
        try:
            with open(self.data_path, encoding="utf-8", newline="") as file:
                rows = list(csv.reader(file, strict=True))
        except (OSError, ValueError, csv.Error) as error:
            self.report("data", str(error))
            return False
        if len(rows) < 2:
            self.report("data", "no row of data")
            return False
        header = rows[0]
        if len(set(name.casefold() for name in header)) != len(header):
            self.report("data", "a column name stands twice")
            return False
        for number, row in enumerate(rows[1:], 2):
            if len(row) != len(header):
                self.report("data", f"record {number} has {len(row)} cells, the header {len(header)}")
                return False
        self.columns = dict(zip(header, map(list, zip(*rows[1:]))))
        return True

    def check_schema_texts(self, schema):
        if schema.get("$schema") != PROFILE:
            self.report("$schema", f"is not {PROFILE}")
        self.check_text(schema.get("title"), "title")
        extension = schema.get("codebook", {})
        for number, document in enumerate(extension.get("documents", []), 1):
            for line in document if isinstance(document, list) else [document]:
                self.check_text(line, f"document {number}")

    def check_field(self, field, position):
        name = field.get("name") if isinstance(field, dict) else None
        where = name if isinstance(name, str) and name else f"field {position}"
        if not self.has_form(field, FIELD_PROPERTIES, ("name", "title", "type"), where):
            return
        if not is_well_formed_name(name):
            self.report(where, "is no well-formed name")
        if name.casefold() in (other.casefold() for other in self.fields):
            self.report(where, "stands twice")
            return
        if field["type"] not in FIELD_TYPES:
            self.report(where, f"unknown type {field['type']!r}")
            return
        self.check_text(field["title"], f"{where}, title")
        if "description" in field:
            self.check_text(field["description"], f"{where}, description")
        if "categoriesOrdered" in field and "categories" not in field:
            self.report(where, "categoriesOrdered without categories")
        if not self.check_categories(field, where) or not self.check_missing_values(field, where):
            return
        extension = field.get("codebook", {})
        self.has_form(extension, EXTENSION_OF_FIELD, (), f"{where}, codebook")
        if extension.get("measure", "unknown") not in MEASURES:
            self.report(where, f"unknown measure {extension['measure']!r}")
        if extension.get("role", "input") not in ROLES:
            self.report(where, f"unknown role {extension['role']!r}")
        self.fields[name] = field

    def check_categories(self, field, where):
        if "categories" not in field:
            return True
        categories = field["categories"]
        if field["type"] == "number":
            self.report(where, "a field of type number cannot have categories")
            return False
        if not categories:
            self.report(where, "categories is empty")
            return False
        value_type = int if field["type"] == "integer" else str
        values, labels = [], []
        for category in categories:
            value = category
            if isinstance(category, dict):
                form = {"value": value_type, "label": str}
                if not self.has_form(category, form, ("value", "label"), f"{where}, category"):
                    return False
                value = category["value"]
                labels.append(category["label"])
                self.check_text(category["label"], f"{where}, label of {value!r}")
            if not isinstance(value, value_type) or isinstance(value, bool):
                self.report(where, f"category {value!r} is not of type {field['type']}")
                return False
            values.append(value)
        if labels and len(labels) != len(values):
            self.report(where, "categories with and without a label are mixed")
        self.check_unique(values, f"{where}, category values")
        self.check_unique(labels, f"{where}, category labels")
        return True

    def check_missing_values(self, field, where):
        entries = field.get("missingValues", [])
        for entry in entries:
            if not self.has_form(entry, {"value": str, "label": str}, ("value", "label"), f"{where}, missing value"):
                return False
            self.check_text(entry["label"], f"{where}, label of missing value {entry['value']!r}")
        self.check_unique([entry["value"] for entry in entries], f"{where}, missing values")
        labels = [entry["label"] for entry in entries]
        labels += [category["label"] for category in field.get("categories", []) if isinstance(category, dict)]
        self.check_unique(labels, f"{where}, labels")
        both = missing_codes(field) & {str(value) for value in category_values(field)}
        if both:
            self.report(where, f"both a category and a missing value: {', '.join(sorted(both))}")
        return True

    def check_unique(self, things, where):
        repeated = sorted({str(thing) for thing in things if things.count(thing) > 1})
        if repeated:
            self.report(where, f"not unique: {', '.join(repeated)}")

    def check_columns(self, schema):
        named = [field.get("name") for field in schema["fields"] if isinstance(field, dict)]
        named = [name for name in named if isinstance(name, str)]
        for name in self.columns:
            if name not in named:
                self.report(name, "column without a field")
        for name in named:
            if name not in self.columns:
                self.report(name, "field without a column")
        if sorted(named) == sorted(self.columns) and named != list(self.columns):
            self.report("fields", "do not stand in the order of the columns")

    def check_cells(self, name, field):
        cells = self.columns[name]
        missing = missing_codes(field)
        categories = category_values(field)
        kind = field["type"]
        present = set(cells)
        for code in sorted(missing - present):
            # The empty text is the default of the standard: it may stand where no cell is empty.
            if code:
                self.report(name, f"missing value {code!r} does not occur in the data")
        for cell in sorted(present - missing):
            value = cell
            if kind != "string":
                try:
                    value = read_number(cell, kind)
                except ValueError:
                    self.report(name, f"{cell!r} ({cells.count(cell)} cells) does not read as {kind}")
                    continue
            if categories and value not in categories:
                self.report(name, f"{cell!r} ({cells.count(cell)} cells) is neither category nor missing value")
        if field.get("constraints", {}).get("unique") and len(present) != len(cells):
            self.report(name, "is declared unique, and is not")

    def check_primary_key(self, key):
        unknown = [name for name in key if not isinstance(name, str) or name not in self.columns]
        if unknown:
            self.report("primaryKey", f"no such column: {', '.join(map(str, unknown))}")
        elif key:
            rows = list(zip(*(self.columns[name] for name in key)))
            if len(set(rows)) != len(rows):
                self.report("primaryKey", "does not identify the rows")

    def check_weight(self, extension):
        if "weight" not in extension:
            return
        name = extension["weight"]
        field = self.fields.get(name)
        if field is None or name not in self.columns:
            self.report("weight", f"no such field: {name!r}")
            return
        if field["type"] == "string":
            self.report("weight", f"{name} is a string field")
            return
        missing = missing_codes(field)
        for number, cell in enumerate(self.columns[name], 2):
            try:
                if cell not in missing and read_number(cell, field["type"]) < 0:
                    self.report("weight", f"record {number} has a negative weight: {cell}")
            except ValueError:
                pass  # reported with the cells

    def check_sets(self, extension):
        sets = extension.get("multipleResponseSets", [])
        names = []
        for number, response_set in enumerate(sets, 1):
            where = f"set {number}"
            if not self.has_form(response_set, SET_PROPERTIES, ("name", "label", "type", "variables"), where):
                continue
            where = response_set["name"]
            names.append(where.casefold())
            if not where.startswith("$") or not is_well_formed_name(where[1:]):
                self.report(where, "is no name of a set")
            self.check_text(response_set["label"], f"{where}, label")
            self.check_members(response_set, where)
        self.check_unique(names, "names of sets")

    def check_members(self, response_set, where):
        members = response_set["variables"]
        self.check_unique(members, f"{where}, members")
        if len(members) < 2:
            self.report(where, "has fewer than two members")
        known = self.fields.keys() & self.columns.keys()
        unknown = [name for name in members if not isinstance(name, str) or name not in known]
        if unknown:
            self.report(where, f"no such field: {', '.join(map(str, unknown))}")
            return
        if not members:
            return
        expected = codes(self.fields[members[0]])
        for name in members:
            field = self.fields[name]
            if not category_values(field):
                self.report(where, f"{name} has no categories")
            if codes(field) != expected:
                self.report(where, f"{name} and {members[0]} do not share their codes")
            strangers = set(self.columns[name]) - expected
            if strangers:
                self.report(where, f"{name} holds unexpected codes: {', '.join(sorted(strangers))}")
        if response_set["type"] == "dichotomy":
            self.check_dichotomy(response_set, where)
        elif response_set["type"] != "category":
            self.report(where, f"unknown type {response_set['type']!r}")

    def check_dichotomy(self, response_set, where):
        counted = response_set.get("countedValue")
        if counted is None:
            self.report(where, "has no countedValue")
            return
        if response_set.get("categoryLabels", "variableLabels") not in ("variableLabels", "countedValues"):
            self.report(where, f"unknown categoryLabels {response_set['categoryLabels']!r}")
        for name in response_set["variables"]:
            values = category_values(self.fields[name])
            if len(values) != 2:
                self.report(where, f"{name} has {len(values)} categories, not two")
            if counted not in map(str, values):
                self.report(where, f"counted value {counted} is no category of {name}")
            if counted not in self.columns[name]:
                self.report(where, f"counted value {counted} does not occur in {name}")


def category_values(field):
    return [c["value"] if isinstance(c, dict) else c for c in field.get("categories", [])]


def missing_codes(field):
    if "missingValues" not in field:
        return {""}  # the default of the standard
    return {entry["value"] for entry in field["missingValues"]}


def codes(field):
    return {str(value) for value in category_values(field)} | missing_codes(field)


def main(arguments):
    paths = arguments or sorted(Path(__file__).resolve().parent.glob("*/*.csv"))
    if not paths:
        print("check_schema: no CSV file found")
        return 1
    status = 0
    for path in paths:
        check = Check(path)
        findings = check.run()
        for finding in findings:
            print(finding)
        if findings:
            status = 1
        else:
            cells = sum(map(len, check.columns.values()))
            print(f"{check.schema_path.name}: {len(check.fields)} fields, {cells} cells, no finding")
    return status


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
