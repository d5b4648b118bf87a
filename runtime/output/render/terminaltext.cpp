#include "runtime/output/render/terminaltext.h"

#include "runtime/output/render/characters.h"

namespace runtime::output {
namespace {

void AppendHexadecimal(std::string& text, const char* prefix, char32_t character, int digits) {
  static constexpr char kDigits[] = "0123456789abcdef";
  text += prefix;
  for (int shift = 4 * (digits - 1); shift >= 0; shift -= 4) text += kDigits[(character >> shift) & 15U];
}

}  // namespace

void AppendVisibleEscape(std::string& text, char32_t character) {
  if (character < 0x100) return AppendHexadecimal(text, "\\x", character, 2);
  if (character < 0x10000) return AppendHexadecimal(text, "\\u", character, 4);
  AppendHexadecimal(text, "\\U", character, 8);
}

std::string EscapeForTerminal(std::string_view text, bool utf8, LineEnds lineEnds) {
  if (IsPlainAscii(text)) return std::string(text);
  std::string shown;
  shown.reserve(text.size() + 16);
  for (std::size_t at = 0; at < text.size();) {
    const std::size_t begin = at;
    bool valid = true;
    const char32_t character = NextCharacter(text, at, valid);
    if (character >= ' ' && character <= '~') {
      shown += static_cast<char>(character);
    } else if (character == '\t') {
      shown += "    ";
    } else if (character == '\n' && lineEnds == LineEnds::Keep) {
      shown += '\n';
    } else if (character == '\r' && lineEnds == LineEnds::Keep && at < text.size() && text[at] == '\n') {
      continue;
    } else if (!utf8 || IsHidden(character)) {
      AppendVisibleEscape(shown, character);
    } else if (!valid) {
      shown += "\xEF\xBF\xBD";
    } else {
      shown.append(text, begin, at - begin);
    }
  }
  return shown;
}

}  // namespace runtime::output
