"""The report: messages, and tables built top-down in the order in which they are shown."""

import re

from showing import number_text


class Messages:
    def __init__(self):
        self.entries = []

    def add(self, severity, source, text, *arguments):
        filled = re.sub(r"\^([1-5])", lambda m: arguments[int(m[1]) - 1], text)
        self.entries.append({"severity": severity, "source": source, "text": filled})

    def warning(self, text, *arguments):
        self.add("warning", "command", text, *arguments)

    def error(self, text, *arguments):
        self.add("error", "command", text, *arguments)

    def syntax_error(self):
        """Its text is not foretold."""
        self.entries.append({"severity": "error", "source": "command", "text": None})

    def host_warning(self, beginning):
        """Only the beginning of its text is foretold."""
        self.entries.append({"severity": "warning", "source": "host", "text": None, "begins": beginning})


def fixed(text):
    return {"text": text, "fixed": True}


def data(text):
    return {"text": text, "fixed": False}


def number(value, form):
    label = {"text": number_text(value, form), "number": value}
    if form is not None:
        label["format"] = form.report_text()
    return label


def data_value(variable, value):
    text = value if variable.width > 0 else number_text(value, variable.format)
    return {"text": text, "variable": variable.name, "value": value}


def variable_by(variable, show):
    text = variable.name if show == 0 or variable.label is None else variable.label
    return {"text": text, "variable": variable.name, "show": show}


class Group:
    """Rows and groups inside a group or dimension."""

    def __init__(self, table, items):
        self.table = table
        self.items = items

    def group(self, label):
        items = []
        self.items.append({"group": label, "items": items})
        return Group(self.table, items)

    def row(self, label, **cells):
        """One row; the cells by column: value, count, percent, in the order in which they are given, None left out."""
        shown = [{"column": column.capitalize(), **cell} for column, cell in cells.items() if cell is not None]
        return self.row_of_cells(label, shown)

    def row_of_cells(self, label, cells):
        self.items.append({"category": label, "cells": cells})
        self.table.row_count += 1


class Table:
    def __init__(self, title, subtype, flag, with_columns):
        self.row_count = 0
        self.rows = Group(self, [])
        dimensions = [{"label": fixed("Attributes"), "place": "rows", "items": self.rows.items}]
        self.content = {"title": title, "subtype": subtype, "flag": flag, "dimensions": dimensions}
        if with_columns:
            columns = [{"category": fixed(name)} for name in ("Value", "Count", "Percent")]
            dimensions.append({"label": fixed("Values"), "place": "columns", "items": columns})
