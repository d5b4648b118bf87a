// Fields of CSV.
#pragma once

#include <string>
#include <string_view>

namespace runtime::output {

/// Appends a text as a field, quoted where it needs to be or is empty. A text that a spreadsheet would take for a
/// formula, one that begins with = + - @ (also the full-width ones), a tab, CR or LF, gets an apostrophe in front, and
/// so does one that begins with apostrophes and such a character behind them; so taking one apostrophe away from a text
/// of that form gives the text back. Control characters but tabs and line ends, and marks of the writing direction,
/// become visible escapes (\x1b), bytes that are no UTF-8 U+FFFD.
void AppendCsvText(std::string& csv, std::string_view text);

/// Appends the text of a number or of a fixed word as a field, with nothing in front.
void AppendCsvPlain(std::string& csv, std::string_view text);

/// Appends the shortest number that reads back as the same double; nothing for NaN and infinities.
void AppendCsvNumber(std::string& csv, double number);

}  // namespace runtime::output
