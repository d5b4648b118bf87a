#!/usr/bin/env python3
"""Every published data file yields a codebook, by itself and with each dictionary that describes it; every published
dictionary is read. What cannot be is refused with the words that say why."""

import csv
import gzip
import io
import json
import os
import subprocess
import sys
import unittest

from datasets import PROJECT

if "CODEBOOK_PROGRAM" not in os.environ:
    sys.exit("Say which program to try: CODEBOOK_PROGRAM=build/dev/codebook")
PROGRAM = os.path.abspath(os.environ["CODEBOOK_PROGRAM"])
DATA = os.path.join(PROJECT, "tests", "data")
FOLDERS = ("packages", "published", "ddi", "nist")

ENCODINGS = {"packages/parsing/deployments_encoding.csv": "windows-1252", "published/star-wars/StarWars.csv": "windows-1252"}
SEPARATORS = {"ddi/household-budget/microdata_HBS_household_raw.csv": ";",
              "ddi/household-budget/microdata_HBS_individual_raw.csv": ";",
              "published/household-budget/microdata_HBS_household_raw.csv": ";"}
# Not to be counted by their looks: only the dialect of the package says what a record of them is.
NEEDS_DIALECT = {"packages/parsing/deployments_dialect.csv", "published/star-wars-survey/StarWars.csv"}

# Described by a document that neither lists the file nor lies beside it under its name.
WITH_DICTIONARY = [
    ("ddi/tiny/101.csv", "ddi/tiny/101.xml", []),
    ("ddi/household-budget/microdata_HBS_household_raw.csv", "ddi/household-budget/HBS_2023_synth_ground-truth.xml", []),
    ("ddi/household-budget/microdata_HBS_individual_raw.csv", "ddi/household-budget/HBS_2023_synth_ground-truth.xml", []),
    ("ddi/household-budget/microdata_HBS_household_raw.csv", "ddi/household-budget/WLD_2023_SYNTH-CEN-EN_v01_M.xml", []),
    ("ddi/household-budget/microdata_HBS_individual_raw.csv", "ddi/household-budget/WLD_2023_SYNTH-CEN-EN_v01_M.xml", []),
    ("published/household-budget/microdata_HBS_household_raw.csv", "ddi/household-budget/HBS_2023_synth_ground-truth.xml",
     ["--resource", "F1"]),
    ("packages/parsing/deployments_missingvalues.csv", "packages/parsing/deployments_schema.json", []),
    ("packages/parsing/deployments_crlf.csv", "packages/parsing/deployments_schema.json", []),
    ("packages/parsing/deployments.csv.gz", "packages/parsing/deployments_schema.json", []),
]

# Documents that are refused, and the words of the refusal; what describes several tables says which.
NO_DATA = "the resource names no data; give it a \"path\" or \"data\""
NO_DICTIONARY = "this is no dictionary: a Data Package has the property \"resources\", a Table Schema \"fields\""
REFUSED = {
    "packages/camtrap/schemas/camtrap-dp-profile.json": NO_DICTIONARY,
    "packages/parsing/dialect.json": NO_DICTIONARY,
}
WITHOUT_DATA = {"packages/parsing/valid_minimal.json"}
SEVERAL_FILES = {"ddi/household-budget/HBS_2023_synth_ground-truth.xml", "ddi/household-budget/LFS_2023_synth_ground-truth.xml",
                 "ddi/household-budget/WLD_2023_SYNTH-CEN-EN_v01_M.xml", "ddi/household-budget/frame_2023_synth_perfect.xml"}
# What their own publisher calls invalid, and what is said of it. The others break rules of that publisher's alone.
TOLD = {
    "ddi/german/rules/invalid_duplicate_id.xml": ":22: the ID \"V1\" of variable \"q2\" belongs to an earlier variable too",
    "ddi/german/rules/invalid_missing_label.xml": ":12: variable \"V1\" has no name, and is called by its ID",
    "ddi/german/rules/invalid_no_categories.xml": ":12: variable \"q1\" is answered by categories, and none is described",
    "ddi/german/rules/invalid_xsd_bad_element.xml": "",
    "ddi/german/rules/invalid_labl_on_var.xml": "",
    "ddi/german/rules/invalid_vargrp_bad_type.xml": "",
}


def published(*endings):
    for folder in FOLDERS:
        for here, _, files in os.walk(os.path.join(DATA, folder)):
            for name in sorted(files):
                if name.endswith(endings):
                    yield os.path.relpath(os.path.join(here, name), DATA)


def run(*arguments):
    done = subprocess.run([PROGRAM, *arguments], cwd=DATA, stdin=subprocess.DEVNULL, capture_output=True, timeout=120, check=False)
    return done.returncode, done.stdout.decode("utf-8"), done.stderr.decode("utf-8")


def rows_and_columns(path):
    with open(os.path.join(DATA, path), "rb") as file:
        content = file.read()
    if path.endswith(".gz"):
        content = gzip.decompress(content)
    text = content.decode(ENCODINGS.get(path, "utf-8"))
    separator = SEPARATORS.get(path, "\t" if path.endswith(".tsv") else ",")
    header, *rows = [row for row in csv.reader(io.StringIO(text, newline=""), delimiter=separator) if row]
    return len(rows), len(header)


class EveryFileTest(unittest.TestCase):
    def codebook(self, *arguments):
        status, out, err = run(*arguments, "-F", "json", "-c", "CODEBOOK ALL /FILEINFO NAME CASECOUNT.")
        self.assertEqual(status, 0, f"{arguments}: {err}")
        report = json.loads(out)
        tables = [table for procedure in report["procedures"] for table in procedure["tables"]]
        return report["facts"], len(tables) - 1, err

    def test_dataFilesByThemselves(self):
        seen = 0
        for path in published(".csv", ".tsv", ".csv.gz"):
            with self.subTest(path):
                facts, tables, _ = self.codebook(path)
                seen += 1
                self.assertEqual(facts["variables"], tables)
                if path not in NEEDS_DIALECT:
                    self.assertEqual((facts["cases"], facts["variables"]), rows_and_columns(path))
        self.assertGreater(seen, 40)

    def test_dataFilesWithTheirDictionary(self):
        for data, dictionary, options in WITH_DICTIONARY:
            with self.subTest(data=data, dictionary=dictionary):
                facts, _, _ = self.codebook(data, "-d", dictionary, *options)
                self.assertEqual((facts["cases"], facts["variables"]), rows_and_columns(data))
                self.assertTrue(any(item["label"] for item in facts["items"]) or dictionary.endswith(".json"))

    def test_everyResourceOfEveryPackage(self):
        seen = 0
        for path in published(".json"):
            with open(os.path.join(DATA, path), encoding="utf-8") as file:
                document = json.load(file)
            if "resources" not in document:
                continue
            for resource in document["resources"]:
                choice = ["--resource", resource["name"]] if "name" in resource else []
                with self.subTest(path=path, resource=resource.get("name")):
                    seen += 1
                    if path in WITHOUT_DATA:
                        status, out, err = run(path, *choice)
                        self.assertEqual((status, out), (3, ""))
                        self.assertIn(NO_DATA, err)
                        continue
                    facts, tables, _ = self.codebook(path, *choice)
                    self.assertEqual(facts["variables"], tables)
                    self.assertGreater(facts["cases"], 0)
        self.assertGreater(seen, 20)

    def test_everyDictionaryIsRead(self):
        for path in published(".json", ".xml"):
            with open(os.path.join(DATA, path), encoding="utf-8") as file:
                text = file.read()
            document = json.loads(text) if path.endswith(".json") else {}
            if "resources" in document or path.startswith("nist"):  # certified results are no dictionary
                continue
            with self.subTest(path):
                if path in REFUSED:
                    status, out, err = run("convert", path, "-", "--to", "ddi")
                    self.assertEqual((status, out), (3, ""))
                    self.assertIn(f"{path}: {REFUSED[path]}", err)
                    continue
                if path in SEVERAL_FILES:
                    status, out, err = run("convert", path, "-", "--to", "ddi")
                    self.assertEqual((status, out), (3, ""))
                    self.assertIn("the document describes 2 files, and nothing says which one is meant", err)
                for choice in (["--resource", "F1"], ["--resource", "F2"]) if path in SEVERAL_FILES else ([],):
                    status, out, err = run("convert", path, "-", "--to", "table-schema", *choice)
                    self.assertEqual(status, 0, err)
                    self.assertTrue(json.loads(out)["fields"])
                    self.assertIn(TOLD.get(path, ""), err)

    def test_theDictionaryOfTheOpenSourceSurveySaysWhatThePublishedMappingsSay(self):
        folder = os.path.join(DATA, "published", "open-source-survey")
        tables = {}
        for name in ("question_text", "choice_text"):
            with open(os.path.join(folder, name + ".csv"), encoding="utf-8", newline="") as file:
                tables[name] = list(csv.DictReader(file))
        with open(os.path.join(folder, "clean_negative_incidents.schema.json"), encoding="utf-8") as file:
            fields = {field["name"]: field for field in json.load(file)["fields"]}
        for row in tables["question_text"]:
            field = fields[row["modeling_column"]]
            self.assertEqual(f"{field['description']} | {field['title']}", row["column_2024"])
        for row in tables["choice_text"]:
            field = fields[row["modeling_column"]]
            self.assertIn(row["response_2024"], field.get("categories", [field["title"]]))
        self.assertEqual(len(tables["question_text"]), len(fields) - 2)


if __name__ == "__main__":
    unittest.main()
