// The sheet with one row for each value or member of a variable or set.
#pragma once

#include <string>
#include <vector>

#include "runtime/output/language/catalog.h"
#include "runtime/output/render/xlsx/itemrows.h"
#include "runtime/output/render/xlsx/sheet.h"

namespace runtime::output {

/// Variable, section, value (a number where the text is one), the number of a date or time, label, and the further
/// columns of the tables (counts, percents).
class ValueSheet {
 public:
  ValueSheet(Workbook& workbook, const Report& report, const Catalog* catalog, const SheetLimits& limits);

  void Write();

 private:
  std::vector<std::string> CollectColumns() const;
  std::vector<SheetCell> Head() const;
  void Write(const Table& table);

  const Report& fReport;
  const Catalog* fCatalog;
  std::vector<std::string> fColumns;  // of the tables, but the first one of each
  Sheet fSheet;
};

}  // namespace runtime::output
