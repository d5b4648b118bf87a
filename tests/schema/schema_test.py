"""The JSON report and its lines against the JSON Schema that `codebook schema` prints; and reports that are wrong in one place."""

import concurrent.futures
import copy
import json
import os
import subprocess
import sys
import tempfile
import unittest

import jsonschema

HERE = os.path.dirname(os.path.abspath(__file__))
sys.path.insert(0, os.path.join(os.path.dirname(HERE), "golden"))

import datafiles  # noqa: E402
from casefile import find_cases  # noqa: E402

if "CODEBOOK_PROGRAM" not in os.environ:
    sys.exit("Say which program to try: CODEBOOK_PROGRAM=build/dev/codebook")
PROGRAM = os.path.abspath(os.environ["CODEBOOK_PROGRAM"])
SECONDS_A_RUN = 120


def run(*arguments, folder=None):
    return subprocess.run([PROGRAM, *arguments], stdin=subprocess.DEVNULL, capture_output=True, cwd=folder, timeout=SECONDS_A_RUN, check=False)


SCHEMA = json.loads(run("schema").stdout)
LINE_SCHEMA = {**SCHEMA, "$ref": "#/$defs/line"}


def faults(schema, document):
    return [f"{error.json_path}: {error.message[:300]}" for error in jsonschema.Draft202012Validator(schema).iter_errors(document)]


def from_lines(lines):
    """The report that the lines say."""
    first, *others = lines
    report = {"format": first["format"], "messages": [], "procedures": []}
    for line in others:
        if line["kind"] == "message":
            report["messages"].append(line["message"])
        elif line["kind"] == "procedure":
            assert line["procedure"] == len(report["procedures"]) + 1
            report["procedures"].append({"title": line["title"], "tables": []})
            expected = line["tables"]
        else:
            procedure = report["procedures"][-1]
            procedure["tables"].append(line["table"])
            assert (line["procedure"], line["title"]) == (len(report["procedures"]), procedure["title"])
            assert line["index"] == len(procedure["tables"]) <= expected
    if "facts" in first:
        report["facts"] = first["facts"]
    return report


def outputs(case):
    """Standard output as JSON and as JSON lines; None where the program gives no report."""
    with tempfile.TemporaryDirectory(prefix="schema.") as folder:
        kind = (case.sources() or ["comma"])[0]
        kind = kind if kind in datafiles.WITHOUT_DUCKDB else datafiles.WITHOUT_DUCKDB[0]
        data = datafiles.write_data(kind, os.path.realpath(folder), case.rows(), None)
        if case.dictionary() is not None:
            with open(os.path.join(folder, "data.schema.json"), "w", encoding="utf-8") as file:
                file.write(case.dictionary())
        done = [run(data, "-F", form, "-c", case.command(), *case.options()) for form in ("json", "jsonl")]
    return None if not done[0].stdout else [one.stdout.decode("utf-8") for one in done]


def case_faults(case):
    output = outputs(case)
    if output is None:
        return case.name, False, []
    report = json.loads(output[0])
    lines = [json.loads(line) for line in output[1].splitlines()]
    found = faults(SCHEMA, report)
    for number, line in enumerate(lines, 1):
        found += [f"line {number}: {fault}" for fault in faults(LINE_SCHEMA, line)]
    if from_lines(lines) != report:
        found.append("the lines do not say what the report says")
    return case.name, True, found


class Schema(unittest.TestCase):
    def test_schemaIsASchema(self):
        jsonschema.Draft202012Validator.check_schema(SCHEMA)
        with open(os.path.join(os.path.dirname(os.path.dirname(HERE)), "schemas", "codebook-report.schema.json"), "rb") as file:
            self.assertEqual(run("schema").stdout, file.read())

    def test_everyGoldenReportAndItsLinesAreValidAndSayTheSame(self):
        cases = find_cases(os.path.join(os.path.dirname(HERE), "golden"), [])
        with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
            results = list(pool.map(case_faults, cases))
        self.assertGreater(sum(has_report for _, has_report, _ in results), 100)
        self.assertEqual({name: found for name, _, found in results if found}, {})


class WrongReports(unittest.TestCase):
    """A report is taken apart in every place where it could be wrong: the schema says so each time."""

    @classmethod
    def setUpClass(cls):
        with tempfile.TemporaryDirectory(prefix="schema.") as folder:
            with open(os.path.join(folder, "data.csv"), "w", encoding="utf-8") as file:
                file.write("a,s,w,x\n1,u,1,0.25\n2,v,2,0.5\n9,u,0,7\n")
            with open(os.path.join(folder, "data.schema.json"), "w", encoding="utf-8") as file:
                file.write('{"fields": [{"name": "a", "type": "integer", "missingValues": [{"value": "9", "label": "none"}]}, {"name": "s"}, '
                           '{"name": "w", "type": "number"}, {"name": "x", "type": "number", "codebook": {"measure": "scale"}}], "codebook": {"weight": "w", '
                           '"multipleResponseSets": [{"name": "$s", "type": "dichotomy", "variables": ["a", "w"], "countedValue": "1"}]}}')
            command = "CODEBOOK a s x $s /FILEINFO NAME CASECOUNT /STATISTICS COUNT PERCENT MEAN QUARTILES."
            cls.report = json.loads(run("data.csv", "-F", "json", "-c", command, folder=folder).stdout)
            cls.lines = [json.loads(line) for line in run("data.csv", "-F", "jsonl", "-c", command, folder=folder).stdout.splitlines()]

    def test_theReportItselfIsValid(self):
        self.assertEqual(faults(SCHEMA, self.report), [])
        self.assertEqual(len(self.report["facts"]["items"]), 4)

    def test_everyMemberThatIsLeftOutOrOfAnotherTypeIsFound(self):
        free = {"minDataColumnWidth", "facts"}  # may be left out
        tried = 0
        for path in shapes(self.report):
            wrong = copy.deepcopy(self.report)
            holder, key = follow(wrong, path)
            holder[key] = {"planted": True}
            self.assertNotEqual(faults(SCHEMA, wrong), [], f"{path} of another type")
            if isinstance(key, str) and key not in free:
                del holder[key]
                self.assertNotEqual(faults(SCHEMA, wrong), [], f"{path} left out")
            tried += 1
        self.assertGreater(tried, 80)

    def test_memberThatThereIsNotIsFound(self):
        for path in [(), *shapes(self.report)]:
            wrong = copy.deepcopy(self.report)
            place = wrong
            for step in path:
                place = place[step]
            if isinstance(place, dict):
                place["planted"] = 1
                self.assertNotEqual(faults(SCHEMA, wrong), [], path)

    def test_wordThatThereIsNotIsFound(self):
        for path in (("format",), ("facts", "items", 0, "type"), ("facts", "items", 0, "level"), ("facts", "items", 0, "role"), ("facts", "language"),
                     ("procedures", 0, "tables", 0, "dimensions", 0, "place")):
            wrong = copy.deepcopy(self.report)
            holder, key = follow(wrong, path)
            holder[key] = "Planted!"
            self.assertNotEqual(faults(SCHEMA, wrong), [], path)

    def test_lineIsNoReportAndAReportIsNoLine(self):
        self.assertNotEqual(faults(LINE_SCHEMA, self.report), [])
        for line in self.lines:
            self.assertEqual(faults(LINE_SCHEMA, line), [])
            self.assertNotEqual(faults(SCHEMA, line), [])
            self.assertNotEqual(faults(LINE_SCHEMA, {**line, "kind": "planted"}), [])


def places(document, path=()):
    """The paths of all members and elements, the innermost too."""
    steps = document.items() if isinstance(document, dict) else enumerate(document) if isinstance(document, list) else ()
    for key, value in steps:
        yield (*path, key)
        yield from places(value, (*path, key))


def shapes(document):
    """Of the places that are alike but for their number in a list and have members of the same names, one."""
    found = {}
    for path in places(document):
        holder, key = follow(document, path)
        members = sorted(holder[key]) if isinstance(holder[key], dict) else type(holder[key]).__name__
        found.setdefault((*("*" if isinstance(step, int) else step for step in path), str(members)), path)
    return list(found.values())


def follow(document, path):
    for step in path[:-1]:
        document = document[step]
    return document, path[-1]


if __name__ == "__main__":
    unittest.main()
