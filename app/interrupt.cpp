#include "app/interrupt.h"

#include <array>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <string_view>

#include <poll.h>
#include <unistd.h>

#include "app/exitstatus.h"

namespace app {

namespace {

enum class TemporaryFile { None, BeingMade, Exists };

// All that the handler reads stands ready, and it calls only what may be called from a handler.
std::array<char, 4096> temporaryName{};
std::atomic<TemporaryFile> temporaryFile{TemporaryFile::None};
std::atomic<bool> interrupted{false};
std::atomic<bool> progressLineShown{false};
std::atomic<bool> quiet{false};
static_assert(std::atomic<TemporaryFile>::is_always_lock_free && std::atomic<bool>::is_always_lock_free);

/// Lost when standard error does not take it at once: a stopped terminal or a full pipe must not delay the end.
void WriteWithoutWaiting(std::string_view text) {
  pollfd standardError{STDERR_FILENO, POLLOUT, 0};
  if (::poll(&standardError, 1, 0) == 1) (void)!::write(STDERR_FILENO, text.data(), text.size());
}

[[noreturn]] void EndInterrupted() {
  if (temporaryFile == TemporaryFile::Exists) ::unlink(temporaryName.data());
  if (progressLineShown) WriteWithoutWaiting("\r\x1b[K");
  if (!quiet) WriteWithoutWaiting("codebook: interrupted\n");
  ::_exit(kInterrupted);
}

extern "C" void OnInterrupt(int /*signal*/) {
  interrupted = true;
  // The name is not known yet; the thread that makes the file looks for the interrupt as soon as it is.
  if (temporaryFile == TemporaryFile::BeingMade) return;
  EndInterrupted();
}

}  // namespace

void HandleInterrupts() {
  struct sigaction action {};
  action.sa_handler = OnInterrupt;
  sigfillset(&action.sa_mask);
  ::sigaction(SIGINT, &action, nullptr);
  ::sigaction(SIGTERM, &action, nullptr);
  struct sigaction hangup {};
  if (::sigaction(SIGHUP, nullptr, &hangup) == 0 && hangup.sa_handler != SIG_IGN) ::sigaction(SIGHUP, &action, nullptr);
}

void InterruptQuietly() { quiet = true; }

void NoteProgressLine(bool shown) { progressLineShown = shown; }

int MakeTemporaryFile(const std::string& pattern) {
  if (pattern.size() >= temporaryName.size()) {
    errno = ENAMETOOLONG;
    return -1;
  }
  temporaryFile = TemporaryFile::BeingMade;
  std::memcpy(temporaryName.data(), pattern.c_str(), pattern.size() + 1);
  const int descriptor = ::mkstemp(temporaryName.data());
  const int error = errno;
  temporaryFile = descriptor >= 0 ? TemporaryFile::Exists : TemporaryFile::None;
  if (interrupted) EndInterrupted();
  errno = error;
  return descriptor;
}

const char* TemporaryFileName() { return temporaryName.data(); }

void ForgetTemporaryFile() { temporaryFile = TemporaryFile::None; }

}  // namespace app
