// Where the data of a resource are and how they are written.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "runtime/data/dictionary/descriptor.h"
#include "runtime/data/dictionary/packagecontext.h"

namespace runtime::data {

struct ResourceData {
  std::vector<std::string> paths;         // checked, absolute; of data that stand in the descriptor none
  std::optional<InlineTable> inlineData;  // those, and the contents of a JSON file
};

/// Reads `dialect` and `encoding` of a resource, and with `withData` its `data` or the places of its files. Throws
/// DataError.
ResourceData ReadResourceData(const JsonPlace& resource, const PackageContext& context, bool withData,
                              TextDialect& dialect);

}  // namespace runtime::data
