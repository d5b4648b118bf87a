#include "runtime/output/render/textwidth.h"

#include <unicode/uchar.h>

#include "runtime/output/render/characters.h"

namespace runtime::output {
namespace {

constexpr char32_t kZeroWidthJoiner = 0x200D;
constexpr char32_t kEmojiSelector = 0xFE0F;

int CharacterWidth(char32_t character) {
  if (character < 0x300) return 1;
  const auto point = static_cast<UChar32>(character);
  switch (u_charType(point)) {
    case U_NON_SPACING_MARK:
    case U_ENCLOSING_MARK:
    case U_FORMAT_CHAR:
      return 0;
    default:
      break;
  }
  // The vowels and final consonants of a Korean syllable stand within the block of its first consonant.
  if ((character >= 0x1160 && character <= 0x11FF) || (character >= 0xD7B0 && character <= 0xD7FF)) return 0;
  switch (u_getIntPropertyValue(point, UCHAR_EAST_ASIAN_WIDTH)) {
    case U_EA_WIDE:
    case U_EA_FULLWIDTH:
      return 2;
    default:
      return 1;
  }
}

bool IsPictograph(char32_t character) {
  return character > 0xA0 && u_hasBinaryProperty(static_cast<UChar32>(character), UCHAR_EXTENDED_PICTOGRAPHIC);
}

bool IsEmojiModifier(char32_t character) { return character >= 0x1F3FB && character <= 0x1F3FF; }

}  // namespace

int DisplayWidth(std::string_view line) {
  if (IsPlainAscii(line)) return static_cast<int>(line.size());
  int columns = 0;
  int emoji = 0;        // columns of the emoji that may still be continued; 0: there is none
  bool joined = false;  // it was continued by a joiner
  for (std::size_t at = 0; at < line.size();) {
    bool valid = true;
    const char32_t character = NextCharacter(line, at, valid);
    if (emoji > 0 && character == kEmojiSelector) {
      columns += 2 - emoji;
      emoji = 2;
    } else if (emoji > 0 && character == kZeroWidthJoiner) {
      joined = true;
    } else if (emoji > 0 && IsEmojiModifier(character)) {
      columns += 2 - emoji;
      emoji = 2;
    } else if (IsPictograph(character)) {
      if (!joined) {
        emoji = CharacterWidth(character);
        columns += emoji;
      }
      joined = false;
    } else {
      columns += CharacterWidth(character);
      const bool extends = emoji > 0 && CharacterWidth(character) == 0;
      if (!extends) emoji = 0;
      joined = false;
    }
  }
  return columns;
}

}  // namespace runtime::output
