"""Cases with hostile texts wherever a text can stand: labels, value labels, values, attributes, documents, names."""

import json
import random

SCRIPT = "<script>alert(1)</script>"

# One property each; all of them stand in every place of the case of all places.
TEXTS = [
    SCRIPT, "</script><img src=x onerror=alert(1)>", "<!-- comment", "--> ]]> <![CDATA[", "<b>bold</b> &amp; &lt; &#65; & &copy", "\"double\" 'single' ‘curly’",
    "a|b", "|", "\\|", "\\\\|", "ends with a backslash\\", "`code`", "``", "*bold* **strong** _low_ __low__ ~~gone~~", "snake_case_name", "_", "* list", "- list", "+ list", "1. list",
    "# heading", "trailing ##", "> quote", "---", "===", "| --- |", "[link](http://example.org)", "![picture](x.png)", "[ref][]", "[^1]", "[ ] task", "<http://example.org>",
    "http://example.org/a_b", "https://example.org", "ftp://example.org", "www.example.org", "WWW.example.org", "see (www.example.org).", "mail a@example.org now", "mailto:a@example.org",
    "@someone", "#12", "o/r#12", ":smile: :+1: 12:30:45", "$x^2$ and $y$", "$5", "    indented", " blank before", "blank behind ", "  ", "\u00a0hard\u00a0", "\u3000wide\u3000", "two  blanks",
    "line\nbreak", "line\r\nbreak", "\nfirst", "last\n", "a\n\n\nb", "tab\tin", "\ttab", "carriage\rreturn",
    "=1+1", "+1", "-1", "@SUM(A1)", "'=1", "''=1", "'quoted'", "=cmd|' /C calc'!A0", "\uff1d1+1", "-", "semicolon;=1", "comma, \"quote\"",
    "\x1b[31mred\x1b[0m", "\x07bell", "nul\x00", "\x7f\x85\x9b", "\u202eright to left\u202c", "\u2066isolate\u2069", "zero\u200bwidth\u200djoin\u2060er", "\ufeffmark", "soft\u00adhyphen", "\u2028\u2029",
    "\ufffe\uffff", "\U000e0041tag", "\u05e9\u05dc\u05d5\u05dd \u05e2\u05d5\u05dc\u05dd", "\u0645\u0631\u062d\u0628\u0627", "\u6771\u4eac", "e\u0301 \u00e9", "\U0001f469\u200d\U0001f469\u200d\U0001f467", "\u2764\ufe0f",
    "\U0001f1e9\U0001f1ea", "{{ liquid }}", "%s %n ${x}", "\\x1b", "0", "00123", "1e5", "TRUE", "NULL", "NaN", ".", "2024-01-01", "1,5", "",
]  # fmt: skip

# What the readers of Markdown and CSV look for.
MARKS = list("\\`*_{}[]()#+-.!|<>&~:;@$=^'\"/ \t\n,%?") + ["a", "b", "1", "www.", "http://", "é", "&amp;", "<br>", "**", "__"]


class Case:
    """What collect.py needs of a case, as a golden case has it."""

    def __init__(self, name, rows, dictionary, command, options=()):
        self.name = name
        self._rows = rows
        self._dictionary = dictionary
        self._command = command
        self._options = list(options)

    def rows(self):
        return self._rows

    def dictionary(self):
        return None if self._dictionary is None else json.dumps(self._dictionary)

    def command(self):
        return self._command

    def options(self):
        return self._options


def numeric(name, **properties):
    return {"name": name, "type": "integer", "codebook": {"format": "F8", "measure": "nominal"}, **properties}


def labelled(texts):
    """A schema's categories with the texts as labels of 1, 2, 3, …"""
    return [{"value": value, "label": text} for value, text in enumerate(texts, 1)]


def everywhere():
    """A variable for each text, which has it as its label, as the label of a value and as an attribute."""
    fields = []
    for number, text in enumerate(TEXTS, 1):
        fields.append(numeric(f"v{number}", title=text or None, categories=labelled([text or "empty"])))
        if fields[-1]["title"] is None:
            del fields[-1]["title"]
        fields[-1]["codebook"]["attributes"] = {"note": text}
    dictionary = {"title": TEXTS[0], "codebook": {"documents": [["line"], ["a\nb", "c"]], "attributes": {"about": ["one", "two"]}}, "fields": fields}
    row = ["1"] * len(TEXTS)
    return Case("everyTextAsLabel", [[field["name"] for field in fields], row, row], dictionary, "CODEBOOK ALL /FILEINFO LABEL DOCUMENTS ATTRIBUTES /VARINFO LABEL ATTRIBUTES VALUELABELS /STATISTICS COUNT PERCENT.")


def as_values():
    """The texts as values of a string variable, with labels."""
    values = [text for text in TEXTS if "\x00" not in text and "\r" not in text]
    dictionary = {"fields": [{"name": "s", "type": "string", "codebook": {"measure": "nominal"}}, {"name": "n", "type": "integer", "codebook": {"measure": "nominal"}}]}
    rows = [["s", "n"]] + [[text, str(number % 3)] for number, text in enumerate(values)]
    return Case("everyTextAsValue", rows, dictionary, "CODEBOOK ALL /OPTIONS MAXCATS=200.")


def scrambled(seed):
    """Random strings of what Markdown and CSV pay heed to."""
    chance = random.Random(seed)
    texts = ["".join(chance.choices(MARKS, k=chance.randrange(1, 12))) for _ in range(180)]
    dictionary = {"fields": [numeric("v", title="".join(chance.choices(MARKS, k=30)), categories=labelled(texts))]}
    return Case(f"scrambledTexts{seed}", [["v"], ["1"], ["2"]], dictionary, "CODEBOOK v /VARINFO LABEL VALUELABELS /STATISTICS NONE.")


def long_label():
    """40,000 characters, with those beyond 16 bits around the greatest length of a spreadsheet's cell."""
    text = "word " * 6550 + "\U0001f600" * 20 + "x" * 3000 + " end" * 1050
    text = (text + "y" * 40000)[:40000]
    dictionary = {"fields": [numeric("v", title=text, categories=labelled([text, "z" * 32767, "z" * 32768]))]}
    return Case("labelOf40000Characters", [["v"], ["1"], ["2"]], dictionary, "CODEBOOK v.")


def formats():
    """Numbers in all the formats that show them otherwise than a number is written."""
    names = ["COMMA10.2", "DOT10.2", "DOLLAR10.2", "PCT8.1", "E12.3", "F8.2", "N6", "CCA10.2"]
    fields = [{"name": "v" + str(i), "type": "number", "codebook": {"format": name, "measure": measure}}
              for i, (name, measure) in enumerate((name, measure) for name in names for measure in ("nominal", "scale"))]  # fmt: skip
    numbers = ["-1234567.891", "0.005", "-0.004", "1e300", "-5", "12345", ""]
    rows = [[field["name"] for field in fields]] + [[number] * len(fields) for number in numbers]
    return Case("numbersInAllFormats", rows, {"fields": fields}, "CODEBOOK ALL.")


def dates():
    fields = [{"name": name, "type": kind, "codebook": {"measure": measure}}
              for name, kind, measure in (("d", "date", "nominal"), ("ds", "date", "scale"), ("t", "time", "nominal"), ("dt", "datetime", "scale"))]  # fmt: skip
    rows = [["d", "ds", "t", "dt"], ["2024-02-29", "1900-01-01", "12:30:45", "2024-02-29T12:30:45"], ["1582-10-15", "2024-12-31", "00:00:00", "1999-12-31T23:59:59"]]
    return Case("datesAndTimes", rows, {"fields": fields}, "CODEBOOK ALL.")


def sets():
    members = [numeric(f"m{i}", title=text, categories=labelled([text])) for i, text in enumerate(("a|b", "=1+1", "@x", SCRIPT))]
    descriptions = [{"name": "$d", "label": "-1 *set*", "type": "dichotomy", "variables": ["m0", "m1", "m2", "m3"], "countedValue": "1"},
                    {"name": "$c", "label": SCRIPT, "type": "category", "variables": ["m0", "m1"]}]  # fmt: skip
    rows = [["m0", "m1", "m2", "m3", "w"], ["1", "2", "1", "", "0.1"], ["1", "1", "", "2", "2.7"]]
    dictionary = {"codebook": {"multipleResponseSets": descriptions, "weight": "w"}, "fields": [*members, {"name": "w", "type": "number", "codebook": {"measure": "scale"}}]}
    return Case("setsWeighted", rows, dictionary, "CODEBOOK $ALL m0 w.")


def names():
    """Names with other letters and marks."""
    rows = [["größe", "变量", "a_b", "x.y", "a@b", "q#1", "w$"], ["1"] * 7, ["2"] * 7]
    return Case("namesWithMarks", rows, None, "CODEBOOK ALL /FILEINFO NAME.")


def cases_apart():
    """Names that differ only in case are one name to the dictionary."""
    return Case("namesApartOnlyByCase", [["Age", "age", "AGE"], ["1", "2", "3"]], None, "CODEBOOK ALL.")


def nothing():
    """No table: 0 variables, and commands that fail with messages only."""
    yield Case("noCases", [["a", "b"]], None, "CODEBOOK ALL.")
    yield Case("noSets", [["a"], ["1"]], None, "CODEBOOK $ALL.")
    yield Case("unknownVariableWithMarks", [["a"], ["1"]], None, "CODEBOOK nosuch.")
    yield Case("unknownKeyword", [["a"], ["1"]], None, "CODEBOOK a /VARINFO <script>|`*.")
    yield Case("unknownCommand", [["a"], ["1"]], None, "FREQUENCIES a.")
    yield Case("nothingShownOfAVariable", [["a"], ["1"]], {"fields": [numeric("a")]}, "CODEBOOK a /VARINFO VALUELABELS /STATISTICS NONE.")
    yield Case("severalCommands", [["a"], ["1"]], None, "CODEBOOK a. CODEBOOK nosuch. CODEBOOK a /STATISTICS NONE.")


def all_cases():
    yield from (everywhere(), as_values(), long_label(), formats(), dates(), sets(), names(), cases_apart())
    yield from (scrambled(seed) for seed in range(1, 9))
    yield from nothing()
