"""What PostgreSQL means to do with a statement, and whether it leaves the counting to the workers."""

import json

from postgres import READER

AGGREGATES = ("count(", "sum(", "min(", "max(", "GROUP BY")


def plan_of(server, statement, settings=()):
    """The outermost node of the plan, as EXPLAIN's JSON has it."""
    script = "".join(setting + ";\n" for setting in settings) + f"EXPLAIN (VERBOSE, COSTS OFF, FORMAT JSON) {statement};\n"
    return json.loads(server.run("BEGIN;\n" + script + "ROLLBACK;\n", user=READER))[0]["Plan"]


def nodes(plan):
    yield plan
    for child in plan.get("Plans", []):
        yield from nodes(child)


def faults_of(plan, workers, own=()):
    """Why rows rather than groups would travel from the workers; nothing when each of them counts its own. `own`: tables
    that may hold rows here."""
    scans = [node for node in nodes(plan) if not node.get("Plans")]
    foreign = [node for node in scans if node["Node Type"] == "Foreign Scan"]
    found = []
    for node in scans:
        if node["Node Type"] not in ("Foreign Scan", "Result") and node.get("Relation Name") not in own:
            found.append(f"a {node['Node Type']} of {node.get('Relation Name', 'something')} reads rows here")
    for node in foreign:
        remote = node.get("Remote SQL", "")
        said = remote if len(remote) < 300 else remote[:300] + "..."
        if not node.get("Relations", "").startswith("Aggregate on") or not any(word in remote for word in AGGREGATES):
            found.append(f"a worker is asked for rows: {said}")
        if not node.get("Async Capable"):
            found.append(f"a worker is asked when the one before it is done: {said}")
    if len(foreign) != workers:
        found.append(f"{len(foreign)} foreign scans for {workers} workers")
    if workers > 1 and not any(node["Node Type"] == "Append" for node in nodes(plan)):
        found.append("no Append joins the workers' answers")
    return found
