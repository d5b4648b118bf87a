"""JSON lines, each a whole JSON text: the report's facts, its messages, its procedures, each with its tables behind it. Put together again
they must be the JSON report."""

import json


class Unexpected(Exception):
    pass


def put_together(lines):
    """The report that the lines are of."""
    report = {"messages": [], "procedures": []}
    for number, line in enumerate(lines):
        kind = line.pop("kind")
        if (kind == "report") != (number == 0):
            raise Unexpected(f"line {number + 1} is of kind {kind}")
        if kind == "report":
            report.update(line)
        elif kind == "message" and not report["procedures"]:
            report["messages"].append(line["message"])
        elif kind == "procedure":
            report["procedures"].append({"title": line["title"], "tables": [], "announced": line["tables"]})
            if line["procedure"] != len(report["procedures"]):
                raise Unexpected(f"procedure {line['procedure']} comes as number {len(report['procedures'])}")
        elif kind == "table":
            procedure = report["procedures"][-1]
            procedure["tables"].append(line["table"])
            place = (line["procedure"], line["title"], line["index"])
            if place != (len(report["procedures"]), procedure["title"], len(procedure["tables"])):
                raise Unexpected(f"a table says that its place is {place}")
        else:
            raise Unexpected(f"line {number + 1} is of kind {kind}")
    for procedure in report["procedures"]:
        if procedure.pop("announced") != len(procedure["tables"]):
            raise Unexpected(f"procedure {procedure['title']!r} has {len(procedure['tables'])} tables")
    return report


def differences(report, outputs):
    text = outputs.text("jsonl")
    if not text.endswith("\n"):
        yield "the last line has no end"
    try:
        got = put_together([json.loads(line) for line in text.split("\n")[:-1]])
    except Unexpected as unexpected:
        yield str(unexpected)
        return
    for name in sorted({*got, *report}):
        if repr(got.get(name)) != repr(report.get(name)):  # repr tells -0.0 from 0
            yield f"{name}: {json.dumps(got.get(name))[:500]} instead of {json.dumps(report.get(name))[:500]}"
