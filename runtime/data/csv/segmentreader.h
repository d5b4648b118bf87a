// Reading the columns of one segment of a file: scan, type, store.
#pragma once

#include <cstddef>
#include <memory>
#include <vector>

#include "runtime/data/csv/csvdialect.h"
#include "runtime/data/csv/headerrecord.h"
#include "runtime/data/csv/inputtext.h"
#include "runtime/data/csv/scanfindings.h"
#include "runtime/data/csv/segmentscanner.h"
#include "runtime/data/store/rowgroups.h"
#include "runtime/data/typing/columntyper.h"

namespace runtime::data {

/// A file of a table, open, with the dialect that was found.
struct CsvPart {
  std::unique_ptr<InputText> input;
  CsvDialect dialect;
  HeaderRecord header;
};

/// The columns of a table that are to be read; null: left out.
using ColumnTypers = std::vector<std::unique_ptr<ColumnTyper>>;

/// Reads one segment after the other, each on its own.
class SegmentReader {
 public:
  explicit SegmentReader(const ColumnTypers& typers);
  ~SegmentReader();

  /// Reads the records that begin in [begin, end) of the part's text. `isProven`: that a record begins at `begin`; else
  /// the reading may be given up.
  void Read(const CsvPart& part, std::size_t begin, std::size_t end, bool isProven);

  // Of the segment last read.
  std::size_t begin() const { return fBegin; }
  /// Where the record behind its last one begins.
  std::size_t end() const { return fEnd; }
  bool wasGivenUp() const { return fGaveUp; }
  bool hasInvalidText() const { return fHasInvalidText; }
  const ScanFindings& findings() const { return fFindings; }
  /// The cells of the columns that are read, in their order, not yet joined to their columns.
  RowGroup& group() { return fGroup; }
  /// Null for a column that is left out.
  const ColumnPiece* piece(std::size_t column) const { return fPieces[column].get(); }

 private:
  void Store();

  std::vector<std::unique_ptr<ColumnPiece>> fPieces;
  std::unique_ptr<SegmentScanner> fScanner;
  const CsvPart* fPart = nullptr;  // of the scanner
  std::size_t fBegin = 0;
  std::size_t fEnd = 0;
  bool fGaveUp = false;
  bool fHasInvalidText = false;
  ScanFindings fFindings;
  RowGroup fGroup;
};

}  // namespace runtime::data
