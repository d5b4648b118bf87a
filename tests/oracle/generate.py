#!/usr/bin/env python3
"""Random datasets and commands, the same for the same seed and number.

usage: generate.py SEED NUMBER FOLDER     writes one case, to look at it"""

import csv
import io
import json
import os
import random
import sys

from dictionary import well_formed

NAMES = ["a", "b", "B2", "Age", "x1", "q1a", "sex", "#n", "@m", "v_2", "n.1", "Z$", "été", "Zoë", "income", "Q2", "c", "z",
         "long_name_of_a_variable", "T9", "id"]
FOREIGN_NAMES = ["my var", "2nd", "r-s (t)", "per%cent", "3 x"]
SET_NAMES = ["$s1", "$Multi", "$b", "$Zé", "$#k"]
WORDS = ["low", "high", "Yes", "no", "Müller, A.", "x", "it's", "a \"b\"", "north", "Süd", "^1 and ^2", "[n]", "42", "tab", "零"]
ATTRIBUTE_NAMES = ["Note", "$res", "@hid", "$@both", "Rank", "src", "$x2"]
FORMATS = {"integer": ["F8", "F4", "F8.2", "COMMA8", "COMMA10.1", "DOT9", "DOLLAR9.2", "PCT6.1", "F12.3"],
           "number": ["F8.2", "F5.1", "F10.4", "COMMA12.2", "DOT12.3", "DOLLAR10.2", "PCT8.2", "F8"],
           "date": ["SDATE10", "DATE11", "ADATE10", "EDATE10"]}
KEYWORDS = {"VARINFO": ["POSITION", "LABEL", "TYPE", "FORMAT", "MEASURE", "ROLE", "ATTRIBUTES", "VALUELABELS", "MISSING",
                        "RESERVEDATTRIBUTES"],
            "FILEINFO": ["NAME", "LOCATION", "CASECOUNT", "LABEL", "ATTRIBUTES", "DOCUMENTS", "WEIGHT",
                         "RESERVEDATTRIBUTES"],
            "STATISTICS": ["COUNT", "PERCENT", "MEAN", "STDDEV", "QUARTILES"]}


class Case:
    """One dataset with one command text, as files and options of the program."""

    def __init__(self, files, dictionary, command, weight):
        self.files = files            # name to text
        self.dictionary = dictionary  # a file name
        self.command = command
        self.weight = weight          # None, or the text of --weight

    def write(self, folder):
        os.makedirs(folder, exist_ok=True)
        for name, text in {**self.files, "command.txt": self.command}.items():
            with open(os.path.join(folder, name), "w", encoding="utf-8", newline="") as file:
                file.write(text)

    def arguments(self, folder, data=None):
        """`data` names the data where they do not lie in the case's own file."""
        if data is None:
            data = [os.path.join(folder, "data.csv")]
        else:
            data = data + ["-d", os.path.join(folder, self.dictionary)]
        arguments = data + ["-f", os.path.join(folder, "command.txt"), "-F", "json"]
        return arguments if self.weight is None else arguments + ["--weight", self.weight]


def make_case(seed, number):
    numbers = random.Random(f"{seed}:{number}")
    dataset = DatasetMaker(numbers)
    files, dictionary = dataset.files()
    weight = None
    if numbers.random() < 0.08:
        weight = numbers.choice(["", dataset.numeric_name() or ""])
    return Case(files, dictionary, CommandMaker(numbers, dataset).text(), weight)


class DatasetMaker:

    def __init__(self, numbers):
        self.numbers = numbers
        self.row_count = 0 if numbers.random() < 0.04 else numbers.choice([1, 2, 5, numbers.randrange(61),
                                                                           numbers.randrange(61)])
        if numbers.random() < 0.03:
            self.row_count = numbers.choice([199, 200, 201, 202, 260])
        self.fields = []
        self.columns = []
        names = numbers.sample(NAMES, numbers.randrange(1, 13))
        if numbers.random() < 0.15:
            names[numbers.randrange(len(names))] = numbers.choice(FOREIGN_NAMES)
        self.schema_missing = numbers.choice([None, None, None, ["", "NA"], ["", "-99"], [{"value": "9", "label": "None"},
                                                                                        {"value": ""}]])
        for name in names:
            self.add_field(name)
        self.schema = {"fields": self.fields}
        if self.schema_missing is not None:
            self.schema["missingValues"] = self.schema_missing
        own = {}
        if numbers.random() < 0.4:
            self.add_weight(own)
        self.sets = self.make_sets()
        if self.sets or self.chance(0.1):
            own["multipleResponseSets"] = self.sets
        if own:
            self.schema["codebook"] = own

    def chance(self, probability):
        return self.numbers.random() < probability

    def names(self):
        return [field["name"] for field in self.fields if well_formed(field["name"])]

    def numeric_name(self):
        names = [f["name"] for f in self.fields if f["type"] in ("integer", "number") and well_formed(f["name"])]
        return self.numbers.choice(names) if names else None

    # Fields and their cells.

    def add_field(self, name):
        numbers = self.numbers
        kind = numbers.choice(["integer"] * 5 + ["number"] * 3 + ["string"] * 4 + ["boolean", "date", "year", "datetime",
                                                                                  "time"])
        field = {"name": name, "type": kind}
        own = {}
        cells, domain = self.make_cells(kind)
        missing = self.schema_missing
        if self.chance(0.4):
            missing = self.make_missing(kind, domain)
            field["missingValues"] = missing
        blank_rate = numbers.choice([0, 0, 0.1, 0.5]) if self.chance(0.95) else 1
        codes = [m["value"] if isinstance(m, dict) else m for m in missing or [""]]
        for row in range(self.row_count):
            if numbers.random() < blank_rate:
                cells[row] = numbers.choice(codes + [""])
        if kind in ("integer", "number") and self.chance(0.15):
            own["missingRanges"] = [numbers.choice([{"min": 8}, {"max": -1}, {"min": 2, "max": 3.5}, {"min": 90, "max": 99}])]
        self.add_labels(field, own, kind, domain)
        if self.chance(0.6):
            field["title"] = numbers.choice(["Label of " + name, "Ünï ^2 code", "Two\twords", "x"])
        if self.chance(0.15):
            field["description"] = "About " + name
        if self.chance(0.5):
            own["measure"] = numbers.choice(["nominal", "ordinal", "scale", "scale", "unknown"])
        if self.chance(0.2):
            own["role"] = numbers.choice(["input", "target", "both", "none", "partition", "split"])
        if kind in FORMATS and self.chance(0.6):
            own["format"] = numbers.choice(FORMATS[kind])
        if kind == "string" and self.chance(0.3):
            field["constraints"] = {"maxLength": numbers.choice([1, 4, 8, 20])}
        if self.chance(0.35):
            own["attributes"] = self.make_attributes()
        if own:
            field["codebook"] = own
        self.fields.append(field)
        self.columns.append(cells)

    def make_cells(self, kind):
        """The cells, and the domain from which they were drawn."""
        numbers = self.numbers
        if kind == "integer":
            domain = numbers.choice([[1, 2], [1, 2, 3, 9], list(range(11)), list(range(-3, 4)), list(range(40)),
                                     [numbers.randrange(-1000, 1000) for _ in range(60)], [10**12, 10**15 + 1, 7],
                                     list(range(numbers.choice([199, 200, 201, 230])))])
            domain = [str(v) for v in domain]
        elif kind == "number":
            domain = numbers.choice([["0.1", "0.2", "0.3"], ["1", "2", "3.5", "2.50"], ["-1.25", "0.5", "1e3", "1.5e-3"],
                                     [str(round(numbers.gauss(10, 25), numbers.randrange(1, 6))) for _ in range(50)],
                                     [repr(numbers.random()) for _ in range(50)], ["1", "2", "3"],
                                     ["NaN", "1.5", "INF", "2"], ["1000000.1", "1000000.2", "1000000.4"],
                                     ["1e150", "-2.5e149", "1", "3"], ["1e-150", "3e-151", "0"],
                                     ["9007199254740993", "0.1", "-9007199254740993"]])
        elif kind == "string":
            domain = numbers.choice([["m", "f"], WORDS, ["A", "a", "B", "b"], [f"code{k}" for k in range(30)],
                                     ["1", "2", "9"], ["abcdefgh", "abcdefghij", "abc"], ["m", "m ", "f", "x  "]])
        elif kind == "boolean":
            domain = numbers.choice([["true", "false"], ["1", "0"], ["TRUE", "False"], ["true"]])
        elif kind == "year":
            domain = [str(y) for y in range(1990, 2025, numbers.choice([1, 5]))]
        elif kind == "date":
            domain = [f"{numbers.randrange(1900, 2100)}-{numbers.randrange(1, 13):02d}-{numbers.randrange(1, 29):02d}"
                      for _ in range(numbers.choice([2, 30]))]
        elif kind == "datetime":
            domain = [f"20{numbers.randrange(10, 30)}-{numbers.randrange(1, 13):02d}-{numbers.randrange(1, 29):02d}"
                      f"T{numbers.randrange(24):02d}:{numbers.randrange(60):02d}:{numbers.randrange(60):02d}"
                      for _ in range(5)]
        else:
            domain = [f"{numbers.randrange(24):02d}:{numbers.randrange(60):02d}:{numbers.randrange(60):02d}"
                      for _ in range(5)]
        cells = [numbers.choice(domain) for _ in range(self.row_count)]
        if kind in ("integer", "number", "date") and self.row_count and self.chance(0.03):
            cells[numbers.randrange(self.row_count)] = "4O"
        return cells, domain

    def make_missing(self, kind, domain):
        numbers = self.numbers
        if kind in ("integer", "number", "string"):
            entries = numbers.choice([["", "9"], ["", "-99", "NA"], ["9", "2"], ["NA"], ["", numbers.choice(domain)], [""]])
        else:
            entries = numbers.choice([["", "NA"], ["NA"], [""]])
        entries = list(dict.fromkeys(e for e in entries if e not in ("NaN", "INF")))
        if self.chance(0.4):
            return [{"value": e, "label": "Missing " + e} if self.chance(0.7) else {"value": e} for e in entries]
        return entries

    def add_labels(self, field, own, kind, domain):
        numbers = self.numbers
        if kind not in ("integer", "number", "string", "year", "boolean") or not self.chance(0.55):
            return
        values = list(dict.fromkeys(v for v in domain if v not in ("NaN", "INF")))
        values = numbers.sample(values, numbers.randrange(1, len(values) + 1))
        if kind == "integer":
            values += numbers.sample(["-99", "9", "77", "5"], numbers.randrange(3))
        if kind == "boolean":
            values = numbers.sample(["0", "1"], numbers.randrange(1, 3))
        if kind == "string":
            values += numbers.sample(["9", "NA", "other"], numbers.randrange(3))
        entries = []
        for value in dict.fromkeys(values):
            label = numbers.choice(["Label " + value, "same", "été ^1", "x"])
            entries.append({"value": value if kind == "string" else json.loads(value), "label": label})
        if kind in ("integer", "string") and self.chance(0.6):
            bare = self.chance(0.15)
            field["categories"] = [e["value"] for e in entries] if bare else entries
            if self.chance(0.3):
                field["categoriesOrdered"] = self.chance(0.7)
            if self.chance(0.8):
                return
        own["valueLabels"] = entries[:numbers.randrange(1, len(entries) + 1)]

    def make_attributes(self):
        numbers = self.numbers
        attributes = {}
        for name in numbers.sample(ATTRIBUTE_NAMES, numbers.randrange(1, 5)):
            attributes[name] = numbers.choice(["1", "2", "10", "", "text ä", ["b", "a"], [""], ["", "y"], [],
                                               [f"v{k}" for k in range(numbers.choice([3, 9, 10, 12]))]])
        return attributes

    def add_weight(self, own):
        numbers = self.numbers
        name = self.numeric_name()
        if self.chance(0.7) and len(self.fields) < 12:
            name = "wt"
            domain = numbers.choice([["1", "2", "3"], ["0.5", "1.5", "1"], ["0.1", "0.2", "0.7"], ["0", "-1", "2", ""],
                                     ["0"], ["0.25", "", "1"], [repr(numbers.random() * 3) for _ in range(20)],
                                     ["1e-3", "1", "100"], ["1e20", "1"], ["1e-20", "1"], ["0.3333333333333333", "0.6666666666666666"]])
            self.fields.append({"name": name, "type": "number"})
            self.columns.append([numbers.choice(domain) for _ in range(self.row_count)])
        if name is not None:
            own["weight"] = name

    # Sets and files.

    def make_sets(self):
        numbers = self.numbers
        sets = []
        if not self.chance(0.55):
            return sets
        by_kind = {}
        for field in self.fields:
            if well_formed(field["name"]):
                by_kind.setdefault("string" if field["type"] == "string" else "numeric", []).append(field["name"])
        for name in numbers.sample(SET_NAMES, numbers.randrange(1, 4)):
            kind = numbers.choice(sorted(by_kind)) if by_kind else None
            members = by_kind.get(kind)
            if not members:
                continue
            entry = {"name": name, "type": numbers.choice(["category", "dichotomy"]),
                     "variables": numbers.sample(members, numbers.randrange(1, len(members) + 1))}
            if self.chance(0.6):
                entry["label"] = numbers.choice(["", "Set of " + name[1:], "Ä set"])
            if entry["type"] == "dichotomy":
                values = {"numeric": ["1", "2", "9", "1.5", "0", "1.0"],
                          "string": ["1", "9", "Yes", "m", "abcdefghij", "abcdefgh", "low", "M"]}
                entry["countedValue"] = numbers.choice(values[kind])
                if self.chance(0.3):
                    entry["categoryLabels"] = numbers.choice(["variableLabels", "countedValues"])
            sets.append(entry)
        return sets

    def files(self):
        numbers = self.numbers
        text = io.StringIO()
        writer = csv.writer(text, lineterminator=numbers.choice(["\n", "\r\n"]),
                            quoting=numbers.choice([csv.QUOTE_MINIMAL, csv.QUOTE_ALL]))
        columns = [[field["name"]] + cells for field, cells in zip(self.fields, self.columns)]
        if self.chance(0.15):
            numbers.shuffle(columns)
        writer.writerows(zip(*columns))
        if self.chance(0.5):
            return {"data.csv": text.getvalue(), "data.schema.json": pretty(self.schema)}, "data.schema.json"
        resource = {"name": "data", "path": "data.csv", "schema": self.schema}
        package = {"resources": [resource]}
        for target in (resource, package):
            if self.chance(0.4):
                target["title"] = numbers.choice(["A file", "Données"])
            if self.chance(0.3):
                target["description"] = numbers.choice(["One line", "a\nb\nc", "x\ny"])
            own = {}
            if self.chance(0.4):
                own["attributes"] = self.make_attributes()
            if target is resource and self.chance(0.3):
                own["documents"] = numbers.choice([["one"], ["a\nb", "c"], [["a", "b", "c"], ["d"]], [], ["two", ["x", "y"]]])
            if own:
                target["codebook"] = own
        for name, value in (("name", "pack"), ("version", "1.2"), ("keywords", ["k1", "k2"]), ("id", "x-1"),
                            ("homepage", "https://example.org/"), ("created", "2024-01-02T03:04:05Z")):
            if self.chance(0.25):
                package[name] = value
        return {"data.csv": text.getvalue(), "datapackage.json": pretty(package)}, "datapackage.json"


def pretty(value):
    return json.dumps(value, indent=1, ensure_ascii=False)


class CommandMaker:

    def __init__(self, numbers, dataset):
        self.numbers = numbers
        self.dataset = dataset

    def chance(self, probability):
        return self.numbers.random() < probability

    def text(self):
        commands = [self.command() for _ in range(1 if self.chance(0.75) else self.numbers.randrange(2, 4))]
        text = ".\n".join(commands)
        return text + self.numbers.choice(["", ".", ".\n", "\n", " . \n"])

    def command(self):
        numbers = self.numbers
        if self.chance(0.02):
            return numbers.choice(["FREQUENCY a", "CODEBOO", "DESCRIBE ALL /VARINFO", "codebooks"])
        tokens = [numbers.choice(["CODEBOOK", "CODEBOOK", "codebook", "CodeBook"])]
        if self.chance(0.6):
            tokens += self.list_tokens(self.chance(0.3))
        wild = self.chance(0.1)
        subcommands = [name for name in ("VARINFO", "FILEINFO", "STATISTICS", "OPTIONS") if self.chance(0.45)]
        if wild and self.chance(0.15):
            subcommands.append(numbers.choice(["VARINFO", "FILEINFO", "STATISTICS", "OPTIONS"]))
        numbers.shuffle(subcommands)
        for name in subcommands:
            tokens += self.subcommand_tokens(name, wild)
        if wild and self.chance(0.12):
            tokens.insert(numbers.randrange(1, len(tokens) + 1),
                          numbers.choice(["/", "=", "(", ")", "[", "]", "7", "'LABEL'", "FOO", "/FOO", "TO", "$ALL", "ALL"]))
        return self.laid_out(tokens)

    def laid_out(self, tokens):
        """Tokens with separators between them; none where a single token stands."""
        text = tokens[0]
        for before, token in zip(tokens, tokens[1:]):
            single = before[-1] in "[]()=/" or token[0] in "[]()=/"
            if single and self.chance(0.6):
                text += token
            else:
                text += self.numbers.choice([" ", " ", " ", ", ", "\n", "\n  "]) + token
        return text

    def cased(self, word):
        if self.chance(0.75):
            return word
        return self.numbers.choice([word.lower(), word.upper(), word.swapcase()])

    # The list.

    def variable_name(self, wild):
        numbers = self.numbers
        names = self.dataset.names()
        if not names or (wild and self.chance(0.12)):
            return numbers.choice(["nosuch", "12", "x.", "with", "a-b", "#", "_u", "'a'", "q$", "-5", "été2", "'ALL'", "'['", "'$ALL'",
                                   "'a b'"])
        name = numbers.choice(names)
        return f"'{name}'" if self.chance(0.04) else self.cased(name)

    def set_name(self, wild):
        if not self.dataset.sets or (wild and self.chance(0.2)):
            return self.numbers.choice(["$none", "$", "$all2", "$a"])
        return self.cased(self.numbers.choice(self.dataset.sets)["name"])

    def bracket(self, wild):
        if not self.chance(0.3):
            return []
        keyword = self.numbers.choice(["N", "O", "S", "n", "o", "s"])
        if wild and self.chance(0.4):
            return self.numbers.choice([["[", "X", "]"], ["["], ["[", keyword], ["[", keyword, "x"], ["[", "]"], ["]"],
                                        ["[", "N", "O", "]"], ["[", "S", "]", "]"], ["(", "N", ")"]])
        return ["[", keyword, "]"]

    def list_tokens(self, wild):
        numbers = self.numbers
        names = self.dataset.names()
        if wild or not names:
            tokens = []
            for _ in range(numbers.randrange(1, 5)):
                tokens += self.wild_item()
            return tokens
        tokens = []
        unused = numbers.sample(names, len(names))
        shape = numbers.random()
        if shape < 0.15:
            tokens += [self.cased("ALL")] + self.bracket(False)
        elif shape < 0.4 and len(unused) >= 2:
            before = unused[2:2 + numbers.choice([0, 0, 1])]
            for name in before + unused[:1]:
                tokens += [self.cased(name)] + self.bracket(False)
            tokens += [self.cased("TO"), self.cased(unused[1])] + self.bracket(False)
        else:
            for name in unused[:numbers.randrange(1, len(unused) + 1)]:
                tokens += [self.cased(name)] + self.bracket(False)
        if self.dataset.sets and self.chance(0.5):
            if self.chance(0.3):
                tokens = tokens + [self.cased("$ALL")] if self.chance(0.5) else [self.cased("$ALL")] + tokens
            else:
                chosen = numbers.sample(self.dataset.sets, numbers.randrange(1, len(self.dataset.sets) + 1))
                for entry in chosen:
                    end = [self.cased(entry["name"])] + (["[", "N", "]"] if self.chance(0.2) else [])
                    tokens = tokens + end if self.chance(0.7) else end + tokens
        return tokens

    def wild_item(self):
        shape = self.numbers.random()
        if shape < 0.45:
            return [self.variable_name(True)] + self.bracket(True)
        if shape < 0.65:
            first, second = self.variable_name(True), self.variable_name(True)
            if self.chance(0.15):
                first = self.set_name(True)
            if self.chance(0.15):
                second = self.set_name(True)
            tokens = [first] + self.bracket(True) + [self.cased("TO"), second] + self.bracket(True)
            return tokens if self.chance(0.9) else tokens[:-1]
        if shape < 0.8:
            return [self.set_name(True)] + self.bracket(True)
        if shape < 0.9:
            return [self.cased("$ALL")] + self.bracket(True)
        return [self.cased("ALL")] + self.bracket(True)

    # The subcommands.

    def subcommand_tokens(self, name, wild):
        numbers = self.numbers
        tokens = ["/", self.cased(name)]
        if self.chance(0.15):
            tokens.append("=")
        if name == "OPTIONS":
            found = self.option_tokens(wild)
            return tokens + found if found else tokens[:2]
        keywords = KEYWORDS[name]
        if name == "STATISTICS" and self.chance(0.2):
            found = ["NONE"]
        else:
            found = numbers.sample(keywords, numbers.randrange(1, len(keywords) + 1))
            if self.chance(0.5):
                found = found[:2]
        if self.chance(0.06):
            found = [] if self.chance(0.5) else found + (["NONE"] if name == "STATISTICS" else found)
        if wild and self.chance(0.2):
            found = numbers.choice([[], found + found[:1], found + ["NONE"], found + ["FOO"], found + ["LABELS"],
                                    found + ["=", "3"], found + ["(", "x", ")"], found[:-1] + ["COUN"]])
        found = [self.cased(word) for word in found]
        return tokens + found if found else tokens[:2]

    def option_tokens(self, wild):
        numbers = self.numbers
        tokens = []
        for keyword in numbers.sample(["MAXCATS", "VARORDER", "SORT"], numbers.randrange(0 if self.chance(0.06) else 1, 4)):
            if keyword == "MAXCATS":
                values = ["1", "2", "3", "3", "5", "10", "24", "200"]
                if self.chance(0.15):
                    values = ["0", "-1", "abc", "2.5", "5.0", "99999999999", "'4'", "2147483647"]
                tokens += [self.cased(keyword)] + self.value_tokens([numbers.choice(values)])
            elif keyword == "SORT":
                values = ["ASCENDING", "DESCENDING"] + (["UP", "ASC"] if wild else [])
                tokens += [self.cased(keyword)] + self.value_tokens([self.cased(numbers.choice(values))])
            else:
                order = numbers.choice(["FILE", "ALPHA", "VARLIST", "MEASURE", "ATTRIBUTE"] + (["SIZE"] if wild else []))
                value = [self.cased(order)]
                if order == "ATTRIBUTE":
                    name = numbers.choice(["Rank", "Rank", "rank", "Note", "src", "$res", "@hid", "nosuch", "'Note'",
                                           "Description"])
                    value += ["(", name, ")"]
                tokens += [self.cased(keyword)] + self.value_tokens(value)
            if wild and self.chance(0.1):
                tokens = tokens[:-1]
            if wild and self.chance(0.05):
                tokens += numbers.choice([["MAXCATS", "=", "5"], ["SORT"], ["=", "5"], ["MAXCATS", "=", "(", "5", ")"],
                                          ["SORT", "(", ")"], ["VARORDER", "=", "FILE", "(", "x", ")"]])
        return tokens

    def value_tokens(self, value):
        return ["="] + value if self.chance(0.6) else ["("] + value + [")"]


def main():
    seed, number, folder = sys.argv[1:4]
    make_case(int(seed), int(number)).write(folder)


if __name__ == "__main__":
    main()
