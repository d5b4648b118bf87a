// Sums of many doubles, sorted by exponent so that the inner loop adds plain integers.
#pragma once

#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>

#include "runtime/aggregation/exact/binary64.h"
#include "runtime/aggregation/exact/fixedsum.h"
#include "runtime/aggregation/exact/int128.h"

namespace runtime::aggregation {

/// Sums of w x and w x^2 over values x with weights w that are whole multiples of 2^-shift, apart by sign and exponent
/// of the value: with the exponent given, the significands are integers. What is in the bins is handed on to the wide
/// sums once for thousands of values, not once a value. Values that follow one another go to different lanes, so that
/// an addition need not wait for the one before it to the same bin.
template <class Bin>
class ExponentBins {
 public:
  static constexpr std::size_t kLanes = 4;
  static constexpr std::size_t kMostValues = kLanes * Bin::kMostAddends;

  /// weightOf(i): the weight of value i in units; of a bin without weights it is not used. REQUIRES: finite values,
  /// count <= kMostValues, empty bins.
  template <class WeightOf>
  void Add(const double* values, std::size_t count, WeightOf weightOf) {
    std::uint64_t lowest = kNone;
    std::uint64_t highest = 0;
    const auto add = [&](std::size_t i, std::size_t lane) {
      const auto bits = std::bit_cast<std::uint64_t>(values[i]);
      const std::uint64_t key = bits >> 52;
      const std::uint64_t biased = key & kNone;
      const std::uint64_t significand = (bits & kSignificandMask) | (std::uint64_t{biased != 0} << 52);
      lowest = std::min(lowest, biased);
      highest = std::max(highest, biased);
      fBins[key][lane].Add(significand, weightOf(i));
    };
    std::size_t i = 0;
    for (; i + kLanes <= count; i += kLanes) {
      add(i, 0);
      add(i + 1, 1);
      add(i + 2, 2);
      add(i + 3, 3);
    }
    for (; i < count; ++i) add(i, i % kLanes);
    fLowest = lowest;
    fHighest = highest;
  }

  /// Moves all into the wide sums and empties the bins.
  void MoveTo(int shift, ProductSum& sum, SquareSum& squares) {
    for (std::uint64_t biased = fLowest; biased <= fHighest; ++biased) {
      const int exponent = biased == 0 ? kSmallestExponent : static_cast<int>(biased) - 1075;
      for (const bool negative : {false, true}) {
        for (Bin& bin : fBins[biased | (std::uint64_t{negative} << 11)]) {
          if (bin.IsZero()) continue;
          sum.Add(bin.Sum(), exponent - shift, negative);
          squares.Add(bin.Squares(), 2 * exponent - shift, false);
          bin = Bin();
        }
      }
    }
    fLowest = kNone;
    fHighest = 0;
  }

 private:
  static constexpr std::uint64_t kNone = 0x7FF;

  std::array<std::array<Bin, kLanes>, 4096> fBins{};  // by sign and biased exponent, the upper 12 bits of a double
  std::uint64_t fLowest = kNone;                      // biased exponents met
  std::uint64_t fHighest = 0;
};

/// Values of weight 1: significands below 2^53, their squares below 2^106.
struct UnitBin {
  static constexpr std::size_t kMostAddends = std::size_t{1} << 11;

  std::uint64_t sum = 0;
  UInt128 squares = 0;

  void Add(std::uint64_t significand, std::uint64_t) {
    sum += significand;
    squares += UInt128{significand} * significand;
  }
  bool IsZero() const { return sum == 0; }
  std::array<std::uint64_t, 1> Sum() const { return {sum}; }
  std::array<std::uint64_t, 2> Squares() const { return {LowHalf(squares), HighHalf(squares)}; }
};

/// Values with weights below 2^63 units: products below 2^116 and 2^169.
struct WeightedBin {
  static constexpr std::size_t kMostAddends = std::size_t{1} << 12;

  UInt128 sum = 0;
  UInt128 squares = 0;             // the lower 128 bits
  std::uint64_t upperSquares = 0;  // the upper 64

  void Add(std::uint64_t significand, std::uint64_t weight) {
    const UInt128 product = UInt128{significand} * weight;
    sum += product;
    const UInt128 low = UInt128{LowHalf(product)} * significand;
    const UInt128 high = UInt128{HighHalf(product)} * significand + HighHalf(low);  // below 2^106
    const UInt128 lower = (UInt128{LowHalf(high)} << 64) | LowHalf(low);
    squares += lower;
    upperSquares += HighHalf(high) + (squares < lower ? 1 : 0);
  }
  bool IsZero() const { return sum == 0; }
  std::array<std::uint64_t, 2> Sum() const { return {LowHalf(sum), HighHalf(sum)}; }
  std::array<std::uint64_t, 3> Squares() const { return {LowHalf(squares), HighHalf(squares), upperSquares}; }
};

}  // namespace runtime::aggregation
