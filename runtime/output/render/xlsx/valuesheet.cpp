#include "runtime/output/render/xlsx/valuesheet.h"

#include <algorithm>

#include "runtime/output/model/grid.h"

namespace runtime::output {
namespace {

enum Column : std::size_t { kVariable, kSection, kValue, kNumber, kLabel, kOwnColumns };

std::string NameOf(const GridLine& column) { return column.category == nullptr ? "" : column.category->label->text; }

}  // namespace

ValueSheet::ValueSheet(Workbook& workbook, const Report& report, const Catalog* catalog, const SheetLimits& limits)
    : fReport(report),
      fCatalog(catalog),
      fColumns(CollectColumns()),
      fSheet(workbook, Translate(catalog, "Values"), Head(), 1, limits) {}

std::vector<std::string> ValueSheet::CollectColumns() const {
  std::vector<std::string> columns;
  for (const TableOfReport& of : TablesOf(fReport)) {
    if (!DescribesItem(*of.table)) continue;
    const Grid grid(*of.table);
    for (std::size_t c = 1; c < grid.columns().size(); ++c) {
      std::string name = NameOf(grid.columns()[c]);
      if (grid.IsUsed(c) && std::find(columns.begin(), columns.end(), name) == columns.end())
        columns.push_back(std::move(name));
    }
  }
  return columns;
}

std::vector<SheetCell> ValueSheet::Head() const {
  std::vector<SheetCell> head(kOwnColumns);
  head[kVariable] = SheetCell::Text(Translate(fCatalog, "Variable"), CellLook::Face::Head);
  head[kSection] = SheetCell::Text(Translate(fCatalog, "Section"), CellLook::Face::Head);
  head[kValue] = SheetCell::Text(Translate(fCatalog, "Value"), CellLook::Face::Head);
  head[kNumber] = SheetCell::Text(Translate(fCatalog, "Number"), CellLook::Face::Head);
  head[kLabel] = SheetCell::Text(Translate(fCatalog, "Label"), CellLook::Face::Head);
  for (const std::string& column : fColumns) head.push_back(SheetCell::Text(column, CellLook::Face::Head));
  return head;
}

void ValueSheet::Write() {
  for (const TableOfReport& of : TablesOf(fReport))
    if (DescribesItem(*of.table)) Write(*of.table);
  fSheet.Finish();
}

void ValueSheet::Write(const Table& table) {
  const Grid grid(table);
  std::vector<std::size_t> places(grid.columns().size(), kLabel);  // where each column of the table goes
  for (std::size_t c = 1; c < places.size(); ++c) {
    const auto column = std::find(fColumns.begin(), fColumns.end(), NameOf(grid.columns()[c]));
    places[c] = kOwnColumns + static_cast<std::size_t>(column - fColumns.begin());
  }
  for (const GridLine& line : grid.rows()) {
    if (KindOfRow(grid, line) != RowKind::Category) continue;
    std::vector<SheetCell> row(kOwnColumns + fColumns.size());
    row[kVariable] = SheetCell::Text(table.title->text);
    row[kSection] = SheetCell::Text(Section(line));
    row[kValue] = SheetCell::Of(*line.category->label);
    row[kNumber] = SheetCell::NumberBehind(*line.category->label);
    for (const Cell& cell : line.category->cells) {
      SheetCell& place = row[places[grid.ColumnOf(cell)]];
      if (place.kind == SheetCell::Kind::Blank) place = SheetCell::Of(*cell.content);
    }
    fSheet.AddRow(row);
  }
}

}  // namespace runtime::output
