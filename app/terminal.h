// What the place that text goes to can show.
#pragma once

#include <optional>

#include "runtime/output/render/renderer.h"

namespace app {

bool StandardOutputIsTerminal();

/// Width: as asked, else the terminal's on standard output, else 80. UTF-8 by the locale, colour only on a terminal.
runtime::output::RenderOptions DescribeTerminal(std::optional<int> askedWidth, bool toFile);

}  // namespace app
