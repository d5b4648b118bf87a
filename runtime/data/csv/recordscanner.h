// Cutting text into records and cells.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

#include "runtime/data/csv/csvdialect.h"
#include "runtime/data/csv/textarena.h"

namespace runtime::data {

/// The rules:
///  - LF, CR and CRLF end a record; the last one needs no end. A file that ends with a line end has no record behind
///  it.
///  - A cell that begins with the quote goes on to the closing quote, over delimiters and line ends; a doubled quote in
///    it is one quote. What stands between the closing quote and the next delimiter or line end belongs to the cell as
///    it stands, unless it is nothing but blanks. A quote anywhere else is a character like others.
///  - Nothing else is changed: blanks, NUL bytes and line ends in quotes stay.
class RecordScanner {
 public:
  /// `text` must outlive the scanner and the cells.
  RecordScanner(std::string_view text, const CsvDialect& dialect);

  /// Passes over a line of comment, where one comes next.
  bool SkipComment();
  /// Appends the cells of the next record, lines of comment before it passed over; false at the end of the text and
  /// before a quote that is never closed. A blank line gives one empty cell. Cells are valid until ReleaseTexts.
  bool Next(std::vector<std::string_view>& cells);

  /// Of the record last given: the line in which it begins, from 1; whether it is a line without any character.
  std::int64_t line() const { return fLine; }
  bool lineIsBlank() const { return fLineIsBlank; }
  /// Lines that have ended so far.
  std::int64_t lineEnds() const { return fNextLine - 1; }
  /// Bytes of the text that were scanned.
  std::size_t position() const { return static_cast<std::size_t>(fAt - fBegin); }
  /// Ends the life of the cells given so far.
  void ReleaseTexts() { fArena.Release(); }

  struct Place {
    std::int64_t line = 0;  // from 1
    std::size_t cell = 0;   // of the record, from 1
  };
  /// Where a quote opened that is never closed.
  const std::optional<Place>& unclosedQuote() const { return fUnclosedQuote; }
  /// Cells with text behind their closing quote, and the first of them.
  std::int64_t cellsWithTextBehindQuote() const { return fTextBehindQuote; }
  const Place& firstTextBehindQuote() const { return fFirstTextBehindQuote; }

 private:
  bool EndsCell(char c) const { return fEndsCell[static_cast<unsigned char>(c)]; }
  std::string_view TakePlainCell();
  /// Stands at the opening quote; nothing when it is never closed.
  std::optional<std::string_view> TakeQuotedCell(std::size_t cell);
  std::string_view TakeTextBehindQuote(std::string_view quoted, std::size_t cell);
  std::string_view WithSingleQuotes(std::string_view text);
  void CountLines(std::string_view text);

  const char* fBegin;
  const char* fAt;
  const char* fEnd;
  CsvDialect fDialect;
  std::array<bool, 256> fEndsCell{};  // delimiter and line ends
  std::int64_t fLine = 0;
  std::int64_t fNextLine = 1;
  bool fLineIsBlank = false;
  TextArena fArena;
  std::optional<Place> fUnclosedQuote;
  std::int64_t fTextBehindQuote = 0;
  Place fFirstTextBehindQuote;
};

}  // namespace runtime::data
