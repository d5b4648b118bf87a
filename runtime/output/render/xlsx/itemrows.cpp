#include "runtime/output/render/xlsx/itemrows.h"

#include <algorithm>

namespace runtime::output {

bool DescribesItem(const Table& table) { return table.title->kind != CellContent::Kind::Text || !table.title->fixed; }

RowKind KindOfRow(const Grid& grid, const GridLine& row) {
  const CellContent& label = *row.category->label;
  if (label.kind == CellContent::Kind::DataValue || label.kind == CellContent::Kind::Variable) return RowKind::Category;
  const auto& cells = row.category->cells;
  if (std::any_of(cells.begin(), cells.end(), [&grid](const Cell& cell) { return grid.ColumnOf(cell) > 0; }))
    return RowKind::Category;
  return label.kind == CellContent::Kind::Text && label.fixed ? RowKind::Property : RowKind::Attribute;
}

const CellContent* FirstCell(const Grid& grid, const GridLine& row, std::size_t column) {
  for (const Cell& cell : row.category->cells)
    if (grid.ColumnOf(cell) == column) return cell.content.get();
  return nullptr;
}

std::string Section(const GridLine& row) {
  std::string section;
  for (const Item* group : row.groups) {
    if (!section.empty()) section += " / ";
    section += group->label->text;
  }
  return section;
}

std::vector<TableOfReport> TablesOf(const Report& report) {
  std::vector<TableOfReport> tables;
  for (const auto& procedure : report.procedures)
    for (const auto& table : procedure->tables) tables.push_back({procedure.get(), table.get()});
  return tables;
}

}  // namespace runtime::output
