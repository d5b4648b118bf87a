// The words of the HTML page that its script asks for.
#pragma once

#include <vector>

namespace runtime::output {

/// In English; each of them once. `^1` and `^2` are places that the script fills.
const std::vector<const char*>& PageWords();

}  // namespace runtime::output
