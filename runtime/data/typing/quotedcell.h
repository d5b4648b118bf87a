// Texts from data files, made fit to stand in a message.
#pragma once

#include <string>
#include <string_view>

namespace runtime::data {

/// The text in double quotes, shortened to some forty characters. Control characters, marks of writing direction and
/// bytes that are no UTF-8 are written as escapes (\n, \u202e, \xff).
std::string QuotedCell(std::string_view text);

}  // namespace runtime::data
