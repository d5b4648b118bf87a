// The statistics computed naively: row by row, in rational numbers.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include <gmpxx.h>

#include "host/data/missingrule.h"

#include "runtime/data/records.h"
#include "tests/unit/aggregation/support/testdataset.h"

namespace reference {

/// A value of either kind. Numbers come before texts.
struct Value {
  bool isText = false;
  double number = 0.0;
  std::string text;

  friend bool operator<(const Value& a, const Value& b) {
    if (a.isText != b.isText) return b.isText;
    return a.isText ? a.text < b.text : a.number < b.number;
  }
  friend bool operator==(const Value& a, const Value& b) { return !(a < b) && !(b < a); }
};

struct Category {
  Value value;
  int code = 0;
  std::string text;
  mpq_class weight;
  bool hasCell = true;
};

struct Dimension {
  std::vector<Category> categories;
  mpq_class missing;
  mpq_class total;
  int values = 0;
};

/// What is asked of the rows taken, in the order in which they were taken.
struct Rows {
  const TestData& data;
  const runtime::data::Dictionary& dictionary;
  const std::vector<std::size_t>& taken;

  mpq_class Weight(std::size_t row) const { return data.weights.empty() ? mpq_class(1) : mpq_class(data.weights[row]); }
  /// None for system-missing.
  std::optional<Value> At(int variable, std::size_t row) const;
  bool IsUserMissing(int variable, const Value& value) const;
};

Dimension CountVariable(const Rows& rows, int variable, const std::vector<Value>* list);
Dimension CountCategorySet(const Rows& rows, const std::vector<int>& members);
Dimension CountDichotomySet(const Rows& rows, const std::vector<int>& members, const Value& counted);

struct Scale {
  mpq_class valid;
  mpq_class missing;
  double mean;
  double deviation;
  std::vector<double> percentiles;
};

Scale Summarise(const Rows& rows, int variable, const std::vector<double>& cutPoints);

}  // namespace reference
