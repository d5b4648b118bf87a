// The program that shows a long report a page at a time on a terminal.
#pragma once

#include <string>

#include "app/reportsink.h"

namespace app {

/// The shell command of the pager that is wanted on a terminal: CODEBOOK_PAGER, else PAGER, else less where it is
/// installed and the terminal can move its cursor. Empty: none is, as when the first of the variables that is set is
/// empty or "cat".
std::string WantedPager();

/// Calls `write` with a stream into the pager and comes back when the pager has ended; that it ends before it has read
/// all is no error. Meanwhile an interrupt is the pager's alone. Where the variables LESS and LV are not set, the pager
/// finds them with what lets it show colours and end by itself when all fits on the page. False when the pager could
/// not be started: then nothing was shown. Throws OutputError when writing to it failed otherwise, and what `write`
/// throws, once the pager has ended.
bool ShowThroughPager(const std::string& command, const WriteReport& write);

}  // namespace app
