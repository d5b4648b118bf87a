// What the families of checks know of a variable, and how they say what they find.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "runtime/data/checking/distinctvalues.h"
#include "runtime/data/checking/finding.h"
#include "runtime/data/checking/readingfacts.h"
#include "runtime/data/records.h"

namespace runtime::data {

/// A label in force.
struct OwnLabel {
  double number = 0.0;
  std::string text;  // without trailing blanks
  std::string label;
};

class VariableCheck {
 public:
  VariableCheck(const VariableRecord& variable, int index, const ReadingFacts& reading, const DistinctValues& values,
                const std::string& dataFile);

  const VariableRecord& variable;
  const ColumnFacts& facts;
  const FieldDescriptor* const field;  // null: the dictionary has none
  const DistinctValues& values;
  const std::string& dataFile;
  const std::string& dictionaryFile;  // the data file where there is no dictionary
  std::vector<OwnLabel> labels;       // numbers ascending, texts by bytes

  bool IsMissing(const DistinctValue& value) const;
  /// Null when it has none.
  const std::string* LabelOf(const DistinctValue& value) const;
  /// Whether the value occurs in the data.
  bool Occurs(const OwnLabel& labelled) const;
  /// As a cell would show it.
  std::string ValueWords(const DistinctValue& value) const;
  std::string Quoted(const DistinctValue& value) const;
  /// Cells that are system-missing or user-missing, and the first row of them from 0, -1 without any.
  std::int64_t MissingCells(std::int64_t& firstRow) const;
  /// Cells of valid values.
  std::int64_t ValidCells() const;

  /// About the variable. `row` is counted from 0, negative for none.
  Finding& Add(CheckCode code, std::string what, std::int64_t row = -1, std::int64_t count = 0);
  /// One finding a value, the first kMostValuesNamed of them; `what` gives the clause of a value.
  void AddValues(CheckCode code, const std::vector<const DistinctValue*>& found,
                 const std::function<std::string(const DistinctValue&)>& what);

  std::vector<Finding> findings;

 private:
  int fIndex;
};

/// "5 cells", "1 cell".
std::string Cells(std::int64_t count);
/// A number of a variable of that type: dates and times as in ISO 8601, other numbers in digits.
std::string NumberOfType(double number, FieldType type);

// The families. Each adds what it finds.
void CheckCells(VariableCheck& check);
void CheckConstraints(VariableCheck& check, bool isKey);
void CheckLabels(VariableCheck& check, bool isSetMember);
void CheckSpread(VariableCheck& check);

}  // namespace runtime::data
