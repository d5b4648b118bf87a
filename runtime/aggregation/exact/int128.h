// Integers of 128 bits, which the standard does not have.
#pragma once

#include <cstdint>

namespace runtime::aggregation {

__extension__ typedef unsigned __int128 UInt128;
__extension__ typedef __int128 Int128;

inline std::uint64_t LowHalf(UInt128 value) { return static_cast<std::uint64_t>(value); }
inline std::uint64_t HighHalf(UInt128 value) { return static_cast<std::uint64_t>(value >> 64); }

}  // namespace runtime::aggregation
