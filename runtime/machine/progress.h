// How far a long piece of work has come.
#pragma once

#include <cstdint>
#include <functional>

namespace runtime::machine {

struct Progress {
  std::int64_t cases = 0;  // done so far
  double share = 0.0;      // of the work, 0 to 1; never falling within one piece of work
};

/// Called now and then, a few hundred times at most a second, by one thread at a time, not always the same. May be
/// empty. Must be quick and not throw.
using ProgressListener = std::function<void(const Progress&)>;

}  // namespace runtime::machine
