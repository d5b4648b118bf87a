// Amounts of memory: as people write them, and what a run takes by itself.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace app {

/// Bytes: a number, decimals allowed, and a unit: none or B; KB, MB, GB, TB, powers of 1000; KiB, MiB, GiB, TiB, powers
/// of 1024. Without regard to case, blanks between the two allowed. Nothing when the text is no such amount, or more
/// than 2^60 bytes.
std::optional<std::int64_t> ReadMemorySize(std::string_view text);

/// Bytes that the values kept for percentiles may take in memory when no limit was given: about a fifth of what the
/// columns take, so that the whole stays near to them. 0, no limit, where no temporary file can be made for the rest.
std::int64_t MemoryForPercentiles(std::int64_t columnBytes);

}  // namespace app
