#include "runtime/data/csv/csvdialect.h"

#include <algorithm>
#include <cstddef>
#include <map>
#include <vector>

#include <fmt/format.h>

#include "runtime/data/compression/packing.h"
#include "runtime/data/csv/recordscanner.h"
#include "runtime/data/lowerascii.h"
#include "runtime/data/open.h"
#include "runtime/data/typing/quotedcell.h"

namespace runtime::data {

namespace {

constexpr std::size_t kRecordsLookedAt = 200;
constexpr std::size_t kBytesLookedAt = std::size_t{256} * 1024;
constexpr std::size_t kLongestFirstLine = std::size_t{128} << 20;  // 100,000 headers of 950 characters have room in it

/// How well a delimiter fits the first records.
struct Fit {
  std::size_t headerCells = 0;
  std::size_t records = 0;
  std::size_t alike = 0;  // records with the most frequent number of cells
  std::size_t cells = 0;  // that number

  bool cuts() const { return headerCells > 1 && cells > 1; }
  bool isBetterThan(const Fit& other) const {
    // Shares of records, compared without division.
    const std::size_t mine = alike * other.records;
    const std::size_t theirs = other.alike * records;
    return mine != theirs ? mine > theirs : cells > other.cells;
  }
};

Fit FitOf(std::string_view text, const CsvDialect& dialect) {
  Fit fit;
  std::map<std::size_t, std::size_t> recordsWithCells;
  RecordScanner scanner(text, dialect);
  std::vector<std::string_view> cells;
  const std::int64_t headerEnd = dialect.headerRows.empty() ? 0 : dialect.headerRows.back();
  std::int64_t row = 0;
  while (fit.records < kRecordsLookedAt && scanner.position() < kBytesLookedAt) {
    ++row;
    if (scanner.SkipComment()) continue;
    if (!scanner.Next(cells)) break;
    if (!scanner.lineIsBlank() && row >= headerEnd && !dialect.IsCommentRow(row)) {
      if (fit.records == 0) fit.headerCells = cells.size();
      ++fit.records;
      ++recordsWithCells[cells.size()];
    }
    cells.clear();
    scanner.ReleaseTexts();
  }
  for (const auto& [count, records] : recordsWithCells) {
    if (records < fit.alike) continue;
    fit.alike = records;
    fit.cells = count;
  }
  return fit;
}

bool IsTabFile(const std::string& source) {
  const std::string name = LowerAscii(WithoutPackedEnding(source));
  const std::string ending = name.substr(std::min(name.rfind('.'), name.size()));
  return ending == ".tsv" || ending == ".tab";
}

char FindDelimiter(std::string_view text, CsvDialect dialect, const std::string& source) {
  const bool tabFile = IsTabFile(source);
  char best = tabFile ? '\t' : ',';
  Fit bestFit;
  for (const char delimiter : {',', ';', '\t', '|'}) {
    dialect.delimiter = delimiter;
    const Fit fit = FitOf(text, dialect);
    if (!fit.cuts()) continue;
    if (tabFile && delimiter == '\t') return delimiter;
    // In a file that ought to have tabs, something else must fit throughout.
    if (tabFile && (fit.alike < fit.records || fit.records < 2)) continue;
    if (bestFit.records > 0 && !fit.isBetterThan(bestFit)) continue;
    best = delimiter;
    bestFit = fit;
  }
  return best;
}

/// What has no line end for so long would only cost time and memory.
void CheckFirstLine(std::string_view text, const std::string& source) {
  if (text.size() <= kLongestFirstLine) return;
  const std::string_view beginning = text.substr(0, kLongestFirstLine);
  if (beginning.find('\n') != std::string_view::npos || beginning.find('\r') != std::string_view::npos) return;
  throw DataError(fmt::format("{}:1: the first line does not end within {} MB; a table begins with a line of headers",
                              source, kLongestFirstLine >> 20));
}

char OneCharacter(const std::string& text, const char* what, const std::string& source) {
  if (text.size() == 1 && text[0] != '\n' && text[0] != '\r' && text[0] != '\0') return text[0];
  throw DataError(fmt::format("{}: the {} {} of its dialect cannot be used; it must be one ASCII character", source,
                              what, QuotedCell(text)));
}

}  // namespace

CsvDialect FindDialect(std::string_view text, const TextDialect& said, const std::string& source) {
  CheckFirstLine(text, source);
  CsvDialect dialect;
  if (said.quoteChar) dialect.quote = said.quoteChar->empty() ? '\0' : OneCharacter(*said.quoteChar, "quote", source);
  dialect.doubleQuote = said.doubleQuote.value_or(true);
  dialect.header = said.header.value_or(true);
  dialect.skipInitialSpace = said.skipInitialSpace.value_or(false);
  dialect.comment = said.commentChar.value_or("");
  dialect.commentRows = said.commentRows;
  dialect.headerRows = said.headerRows;
  dialect.headerJoin = said.headerJoin.value_or(" ");
  dialect.delimiter =
      said.delimiter ? OneCharacter(*said.delimiter, "delimiter", source) : FindDelimiter(text, dialect, source);
  if (dialect.delimiter == dialect.quote)
    throw DataError(fmt::format("{}: its dialect has the same character for delimiter and quote", source));
  return dialect;
}

}  // namespace runtime::data
