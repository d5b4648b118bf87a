// A table that is small enough to be held as texts.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "runtime/data/dictionary/descriptor.h"

namespace runtime::data {

struct SmallTable {
  std::vector<std::string> headers;            // without a header record: all empty
  std::vector<std::vector<std::string>> rows;  // as many cells as headers; blank lines are left out
};

/// Reads files of delimited text, one behind the other. Throws DataError as ReadCsv does, and when there are more than
/// `mostRows` rows.
SmallTable ReadSmallFiles(const std::vector<std::string>& paths, const TextDialect& dialect, std::size_t mostRows);
/// The same of a text in UTF-8; `name` is what messages name it.
SmallTable ReadSmallText(const std::string& name, const std::string& text, const TextDialect& dialect,
                         std::size_t mostRows);

}  // namespace runtime::data
