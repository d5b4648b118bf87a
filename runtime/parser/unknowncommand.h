// What to say when no procedure has the name that a command begins with.
#pragma once

#include <string>
#include <vector>

#include "runtime/parser/commandtext.h"

namespace runtime::parser {

/// The whole message, with place and caret: the name found, the nearest of the known ones, and those.
/// REQUIRES: at least one known name.
std::string UnknownCommandMessage(const ReadCommand& command, const std::vector<std::string>& known);

}  // namespace runtime::parser
