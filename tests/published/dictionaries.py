"""Published dictionaries as the recount reads them: only what stands in these documents, in the plainest way.

Shares no code with the program and none with the other tests."""

import json
import os
import re
import xml.etree.ElementTree as ElementTree
from datetime import datetime, timezone

from datasets import PROJECT

MISSING = None  # a cell without a value


class Variable:
    """What a dictionary says of one column. `kind`: number, boolean, datetime, string; or None, when the cells decide."""

    def __init__(self, name, kind):
        self.name = name
        self.kind = kind
        self.label = None
        self.description = None
        self.labels = {}              # of a value (a float or a text) its label
        self.missing_entries = [""]   # as they stand in the file
        self.level = None             # Nominal, Ordinal, Scale; None: the data decide
        self.role = "Input"
        self.date_format = None

    def read(self, cell):
        """The value of a cell: a float, a text, or MISSING."""
        if self.kind == "string":
            return cell.rstrip(" ")
        if self.kind == "boolean":
            return {"true": 1.0, "false": 0.0}.get(cell.lower(), MISSING)
        if self.kind == "datetime":
            return self.read_time(cell)
        return as_number(cell)

    def read_time(self, cell):
        if cell in self.missing_entries:
            return MISSING
        time = datetime.strptime(cell, self.date_format)
        if time.tzinfo is None:
            time = time.replace(tzinfo=timezone.utc)
        return time.timestamp()

    def missing_codes(self):
        """Values that stay values and are declared as missing."""
        if self.kind == "string":
            return set(self.missing_entries)
        return {as_number(entry) for entry in self.missing_entries} - {MISSING}


def as_number(text):
    if not re.fullmatch(r"\s*[-+]?(\d+\.?\d*|\.\d+)([eE][-+]?\d+)?\s*", text):
        return MISSING
    return float(text)


def inferred_kind(cells):
    """Of a column that nobody describes: numbers when every cell that is not empty is one without a leading zero."""
    filled = [cell for cell in cells if cell]
    plain = all(re.fullmatch(r"-?(0|[1-9]\d*)(\.\d+)?([eE][-+]?\d+)?", cell) for cell in filled)
    return "number" if filled and plain else "string"


class Dictionary:
    def __init__(self):
        self.variables = {}  # by the published name
        self.sets = {}       # by name: label, the members' published names, the counted value (None: a category set)
        self.weight = None
        self.title = None


def read_dictionary(path, resource):
    if path.endswith(".xml"):
        return read_ddi(path)
    with open(os.path.join(PROJECT, path), encoding="utf-8") as file:
        document = json.load(file)
    if resource is None:
        return read_table_schema(document, document.get("title"))
    table = next(r for r in document["resources"] if r["name"] == resource)
    schema = table["schema"]
    if isinstance(schema, str):  # an address: a copy of what stands there lies beside the package
        copy = os.path.join(PROJECT, os.path.dirname(path), "schemas", schema.rsplit("/", 1)[1])
        with open(copy, encoding="utf-8") as file:
            schema = json.load(file)
    return read_table_schema(schema, table.get("title") or document.get("title"))


KINDS = {"integer": "number", "number": "number", "boolean": "boolean", "datetime": "datetime", "string": "string"}


def read_table_schema(schema, title):
    dictionary = Dictionary()
    dictionary.title = title
    own = schema.get("codebook", {})
    dictionary.weight = own.get("weight")
    for field in schema["fields"]:
        dictionary.variables[field["name"]] = read_field(field, schema.get("missingValues", [""]))
    for a_set in own.get("multipleResponseSets", []):
        counted = float(a_set["countedValue"]) if a_set["type"] == "dichotomy" else None
        dictionary.sets[a_set["name"]] = (a_set["label"], a_set["variables"], counted)
    return dictionary


def read_field(field, schema_missing):
    variable = Variable(field["name"], KINDS[field["type"]])
    variable.label = field.get("title")
    variable.description = field.get("description")
    variable.date_format = field.get("format")
    text = variable.kind == "string"
    if variable.kind == "boolean":
        variable.labels = {0.0: "false", 1.0: "true"}
    listed = field.get("categories") or field.get("constraints", {}).get("enum")
    for category in field.get("categories", []):
        if isinstance(category, dict) and "label" in category:
            value = category["value"]
            variable.labels[value if text else float(value)] = category["label"]
    variable.missing_entries = []
    for entry in field.get("missingValues", schema_missing):
        entry, label = (entry["value"], entry["label"]) if isinstance(entry, dict) else (entry, None)
        variable.missing_entries.append(entry)
        value = entry if text else as_number(entry)
        if label and value is not MISSING:
            variable.labels.setdefault(value, label)
    own = field.get("codebook", {})
    if own.get("measure"):
        variable.level = own["measure"].capitalize()
    elif listed:
        variable.level = "Ordinal" if field.get("categoriesOrdered") else "Nominal"
    variable.role = own.get("role", "input").capitalize()
    return variable


def read_ddi(path):
    root = ElementTree.parse(os.path.join(PROJECT, path)).getroot()
    space = root.tag[:root.tag.index("}") + 1]
    dictionary = Dictionary()
    dictionary.title = root.findtext(f"{space}stdyDscr/{space}citation/{space}titlStmt/{space}titl")
    for element in root.iter(space + "var"):
        if element.get("name") in dictionary.variables:  # the first file's; persons have some names of the households'
            continue
        dictionary.variables[element.get("name")] = read_ddi_variable(element, space)
    return dictionary


def read_ddi_variable(element, space):
    shape = element.find(space + "varFormat").get("type")
    variable = Variable(element.get("name"), "string" if shape == "character" else "number")
    variable.label = element.findtext(space + "labl") or element.findtext(f"{space}qstn/{space}qstnLit")
    pairs = [(category.findtext(space + "catValu"), category.findtext(space + "labl"))
             for category in element.findall(space + "catgry")]
    pairs = [(code, label) for code, label in pairs if code]
    if pairs and not any(as_number(code) is not MISSING for code, _ in pairs):
        variable.kind = "string"  # codes such as yes and no are no numbers, whatever varFormat says
    for code, label in pairs:
        if label:
            variable.labels[code if variable.kind == "string" else as_number(code)] = label
    if element.get("intrvl") == "contin":
        variable.level = "Scale"
    elif variable.labels:
        variable.level = "Nominal"
    return variable
