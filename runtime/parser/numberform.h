// Which words are numbers, and which of those are integers.
#pragma once

#include <optional>
#include <string_view>

namespace runtime::parser {

/// An optional sign, decimal digits with at most one period among or around them, an optional exponent: "-5", "2.5",
/// ".5", "1e3".
bool IsNumberForm(std::string_view text);

/// An optional sign and digits whose value fits 32 bits; none for anything else ("5.0", "1e3", "", "99999999999").
std::optional<int> ReadInteger(std::string_view text);

}  // namespace runtime::parser
