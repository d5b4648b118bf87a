// The sheet with every table as it is.
#pragma once

#include <unordered_map>

#include "runtime/output/language/catalog.h"
#include "runtime/output/model/grid.h"
#include "runtime/output/render/xlsx/sheet.h"

namespace runtime::output {

struct PlaceOfTable {
  CellPlace title;
  std::size_t rows = 0;  // with title and head
};
using PlacesOfTables = std::unordered_map<const Table*, PlaceOfTable>;

/// Each table: its title; a row of the labels of its columns; its rows, with the groups in columns of their own before
/// their labels, each beside the first of its rows. Labels stand in the same column for all tables. Several cells at
/// one place stand one below another. Behind a row stand the numbers of its dates and times. A blank row ends a table.
class TableSheet {
 public:
  TableSheet(Workbook& workbook, const Report& report, const Catalog* catalog, const SheetLimits& limits);

  /// Writes all tables and tells where they stand.
  PlacesOfTables Write();

 private:
  void Write(const Table& table);
  void WriteHead(const Table& table, const Grid& grid);
  void WriteRow(const Grid& grid, const GridLine& row, const GridLine* before);

  const Report& fReport;
  const Catalog* fCatalog;
  std::size_t fLabelColumn = 0;
  Sheet fSheet;
};

}  // namespace runtime::output
