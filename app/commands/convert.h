// codebook convert
#pragma once

#include "app/commands/command.h"

namespace app {

/// Reads a dictionary file and writes it in another standard. Throws UsageError, DataError, OutputError.
int RunConvert(int argc, const char* const* argv, const Saying& say);

}  // namespace app
