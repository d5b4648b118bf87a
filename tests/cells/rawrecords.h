// The records of a file as they stand in it, with what is odd about them.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "runtime/data/csv/csvdialect.h"

namespace cells {

struct RawCell {
  std::string_view raw;            // as it stands in the file, quotes included
  std::string text;                // as it is to be read
  bool quoteBehindBlanks = false;  // blanks, and then a quote: a cell that is not quoted
  bool textBehindQuote = false;    // something but blanks behind the closing quote
  bool quoteBehindQuote = false;   // with a quote in it
};

struct RawRecord {
  std::string_view raw;  // without its line end
  std::vector<RawCell> cells;
};

/// Cut character by character, by the rules that our reader documents; blank lines are records of one empty cell.
/// Nothing comes behind a quote that is not closed. `text` is without a byte order mark.
std::vector<RawRecord> CutRecords(std::string_view text, const runtime::data::CsvDialect& dialect);

/// The records that are rows: blank lines are none before the header, nor anywhere in a file of several columns.
std::vector<RawRecord> WithoutBlankLines(std::vector<RawRecord> records);

}  // namespace cells
