#include "app/terminal.h"

#include <cstdlib>
#include <string_view>

#include <langinfo.h>
#include <sys/ioctl.h>
#include <unistd.h>

namespace app {

namespace {

constexpr int kDefaultWidth = 80;

int TerminalWidth() {
  winsize size{};
  if (::ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0) return size.ws_col;
  return kDefaultWidth;
}

bool NoColourWanted() {
  const char* const wish = std::getenv("NO_COLOR");
  return wish != nullptr && *wish != '\0';
}

}  // namespace

bool TerminalMovesCursor() {
  const char* const terminal = std::getenv("TERM");
  return terminal != nullptr && *terminal != '\0' && std::string_view(terminal) != "dumb";
}

bool StandardOutputIsTerminal() { return ::isatty(STDOUT_FILENO) != 0; }

runtime::output::RenderOptions DescribeTerminal(std::optional<int> askedWidth, bool toFile) {
  runtime::output::RenderOptions options;
  const bool onTerminal = !toFile && StandardOutputIsTerminal();
  options.width = askedWidth.value_or(onTerminal ? TerminalWidth() : kDefaultWidth);
  options.utf8 = std::string_view(nl_langinfo(CODESET)) == "UTF-8";
  options.color = onTerminal && TerminalMovesCursor() && !NoColourWanted();
  return options;
}

}  // namespace app
