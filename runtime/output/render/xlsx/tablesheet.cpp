#include "runtime/output/render/xlsx/tablesheet.h"

#include <algorithm>
#include <utility>

#include "runtime/output/model/grid.h"
#include "runtime/output/render/xlsx/itemrows.h"

namespace runtime::output {
namespace {

void PutAt(std::vector<SheetCell>& row, std::size_t column, SheetCell cell) {
  if (column >= row.size()) row.resize(column + 1);
  row[column] = std::move(cell);
}

bool HasNumberBehind(const CellContent& content) {
  return SheetCell::NumberBehind(content).kind == SheetCell::Kind::Number;
}

bool HasNumberBehind(const GridLine& row) {
  const auto& cells = row.category->cells;
  return HasNumberBehind(*row.category->label) ||
         std::any_of(cells.begin(), cells.end(), [](const Cell& cell) { return HasNumberBehind(*cell.content); });
}

}  // namespace

TableSheet::TableSheet(Workbook& workbook, const Report& report, const Catalog* catalog, const SheetLimits& limits)
    : fReport(report), fCatalog(catalog), fSheet(workbook, Translate(catalog, "Tables"), {}, 0, limits) {
  for (const TableOfReport& of : TablesOf(report)) fLabelColumn = std::max(fLabelColumn, Grid(*of.table).rowDepth());
}

PlacesOfTables TableSheet::Write() {
  PlacesOfTables places;
  for (const TableOfReport& of : TablesOf(fReport)) {
    PlaceOfTable& place = places[of.table];
    place.title = fSheet.Next();
    const std::size_t before = fSheet.rows();
    Write(*of.table);
    place.rows = fSheet.rows() - before;
    fSheet.AddRow({});
  }
  fSheet.Finish();
  return places;
}

void TableSheet::Write(const Table& table) {
  fSheet.AddRow({SheetCell::Of(*table.title, CellLook::Face::Title)});
  const Grid grid(table);
  WriteHead(table, grid);
  const GridLine* before = nullptr;
  for (const GridLine& row : grid.rows()) {
    WriteRow(grid, row, before);
    before = &row;
  }
}

void TableSheet::WriteHead(const Table& table, const Grid& grid) {
  std::vector<SheetCell> head(fLabelColumn + 1, SheetCell::Text("", CellLook::Face::Head));
  for (const auto& dimension : table.dimensions)
    if (!dimension->inColumns && head.front().text.empty())
      head.front() = SheetCell::Text(dimension->label->text, CellLook::Face::Head);
  for (const GridLine& column : grid.columns()) {
    std::string label = Section(column);
    if (column.category != nullptr) label += (label.empty() ? "" : " / ") + column.category->label->text;
    head.push_back(SheetCell::Text(label, CellLook::Face::Head));
  }
  if (std::any_of(grid.rows().begin(), grid.rows().end(), [](const GridLine& row) { return HasNumberBehind(row); }))
    head.push_back(SheetCell::Text(Translate(fCatalog, "Number"), CellLook::Face::Head));
  fSheet.AddRow(head);
}

void TableSheet::WriteRow(const Grid& grid, const GridLine& row, const GridLine* before) {
  std::vector<std::vector<SheetCell>> lines(1);
  for (std::size_t depth = SharedGroups(before, row); depth < row.groups.size(); ++depth)
    PutAt(lines[0], depth, SheetCell::Of(*row.groups[depth]->label, CellLook::Face::Strong));
  PutAt(lines[0], fLabelColumn, SheetCell::Of(*row.category->label));

  std::size_t numbers = fLabelColumn + 1 + grid.columns().size();
  const auto putNumberBehind = [&lines, &numbers](const CellContent& content) {
    SheetCell number = SheetCell::NumberBehind(content);
    if (number.kind == SheetCell::Kind::Number) PutAt(lines[0], numbers++, std::move(number));
  };
  putNumberBehind(*row.category->label);
  std::vector<std::size_t> filled(grid.columns().size(), 0);  // cells there are in each column so far
  for (const Cell& cell : row.category->cells) {
    const std::size_t column = grid.ColumnOf(cell);
    const std::size_t line = filled[column]++;
    if (line >= lines.size()) lines.resize(line + 1);
    PutAt(lines[line], fLabelColumn + 1 + column, SheetCell::Of(*cell.content));
    putNumberBehind(*cell.content);
  }
  for (const std::vector<SheetCell>& line : lines) fSheet.AddRow(line);
}

}  // namespace runtime::output
