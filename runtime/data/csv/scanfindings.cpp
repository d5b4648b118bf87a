#include "runtime/data/csv/scanfindings.h"

#include <utility>

#include <fmt/format.h>

namespace runtime::data {

namespace {

using RaggedRow = ScanFindings::RaggedRow;
using RaggedRows = ScanFindings::RaggedRows;

std::string Plural(std::int64_t count, const char* one, const char* several) {
  return fmt::format("{} {}", count, count == 1 ? one : several);
}

std::string Columns(std::size_t columns) { return Plural(static_cast<std::int64_t>(columns), "column", "columns"); }

/// As it is told: from 1.
std::int64_t Told(std::int64_t line) { return line + 1; }

void AppendRagged(RaggedRows& rows, const RaggedRows& next, std::int64_t rowsBefore, std::int64_t linesBefore) {
  rows.count += next.count;
  for (const RaggedRow& row : next.first) {
    if (rows.first.size() == ScanFindings::kRaggedRowsNamed) break;
    rows.first.push_back({rowsBefore + row.row, linesBefore + row.line, row.cells});
  }
}

std::string DescribeRagged(const std::string& source, std::size_t columns, const RaggedRows& rows, const char* length,
                           const char* consequence) {
  std::string text = fmt::format("{}:{}: {} {} cells than the {}; {}: ", source, Told(rows.first.front().line),
                                 Plural(rows.count, "row has", "rows have"), length, Columns(columns), consequence);
  const char* separator = "";
  for (const RaggedRow& row : rows.first) {
    text += fmt::format("{}row {} (line {}) has {}", separator, row.row, Told(row.line), row.cells);
    separator = ", ";
  }
  if (rows.count > static_cast<std::int64_t>(rows.first.size())) text += ", ...";
  return text;
}

[[noreturn]] void FailAtRagged(const std::string& source, std::size_t columns, const RaggedRow& row) {
  throw DataError(fmt::format("{}:{}: row {} has {} where there are {}; mend the row, or run without --strict", source,
                              Told(row.line), row.row, Plural(static_cast<std::int64_t>(row.cells), "cell", "cells"),
                              Columns(columns)));
}

}  // namespace

void ScanFindings::NoteBlankLine() {
  if (blankLines + blankLinesPending == 0) firstBlankLine = lineEnds;
  ++blankLinesPending;
}

void ScanFindings::NoteRagged(std::int64_t line, std::size_t cells, std::size_t columns) {
  RaggedRows& ragged = cells < columns ? tooShort : tooLong;
  ++ragged.count;
  if (ragged.first.size() < kRaggedRowsNamed) ragged.first.push_back({rows, line, cells});
}

void ScanFindings::Append(const ScanFindings& next) {
  AppendRagged(tooShort, next.tooShort, rows, lineEnds);
  AppendRagged(tooLong, next.tooLong, rows, lineEnds);
  if (blankLines + blankLinesPending == 0) firstBlankLine = lineEnds + next.firstBlankLine;
  if (next.rows > 0) blankLines += std::exchange(blankLinesPending, 0);
  blankLines += next.blankLines;
  blankLinesPending += next.blankLinesPending;
  if (textsBehindQuotes == 0)
    firstTextBehindQuote = {lineEnds + next.firstTextBehindQuote.line, next.firstTextBehindQuote.cell};
  textsBehindQuotes += next.textsBehindQuotes;
  if (next.unclosedQuote) unclosedQuote = {lineEnds + next.unclosedQuote->line, next.unclosedQuote->cell};
  rows += next.rows;
  lineEnds += next.lineEnds;
}

void ScanFindings::ThrowFirstError(const std::string& source, std::size_t columns, bool strict) const {
  if (strict && tooShort.count + tooLong.count > 0) {
    const bool shortIsFirst =
        tooLong.count == 0 || (tooShort.count > 0 && tooShort.first.front().row < tooLong.first.front().row);
    FailAtRagged(source, columns, (shortIsFirst ? tooShort : tooLong).first.front());
  }
  if (unclosedQuote)
    throw DataError(
        fmt::format("{}:{}: the quote that opens cell {} of this record is not closed before the end of the file",
                    source, Told(unclosedQuote->line), unclosedQuote->cell));
}

void ScanFindings::Report(const std::string& source, std::size_t columns, std::vector<Note>& notes) const {
  if (tooShort.count > 0)
    notes.push_back(
        {false, DescribeRagged(source, columns, tooShort, "fewer", "the cells that are not there are read as empty")});
  if (tooLong.count > 0)
    notes.push_back({false, DescribeRagged(source, columns, tooLong, "more", "the cells past the last are left out")});
  if (blankLines > 0)
    notes.push_back(
        {false, fmt::format("{}:{}: {} passed over", source, Told(firstBlankLine),
                            Plural(blankLines, "blank line among the rows was", "blank lines among the rows were"))});
  if (textsBehindQuotes > 0)
    notes.push_back(
        {false, fmt::format("{}:{}: {} text behind the closing quote (the first is cell {} of its record); it is "
                            "taken as part of the cell",
                            source, Told(firstTextBehindQuote.line),
                            Plural(textsBehindQuotes, "cell has", "cells have"), firstTextBehindQuote.cell)});
}

}  // namespace runtime::data
