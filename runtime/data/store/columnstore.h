// The columnar in-memory store: columns of blocks, and the dataset over them.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string_view>
#include <vector>

#include "host/data/casecursor.h"

#include "runtime/data/dataset.h"
#include "runtime/data/store/stringtable.h"
#include "runtime/data/typing/columnfacts.h"

namespace runtime::data {

/// Most cases of a dataset: the interface counts them in an int.
inline constexpr std::int64_t kMostCases = INT32_MAX;

/// Rows of a block in a table of that many columns: 16,384, fewer for very wide tables, so that a block of all columns
/// stays small. All columns of a dataset have blocks of the same rows.
std::int64_t RowsPerBlock(std::size_t columns);

/// One column, complete. Each block stands in the smallest storage that holds its cells.
class StoredColumn {
 public:
  struct Block {
    ColumnStorage storage = ColumnStorage::Int8;
    std::unique_ptr<std::byte[]> cells;
  };

  StoredColumn() = default;
  /// `strings` is null for a numeric column. Every block but the last has `blockRows` rows.
  StoredColumn(std::int64_t rows, std::int64_t blockRows, std::vector<Block> blocks,
               std::shared_ptr<const StringTable> strings);

  bool isString() const { return fStrings != nullptr; }
  std::int64_t rows() const { return fRows; }
  std::int64_t blockRows() const { return fBlockRows; }
  const StringTable* strings() const { return fStrings.get(); }

  /// The cells from `row` on, up to the end of the row's block. REQUIRES: 0 <= row < rows().
  ColumnView ViewFrom(std::int64_t row) const;
  /// Cell by cell, for what is not hot. NaN: system-missing. REQUIRES: a numeric column.
  double Number(std::int64_t row) const;
  /// REQUIRES: a string column.
  std::string_view Text(std::int64_t row) const;

 private:
  std::int64_t fRows = 0;
  std::int64_t fBlockRows = 1;
  std::vector<Block> fBlocks;
  std::shared_ptr<const StringTable> fStrings;
};

/// Collects a numeric column. A NaN is system-missing; infinities become system-missing, -0.0 becomes 0.0. The block
/// that is being filled stands in compact storage from its first cell on and is widened when a cell asks for it.
class NumericColumnBuilder {
 public:
  explicit NumericColumnBuilder(std::int64_t blockRows);

  void Append(double value) { Append(&value, 1); }
  /// The fast way: a few dozen to a few thousand values at once.
  void Append(const double* values, std::size_t count);

  std::int64_t rows() const { return fRows; }
  /// What is known of the values appended so far.
  const ValueFacts& facts() const { return fFacts; }
  /// Ends the column; the builder is spent.
  StoredColumn Finish();

 private:
  void AppendToBlock(const double* values, std::size_t count);
  void Widen(ColumnStorage storage);
  void CloseBlock();

  std::int64_t fBlockRows;
  std::int64_t fRows = 0;
  std::int64_t fRowsInBlock = 0;
  ColumnStorage fStorage = ColumnStorage::Int8;
  std::vector<std::byte> fBlock;  // of the block being filled
  std::vector<StoredColumn::Block> fBlocks;
  ValueFacts fFacts;
};

/// Collects a string column. Trailing blanks are no part of a text.
class StringColumnBuilder {
 public:
  explicit StringColumnBuilder(std::int64_t blockRows);

  void Append(std::string_view text);

  std::int64_t rows() const { return fRows; }
  /// Bytes of the longest text so far, without trailing blanks.
  std::size_t longestText() const { return fStrings->longestText(); }
  /// Ends the column; the builder is spent.
  StoredColumn Finish();

 private:
  void CloseBlock();

  std::int64_t fBlockRows;
  std::int64_t fRows = 0;
  std::vector<std::uint32_t> fBlock;
  std::vector<StoredColumn::Block> fBlocks;
  std::shared_ptr<ArenaStringTable> fStrings;
};

/// A dataset whose columns are in memory, one a variable of the dictionary.
class ColumnarDataset : public Dataset {
 public:
  /// `chunkRows`: most rows that a cursor hands out at once, 0 for a whole block; a chunk never reaches over the end of
  /// a block. REQUIRES: as many columns as variables, all of `rows` rows and of the same block rows; the weight
  /// variable, if any, is numeric. Throws DataError for more than kMostCases rows.
  ColumnarDataset(Dictionary dictionary, std::vector<StoredColumn> columns, std::int64_t rows,
                  std::int64_t chunkRows = 0);
  ~ColumnarDataset() override;

  std::unique_ptr<CaseCursor> NewCursor() const override;
  std::int64_t caseCount() const override { return fRows; }

  const StoredColumn& column(int variable) const { return fColumns[static_cast<std::size_t>(variable)]; }
  /// The weight of every row, empty when the dataset is unweighted. Never negative, never NaN.
  const std::vector<double>& weights() const { return fWeights; }

 private:
  std::vector<StoredColumn> fColumns;
  std::vector<double> fWeights;
  std::int64_t fRows;
  std::int64_t fBlockRows;
  std::int64_t fChunkRows;
};

}  // namespace runtime::data
