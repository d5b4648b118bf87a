"""The tables drawn for a terminal, on a page so wide (collect.py) that hardly a line is broken: rows are read along the lines."""

from characters import is_hidden, shown, with_line_feeds
from tables import notes_of, procedures_of

OVERLOOKS = ("messages", "subtype", "precision")
BAR = "│"
LONG = 5000  # characters from which on a text may be broken anywhere


class Unexpected(Exception):
    pass


def lines_of(text):
    """What is to be seen of a text: its lines without blanks at their ends, without blank lines."""
    visible = shown(with_line_feeds(text), is_hidden, "\n\t").replace("\t", "    ")
    return [line.strip(" ") for line in visible.split("\n") if line.strip(" ")]


def same(got, wanted):
    """Lines read against lines that should stand there."""
    if got == wanted:
        return True
    return sum(map(len, wanted)) > LONG and squeezed(got) == squeezed(wanted)


def squeezed(lines):
    return "".join(lines).replace(" ", "")


class Lines:
    def __init__(self, text):
        self.lines = text.split("\n")
        if self.lines.pop() != "":
            raise Unexpected("the last line has no end")
        self.at = 0

    def peek(self):
        return self.lines[self.at] if self.at < len(self.lines) else None

    def next(self):
        line = self.peek()
        if line is None:
            raise Unexpected("the text ends too early")
        self.at += 1
        return line

    def expect(self, line):
        got = self.next()
        if got != line:
            raise Unexpected(f"{got!r} instead of {line!r}")

    def expect_text(self, text):
        for line in lines_of(text):
            got = self.next()
            while len(squeezed([got])) < len(squeezed([line])) and len(line) > LONG:
                got += self.next()
            if not same([got.strip(" ")], [line]):
                raise Unexpected(f"{got!r} instead of {line!r}")


def segments(line):
    """What stands between the bars of a line."""
    if not (line.startswith(BAR) and line.endswith(BAR)):
        raise Unexpected(f"no line of a table: {line!r}")
    return [segment.strip(" ") for segment in line[1:-1].split(BAR)]


def body_lines(lines):
    """The lines of a table between two rules each: a list a block."""
    if not lines.next().startswith("┌"):
        raise Unexpected("a table has no upper edge")
    blocks = [[]]
    while not (line := lines.next()).startswith("└"):
        if line.startswith("├"):
            blocks.append([])
        else:
            blocks[-1].append(segments(line))
    return blocks


def tail_of(row, columns):
    """The lines of the row's label and of each of its cells."""
    return [lines_of(row.label["text"])] + [[line for cell in row.cells_of(position) for line in lines_of(cell["text"])] for position in columns]


def read_header(table, columns, blocks):
    labels = [[line for text in groups for line in lines_of(text)] + lines_of(label["text"]) if label else [] for groups, label in (table.columns[c] for c in columns)]
    if not any(labels):
        return
    stacked = [[] for _ in range(len(columns) + 1)]
    for line in blocks.pop(0):
        if len(line) > len(stacked):
            raise Unexpected(f"the header has {len(line)} places")
        for place, segment in enumerate(line):
            stacked[place] += [segment] if segment else []
    if stacked != [[], *labels]:
        raise Unexpected(f"the header is {stacked} instead of {labels}")


def table_differences(table, lines):
    columns = table.shown_columns()
    blocks = body_lines(lines)
    read_header(table, columns, blocks)
    body = [line for block in blocks for line in block]
    seen = {}  # what was read of each group's label
    wanted_groups = {}
    at = 0
    for number, row in enumerate(table.rows, 1):
        depth = len(row.groups)
        wanted = tail_of(row, columns)
        got = [[] for _ in wanted]
        first = True
        while at < len(body) and (first or not complete(got, wanted) or is_blank(body[at], depth)):
            for (identity, content), segment in zip(row.groups, body[at]):
                wanted_groups[identity] = content["text"]
                seen.setdefault(identity, []).extend([segment] if segment else [])
            for place, segment in enumerate(body[at][depth:]):
                if place >= len(got):
                    raise Unexpected(f"row {number} has too many cells")
                got[place] += [segment] if segment else []
            at += 1
            first = False
        for place, (read, expected) in enumerate(zip(got, wanted)):
            if not same(read, expected):
                yield f"row {number}, place {place}: {read} instead of {expected}"
    if at != len(body):
        yield f"{len(body) - at} lines too many"
    for identity, read in seen.items():
        if squeezed(read) != squeezed(lines_of(wanted_groups[identity])):
            yield f"group {wanted_groups[identity]!r} reads {read}"


def complete(got, wanted):
    return all(len(squeezed(read)) >= len(squeezed(expected)) for read, expected in zip(got, wanted))


def is_blank(line, depth):
    return not any(line[depth:])


def report_differences(report, lines):
    procedures = procedures_of(report)
    begun = False
    for title, tables in procedures:
        if len(procedures) > 1:
            if begun:
                lines.expect("")
            begun = True
            lines.expect_text(title)
            if set(lines.next()) != {"═"}:
                yield "a heading is not underlined"
        for table in tables:
            if begun:
                lines.expect("")
            begun = True
            lines.expect_text(table.title["text"])
            if not table.rows:
                lines.expect("(no rows)")
                continue
            for difference in table_differences(table, lines):
                yield f"table {table.title['text']!r}: {difference}"
    read_notes(notes_of(report), lines)


def read_notes(notes, lines):
    """Notes stand behind the tables: a name above the texts that belong to it, each set in."""
    if notes:
        lines.expect("")
        lines.expect("Method")
        lines.expect("══════")
    before = None
    for name, text in notes:
        if name != before:
            lines.expect_text(name)
        before = name
        if not (lines.peek() or "").startswith("  "):
            raise Unexpected(f"the note {lines.peek()!r} is not set in")
        lines.expect_text(text)
    if lines.peek() is not None:
        raise Unexpected(f"more than the report: {lines.peek()!r}")


def differences(report, outputs):
    try:
        yield from report_differences(report, Lines(outputs.text("text")))
    except Unexpected as unexpected:
        yield str(unexpected)
