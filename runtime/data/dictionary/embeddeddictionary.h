// A dictionary that stands in the data file itself.
#pragma once

#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "runtime/data/dictionary/descriptor.h"
#include "runtime/data/open.h"

namespace runtime::data {

/// The keys under which a file's metadata may hold one, a Table Schema or a Data Package as JSON; the first one that
/// does holds.
const std::vector<std::string>& DictionaryKeys();

/// Reads the dictionary of a file's metadata, keys with texts. Nothing when there is none. One that cannot be used is
/// told and left out; with `strict` it is a DataError.
std::optional<TableDescriptor> ReadEmbeddedDictionary(const std::string& dataPath,
                                                      const std::vector<std::pair<std::string, std::string>>& metadata,
                                                      const OpenOptions& options, std::vector<Note>& notes);

}  // namespace runtime::data
