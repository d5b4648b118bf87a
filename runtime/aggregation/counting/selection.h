// The values around given cumulative weights, found without sorting.
#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <utility>
#include <vector>

#include "runtime/aggregation/counting/keptvalues.h"
#include "runtime/aggregation/exact/dyadic.h"
#include "runtime/aggregation/exact/int128.h"
#include "runtime/aggregation/exact/weighttotal.h"

namespace runtime::aggregation {

/// The valid values of a variable, in two parts that together hold every case of positive weight.
struct WeightedValues {
  std::vector<std::pair<double, WeightTotal>> counted;  // each value once, by rising value, of positive weight
  const KeptValues* kept = nullptr;                     // a value may also stand among the counted; null: none
};

/// What stands around t: with x the sorted distinct values, w their summed weights and c the cumulative weights, for
/// c_i <= t < c_{i+1} the x_i (none when t < c_1), x_{i+1}, c_i and w_{i+1}.
template <class Weight>
struct Neighbours {
  std::optional<double> lower;
  double upper = 0.0;
  Weight below{};
  Weight upperWeight{};
};

/// Weights as whole multiples of 2^-shift.
struct UnitTarget {
  UInt128 threshold;  // the largest multiple that is not above t
  Neighbours<UInt128> around;
};

/// Weights of any kind.
struct ExactTarget {
  Dyadic hundredfold;  // 100 t
  Neighbours<Dyadic> around;
};

// Fills in what is around each target. A histogram over a map that never falls puts every value into a bucket; the
// buckets in which a target lies are then looked into in the same way, until few values are left, which are sorted. The
// map is linear over the range, or over the values' bits where a linear one does not part them. Values in a file are
// passed a few times, block by block. REQUIRES: targets by rising t, each t below the sum of all weights; finite
// values, no -0.0. Throws machine::SpillError.

// `total` is the sum of all weights.

/// REQUIRES: 0 <= shift <= 90, every weight is a whole multiple of 2^-shift, the sum of all below 2^(128 - shift).
void SelectInUnits(const WeightedValues& values, int shift, UInt128 total, std::span<UnitTarget> targets);
void SelectExactly(const WeightedValues& values, const Dyadic& total, std::span<ExactTarget> targets);

}  // namespace runtime::aggregation
