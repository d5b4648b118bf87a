#include "runtime/output/model/grid.h"

#include <algorithm>

namespace runtime::output {
namespace {

void Unroll(const Item& group, std::vector<const Item*>& groups, std::vector<GridLine>& lines) {
  for (const auto& item : group.items) {
    if (!item->isGroup) {
      lines.push_back({groups, item.get()});
      continue;
    }
    groups.push_back(item.get());
    Unroll(*item, groups, lines);
    groups.pop_back();
  }
}

bool SetOnRow(const Cell& cell) { return cell.column == nullptr; }

}  // namespace

std::size_t SharedGroups(const GridLine* before, const GridLine& line) {
  if (before == nullptr) return 0;
  const std::size_t most = std::min(before->groups.size(), line.groups.size());
  std::size_t shared = 0;
  while (shared < most && before->groups[shared] == line.groups[shared]) ++shared;
  return shared;
}

Grid::Grid(const Table& table) {
  std::vector<const Item*> groups;
  for (const auto& dimension : table.dimensions) {
    Unroll(dimension->root, groups, dimension->inColumns ? fColumns : fRows);
  }
  for (const GridLine& row : fRows) fRowDepth = std::max(fRowDepth, row.groups.size());
  const bool cellsOnRows = std::any_of(fRows.begin(), fRows.end(), [](const GridLine& row) {
    return std::any_of(row.category->cells.begin(), row.category->cells.end(), SetOnRow);
  });
  if (cellsOnRows) fColumns.insert(fColumns.begin(), GridLine{});

  fUsed.assign(fColumns.size(), false);
  for (const GridLine& row : fRows)
    for (const Cell& cell : row.category->cells) fUsed[ColumnOf(cell)] = true;
}

std::size_t Grid::ColumnOf(const Cell& cell) const {
  std::size_t column = 0;
  while (fColumns[column].category != cell.column) ++column;  // every cell's column is a column of its table
  return column;
}

std::vector<std::size_t> Grid::ShownColumns() const {
  std::vector<std::size_t> shown;
  for (std::size_t column = 0; column < fColumns.size(); ++column)
    if (fUsed[column]) shown.push_back(column);
  if (shown.empty() && !fColumns.empty()) shown.push_back(0);
  return shown;
}

}  // namespace runtime::output
