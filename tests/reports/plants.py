"""Small changes of a JSON report, each of which a reader must notice.

A reader names in OVERLOOKS the kinds of change that its format does not show: "messages", "notes", "subtype", "precision" (a
change of a number that its text does not show), "columns" (the name of a column)."""

import copy


class NoPlaceError(Exception):
    """A kind of change cannot be planted, so that nobody knows whether it would be noticed."""


def row_items(items):
    """Places of row categories: the list that holds it and its position."""
    for position, item in enumerate(items):
        if "group" in item:
            yield from row_items(item["items"])
        else:
            yield items, position


def rows_of(table):
    for dimension in table["dimensions"]:
        if dimension["place"] == "rows":
            yield from row_items(dimension["items"])


def tables_of(report):
    return [table for procedure in report["procedures"] for table in procedure["tables"]]


def first_cell(table, fits):
    for items, position in rows_of(table):
        for cell in items[position]["cells"]:
            if fits(cell):
                return cell
    return None


def change_title(report):
    tables_of(report)[-1]["title"]["text"] += "x"


def change_subtype(report):
    tables_of(report)[-1]["subtype"]["text"] += "x"


def change_text(report):
    cell = first_cell(tables_of(report)[-1], lambda cell: "fixed" in cell)
    cell["text"] = cell["text"][:-1] + ("x" if not cell["text"].endswith("x") else "y")


def change_label(report):
    items, position = list(rows_of(tables_of(report)[-1]))[-1]
    items[position]["category"]["text"] += "x"


def change_number(report):
    """The number and what is shown of it."""
    cell = first_cell(tables_of(report)[0], lambda cell: cell.get("number") is not None)
    cell["number"] += 1
    cell["text"] = cell["text"][:-1] + str((int(cell["text"][-1]) + 1) % 10) if cell["text"][-1].isdigit() else "9" + cell["text"]


def change_digit(report):
    cell = first_cell(tables_of(report)[-1], lambda cell: cell.get("number"))
    cell["number"] *= 1 + 2**-50


def drop_row(report):
    items, position = list(rows_of(tables_of(report)[-1]))[-1]
    del items[position]


def swap_rows(report):
    rows = list(rows_of(tables_of(report)[-1]))
    (items, position), (others, other) = next((a, b) for a, b in zip(rows, rows[1:]) if a[0] is b[0])
    items[position], others[other] = others[other], items[position]


def drop_cell(report):
    items, position = next(row for row in rows_of(tables_of(report)[-1]) if row[0][row[1]]["cells"])
    items[position]["cells"].pop()


def move_cell(report):
    """Into another column that has cells too."""
    cells = [cell for items, position in rows_of(tables_of(report)[-1]) for cell in items[position]["cells"]]
    columns = list(dict.fromkeys(cell["column"] for cell in cells))
    cells[-1]["column"] = next(column for column in columns if column != cells[-1]["column"])


def change_group(report):
    for dimension in tables_of(report)[-1]["dimensions"]:
        for item in dimension["items"]:
            if item.get("items"):
                item["group"]["text"] += "x"
                return
    raise StopIteration


def drop_table(report):
    next(procedure for procedure in report["procedures"] if procedure["tables"])["tables"].pop()


def add_table(report):
    procedure = next(procedure for procedure in report["procedures"] if procedure["tables"])
    procedure["tables"].append(procedure["tables"][0])


def change_message(report):
    report["messages"][-1]["text"] += "x"


def drop_message(report):
    report["messages"].pop()


def change_note(report):
    report["facts"]["notes"][-1]["text"] += "x"


def drop_note(report):
    report["facts"]["notes"].pop()


CHANGES = {
    change_title: "title", change_subtype: "subtype", change_text: "text", change_label: "label", change_number: "number", change_digit: "precision", drop_row: "row", swap_rows: "order",
    drop_cell: "cell", move_cell: "columns", change_group: "group", drop_table: "table", add_table: "table", change_message: "messages", drop_message: "messages", change_note: "notes", drop_note: "notes",
}  # fmt: skip


def changed_by(change, report):
    """A copy with the change; None where the report has no place for it."""
    changed = copy.deepcopy(report)
    try:
        change(changed)
    except (IndexError, KeyError, StopIteration, TypeError):
        return None
    return changed


def planted(cases, overlooked, each):
    """For each kind of change, up to `each` of the cases with a report so changed: name of the change, case, report."""
    for change, kind in CHANGES.items():
        if kind in overlooked:
            continue
        found = 0
        for outputs in cases:
            report = outputs.report()
            changed = report and changed_by(change, report)
            if not changed:
                continue
            yield change.__name__, outputs, changed
            found += 1
            if found == each:
                break
        if found == 0:
            raise NoPlaceError(f"none of the cases has a place for {change.__name__}")
