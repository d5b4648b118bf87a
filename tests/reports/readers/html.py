"""The page, read by html5lib as a browser reads it: its elements must be the page's own, whatever the report holds, and the report that
stands in it that of the JSON report."""

import html5lib
import json

LEAST_SIZE = 100_000  # bytes of the page itself, beside the report
MOST_OF_JSON = 1.5
# Elements of the page as it is before its script runs, without their texts.
HEAD = ["meta charset", "meta content,http-equiv", "meta content,name", "meta content,name", "meta content,name", "title", "style"]
BODY = ["noscript", "div id", "script id,type", "script id,type", "script"]

own_texts = {}  # script and style, which are the same in every page


def shape(element):
    return " ".join([element.tag, ",".join(sorted(element.attrib))]).strip()


def page_differences(page):
    head, body = page.find("head"), page.find("body")
    if [shape(child) for child in head] != HEAD:
        yield f"the head has {[shape(child) for child in head]}"
    if [shape(child) for child in body] != BODY:
        yield f"the body has {[shape(child) for child in body]}"
        return
    for element in (head.find("title"), head.find("style"), body.find("div"), *body.iter("script")):
        if len(element):
            yield f"there are elements within <{element.tag}>"
    for name, text in (("style", head.find("style").text), ("script", body[-1].text)):
        if own_texts.setdefault(name, text) != text:
            yield f"the {name} is not that of other pages"


def embedded(page):
    for script in page.find("body").iter("script"):
        if script.get("id") == "report":
            return json.loads(script.text)
    return None


def without_sketches(report):
    """What was counted for pictures stands in the page only, and so does the note on histograms, when there are any."""
    sketches = [sketch for procedure in report["procedures"] for sketch in procedure.pop("sketches", [])]
    notes = report.get("facts", {}).get("notes", [])
    if any("edges" in sketch for sketch in sketches) and notes and notes[-1]["name"] == "Histograms":
        notes.pop()
    return report


def report_differences(got, report):
    """Where two reports differ, one table after the other."""
    for name in ("format", "messages", "facts"):
        if got.get(name) != report.get(name):
            yield f"{name}: {json.dumps(got.get(name))[:300]} instead of {json.dumps(report.get(name))[:300]}"
    if [procedure["title"] for procedure in got["procedures"]] != [procedure["title"] for procedure in report["procedures"]]:
        yield "the procedures are others"
        return
    for read, wanted in zip(got["procedures"], report["procedures"]):
        if len(read["tables"]) != len(wanted["tables"]):
            yield f"{len(read['tables'])} tables instead of {len(wanted['tables'])}"
        for table, expected in zip(read["tables"], wanted["tables"]):
            if repr(table) != repr(expected):  # repr tells -0.0 from 0
                yield f"table {expected['title']['text']!r}: {json.dumps(table)[:500]} instead of {json.dumps(expected)[:500]}"


def differences(report, outputs):
    page = html5lib.parse(outputs.text("html"), treebuilder="etree", namespaceHTMLElements=False)
    yield from page_differences(page)
    got = embedded(page)
    if got is None:
        yield "there is no report in the page"
        return
    yield from report_differences(without_sketches(got), report)
    size, most = len(outputs.bytes("html")), MOST_OF_JSON * len(outputs.bytes("json")) + LEAST_SIZE
    if size > most:
        yield f"the page has {size} bytes, at most {most:.0f} were expected"
