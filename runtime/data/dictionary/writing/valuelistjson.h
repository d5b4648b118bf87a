// Lists of values with labels as JSON.
#pragma once

#include <vector>

#include "runtime/data/dictionary/descriptor.h"
#include "runtime/data/dictionary/jsonfile.h"

namespace runtime::data {

/// A number or a text, as it was read.
Json ValueJson(const LabelledValue& value);

/// Bare values; objects with `value` and `label` as soon as one has a label.
Json ValueListJson(const std::vector<LabelledValue>& values);

/// Missing values are texts: a number in the digits that a cell of the field would have.
Json MissingValuesJson(const std::vector<LabelledValue>& values, const FieldDialect& dialect);

}  // namespace runtime::data
