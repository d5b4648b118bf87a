// Which rows of a table of a variable or set go where in a workbook.
#pragma once

#include <string>
#include <vector>

#include "runtime/output/model/grid.h"
#include "runtime/output/model/report.h"

namespace runtime::output {

/// A table of a variable or set, which it has its name from; others are of the file.
bool DescribesItem(const Table& table);

enum class RowKind {
  Property,   // one of the procedure's own words and what there is to say
  Category,   // a value or a member, or has more than one cell
  Attribute,  // has its name from the data
};

RowKind KindOfRow(const Grid& grid, const GridLine& row);

/// The first content in the grid's column of that number; null when there is none.
const CellContent* FirstCell(const Grid& grid, const GridLine& row, std::size_t column);

/// Labels of the groups around a row, the outermost first, with slashes between.
std::string Section(const GridLine& row);

/// All tables of all procedures, in output order.
struct TableOfReport {
  const Procedure* procedure = nullptr;
  const Table* table = nullptr;
};
std::vector<TableOfReport> TablesOf(const Report& report);

}  // namespace runtime::output
