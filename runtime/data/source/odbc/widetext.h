// UTF-16, as ODBC's wide functions have it, and UTF-8.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace runtime::data {

/// Appends UTF-8 as UTF-16; what is none becomes U+FFFD.
void AppendWide(std::string_view text, std::u16string& wide);
inline std::u16string WideText(std::string_view text) {
  std::u16string wide;
  AppendWide(text, wide);
  return wide;
}
/// Appends `count` units as UTF-8; surrogates that stand alone become U+FFFD.
void AppendUtf8(const char16_t* units, std::size_t count, std::string& text);

}  // namespace runtime::data
