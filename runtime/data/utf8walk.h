// Walking a UTF-8 text character by character.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace runtime::data {

/// A step over one character. Where the bytes are no UTF-8 (overlong forms, surrogates and values past U+10FFFF too)
/// the step is one byte long, not valid, and the character is U+FFFD.
struct Utf8Step {
  char32_t character = 0xFFFD;
  std::size_t length = 1;
  bool valid = false;
};

inline bool IsUtf8Continuation(char byte) { return (static_cast<unsigned char>(byte) & 0xC0) == 0x80; }

/// REQUIRES: at < text.size().
inline Utf8Step StepUtf8(std::string_view text, std::size_t at) {
  const auto lead = static_cast<unsigned char>(text[at]);
  if (lead < 0x80) return {lead, 1, true};
  const std::size_t length = lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : 2;
  if (lead < 0xC2 || lead > 0xF4 || text.size() - at < length) return {};
  char32_t character = lead & (0x7FU >> length);
  for (std::size_t i = 1; i < length; ++i) {
    if (!IsUtf8Continuation(text[at + i])) return {};
    character = character << 6 | (static_cast<unsigned char>(text[at + i]) & 0x3FU);
  }
  constexpr char32_t kLeastOfLength[] = {0, 0, 0x80, 0x800, 0x10000};
  if (character < kLeastOfLength[length] || character > 0x10FFFF || (character >= 0xD800 && character <= 0xDFFF))
    return {};
  return {character, length, true};
}

/// REQUIRES: a character up to U+10FFFF.
inline void AppendUtf8(std::string& text, char32_t character) {
  if (character < 0x80) {
    text.push_back(static_cast<char>(character));
    return;
  }
  if (character < 0x800) {
    text.push_back(static_cast<char>(0xC0 | character >> 6));
  } else if (character < 0x10000) {
    text.push_back(static_cast<char>(0xE0 | character >> 12));
    text.push_back(static_cast<char>(0x80 | (character >> 6 & 0x3F)));
  } else {
    text.push_back(static_cast<char>(0xF0 | character >> 18));
    text.push_back(static_cast<char>(0x80 | (character >> 12 & 0x3F)));
    text.push_back(static_cast<char>(0x80 | (character >> 6 & 0x3F)));
  }
  text.push_back(static_cast<char>(0x80 | (character & 0x3F)));
}

}  // namespace runtime::data
