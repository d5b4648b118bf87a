// The records of a file as rows of equal length, block by block.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "runtime/data/csv/csvdialect.h"
#include "runtime/data/csv/recordscanner.h"
#include "runtime/data/open.h"
#include "runtime/data/typing/cellblock.h"

namespace runtime::data {

/// Reads the header and then the rows. A row with fewer cells than there are columns is filled up with empty ones, what
/// a row has more is left out; both are told, or an error when `strict`. A blank line is an empty cell in a file of one
/// column; otherwise it is passed over, and told when rows come behind it. Blank lines before the header are passed
/// over.
class BlockScanner {
 public:
  /// Most cells of a block, as far as one row has not more.
  static constexpr std::size_t kBlockCells = 65'536;

  /// `source` names the file in messages. Throws DataError when the text holds no record.
  BlockScanner(std::string_view text, const CsvDialect& dialect, std::string source, bool strict);

  /// As they stand in the file; all empty for a file without a header.
  const std::vector<std::string>& headers() const { return fHeaders; }
  /// Rows of blocks given so far.
  std::int64_t rows() const { return fRows; }

  /// The next rows, at most kBlockCells cells or `mostRows` rows; false at the end. Rows are counted from `firstRow`.
  /// Throws DataError for a quote that is never closed.
  bool Next(CellBlock& block, std::size_t mostRows = SIZE_MAX);
  /// Adds what there is to tell, after the last block.
  void Report(std::vector<Note>& notes) const;

 private:
  struct RaggedRow {
    std::int64_t row = 0;
    std::int64_t line = 0;
    std::size_t cells = 0;
  };
  /// Rows of a wrong length: how many, and the first of them.
  struct RaggedRows {
    std::int64_t count = 0;
    std::vector<RaggedRow> first;
  };

  void ReadHeader(std::string_view text, const CsvDialect& dialect);
  void FitRow(std::size_t firstCell);
  void NoteRagged(RaggedRows& rows, std::size_t cells);
  std::string DescribeRagged(const RaggedRows& rows, const char* length, const char* consequence) const;
  [[noreturn]] void FailAtQuote() const;

  std::string fSource;
  bool fStrict;
  RecordScanner fScanner;
  std::vector<std::string> fHeaders;
  std::vector<std::string_view> fCells;
  std::vector<Cell> fPlaces;
  std::vector<std::int64_t> fLines;
  std::int64_t fRows = 0;
  RaggedRows fTooShort;
  RaggedRows fTooLong;
  std::int64_t fBlankLines = 0;  // with rows behind them
  std::int64_t fFirstBlankLine = 0;
  std::int64_t fBlankLinesPending = 0;  // with nothing behind them yet
};

}  // namespace runtime::data
