"""A golden case: one text file of sections, each begun by a line `--- name`.

    about       what the case shows, for the reader
    data        the cases as CSV with commas; or data-file, a path below the project's root
    dictionary  a Table Schema (JSON); or dictionary-file; neither: the program infers one
    sources     the kinds of data file to replay the case from (datafiles.py); absent: all
    options     further options of the command line, one a line
    command     the command's text
    status      the exit status
    messages    what the program has to say, in the notation of reportdump.py
    report      the report, in the same notation; empty when there is none
    facts       the facts beside the report, in the same notation; absent: only looked at for being the same in every run
"""

import csv
import io
import os

PROJECT = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
ENDING = ".golden"
MARK = "--- "
INPUTS = ("about", "data", "data-file", "dictionary", "dictionary-file", "sources", "options", "command")
OUTCOME = ("status", "messages", "report", "facts")


class CaseError(Exception):
    """The case file cannot be used; says which and why."""


class GoldenCase:
    def __init__(self, path):
        self.path = path
        self.name = os.path.basename(path)[: -len(ENDING)]
        self.sections = read_sections(path)
        if ("data" in self.sections) == ("data-file" in self.sections):
            raise CaseError(f"{path}: give one of the sections data and data-file")
        for name in ("about", "command"):
            if not self.sections.get(name, "").strip():
                raise CaseError(f"{path}: section {name} is missing or empty")

    def rows(self):
        """The cells, header first, as texts. An empty line is a row of one empty cell."""
        text = self._text("data")
        return [row or [""] for row in csv.reader(io.StringIO(text, newline=""), strict=True)]

    def dictionary(self):
        """The dictionary's text; None when the program is to infer one."""
        if "dictionary" in self.sections or "dictionary-file" in self.sections:
            return self._text("dictionary")
        return None

    def sources(self):
        """Names of the kinds of data file; None for all."""
        return self.sections["sources"].split() if "sources" in self.sections else None

    def options(self):
        return self.sections.get("options", "").splitlines()

    def command(self):
        return self.sections["command"]

    def outcome(self):
        """What is expected: status, messages, report and, where the case has them, facts as one text."""
        return self.outcome_of({name: self.sections.get(name, "") for name in OUTCOME})

    def outcome_of(self, parts):
        """The same of other parts."""
        return "".join(f"{MARK}{name}\n{parts[name]}" for name in OUTCOME if name != "facts" or name in self.sections)

    def write_outcome(self, outcome):
        """Puts another outcome in the place of the expected one."""
        text = "".join(f"{MARK}{name}\n{self.sections[name]}" for name in INPUTS if name in self.sections)
        temporary = self.path + ".new"
        with open(temporary, "w", encoding="utf-8", newline="") as file:
            file.write(text + outcome)
        os.replace(temporary, self.path)

    def _text(self, name):
        if name in self.sections:
            return self.sections[name]
        path = os.path.join(PROJECT, self.sections[name + "-file"].strip())
        with open(path, encoding="utf-8", newline="") as file:
            return file.read()


def read_sections(path):
    sections = {}
    name = None
    with open(path, encoding="utf-8", newline="") as file:
        for number, line in enumerate(file, 1):
            if line.startswith(MARK):
                name = line[len(MARK):].strip()
                if name not in INPUTS + OUTCOME:
                    raise CaseError(f"{path}, line {number}: there is no section {name!r}")
                if name in sections:
                    raise CaseError(f"{path}, line {number}: section {name!r} stands twice")
                sections[name] = ""
            elif name is None:
                raise CaseError(f"{path}, line {number}: a case begins with a line {MARK!r} and a section's name")
            else:
                sections[name] += line
    return sections


def find_cases(folder, wanted):
    """All cases of the folder, or those whose names are given (with or without path and ending)."""
    paths = sorted(os.path.join(folder, name) for name in os.listdir(folder) if name.endswith(ENDING))
    if wanted:
        names = {os.path.basename(name).removesuffix(ENDING) for name in wanted}
        unknown = names - {os.path.basename(path).removesuffix(ENDING) for path in paths}
        if unknown:
            raise CaseError(f"{folder} has no case {', '.join(sorted(unknown))}")
        paths = [path for path in paths if os.path.basename(path).removesuffix(ENDING) in names]
    if not paths:
        raise CaseError(f"{folder} holds no case (*{ENDING})")
    return [GoldenCase(path) for path in paths]
