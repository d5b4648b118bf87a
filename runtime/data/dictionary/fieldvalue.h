// The values that a dictionary file names, read as values of a numeric variable.
#pragma once

#include <optional>

#include "runtime/data/dictionary/descriptor.h"

namespace runtime::data {

/// The value of an entry (a category, a missing code) in a numeric variable whose cells `dialect` describes: a text is
/// read as a cell of the field, else as a plain number; a JSON number is itself. Nothing when it reads as neither.
std::optional<double> FieldValueOf(const LabelledValue& entry, const FieldDialect& dialect);

}  // namespace runtime::data
