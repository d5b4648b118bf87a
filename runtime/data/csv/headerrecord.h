// The first record of a file.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "runtime/data/csv/csvdialect.h"
#include "runtime/data/csv/scanfindings.h"

namespace runtime::data {

/// The names of the columns, and where the rows begin.
struct HeaderRecord {
  std::vector<std::string> names;  // as they stand in the file, never none; all empty for a file without a header
  std::size_t rowsBegin = 0;       // position in the text
  ScanFindings findings;           // up to there: what is found in the rows is appended
};

/// Blank lines before the header are passed over. `source` names the file in messages. Throws DataError when the text
/// holds no record, and for a quote in the first one that is never closed.
HeaderRecord ReadHeaderRecord(std::string_view text, const CsvDialect& dialect, const std::string& source);

}  // namespace runtime::data
