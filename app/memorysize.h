// An amount of memory as people write it.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace app {

/// Bytes: a number, decimals allowed, and a unit: none or B; KB, MB, GB, TB, powers of 1000; KiB, MiB, GiB, TiB, powers
/// of 1024. Without regard to case, blanks between the two allowed. Nothing when the text is no such amount, or more
/// than 2^60 bytes.
std::optional<std::int64_t> ReadMemorySize(std::string_view text);

}  // namespace app
