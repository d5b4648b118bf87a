// Counting, moments and percentiles of one scale variable.
#pragma once

#include <vector>

#include "host/aggregation/statistics.h"
#include "host/data/datasource.h"

#include "runtime/aggregation/counting/chunk.h"
#include "runtime/aggregation/counting/percentiles.h"
#include "runtime/aggregation/counting/valueslots.h"
#include "runtime/aggregation/counting/weightsums.h"
#include "runtime/aggregation/exact/moments.h"

namespace runtime::aggregation {

/// The statistics asked for, over the rows taken. While the distinct values are few, they are counted, which is enough
/// for all statistics; beyond that the moments are summed value by value and, for percentiles, the values are kept.
class ScaleCounter {
 public:
  /// All statistics name one variable, or none. A variable that is not in the dictionary has no valid value.
  ScaleCounter(std::vector<AggregationStatistic> statistics, const MAVO_DataSource& source);

  void CountRows(const Chunk& chunk, std::size_t first, std::size_t count);
  /// The values of the statistics, parallel to their list. System-missing is NaN. REQUIRES: after this nothing but the
  /// destructor is called.
  std::vector<double> Finish();

  const std::vector<AggregationStatistic>& statistics() const { return fStatistics; }

 private:
  bool Asks(TableEncryptionCodes::StatisticCodes code) const;
  void CountSlots(const ColumnView& column, const ChunkWeights& weights, std::size_t row, std::size_t rows);
  void TakeValues(const ColumnView& column, const ChunkWeights& weights, std::size_t row, std::size_t rows);
  void KeepValues(const double* values, const double* weights, std::size_t count);

  std::vector<AggregationStatistic> fStatistics;
  int fIndex;  // negative: no such variable
  MissingRule fMissing;
  bool fIsString;
  bool fWantsMoments;
  bool fWantsPercentiles;
  ValueSlots fSlots;
  WeightSums fSums;  // by slot; values taken one by one stand under kOtherValidSlot and kOtherMissingSlot
  bool fCountsValues;
  MomentSums fMoments;     // of the values taken one by one
  WeightedValues fValues;  // the same values, when percentiles are wanted
};

}  // namespace runtime::aggregation
