"""The JSON report itself. It must fit the published JSON Schema, by a reader of schemas that is not ours; and the schema must not let
pass what is no report (`spoilt`)."""

import copy
import json
import os

import jsonschema

PROJECT = os.path.dirname(os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__)))))
SCHEMA = os.path.join(PROJECT, "schemas", "codebook-report.schema.json")


def load_validator():
    with open(SCHEMA, encoding="utf-8") as file:
        schema = json.load(file)
    chosen = jsonschema.validators.validator_for(schema)
    chosen.check_schema(schema)
    return chosen(schema)


VALIDATOR = load_validator()


def differences(report, outputs):
    for error in VALIDATOR.iter_errors(report):
        yield f"{'/'.join(map(str, error.absolute_path))}: {error.message[:300]}"
    if repr(report) != repr(outputs.report()):
        yield "the report is not the one that was written"


def objects_of(value, path=""):
    """All objects of the report with their places."""
    if isinstance(value, dict):
        yield path, value
        for name, part in value.items():
            yield from objects_of(part, f"{path}/{name}")
    elif isinstance(value, list):
        for part in value:
            yield from objects_of(part, path + "/*")


def spoilt(report):
    """Pairs of what was done and a report that the schema must refuse: at each kind of place once, a strange member, and each member
    with a value of another type."""
    seen = set()
    for number, (path, value) in enumerate(objects_of(report)):
        for name in ("strange", *value):
            if (path, name) in seen:
                continue
            seen.add((path, name))
            changed = copy.deepcopy(report)
            place = [part for _, part in objects_of(changed)][number]
            place[name] = {"unexpected": []}
            yield f"{path}/{name} is no such thing", changed


def refuses(report):
    return not VALIDATOR.is_valid(report)
