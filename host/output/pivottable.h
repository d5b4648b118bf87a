// Pivot tables, built strictly top-down. All classes here are light handles into the table that is being built: they
// are held by value, and the table belongs to the procedure's output.
#pragma once

#include <memory>

#include "host/common/api.h"
#include "host/output/celltext.h"

namespace runtime::output {
struct Item;
struct Dimension;
struct Table;
}  // namespace runtime::output

/// A row or column.
class HOST_API BpCategory {
 public:
  BpCategory(runtime::output::Table* table, int dimension, runtime::output::Item* item);
  ~BpCategory();
  BpCategory(const BpCategory&);
  BpCategory& operator=(const BpCategory&);

  /// Appends a cell: on a row category in that row; on a column category where the column crosses the row category
  /// created last (REQUIRES: there is one).
  void Cell(const BpCellText& text);

 private:
  runtime::output::Table* fTable;
  int fDimension;  // position in the table's list of dimensions
  runtime::output::Item* fItem;
};

/// A labelled group of categories inside a dimension or another group.
class HOST_API BpGroup {
 public:
  enum Sort : int { kCreationOrder = 2 };

  BpGroup(runtime::output::Table* table, int dimension, runtime::output::Item* item);
  virtual ~BpGroup();
  BpGroup(const BpGroup&);
  BpGroup& operator=(const BpGroup&);

  /// A new group inside this one. The flag is kept, not interpreted.
  BpGroup Group(const BpString& label, bool, Sort sort);
  /// A new category behind the earlier ones.
  BpCategory Category(const BpCellText& label);

 protected:
  runtime::output::Table* fTable;
  int fDimensionIndex;
  runtime::output::Item* fItem;  // the group; of a dimension its invisible root
};

class HOST_API BpDimension : public BpGroup {
 public:
  enum Place : int { kRows = 0, kColumns = 1 };

  BpDimension(runtime::output::Table* table, int dimension, runtime::output::Item* root);
  ~BpDimension() override;
  BpDimension(const BpDimension&);
  BpDimension& operator=(const BpDimension&);

  /// Rows or columns; the other three are kept, not interpreted. A dimension that was never placed stands in the rows.
  void Position(Place place, int, bool, bool);
};

class HOST_API BpPivotTable {
 public:
  enum Sort : int { kCreationOrder = 2 };

  explicit BpPivotTable(std::shared_ptr<runtime::output::Table> table);
  ~BpPivotTable();
  BpPivotTable(const BpPivotTable&);
  BpPivotTable& operator=(const BpPivotTable&);

  /// The least width of a data column, in points.
  void MinDataColumnWidth(int points);
  BpDimension Dimension(const BpString& label, Sort sort);

 private:
  std::shared_ptr<runtime::output::Table> fTable;  // the procedure's output has it as well
};
