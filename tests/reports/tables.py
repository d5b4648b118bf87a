"""What a JSON report says, laid out as rows and columns: what the files of the other formats are compared with.

Written from docs/reference alone, so that it shares no thought with the program."""

import dataclasses


@dataclasses.dataclass
class Row:
    """A row of a table: the groups around it, the outermost first (content and identity), its label, its cells."""

    groups: list
    label: dict
    cells: list

    def group_texts(self):
        return [group["text"] for _, group in self.groups]

    def cells_of(self, column):
        """The cells that stand in a column, given by its position in the table's columns."""
        return [cell for position, cell in self.cells if position == column]


@dataclasses.dataclass
class Table:
    title: dict
    subtype: dict
    rows_label: str
    columns: list  # pairs of group texts and label (None: the rows' own cells)
    rows: list
    depth: int  # greatest number of groups around a row

    def shown_columns(self):
        """Positions of the columns with a cell; the first one where none has."""
        used = sorted({position for row in self.rows for position, _ in row.cells})
        return used or ([0] if self.columns else [])


def unrolled(items, groups=()):
    """The categories of a dimension with the groups around them; groups without categories leave no trace."""
    for item in items:
        if "group" in item:
            yield from unrolled(item["items"], (*groups, (id(item), item["group"])))
        else:
            yield list(groups), item


def table_of(table):
    rows = []
    columns = []
    rows_label = None
    for dimension in table["dimensions"]:
        if dimension["place"] == "rows":
            rows += unrolled(dimension["items"])
            rows_label = dimension["label"]["text"] if rows_label is None else rows_label
        else:
            columns += [([group["text"] for _, group in groups], item["category"]) for groups, item in unrolled(dimension["items"])]
    if any(cell["column"] is None for _, item in rows for cell in item["cells"]):
        columns.insert(0, ([], None))

    position = {None if label is None else label["text"]: number for number, (_, label) in enumerate(columns)}
    if len(position) != len(columns):
        raise ValueError("two columns of a table have the same name, so that its cells cannot be told apart")
    laid = [Row(groups, item["category"], [(position[cell["column"]], cell) for cell in item["cells"]]) for groups, item in rows]
    depth = max((len(row.groups) for row in laid), default=0)
    return Table(table["title"], table["subtype"], rows_label or "", columns, laid, depth)


def procedures_of(report):
    """Pairs of a procedure's title and its tables."""
    return [(procedure["title"], [table_of(table) for table in procedure["tables"]]) for procedure in report["procedures"]]


def notes_of(report):
    """Pairs of name and text of the method notes."""
    return [(note["name"], note["text"]) for note in report.get("facts", {}).get("notes", [])]


def is_numeric(content):
    return "number" in content or ("value" in content and not isinstance(content["value"], str))
