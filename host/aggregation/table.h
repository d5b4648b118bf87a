// Aggregation tables: fed case by case, computed column by column.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

#include "host/aggregation/dimension.h"
#include "host/aggregation/statistics.h"
#include "host/common/api.h"
#include "host/data/caseiterator.h"

namespace runtime::aggregation {
class TableEngine;
}

/// The results of one table. Owned by the caller of GetCubeAggregators; it shares what it needs with the table, whose
/// categories it refers to, so it must not be asked after the table is gone. It may be destroyed after the table.
class HOST_API CubeAggregator {
 public:
  explicit CubeAggregator(runtime::aggregation::TableEngine& engine);
  ~CubeAggregator();
  CubeAggregator(const CubeAggregator&) = delete;
  CubeAggregator& operator=(const CubeAggregator&) = delete;

  /// The values of the cell named by one category of each dimension (no category: the cell of the whole table). Owned
  /// by the aggregator, valid while it lives; null when the cell has no values. The second argument is -1.
  StatValues* GetStatValues(const std::vector<const AggregationCategory*>& categories, int) const;

 private:
  runtime::aggregation::TableEngine& fEngine;
  mutable std::vector<std::unique_ptr<StatValues>> fCells;  // made when they are asked for first
};

/// The one cube of a table: its dimension or its scale statistics. Owned by the table.
class HOST_API AggregationCube {
 public:
  explicit AggregationCube(runtime::aggregation::TableEngine& engine);
  ~AggregationCube();
  AggregationCube(const AggregationCube&) = delete;
  AggregationCube& operator=(const AggregationCube&) = delete;

  /// The cube owns the dimension from here on.
  void AddCategoricalVariable(AggregationVariable* dimension, TableEncryptionCodes::DimensionPosition position);
  /// Prepares the cube's aggregator: from here on the dimension has its TableDimension.
  void CreateCubeAggregator();
  /// Summary statistics over all cases. All of them name the same variable.
  void AddScaleStatistics(const std::vector<AggregationStatistic>& statistics);
  /// Per category the first list, in the total category the second.
  void AddCategoryAndTotalStatistics(const std::vector<AggregationStatistic>& perCategory,
                                     AggregationVariable* dimension, const std::vector<AggregationStatistic>& inTotal);

 private:
  runtime::aggregation::TableEngine& fEngine;
};

/// What a table tells about itself.
class HOST_API TableMetadata {
 public:
  /// Dimension `i`; the module asks for 0 only. Null when the table has none.
  TableDimension* GetDimension(int) const { return fDimension; }

 private:
  friend class runtime::aggregation::TableEngine;
  TableDimension* fDimension = nullptr;
};

/// One table over the cases of an iterator. What is looked at for every case stands in one line of the cache, the
/// table's dimension included: a wide codebook passes thousands of tables for each case.
class HOST_API AggregationTable {
 public:
  /// `iterator` is not owned; it may be destroyed before the table once GetCubeAggregators was called. The other three
  /// are kept, without effect.
  AggregationTable(MAVO_InputCaseIterator& iterator, bool, bool, int);
  ~AggregationTable();
  AggregationTable(const AggregationTable&) = delete;
  AggregationTable& operator=(const AggregationTable&) = delete;

  /// The table's one cube, owned by the table.
  AggregationCube* CreateCube();

  /// The table takes the iterator's current case. Only notes the row: the columns are worked through a chunk at a time,
  /// which is why this costs a comparison and an addition per case.
  void AddNewCase() {
    if (fCursor->row == fProgress.pending.end)
      ++fProgress.pending.end;
    else
      BeginPendingRows();
  }

  TableMetadata* GetTableMetaData() { return &fMetadata; }

  /// Ends the counting; called after the pass. The caller owns the aggregators of the list (here one).
  std::vector<CubeAggregator*> GetCubeAggregators();

 private:
  friend class runtime::aggregation::TableEngine;

  void BeginPendingRows();

  static constexpr std::size_t kDimensionBytes = 3 * sizeof(void*);

  alignas(64) const CaseCursor* fCursor;
  TableProgress fProgress;
  alignas(void*) std::byte fDimensionRoom[kDimensionBytes];  // the engine puts the dimension there
  TableMetadata fMetadata;
  std::unique_ptr<runtime::aggregation::TableEngine> fEngine;
};
