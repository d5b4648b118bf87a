// Lists of values with labels, as Table Schema writes them.
#pragma once

#include <vector>

#include "runtime/data/dictionary/descriptor.h"
#include "runtime/data/dictionary/deviations.h"
#include "runtime/data/dictionary/jsonfile.h"

namespace runtime::data {

/// An entry: an object with `value` and perhaps `label`, or the bare value.
LabelledValue ReadLabelledValue(const JsonPlace& entry);

/// Bare values and objects may be mixed.
std::vector<LabelledValue> ReadLabelledValues(const JsonPlace& list, Deviations& deviations);

}  // namespace runtime::data
