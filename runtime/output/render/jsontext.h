// JSON's texts and numbers.
#pragma once

#include <string>
#include <string_view>

namespace runtime::output {

/// Appends a quoted JSON string. Bytes that are no UTF-8 become U+FFFD. Control characters, bidi marks, line and
/// paragraph separators are escaped as \uXXXX, so that the JSON may be looked at on a terminal.
void AppendJsonText(std::string& json, std::string_view text);

/// Appends the shortest number that reads back as the same double; null for NaN and infinities.
void AppendJsonNumber(std::string& json, double number);

}  // namespace runtime::output
