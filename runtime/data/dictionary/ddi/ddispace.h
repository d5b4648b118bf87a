// White space in the texts of a DDI-Codebook.
#pragma once

#include <string>
#include <string_view>

namespace runtime::data {

/// As labels and codes are read: one line, runs of blanks, tabs and line ends as one blank, none around.
std::string DdiLine(std::string_view text);

/// As all other texts are read: lines end with LF and have no blanks or tabs around, and the first and last are not
/// empty.
std::string DdiLines(std::string_view text);

}  // namespace runtime::data
