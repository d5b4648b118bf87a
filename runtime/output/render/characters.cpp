#include "runtime/output/render/characters.h"

#include <unicode/uchar.h>

namespace runtime::output {

namespace {

// What the first byte of a sequence says: how many bytes follow, and in which range the first of them lies (the rest
// lie between 80 and BF), so that no overlong form, surrogate or value above U+10FFFF passes.
struct Lead {
  int trails;  // 0: no sequence begins so
  unsigned char low;
  unsigned char high;
};

Lead LeadOf(unsigned char byte) {
  if (byte < 0xC2 || byte > 0xF4) return {0, 0, 0};
  if (byte < 0xE0) return {1, 0x80, 0xBF};
  if (byte == 0xE0) return {2, 0xA0, 0xBF};
  if (byte == 0xED) return {2, 0x80, 0x9F};
  if (byte < 0xF0) return {2, 0x80, 0xBF};
  if (byte == 0xF0) return {3, 0x90, 0xBF};
  if (byte == 0xF4) return {3, 0x80, 0x8F};
  return {3, 0x80, 0xBF};
}

}  // namespace

char32_t NextCharacter(std::string_view text, std::size_t& at, bool& valid) {
  const auto first = static_cast<unsigned char>(text[at++]);
  valid = true;
  if (first < 0x80) return first;
  Lead lead = LeadOf(first);
  valid = lead.trails > 0;
  char32_t character = first & (0x3FU >> lead.trails);
  for (int i = 0; valid && i < lead.trails; ++i) {
    const auto trail = at < text.size() ? static_cast<unsigned char>(text[at]) : static_cast<unsigned char>(0);
    valid = trail >= lead.low && trail <= lead.high;
    if (!valid) break;
    character = (character << 6) | (trail & 0x3FU);
    lead.low = 0x80;
    lead.high = 0xBF;
    ++at;
  }
  return valid ? character : kReplacementCharacter;
}

bool IsControl(char32_t c) {
  if (c < 0x20 || (c >= 0x7F && c <= 0x9F)) return true;
  if (c < 0x061C) return false;
  return c == 0x061C || c == 0x200E || c == 0x200F || (c >= 0x2028 && c <= 0x202E) || (c >= 0x2066 && c <= 0x2069);
}

bool IsHidden(char32_t c) {
  if (IsControl(c)) return true;
  if (c < 0xAD) return false;
  if (c == 0x200C || c == 0x200D || c == 0x034F) return false;
  const auto point = static_cast<UChar32>(c);
  if (u_hasBinaryProperty(point, UCHAR_VARIATION_SELECTOR)) return false;
  return u_hasBinaryProperty(point, UCHAR_DEFAULT_IGNORABLE_CODE_POINT) ||
         u_hasBinaryProperty(point, UCHAR_NONCHARACTER_CODE_POINT) || (c >= 0xFFF9 && c <= 0xFFFB);
}

}  // namespace runtime::output
