// A double taken apart.
#pragma once

#include <bit>
#include <cstdint>

namespace runtime::aggregation {

/// A finite double as (negative ? -1 : 1) x significand x 2^exponent; the significand has at most 53 bits.
struct Binary64 {
  std::uint64_t significand;
  int exponent;
  bool negative;
};

inline constexpr int kSmallestExponent = -1074;  // of the last bit of any double
inline constexpr std::uint64_t kSignificandMask = (std::uint64_t{1} << 52) - 1;

/// REQUIRES: a finite value.
inline Binary64 TakeApart(double value) {
  const auto bits = std::bit_cast<std::uint64_t>(value);
  const auto biased = static_cast<int>((bits >> 52) & 0x7FF);
  const std::uint64_t fraction = bits & kSignificandMask;
  const bool negative = (bits >> 63) != 0;
  if (biased == 0) return {fraction, kSmallestExponent, negative};
  return {fraction | (kSignificandMask + 1), biased - 1075, negative};
}

/// |value| x 2^shift. REQUIRES: it is whole and fits the type.
template <class Integer>
Integer InUnitsOf(double value, int shift) {
  const Binary64 parts = TakeApart(value);
  const int places = parts.exponent + shift;
  if (parts.significand == 0) return 0;
  if (places >= 0) return static_cast<Integer>(Integer{parts.significand} << places);
  return parts.significand >> -places;
}

}  // namespace runtime::aggregation
