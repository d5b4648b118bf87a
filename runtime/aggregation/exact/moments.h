// Mean and standard deviation from exact sums.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

#include "runtime/aggregation/exact/dyadic.h"
#include "runtime/aggregation/exact/fixedsum.h"
#include "runtime/aggregation/exact/weighttotal.h"

namespace runtime::aggregation {

/// The sums of w x and w x^2 over values x with weights w. Exact over the whole range of doubles. Adding costs least a
/// few thousand values at a time.
class MomentSums {
 public:
  /// Values of weight 1. REQUIRES: all finite (in all operations).
  void AddUnits(const double* values, std::size_t count);
  /// Any weights, value by value.
  void AddWeighted(const double* values, const double* weights, std::size_t count);
  /// Weights that are whole multiples of 2^-shift. REQUIRES: 0 <= shift <= 90, every weight below 2^(63 - shift).
  void AddNarrow(const double* values, const double* weights, int shift, std::size_t count);
  /// Weights as such multiples, `units` each. REQUIRES: the same, so every number of units is below 2^63.
  void AddInUnits(const double* values, const std::uint64_t* units, int shift, std::size_t count);
  /// One value with the sum of its weights.
  void AddCounted(double value, const WeightTotal& weight);
  /// Parts of the two sums themselves.
  void AddParts(std::span<const double> products, std::span<const double> squares);

  /// Sum(w x) / W, rounded once; system-missing when W is 0.
  double Mean(const WeightTotal& weight) const;
  /// The standard deviation with frequency weights: the square root of
  ///   sum(w (x - mean)^2) / (W - 1)  =  (W sum(w x^2) - sum(w x)^2) / (W (W - 1)),
  /// rounded once; system-missing when W <= 1 and where the result is beyond the largest double. Whole weights equal
  /// repeated cases.
  double StandardDeviation(const WeightTotal& weight) const;

 private:
  Dyadic Sum() const { return Dyadic(fSum) + fWideSum; }

  ProductSum fSum;
  SquareSum fSquares;
  // What came from weights that no fixed-point number held.
  Dyadic fWideSum;
  Dyadic fWideSquares;
};

}  // namespace runtime::aggregation
