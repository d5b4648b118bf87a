// A pivot table unrolled into rows and columns, for renderers that draw one.
#pragma once

#include <vector>

#include "runtime/output/model/report.h"

namespace runtime::output {

/// A category with the groups that it stands in, the outermost first. Points into the table.
struct GridLine {
  std::vector<const Item*> groups;
  const Item* category = nullptr;
};

/// How many groups, from the outermost on, a line has in common with the one before it (null: there is none).
std::size_t SharedGroups(const GridLine* before, const GridLine& line);

/// Rows and columns in creation order, one dimension behind another. Groups without categories leave no trace.
/// The table must outlive it.
class Grid {
 public:
  explicit Grid(const Table& table);

  const std::vector<GridLine>& rows() const { return fRows; }
  /// Where cells were set on rows themselves, the first column has no category.
  const std::vector<GridLine>& columns() const { return fColumns; }
  /// Greatest number of groups around a row.
  std::size_t rowDepth() const { return fRowDepth; }

  /// Position of a cell's column in `columns`.
  std::size_t ColumnOf(const Cell& cell) const;
  /// True when a cell of the table stands in the column.
  bool IsUsed(std::size_t column) const { return fUsed[column]; }
  /// Positions of the columns to draw: those that have a cell, the first one where none has.
  std::vector<std::size_t> ShownColumns() const;

 private:
  std::vector<GridLine> fRows;
  std::vector<GridLine> fColumns;
  std::vector<bool> fUsed;
  std::size_t fRowDepth = 0;
};

}  // namespace runtime::output
