#include "tests/cells/rawrecords.h"

#include <cstddef>
#include <utility>

namespace cells {

namespace {

class Cutter {
 public:
  Cutter(std::string_view text, const runtime::data::CsvDialect& dialect) : fText(text), fDialect(dialect) {}

  bool atEnd() const { return fAt >= fText.size(); }

  /// False for a record with a quote that is not closed.
  bool Next(RawRecord& record) {
    record = RawRecord();
    const std::size_t begin = fAt;
    while (true) {
      RawCell& cell = record.cells.emplace_back();
      const std::size_t cellBegin = fAt;
      if (AtQuote()) {
        if (!PassQuotedCell(cell)) return false;
      } else {
        PassPlainCell(cell);
      }
      cell.raw = fText.substr(cellBegin, fAt - cellBegin);
      if (atEnd() || AtLineEnd()) break;
      ++fAt;
    }
    record.raw = fText.substr(begin, fAt - begin);
    if (atEnd()) return true;
    fAt += fText.substr(fAt, 2) == "\r\n" ? 2U : 1U;
    return true;
  }

 private:
  bool AtQuote() const { return !atEnd() && fText[fAt] == fDialect.quote; }
  bool AtLineEnd() const { return !atEnd() && (fText[fAt] == '\n' || fText[fAt] == '\r'); }
  bool AtCellEnd() const { return atEnd() || AtLineEnd() || fText[fAt] == fDialect.delimiter; }

  void PassPlainCell(RawCell& cell) {
    bool onlyBlanks = true;
    for (; !AtCellEnd(); ++fAt) {
      if (onlyBlanks && AtQuote()) cell.quoteBehindBlanks = true;
      onlyBlanks = onlyBlanks && fText[fAt] == ' ';
      cell.text += fText[fAt];
    }
  }

  bool PassQuotedCell(RawCell& cell) {
    ++fAt;
    while (true) {
      if (atEnd()) return false;
      if (AtQuote()) {
        ++fAt;
        if (!AtQuote()) break;
      }
      cell.text += fText[fAt++];
    }
    std::string behind;
    for (; !AtCellEnd(); ++fAt) behind += fText[fAt];
    cell.textBehindQuote = behind.find_first_not_of(' ') != std::string::npos;
    cell.quoteBehindQuote = behind.find(fDialect.quote) != std::string::npos;
    if (cell.textBehindQuote) cell.text += behind;
    return true;
  }

  std::string_view fText;
  const runtime::data::CsvDialect& fDialect;
  std::size_t fAt = 0;
};

}  // namespace

std::vector<RawRecord> CutRecords(std::string_view text, const runtime::data::CsvDialect& dialect) {
  std::vector<RawRecord> records;
  Cutter cutter(text, dialect);
  for (RawRecord record; !cutter.atEnd() && cutter.Next(record);) records.push_back(std::move(record));
  return records;
}

std::vector<RawRecord> WithoutBlankLines(std::vector<RawRecord> records) {
  std::vector<RawRecord> rows;
  for (RawRecord& record : records)
    if (!record.raw.empty() || (!rows.empty() && rows.front().cells.size() == 1)) rows.push_back(std::move(record));
  return rows;
}

}  // namespace cells
