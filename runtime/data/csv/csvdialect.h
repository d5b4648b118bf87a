// How the text of a file is cut into records and cells.
#pragma once

#include <algorithm>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "runtime/data/dictionary/descriptor.h"

namespace runtime::data {

struct CsvDialect {
  char delimiter = ',';
  char quote = '"';  // '\0': there is no quoting
  bool doubleQuote = true;
  bool header = true;
  bool skipInitialSpace = false;
  std::string comment;                    // lines that begin with it are no records; empty: there are none
  std::vector<std::int64_t> commentRows;  // records that are left out, from 1, ascending; lines of comment count too
  std::vector<std::int64_t> headerRows;   // records that make the header, ascending; empty: the first one
  std::string headerJoin = " ";

  bool IsCommentRow(std::int64_t row) const { return std::binary_search(commentRows.begin(), commentRows.end(), row); }
};

/// What the dictionary says, the rest found from the text. A delimiter is looked for among comma, semicolon, tab and
/// bar: one that cuts the first record, and, of those, the one that gives most of the first records the same number of
/// cells; then the one that gives more cells. A file whose name ends with .tsv or .tab is cut at tabs, unless there is
/// none in its first record and another one fits. Without any the file has one column. `source` is the file's name.
/// Throws DataError for a delimiter or quote that is not one character, and for a first line of more than 128 MB.
CsvDialect FindDialect(std::string_view text, const TextDialect& said, const std::string& source);

}  // namespace runtime::data
