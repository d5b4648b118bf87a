// codebook check
#pragma once

#include "app/commands/command.h"

namespace app {

/// Lists what does not fit between data and dictionary. Throws UsageError, DataError, OutputError.
int RunCheck(int argc, const char* const* argv, const Saying& say);

}  // namespace app
