// Texts from data made harmless for a terminal.
#pragma once

#include <string>
#include <string_view>

namespace runtime::output {

enum class LineEnds { Keep, Escape };

/// The text with everything visible that a terminal would obey or not show: control characters and escape sequences,
/// marks of the writing direction, characters without a shape stand as \x1b, \u202e, \U000e0041 (so that two texts that
/// differ look different); bytes that are no UTF-8 as U+FFFD; a tab as four blanks. Without UTF-8 every character
/// beyond ASCII stands as such an escape too. Line ends (LF, CR LF) are kept as LF, or escaped. Backslashes of the text
/// stay as they are.
std::string EscapeForTerminal(std::string_view text, bool utf8, LineEnds lineEnds);

/// A character as such an escape.
void AppendVisibleEscape(std::string& text, char32_t character);

}  // namespace runtime::output
