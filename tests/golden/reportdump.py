"""The JSON report as text that is easy to read and to compare.

    table 'age' 'Variable Information'                   title, subtype; flag and width N where they are set
      rows "Attributes"                                  a dimension in the rows
        "Standard Attributes":                           a group
          "Position" | Value: 2 F.0 '2'                  a category and its cells: column and content
          <sex=1 '1'> | Value: 'Male' | Count: 3 F.0 '3'
      columns "Values": "Value" "Count" "Percent"        a dimension in the columns

Content: "text" is a word of the program's own, 'text' comes from the data, <variable=value 'text'> is a data value and
<variable name 'text'>, <variable label 'text'> a variable; a number stands with its format and its text. A dot is the
system-missing value. A cell that has no column stands behind =.
"""

import json
import math

INDENT = "  "


def quote(text, mark):
    shown = ""
    for character in text:
        if character in (mark, "\\"):
            shown += "\\" + character
        elif character == "\n":
            shown += "\\n"
        elif ord(character) < 32 or 127 <= ord(character) < 160:
            shown += f"\\u{ord(character):04x}"
        else:
            shown += character
    return mark + shown + mark


def show_number(number):
    """The shortest text that reads back the same; whole numbers without a point."""
    if number is None:
        return "."
    number = float(number)
    if number.is_integer() and abs(number) < 2**53:
        return "-0" if number == 0 and math.copysign(1, number) < 0 else str(int(number))
    return repr(number)


def show_content(content):
    """The text of a LABEL or of the LABEL part of a CELL. Refuses what it does not know."""
    keys = set(content) - {"column", "text"}
    text = content["text"]
    if keys == {"fixed"}:
        return quote(text, '"' if content["fixed"] else "'")
    if keys == {"number", "format"}:
        return f"{show_number(content['number'])} {content['format']} {quote(text, chr(39))}"
    if keys == {"variable", "value"}:
        value = content["value"]
        shown = quote(value, "'") if isinstance(value, str) else show_number(value)
        return f"<{content['variable']}={shown} {quote(text, chr(39))}>"
    if keys == {"variable", "show"}:
        return f"<{content['variable']} {('name', 'label')[content['show']]} {quote(text, chr(39))}>"
    raise ValueError(f"the report holds a label or cell of unknown shape: {content}")


def dump_items(items, in_rows, depth):
    for item in items:
        indent = INDENT * depth
        if "group" in item:
            yield f"{indent}{show_content(item['group'])}:"
            yield from dump_items(item["items"], in_rows, depth + 1)
            continue
        if ("cells" in item) != in_rows:
            raise ValueError(f"cells belong to row categories and to no others: {item}")
        line = indent + show_content(item["category"])
        for cell in item.get("cells", []):
            column = " =" if cell["column"] is None else f" {cell['column']}:"
            line += f" |{column} {show_content(cell)}"
        yield line


def dump_table(table):
    line = f"table {show_content(table['title'])} {show_content(table['subtype'])}"
    if table["flag"]:
        line += " flag"
    if "minDataColumnWidth" in table:
        line += f" width {table['minDataColumnWidth']}"
    yield line
    for dimension in table["dimensions"]:
        label = show_content(dimension["label"])
        if dimension["place"] == "rows":
            yield f"{INDENT}rows {label}"
            yield from dump_items(dimension["items"], True, 2)
        else:
            categories = [line.strip() for line in dump_items(dimension["items"], False, 0)]
            yield f"{INDENT}columns {label}: {' '.join(categories)}"


def dump_messages(messages):
    """A message a line; further lines of its text stand behind a bar."""
    for message in messages:
        first, *further = message["text"].split("\n")
        yield f"{message['severity']} {message['source']}: {first}"
        for line in further:
            yield f"{INDENT}| {line}"


def dump_facts(facts):
    """A fact a line, then a note a line, then an item a line; a null stands as a dot."""
    shown = {name: "." if fact is None else show_number(fact) if isinstance(fact, (int, float)) else quote(fact, "'")
             for name, fact in facts.items() if name not in ("notes", "items")}
    for name, fact in shown.items():
        yield f"{name} {fact}"
    for note in facts["notes"]:
        yield f"note {quote(note['name'], chr(34))} {quote(note['text'], chr(34))}"
    for item in facts["items"]:
        line = f"item {quote(item['name'], chr(39))} {quote(item['label'] or '', chr(39))} {item['type']} {item['level']} {item['role']}"
        if "position" in item:
            line += f" {item['position']}"
        yield line + "".join(f" {quote(member, chr(39))}" for member in item.get("members", []))


def dump_report(text):
    """Messages, report and facts of a JSON report, each as a text of whole lines."""
    report = json.loads(text)
    if set(report) - {"facts"} != {"format", "messages", "procedures"} or report["format"] != "codebook-report/1":
        raise ValueError("the report is not of the format codebook-report/1")
    lines = []
    for procedure in report["procedures"]:
        lines.append(f"procedure {quote(procedure['title'], chr(39))}")
        for table in procedure["tables"]:
            lines += dump_table(table)
    facts = dump_facts(report["facts"]) if "facts" in report else []
    return as_text(dump_messages(report["messages"])), as_text(lines), as_text(facts)


def as_text(lines):
    return "".join(line + "\n" for line in lines)
