#include "host/data/names.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <string_view>
#include <utility>

#include <unicode/uchar.h>

#include "runtime/data/foldedname.h"
#include "runtime/data/utf8walk.h"

namespace {

// Sorts behind every character, so that a byte that is no UTF-8 equals only itself.
constexpr char32_t kFirstBadByte = 0x110000;

/// The next character of a text under simple case folding; steps over it.
char32_t NextFolded(std::string_view text, std::size_t& at) {
  const auto byte = static_cast<unsigned char>(text[at]);
  if (byte < 0x80) {
    ++at;
    return byte >= 'A' && byte <= 'Z' ? byte + char32_t{32} : byte;
  }
  const runtime::data::Utf8Step step = runtime::data::StepUtf8(text, at);
  at += step.length;
  if (!step.valid) return kFirstBadByte + byte;
  return static_cast<char32_t>(u_foldCase(static_cast<UChar32>(step.character), U_FOLD_CASE_DEFAULT));
}

int CompareFolded(std::string_view a, std::string_view b) {
  std::size_t atA = 0;
  std::size_t atB = 0;
  while (atA < a.size() && atB < b.size()) {
    const char32_t nextA = NextFolded(a, atA);
    const char32_t nextB = NextFolded(b, atB);
    if (nextA != nextB) return nextA < nextB ? -1 : 1;
  }
  if (atA < a.size()) return 1;
  return atB < b.size() ? -1 : 0;
}

}  // namespace

namespace runtime::data {

std::string FoldName(std::string_view name) {
  std::string folded;
  folded.reserve(name.size());
  for (std::size_t at = 0; at < name.size();) {
    const char32_t character = NextFolded(name, at);
    if (character >= kFirstBadByte)
      folded.push_back(static_cast<char>(character - kFirstBadByte));
    else
      AppendUtf8(folded, character);
  }
  return folded;
}

bool IsReservedWord(std::string_view name) {
  static constexpr std::array<std::string_view, 13> kReserved = {"all", "and", "by",  "eq", "ge", "gt",  "le",
                                                                 "lt",  "ne",  "not", "or", "to", "with"};
  if (name.size() > 4) return false;
  const std::string folded = FoldName(name);
  return std::find(kReserved.begin(), kReserved.end(), folded) != kReserved.end();
}

bool MayBeginName(char32_t character) {
  if (character < 0x80) {
    return (character >= 'a' && character <= 'z') || (character >= 'A' && character <= 'Z') || character == '@' ||
           character == '#';
  }
  return u_isalpha(static_cast<UChar32>(character)) != 0;
}

bool MayContinueName(char32_t character) {
  if (MayBeginName(character)) return true;
  if (character < 0x80)
    return (character >= '0' && character <= '9') || character == '.' || character == '_' || character == '$';
  return u_isdigit(static_cast<UChar32>(character)) != 0;
}

}  // namespace runtime::data

int ValidateMAVOName(const char* name) {
  if (name == nullptr) return 1;
  const std::string_view text(name);
  if (text.empty() || text.size() > runtime::data::kMostNameBytes) return 1;
  for (std::size_t at = 0; at < text.size();) {
    const runtime::data::Utf8Step step = runtime::data::StepUtf8(text, at);
    if (!step.valid) return 1;
    if (at == 0 ? !runtime::data::MayBeginName(step.character) : !runtime::data::MayContinueName(step.character))
      return 1;
    at += step.length;
  }
  if (text.back() == '.') return 1;
  return runtime::data::IsReservedWord(text) ? 1 : 0;
}

MavoVarName::MavoVarName(const char* name) : fText(name) {}
MavoVarName::MavoVarName(const std::string& name) : fText(name) {}
MavoVarName::~MavoVarName() = default;
MavoVarName::MavoVarName(const MavoVarName&) = default;
MavoVarName::MavoVarName(MavoVarName&&) noexcept = default;
MavoVarName& MavoVarName::operator=(const MavoVarName&) = default;
MavoVarName& MavoVarName::operator=(MavoVarName&&) noexcept = default;

int MAVOMBstricmp_A(const char* a, const char* b) { return CompareFolded(a, b); }

int MAVOMBstrnicmp_A(const char* a, const char* b, std::size_t length) {
  return CompareFolded(std::string_view(a, strnlen(a, length)), std::string_view(b, strnlen(b, length)));
}

void MAVOMBCopyToFixed_A(char* buffer, std::size_t bufferSize, const char* text, std::size_t length) {
  std::size_t copied = length;
  if (copied > bufferSize) {
    copied = bufferSize;
    // The first byte left out must begin a character; a character has at most three further bytes.
    for (int back = 0; back < 3 && copied > 0 && runtime::data::IsUtf8Continuation(text[copied]); ++back) --copied;
  }
  std::memcpy(buffer, text, copied);
}
