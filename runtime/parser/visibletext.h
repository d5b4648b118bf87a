// Command text as it may be shown on a terminal: controls, bidi marks and ill-formed bytes are written out.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace runtime::parser {

/// One character as shown.
struct VisibleCharacter {
  std::string text;  // UTF-8; "<U+001B>" for what is not printed raw, "<FF>" for a byte that is no character
  int width = 0;     // terminal columns: 2 for wide characters, 0 for combining marks
};

/// The character at `offset`, which is moved past it. A tab is shown as four blanks.
/// REQUIRES: offset < text.size().
VisibleCharacter ShowCharacter(std::string_view text, std::size_t& offset);

/// The text as shown, cut behind `mostColumns` terminal columns with "...".
std::string ShowText(std::string_view text, int mostColumns = 60);

}  // namespace runtime::parser
