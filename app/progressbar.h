// The progress line on the terminal.
#pragma once

#include <condition_variable>
#include <mutex>
#include <string>
#include <thread>

#include "app/progressdrawing.h"
#include "runtime/machine/progress.h"

namespace app {

/// Shows on standard error how far the run has come, redrawn a few times a second by a thread of its own. Shows nothing
/// unless standard error is a terminal that can redraw a line, nor while the program is in its background. The methods
/// are called by one thread, the listener by any.
class ProgressBar {
 public:
  /// `wanted` false: nothing is shown. `utf8`: what the terminal's locale can show.
  ProgressBar(bool wanted, bool utf8);
  /// Ends.
  ~ProgressBar();
  ProgressBar(const ProgressBar&) = delete;
  ProgressBar& operator=(const ProgressBar&) = delete;

  void BeginStage(const std::string& name);
  /// Notes how far the present stage has come; empty when nothing is shown. Not to be called after this object's life.
  runtime::machine::ProgressListener Listener();
  /// Takes the line from the terminal, for good.
  void End();

 private:
  void Redraw();

  std::mutex fMutex;  // of all that follows but the thread
  std::condition_variable fWakeUp;
  ProgressDrawing fDrawing;
  bool fEnds = false;
  std::thread fThread;  // not running: nothing is shown
};

}  // namespace app
