#!/usr/bin/env python3
"""A language changes a report's fixed texts, each as its catalog says, and nothing else.

    tests/languages/reports_test.py --program build/dev/codebook

Every golden case and the demo's survey are described in English and in a language; the two JSON reports are walked side by
side. All golden cases are run in German, the demo in every language. Each fixed text must stand in every catalog."""

import argparse
import concurrent.futures
import json
import os
import re
import subprocess
import sys
import tempfile

from catalogs import CATALOGS, ROOT, TEMPLATE, compiled, read_entries

sys.path.insert(0, str(ROOT / "tests" / "golden"))
import datafiles  # noqa: E402
from casefile import find_cases  # noqa: E402

SECONDS_A_RUN = 120
EVERY_CASE_IN = "de"
DEMO = ROOT / "examples" / "nonvoters" / "nonvoters_data.csv"
PLACEHOLDER = re.compile(r"\^([1-9])")


class Language:
    def __init__(self, path):
        self.code = path.stem
        self.translate = compiled(path)
        self.texts = {entry.text: self.pattern(entry.text) for entry in read_entries(TEMPLATE)}

    @staticmethod
    def pattern(text):
        """What a text looks like once its placeholders are filled."""
        parts = PLACEHOLDER.split(text)
        named = [re.escape(part) if i % 2 == 0 else f"(?P<p{part}>.*)" for i, part in enumerate(parts)]
        return re.compile("".join(named), re.DOTALL)

    def filled(self, text):
        """All that may stand for an English text whose placeholders are filled."""
        found = set()
        for template, pattern in self.texts.items():
            if match := pattern.fullmatch(text):
                found.add(PLACEHOLDER.sub(lambda number, match=match: match[f"p{number[1]}"], self.translate(template)))
        return found


class Walk:
    """Two reports side by side; gathers what differs otherwise than it should, and the fixed texts met."""

    def __init__(self, language):
        self.language = language
        self.faults = []
        self.fixed = set()
        self.notes = 0

    def walk(self, english, other, path=""):
        if isinstance(english, dict) and isinstance(other, dict):
            if list(english) != list(other):
                self.faults.append(f"{path}: {list(other)} instead of {list(english)}")
            elif english.get("fixed") is True:
                self.walk_fixed(english, other, path)
            else:
                for key, value in english.items():
                    self.walk_member(key, value, other[key], f"{path}.{key}")
        elif isinstance(english, list) and isinstance(other, list) and len(english) == len(other):
            for i, pair in enumerate(zip(english, other)):
                self.walk(*pair, f"{path}[{i}]")
        elif type(english) is not type(other) or english != other:
            self.faults.append(f"{path}: {other!r} instead of {english!r}")

    def walk_member(self, key, english, other, path):
        if path == ".facts.language":
            if (english, other) != ("en", self.language.code):
                self.faults.append(f"{path}: {english!r} and {other!r}")
        elif key == "column":  # by the text of its label
            if other != self.language.translate(english):
                self.faults.append(f"{path}: {other!r} is not what the catalog says for {english!r}")
        elif path == ".facts.notes":
            self.walk_notes(english, other, path)
        else:
            self.walk(english, other, path)

    def walk_fixed(self, english, other, path):
        self.fixed.add(english["text"])
        if other["text"] != self.language.translate(english["text"]):
            self.faults.append(f"{path}: {other['text']!r} is not what the catalog says for {english['text']!r}")
        for key, value in english.items():
            if key != "text":
                self.walk_member(key, value, other[key], f"{path}.{key}")

    def walk_notes(self, english, other, path):
        if len(english) != len(other):
            self.faults.append(f"{path}: {len(other)} notes instead of {len(english)}")
        for note, translated in zip(english, other):
            self.notes += 1
            if set(note) != {"name", "text"} or set(translated) != set(note):
                self.faults.append(f"{path}: {note} and {translated}")
                continue
            for part in ("name", "text"):
                if translated[part] not in self.language.filled(note[part]):
                    self.faults.append(f"{path}: {translated[part]!r} is not what the catalog says for {note[part]!r}")


def report(program, data, language, *options):
    done = subprocess.run([program, data, "-F", "json", "--lang", language, *options], stdin=subprocess.DEVNULL,
                          capture_output=True, timeout=SECONDS_A_RUN, check=False)
    return done.returncode, json.loads(done.stdout) if done.stdout else None, done.stderr


def compare(program, language, name, data, options):
    """The walk over a case, whose faults say where they are."""
    walk = Walk(language)
    status, english, messages = report(program, data, "en", *options)
    other_status, other, other_messages = report(program, data, language.code, *options)
    if (status, messages) != (other_status, other_messages) or (english is None) != (other is None):
        walk.faults.append(f"status {other_status} instead of {status}, or other messages")
    elif english is not None:
        walk.walk(english, other)
    walk.faults = [f"{name}, {language.code}: {fault}" for fault in walk.faults]
    return walk


def compare_case(program, language, case):
    with tempfile.TemporaryDirectory(prefix="languages.") as folder:
        kind = next(kind for kind in case.sources() or datafiles.WITHOUT_DUCKDB if kind in datafiles.ALL)
        if kind not in datafiles.WITHOUT_DUCKDB:
            return Walk(language)
        data = datafiles.write_data(kind, folder, case.rows(), None)
        if case.dictionary() is not None:
            with open(os.path.join(folder, "data.schema.json"), "w", encoding="utf-8") as file:
                file.write(case.dictionary())
        return compare(program, language, case.name, data, ["-c", case.command(), *case.options()])


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--program", required=True)
    program = os.path.abspath(parser.parse_args().program)
    languages = {path.stem: Language(path) for path in CATALOGS}

    with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
        cases = find_cases(ROOT / "tests" / "golden", [])
        walks = list(pool.map(lambda case: compare_case(program, languages[EVERY_CASE_IN], case), cases))
        walks += pool.map(lambda language: compare(program, language, "demo", DEMO, []), languages.values())

    faults = [fault for walk in walks for fault in walk.faults]
    fixed = set().union(*(walk.fixed for walk in walks))
    notes = sum(walk.notes for walk in walks)
    texts = {entry.text for entry in read_entries(TEMPLATE)}
    faults += [f"the fixed text {text!r} is in no catalog" for text in sorted(fixed - texts)]
    if len(fixed) < 40 or notes < 100:
        faults.append(f"only {len(fixed)} fixed texts and {notes} notes were met; the reports cannot be whole")
    for fault in faults[:50]:
        print(fault)
    print(f"{len(walks)} reports, {len(fixed)} fixed texts, {notes} notes, {len(faults)} faults")
    sys.exit(1 if faults else 0)


if __name__ == "__main__":
    main()
