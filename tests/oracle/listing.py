"""The list behind the command name: which items, in which order, treated how."""

from dictionary import same_name, well_formed

SCALE, NOMINAL, ORDINAL = 1, 2, 3


class ListFailed(Exception):
    """The list cannot be used; its error was reported."""


class ListedItem:
    def __init__(self, name, index):
        self.name = name
        self.index = index

    def is_set(self):
        return self.name.startswith("$")


def derived_kind(variable):
    return NOMINAL if variable.level in (1, 2) else SCALE


class ListReader:
    def __init__(self, dataset, messages):
        self.dataset = dataset
        self.messages = messages
        self.items = []
        self.kinds = [SCALE] * len(dataset.variables) + [NOMINAL] * len(dataset.sets)
        self.names_so_far = []
        self.set_counter = len(dataset.variables)
        self.all_sets_listed = False
        self.tokens = []

    # The whole dictionary.

    def add_whole_dictionary(self, with_variables, with_sets):
        if with_variables:
            for index, variable in enumerate(self.dataset.variables):
                self.kinds[index] = derived_kind(variable)
                self.items.append(ListedItem(variable.name, index))
        if with_sets:
            for response_set in self.dataset.sets:
                self.append_set(response_set.name)

    def append_set(self, name):
        self.items.append(ListedItem(name, self.set_counter))
        self.set_counter += 1

    # The tokens.

    def upper(self, i):
        return self.tokens[i].upper if 0 <= i < len(self.tokens) else None

    def read(self, tokens):
        self.tokens = tokens
        i = 0
        while i < len(tokens):
            i = self.read_item(i) + 1

    def read_item(self, i):
        """Reads the item that begins at token i; returns the position of its last token."""
        if self.upper(i) == "ALL":
            return self.add_all_variables(i)
        if self.upper(i) == "$ALL":
            if not self.dataset.sets:
                self.fail("No MRSet.")
            self.all_sets_listed = True
            self.add_whole_dictionary(False, True)
            return i
        if self.upper(i + 1) == "TO":
            return self.add_range(i, 0)
        if self.upper(i + 1) == "[" and self.upper(i + 3) == "]" and self.upper(i + 4) == "TO":
            return self.add_range(i, 3)
        if self.tokens[i].text.startswith("$"):
            if self.all_sets_listed:
                self.fail("Duplicate variable or MRset name.")
            return self.add_set(i)
        return self.add_variable(i)

    def fail(self, text, *arguments):
        self.messages.error(text, *arguments)
        raise ListFailed

    def fail_misplaced(self, keyword):
        self.fail("Keyword ^1 is misplaced in the variable list.", keyword)

    def is_listed(self, index):
        return any(item.index == index and not item.is_set() for item in self.items)

    def find_variable(self, name):
        index = self.dataset.find(name) if well_formed(name) else -1
        if index < 0:
            self.fail("^1 Invalid or non-existent variable name.", name)
        return index

    def add_variable(self, i):
        name = self.tokens[i].text
        index = self.find_variable(name)
        if self.is_listed(index):
            self.fail("Duplicate variable or MRset name.")
        self.items.append(ListedItem(name, index))
        return self.read_measure_keyword(True, i, index)

    def add_all_variables(self, i):
        after = i
        for index, variable in enumerate(self.dataset.variables):
            if self.is_listed(index):
                self.fail("Duplicate variable or MRset name.")
            self.items.append(ListedItem(variable.name, index))
            after = self.read_measure_keyword(True, i, index)
        return after

    def add_range(self, i, k):
        if len(self.tokens) < i + 3 + k:
            self.fail_misplaced("TO")
        first, second = self.tokens[i].text, self.tokens[i + 2 + k].text
        if first.startswith("$") or second.startswith("$"):
            self.fail("^1 TO ^2 keyword used for multiple response sets.", first, second)
        low = self.find_variable(first)
        high = self.find_variable(second)
        if low == high:
            self.fail_misplaced("TO")
        if low > high:
            low, high = high, low
        for index in range(low, high + 1):
            is_end = index in (low, high)
            is_new = not self.is_listed(index)
            if is_new:
                self.items.append(ListedItem(self.dataset.variables[index].name, index))
            elif is_end:
                self.messages.error("Duplicate variable or MRset name.")
            if index == high:
                i += 2
            if is_end:
                i = self.read_measure_keyword(is_new, i, index)
            elif is_new:
                self.kinds[index] = derived_kind(self.dataset.variables[index])
        return i

    def add_set(self, i):
        name = self.tokens[i].text
        found = False
        for response_set in self.dataset.sets:
            if not same_name(response_set.name, name):
                continue
            if any(same_name(name, before) for before in self.names_so_far):
                self.messages.error("Duplicate variable or MRset name.")
            else:
                found = True
                break
        if not found:
            self.fail("^1 Invalid or non-existent variable name.", name)
        self.names_so_far.append(name)
        self.append_set(name)
        return self.read_set_keyword(i)

    # Brackets.

    def bracket_keyword(self, i):
        """The keyword of a bracket that opens behind token i, None when there is none. Fails on a lone bracket."""
        if self.upper(i + 1) == "[" and self.upper(i + 3) == "]":
            return self.upper(i + 2)
        if self.upper(i + 1) == "[":
            self.fail("Error in < ^1 > command.", "CODEBOOK")
        return None

    def read_set_keyword(self, i):
        keyword = self.bracket_keyword(i)
        if keyword is None:
            return i
        if keyword != "N":
            self.messages.warning("Invalid measurement level.")
        return i + 3

    def read_measure_keyword(self, is_new, i, index):
        variable = self.dataset.variables[index]
        kind = derived_kind(variable)
        keyword = self.bracket_keyword(i)
        if keyword is not None and is_new:
            if variable.width > 0:
                kind = ORDINAL if keyword == "O" else NOMINAL
                if keyword not in ("N", "O"):
                    self.messages.warning("Scale (continuous) measurement.")
            elif keyword in ("N", "O", "S"):
                kind = {"N": NOMINAL, "O": ORDINAL, "S": SCALE}[keyword]
            else:
                self.messages.warning("Invalid measurement level.")
        if variable.width > 0 and derived_kind(variable) == SCALE:
            kind = NOMINAL
        self.kinds[index] = kind
        return i if keyword is None else i + 3
