// From the cells of a column to its stored values.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "runtime/data/open.h"
#include "runtime/data/store/columnardataset.h"
#include "runtime/data/typing/cellblock.h"
#include "runtime/data/typing/columnfacts.h"
#include "runtime/data/typing/typedecision.h"

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
  std::vector<std::vector<TypeStep>> steps;  // of each column, where they are asked for
  std::int64_t rows = 0;
};

/// A column over a stretch of its rows, read on its own, by one thread at a time.
class ColumnPiece {
 public:
  virtual ~ColumnPiece();
  /// The next rows.
  virtual void Append(const CellBlock& block, std::size_t column) = 0;
  /// After the last rows.
  virtual void End() = 0;
  /// The values read so far, in row order; valid until the next Append.
  virtual ColumnStorage storage() const = 0;
  virtual const std::byte* cells() const = 0;
  virtual std::size_t rows() const = 0;
  /// Begins anew, for another stretch; memory is kept.
  virtual void Clear() = 0;
};

/// What stands before a piece.
struct PiecePlace {
  std::int64_t rows = 0;
  std::int64_t lines = 0;  // of the file
};

/// A whole column, put together of pieces.
class ColumnTyper {
 public:
  virtual ~ColumnTyper();

  /// May be shown the first rows, before the first piece is made, to form a guess of what is to be found in the column.
  virtual void LookAt(const CellBlock& block, std::size_t column);
  /// Pieces may be made and read by several threads at once.
  virtual std::unique_ptr<ColumnPiece> NewPiece() const = 0;
  /// Takes in a piece of this column, which has ended, in the order of the rows, one at a time. `cells`: the piece's
  /// cells in the place where they stay; they may be changed.
  virtual void Join(const ColumnPiece& piece, PiecePlace place, std::byte* cells) = 0;
  /// After the last piece: the type that was supposed did not hold, and the column must be read once more, with
  /// MakeTextTyper.
  virtual bool NeedsSecondReading() const { return false; }
  /// After the last piece: a string column of nothing but blank cells, whose stored cells have no meaning.
  virtual bool isBlankText() const { return false; }
  /// The texts of a string column, null for a numeric one.
  virtual std::shared_ptr<const StringTable> strings() const { return nullptr; }
  /// Ends the column. REQUIRES: NeedsSecondReading() is false.
  virtual ColumnFacts Finish() = 0;
};

/// The typer for a plan. Throws DataError for a dialect that cannot be used.
std::unique_ptr<ColumnTyper> MakeColumnTyper(const ColumnPlan& plan, std::string header);
/// The typer for a string column whose type was inferred.
std::unique_ptr<ColumnTyper> MakeTextTyper(std::string header);

}  // namespace runtime::data
