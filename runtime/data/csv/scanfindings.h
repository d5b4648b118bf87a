// What scanning had to tell besides the cells.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "runtime/data/open.h"

namespace runtime::data {

/// Rows are counted from 1, lines from 0, cells of a record from 1; rows and lines from where the scan began.
struct ScanFindings {
  static constexpr std::size_t kRaggedRowsNamed = 3;

  struct Place {
    std::int64_t line = 0;
    std::size_t cell = 0;
  };
  struct RaggedRow {
    std::int64_t row = 0;
    std::int64_t line = 0;  // in which it begins
    std::size_t cells = 0;
  };
  /// Rows of a wrong length: how many, and the first of them (at most kRaggedRowsNamed).
  struct RaggedRows {
    std::int64_t count = 0;
    std::vector<RaggedRow> first;
  };

  std::int64_t rows = 0;
  std::int64_t lineEnds = 0;  // passed
  RaggedRows tooShort;
  RaggedRows tooLong;
  std::int64_t blankLines = 0;         // with rows behind them
  std::int64_t blankLinesPending = 0;  // with nothing behind them yet
  std::int64_t firstBlankLine = 0;     // its line, when there is one of either kind
  std::int64_t textsBehindQuotes = 0;  // cells with text behind their closing quote
  Place firstTextBehindQuote;          // when there is one
  std::optional<Place> unclosedQuote;  // where it opens; nothing is scanned behind it

  void NoteBlankLine();
  void NoteRow() {
    blankLines += blankLinesPending;
    blankLinesPending = 0;
    ++rows;
  }
  /// Of the row last noted, which begins in `line`.
  void NoteRagged(std::int64_t line, std::size_t cells, std::size_t columns);
  void NoteTextBehindQuote(std::size_t cell) {
    if (textsBehindQuotes++ == 0) firstTextBehindQuote = {lineEnds, cell};
  }

  /// Adds what was found from where this scan ended, as if one scan had passed both. REQUIRES: no unclosed quote here.
  void Append(const ScanFindings& next);

  /// Throws the DataError that the first of these calls for, when there is one: with `strict`, a row of a wrong length;
  /// a quote that is never closed. `source` names the file. REQUIRES: scanned from the begin of the file.
  void ThrowFirstError(const std::string& source, std::size_t columns, bool strict) const;
  /// Adds a note for each kind of thing that there is to tell. REQUIRES: scanned from the begin of the file.
  void Report(const std::string& source, std::size_t columns, std::vector<Note>& notes) const;
};

}  // namespace runtime::data
