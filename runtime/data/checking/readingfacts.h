// What reading a dataset came upon, for who judges how data and dictionary fit.
#pragma once

#include <optional>
#include <vector>

#include "runtime/data/dictionary/descriptor.h"
#include "runtime/data/typing/columnfacts.h"

namespace runtime::data {

struct ReadingFacts {
  std::optional<TableDescriptor> dictionary;  // as it was read; absent when there is none
  std::vector<ColumnFacts> columns;           // one a variable
  std::vector<int> fieldOfColumn;             // index of the field in `dictionary`, -1 for a column without one

  /// Null for a column without a field.
  const FieldDescriptor* FieldOf(std::size_t column) const {
    return fieldOfColumn[column] < 0 ? nullptr : &dictionary->fields[static_cast<std::size_t>(fieldOfColumn[column])];
  }
};

}  // namespace runtime::data
