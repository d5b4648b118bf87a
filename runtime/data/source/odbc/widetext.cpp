#include "runtime/data/source/odbc/widetext.h"

#include <cstdint>

#include <unicode/utf16.h>
#include <unicode/utf8.h>

namespace runtime::data {

void AppendWide(std::string_view text, std::u16string& wide) {
  const auto* const bytes = reinterpret_cast<const std::uint8_t*>(text.data());
  const auto length = static_cast<std::int64_t>(text.size());
  for (std::int64_t i = 0; i < length;) {
    UChar32 character = 0;
    U8_NEXT_OR_FFFD(bytes, i, length, character);
    const auto code = static_cast<std::uint32_t>(character);
    if (U_IS_BMP(code)) {
      wide += static_cast<char16_t>(code);
    } else {
      wide += static_cast<char16_t>(0xD7C0U + (code >> 10U));
      wide += static_cast<char16_t>(0xDC00U | (code & 0x3FFU));
    }
  }
}

void AppendUtf8(const char16_t* units, std::size_t count, std::string& text) {
  constexpr char16_t kAscii = 0x80;
  std::size_t plain = 0;
  while (plain < count && units[plain] < kAscii) ++plain;
  const std::size_t before = text.size();
  text.resize(before + plain);
  for (std::size_t i = 0; i < plain; ++i) text[before + i] = static_cast<char>(units[i]);
  for (std::size_t i = plain; i < count;) {
    std::uint32_t character = units[i++];
    const bool isPair = U16_IS_LEAD(character) && i < count && U16_IS_TRAIL(units[i]);
    if (isPair)
      character = 0x10000U + ((character & 0x3FFU) << 10U) + (units[i++] & 0x3FFU);
    else if (U16_IS_SURROGATE(character))
      character = 0xFFFDU;
    std::uint8_t bytes[U8_MAX_LENGTH] = {};
    std::size_t length = 0;
    U8_APPEND_UNSAFE(bytes, length, character);
    text.append(reinterpret_cast<const char*>(bytes), length);
  }
}

}  // namespace runtime::data
