// One finished sum of weights.
#pragma once

#include <cstdint>
#include <memory>

#include "runtime/aggregation/exact/dyadic.h"
#include "runtime/aggregation/exact/int128.h"

namespace runtime::aggregation {

/// An exact sum of weights: units + scaled x 2^-shift + wide.
struct WeightTotal {
  std::uint64_t units = 0;
  UInt128 scaled = 0;
  int shift = 0;                       // of 0 to 90
  std::shared_ptr<const Dyadic> wide;  // null: nothing of that kind

  bool IsZero() const { return units == 0 && scaled == 0 && (wide == nullptr || wide->sign() == 0); }
  /// Units and scaled part as a multiple of 2^-shift.
  UInt128 InUnits() const { return (UInt128{units} << shift) + scaled; }
  Dyadic Exact() const;
  WeightTotal& operator+=(const WeightTotal& other);
};

/// The nearest double; system-missing where it is beyond the largest one.
double NearestDouble(const WeightTotal& total);
/// 100 x part / whole, rounded once; 0 where the whole is 0.
double Percent(const WeightTotal& part, const WeightTotal& whole);

}  // namespace runtime::aggregation
