"""Command text: tokens, commands, and the grammar of CODEBOOK.

A syntax error is only an error here: what the program says about it in words is its own business."""

import re

SPECIALS = "[]()=/"
QUOTES = "'\""
BLANKS = " \t\f\v,"
LINE_ENDS = "\r\n"

BARE_KEYWORDS = {
    "VARINFO": ["POSITION", "LABEL", "TYPE", "FORMAT", "MEASURE", "ROLE", "ATTRIBUTES", "VALUELABELS", "MISSING",
                "RESERVEDATTRIBUTES"],
    "FILEINFO": ["NAME", "LOCATION", "CASECOUNT", "LABEL", "ATTRIBUTES", "DOCUMENTS", "WEIGHT", "RESERVEDATTRIBUTES"],
    "STATISTICS": ["NONE", "COUNT", "PERCENT", "MEAN", "STDDEV", "QUARTILES"],
}
VALUE_KEYWORDS = ["MAXCATS", "VARORDER", "SORT"]
ORDERS = ["FILE", "ALPHA", "VARLIST", "MEASURE", "ATTRIBUTE"]
DIRECTIONS = ["ASCENDING", "DESCENDING"]


class CommandError(Exception):
    """The text is no command that the grammar knows. `opens_procedure` is false for an unknown command name. `count` is the
    number of errors: reading goes on at the next slash."""

    def __init__(self, what, count=1, opens_procedure=True):
        super().__init__(what)
        self.count = count
        self.opens_procedure = opens_procedure


class SubcommandError(Exception):
    """A subcommand is not as the grammar has it, from the token at `position` on."""

    def __init__(self, what, position):
        super().__init__(what)
        self.position = position


def upper(text):
    """Simple upper case: a character whose upper case is several characters stays."""
    return "".join(c.upper() if len(c.upper()) == 1 else c for c in text)


class Token:
    def __init__(self, text, kind):
        self.text = text
        self.kind = kind  # "word" (numbers too), "quoted" or "special"
        self.upper = upper(text)

    def is_special(self, text):
        return self.kind == "special" and self.text == text

    def is_keyword(self, keyword):
        return self.kind == "word" and self.upper == keyword

    def __repr__(self):
        return f"{self.kind}:{self.text}"


class Command:
    """What one command said. `list_tokens` is None when there is no list; `subcommands` maps a subcommand's name to a
    dictionary from keyword to value (None of a bare keyword)."""

    def __init__(self):
        self.list_tokens = None
        self.subcommands = {}


def ends_command(text, i):
    """A period with nothing but blanks between it and the end of the line or text."""
    if text[i] != ".":
        return False
    j = i + 1
    while j < len(text) and text[j] in " \t":
        j += 1
    return j == len(text) or text[j] in LINE_ENDS


def split_commands(text):
    """The tokens of each command, command name included."""
    commands = []
    tokens = []
    i = 0
    while i < len(text):
        c = text[i]
        if c in BLANKS or c in LINE_ENDS:
            i += 1
        elif ends_command(text, i):
            if tokens:
                commands.append(tokens)
            tokens = []
            i += 1
        elif c in SPECIALS:
            tokens.append(Token(c, "special"))
            i += 1
        elif c in QUOTES:
            content = ""
            i += 1
            while True:
                if i == len(text):
                    raise ValueError("unclosed quote")
                if text[i] == c:
                    if text[i + 1:i + 2] != c:
                        break
                    i += 1
                content += text[i]
                i += 1
            i += 1
            tokens.append(Token(content, "quoted"))
        else:
            start = i
            while i < len(text) and text[i] not in BLANKS + LINE_ENDS + SPECIALS + QUOTES and not ends_command(text, i):
                i += 1
            tokens.append(Token(text[start:i], "word"))
    if tokens:
        commands.append(tokens)
    return commands


def parse_command(tokens):
    """Raises CommandError."""
    if not tokens[0].is_keyword("CODEBOOK"):
        raise CommandError("unknown command", opens_procedure=False)
    command = Command()
    i = next_slash(tokens, 1)
    if i > 1:
        command.list_tokens = tokens[1:i]
    errors = []
    while i < len(tokens):
        try:
            i = parse_subcommand(command, tokens, i)
        except SubcommandError as error:
            errors.append(str(error))
            i = next_slash(tokens, error.position)
    if errors:
        raise CommandError("; ".join(errors), count=len(errors))
    return command


def next_slash(tokens, i):
    while i < len(tokens) and not tokens[i].is_special("/"):
        i += 1
    return i


def parse_subcommand(command, tokens, i):
    """Reads one subcommand from its slash on; returns the position behind it."""
    i += 1
    if i == len(tokens) or tokens[i].kind != "word":
        raise SubcommandError("no subcommand behind the slash", i)
    name = tokens[i].upper
    if name not in BARE_KEYWORDS and name != "OPTIONS":
        raise SubcommandError("unknown subcommand", i)
    if name in command.subcommands:
        raise SubcommandError("subcommand written twice", i)
    i += 1
    if i < len(tokens) and tokens[i].is_special("="):
        i += 1
    keywords = {}
    command.subcommands[name] = keywords
    while i < len(tokens) and not tokens[i].is_special("/"):
        if tokens[i].kind != "word":
            raise SubcommandError("no keyword", i)
        keyword = tokens[i].upper
        if keyword not in (VALUE_KEYWORDS if name == "OPTIONS" else BARE_KEYWORDS[name]):
            raise SubcommandError("unknown keyword", i)
        if name == "OPTIONS" and keyword in keywords:
            raise SubcommandError("keyword with a value written twice", i)
        i += 1
        if name == "OPTIONS":
            keywords[keyword], i = parse_value(keyword, tokens, i)
        else:
            keywords[keyword] = None
    return i


def parse_value(keyword, tokens, i):
    """Reads `=value` or `(value)`. A value is a text; of VARORDER a pair of qualifier and carried text (or None)."""
    if i < len(tokens) and tokens[i].is_special("="):
        in_parentheses = False
    elif i < len(tokens) and tokens[i].is_special("("):
        in_parentheses = True
    else:
        raise SubcommandError("value left out", i)
    i += 1
    if i == len(tokens) or tokens[i].kind == "special":
        raise SubcommandError("value left out", i)
    value = tokens[i].text
    if keyword == "VARORDER":
        if tokens[i].kind != "word" or tokens[i].upper not in ORDERS:
            raise SubcommandError("unknown order", i)
        value = (tokens[i].upper, None)
        i += 1
        if value[0] == "ATTRIBUTE":
            carried, i = parse_value("ATTRIBUTE", tokens, i)
            value = ("ATTRIBUTE", carried)
    elif keyword == "SORT":
        if upper(value) not in DIRECTIONS:
            raise SubcommandError("unknown direction", i)
        value = upper(value)
        i += 1
    else:
        i += 1
    if in_parentheses:
        if i == len(tokens) or not tokens[i].is_special(")"):
            raise SubcommandError("parenthesis not closed", i)
        i += 1
    return value, i


def read_integer(text):
    """The 32-bit integer that the text is, else None."""
    if not re.fullmatch(r"[+-]?[0-9]+", text):
        return None
    value = int(text)
    return value if -2**31 <= value < 2**31 else None
