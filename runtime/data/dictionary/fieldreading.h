// One field of a Table Schema.
#pragma once

#include <functional>
#include <vector>

#include "runtime/data/dictionary/descriptor.h"
#include "runtime/data/dictionary/deviations.h"
#include "runtime/data/dictionary/jsonfile.h"
#include "runtime/data/open.h"

namespace runtime::data {

/// Gives the categories that stand in a resource of the package: `reference` is an object with `resource`, `valueField`
/// and perhaps `labelField`. Throws DataError.
using ReadCategories = std::function<std::vector<LabelledValue>(const JsonPlace& reference)>;

/// What reading a schema works with.
struct SchemaContext {
  std::vector<Note>& notes;
  Deviations& deviations;
  ReadCategories readCategories;  // empty for a schema that stands in no package
};

/// `missingOfSchema` hold where the field says nothing of its own. Throws DataError.
FieldDescriptor ReadField(const JsonPlace& place, const std::vector<LabelledValue>& missingOfSchema,
                          const SchemaContext& context);

/// The missing values that an object says, under whatever spelling of their property; nothing when it says none.
std::optional<std::vector<LabelledValue>> FindMissingValues(const JsonPlace& object, Deviations& deviations);

}  // namespace runtime::data
