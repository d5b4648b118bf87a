"""One CODEBOOK command from its settings to its tables."""

import re

from counting import CategorySetTable, DichotomySetTable, ScaleTable, VariableTable
from dictionary import fold
from listing import NOMINAL, SCALE
from ordering import order_items
from report import Table, data, data_value, fixed, number, variable_by
from showing import COUNT, PERCENT, deviation_format, mean_format

LEVEL_TEXTS = {1: "Nominal", 2: "Ordinal", 3: "Scale", 0: "Unknown"}
ROLE_TEXTS = ["Input", "Target", "Both", "None", "Partition", "Split"]


class InternalCheckFailed(Exception):
    """The run met a state that it holds for impossible: nothing is reported any more."""


class Entry:
    """One prepared item: a main entry, or the entry for the value labels of a scale variable."""

    def __init__(self, dataset, item, treatment, labels_as_categories=False):
        self.treatment = treatment
        self.labels_as_categories = labels_as_categories
        if not item.is_set():
            self.index = item.index
            self.text = ""
            self.kind = "variable"
            self.members = []
            self.category_count = len(dataset.variables[item.index].labels)
            self.display_name = dataset.variables[item.index].name
            return
        response_set = next(s for s in dataset.sets if fold(s.name) == fold(item.name))
        self.index = None
        self.text = response_set.label or response_set.name
        self.display_name = self.text
        self.members = [i for i in map(dataset.find, response_set.member_names) if i >= 0]
        first = dataset.variables[self.members[0]]
        if response_set.is_dichotomy:
            self.kind = "dichotomy set"
            self.category_count = len(self.members)
            self.counted = counted_value(response_set.counted_value, [dataset.variables[m] for m in self.members])
        else:
            self.kind = "category set"
            self.category_count = len(first.labels)

    def make_table(self, dataset):
        if self.kind == "category set":
            return CategorySetTable(dataset, self.members)
        if self.kind == "dichotomy set":
            return DichotomySetTable(dataset, self.members, self.counted)
        if self.treatment == SCALE:
            return ScaleTable(dataset, self.index)
        labels = dataset.variables[self.index].labels
        if self.labels_as_categories and labels:
            return VariableTable(dataset, self.index, [value for value, _ in labels])
        return VariableTable(dataset, self.index)


def counted_value(text, members):
    """A number as the leading characters of the text give it (0 when they give none), or, when the first member is a
    string, the text as far as a buffer of whole units of 8 bytes for the widest member holds it."""
    if members[0].format.kind != "A":
        leading = re.match(r"\s*([+-]?([0-9]+(\.[0-9]*)?|\.[0-9]+)([eE][+-]?[0-9]+)?)", text)
        return float(leading[1]) if leading else 0.0
    width = max(m.width if m.width > 0 else len(m.name.encode()) for m in members)
    units = max(1, -(-width // 8))
    return text.encode()[:units * 8].decode(errors="ignore").rstrip(" ")


class Run:
    def __init__(self, settings, dataset, messages):
        self.settings = settings
        self.dataset = dataset
        self.messages = messages
        self.items = []
        self.entries = []
        self.tables = []          # one an entry
        self.has_statistics = []  # one an entry
        self.without_information = []
        self.output = []

    def run(self):
        """Fills `output` with the tables; returns false when the command stopped with an error."""
        settings = self.settings
        self.items = order_items(settings, self.dataset)
        if not settings.no_statistics():
            self.prepare_entries()
            if self.pass_cases() == 0:
                self.messages.error("Empty dataset.")
                return False
        if settings.file_info:
            self.write_file_table()
        self.write_item_tables()
        self.warn()
        return True

    # Preparation and pass.

    def counts_computed(self):
        return self.settings.wants("COUNT") or self.settings.wants("PERCENT")

    def scale_statistics(self):
        """Names of the scale statistics, in the order in which they are computed."""
        return ["VALID", "MISSING"] + [s for s in ("MEAN", "STDDEV", "QUARTILES") if self.settings.wants(s)]

    def prepare_entries(self):
        for item in self.items:
            treatment = NOMINAL if item.is_set() else self.settings.kinds[item.index]
            self.entries.append(Entry(self.dataset, item, treatment))
            if treatment == SCALE and self.counts_computed() and self.dataset.variables[item.index].labels:
                self.entries.append(Entry(self.dataset, item, NOMINAL, labels_as_categories=True))
        self.tables = [entry.make_table(self.dataset) for entry in self.entries]
        for entry in self.entries:
            counted = self.counts_computed() and entry.category_count <= self.settings.max_cats
            self.has_statistics.append(entry.treatment == SCALE or counted)

    def pass_cases(self):
        """Returns the number of cases counted: up to and including the first that no item took."""
        max_cats = self.settings.max_cats
        row = 0
        case_index = 0
        wanted = True
        while wanted and row < self.dataset.case_count:
            wanted = False
            for i, table in enumerate(self.tables):
                if isinstance(table, ScaleTable):
                    table.add_case(row)
                    wanted = True
                    continue
                if self.has_statistics[i] and case_index <= max_cats:
                    table.add_case(row)
                    wanted = True
                seen = case_index + 1 if wanted else case_index
                if self.has_statistics[i] and seen > max_cats:
                    # The check comes before the adding: a value first met on the last case is kept.
                    if table.number_of_values() > max_cats:
                        self.has_statistics[i] = False
                    else:
                        wanted = True
                        if case_index != max_cats:
                            table.add_case(row)
            case_index += 1
            row += 1
        return case_index

    def case_count(self):
        """The weighted number of cases, -1 when no item tells it."""
        for i, table in enumerate(self.tables):
            if not self.has_statistics[i]:
                continue
            count = table.valid() + table.missing() if isinstance(table, ScaleTable) else table.total()
            if count > 0.0:
                return count
        return -1.0

    # Tables.

    def write_file_table(self):
        keywords, dataset = self.settings.file_info, self.dataset
        table = Table(fixed("File Information"), data("FileInformation"), True, with_columns=False)
        table.content["minDataColumnWidth"] = 200
        rows = table.rows
        # A row of this table has its cells without a column.
        directory, _, name = dataset.path.rpartition("/")
        if "NAME" in keywords:
            one_cell(rows, "File Name", data(name))
        if "LOCATION" in keywords:
            one_cell(rows, "Location", data(directory))
        if "LABEL" in keywords:
            one_cell(rows, "Label", none_or_data(dataset.label))
        if "DOCUMENTS" in keywords:
            cells = [{"column": None, **data(document_text(lines))} for lines in dataset.documents]
            rows.row_of_cells(fixed("Documents"), cells)
        if "WEIGHT" in keywords:
            index = dataset.weight_index
            one_cell(rows, "Weight Variable", none_or_data(None if index < 0 else dataset.variables[index].name))
        if "CASECOUNT" in keywords:
            group = rows.group(fixed("Number of Cases"))
            one_cell(group, "Unweighted", number(float(dataset.case_count), COUNT))
            weighted = self.case_count()
            one_cell(group, "Weighted", number(weighted, COUNT) if weighted > 0 else fixed("<unknown>"))
        if "ATTRIBUTES" in keywords:
            group = rows.group(fixed("Custom Attributes"))
            for name, value in attribute_rows(dataset.attributes, lambda n: not is_hidden(n)):
                group.row_of_cells(data(name), [{"column": None, **data(value)}])
        if "RESERVEDATTRIBUTES" in keywords:
            group = rows.group(fixed("Reserved Attributes"))
            for name, value in attribute_rows(dataset.attributes, lambda n: n.startswith("$") and not is_hidden(n)):
                group.row_of_cells(data(name), [{"column": None, **data(value)}])
        self.output.append(table.content)

    def write_item_tables(self):
        p = 0
        for item in self.items:
            if item.is_set():
                entry = self.entries[p] if p < len(self.entries) else Entry(self.dataset, item, NOMINAL)
                self.write_set_table(item, entry, p)
            else:
                treatment = self.entries[p].treatment if p < len(self.entries) else self.settings.kinds[item.index]
                p = self.write_variable_table(item.index, p, treatment)
            p = (p + 1) % 2**32

    def shown_counts(self, p):
        """Whether counts and percents are shown for the entry at position p."""
        if p < len(self.has_statistics) and not self.has_statistics[p]:
            return False, False
        return self.settings.wants("COUNT"), self.settings.wants("PERCENT")

    def write_variable_table(self, index, p, treatment):
        """Returns the last entry position that the variable used."""
        settings = self.settings
        variable = self.dataset.variables[index]
        table = Table(data(variable.name), data("Variable Information"), False, with_columns=True)
        self.output.append(table.content)
        self.write_standard_attributes(table.rows, variable, index)
        if settings.shows_var_info("ATTRIBUTES"):
            group = table.rows.group(fixed("Custom Attributes"))
            for name, value in attribute_rows(variable.attributes, lambda n: not is_hidden(n)):
                group.row(data(name), value=data(value))
        if "RESERVEDATTRIBUTES" in settings.var_info:
            group = table.rows.group(data("Reserved Attributes"))
            for name, value in attribute_rows(variable.attributes, lambda n: n.startswith("$")):
                group.row(data(name), value=data(value))
        if treatment == SCALE and not settings.no_statistics():
            self.write_scale_statistics(table.rows, variable, index, p)
        p = self.write_values(table.rows, variable, p, treatment)
        if table.row_count == 0:
            self.without_information.append(variable.name)
        return p

    def write_standard_attributes(self, rows, variable, index):
        shows = self.settings.shows_var_info
        group = rows.group(fixed("Standard Attributes"))
        if shows("POSITION"):
            group.row(fixed("Position"), value=number(float(index + 1), COUNT))
        if shows("LABEL"):
            group.row(fixed("Label"), value=none_or_data(variable.label))
        if shows("TYPE"):
            group.row(fixed("Type"), value=fixed("String" if variable.width > 0 else "Numeric"))
        if shows("FORMAT"):
            group.row(fixed("Format"), value=data(variable.format.text()))
        if shows("MEASURE"):
            group.row(fixed("Measurement"), value=fixed(LEVEL_TEXTS[variable.level]))
        if shows("ROLE"):
            group.row(fixed("Role"), value=fixed(ROLE_TEXTS[variable.role]))

    def write_scale_statistics(self, rows, variable, index, p):
        statistics = self.scale_statistics()
        source = self.tables[p]
        if not isinstance(source, ScaleTable):
            raise InternalCheckFailed("results.size()")
        if source.index != index and len(statistics) > 2:
            self.messages.host_warning(f"Statistics shown for {variable.name} are those of {source.variable.name}.")
        means = mean_format(variable.format)
        group = rows.group(fixed("N"))
        group.row(fixed("Valid"), value=number(source.valid(), COUNT))
        group.row(fixed("Missing"), value=number(source.missing(), COUNT))
        group = rows.group(fixed("Central Tendency and Dispersion"))
        if "MEAN" in statistics:
            group.row(fixed("Mean"), value=number(source.mean(), means))
        if "STDDEV" in statistics:
            deviation = number(source.standard_deviation(), deviation_format(variable.format))
            group.row(fixed("Standard Deviation"), value=deviation)
        if "QUARTILES" in statistics:
            for percent in (25, 50, 75):
                group.row(fixed(f"Percentile {percent}"), value=number(source.percentile(percent), means))

    def write_values(self, rows, variable, p, treatment):
        settings = self.settings
        asked = settings.wants("COUNT") or settings.wants("PERCENT")
        if not asked and settings.var_info and not settings.var_info & {"VALUELABELS", "MISSING"}:
            return p
        if treatment == SCALE and asked:
            p += 1
        if treatment == SCALE and not variable.labels:
            return (p - 1) % 2**32
        counts, percents = self.shown_counts(p)
        if not counts and not percents:
            if 1 <= len(variable.labels) <= settings.max_cats:
                # What was asked for counts here, not what is left of it.
                valid = asked or settings.shows_var_info("VALUELABELS")
                missing = asked or settings.shows_var_info("MISSING")
                write_labels(rows, variable, treatment, valid, missing)
            return p
        source = self.tables[p]
        categories = source.categories()
        if 1 <= len(categories) <= settings.max_cats:
            if treatment == SCALE:
                self.write_labelled_counts(rows, variable, source, categories, counts, percents)
            else:
                write_counts(rows, variable, source, categories, counts, percents)
        return p

    def write_labelled_counts(self, rows, variable, source, categories, counts, percents):
        base = self.case_count()
        group = rows.group(fixed("Labeled Values"))
        for category in categories[:self.settings.max_cats]:
            count = source.count(category)
            percent = count / base * 100 if base > 0 else source.percent(category)
            group.row(data_value(variable, category.value), value=data(variable.label_of(category.value)),
                      count=number(count, COUNT) if counts else None, percent=number(percent, PERCENT) if percents else None)

    def write_set_table(self, item, entry, p):
        settings = self.settings
        table = Table(data(item.name), data("Variable Information"), True, with_columns=True)
        self.output.append(table.content)
        group = table.rows.group(fixed("Standard Attributes"))
        if settings.shows_var_info("LABEL"):
            group.row(fixed("Label"), value=none_or_data(entry.text or None))
        if settings.shows_var_info("TYPE"):
            kind = "Multiple Dichotomy Set" if entry.kind == "dichotomy set" else "Multiple Category Set"
            group.row(fixed("Type"), value=fixed(kind))
        asked = settings.wants("COUNT") or settings.wants("PERCENT")
        if asked or not settings.var_info or "VALUELABELS" in settings.var_info:
            self.write_set_categories(table.rows, entry, p)
        if table.row_count == 0:
            self.without_information.append(item.name)

    def write_set_categories(self, rows, entry, p):
        settings, variables = self.settings, self.dataset.variables
        counts, percents = self.shown_counts(p)
        if counts or percents:
            source = self.tables[p]
            categories = source.categories()
            members = [category.code for category in categories]
        else:
            members = entry.members
        if not members:
            raise InternalCheckFailed("mdSetVarIndice.size() >0")
        first = variables[members[0]]
        group = rows.group(fixed("Multiple Response Categories"))
        if counts or percents:
            for category in categories[:settings.max_cats]:
                member = variables[category.code]
                if entry.kind == "dichotomy set":
                    label, value = variable_by(member, 0), variable_by(member, 1)
                else:
                    label, text = data_value(member, category.value), first.label_of(category.value)
                    value = None if text is None else data(text)
                group.row(label, value=value, count=number(source.count(category), COUNT) if counts else None,
                          percent=number(source.percent(category), PERCENT) if percents else None)
        elif entry.kind == "dichotomy set":
            for member in members[:settings.max_cats]:
                group.row(variable_by(variables[member], 0), value=variable_by(variables[member], 1))
        else:
            for value, text in first.labels[:settings.max_cats]:
                group.row(data_value(first, value), value=data(text))

    # Warnings.

    def warn(self):
        if self.without_information:
            names = " ,".join(self.without_information) + " "
            self.messages.warning("No Variable Information for ^1.", names)
        cut = []
        if self.counts_computed():
            cut += [entry.display_name for i, entry in enumerate(self.entries) if not self.has_statistics[i]]
        elif self.settings.shows_var_info("VALUELABELS"):
            variables = [self.dataset.variables[item.index] for item in self.items if not item.is_set()]
            cut += [v.name for v in variables if len(v.labels) > self.settings.max_cats]
        if cut:
            self.messages.warning("Value labels, counts, and/or percents not displayed for ^1.", ",".join(cut))


def one_cell(rows, name, cell):
    rows.row_of_cells(fixed(name), [{"column": None, **cell}])


def none_or_data(text):
    return fixed("<none>") if text is None else data(text)


def document_text(lines):
    """The first line is joined to the second without a separator; every line but the first has a line end behind it."""
    return lines[0] + "".join(line + "\n" for line in lines[1:]) if lines else ""


def is_hidden(name):
    return name.startswith(("@", "$@"))


def attribute_rows(attributes, is_shown):
    """Pairs of row name and text."""
    rows = []
    for name, values in attributes:
        if not is_shown(name):
            continue
        digits = len(str(len(values)))
        for j, value in enumerate(values):
            rows.append((name if len(values) == 1 else f"{name}[{j + 1:0{digits}d}]", value or " "))
    return rows


def write_labels(rows, variable, treatment, shows_valid, shows_missing):
    labeled = rows.group(fixed("Labeled Values"))
    valid = rows.group(fixed("Valid Values"))
    missing = rows.group(fixed("Missing Values"))
    for value, label in variable.labels:
        if treatment == SCALE:
            group = labeled
        elif variable.is_user_missing(value) and shows_missing:
            group = missing
        elif not variable.is_user_missing(value) and shows_valid:
            group = valid
        else:
            continue
        group.row(data_value(variable, value), value=data(label))


def write_counts(rows, variable, source, categories, counts, percents):
    valid = rows.group(fixed("Valid Values"))
    missing = rows.group(fixed("Missing Values"))
    user_missing = 0.0
    for category in categories:
        count = source.count(category)
        group = valid
        if variable.is_user_missing(category.value):
            group = missing
            user_missing += count
        label = variable.label_of(category.value)
        group.row(data_value(variable, category.value), value=None if label is None else data(label),
                  count=number(count, COUNT) if counts else None,
                  percent=number(source.percent(category), PERCENT) if percents else None)
    rest = source.missing() - user_missing
    if rest > 1e-8 and source.total() > 0:
        missing.row(fixed("System"), count=number(rest, COUNT) if counts else None,
                    percent=number(rest / source.total() * 100, PERCENT) if percents else None)
