#include "runtime/data/csv/headerrecord.h"

#include <algorithm>

#include <fmt/format.h>

#include "runtime/data/csv/recordscanner.h"

namespace runtime::data {

namespace {

constexpr std::size_t kLongestHeader = std::size_t{1} << 20;  // in bytes

/// The records of a file by their numbers.
class NumberedRecords {
 public:
  NumberedRecords(std::string_view text, const CsvDialect& dialect) : fScanner(text, dialect) {}

  /// Turns to the next record; false at the end of the text, and before a quote that is never closed.
  bool Next() {
    cells.clear();
    begin = fScanner.position();
    fLinesBefore = fScanner.lineEnds();
    ++row;
    isComment = fScanner.SkipComment();
    return isComment || fScanner.Next(cells);
  }
  bool isBlank() const { return !isComment && fScanner.lineIsBlank(); }
  LeftOutRecord Place() const { return {begin, fScanner.position(), fScanner.lineEnds() - fLinesBefore}; }
  const RecordScanner& scanner() const { return fScanner; }

  std::vector<std::string_view> cells;  // of the record
  std::int64_t row = 0;                 // its number, from 1
  std::size_t begin = 0;
  bool isComment = false;

 private:
  RecordScanner fScanner;
  std::int64_t fLinesBefore = 0;
};

[[noreturn]] void FailWithoutHeader(const NumberedRecords& records, const CsvDialect& dialect,
                                    const std::string& source) {
  if (const auto& quote = records.scanner().unclosedQuote()) {
    ScanFindings findings;
    findings.unclosedQuote = {quote->line - 1, quote->cell};
    findings.ThrowFirstError(source, 0, false);
  }
  if (records.row > 1 && !dialect.headerRows.empty())
    throw DataError(fmt::format("{}: the dialect says that row {} belongs to the header, and the file has {}", source,
                                dialect.headerRows.back(), records.row - 1));
  throw DataError(fmt::format("{}: the file holds no record; a table has at least a header line", source));
}

/// Adds a record of the header to what stands above it.
void JoinToHeader(const std::vector<std::string_view>& cells, bool isLast, const std::string& separator,
                  std::vector<std::string>& names) {
  const std::size_t above = names.size();
  names.resize(std::max(above, cells.size()));
  // Below the last cell of a record above, that one goes on.
  for (std::size_t i = above; above > 0 && i < names.size(); ++i) names[i] = names[above - 1];
  std::string_view last;
  for (std::size_t i = 0; i < names.size(); ++i) {
    std::string_view cell = i < cells.size() ? cells[i] : std::string_view();
    if (cell.empty() && !isLast) cell = last;
    last = cell;
    if (!names[i].empty() && !cell.empty()) names[i] += separator;
    names[i] += cell;
  }
}

/// The records behind the header that are left out.
void FindLeftOut(NumberedRecords& records, const CsvDialect& dialect, std::vector<LeftOutRecord>& leftOut) {
  while (!dialect.commentRows.empty() && records.row < dialect.commentRows.back() && records.Next())
    if (dialect.IsCommentRow(records.row)) leftOut.push_back(records.Place());
}

}  // namespace

HeaderRecord ReadHeaderRecord(std::string_view text, const CsvDialect& dialect, const std::string& source) {
  HeaderRecord header;
  NumberedRecords records(text, dialect);
  if (!dialect.header) {
    do {
      if (!records.Next()) FailWithoutHeader(records, dialect, source);
      if (dialect.IsCommentRow(records.row)) header.leftOut.push_back(records.Place());
    } while (records.isBlank() || records.isComment || dialect.IsCommentRow(records.row));
    header.names.resize(records.cells.size());
    FindLeftOut(records, dialect, header.leftOut);
    return header;
  }
  const auto isOfHeader = [&] {
    if (!dialect.headerRows.empty())
      return std::binary_search(dialect.headerRows.begin(), dialect.headerRows.end(), records.row);
    return !records.isBlank() && !records.isComment && !dialect.IsCommentRow(records.row);
  };
  for (bool isLast = false; !isLast;) {
    if (!records.Next()) FailWithoutHeader(records, dialect, source);
    if (!isOfHeader()) continue;
    isLast = dialect.headerRows.empty() || records.row == dialect.headerRows.back();
    JoinToHeader(records.cells, isLast, dialect.headerJoin, header.names);
  }
  for (std::size_t column = 0; column < header.names.size(); ++column)
    if (header.names[column].size() > kLongestHeader)
      throw DataError(
          fmt::format("{}:{}: the header of column {} has {} bytes, more than the {} MB that are taken; a "
                      "table begins with a line of headers",
                      source, std::max<std::int64_t>(1, records.scanner().lineEnds()), column + 1,
                      header.names[column].size(), kLongestHeader >> 20));
  const RecordScanner& scanner = records.scanner();
  header.rowsBegin = scanner.position();
  header.findings.lineEnds = scanner.lineEnds();
  header.findings.textsBehindQuotes = scanner.cellsWithTextBehindQuote();
  if (header.findings.textsBehindQuotes > 0)
    header.findings.firstTextBehindQuote = {scanner.firstTextBehindQuote().line - 1,
                                            scanner.firstTextBehindQuote().cell};
  FindLeftOut(records, dialect, header.leftOut);
  return header;
}

}  // namespace runtime::data
