"""Tables over the cases: each takes cases one by one and is read when the pass is over."""

from fractions import Fraction

import exact
from dictionary import SYSTEM_MISSING, value_order


class Category:
    def __init__(self, value, code, weight):
        self.value = value  # of a dichotomy set's category None
        self.code = code    # of a set's category the dictionary index of the member that it belongs to
        self.weight = weight


class CategoricalTable:
    """Counts of one dimension. A derived class says what a case adds (`count_case`) and what the categories are."""

    def __init__(self, dataset):
        self.dataset = dataset
        self.total_weight = Fraction(0)
        self.missing_weight = Fraction(0)
        self.weight_of = {}

    def add_case(self, row):
        weight = self.dataset.weights[row]
        if weight == 0:
            return
        self.total_weight += weight
        self.count_case(row, weight)

    def count_value(self, value, weight):
        self.weight_of[value] = self.weight_of.get(value, Fraction(0)) + weight

    def number_of_values(self):
        return len(self.weight_of)

    def total(self):
        return exact.nearest_double(self.total_weight)

    def missing(self):
        return exact.nearest_double(self.missing_weight)

    def count(self, category):
        return exact.nearest_double(category.weight)

    def percent(self, category):
        if self.total_weight == 0:
            return 0.0
        return exact.nearest_double(100 * category.weight / self.total_weight)


class VariableTable(CategoricalTable):
    """One variable. With a category list the categories are the listed values, in the list's order."""

    def __init__(self, dataset, index, listed=None):
        super().__init__(dataset)
        self.variable = dataset.variables[index]
        self.listed = listed

    def count_case(self, row, weight):
        value = self.variable.values[row]
        if value is SYSTEM_MISSING or self.variable.is_user_missing(value):
            self.missing_weight += weight
        if value is SYSTEM_MISSING:
            return
        if self.listed is None or value in self.listed:
            self.count_value(value, weight)

    def categories(self):
        values = sorted(self.weight_of, key=value_order) if self.listed is None else self.listed
        return [Category(v, k, self.weight_of.get(v, Fraction(0))) for k, v in enumerate(values)]


class CategorySetTable(CategoricalTable):
    def __init__(self, dataset, members):
        super().__init__(dataset)
        self.members = members
        self.held_by = {}  # (member, value) pairs met, user-missing values excepted

    def count_case(self, row, weight):
        responses = set()
        for member in self.members:
            variable = self.dataset.variables[member]
            value = variable.values[row]
            if value is SYSTEM_MISSING or variable.is_user_missing(value):
                continue
            responses.add(value)
            self.held_by[member, value] = True
        for value in responses:
            self.count_value(value, weight)
        if not responses:
            self.missing_weight += weight

    def categories(self):
        values = set(self.weight_of)
        labelled_by = {}
        for member in self.members:
            variable = self.dataset.variables[member]
            for value, _ in variable.labels:
                if not variable.is_user_missing(value):
                    labelled_by[member, value] = True
                    values.add(value)
        categories = []
        for value in sorted(values, key=value_order):
            code = next(m for m in self.members if (m, value) in labelled_by or (m, value) in self.held_by)
            categories.append(Category(value, code, self.weight_of.get(value, Fraction(0))))
        return categories


class DichotomySetTable(CategoricalTable):
    """`counted` is a double, or a text without trailing blanks."""

    def __init__(self, dataset, members, counted):
        super().__init__(dataset)
        self.members = members
        self.counted = counted

    def count_case(self, row, weight):
        counting = {m for m in self.members if self.dataset.variables[m].values[row] == self.counted}
        for member in counting:
            self.count_value(member, weight)
        if not counting:
            self.missing_weight += weight

    def categories(self):
        return [Category(None, m, self.weight_of.get(m, Fraction(0))) for m in self.members]


class ScaleTable:
    """Summary statistics of one variable."""

    def __init__(self, dataset, index):
        self.dataset = dataset
        self.index = index
        self.variable = dataset.variables[index]
        self.valid_cases = []
        self.valid_weight = Fraction(0)
        self.missing_weight = Fraction(0)

    def add_case(self, row):
        weight = self.dataset.weights[row]
        if weight == 0:
            return
        value = self.variable.values[row]
        if value is SYSTEM_MISSING or self.variable.is_user_missing(value):
            self.missing_weight += weight
            return
        self.valid_weight += weight
        if self.variable.width == 0:
            self.valid_cases.append((Fraction(value), weight))

    def valid(self):
        return exact.nearest_double(self.valid_weight)

    def missing(self):
        return exact.nearest_double(self.missing_weight)

    def mean(self):
        return exact.mean(self.valid_cases)

    def standard_deviation(self):
        return exact.standard_deviation(self.valid_cases)

    def percentile(self, percent):
        return exact.percentile(self.valid_cases, percent)
