// Characters of a UTF-8 text, and which of them must not reach a terminal as they are.
#pragma once

#include <cstdint>
#include <string_view>

namespace runtime::output {

inline constexpr char32_t kReplacementCharacter = 0xFFFD;

/// The character that begins at `at`, which is moved behind it; kReplacementCharacter for bytes that are no UTF-8 (as
/// many bytes at once as Unicode's "maximal subpart" has). `valid` tells the two apart. REQUIRES: at < text.size().
char32_t NextCharacter(std::string_view text, std::size_t& at, bool& valid);

/// Control characters (C0, DEL, C1), marks and controls of the writing direction, line and paragraph separators.
bool IsControl(char32_t character);

/// Besides these: characters that show nothing and are needed by no script (zero width space, soft hyphen, tags, ...),
/// and code points that are no characters. Joiners and variation selectors are needed.
bool IsHidden(char32_t character);

/// True when all bytes are ASCII from blank to tilde.
inline bool IsPlainAscii(std::string_view text) {
  for (const char c : text)
    if (c < ' ' || c > '~') return false;
  return true;
}

}  // namespace runtime::output
