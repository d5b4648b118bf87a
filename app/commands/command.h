// The words that stand in the place of DATA and do something else than describe a dataset.
#pragma once

#include <functional>
#include <string>
#include <vector>

namespace app {

/// Says a line on standard error, with nothing from the data raw.
using Saying = std::function<void(const std::string& text)>;

struct Command {
  const char* name;
  const char* help;  // one line
  /// `argv` begins with the command's name. Gives the exit status; throws what the program's own run throws.
  int (*run)(int argc, const char* const* argv, const Saying& say);
};

/// In the order in which the help names them.
const std::vector<Command>& Commands();

/// The command that the first argument names, null when it names none. A data file of such a name is ./NAME.
const Command* FindCommand(int argc, const char* const* argv);

}  // namespace app
