// A dataset over columns of stored cells.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

#include "runtime/data/dataset.h"
#include "runtime/data/store/rowgroups.h"

namespace runtime::data {

/// A column of a table: one of those of its groups.
struct StoredColumn {
  std::shared_ptr<const RowGroups> groups;
  std::size_t column = 0;
  std::shared_ptr<const StringTable> strings;  // null: numeric

  bool isString() const { return strings != nullptr; }
};

class ColumnarDataset : public Dataset {
 public:
  /// `chunkRows`: most rows that a cursor hands out at once, 0 for a whole group; a chunk never reaches over the end of
  /// a group. REQUIRES: as many columns as variables; the groups of all have the same rows, `rows` together; the weight
  /// variable, if any, is numeric. Throws DataError for more than kMostCases rows.
  ColumnarDataset(Dictionary dictionary, std::vector<StoredColumn> columns, std::int64_t rows,
                  std::int64_t chunkRows = 0);
  ~ColumnarDataset() override;

  std::unique_ptr<CaseCursor> NewCursor() const override;
  std::int64_t caseCount() const override { return fRows; }

  const StoredColumn& column(int variable) const { return fColumns[static_cast<std::size_t>(variable)]; }

 private:
  friend class ColumnarCursor;

  std::vector<StoredColumn> fColumns;
  std::vector<std::shared_ptr<const RowGroups>> fTables;  // those of the columns, each once
  std::vector<std::size_t> fTableOfColumn;
  std::int64_t fRows;
  std::size_t fChunkRows;
};

}  // namespace runtime::data
