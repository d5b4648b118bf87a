// What the aggregation library is bound to on the calling thread. Set by the session for one run.
#pragma once

#include <functional>

namespace runtime::aggregation {

struct AggregationBinding {
  int threads = 1;  // most threads that the counting may use
  /// A mean, standard deviation or percentile of the variable (dictionary index) was read from a table's results.
  std::function<void(int variable)> onScaleStatisticRead;
};

/// The calling thread's binding; null when there is none.
AggregationBinding* CurrentAggregation();
/// Sets the calling thread's binding (null: none) and gives the previous one.
AggregationBinding* BindAggregation(AggregationBinding* binding);

}  // namespace runtime::aggregation
