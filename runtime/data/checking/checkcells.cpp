// Cells that do not read as their type.
#include <fmt/format.h>

#include "runtime/data/checking/variablecheck.h"
#include "runtime/data/typing/quotedcell.h"
#include "runtime/data/typing/valuereader.h"

namespace runtime::data {

void CheckCells(VariableCheck& check) {
  const ColumnFacts& facts = check.facts;
  if (facts.unreadableCells == 0) return;
  std::int64_t named = 0;
  for (const UnreadableCell& cell : facts.unreadable) {
    Finding& finding = check.Add(CheckCode::UnreadableCell,
                                 fmt::format("{} does not read as {}", QuotedCell(cell.text), TypeInWords(facts.type)),
                                 cell.row - 1, 1);
    if (!cell.source.empty()) finding.file = cell.source;
    finding.line = cell.line;
    finding.value = cell.text;
    ++named;
  }
  if (facts.unreadableCells > named)
    check.Add(CheckCode::UnreadableCell,
              fmt::format("{} more do not read as {}", Cells(facts.unreadableCells - named), TypeInWords(facts.type)),
              -1, facts.unreadableCells - named);
}

}  // namespace runtime::data
