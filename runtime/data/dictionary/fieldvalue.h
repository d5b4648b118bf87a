// The values that a dictionary file names, read as values of a numeric variable.
#pragma once

#include <optional>

#include "runtime/data/dictionary/descriptor.h"
#include "runtime/data/typing/valuereader.h"

namespace runtime::data {

/// Reads the values of categories and value labels: a JSON number is itself; a text is read as a cell of the field,
/// else as a plain number.
class FieldValues {
 public:
  /// `field` may be null. `type` is the one that the column was read as. REQUIRES: a numeric type.
  FieldValues(const FieldDescriptor* field, FieldType type);
  /// Nothing when the entry reads as neither.
  std::optional<double> Of(const LabelledValue& entry) const;

 private:
  ValueReader fReader;
};

/// The code of an entry of a list of missing values, in a numeric variable whose cells `dialect` describes: the number
/// that it reads as, in the field's way of writing numbers where the field holds plain numbers. Nothing for any other
/// entry ("NA", "true", a date): it makes a cell system-missing.
std::optional<double> MissingCodeOf(const LabelledValue& entry, const FieldDialect& dialect);

}  // namespace runtime::data
