// codebook schema
#pragma once

#include "app/commands/command.h"

namespace app {

/// Prints the JSON Schema of the JSON report. Throws UsageError, OutputError.
int RunSchema(int argc, const char* const* argv, const Saying& say);

}  // namespace app
