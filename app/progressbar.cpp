#include "app/progressbar.h"

#include <chrono>
#include <optional>
#include <string_view>

#include <sys/ioctl.h>
#include <unistd.h>

#include "app/interrupt.h"
#include "app/terminal.h"

namespace app {

namespace {

constexpr auto kBetweenDrawings = std::chrono::milliseconds(200);
constexpr std::string_view kLineStart = "\r";
constexpr std::string_view kClearToLineEnd = "\x1b[K";

double Now() { return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count(); }

bool CanRedrawLines() { return ::isatty(STDERR_FILENO) != 0 && TerminalMovesCursor(); }

/// A program in the background shares the terminal with whoever is in front.
bool InForeground() {
  const pid_t group = ::tcgetpgrp(STDERR_FILENO);
  return group < 0 || group == ::getpgrp();  // not known when the terminal is not the one that controls us
}

int Columns() {
  winsize size{};
  return ::ioctl(STDERR_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0 ? size.ws_col : 80;
}

void Write(const std::string& text) { (void)!::write(STDERR_FILENO, text.data(), text.size()); }

}  // namespace

ProgressBar::ProgressBar(bool wanted, bool utf8) : fDrawing(utf8) {
  if (wanted && CanRedrawLines()) fThread = std::thread([this] { Redraw(); });
}

ProgressBar::~ProgressBar() { End(); }

void ProgressBar::BeginStage(const std::string& name) {
  const std::lock_guard lock(fMutex);
  fDrawing.BeginStage(name, Now());
}

runtime::machine::ProgressListener ProgressBar::Listener() {
  if (!fThread.joinable()) return {};
  return [this](const runtime::machine::Progress& progress) {
    const std::lock_guard lock(fMutex);
    fDrawing.Advance(progress);
  };
}

void ProgressBar::Redraw() {
  bool shown = false;
  std::unique_lock lock(fMutex);
  while (!fWakeUp.wait_for(lock, kBetweenDrawings, [this] { return fEnds; })) {
    // The last column stays free: some terminals go to the next line when it is written.
    const std::optional<std::string> line = fDrawing.Line(Now(), Columns() - 1);
    if (!line || !InForeground()) continue;
    // A terminal may be stopped for as long as its user likes; the work goes on meanwhile.
    lock.unlock();
    NoteProgressLine(true);
    Write(std::string(kLineStart) + *line + std::string(kClearToLineEnd));
    shown = true;
    lock.lock();
  }
  if (shown) Write(std::string(kLineStart) + std::string(kClearToLineEnd));
  NoteProgressLine(false);
}

void ProgressBar::End() {
  if (!fThread.joinable()) return;
  {
    const std::lock_guard lock(fMutex);
    fEnds = true;
  }
  fWakeUp.notify_one();
  fThread.join();
}

}  // namespace app
