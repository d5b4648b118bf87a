// The sheet with one row for each variable and set.
#pragma once

#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "runtime/output/language/catalog.h"
#include "runtime/output/model/grid.h"
#include "runtime/output/render/xlsx/itemrows.h"
#include "runtime/output/render/xlsx/tablesheet.h"

namespace runtime::output {

/// A column for everything that a table says of an item in a word of the procedure's; what the tables leave out of
/// label, type, level, role and position comes from the facts, and the numbers of valid and missing cases from what was
/// counted.
class VariableSheet {
 public:
  VariableSheet(Workbook& workbook, const Report& report, const Catalog* catalog, const SheetLimits& limits);

  void Write(const PlacesOfTables& places);

 private:
  struct Columns {
    std::vector<std::string> names;
    std::unordered_map<std::string, std::size_t> places;

    void Add(std::string_view name);
    std::vector<SheetCell> Head() const;
  };

  Columns CollectColumns() const;
  void Put(std::vector<SheetCell>& row, std::string_view column, SheetCell cell) const;
  void PutFacts(std::vector<SheetCell>& row, const std::string& item) const;
  void PutCounts(std::vector<SheetCell>& row, const Sketch& sketch) const;
  void PutProperties(std::vector<SheetCell>& row, const Table& table) const;

  const Report& fReport;
  const Catalog* fCatalog;
  Columns fColumns;
  std::unordered_map<std::string_view, const ItemFacts*> fFacts;
  Sheet fSheet;
};

}  // namespace runtime::output
