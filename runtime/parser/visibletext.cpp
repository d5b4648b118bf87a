#include "runtime/parser/visibletext.h"

#include <fmt/format.h>
#include <unicode/uchar.h>

#include "runtime/parser/characters.h"

namespace runtime::parser {

namespace {

constexpr int kTabColumns = 4;

VisibleCharacter WrittenOut(std::string text) {
  const int width = static_cast<int>(text.size());
  return {std::move(text), width};
}

bool IsPrintedRaw(std::int32_t character) {
  switch (u_charType(character)) {
    case U_CONTROL_CHAR:
    case U_FORMAT_CHAR:  // bidi marks, joiners, the byte order mark
    case U_LINE_SEPARATOR:
    case U_PARAGRAPH_SEPARATOR:
    case U_PRIVATE_USE_CHAR:
    case U_SURROGATE:
    case U_UNASSIGNED:
      return false;
    default:
      return true;
  }
}

int ColumnsOf(std::int32_t character) {
  const auto type = u_charType(character);
  if (type == U_NON_SPACING_MARK || type == U_ENCLOSING_MARK) return 0;
  const int eastAsianWidth = u_getIntPropertyValue(character, UCHAR_EAST_ASIAN_WIDTH);
  return eastAsianWidth == U_EA_FULLWIDTH || eastAsianWidth == U_EA_WIDE ? 2 : 1;
}

}  // namespace

VisibleCharacter ShowCharacter(std::string_view text, std::size_t& offset) {
  const std::size_t start = offset;
  const std::int32_t character = NextCharacter(text, offset);
  if (character == kIllFormed) {
    std::string bytes;
    for (std::size_t i = start; i < offset; ++i) {
      bytes += fmt::format("<{:02X}>", static_cast<unsigned char>(text[i]));
    }
    return WrittenOut(std::move(bytes));
  }
  if (character == '\t') return {std::string(kTabColumns, ' '), kTabColumns};
  if (character >= 0x20 && character < 0x7F) return {std::string(1, static_cast<char>(character)), 1};
  if (!IsPrintedRaw(character)) return WrittenOut(fmt::format("<U+{:04X}>", static_cast<unsigned>(character)));
  return {std::string(text.substr(start, offset - start)), ColumnsOf(character)};
}

std::string ShowText(std::string_view text, int mostColumns) {
  std::string shown;
  int columns = 0;
  for (std::size_t offset = 0; offset < text.size();) {
    const VisibleCharacter character = ShowCharacter(text, offset);
    // Combining marks have no width of their own: the bytes are bounded too.
    if (columns + character.width > mostColumns || shown.size() > static_cast<std::size_t>(mostColumns) * 8) {
      return shown + "...";
    }
    shown += character.text;
    columns += character.width;
  }
  return shown;
}

}  // namespace runtime::parser
