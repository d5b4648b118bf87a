// Tables in JSON: the data of a resource that stand in the descriptor, or in a JSON file.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "runtime/data/dictionary/descriptor.h"
#include "runtime/data/dictionary/jsonfile.h"

namespace runtime::data {

/// The properties of a table dialect that are about JSON.
struct JsonDialect {
  std::optional<std::string> property;           // the list stands in this member
  std::optional<std::string> itemType;           // "array" or "object"; absent: as the first item is
  std::optional<std::vector<std::string>> keys;  // of objects: the columns; absent: all keys, in the order in which met
  bool header = true;                            // the first of the arrays holds the names of the columns
};

/// A list of arrays or of objects as a table. Null and what an item lacks is an empty cell, a truth value true or
/// false, a list or object its JSON. Throws DataError, at its place, for anything else, and for a list without items.
InlineTable ReadJsonTable(const JsonPlace& data, const JsonDialect& dialect);

}  // namespace runtime::data
