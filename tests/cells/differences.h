// Where our reader and DuckDB's do not agree, and why.
#pragma once

#include <array>
#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "tests/cells/rawrecords.h"
#include "tests/cells/table.h"

namespace cells {

enum class Difference { EmptyRecordOfOneColumn, QuoteBehindBlanks, TextBehindQuote, StrayQuote, LoneCarriageReturn };

struct DifferenceEntry {
  Difference difference;
  const char* name;
  const char* rule;   // ours and DuckDB's
  const char* right;  // who is, and by what
};

/// All that are known; anything else is a fault of one of the two.
constexpr std::array<DifferenceEntry, 5> kDifferences = {{
    {Difference::EmptyRecordOfOneColumn, "empty record of one column",
     "In a file of one column a record without any character, or of two quotes alone, is a row with an empty cell. "
     "DuckDB takes it for a blank line and leaves it out.",
     "ours: by RFC 4180 each line is a record, and the number of cases must not depend on what they hold"},
    {Difference::QuoteBehindBlanks, "quote behind blanks",
     "A cell that begins with blanks is not quoted, whatever follows: its blanks and quotes are its text. DuckDB "
     "passes "
     "over the blanks and takes the quote for an opening one, which may swallow delimiters and line ends.",
     "ours: by RFC 4180 blanks are part of a field, and a quote is none of the characters of a field that is not "
     "quoted; "
     "what DuckDB reads is what a dictionary asks for with skipInitialSpace"},
    {Difference::TextBehindQuote, "text behind the closing quote",
     "What stands between the closing quote and the next delimiter belongs to the cell, and is told. DuckDB keeps all "
     "of "
     "it but the last character, which it takes for the closing quote.",
     "ours: RFC 4180 does not allow such a cell; ours loses nothing and says so"},
    {Difference::StrayQuote, "quote in a cell that is not quoted",
     "It is a character like others. DuckDB leaves it out of some such cells, a few in ten thousand files.",
     "ours: RFC 4180 does not allow such a cell; ours loses nothing"},
    {Difference::LoneCarriageReturn, "CR alone in a file with CRLF",
     "LF, CR and CRLF each end a record, also in one file. DuckDB leaves out the character behind a CR that stands "
     "alone where it expects CRLF.",
     "ours: RFC 4180 knows CRLF only, and a character of a cell must not be lost"},
}};

/// What comparing the two tables of a file gave.
struct Comparison {
  std::array<std::size_t, kDifferences.size()> count{};  // rows that differ, by Difference
  /// Behind a quote behind blanks, text behind a quote or a lone CR DuckDB takes quotes for opening ones that are none,
  /// so that its records are others from there on: the rest was not compared.
  bool ranOff = false;
  std::string unexplained;  // the first difference that is none of the known ones; empty: there is none

  bool isEqual() const;
};

/// Compares row by row; a row or a cell that differs must itself have the oddity that explains it. `text`: the
/// file's, without a byte order mark.
Comparison Compare(std::string_view text, const Table& ours, const Table& duckdb,
                   const runtime::data::CsvDialect& dialect);

}  // namespace cells
