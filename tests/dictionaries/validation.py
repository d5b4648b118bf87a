"""Whether dictionaries are valid: DDI against its schema with xmllint, Table Schema and Data Package against the profiles."""

import gzip
import json
import os
import subprocess

import jsonschema

STANDARDS = os.path.join(os.path.dirname(os.path.dirname(os.path.abspath(__file__))), "data")


def profile(name):
    with gzip.open(os.path.join(STANDARDS, "datapackage-2.0", name + ".gz"), "rt", encoding="utf-8") as file:
        return jsonschema.Draft7Validator(json.load(file))


TABLE_SCHEMA = profile("tableschema.json")
DATA_PACKAGE = profile("datapackage.json")


def problems_of_json(path):
    """What the profile finds; files named *datapackage.json are packages."""
    with open(path, encoding="utf-8") as file:
        value = json.load(file)
    validator = DATA_PACKAGE if path.endswith("datapackage.json") else TABLE_SCHEMA
    return [f"{path}: {list(error.absolute_path)}: {error.message[:300]}" for error in validator.iter_errors(value)]


def problems_of_ddi(paths):
    """What xmllint says of the files, without a line for each valid one."""
    schema = os.path.join(STANDARDS, "ddi-2.5", "codebook.xsd")
    found = []
    for at in range(0, len(paths), 500):
        result = subprocess.run(["xmllint", "--nonet", "--noout", "--schema", schema, *paths[at : at + 500]],
                                capture_output=True, text=True)
        lines = [line for line in result.stderr.splitlines() if not line.endswith(" validates")]
        found += lines or ([f"xmllint: status {result.returncode}"] if result.returncode else [])
    return found
