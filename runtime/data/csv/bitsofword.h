// Bits of a word of marks; the lowest stands for the first byte.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>

namespace runtime::data {

inline std::uint64_t BitsFrom(std::size_t bit) { return ~std::uint64_t{0} << bit; }
inline std::uint64_t LowestBit(std::uint64_t bits) { return bits & (~bits + 1); }
/// All bits when none is set.
inline std::uint64_t BitsBelowLowest(std::uint64_t bits) { return ~bits & (bits - 1); }
/// All bits when none is set.
inline std::uint64_t BitsUpToLowest(std::uint64_t bits) { return bits ^ (bits - 1); }
/// No bit when none is set.
inline std::uint64_t BitsUpToHighest(std::uint64_t bits) {
  return bits == 0 ? 0 : ~std::uint64_t{0} >> std::countl_zero(bits);
}
inline std::size_t PlaceOfLowest(std::uint64_t bits) { return static_cast<std::size_t>(std::countr_zero(bits)); }

/// Each bit is the exclusive or of itself and all lower ones: from every odd set bit to before the next.
inline std::uint64_t PrefixXor(std::uint64_t bits) {
  for (int shift = 1; shift < 64; shift *= 2) bits ^= bits << shift;
  return bits;
}

}  // namespace runtime::data
