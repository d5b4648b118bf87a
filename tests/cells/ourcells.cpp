#include "tests/cells/ourcells.h"

#include <algorithm>
#include <cstddef>
#include <optional>
#include <string_view>
#include <vector>

#include "runtime/data/csv/headerrecord.h"
#include "runtime/data/csv/inputtext.h"
#include "runtime/data/csv/segmentscanner.h"
#include "runtime/data/open.h"

namespace cells {

using namespace runtime::data;

namespace {

/// In two segments, so that the seam between them is tried too.
void AppendRows(std::string_view text, std::size_t rowsBegin, OurReading& reading) {
  const std::size_t columns = reading.table.rows.front().size();
  SegmentScanner scanner(text, reading.dialect, columns);
  std::size_t begin = rowsBegin;
  for (const std::size_t end : {rowsBegin + (text.size() - rowsBegin) / 2, text.size()}) {
    scanner.Begin(begin, std::max(begin, end));
    CellBlock block;
    while (scanner.Next(block)) {
      for (std::size_t row = 0; row < block.rows; ++row) {
        Row& cells = reading.table.rows.emplace_back();
        for (std::size_t column = 0; column < columns; ++column) cells.emplace_back(block.Text(row, column));
      }
    }
    begin = scanner.position();
    if (scanner.findings().unclosedQuote) throw DataError("a quote is not closed");
  }
}

}  // namespace

OurReading ReadOurs(const std::string& path) {
  OurReading reading;
  try {
    std::vector<Note> notes;
    InputText input(path, std::nullopt, notes);
    if (input.mayBeInvalid()) input.Repair(notes);
    reading.dialect = FindDialect(input.text(), {}, path);
    const HeaderRecord header = ReadHeaderRecord(input.text(), reading.dialect, path);
    reading.table.rows.push_back(header.names);
    AppendRows(input.text(), header.rowsBegin, reading);
  } catch (const DataError& error) {
    reading.table.problem = error.what();
  }
  return reading;
}

}  // namespace cells
