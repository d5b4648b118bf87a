// How many columns of a terminal a text takes.
#pragma once

#include <string_view>

namespace runtime::output {

/// Columns of one line of harmless text (terminaltext.h): East Asian wide and full-width characters and emoji take two,
/// combining marks and joiners none, a joined emoji sequence two in all, all else one.
int DisplayWidth(std::string_view line);

}  // namespace runtime::output
