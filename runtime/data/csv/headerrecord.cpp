#include "runtime/data/csv/headerrecord.h"

#include <fmt/format.h>

#include "runtime/data/csv/recordscanner.h"

namespace runtime::data {

HeaderRecord ReadHeaderRecord(std::string_view text, const CsvDialect& dialect, const std::string& source) {
  HeaderRecord header;
  RecordScanner scanner(text, dialect);
  std::vector<std::string_view> cells;
  do {
    cells.clear();
    if (!scanner.Next(cells)) {
      if (const auto& quote = scanner.unclosedQuote()) header.findings.unclosedQuote = {quote->line - 1, quote->cell};
      header.findings.ThrowFirstError(source, 0, false);
      throw DataError(fmt::format("{}: the file holds no record; a table has at least a header line", source));
    }
  } while (scanner.lineIsBlank());
  if (!dialect.header) {
    header.names.resize(cells.size());
    return header;
  }
  header.names.assign(cells.begin(), cells.end());
  header.rowsBegin = scanner.position();
  header.findings.lineEnds = scanner.lineEnds();
  header.findings.textsBehindQuotes = scanner.cellsWithTextBehindQuote();
  if (header.findings.textsBehindQuotes > 0)
    header.findings.firstTextBehindQuote = {scanner.firstTextBehindQuote().line - 1,
                                            scanner.firstTextBehindQuote().cell};
  return header;
}

}  // namespace runtime::data
