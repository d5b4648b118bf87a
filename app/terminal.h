// What the place that text goes to can show.
#pragma once

#include <optional>

#include "runtime/output/render/renderer.h"

namespace app {

bool StandardOutputIsTerminal();
/// A terminal that does what escape sequences tell it, by TERM.
bool TerminalMovesCursor();

/// Width: as asked, else the terminal's on standard output, else 80. UTF-8 by the locale, colour only on a terminal
/// that has escape sequences and only when NO_COLOR is unset or empty.
runtime::output::RenderOptions DescribeTerminal(std::optional<int> askedWidth, bool toFile);

}  // namespace app
