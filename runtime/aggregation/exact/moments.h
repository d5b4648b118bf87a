// Mean and standard deviation from exact sums.
#pragma once

#include <cstddef>

#include "runtime/aggregation/exact/dyadic.h"
#include "runtime/aggregation/exact/fixedsum.h"
#include "runtime/aggregation/exact/weighttotal.h"

namespace runtime::aggregation {

/// The sums of w x and w x^2 over values x with weights w. Exact over the whole range of doubles.
class MomentSums {
 public:
  /// Values of weight 1. REQUIRES: all finite (in all operations).
  void AddUnits(const double* values, std::size_t count);
  void AddWeighted(const double* values, const double* weights, std::size_t count);
  /// One value with the sum of its weights.
  void AddCounted(double value, const WeightTotal& weight);

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
