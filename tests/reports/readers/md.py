"""Markdown, read twice: by GitHub's own reader (cmark-gfm) and by markdown-it; the HTML that they make is read by html5lib."""

import shutil
import subprocess

import html5lib
from markdown_it import MarkdownIt

from characters import is_hidden, shown, with_line_feeds
from tables import is_numeric, notes_of, procedures_of

CMARK = ["cmark-gfm", "--unsafe", "-t", "html"] + [word for name in ("table", "strikethrough", "autolink", "tagfilter", "tasklist", "footnotes") for word in ("-e", name)]
OVERLOOKS = ("subtype", "precision")
SEVERITIES = {"warning": "Warning", "error": "Error"}


class Unexpected(Exception):
    """The file holds something that no text of a report may become."""


def github_html(text):
    if shutil.which(CMARK[0]) is None:
        raise FileNotFoundError("cmark-gfm is missing; scripts/setup test installs it")
    return subprocess.run(CMARK, input=text.encode("utf-8"), stdout=subprocess.PIPE, check=True).stdout.decode("utf-8")


def markdown_it_html(text):
    return MarkdownIt("commonmark", {"html": True}).enable(["table", "strikethrough"]).render(text)


def texts_of(element, strong=False):
    """The text in an element, as pieces: strings, "\\n" for a line's end, None for the line between cells."""
    yield element.text or ""
    for child in element:
        name = child.tag
        if name == "br":
            yield "\n"
        elif name == "hr":
            yield None
        elif name == "span" and not child.attrib:
            yield from texts_of(child)
        elif callable(name):  # a comment
            pass
        elif name == "strong" and strong:
            yield from texts_of(child)
        else:
            raise Unexpected(f"a text became <{name}>: {''.join(element.itertext())!r}")
        yield child.tail or ""


def read_text(element):
    pieces = list(texts_of(element))
    if None in pieces:
        raise Unexpected("a line where there are no cells")
    return "".join(pieces)


def read_cells(element):
    """The cells at a place. None at all, one of an empty text (with a comment to tell), or several."""
    pieces = list(texts_of(element))
    has_comment = any(callable(child.tag) for child in element)
    if not has_comment and pieces == [""]:
        return []
    cells = [""]
    for piece in pieces:
        if piece is None:
            cells.append("")
        else:
            cells[-1] += piece
    return cells


def read_stub(element):
    """A cell before the data: None when blank, else whether it is bold and its text."""
    if len(element) == 0 and not element.text:
        return None
    bold = len(element) == 1 and element[0].tag == "strong" and not (element.text or element[0].tail)
    return bold, read_text(element[0] if bold else element)


def read_point(element):
    """A point of a list: its bold beginning and what stands behind the colon."""
    name = element[0]
    if name.tag != "strong" or element.text:
        raise Unexpected("a point of a list does not begin in bold")
    name_text = read_text(name)
    tail = name.tail
    name.text, name.tail = "", tail
    for child in list(name):
        name.remove(child)
    text = "".join(piece for piece in texts_of(element, strong=True))
    if not text.startswith(": "):
        raise Unexpected("a point of a list has no colon behind its name")
    return name_text, text[2:]


def read_document(html):
    """The blocks of the document: kind and content."""
    body = html5lib.parse(html, treebuilder="etree", namespaceHTMLElements=False).find("body")
    for block in body:
        if block.tag in ("h1", "h2"):
            yield block.tag, read_text(block)
        elif block.tag == "p":
            yield "p", read_text(block)
        elif block.tag == "ul":
            yield "ul", [read_point(point) for point in block]
        elif block.tag == "table":
            yield "table", block
        else:
            raise Unexpected(f"a block is <{block.tag}>")


def aligned_right(cell):
    return cell.get("align") == "right" or "right" in (cell.get("style") or "")


def expected_text(text):
    return shown(with_line_feeds(text), is_hidden)


def header_of(column):
    groups, label = column
    return [expected_text("\n".join([*groups, label["text"]]))] if label else []


def table_differences(table, element):
    shown_columns = table.shown_columns()
    stubs = table.depth + 1
    header, *rows = element.iter("tr")
    width = stubs + len(shown_columns)
    if any(len(row) != width for row in (header, *rows)):
        yield f"a row does not have {width} cells"
        return
    if read_cells(header[0]) != [expected_text(table.rows_label)] or any(read_stub(cell) for cell in header[1:stubs]):
        yield "the header does not begin with the label of the rows"
    for cell, position in zip(header[stubs:], shown_columns):
        if read_cells(cell) != header_of(table.columns[position]):
            yield f"the header has {read_cells(cell)} instead of {header_of(table.columns[position])}"
        numbers = [is_numeric(content) for row in table.rows for content in row.cells_of(position)]
        if aligned_right(cell) != (bool(numbers) and all(numbers)):
            yield f"column {position} is aligned wrongly"

    if len(rows) != len(table.rows):
        yield f"{len(rows)} rows instead of {len(table.rows)}"
        return
    before = []
    for number, (element_row, row) in enumerate(zip(rows, table.rows), 1):
        stubs_wanted = [None] * stubs
        for depth, group in enumerate(row.groups):
            if [identity for identity, _ in before[: depth + 1]] != [identity for identity, _ in row.groups[: depth + 1]]:
                stubs_wanted[depth] = (True, expected_text(group[1]["text"]))
        stubs_wanted[len(row.groups)] = (False, expected_text(row.label["text"]))
        before = row.groups
        got = [read_stub(cell) for cell in element_row[:stubs]]
        if got != stubs_wanted:
            yield f"row {number} begins {got} instead of {stubs_wanted}"
        for cell, position in zip(element_row[stubs:], shown_columns):
            wanted = [expected_text(content["text"]) for content in row.cells_of(position)]
            if read_cells(cell) != wanted:
                yield f"row {number}: {read_cells(cell)} instead of {wanted}"


def expected_blocks(report):
    for title, tables in procedures_of(report):
        yield "h1", expected_text(title)
        for table in tables:
            yield "h2", expected_text(table.title["text"])
            yield ("table", table) if table.rows else ("p", "(no rows)")
    notes = [(expected_text(name), expected_text(text)) for name, text in notes_of(report)]
    if notes:
        yield "h1", "Method"
        yield "ul", notes
    messages = [(SEVERITIES[message["severity"]], expected_text(message["text"])) for message in report["messages"]]
    if messages:
        yield "h1", "Messages"
        yield "ul", messages


def document_differences(report, html):
    try:
        blocks = list(read_document(html))
        wanted = list(expected_blocks(report))
        if [kind for kind, _ in blocks] != [kind for kind, _ in wanted]:
            yield f"the blocks are {[kind for kind, _ in blocks]} instead of {[kind for kind, _ in wanted]}"
            return
        for (kind, got), (_, expected) in zip(blocks, wanted):
            if kind == "table":
                for difference in table_differences(expected, got):
                    yield f"table {expected.title['text']!r}: {difference}"
            elif got != expected:
                yield f"{kind}: {got!r} instead of {expected!r}"
    except Unexpected as unexpected:
        yield str(unexpected)


def differences(report, outputs):
    text = outputs.text("md")
    for reader, html in (("cmark-gfm", github_html(text)), ("markdown-it", markdown_it_html(text))):
        for difference in document_differences(report, html):
            yield f"{reader}: {difference}"
