#include "runtime/data/csv/blockscanner.h"

#include <algorithm>
#include <utility>

#include <fmt/format.h>

#include "runtime/data/typing/quotedcell.h"

namespace runtime::data {

namespace {

constexpr std::size_t kRaggedRowsNamed = 3;

std::string Plural(std::int64_t count, const char* one, const char* several) {
  return fmt::format("{} {}", count, count == 1 ? one : several);
}

}  // namespace

BlockScanner::BlockScanner(std::string_view text, const CsvDialect& dialect, std::string source, bool strict)
    : fSource(std::move(source)), fStrict(strict), fScanner(text, dialect) {
  ReadHeader(text, dialect);
}

void BlockScanner::ReadHeader(std::string_view text, const CsvDialect& dialect) {
  std::vector<std::string_view> cells;
  do {
    cells.clear();
    if (!fScanner.Next(cells)) {
      if (fScanner.unclosedQuote()) FailAtQuote();
      throw DataError(fmt::format("{}: the file holds no record; a table has at least a header line", fSource));
    }
  } while (fScanner.lineIsBlank());
  if (dialect.header) {
    fHeaders.assign(cells.begin(), cells.end());
    return;
  }
  fHeaders.resize(cells.size());
  fScanner = RecordScanner(text, dialect);
}

bool BlockScanner::Next(CellBlock& block, std::size_t mostRows) {
  const std::size_t columns = fHeaders.size();
  mostRows = std::min(mostRows, std::max<std::size_t>(1, kBlockCells / columns));
  fCells.clear();
  fLines.clear();
  fScanner.ReleaseTexts();
  const std::int64_t firstRow = fRows;
  while (fLines.size() < mostRows) {
    const std::size_t firstCell = fCells.size();
    if (!fScanner.Next(fCells)) {
      if (fScanner.unclosedQuote()) FailAtQuote();
      break;
    }
    if (fScanner.lineIsBlank() && columns > 1) {
      fCells.resize(firstCell);
      if (fBlankLines + fBlankLinesPending == 0) fFirstBlankLine = fScanner.line();
      ++fBlankLinesPending;
      continue;
    }
    fBlankLines += std::exchange(fBlankLinesPending, 0);
    ++fRows;
    fLines.push_back(fScanner.line());
    if (fCells.size() - firstCell != columns) FitRow(firstCell);
  }
  fPlaces.clear();
  for (std::uint32_t cell = 0; cell < fCells.size(); ++cell) fPlaces.push_back({cell, Cell::kOwnText});
  block.cells = fPlaces.data();
  block.ownTexts = fCells.data();
  block.columns = columns;
  block.stride = columns;
  block.rows = fLines.size();
  block.firstRow = firstRow;
  block.lines = fLines.data();
  block.source = fSource;
  return block.rows > 0;
}

void BlockScanner::FitRow(std::size_t firstCell) {
  const std::size_t cells = fCells.size() - firstCell;
  NoteRagged(cells < fHeaders.size() ? fTooShort : fTooLong, cells);
  fCells.resize(firstCell + fHeaders.size());
}

void BlockScanner::NoteRagged(RaggedRows& rows, std::size_t cells) {
  if (fStrict)
    throw DataError(fmt::format("{}:{}: row {} has {} where there are {}; mend the row, or run without --strict",
                                fSource, fScanner.line(), fRows,
                                Plural(static_cast<std::int64_t>(cells), "cell", "cells"),
                                Plural(static_cast<std::int64_t>(fHeaders.size()), "column", "columns")));
  if (rows.count++ < static_cast<std::int64_t>(kRaggedRowsNamed)) rows.first.push_back({fRows, fScanner.line(), cells});
}

std::string BlockScanner::DescribeRagged(const RaggedRows& rows, const char* length, const char* consequence) const {
  std::string text = fmt::format("{}:{}: {} {} cells than the {}; {}: ", fSource, rows.first.front().line,
                                 Plural(rows.count, "row has", "rows have"), length,
                                 Plural(static_cast<std::int64_t>(fHeaders.size()), "column", "columns"), consequence);
  const char* separator = "";
  for (const RaggedRow& row : rows.first) {
    text += fmt::format("{}row {} (line {}) has {}", separator, row.row, row.line, row.cells);
    separator = ", ";
  }
  if (rows.count > static_cast<std::int64_t>(rows.first.size())) text += ", ...";
  return text;
}

void BlockScanner::Report(std::vector<Note>& notes) const {
  if (fTooShort.count > 0)
    notes.push_back({false, DescribeRagged(fTooShort, "fewer", "the cells that are not there are read as empty")});
  if (fTooLong.count > 0)
    notes.push_back({false, DescribeRagged(fTooLong, "more", "the cells past the last are left out")});
  if (fBlankLines > 0)
    notes.push_back(
        {false, fmt::format("{}:{}: {} passed over", fSource, fFirstBlankLine,
                            Plural(fBlankLines, "blank line among the rows was", "blank lines among the rows were"))});
  if (fScanner.cellsWithTextBehindQuote() > 0)
    notes.push_back(
        {false, fmt::format("{}:{}: {} text behind the closing quote (the first is cell {} of its record); it is "
                            "taken as part of the cell",
                            fSource, fScanner.firstTextBehindQuote().line,
                            Plural(fScanner.cellsWithTextBehindQuote(), "cell has", "cells have"),
                            fScanner.firstTextBehindQuote().cell)});
}

void BlockScanner::FailAtQuote() const {
  throw DataError(
      fmt::format("{}:{}: the quote that opens cell {} of this record is not closed before the end of the file",
                  fSource, fScanner.unclosedQuote()->line, fScanner.unclosedQuote()->cell));
}

}  // namespace runtime::data
