"""What one command asked for, read from its subcommands."""

from commandtext import BARE_KEYWORDS, read_integer
from dictionary import same_name
from listing import ListFailed, ListReader

NO_KEYWORD = "< ^1 > must be followed by one or more keywords. This subcommand ignored."
STATISTICS = ["COUNT", "PERCENT", "MEAN", "STDDEV", "QUARTILES"]


class CommandStopped(Exception):
    """The command cannot run; its error was reported."""


class Settings:
    def __init__(self):
        self.items = []
        self.kinds = []
        self.var_info = set()    # keywords written
        self.file_info = set()
        self.statistics = set()  # NONE included
        self.max_cats = 200
        self.ascending = True
        self.order = "VARLIST"
        self.order_attribute = ""

    def shows_by_default(self):
        """Every statistic is wanted."""
        return not self.statistics

    def no_statistics(self):
        return "NONE" in self.statistics

    def wants(self, statistic):
        return self.shows_by_default() or statistic in self.statistics

    def shows_var_info(self, keyword):
        return not self.var_info or keyword in self.var_info


def interpret(command, dataset, messages):
    """Raises CommandStopped."""
    settings = Settings()
    reader = ListReader(dataset, messages)
    if command.list_tokens is None:
        reader.add_whole_dictionary(True, True)
    else:
        try:
            reader.read(command.list_tokens)
        except ListFailed:
            raise CommandStopped from None
    settings.items, settings.kinds = reader.items, reader.kinds
    settings.var_info = bare_keywords(command, "VARINFO", messages)
    settings.file_info = bare_keywords(command, "FILEINFO", messages)
    statistics = set(command.subcommands.get("STATISTICS", {}))
    if "NONE" in statistics and len(statistics) > 1:
        messages.error("Keyword ^1 of subcommand ^2 cannot be combined with any other keyword.", "NONE", "STATISTICS")
        raise CommandStopped
    settings.statistics = bare_keywords(command, "STATISTICS", messages)
    if "OPTIONS" in command.subcommands:
        interpret_options(command.subcommands["OPTIONS"], settings, dataset, messages)
    return settings


def bare_keywords(command, subcommand, messages):
    if subcommand not in command.subcommands:
        return set()
    written = set(command.subcommands[subcommand])
    assert written <= set(BARE_KEYWORDS[subcommand])
    if not written:
        messages.warning(NO_KEYWORD, subcommand)
    return written


def interpret_options(options, settings, dataset, messages):
    without_keyword = True
    if "MAXCATS" in options:
        value = read_integer(options["MAXCATS"])
        if value is None or value <= 0:
            messages.warning("MAXCATS must be a positive integer.")
        else:
            settings.max_cats = value
            without_keyword = False
    if "VARORDER" in options:
        without_keyword = False
        settings.order, attribute = options["VARORDER"]
        if settings.order == "ATTRIBUTE":
            if is_listed_attribute(attribute, settings.items, dataset):
                settings.order_attribute = attribute
            else:
                settings.order = "VARLIST"
                messages.warning("Invalid attribute name specified for VARORDER.")
    if "SORT" in options:
        without_keyword = False
        settings.ascending = options["SORT"] == "ASCENDING"
    if without_keyword:
        messages.warning(NO_KEYWORD, "OPTIONS")


def is_listed_attribute(name, items, dataset):
    for item in items:
        if item.is_set():
            continue
        for own, _ in dataset.variables[item.index].attributes:
            if same_name(own, name) and not own.startswith("$"):
                return True
    return False
