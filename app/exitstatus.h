// What the program's exit status says. Documented in docs/reference/command-line.md.
#pragma once

namespace app {

enum ExitStatus : int {
  kDone = 0,            // also with warnings, and with an error message that did not stop the command
  kCommandStopped = 1,  // a command stopped with an error
  kWrongUse = 2,        // of the command line
  kNoData = 3,          // data or dictionary could not be read
  kNoOutput = 4,        // output could not be written
  kInternal = 70,       // an internal check failed
  kInterrupted = 130,
};

}  // namespace app
