// The records of a part of a file as rows of equal length, block by block.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

#include "runtime/data/csv/csvdialect.h"
#include "runtime/data/csv/headerrecord.h"
#include "runtime/data/csv/scanfindings.h"
#include "runtime/data/csv/structuremarks.h"
#include "runtime/data/csv/textarena.h"
#include "runtime/data/typing/cellblock.h"

namespace runtime::data {

/// First byte behind the first line end at or behind `at`, the end of the text when there is none: where a record
/// begins, unless that line end stands in quotes. The guess is right if and only if the segment before it ended there.
std::size_t GuessRecordBegin(std::string_view text, std::size_t at);

/// Rows of a block that typing reads fast: as many as make some 16K cells, but not less than 64, so that a column has
/// enough of them.
std::size_t RowsOfCellBlock(std::size_t columns);

/// Sizes that no result depends on.
struct ScanLimits {
  std::size_t rows = 0;                                  // most of a block; 0: RowsOfCellBlock
  std::size_t windowWords = 128;                         // 64 bytes each that are marked at once
  std::size_t placeReach = std::size_t{1} << 30;         // cells farther from the begin of their block get own texts
  std::size_t guessedQuoteReach = std::size_t{1} << 20;  // of a quoted cell behind a guessed begin
};

/// Cuts text by the rules of RecordScanner, and makes the records rows: a row with fewer cells than there are columns
/// is filled up with empty ones, what a row has more is left out. A blank line is an empty cell in a file of one
/// column; otherwise it is passed over. Cells stay places in the text but for those with doubled quotes or text behind
/// their closing quote. One thread; several scanners may read the same text.
class SegmentScanner {
 public:
  /// Records to leave out, ascending; they must outlive the scanner.
  void LeaveOut(const std::vector<LeftOutRecord>& records) { fLeftOut = &records; }

  enum class BeginIs { Proven, Guessed };

  /// `text` must outlive the scanner, and CellBlock::kReadAhead bytes behind its end must be readable.
  /// REQUIRES: columns > 0.
  SegmentScanner(std::string_view text, const CsvDialect& dialect, std::size_t columns, const ScanLimits& limits = {});

  /// Turns to the records that begin in [begin, end); `begin` is taken to be a record's begin.
  /// REQUIRES: begin <= end <= text.size().
  void Begin(std::size_t begin, std::size_t end, BeginIs beginIs = BeginIs::Proven);

  /// The next rows; false behind the last record, before a quote that is never closed, and when the scan was given up.
  /// Rows and lines are counted from the begin of the segment, both from 0. `source` stays as it is.
  bool Next(CellBlock& block);

  /// Where the next record begins: behind the segment when Next has said false and the scan was not stopped.
  std::size_t position() const { return fAt; }
  /// A quoted cell went so far that the begin is taken for a wrong guess; the segment must be scanned again from a
  /// proven begin. What Next gave and what was found are worth nothing.
  bool gaveUp() const { return fGaveUp; }
  /// Of the records passed.
  const ScanFindings& findings() const { return fFindings; }
  /// Whether there is any byte of 0x80 or above from the begin of the segment to position(), or shortly behind it.
  bool sawNonAscii() const { return fSawNonAscii; }

 private:
  /// A stretch of text.
  struct Range {
    std::size_t begin = 0;
    std::size_t end = 0;
    std::size_t size() const { return end - begin; }
  };
  enum class Cut { Whole, Stopped };

  /// Cell ends of a window without quotes, by their indices in its list.
  struct PlainRun {
    std::size_t first = 0;
    std::size_t count = 0;
    bool endsLine = false;  // the last is a line end
  };

  void CutRows();
  /// Whether there are records to leave out or lines of comment.
  bool HasOthers() const { return !fDialect.comment.empty() || (fLeftOut != nullptr && !fLeftOut->empty()); }
  /// Passes over a line of comment or a record to leave out, where one begins here.
  bool PassOver();
  /// Takes the rows that end in the window, as long as no quotes and no blank lines are there; whether it took any.
  bool CutPlainRows();
  /// Passes over what stands before `at` in the lists of the window.
  void CatchUp(std::size_t at);
  /// The cell ends at or behind `from`, up to the next line end or the end of the window.
  PlainRun TakePlainRun(std::size_t from);
  /// For a row, already noted, of a wrong length.
  void FitRow(Cell* row, std::size_t cells, std::int64_t line);
  /// For more rows in the block.
  void MakeRoom();
  Cut CutRecord();
  Cut CutRestOfRecord(std::size_t begin);
  bool TakeQuotedCell(std::size_t open);
  bool FindClosingQuote(std::size_t open, std::size_t& closing, bool& hasDoubled);
  void PutWithOwnText(Range quoted, bool hasDoubled, Range behind);
  void Put(Range cell);
  void PutOwn(std::string_view text);
  void EndRecord(std::size_t lineEnd);

  void MarkFrom(std::size_t begin, bool atRecord);
  /// The word of the window in which `at` stands; makes the window when it is another.
  std::size_t WordOf(std::size_t at);
  std::size_t FindCellEnd(std::size_t from);
  std::size_t BehindLineEnd(std::size_t lineEnd) const;
  bool EndsCell(char c) const { return c == fDialect.delimiter || c == '\n' || c == '\r'; }
  /// Whether the cell last taken is the last of its record.
  bool IsAtLineEnd() const { return fCellEnd == fText.size() || fText[fCellEnd] != fDialect.delimiter; }
  /// Whether cells of the window may stand too far from the begin of the block for places.
  bool IsBeyondReach() const { return fMarks.end() - fBase > fLimits.placeReach; }
  bool MaySkipBlanks() const { return fDialect.skipInitialSpace && fDialect.delimiter != ' '; }

  std::string_view fText;
  CsvDialect fDialect;
  std::size_t fColumns;
  std::size_t fStride;
  ScanLimits fLimits;
  StructureMarker fMarker;
  StructureMarks fMarks;
  std::size_t fNextCellEnd = 0;  // in the lists of fMarks: those before are taken
  std::size_t fNextLineEnd = 0;
  const std::vector<LeftOutRecord>* fLeftOut = nullptr;

  std::size_t fAt = 0;   // begin of the next record
  std::size_t fEnd = 0;  // of the segment
  bool fBeginIsGuessed = false;
  bool fGaveUp = false;
  bool fSawNonAscii = false;
  ScanFindings fFindings;

  // The block.
  std::vector<Cell> fCells;
  std::vector<std::int64_t> fLines;
  std::size_t fRows = 0;
  std::size_t fBase = 0;  // position of its text
  std::vector<std::string_view> fOwnTexts;
  TextArena fArena;

  // The record that is being cut.
  Cell* fRow = nullptr;
  std::size_t fFilled = 0;   // cells so far, also those past the last column
  std::size_t fCellEnd = 0;  // behind the cell last taken: at a delimiter, a line end or the end of the text
};

}  // namespace runtime::data
