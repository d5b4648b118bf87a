#include "runtime/output/render/xlsx/celltext.h"

#include <algorithm>

#include "runtime/output/render/characters.h"

namespace runtime::output {
namespace {

bool IsHexDigit(char c) { return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F'); }

/// Whether a reader would take the underscore there for the beginning of an escape such as _x000D_.
bool BeginsEscape(std::string_view text, std::size_t underscore) {
  constexpr std::size_t kLength = 7;
  const std::string_view escape = text.substr(underscore, kLength);
  return escape.size() == kLength && escape[1] == 'x' && escape.back() == '_' &&
         std::all_of(escape.begin() + 2, escape.end() - 1, IsHexDigit);
}

bool FitsAsItIs(std::string_view text) {
  return text.size() <= kLongestCellText && IsPlainAscii(text) && text.find("_x") == std::string_view::npos;
}

/// U+FFFE and U+FFFF; other code points without a character are allowed.
bool CanBeInXml(char32_t character) {
  if (character < U' ') return character == U'\t' || character == U'\n';
  return character != 0xFFFE && character != 0xFFFF;
}

void AppendEscape(std::string& cell, char32_t character) {
  static constexpr char kDigits[] = "0123456789ABCDEF";
  cell += "_x";
  for (int shift = 12; shift >= 0; shift -= 4) cell += kDigits[(character >> shift) & 15U];
  cell += '_';
}

/// Every character of UTF-8 takes one unit of UTF-16, those of four bytes two.
std::size_t Utf16Units(std::string_view text) {
  std::size_t units = 0;
  for (const char c : text) {
    const auto byte = static_cast<unsigned char>(c);
    if ((byte & 0xC0U) != 0x80U) units += byte >= 0xF0U ? 2 : 1;
  }
  return units;
}

}  // namespace

CellText FitIntoCell(std::string_view text, std::string_view cutMark) {
  CellText cell;
  if (FitsAsItIs(text)) {
    cell.text = text;
    return cell;
  }
  const std::size_t room = kLongestCellText - Utf16Units(cutMark);
  std::size_t units = 0;
  std::size_t characters = 0;
  std::size_t cutAt = 0;  // behind the last character that leaves room for the mark
  for (std::size_t at = 0; at < text.size();) {
    ++characters;
    const std::size_t begin = at;
    bool valid = true;
    const char32_t character = NextCharacter(text, at, valid);
    if (units > kLongestCellText) continue;
    const std::size_t before = cell.text.size();
    if (!valid)
      cell.text += "\xEF\xBF\xBD";
    else if (!CanBeInXml(character) || (character == U'_' && BeginsEscape(text, begin)))
      AppendEscape(cell.text, character);
    else
      cell.text.append(text, begin, at - begin);
    units += Utf16Units(std::string_view(cell.text).substr(before));
    if (units <= room) cutAt = cell.text.size();
  }
  if (units <= kLongestCellText) return cell;
  cell.text.resize(cutAt);
  cell.text += cutMark;
  cell.cutFrom = characters;
  return cell;
}

}  // namespace runtime::output
