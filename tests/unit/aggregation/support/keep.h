// Keeping given values.
#pragma once

#include <algorithm>
#include <cstddef>
#include <vector>

#include "runtime/aggregation/counting/keptvalues.h"

namespace runtime::aggregation {

/// `weights` is parallel to `values`; empty: every weight is 1.
inline void Keep(KeptValues& kept, const std::vector<double>& values, const std::vector<double>& weights = {}) {
  for (std::size_t done = 0; done < values.size();) {
    const KeptValues::Place place = kept.next(!weights.empty());
    const std::size_t count = std::min(values.size() - done, place.room);
    if (count == 0) {
      kept.OpenNext(true, !weights.empty());
      continue;
    }
    std::copy_n(values.data() + done, count, place.values);
    if (place.weights != nullptr) {
      if (weights.empty())
        std::fill_n(place.weights, count, 1.0);
      else
        std::copy_n(weights.data() + done, count, place.weights);
    }
    kept.Written(count, 40000.0);
    done += count;
  }
}

}  // namespace runtime::aggregation
