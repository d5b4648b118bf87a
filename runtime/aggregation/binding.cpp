#include "runtime/aggregation/binding.h"

#include <utility>

namespace runtime::aggregation {

namespace {
thread_local AggregationBinding* currentBinding = nullptr;
}

AggregationBinding* CurrentAggregation() { return currentBinding; }

AggregationBinding* BindAggregation(AggregationBinding* binding) { return std::exchange(currentBinding, binding); }

}  // namespace runtime::aggregation
