"""The workbook, read by openpyxl: the sheet of all tables cell by cell, and the index, variables and values drawn from them."""

import decimal
import math
import re
from decimal import ROUND_HALF_UP, Decimal

import openpyxl

from tables import is_numeric, notes_of, procedures_of

OVERLOOKS = ("subtype",)  # which kind a table is, no reader of a workbook is told
LONGEST = 32767
CUT = " … [cut]"
decimal.getcontext().prec = 700  # more digits than any double has
decimal.getcontext().rounding = ROUND_HALF_UP
GREATEST = 9.99999999999999e307  # a greater number is a text
SEVERITIES = {"warning": "Warning", "error": "Error"}
SEPARATOR = " / "

SIMPLE = {"F", "P", "PK", "IB", "PIB", "Z"}
GROUPED = {"COMMA", "DOT", "CCA", "CCB", "CCC", "CCD", "CCE"}
NEVER_NUMBERS = {"DATE", "ADATE", "EDATE", "SDATE", "JDATE", "QYR", "MOYR", "WKYR", "WKDAY", "MONTH", "DATETIME", "YMDHMS", "TIME", "DTIME", "MTIME", "PIBHEX", "RBHEX"}


class Number:
    """A number, how the workbook is to show it (None: not known here), and the text of the report (None: of no account)."""

    def __init__(self, value, shown_as=None, text=None):
        self.value = value
        self.shown_as = shown_as
        self.text = text

    def __repr__(self):
        return f"{self.value!r} as {self.shown_as}"


class DataNumber(Number):
    """A number of which only the variable's format tells whether the workbook shows it as a number or by its text."""


def digits_of_16(value):
    return float(f"{value:.16G}")


def number_format(spec):
    """The workbook's format for one of the report's, such as F.2; None where the text stands."""
    name, width, decimals = re.fullmatch(r"([A-Za-z]+)(\d*)(?:\.(\d+))?", spec).groups()
    places = min(int(decimals or 0), 30)
    behind = "." + "0" * places if places else ""
    if name in NEVER_NUMBERS:
        return None
    if name in SIMPLE:
        return "0" + behind
    if name in GROUPED:
        return "#,##0" + behind
    if name == "N":
        zeros = "0" * min(max(int(width or 0) - (places + 1 if places else 0), 1), 30)
        return f"{zeros}{behind};-0{behind}"
    return {"DOLLAR": '"$"#,##0' + behind, "PCT": "0" + behind + '"%"', "E": "0" + behind + "E+00"}.get(name, "General")


def fits(value):
    return value is not None and abs(value) <= GREATEST


def wanted_of(content):
    """What a label or cell is to be in the workbook."""
    if "number" in content:
        shown_as = number_format(content["format"])
        return Number(content["number"], shown_as, content["text"]) if fits(content["number"]) and shown_as else content["text"]
    if is_numeric(content) and fits(content["value"]):
        return DataNumber(content["value"], text=content["text"])
    return content["text"]


def number_behind(content, got):
    """The number that a text stands for, when the workbook shows the text."""
    if "number" in content:
        return Number(content["number"]) if fits(content["number"]) and number_format(content["format"]) is None else None
    return Number(content["value"]) if is_numeric(content) and fits(content["value"]) and isinstance(got.value, str) else None


def escaped(text):
    """The text as the cell of a workbook holds it."""
    text = re.sub(r"_(?=x[0-9A-Fa-f]{4}_)", "_x005F_", text)
    return re.sub(r"[\x00-\x08\x0b-\x1f\ufffe\uffff]", lambda match: f"_x{ord(match[0]):04X}_", text)


def units(text):
    return len(text.encode("utf-16-le")) // 2


def same_text(got, text):
    whole = escaped(text)
    if units(whole) <= LONGEST:
        return (got or "") == whole
    # Cut: as much of the text as there is room for, or a character or an escape less, and the mark.
    if got is None or not got.endswith(CUT) or units(got) > LONGEST or units(got) < LONGEST - 8:
        return False
    return whole.startswith(got[: -len(CUT)])


def shown(value, format_):
    """The number as the workbook's format shows it, but for the signs in it other than minus, plus and exponent."""
    positive, _, negative = format_.partition(";")
    places = len(positive.partition(".")[2].partition("E")[0].rstrip('"%'))
    is_negative = Decimal(value) <= -Decimal(5).scaleb(-places - 1)  # when it is rounded; the report knows no negative zero
    format_ = negative.lstrip("-") if is_negative and negative else positive
    if "E" in format_:
        digits, exponent = f"{Decimal(value):.{places}E}".replace(".", "").split("E")
        return f"{digits}E{int(exponent):+03d}"
    whole = 1 if "," in format_ else format_.partition(".")[0].count("0")
    rounded = Decimal(value).quantize(Decimal(1).scaleb(-places), ROUND_HALF_UP)
    digits = f"{abs(rounded):f}".replace(".", "").rjust(whole + places, "0")
    return ("-" if rounded < 0 else "") + digits


def shows(cell, wanted):
    """Whether the cell's number, in its format, is what the report shows."""
    if wanted.shown_as is not None and cell.number_format != wanted.shown_as:
        return False
    if wanted.text is None:
        return True
    if cell.number_format == "General":
        return float(wanted.text) == wanted.value
    return shown(wanted.value, cell.number_format) == re.sub("[.,$%]", "", wanted.text)


def same(cell, wanted):
    """Whether the cell is as it should be: a number, a text, or nothing."""
    got = cell.value
    if cell.data_type == "f":
        return False
    if isinstance(wanted, DataNumber) and isinstance(got, str):
        return same_text(got, wanted.text)
    if isinstance(wanted, Number):
        is_number = isinstance(got, (int, float)) and not isinstance(got, bool)
        return is_number and float(got) == digits_of_16(wanted.value) and shows(cell, wanted)
    return (got is None or isinstance(got, str)) and same_text(got, wanted or "")


class Sheets:
    """The rows of a sheet and of those that it was continued on."""

    def __init__(self, workbook, name):
        self.rows = []
        for sheet in workbook.worksheets:
            if sheet.title == name or re.fullmatch(re.escape(name) + r" \d+", sheet.title):
                self.rows += [list(row) for row in sheet.iter_rows()] if sheet.max_row > 1 or sheet["A1"].value is not None else []
        self.next = 0

    def take(self):
        """The next row; None behind the last."""
        self.next += 1
        return self.rows[self.next - 1] if self.next <= len(self.rows) else None


def row_differences(row, wanted, where):
    """`wanted` are the row's cells from the first on; the others must be blank."""
    if row is None:
        if any(value is not None and value != "" for value in wanted):
            yield f"{where}: there is no such row"
        return
    for number in range(max(len(row), len(wanted))):
        expected = wanted[number] if number < len(wanted) else None
        if number >= len(row):
            if expected not in (None, ""):
                yield f"{where}: a cell is missing, {expected!r}"
        elif not same(row[number], expected):
            yield f"{where}, {row[number].coordinate}: {str(row[number].value)[:200]!r} ({row[number].number_format}) instead of {str(expected)[:200]!r}"


class Blank:
    value = None


def at(row, number):
    return row[number] if row is not None and number < len(row) else Blank


def label_of(column):
    groups, label = column
    return SEPARATOR.join([*groups, label["text"]]) if label else SEPARATOR.join(groups)


def table_lines(table, depth):
    """The rows of a table: for each the wanted cells up to the numbers behind, and the contents that these may be of."""
    yield [wanted_of(table.title)], []
    yield [table.rows_label, *[None] * depth, *[label_of(column) for column in table.columns]], None
    before = []
    for row in table.rows:
        stubs = [None] * (depth + 1)
        for place, (identity, group) in enumerate(row.groups):
            if [i for i, _ in before[: place + 1]] != [i for i, _ in row.groups[: place + 1]]:
                stubs[place] = wanted_of(group)
        before = row.groups
        stubs[depth] = wanted_of(row.label)
        columns = [row.cells_of(position) for position in range(len(table.columns))]
        for line in range(max([1, *map(len, columns)])):
            cells = [wanted_of(column[line]) if line < len(column) else None for column in columns]
            contents = [(depth, row.label), *[(depth + 1 + position, cell) for position, cell in row.cells]]
            yield (stubs if line == 0 else [None] * (depth + 1)) + cells, contents if line == 0 else []


def tables_differences(tables, sheet):
    depth = max((table.depth for table in tables), default=0)
    for table in tables:
        where = f"table {table.title['text'][:50]!r}"
        for wanted, contents in table_lines(table, depth):
            row = sheet.take()
            if contents is None:  # the head, which may have one more name
                if at(row, len(wanted)).value == "Number":
                    wanted = [*wanted, "Number"]
            else:
                numbers = [number_behind(content, at(row, place)) for place, content in contents]
                wanted = wanted + [number for number in numbers if number]
            yield from row_differences(row, wanted, where)
        yield from row_differences(sheet.take(), [], where)
    if sheet.take() is not None:
        yield "there are rows behind the last table"


def is_item(table):
    return not table.title.get("fixed")


def kind_of(row):
    if "variable" in row.label or any(position > 0 for position, _ in row.cells):
        return "category"
    return "property" if row.label.get("fixed") else "attribute"


def values_differences(tables, sheet):
    items = [table for table in tables if is_item(table)]
    others = list(dict.fromkeys(table.columns[position][1]["text"] for table in items for position in sorted({p for row in table.rows for p, _ in row.cells}) if position > 0))
    yield from row_differences(sheet.take(), ["Variable", "Section", "Value", "Number", "Label", *others], "the head of the values")
    for table in items:
        for row in table.rows:
            if kind_of(row) != "category":
                continue
            line = sheet.take()
            cells = {table.columns[position][1]["text"] if position else "Label": cell for position, cell in reversed(row.cells)}
            wanted = [table.title["text"], SEPARATOR.join(row.group_texts()), wanted_of(row.label), number_behind(row.label, at(line, 2))]
            wanted += [wanted_of(cells[name]) if name in cells else None for name in ["Label", *others]]
            yield from row_differences(line, wanted, f"value of {table.title['text'][:50]!r}")
    if sheet.take() is not None:
        yield "there are rows behind the last value"


def variables_differences(tables, sheet):
    names = [cell.value for cell in sheet.take() or []]
    if names[:1] != ["Variable"] or len(set(names)) != len(names):
        yield f"the head of the variables is {names}"
        return
    for table in filter(is_item, tables):
        where = f"variable {table.title['text'][:50]!r}"
        line = sheet.take()
        if line is None:
            yield f"{where}: there is no row"
            return
        by_name = dict(zip(names, line))
        if not same(by_name["Variable"], table.title["text"]):
            yield f"{where}: the row is of {by_name['Variable'].value!r}"
        for row in table.rows:
            if kind_of(row) != "property" or not row.cells:
                continue
            name = row.label["text"]
            if name not in by_name or not same(by_name[name], wanted_of(row.cells[0][1])):
                yield f"{where}: {name} is {by_name[name].value if name in by_name else 'missing'!r} instead of {row.cells[0][1]['text']!r}"
        share = at([by_name["Missing %"]] if "Missing %" in by_name else [], 0).value
        if share is not None and not math.isclose(share, 100 * by_name["Missing"].value / (by_name["Missing"].value + by_name["Valid"].value), rel_tol=1e-12, abs_tol=1e-12):
            yield f"{where}: the share of missing values is {share}"
    if sheet.take() is not None:
        yield "there are rows behind the last variable"


def block(rows, head):
    """The rows below the one that begins with this word, up to a blank one; none when there is none."""
    starts = [number for number, row in enumerate(rows) if number > 0 and row[0].value == head and all(cell.value is None for cell in rows[number - 1])]
    if not starts:
        return []
    found = rows[starts[0] + 1 :]
    end = next((number for number, row in enumerate(found) if all(cell.value is None for cell in row)), len(found))
    return found[:end]


def index_differences(report, tables, workbook):
    rows = Sheets(workbook, "Index").rows
    for head, wanted in (("Method", notes_of(report)), ("Messages", [(SEVERITIES[m["severity"]], m["text"]) for m in report["messages"]])):
        found = block(rows, head)
        if len(found) != len(wanted):
            yield f"{len(found)} rows below {head!r} instead of {len(wanted)}"
        for row, cells in zip(found, wanted):
            yield from row_differences(row, list(cells), f"index, {head}")
    found = block(rows, "Tables")
    if len(found) != len(tables):
        yield f"the index has {len(found)} tables instead of {len(tables)}"
    for row, table in zip(found, tables):
        where = f"index, {table.title['text'][:50]!r}"
        if not same(row[0], table.title["text"]):
            yield f"{where}: {row[0].value!r}"
        link = row[0].hyperlink
        sheet, line = row[2].value, row[3].value
        if link is None or link.target or link.location != f"'{sheet}'!A{line}":
            yield f"{where}: the link leads to {link and (link.location or link.target)!r}"
        elif not same(workbook[sheet].cell(line, 1), wanted_of(table.title)):
            yield f"{where}: at the end of its link stands {workbook[sheet].cell(line, 1).value!r}"


def workbook_differences(workbook):
    for sheet in workbook.worksheets:
        for row in sheet.iter_rows():
            for cell in row:
                if cell.data_type == "f":
                    yield f"{sheet.title}!{cell.coordinate} is a formula"
                if cell.hyperlink is not None and (cell.hyperlink.target or not cell.hyperlink.location):
                    yield f"{sheet.title}!{cell.coordinate} leads out of the workbook"
        if sheet.title.startswith(("Variables", "Values")) and (sheet.freeze_panes != "B2" or not sheet.auto_filter.ref):
            yield f"{sheet.title} has no frozen head or no filter"


def differences(report, outputs):
    workbook = openpyxl.load_workbook(outputs.path("xlsx"))
    tables = [table for _, tables in procedures_of(report) for table in tables]
    yield from workbook_differences(workbook)
    yield from tables_differences(tables, Sheets(workbook, "Tables"))
    yield from values_differences(tables, Sheets(workbook, "Values"))
    yield from variables_differences(tables, Sheets(workbook, "Variables"))
    yield from index_differences(report, tables, workbook)
