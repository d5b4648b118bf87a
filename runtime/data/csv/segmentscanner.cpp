#include "runtime/data/csv/segmentscanner.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <utility>

#include "runtime/data/csv/bitsofword.h"
#include "runtime/data/csv/quotewalk.h"

namespace runtime::data {

namespace {

constexpr std::size_t kBitsOfWord = StructureMarks::kBytesOfWord;

/// The first CR or LF at or behind `at`, or the end of the text.
std::size_t FindLineEnd(std::string_view text, std::size_t at) {
  // By stretches, so that no search goes far beyond where the other one finds something.
  constexpr std::size_t kStretch = 4096;
  for (; at < text.size(); at += kStretch) {
    std::string_view stretch = text.substr(at, kStretch);
    stretch = stretch.substr(0, stretch.find('\n'));
    const std::size_t carriageReturn = stretch.find('\r');
    if (carriageReturn != std::string_view::npos) return at + carriageReturn;
    if (at + stretch.size() < std::min(at + kStretch, text.size())) return at + stretch.size();
  }
  return text.size();
}

/// Makes cells of plain text: the first begins at `begin`, each ends at the next of `ends`, and the following one
/// begins behind it. All are counted from `place`, modulo 2^32.
void WriteCells(std::uint32_t place, std::uint32_t begin, const std::uint32_t* ends, std::size_t count, Cell* cells) {
  if (count == 0) return;
  cells[0] = {place + begin, ends[0] - begin};
  for (std::size_t i = 1; i < count; ++i) cells[i] = {place + ends[i - 1] + 1, ends[i] - ends[i - 1] - 1};
}

/// Writes the cells of a row as far as it has columns.
struct CellWriter {
  const char* text;  // of the block
  char quote;
  Cell* row;
  std::size_t columns;
  std::uint32_t begin;  // of the current cell
  std::size_t filled;   // cells so far, also those past the last column

  /// Takes the cells that end at `ends` of the word at `place`. With `kMayBeQuoted` those that begin with a quote lose
  /// it, and the one at their end.
  template <bool kMayBeQuoted>
  void Write(std::uint32_t place, std::uint64_t ends) {
    if (filled + kBitsOfWord <= columns)
      Put<kMayBeQuoted, false>(place, ends);
    else
      Put<kMayBeQuoted, true>(place, ends);
  }

  /// Takes the `count` cells, none of them quoted, that end at `ends`, which are counted from `place`.
  void Write(std::uint32_t place, const std::uint32_t* ends, std::size_t count) {
    if (count == 0) return;
    const std::size_t taken = std::min(count, columns - std::min(filled, columns));
    WriteCells(place, begin - place, ends, taken, row + filled);
    filled += count;
    begin = place + ends[count - 1] + 1;
  }

 private:
  template <bool kMayBeQuoted, bool kMayBeFull>
  void Put(std::uint32_t place, std::uint64_t ends) {
    for (; ends != 0; ends &= ends - 1) {
      const auto end = place + static_cast<std::uint32_t>(std::countr_zero(ends));
      if (!kMayBeFull || filled < columns) {
        // What stands behind the end of the text is no quote, whatever it is.
        const std::uint32_t quotes = kMayBeQuoted && text[begin] == quote && begin != end ? 1 : 0;
        row[filled] = {begin + quotes, end - begin - 2 * quotes};
      }
      ++filled;
      begin = end + 1;
    }
  }
};

/// Cells from one row to the next. Rows of more than a few cells begin with a cache line of their own and are an odd
/// number of lines apart, so that the cells of one column spread over all sets of the cache.
std::size_t StrideOf(std::size_t columns) {
  constexpr std::size_t kCellsOfLine = 64 / sizeof(Cell);
  if (columns <= kCellsOfLine) return columns;
  return ((columns + kCellsOfLine - 1) / kCellsOfLine | 1) * kCellsOfLine;
}

}  // namespace

std::size_t GuessRecordBegin(std::string_view text, std::size_t at) {
  const std::size_t lineEnd = FindLineEnd(text, at);
  if (lineEnd == text.size()) return lineEnd;
  const bool isTwo = text[lineEnd] == '\r' && lineEnd + 1 < text.size() && text[lineEnd + 1] == '\n';
  return lineEnd + (isTwo ? 2 : 1);
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

bool SegmentScanner::PassOver() {
  LeftOutRecord record{fAt, fAt, 0};
  if (!fDialect.comment.empty() && fText.compare(fAt, fDialect.comment.size(), fDialect.comment) == 0) {
    const std::size_t lineEnd = FindLineEnd(fText, fAt);
    record.end = BehindLineEnd(lineEnd);
    record.lineEnds = lineEnd < fText.size() ? 1 : 0;
  } else if (fLeftOut != nullptr) {
    const auto found = std::lower_bound(fLeftOut->begin(), fLeftOut->end(), fAt,
                                        [](const LeftOutRecord& other, std::size_t at) { return other.begin < at; });
    if (found != fLeftOut->end() && found->begin == fAt) record = *found;
  }
  if (record.end == fAt) return false;
  fFindings.lineEnds += record.lineEnds;
  fAt = record.end;
  if (fRows == 0) fBase = fAt;
  return true;
}

void SegmentScanner::CutRows() {
  const bool hasOthers = HasOthers();
  while (fAt < fEnd && fRows < fLimits.rows && (fRows == 0 || fAt - fBase <= fLimits.placeReach)) {
    if (hasOthers ? PassOver() : CutPlainRows()) continue;
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
    if (CutRecord() == Cut::Stopped) return;
    fFindings.NoteRow();
    fLines[fRows++] = line;
    if (fFilled != fColumns) FitRow(fRow, fFilled, line);
  }
}

bool SegmentScanner::CutPlainRows() {
  if (fMarks.hasQuotes || fAt >= fMarks.end() || MaySkipBlanks() || IsBeyondReach()) return false;
  const std::uint32_t* const ends = fMarks.cellEndPlaces.data();
  const auto windowPlace = static_cast<std::uint32_t>(fMarks.begin - fBase);
  CatchUp(fAt);
  std::size_t line = fNextLineEnd;
  std::size_t next = fNextCellEnd;
  std::size_t at = fAt - fMarks.begin;
  const std::size_t before = at;
  for (; line < fMarks.lineEndCount && at + fMarks.begin < fEnd && fRows < fLimits.rows; ++line) {
    const std::size_t first = std::exchange(next, fMarks.lineEndIndices[line] + 1);
    const std::size_t count = next - first;
    const std::size_t lineEnd = ends[next - 1];
    // A blank line takes the slow way, but for an only column.
    if (lineEnd == at && fColumns > 1) {
      next = first;
      break;
    }
    if (fRows == fLines.size()) MakeRoom();
    Cell* const row = fCells.data() + fRows * fStride;
    WriteCells(windowPlace, static_cast<std::uint32_t>(at), ends + first, std::min(count, fColumns), row);
    fFindings.NoteRow();
    fLines[fRows++] = fFindings.lineEnds;
    if (count != fColumns) FitRow(row, count, fFindings.lineEnds);
    if (lineEnd + fMarks.begin < fText.size()) ++fFindings.lineEnds;
    at = BehindLineEnd(lineEnd + fMarks.begin) - fMarks.begin;
  }
  fNextLineEnd = line;
  fNextCellEnd = next;
  fAt = at + fMarks.begin;
  return at != before;
}

void SegmentScanner::FitRow(Cell* row, std::size_t cells, std::int64_t line) {
  fFindings.NoteRagged(line, cells, fColumns);
  if (cells < fColumns) std::fill(row + cells, row + fColumns, Cell{});
}

void SegmentScanner::MakeRoom() {
  constexpr std::size_t kFirstRows = 64;
  const std::size_t rows = std::min(fLimits.rows, std::max(kFirstRows, 2 * fLines.size()));
  fCells.resize(rows * fStride);
  fLines.resize(rows);
}

SegmentScanner::Cut SegmentScanner::CutRecord() {
  fFilled = 0;
  std::size_t word = WordOf(fAt);
  if (MaySkipBlanks() || IsBeyondReach()) return CutRestOfRecord(fAt);
  std::uint64_t from = BitsFrom((fAt - fMarks.begin) % kBitsOfWord);
  QuoteWalk quotes(fDialect.doubleQuote);
  quotes.EnterAt(fMarks.quotes[word] & from);
  CellWriter writer{fText.data() + fBase, fDialect.quote, fRow, fColumns, static_cast<std::uint32_t>(fAt - fBase), 0};
  std::int64_t linesOfCell = 0;  // that ended in quotes of the current cell
  while (true) {
    std::uint64_t ends = fMarks.cellEnds[word] & from;
    std::uint64_t stray = 0;
    std::uint64_t special = 0;
    const std::size_t wordBegin = fMarks.begin + word * kBitsOfWord;
    const auto wordPlace = static_cast<std::uint32_t>(wordBegin - fBase);
    std::uint64_t lineEnds = 0;
    if (!fMarks.hasQuotes && !quotes.concernsWord()) {
      const auto [first, count, endsLine] = TakePlainRun(std::max(fBase + writer.begin, wordBegin));
      writer.Write(static_cast<std::uint32_t>(fMarks.begin - fBase), fMarks.cellEndPlaces.data() + first, count);
      if (endsLine) {
        fFilled = writer.filled;
        EndRecord(fMarks.begin + fMarks.cellEndPlaces[first + count - 1]);
        return Cut::Whole;
      }
      word = fMarks.words - 1;
    } else if (!quotes.concernsWord()) {
      lineEnds = fMarks.lineEnds[word] & ends;
      writer.Write<false>(wordPlace, ends & BitsUpToLowest(lineEnds));
    } else if (quotes.IsSpecialBefore(fMarks.cellEnds[word])) {
      special = 1;
    } else {
      const std::uint64_t within = quotes.Within();
      stray = quotes.Stray(within, fMarks.openings[word]);
      special = quotes.Special(within, fMarks.cellEnds[word]) & BitsBelowLowest(stray);
      if (special != 0) stray = 0;
      ends &= ~within & BitsBelowLowest(stray | special);
      lineEnds = fMarks.lineEnds[word] & ends;
      ends &= BitsUpToLowest(lineEnds);
      writer.Write<true>(wordPlace, ends);
      const std::uint64_t ended = BitsUpToHighest(ends);
      if (const std::uint64_t linesWithin = fMarks.lineEnds[word] & within & from; (linesWithin | ended) != 0) {
        if (ended != 0) fFindings.lineEnds += std::exchange(linesOfCell, 0);
        if (linesWithin != 0) {
          fFindings.lineEnds += std::popcount(linesWithin & ended);
          linesOfCell += std::popcount(linesWithin & ~ended);
        }
      }
      from &= ~ended;
    }
    if (lineEnds != 0) {
      fFilled = writer.filled;
      EndRecord(wordBegin + PlaceOfLowest(lineEnds));
      return Cut::Whole;
    }
    if (stray != 0) {
      linesOfCell = 0;
      quotes.LeaveOut(stray);
      continue;
    }
    const std::size_t begin = fBase + writer.begin;
    const bool isUnclosed = word + 1 == fMarks.words && fMarks.end() > fText.size();
    if (special != 0 || isUnclosed) {
      // The text ends within quotes, or the cell is one for a closer look.
      fFilled = writer.filled;
      if (!TakeQuotedCell(begin)) return Cut::Stopped;
      if (IsAtLineEnd()) {
        EndRecord(fCellEnd);
        return Cut::Whole;
      }
      const std::size_t next = fCellEnd + 1;
      word = WordOf(next);
      if (IsBeyondReach()) return CutRestOfRecord(next);
      from = BitsFrom((next - fMarks.begin) % kBitsOfWord);
      quotes.EnterAt(fMarks.quotes[word] & from);
      writer.begin = static_cast<std::uint32_t>(next - fBase);
      writer.filled = fFilled;
      linesOfCell = 0;
      continue;
    }
    quotes.Leave();
    if (++word == fMarks.words) {
      if (fBeginIsGuessed && quotes.isInside() && fMarks.end() - begin > fLimits.guessedQuoteReach) {
        fGaveUp = true;
        return Cut::Stopped;
      }
      MarkFrom(fMarks.end(), false);
      word = 0;
      if (IsBeyondReach()) {
        fFilled = writer.filled;
        return CutRestOfRecord(begin);
      }
    }
    from = ~std::uint64_t{0};
    quotes.GoOn(fMarks.quotes[word]);
  }
}

void SegmentScanner::CatchUp(std::size_t at) {
  const std::size_t place = at - fMarks.begin;
  while (fNextCellEnd < fMarks.cellEndCount && fMarks.cellEndPlaces[fNextCellEnd] < place) ++fNextCellEnd;
  while (fNextLineEnd < fMarks.lineEndCount && fMarks.lineEndIndices[fNextLineEnd] < fNextCellEnd) ++fNextLineEnd;
}

SegmentScanner::PlainRun SegmentScanner::TakePlainRun(std::size_t from) {
  CatchUp(from);
  const std::size_t first = fNextCellEnd;
  if (fNextLineEnd == fMarks.lineEndCount) {
    fNextCellEnd = fMarks.cellEndCount;
    return {first, fMarks.cellEndCount - first, false};
  }
  fNextCellEnd = fMarks.lineEndIndices[fNextLineEnd++] + 1;
  return {first, fNextCellEnd - first, true};
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
    if (IsAtLineEnd()) {
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
    const std::uint64_t from = BitsFrom((at - fMarks.begin) % kBitsOfWord);
    const std::uint64_t quotes = fMarks.quotes[word] & from;
    const std::uint64_t lineEnds = fMarks.lineEnds[word] & from & BitsBelowLowest(quotes);
    if (lineEnds != 0) fFindings.lineEnds += std::popcount(lineEnds);
    const std::size_t wordBegin = fMarks.begin + word * kBitsOfWord;
    if (quotes == 0) {
      at = wordBegin + kBitsOfWord;
      continue;
    }
    closing = wordBegin + PlaceOfLowest(quotes);
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
  const char* from = fText.data() + quoted.begin;
  const char* const quotedEnd = fText.data() + quoted.end;
  while (hasDoubled && from != quotedEnd) {
    const void* const found = std::memchr(from, fDialect.quote, static_cast<std::size_t>(quotedEnd - from));
    if (found == nullptr) break;
    const char* const behindFirst = static_cast<const char*>(found) + 1;
    end = std::copy(from, behindFirst, end);
    from = behindFirst + 1;
  }
  end = std::copy(from, quotedEnd, end);
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
  fNextCellEnd = 0;
  fNextLineEnd = 0;
  fSawNonAscii = fSawNonAscii || fMarks.hasNonAscii;
}

std::size_t SegmentScanner::WordOf(std::size_t at) {
  // Back, for a cell of which is only seen later that it needs a closer look.
  if (at < fMarks.begin) MarkFrom(at, false);
  while (at >= fMarks.end()) MarkFrom(fMarks.end(), false);
  return (at - fMarks.begin) / kBitsOfWord;
}

std::size_t SegmentScanner::FindCellEnd(std::size_t from) {
  while (true) {
    const std::size_t word = WordOf(from);
    const std::uint64_t ends = fMarks.cellEnds[word] & BitsFrom((from - fMarks.begin) % kBitsOfWord);
    const std::size_t wordBegin = fMarks.begin + word * kBitsOfWord;
    if (ends != 0) return wordBegin + PlaceOfLowest(ends);
    from = wordBegin + kBitsOfWord;
  }
}

std::size_t SegmentScanner::BehindLineEnd(std::size_t lineEnd) const {
  if (lineEnd == fText.size()) return lineEnd;
  const bool isTwo = fText[lineEnd] == '\r' && lineEnd + 1 < fText.size() && fText[lineEnd + 1] == '\n';
  return lineEnd + (isTwo ? 2 : 1);
}

}  // namespace runtime::data
