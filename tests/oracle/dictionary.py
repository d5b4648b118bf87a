"""A dataset as the program reads it: a CSV file with a Table Schema or a Data Package."""

import csv
import json
import os
import re
from datetime import date, datetime, timezone
from decimal import Decimal
from fractions import Fraction

from showing import Format, parse_format

NUMBER = re.compile(r"[+-]?([0-9]+(\.[0-9]*)?|\.[0-9]+)([eE][+-]?[0-9]+)?")
INTEGER = re.compile(r"[+-]?[0-9]+")
NUMERIC_TYPES = ["integer", "number", "boolean", "year", "date", "datetime", "time", "yearmonth", "duration"]
LEVELS = {"unknown": 0, "nominal": 1, "ordinal": 2, "scale": 3}
ROLES = {"input": 0, "target": 1, "both": 2, "none": 3, "partition": 4, "split": 5}
RESERVED_WORDS = "ALL AND BY EQ GE GT LE LT NE NOT OR TO WITH".split()
PACKAGE_ATTRIBUTES = ["name", "version", "created", "keywords", "homepage", "id"]
SYSTEM_MISSING = None
WIDEST_NUMBER = 40  # of a format that the dictionary does not give


def same_name(a, b):
    """Equality of names and keywords: the same length in bytes, and equal without regard to case."""
    return len(a.encode()) == len(b.encode()) and fold(a) == fold(b)


def fold(text):
    return "".join(c.casefold() if len(c.casefold()) == 1 else c for c in text)


def well_formed(name):
    if not 1 <= len(name.encode()) <= 64 or name.endswith(".") or name.upper() in RESERVED_WORDS:
        return False
    if not (name[0].isalpha() or name[0] in "@#"):
        return False
    return all(c.isalpha() or c.isdigit() or c in "._$#@" for c in name)


def made_well_formed(name):
    """Changes a name as little as possible. Only for names whose sole faults are foreign characters or a digit first."""
    if well_formed(name):
        return name
    changed = ""
    in_run = False
    for c in name:
        foreign = not (c.isalpha() or c.isdigit() or c in "._$#@")
        if not foreign:
            changed += c
        elif not in_run:
            changed += "_"
        in_run = foreign
    if changed[0].isdigit():
        changed = "@" + changed
    return changed


class Variable:
    """`width` is 0 for a numeric variable. `values` holds a double, a text without trailing blanks, or SYSTEM_MISSING
    for each row. `labels` is a list of pairs ordered by value."""

    def __init__(self):
        self.name = ""
        self.label = None
        self.width = 0
        self.format = None
        self.level = 0
        self.role = 0
        self.attributes = []
        self.labels = []
        self.missing_values = []
        self.missing_ranges = []
        self.values = []

    def is_user_missing(self, value):
        if value is SYSTEM_MISSING:
            return False
        if value in self.missing_values:
            return True
        return any(low <= value <= high for low, high in self.missing_ranges)

    def label_of(self, value):
        for labelled, label in self.labels:
            if labelled == value:
                return label
        return None


class ResponseSet:
    def __init__(self, entry):
        self.name = entry["name"]
        self.label = entry.get("label", "")
        self.is_dichotomy = entry["type"] == "dichotomy"
        self.member_names = entry["variables"]
        self.counted_value = entry.get("countedValue", "")


class Dataset:
    def __init__(self):
        self.variables = []
        self.case_count = 0
        self.weight_index = -1
        self.weights = []  # a Fraction a case, 0 for a case that changes no table
        self.sets = []
        self.path = ""
        self.label = None
        self.documents = []
        self.attributes = []

    def find(self, name):
        for i, variable in enumerate(self.variables):
            if fold(variable.name) == fold(name):
                return i
        return -1


def value_order(value):
    """Numbers ascending, strings by bytes."""
    return value.encode() if isinstance(value, str) else value


def read_number(text):
    """The double that the text reads as, else SYSTEM_MISSING (also for what is not finite)."""
    if not NUMBER.fullmatch(text):
        return SYSTEM_MISSING
    value = float(text)
    return value if abs(value) != float("inf") else SYSTEM_MISSING


def read_cell(text, kind):
    """The double that a cell of a numeric type reads as, else SYSTEM_MISSING."""
    if kind in ("integer", "year"):
        return float(text) if INTEGER.fullmatch(text) else SYSTEM_MISSING
    if kind == "number":
        return read_number(text)
    if kind == "boolean":
        return 1.0 if text in ("true", "True", "TRUE", "1") else 0.0 if text in ("false", "False", "FALSE", "0") else None
    try:
        if kind == "date":
            return float((date.fromisoformat(text) - date(1970, 1, 1)).days * 86400)
        if kind == "datetime":
            return datetime.fromisoformat(text).replace(tzinfo=timezone.utc).timestamp()
        if kind == "time":
            hours, minutes, seconds = text.split(":")
            return float(int(hours) * 3600 + int(minutes) * 60 + int(seconds))
    except ValueError:
        return SYSTEM_MISSING
    raise ValueError(f"type {kind} is not read here")


def missing_entries(field, schema):
    """Pairs of text and label (None where there is none)."""
    entries = field.get("missingValues", schema.get("missingValues", [""]))
    return [(e["value"], e.get("label")) if isinstance(e, dict) else (e, None) for e in entries]


def attribute_list(entry):
    return [(name, [value] if isinstance(value, str) else list(value))
            for name, value in entry.get("codebook", {}).get("attributes", {}).items()]


def value_of_label(value, kind):
    """The data value that a label's value stands for."""
    if kind == "string":
        return str(value).rstrip(" ")
    if isinstance(value, bool):
        return 1.0 if value else 0.0
    return read_cell(value, kind) if isinstance(value, str) else float(value)


def value_labels(field, kind, missing):
    found = {}
    for entry in field.get("categories", []):
        if isinstance(entry, dict) and "label" in entry:
            found.setdefault(value_of_label(entry["value"], kind), entry["label"])
    for entry in field.get("codebook", {}).get("valueLabels", []):
        found.setdefault(value_of_label(entry["value"], kind), entry["label"])
    for text, label in missing:
        if label is None:
            continue
        value = text.rstrip(" ") if kind == "string" else read_number(text)
        if value is not SYSTEM_MISSING:
            found.setdefault(value, label)
    if kind == "boolean":
        found.setdefault(0.0, "false")
        found.setdefault(1.0, "true")
    return sorted(found.items(), key=lambda pair: value_order(pair[0]))


def digits_needed(cells):
    return max([len(c.lstrip("+")) for c in cells] + [1])


def default_format(kind, width, cells):
    """`cells` are the texts of the cells that hold a value."""
    if kind == "string":
        return Format("A", width, 0)
    if kind in ("integer", "year"):
        return Format("F", min(digits_needed(cells), WIDEST_NUMBER), 0)
    if kind == "number":
        plain = [format(Decimal(c), "f") for c in cells]
        decimals = min(max([len(c.partition(".")[2]) for c in plain] + [0]), 16)
        whole = max([len(c.partition(".")[0]) for c in plain] + [1])
        return Format("F", min(whole + (decimals + 1 if decimals else 0), WIDEST_NUMBER), decimals)
    return {"boolean": Format("F", 1, 0), "date": Format("SDATE", 10, 0), "datetime": Format("YMDHMS", 19, 0),
            "time": Format("TIME", 8, 0)}[kind]


def measurement_level(field, kind, values):
    own = field.get("codebook", {}).get("measure")
    if own is not None:
        return LEVELS[own]
    if "categories" in field:
        return LEVELS["ordinal"] if field.get("categoriesOrdered") else LEVELS["nominal"]
    if kind in ("string", "boolean"):
        return LEVELS["nominal"]
    if kind not in ("integer", "number", "year"):
        return LEVELS["scale"]
    distinct = {v for v in values if v is not SYSTEM_MISSING}
    whole = all(v == int(v) for v in distinct)
    return LEVELS["nominal"] if whole and len(distinct) <= 24 else LEVELS["scale"]


def read_variable(field, schema, cells):
    own = field.get("codebook", {})
    kind = field["type"]
    missing = missing_entries(field, schema)
    variable = Variable()
    variable.name = made_well_formed(field["name"])
    variable.label = field.get("title")
    if variable.label is None and variable.name != field["name"]:
        variable.label = field["name"]
    shown_cells = []
    if kind == "string":
        variable.missing_values = [text.rstrip(" ") for text, _ in missing]
        variable.values = [text.rstrip(" ") for text in cells]
    else:
        codes = {text: read_number(text) for text, _ in missing}
        variable.missing_values = [v for v in codes.values() if v is not SYSTEM_MISSING]
        for text in cells:
            value = codes[text] if text in codes else read_cell(text, kind)
            variable.values.append(value)
            if value is not SYSTEM_MISSING:
                shown_cells.append(text)
    for entry in own.get("missingRanges", []):
        variable.missing_ranges.append((float(entry.get("min", "-inf")), float(entry.get("max", "inf"))))
    variable.labels = value_labels(field, kind, missing)
    if kind == "string":
        # Nothing is cut: neither a cell nor a value that has a label.
        longest = max([len(text.encode()) for text in variable.values + [value for value, _ in variable.labels]] + [1])
        variable.width = max(longest, field.get("constraints", {}).get("maxLength", 1))
    variable.format = parse_format(own["format"]) if "format" in own else default_format(kind, variable.width, shown_cells)
    variable.level = measurement_level(field, kind, variable.values)
    variable.role = ROLES[own.get("role", "input")]
    variable.attributes = attribute_list(field)
    if "description" in field:
        variable.attributes.append(("Description", [field["description"]]))
    return variable


def read_documents(resource, package):
    own = resource.get("codebook", {})
    if "documents" in own:
        return [d.split("\n") if isinstance(d, str) else list(d) for d in own["documents"]]
    text = resource.get("description", package.get("description"))
    return [] if text is None else [text.split("\n")]


def read_file_attributes(resource, package):
    attributes = attribute_list(resource) + attribute_list(package)
    for name in PACKAGE_ATTRIBUTES:
        if name in package:
            value = package[name]
            attributes.append((name[0].upper() + name[1:], [value] if isinstance(value, str) else list(value)))
    return attributes


def read_dataset(data_path, dictionary_path, weight=None):
    """`weight` names the weight variable in place of the dictionary's; the empty text switches weighting off."""
    with open(dictionary_path, encoding="utf-8") as file:
        descriptor = json.load(file)
    with open(data_path, encoding="utf-8", newline="") as file:
        rows = list(csv.reader(file, strict=True))
    package, resource, schema = {}, {}, descriptor
    if "resources" in descriptor:
        package = descriptor
        resource = descriptor["resources"][0]
        schema = resource["schema"]
    own = schema.get("codebook", {})
    header, records = rows[0], rows[1:]

    dataset = Dataset()
    dataset.path = os.path.abspath(data_path)
    dataset.case_count = len(records)
    # The variables stand in the order of the columns.
    for field in sorted(schema["fields"], key=lambda f: header.index(f["name"])):
        column = header.index(field["name"])
        dataset.variables.append(read_variable(field, schema, [record[column] for record in records]))
    weight_name = own.get("weight", "") if weight is None else weight
    if weight_name:
        dataset.weight_index = dataset.find(weight_name)
    dataset.weights = [case_weight(dataset, row) for row in range(dataset.case_count)]
    dataset.sets = [ResponseSet(entry) for entry in own.get("multipleResponseSets", [])]
    dataset.label = resource.get("title", package.get("title"))
    dataset.documents = read_documents(resource, package)
    dataset.attributes = read_file_attributes(resource, package)
    return dataset


def case_weight(dataset, row):
    if dataset.weight_index < 0:
        return Fraction(1)
    variable = dataset.variables[dataset.weight_index]
    value = variable.values[row]
    if value is SYSTEM_MISSING or variable.is_user_missing(value) or value <= 0:
        return Fraction(0)
    return Fraction(value)
