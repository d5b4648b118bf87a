#include "runtime/parser/characters.h"

#include <unicode/uchar.h>
#include <unicode/utf8.h>

namespace runtime::parser {

// The macros of utf8.h convert between char, uint8_t and int on the way.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wconversion"
#pragma GCC diagnostic ignored "-Wsign-conversion"

std::int32_t NextCharacter(std::string_view text, std::size_t& offset) {
  const char* bytes = text.data();
  const std::size_t size = text.size();
  UChar32 character = 0;
  U8_NEXT(bytes, offset, size, character);
  return character < 0 ? kIllFormed : character;
}

std::size_t LineEndLength(std::string_view text, std::size_t offset) {
  if (offset >= text.size()) return 0;
  if (text[offset] == '\n') return 1;
  if (text[offset] != '\r') return 0;
  return offset + 1 < text.size() && text[offset + 1] == '\n' ? 2 : 1;
}

namespace {

void AppendCharacter(std::string& text, std::int32_t character) {
  char encoded[U8_MAX_LENGTH];
  std::size_t length = 0;
  U8_APPEND_UNSAFE(encoded, length, character);
  text.append(encoded, length);
}

}  // namespace

#pragma GCC diagnostic pop

bool IsBlank(std::int32_t character) {
  if (character == ' ' || character == '\t') return true;
  if (character == '\n' || character == '\r') return false;
  return (character >= 0x80 || character == '\v' || character == '\f') && u_isUWhiteSpace(character);
}

bool IsControl(std::int32_t character) {
  if (character < 0 || character == '\n' || character == '\r') return false;
  return (character < 0x20 || (character >= 0x7F && character < 0xA0)) && !IsBlank(character);
}

bool IsSpecial(std::int32_t character) {
  switch (character) {
    case '[':
    case ']':
    case '(':
    case ')':
    case '=':
    case '/':
      return true;
    default:
      return false;
  }
}

std::string UpperCase(std::string_view text) {
  std::string upper;
  upper.reserve(text.size());
  for (std::size_t offset = 0; offset < text.size();) {
    const char byte = text[offset];
    if (static_cast<unsigned char>(byte) < 0x80) {
      upper += byte >= 'a' && byte <= 'z' ? static_cast<char>(byte - 'a' + 'A') : byte;
      ++offset;
      continue;
    }
    const std::size_t start = offset;
    const std::int32_t character = NextCharacter(text, offset);
    if (character == kIllFormed) {
      upper.append(text, start, offset - start);
      continue;
    }
    AppendCharacter(upper, u_toupper(character));
  }
  return upper;
}

}  // namespace runtime::parser
