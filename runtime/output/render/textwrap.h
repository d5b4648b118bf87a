// Texts broken into lines.
#pragma once

#include <string_view>
#include <vector>

namespace runtime::output {

/// The lines of a harmless text (terminaltext.h) in at most `width` columns each. Line ends of the text stay (one at
/// its very end ends the last line and begins no new one); too long a line is broken between words, at the separators
/// of a path, and by the rules of the script where there are no blanks; a word that is too long for a line is broken
/// between characters as a reader sees them. Only a single character wider than `width` is wider than asked for. Blanks
/// at a break are left out, nothing else is. At least one line. The views stand in `text`. REQUIRES: width >= 1.
std::vector<std::string_view> WrapText(std::string_view text, int width);

/// The greatest width of a line of the text as it stands.
int WidestLine(std::string_view text);

/// The width of the longest piece between two blanks or line ends.
int LongestWord(std::string_view text);

}  // namespace runtime::output
