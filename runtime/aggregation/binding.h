// What the aggregation library is bound to on the calling thread. Set by the session for one run.
#pragma once

#include <cstdint>
#include <functional>

#include "runtime/aggregation/sketch/itemsketch.h"
#include "runtime/machine/threadpool.h"

namespace runtime::aggregation {

struct AggregationBinding {
  machine::ThreadPool* pool = nullptr;  // threads that count; null: the calling one alone
  /// Bytes of memory that the values kept for percentiles may take, all tables together; what is beyond goes to a
  /// temporary file. 0: no limit.
  std::int64_t percentileMemory = 0;
  /// Called once a pass, when the results behind it begin to be computed (the percentiles above all); for timings. May
  /// be empty.
  std::function<void()> onResultsBegin;
  /// Called with it, for a pass that went through all cases from the first to the last: the sum of their weights, exact
  /// and rounded once (NaN where it is beyond the largest double). May be empty.
  std::function<void(double weight)> onCasesWeighed;
  /// Called once for every table that has counted every case of its cursor, when its results are asked for, on that
  /// thread. A table that did not take all cases tells nothing: its sums would pass for those of all. Whether it is set
  /// when a cursor's first table is made holds for the cursor. Empty: nobody wants to know, and no values are kept for
  /// it.
  std::function<void(ItemSketch&& sketch)> onCounted;
  /// A mean, standard deviation or percentile of the variable (dictionary index) was read from a table's results.
  std::function<void(int variable)> onScaleStatisticRead;
};

/// The calling thread's binding; null when there is none.
AggregationBinding* CurrentAggregation();
/// Sets the calling thread's binding (null: none) and gives the previous one.
AggregationBinding* BindAggregation(AggregationBinding* binding);

}  // namespace runtime::aggregation
