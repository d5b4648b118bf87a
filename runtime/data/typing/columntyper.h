// From the cells of a column to its stored values.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "runtime/data/open.h"
#include "runtime/data/store/columnstore.h"
#include "runtime/data/typing/cellblock.h"
#include "runtime/data/typing/columnfacts.h"

namespace runtime::data {

/// How the cells of a column are to be read.
struct ColumnPlan {
  FieldDialect dialect;                // type Inferred: decided on the whole column
  std::vector<LabelledValue> missing;  // the missing entries
  std::string place;                   // of the field, for a message about its dialect
};

/// A column that was read.
struct TypedColumn {
  StoredColumn column;
  ColumnFacts facts;
};

struct TypedTable {
  std::vector<TypedColumn> columns;
  std::int64_t rows = 0;
};

/// Takes the cells of one column in, block by block in order.
class ColumnTyper {
 public:
  virtual ~ColumnTyper() = default;
  virtual void Append(const CellBlock& block, std::size_t column) = 0;
  /// After the last block: the type that was supposed did not hold, and the column must be read once more, with
  /// MakeTextTyper.
  virtual bool NeedsSecondReading() const { return false; }
  /// Ends the column; the typer is spent. REQUIRES: NeedsSecondReading() is false.
  virtual TypedColumn Finish() = 0;
};

/// The typer for a plan. Throws DataError for a dialect that cannot be used.
std::unique_ptr<ColumnTyper> MakeColumnTyper(const ColumnPlan& plan, std::string header, std::int64_t blockRows);
/// The typer for a string column whose type was inferred.
std::unique_ptr<ColumnTyper> MakeTextTyper(std::string header, std::int64_t blockRows);

/// Tells of the cells that did not read as the type of their column, once a column with the first place, and of whole
/// numbers that had to be rounded. `source` is the file. With `strict` the first such cell of the data is a DataError.
void ReportUnreadableCells(const std::string& source, const std::vector<const ColumnFacts*>& columns, bool strict,
                           std::vector<Note>& notes);

}  // namespace runtime::data
