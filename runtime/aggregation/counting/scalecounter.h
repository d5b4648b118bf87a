// Counting, moments and percentiles of one scale variable.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <utility>
#include <vector>

#include "host/aggregation/statistics.h"
#include "host/data/datasource.h"

#include "runtime/aggregation/counting/chunk.h"
#include "runtime/aggregation/counting/keptvalues.h"
#include "runtime/aggregation/counting/selection.h"
#include "runtime/aggregation/counting/valueslots.h"
#include "runtime/aggregation/counting/weightsums.h"
#include "runtime/aggregation/exact/moments.h"
#include "runtime/aggregation/sketch/itemsketch.h"

namespace runtime::aggregation {

/// The statistics asked for, over the rows taken. While the distinct values are few, they are counted, which is enough
/// for all statistics; beyond that the moments are summed value by value and, for percentiles, the values are kept.
class ScaleCounter {
 public:
  /// All statistics name one variable, or none. A variable that is not in the dictionary has no valid value.
  /// `memory` is where values are kept; null: without limit. `sketches`: Sketch will be asked for.
  ScaleCounter(std::vector<AggregationStatistic> statistics, const MAVO_DataSource& source,
               std::shared_ptr<ValueMemory> memory, bool sketches = false);

  /// Throws machine::SpillError, as does Finish.
  void CountRows(const Chunk& chunk, std::size_t first, std::size_t count);
  /// The values of the statistics, parallel to their list. System-missing is NaN. `given`: the sums over all rows that
  /// hold for the moments; null: those over the rows counted. REQUIRES: after this no more rows are counted, nor is
  /// this called again.
  std::vector<double> Finish(const MomentParts* given = nullptr);
  /// The weight of all rows. REQUIRES: Finish.
  WeightTotal total() const;
  /// What was counted of the variable. `groups`: those that were counted and whose source formed the sums itself, which
  /// is asked for the histogram then; null elsewhere. Throws machine::SpillError and what the source throws. REQUIRES:
  /// Finish; constructed with `sketches`.
  ItemSketch Sketch(const CaseGroups* groups = nullptr) const;

  /// Values from which Finish has to select.
  std::size_t keptValues() const { return static_cast<std::size_t>(fValues.count()) + fSlots.size(); }

 private:
  bool Asks(TableEncryptionCodes::StatisticCodes code) const;
  void CountSlots(const ColumnView& column, const ChunkWeights& weights, std::size_t row, std::size_t rows);
  void TakeValues(const ColumnView& column, const ChunkWeights& weights, std::size_t row, std::size_t rows);
  /// Takes as many of the values (NaN: missing) as the open block has room for; gives their number. `row`: of the
  /// first.
  std::size_t TakeIntoBlock(const double* values, std::size_t count, const ChunkWeights& weights, std::size_t row);
  void SumPending();
  void FinishMoments(const MomentParts* given);
  void AddCountedMoments(const std::vector<std::pair<double, WeightTotal>>& counted);
  void SumSlots();
  bool hasNumbers() const { return fIndex >= 0 && !fIsString; }

  std::vector<AggregationStatistic> fStatistics;
  int fIndex;  // negative: no such variable
  MissingRule fMissing;
  bool fIsString;
  bool fSketches;
  bool fWantsMoments;
  bool fWantsPercentiles;
  ValueSlots fSlots;
  WeightSums fSums;  // by slot; values taken one by one stand under kOtherValidSlot, missing ones under
                     // kSystemMissingSlot
  bool fCountsValues;
  std::uint64_t fCountedRows = 0;
  // The values taken one by one. Those of the open block from fSummed on are not in the moments yet: summing costs
  // least thousands at a time, and a chunk may have a few rows only.
  KeptValues fValues;
  MomentSums fMoments;
  bool fMomentsAreGiven = false;  // with the chunk that was counted last: the values need not be summed
  std::size_t fSummed = 0;
  bool fPendingIsNarrow = true;  // weights of the pending values: whole multiples of 2^-fPendingShift
  int fPendingShift = 0;

  // Of Finish.
  WeightedValues fFinished;
  WeightTotal fValid;
  WeightTotal fMissingTotal;
  std::vector<double> fQuartiles;  // with sketches, where there are numbers
};

}  // namespace runtime::aggregation
