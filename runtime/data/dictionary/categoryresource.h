// Categories that stand in a resource of their own.
#pragma once

#include <vector>

#include "runtime/data/dictionary/descriptor.h"
#include "runtime/data/dictionary/packagecontext.h"

namespace runtime::data {

/// Most categories that are read from a resource.
inline constexpr std::size_t kMostCategoriesOfResource = 100'000;

/// Reads `valueField` and, where it is named, `labelField` of the resource that `reference` names, in the order of its
/// rows, blank values left out. `resource` is the one whose field asks. Throws DataError, also when the categories of
/// the categories lead back to a resource already met.
std::vector<LabelledValue> ReadCategoryResource(const JsonPlace& reference, const JsonPlace& resource,
                                                const PackageContext& context);

}  // namespace runtime::data
