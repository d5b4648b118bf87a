// The keyword that was probably meant.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace runtime::parser {

/// The keyword closest to the word, without regard to case: the fewest letters left out, added, changed or swapped with
/// their neighbour, at most one in three; an abbreviation of two letters or more is as close as one letter. Of equally
/// close ones the first; the empty string when none is close.
std::string NearestKeyword(std::string_view word, const std::vector<std::string>& keywords);

}  // namespace runtime::parser
