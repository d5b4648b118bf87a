#include "runtime/data/csv/segmentscanner.h"

#include <algorithm>
#include <bit>
#include <cstring>

namespace runtime::data {

namespace {

constexpr std::size_t kBitsOfWord = StructureMarks::kBytesOfWord;

/// The bits from `bit` on.
std::uint64_t From(std::size_t bit) { return ~std::uint64_t{0} << bit; }
/// The bits below the lowest that is set; all when none is.
std::uint64_t BelowLowest(std::uint64_t bits) { return ~bits & (bits - 1); }
std::size_t Lowest(std::uint64_t bits) { return static_cast<std::size_t>(std::countr_zero(bits)); }

/// Cells from one row to the next. Rows of more than a few cells begin with a cache line of their own and are an odd
/// number of lines apart, so that the cells of one column spread over all sets of the cache.
std::size_t StrideOf(std::size_t columns) {
  constexpr std::size_t kCellsOfLine = 64 / sizeof(Cell);
  if (columns <= kCellsOfLine) return columns;
  return ((columns + kCellsOfLine - 1) / kCellsOfLine | 1) * kCellsOfLine;
}

}  // namespace

std::size_t GuessRecordBegin(std::string_view text, std::size_t at) {
  while (at < text.size() && text[at] != '\n' && text[at] != '\r') ++at;
  if (at >= text.size()) return text.size();
  return text[at] == '\r' && at + 1 < text.size() && text[at + 1] == '\n' ? at + 2 : at + 1;
}

std::size_t RowsOfCellBlock(std::size_t columns) {
  constexpr std::size_t kCells = std::size_t{16} * 1024;
  constexpr std::size_t kLeastRows = 64;
  return std::max(kLeastRows, kCells / columns);
}

SegmentScanner::SegmentScanner(std::string_view text, const CsvDialect& dialect, std::size_t columns,
                               const ScanLimits& limits)
    : fText(text),
      fDialect(dialect),
      fColumns(columns),
      fStride(StrideOf(columns)),
      fLimits(limits),
      fMarker(text, dialect, limits.windowWords) {
  if (fLimits.rows == 0) fLimits.rows = RowsOfCellBlock(columns);
}

void SegmentScanner::Begin(std::size_t begin, std::size_t end, BeginIs beginIs) {
  fAt = begin;
  fEnd = end;
  fBeginIsGuessed = beginIs == BeginIs::Guessed;
  fGaveUp = false;
  fSawNonAscii = false;
  fFindings = {};
  MarkFrom(begin, true);
}

bool SegmentScanner::Next(CellBlock& block) {
  fOwnTexts.clear();
  fArena.Release();
  fRows = 0;
  fBase = fAt;
  block.firstRow = fFindings.rows;
  if (!fFindings.unclosedQuote && !fGaveUp) CutRows();
  block.text = fText.data() + fBase;
  block.cells = fCells.data();
  block.ownTexts = fOwnTexts.data();
  block.columns = fColumns;
  block.stride = fStride;
  block.rows = fRows;
  block.lines = fLines.data();
  return fRows > 0;
}

void SegmentScanner::CutRows() {
  while (fAt < fEnd && fRows < fLimits.rows && (fRows == 0 || fAt - fBase <= fLimits.placeReach)) {
    const char first = fText[fAt];
    if (fColumns > 1 && (first == '\n' || first == '\r')) {
      fFindings.NoteBlankLine();
      ++fFindings.lineEnds;
      fAt = BehindLineEnd(fAt);
      // Places need not reach over blank lines.
      if (fRows == 0) fBase = fAt;
      continue;
    }
    const std::int64_t line = fFindings.lineEnds;
    if (fRows == fLines.size()) MakeRoom();
    fRow = fCells.data() + fRows * fStride;
    fFilled = 0;
    if (CutRecord() == Cut::Stopped) return;
    fFindings.NoteRow();
    fLines[fRows++] = line;
    if (fFilled == fColumns) continue;
    fFindings.NoteRagged(line, fFilled, fColumns);
    if (fFilled < fColumns) std::fill(fRow + fFilled, fRow + fColumns, Cell{});
  }
}

void SegmentScanner::MakeRoom() {
  constexpr std::size_t kFirstRows = 64;
  const std::size_t rows = std::min(fLimits.rows, std::max(kFirstRows, 2 * fLines.size()));
  fCells.resize(rows * fStride);
  fLines.resize(rows);
}

SegmentScanner::Cut SegmentScanner::CutRecord() {
  if (MaySkipBlanks()) return CutRestOfRecord(fAt);
  std::size_t word = WordOf(fAt);
  if (fMarks.end() - fBase > fLimits.placeReach) return CutRestOfRecord(fAt);
  auto begin = static_cast<std::uint32_t>(fAt - fBase);
  std::uint64_t from = From((fAt - fMarks.begin) % kBitsOfWord);
  while (true) {
    const std::uint64_t openings = fMarks.openings[word] & from;
    std::uint64_t ends = fMarks.cellEnds[word] & from & BelowLowest(openings);
    const std::uint64_t lineEnds = fMarks.lineEnds[word] & ends;
    ends &= BelowLowest(lineEnds) << 1 | 1;
    const std::size_t wordBegin = fMarks.begin + word * kBitsOfWord;
    const auto wordPlace = static_cast<std::uint32_t>(wordBegin - fBase);
    for (; ends != 0; ends &= ends - 1) {
      const auto end = wordPlace + static_cast<std::uint32_t>(std::countr_zero(ends));
      if (fFilled < fColumns) fRow[fFilled] = {begin, end - begin};
      ++fFilled;
      begin = end + 1;
    }
    if (lineEnds != 0) {
      EndRecord(wordBegin + Lowest(lineEnds));
      return Cut::Whole;
    }
    std::size_t at = wordBegin + kBitsOfWord;
    if (openings != 0) {
      if (!TakeQuotedCell(wordBegin + Lowest(openings))) return Cut::Stopped;
      if (fCellEnd == fText.size() || fText[fCellEnd] != fDialect.delimiter) {
        EndRecord(fCellEnd);
        return Cut::Whole;
      }
      at = fCellEnd + 1;
      begin = static_cast<std::uint32_t>(at - fBase);
    }
    word = WordOf(at);
    from = From((at - fMarks.begin) % kBitsOfWord);
    if (fMarks.end() - fBase > fLimits.placeReach) return CutRestOfRecord(fBase + begin);
  }
}

SegmentScanner::Cut SegmentScanner::CutRestOfRecord(std::size_t begin) {
  while (true) {
    if (MaySkipBlanks())
      while (begin < fText.size() && fText[begin] == ' ') ++begin;
    if (begin < fText.size() && fDialect.quote != '\0' && fText[begin] == fDialect.quote) {
      if (!TakeQuotedCell(begin)) return Cut::Stopped;
    } else {
      fCellEnd = FindCellEnd(std::max(begin, fMarks.begin));
      Put({begin, fCellEnd});
    }
    if (fCellEnd == fText.size() || fText[fCellEnd] != fDialect.delimiter) {
      EndRecord(fCellEnd);
      return Cut::Whole;
    }
    begin = fCellEnd + 1;
  }
}

bool SegmentScanner::TakeQuotedCell(std::size_t open) {
  std::size_t closing = 0;
  bool hasDoubled = false;
  if (!FindClosingQuote(open, closing, hasDoubled)) return false;
  const Range quoted{open + 1, closing};
  fCellEnd = closing + 1;
  Range behind{fCellEnd, fCellEnd};
  if (fCellEnd < fText.size() && !EndsCell(fText[fCellEnd])) {
    fCellEnd = FindCellEnd(fCellEnd);
    const std::string_view text = fText.substr(behind.begin, fCellEnd - behind.begin);
    if (text.find_first_not_of(' ') != std::string_view::npos) {
      behind.end = fCellEnd;
      fFindings.NoteTextBehindQuote(fFilled + 1);
    }
  }
  if (hasDoubled || behind.size() > 0)
    PutWithOwnText(quoted, hasDoubled, behind);
  else
    Put(quoted);
  return true;
}

bool SegmentScanner::FindClosingQuote(std::size_t open, std::size_t& closing, bool& hasDoubled) {
  const std::int64_t lineOfOpening = fFindings.lineEnds;
  std::size_t at = open + 1;
  while (at <= fText.size()) {
    if (fBeginIsGuessed && at - open > fLimits.guessedQuoteReach) {
      fGaveUp = true;
      return false;
    }
    const std::size_t word = WordOf(at);
    const std::uint64_t from = From((at - fMarks.begin) % kBitsOfWord);
    const std::uint64_t quotes = fMarks.quotes[word] & from;
    const std::uint64_t lineEnds = fMarks.lineEnds[word] & from & BelowLowest(quotes);
    if (lineEnds != 0) fFindings.lineEnds += std::popcount(lineEnds);
    const std::size_t wordBegin = fMarks.begin + word * kBitsOfWord;
    if (quotes == 0) {
      at = wordBegin + kBitsOfWord;
      continue;
    }
    closing = wordBegin + Lowest(quotes);
    if (!fDialect.doubleQuote || closing + 1 >= fText.size() || fText[closing + 1] != fDialect.quote) return true;
    hasDoubled = true;
    at = closing + 2;
  }
  fFindings.lineEnds = lineOfOpening;
  fFindings.unclosedQuote = {lineOfOpening, fFilled + 1};
  return false;
}

void SegmentScanner::PutWithOwnText(Range quoted, bool hasDoubled, Range behind) {
  if (fFilled >= fColumns) {
    ++fFilled;
    return;
  }
  char* const text = fArena.Allocate(quoted.size() + behind.size());
  char* end = text;
  if (hasDoubled) {
    for (std::size_t at = quoted.begin; at < quoted.end; ++at) {
      *end++ = fText[at];
      if (fText[at] == fDialect.quote) ++at;
    }
  } else {
    end = std::copy(fText.data() + quoted.begin, fText.data() + quoted.end, end);
  }
  end = std::copy(fText.data() + behind.begin, fText.data() + behind.end, end);
  const auto size = static_cast<std::size_t>(end - text);
  fArena.GiveBack(quoted.size() + behind.size() - size);
  PutOwn({text, size});
}

void SegmentScanner::Put(Range cell) {
  if (fFilled >= fColumns) {
    ++fFilled;
    return;
  }
  if (cell.end - fBase > fLimits.placeReach) return PutOwn(fText.substr(cell.begin, cell.size()));
  fRow[fFilled++] = {static_cast<std::uint32_t>(cell.begin - fBase), static_cast<std::uint32_t>(cell.size())};
}

void SegmentScanner::PutOwn(std::string_view text) {
  fRow[fFilled++] = {static_cast<std::uint32_t>(fOwnTexts.size()), Cell::kOwnText};
  fOwnTexts.push_back(text);
}

void SegmentScanner::EndRecord(std::size_t lineEnd) {
  if (lineEnd < fText.size()) ++fFindings.lineEnds;
  fAt = BehindLineEnd(lineEnd);
}

void SegmentScanner::MarkFrom(std::size_t begin, bool atRecord) {
  fMarker.Mark(begin, atRecord, fMarks);
  fSawNonAscii = fSawNonAscii || fMarks.hasNonAscii;
}

std::size_t SegmentScanner::WordOf(std::size_t at) {
  while (at >= fMarks.end()) MarkFrom(fMarks.end(), false);
  return (at - fMarks.begin) / kBitsOfWord;
}

std::size_t SegmentScanner::FindCellEnd(std::size_t from) {
  while (true) {
    const std::size_t word = WordOf(from);
    const std::uint64_t ends = fMarks.cellEnds[word] & From((from - fMarks.begin) % kBitsOfWord);
    const std::size_t wordBegin = fMarks.begin + word * kBitsOfWord;
    if (ends != 0) return wordBegin + Lowest(ends);
    from = wordBegin + kBitsOfWord;
  }
}

std::size_t SegmentScanner::BehindLineEnd(std::size_t lineEnd) const {
  if (lineEnd == fText.size()) return lineEnd;
  const bool isTwo = fText[lineEnd] == '\r' && lineEnd + 1 < fText.size() && fText[lineEnd + 1] == '\n';
  return lineEnd + (isTwo ? 2 : 1);
}

}  // namespace runtime::data
