// The entries of a list of missing values, met again in the cells of a numeric column.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "runtime/data/dictionary/descriptor.h"

namespace runtime::data {

class ValueReader;

class MissingEntries {
 public:
  struct Entry {
    std::string text;
    std::optional<double> code;  // it reads as a number: user-missing, the value stays; else system-missing
    int decimals = 0;            // of the code
  };

  /// `dialect` is that of the field.
  MissingEntries(const std::vector<LabelledValue>& entries, const FieldDialect& dialect);

  /// The entry that a cell is, as it stands or without the blanks around it; null when it is none.
  const Entry* Find(std::string_view cell) const;
  bool holdsEmptyText() const { return fHoldsEmptyText; }
  /// Whether some entry reads as a value other than its code, so that cells must be looked up before they are read.
  bool MustComeFirst(const ValueReader& reader) const;

 private:
  std::vector<Entry> fEntries;
  bool fHoldsEmptyText = false;
};

}  // namespace runtime::data
