// codebook draft
#pragma once

#include "app/commands/command.h"

namespace app {

/// Writes a Table Schema to start from. Throws UsageError, DataError, OutputError.
int RunDraft(int argc, const char* const* argv, const Saying& say);

}  // namespace app
