// What two waves of a dataset are compared by: a dictionary in texts, the same for an open dataset and for a dictionary
// file without data.
#pragma once

#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "runtime/data/dictionary/descriptor.h"
#include "runtime/data/records.h"

namespace runtime::data {

enum class ComparedType { Numeric, String, Date };  // Date: dates and times

/// A value with its label. Numbers are their shortest digits, texts stand without trailing blanks.
struct ComparedLabel {
  std::string value;
  std::string label;
};

/// One variable. What the dictionary does not say is absent.
struct ComparedVariable {
  std::string name;
  std::optional<std::string> label;
  std::optional<ComparedType> type;
  std::optional<std::string> format;  // as F8.2
  std::optional<std::string> level;
  std::optional<std::string> role;
  std::vector<ComparedLabel> labels;  // in the order of the values
  std::vector<std::string> missing;   // values as in `labels`; ranges as "1..9", with LO and HI for open ends
  std::vector<std::pair<std::string, std::string>> attributes;  // names once; several values stand in lines
};

struct ComparedSet {
  std::string name;  // with its $
  std::string label;
  bool isDichotomy = false;
  std::vector<std::string> variables;
  std::string countedValue;
};

struct ComparedTable {
  /// A dictionary file without data: what it does not say is not said. Of a dataset everything but the formats is.
  bool isDictionaryAlone = false;
  std::optional<std::string> label;
  std::optional<std::string> weight;  // the variable's name
  std::string documents;              // lines; an empty one between two documents
  std::vector<std::pair<std::string, std::string>> attributes;
  std::vector<ComparedVariable> variables;
  std::vector<ComparedSet> sets;
};

/// Of an open dataset. `source` is the dictionary file that it was opened with, or null: formats that no dictionary
/// gives follow from the cells of the data, so they are left out.
ComparedTable TableToCompare(const Dictionary& dictionary, const TableDescriptor* source);

/// Of a dictionary file without data. Names are made as they are for data, so that both meet. Throws DataError.
ComparedTable TableToCompare(const TableDescriptor& descriptor);

}  // namespace runtime::data
