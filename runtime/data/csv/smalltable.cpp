#include "runtime/data/csv/smalltable.h"

#include <algorithm>
#include <utility>

#include <fmt/format.h>

#include "runtime/data/csv/encoding.h"
#include "runtime/data/csv/headerrecord.h"
#include "runtime/data/csv/inputtext.h"
#include "runtime/data/csv/preparedtext.h"
#include "runtime/data/csv/recordscanner.h"

namespace runtime::data {

namespace {

bool IsLeftOut(const HeaderRecord& header, std::size_t begin) {
  return std::any_of(header.leftOut.begin(), header.leftOut.end(),
                     [begin](const LeftOutRecord& record) { return record.begin == begin; });
}

void AppendRows(InputText& input, TextDialect said, std::size_t mostRows, SmallTable& table) {
  std::vector<Note> notes;
  if (FirstInvalidUtf8(input.text()) != std::string_view::npos) input.Repair(notes);
  if (NeedsPreparing(said)) {
    PreparedText prepared = PrepareText(input.text(), said, input.name());
    input.Replace(std::move(prepared.text));
    said = std::move(prepared.dialect);
  }
  const CsvDialect dialect = FindDialect(input.text(), said, input.name());
  const HeaderRecord header = ReadHeaderRecord(input.text(), dialect, input.name());
  if (table.headers.empty()) table.headers = header.names;
  if (table.headers != header.names)
    throw DataError(fmt::format("{}: its columns are not those of the first file of its table", input.name()));
  RecordScanner scanner(input.text().substr(header.rowsBegin), dialect);
  std::vector<std::string_view> cells;
  while (true) {
    while (scanner.SkipComment()) {
    }
    const std::size_t begin = header.rowsBegin + scanner.position();
    if (!scanner.Next(cells)) break;
    if (!IsLeftOut(header, begin) && !(scanner.lineIsBlank() && table.headers.size() > 1)) {
      if (table.rows.size() == mostRows)
        throw DataError(fmt::format("{}: more than {} rows; these are too many here", input.name(), mostRows));
      std::vector<std::string>& row = table.rows.emplace_back(cells.begin(), cells.end());
      row.resize(table.headers.size());
    }
    cells.clear();
    scanner.ReleaseTexts();
  }
  if (const auto& quote = scanner.unclosedQuote()) {
    ScanFindings findings;
    findings.unclosedQuote = {header.findings.lineEnds + quote->line - 1, quote->cell};
    findings.ThrowFirstError(input.name(), 0, false);
  }
}

}  // namespace

SmallTable ReadSmallFiles(const std::vector<std::string>& paths, const TextDialect& dialect, std::size_t mostRows) {
  SmallTable table;
  std::vector<Note> notes;
  for (const std::string& path : paths) {
    InputText input(path, dialect.encoding, notes);
    AppendRows(input, dialect, mostRows, table);
  }
  return table;
}

SmallTable ReadSmallText(const std::string& name, const std::string& text, const TextDialect& dialect,
                         std::size_t mostRows) {
  SmallTable table;
  InputText input(name, text);
  AppendRows(input, dialect, mostRows, table);
  return table;
}

}  // namespace runtime::data
