"""The tidy CSV, read by Python's csv."""

import csv
import io
import json
import math

from characters import is_control, shown
from tables import is_numeric, notes_of, procedures_of

HEADER = ["kind", "procedure", "table_number", "table", "title", "variable", "row_number", "section", "row", "value", "label", "count", "percent", "text", "number", "column"]
FORMULA = ("=", "+", "-", "@", "\t", "\r", "\n", "\uff1d", "\uff0b", "\uff0d", "\uff20")
NUMBERS = ("count", "percent", "number")


def armed(text):
    """The text that a cell stands for: without the apostrophe that keeps a spreadsheet from computing it."""
    return text[1:] if text.startswith("'") and text.lstrip("'").startswith(FORMULA) else text


class Exact(str):
    """A text that no apostrophe is put in front of: that of a number."""


def visible(text):
    """The text with control characters as escapes, but for tabs and line ends."""
    return "\r\n".join(shown(part, is_control) for part in text.split("\r\n"))


def field(content):
    return Exact(content["text"]) if is_numeric(content) else visible(content["text"])


def number_of(content):
    if content is None:
        return None
    return content.get("number", content.get("value")) if is_numeric(content) else None


def value_of(label):
    if "value" not in label:
        return ""
    return visible(label["value"]) if isinstance(label["value"], str) else label["value"]


def line(identity, label, main=None, count=None, percent=None, column=""):
    is_labelled = "variable" in label
    text = "" if main is None else field(main)
    return {**identity, "label": text if is_labelled else "", "text": "" if is_labelled else text,
            "count": number_of(count), "percent": number_of(percent), "number": number_of(main), "column": column}  # fmt: skip


def expected_lines(report):
    number = 0
    for procedure, tables in procedures_of(report):
        for table in tables:
            number += 1
            identity = {"procedure": visible(procedure), "table_number": str(number), "table": field(table.subtype), "title": field(table.title),
                        "variable": "" if table.title.get("fixed") else field(table.title)}  # fmt: skip
            if not table.rows:
                yield {**blank(), "kind": "table", **identity}
            for position, row in enumerate(table.rows, 1):
                yield from row_lines(table, row, {**identity, "row_number": str(position)})
    for name, text in notes_of(report):
        yield {**blank(), "kind": "note", "row": visible(name), "text": visible(text)}
    for message in report["messages"]:
        yield {**blank(), "kind": "message", "section": message["severity"], "row": message["source"], "text": visible(message["text"])}


def blank():
    return {name: None if name in NUMBERS else "" for name in HEADER}


def row_lines(table, row, identity):
    label = row.label
    identity = {**identity, "kind": "value" if "value" in label else "member" if "variable" in label else "row",
                "section": visible(" > ".join(row.group_texts())), "row": field(label), "value": value_of(label)}  # fmt: skip
    shared = {}
    own = []
    for position, cell in row.cells:
        groups, column = table.columns[position]
        name = "Value" if column is None else column["text"] if column.get("fixed") and not groups else None
        fits = name == "Value" or (name in ("Count", "Percent") and cell.get("number") is not None)
        if fits and name not in shared:
            shared[name] = cell
        else:
            own.append((cell, "" if name == "Value" else visible(" > ".join([*groups, column["text"]]))))
    if shared or not own:
        yield line(identity, label, shared.get("Value"), shared.get("Count"), shared.get("Percent"))
    for cell, column in own:
        yield line(identity, label, cell, column=column)


def same_number(text, number):
    """Whether the cell reads back as the number, and is its shortest form."""
    if number is None:
        return text == ""
    if text == "":
        return False
    read = float(text)
    return read == number and math.copysign(1, read) == math.copysign(1, number) and len(text) <= max(len(repr(float(number))), len(str(number)))


def same(name, got, wanted):
    if name in NUMBERS or (name == "value" and not isinstance(wanted, str)):
        return same_number(got, wanted)
    if isinstance(wanted, Exact):
        return got == wanted
    return armed(got) == wanted and not got.startswith(FORMULA)


def differences(report, outputs):
    text = outputs.text("csv")
    if "\r\n" in text.split("\n", 1)[0] or not text.endswith("\n"):
        yield "lines do not end with LF"
    rows = list(csv.reader(io.StringIO(text, newline=""), strict=True))
    if rows[0] != HEADER:
        yield f"the header is {rows[0]}"
        return
    if any(len(row) != len(HEADER) for row in rows):
        yield "a line does not have as many fields as the header"
        return
    expected = list(expected_lines(report))
    if len(rows) - 1 != len(expected):
        yield f"{len(rows) - 1} lines instead of {len(expected)}"
        return
    for number, (row, wanted) in enumerate(zip(rows[1:], expected), 2):
        for name, got in zip(HEADER, row):
            if not same(name, got, wanted[name]):
                yield f"line {number}, {name}: {got!r} instead of {json.dumps(wanted[name])}"
