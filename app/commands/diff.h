// codebook diff
#pragma once

#include "app/commands/command.h"

namespace app {

/// Tells what differs between two waves of a dataset. 0: nothing, 1: something. Throws UsageError, DataError,
/// OutputError.
int RunDiff(int argc, const char* const* argv, const Saying& say);

}  // namespace app
