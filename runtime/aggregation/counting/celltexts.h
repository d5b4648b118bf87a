// Texts of string values as the dictionary holds them.
#pragma once

#include <cstddef>
#include <string_view>

#include "host/data/obs.h"

namespace runtime::aggregation {

inline std::string_view WithoutTrailingBlanks(std::string_view text) {
  const std::size_t last = text.find_last_not_of(' ');
  return text.substr(0, last == std::string_view::npos ? 0 : last + 1);
}

/// The text of a blank-padded value of `width` bytes, without its trailing blanks. A view of the value.
inline std::string_view TextOf(const OBS* value, int width) {
  return WithoutTrailingBlanks({reinterpret_cast<const char*>(value), static_cast<std::size_t>(width)});
}

}  // namespace runtime::aggregation
