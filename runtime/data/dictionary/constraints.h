// The constraints of a field of a Table Schema.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "runtime/data/dictionary/descriptor.h"

namespace runtime::data {

/// Absent: not constrained. Values are as they stand in the file.
struct FieldConstraints {
  bool required = false;
  bool unique = false;
  std::optional<LabelledValue> minimum;
  std::optional<LabelledValue> maximum;
  std::optional<LabelledValue> exclusiveMinimum;
  std::optional<LabelledValue> exclusiveMaximum;
  std::optional<std::int64_t> minLength;  // characters
  std::optional<std::int64_t> maxLength;
  std::optional<std::string> pattern;
  std::vector<LabelledValue> values;  // of `enum`, where it did not become the categories
};

/// Constraints that have the wrong form are left out.
FieldConstraints ConstraintsOf(const FieldDescriptor& field);

/// The fields of the primary key of a schema; empty when it has none.
std::vector<std::string> PrimaryKeyOf(const TableDescriptor& table);

}  // namespace runtime::data
