// The words that name data on the command line of a command.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "runtime/data/open.h"

namespace CLI {
class App;
}

namespace app {

/// DATA..., --table and --threads. Lives as long as the parser that it was added to.
struct DataWords {
  std::vector<std::string> paths;
  std::string table;
  int threads = 0;

  void AddTo(CLI::App& cli);
  /// REQUIRES: the command line was parsed.
  void Give(runtime::data::OpenOptions& options) const;
};

/// Throws UsageError when the output is one of the files that are read.
void CheckThatInputStays(const std::optional<std::string>& output, const runtime::data::OpenOptions& inputs);

}  // namespace app
