// Sums of doubles and of products of doubles without any rounding: one wide fixed-point number.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "runtime/aggregation/exact/binary64.h"
#include "runtime/aggregation/exact/int128.h"

namespace runtime::aggregation {

/// A sum kept as a two's complement integer of `Limbs` limbs of 64 bits, in units of 2^UnitExponent. Adding is exact,
/// so the sum depends on neither the order nor the grouping of what is added. (The fixed-point accumulator of Kulisch,
/// "Computer Arithmetic and Validity", de Gruyter 2013, ch. 8.)
template <std::size_t Limbs, int UnitExponent>
class FixedSum {
 public:
  static constexpr int kUnitExponent = UnitExponent;

  /// Adds +-(magnitude x 2^exponent). REQUIRES: the product is a multiple of the unit and far below the widest sum.
  template <std::size_t N>
  void Add(const std::array<std::uint64_t, N>& magnitude, int exponent, bool negative) {
    const auto offset = static_cast<unsigned>(exponent - UnitExponent);
    const std::size_t first = offset / 64;
    const unsigned shift = offset % 64;
    std::array<std::uint64_t, N + 1> shifted;
    if (shift == 0) {
      for (std::size_t i = 0; i < N; ++i) shifted[i] = magnitude[i];
      shifted[N] = 0;
    } else {
      shifted[0] = magnitude[0] << shift;
      for (std::size_t i = 1; i < N; ++i) shifted[i] = (magnitude[i] << shift) | (magnitude[i - 1] >> (64 - shift));
      shifted[N] = magnitude[N - 1] >> (64 - shift);
    }
    if (negative)
      Subtract(shifted, first);
    else
      AddShifted(shifted, first);
  }

  void Add(UInt128 magnitude, int exponent, bool negative) {
    Add(std::array<std::uint64_t, 2>{LowHalf(magnitude), HighHalf(magnitude)}, exponent, negative);
  }

  /// REQUIRES: a finite value.
  void Add(double value) {
    const Binary64 parts = TakeApart(value);
    Add(std::array<std::uint64_t, 1>{parts.significand}, parts.exponent, parts.negative);
  }

  /// Least significant limb first, two's complement.
  const std::array<std::uint64_t, Limbs>& limbs() const { return fLimbs; }

 private:
  template <std::size_t N>
  void AddShifted(const std::array<std::uint64_t, N>& shifted, std::size_t first) {
    std::uint64_t carry = 0;
    std::size_t at = first;
    for (std::size_t i = 0; i < N && at < Limbs; ++i, ++at) {
      const UInt128 sum = UInt128{fLimbs[at]} + shifted[i] + carry;
      fLimbs[at] = LowHalf(sum);
      carry = HighHalf(sum);
    }
    for (; carry != 0 && at < Limbs; ++at) carry = ++fLimbs[at] == 0 ? 1 : 0;
  }

  template <std::size_t N>
  void Subtract(const std::array<std::uint64_t, N>& shifted, std::size_t first) {
    std::uint64_t borrow = 0;
    std::size_t at = first;
    for (std::size_t i = 0; i < N && at < Limbs; ++i, ++at) {
      const UInt128 difference = UInt128{fLimbs[at]} - shifted[i] - borrow;
      fLimbs[at] = LowHalf(difference);
      borrow = HighHalf(difference) != 0 ? 1 : 0;
    }
    for (; borrow != 0 && at < Limbs; ++at) borrow = fLimbs[at]-- == 0 ? 1 : 0;
  }

  std::array<std::uint64_t, Limbs> fLimbs{};
};

// The widths leave room for 2^40 addends of the largest size.
/// Sums of weights: multiples of 2^-1074 below 2^1024.
using WideWeightSum = FixedSum<34, kSmallestExponent>;
/// Sums of weight x value.
using ProductSum = FixedSum<67, 2 * kSmallestExponent>;
/// Sums of weight x value x value.
using SquareSum = FixedSum<100, 3 * kSmallestExponent>;

}  // namespace runtime::aggregation
