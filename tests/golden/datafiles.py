"""The kinds of data file from which a case is replayed: the same cells, written anew for each."""

import json
import os
import re

DELIMITERS = {"comma": ",", "semicolon": ";", "tab": "\t", "bar": "|"}
ENDINGS = {"comma": "csv", "semicolon": "csv", "tab": "tsv", "bar": "csv", "jsonlines": "jsonl", "parquet": "parquet"}
WITHOUT_DUCKDB = list(DELIMITERS)
ALL = list(ENDINGS)

NUMBER = re.compile(r"-?(0|[1-9][0-9]*)(\.[0-9]+)?\Z")
INTEGER = re.compile(r"-?(0|[1-9][0-9]{0,14})\Z")
DATE = re.compile(r"[0-9]{4}-[0-9]{2}-[0-9]{2}\Z")


def write_data(kind, folder, rows, parquet):
    """Writes `rows` (header first) into the folder and returns the file's path. `parquet` writes Parquet files."""
    path = os.path.join(folder, "data." + ENDINGS[kind])
    if kind == "jsonlines":
        write_json_lines(path, rows)
    elif kind == "parquet":
        write_parquet(path, rows, parquet)
    else:
        write_csv(path, rows, DELIMITERS[kind])
    return path


def write_csv(path, rows, delimiter):
    def cell(text, alone):
        if alone and text == "":
            return '""'  # a row of one empty cell, not an empty line
        if any(mark in text for mark in (delimiter, '"', "\n", "\r")):
            return '"' + text.replace('"', '""') + '"'
        return text

    with open(path, "w", encoding="utf-8", newline="") as file:
        for row in rows:
            file.write(delimiter.join(cell(text, len(row) == 1) for text in row) + "\n")


def column_type(cells):
    """What a database would hold the column as: integer, number, boolean, date, or text."""
    written = [cell for cell in cells if cell != ""]
    for name, pattern in (("integer", INTEGER), ("number", NUMBER), ("date", DATE)):
        if written and all(pattern.match(cell) for cell in written):
            return name
    return "boolean" if written and all(cell in ("true", "false") for cell in written) else "text"


def column_types(rows):
    return [column_type([row[i] for row in rows[1:]]) for i in range(len(rows[0]))]


def write_json_lines(path, rows):
    types = column_types(rows)

    def value(text, type_):
        if type_ in ("integer", "number", "boolean"):
            return text or "null"  # numbers exactly as they are written
        return json.dumps(text, ensure_ascii=False)

    with open(path, "w", encoding="utf-8", newline="") as file:
        for row in rows[1:]:
            members = (f"{json.dumps(name)}: {value(text, type_)}" for name, text, type_ in zip(rows[0], row, types))
            file.write("{" + ", ".join(members) + "}\n")


def write_parquet(path, rows, parquet):
    types = column_types(rows)
    sql = {"integer": "BIGINT", "number": "DOUBLE", "boolean": "BOOLEAN", "date": "DATE", "text": "VARCHAR"}
    cells = [[None if text == "" and type_ != "text" else text for text, type_ in zip(row, types)] for row in rows[1:]]
    parquet.write(path, rows[0], [sql[type_] for type_ in types], cells)
