// The first record of a file.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "runtime/data/csv/csvdialect.h"
#include "runtime/data/csv/scanfindings.h"

namespace runtime::data {

/// A record among the rows that is left out.
struct LeftOutRecord {
  std::size_t begin = 0;
  std::size_t end = 0;        // position of the next record
  std::int64_t lineEnds = 0;  // in it
};

/// The names of the columns, and where the rows begin.
struct HeaderRecord {
  std::vector<std::string> names;      // as they stand in the file, never none; all empty for a file without a header
  std::size_t rowsBegin = 0;           // position in the text
  ScanFindings findings;               // up to there: what is found in the rows is appended
  std::vector<LeftOutRecord> leftOut;  // behind rowsBegin, ascending
};

/// Blank lines, lines of comment and records that are left out are passed over before the header. Where the dialect
/// names its records, they are joined: a cell that is empty or not there takes the one to its left, but for the last of
/// them; what stands before and between them is passed over. `source` names the file in messages. Throws DataError when
/// the text does not hold them, for a header of more than 1 MB, and for a quote in the first one that is never closed.
HeaderRecord ReadHeaderRecord(std::string_view text, const CsvDialect& dialect, const std::string& source);

}  // namespace runtime::data
