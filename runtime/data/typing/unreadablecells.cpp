#include "runtime/data/typing/unreadablecells.h"

#include <fmt/format.h>

#include "runtime/data/typing/quotedcell.h"
#include "runtime/data/typing/valuereader.h"

namespace runtime::data {

namespace {

/// What did not read, and where.
std::string DescribeUnreadable(const std::string& source, const ColumnFacts& facts) {
  const UnreadableCell& cell = facts.unreadable.front();
  std::string place = cell.source.empty() ? source : cell.source;
  if (cell.line > 0) place += fmt::format(":{}", cell.line);
  // The rows of a database have no numbers.
  const std::string row = cell.row > 0 ? fmt::format(", row {}", cell.row) : std::string();
  return fmt::format("{}: column {}{}: {} does not read as {}", place, QuotedCell(facts.header), row,
                     QuotedCell(cell.text), TypeInWords(facts.type));
}

}  // namespace

void ReportUnreadableCells(const std::string& source, const std::vector<const ColumnFacts*>& columns, bool strict,
                           std::vector<Note>& notes) {
  const ColumnFacts* first = nullptr;
  for (const ColumnFacts* column : columns)
    if (!column->unreadable.empty() && (!first || column->unreadable.front().row < first->unreadable.front().row))
      first = column;
  if (strict && first) throw DataError(DescribeUnreadable(source, *first));
  for (const ColumnFacts* column : columns) {
    if (column->unreadableCells == 1)
      notes.push_back({false, DescribeUnreadable(source, *column) + "; the cell is system-missing", NoteTopic::Cells});
    if (column->unreadableCells > 1)
      notes.push_back({false,
                       fmt::format("{}; it is one of {} such cells of the column, all system-missing",
                                   DescribeUnreadable(source, *column), column->unreadableCells),
                       NoteTopic::Cells});
    if (column->zeroPaddedCells > 0)
      notes.push_back(
          {false, fmt::format("{}: column {}: {} written with leading zeros, such as {}, which a number does "
                              "not keep; a field of type string does",
                              source, QuotedCell(column->header),
                              column->zeroPaddedCells == 1 ? std::string("1 cell is")
                                                           : fmt::format("{} cells are", column->zeroPaddedCells),
                              QuotedCell(column->firstZeroPadded))});
    if (column->roundedCells > 0)
      notes.push_back(
          {false, fmt::format("{}: column {}: {} whole numbers beyond 2^53 had to be rounded; a field of type "
                              "string keeps them exactly",
                              source, QuotedCell(column->header), column->roundedCells)});
  }
}

}  // namespace runtime::data
