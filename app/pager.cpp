#include "app/pager.h"

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <string_view>
#include <utility>
#include <vector>

#include <fcntl.h>
#include <fmt/format.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include "app/terminal.h"

namespace app {

namespace {

constexpr const char* kShell = "/bin/sh";
// What a shell ends with when it cannot run its command.
constexpr int kNotExecutable = 126;
constexpr int kNotFound = 127;

bool IsInstalled(std::string_view program) {
  const char* const path = std::getenv("PATH");
  std::string_view folders = path == nullptr ? "/usr/bin:/bin" : path;
  while (!folders.empty()) {
    const std::string_view folder = folders.substr(0, folders.find(':'));
    if (!folder.empty() && ::access((std::string(folder) + "/" + std::string(program)).c_str(), X_OK) == 0) return true;
    folders.remove_prefix(std::min(folder.size() + 1, folders.size()));
  }
  return false;
}

/// The environment with what a pager needs, unless it says so itself.
class PagerEnvironment {
 public:
  PagerEnvironment() {
    for (char** entry = environ; *entry != nullptr; ++entry) fPointers.push_back(*entry);
    Add("LESS", fLess);
    Add("LV", fLv);
    fPointers.push_back(nullptr);
  }

  char* const* entries() { return fPointers.data(); }

 private:
  void Add(const char* name, std::string& entry) {
    if (std::getenv(name) == nullptr) fPointers.push_back(entry.data());
  }

  std::string fLess = "LESS=FRX";  // end when all fits, colours as they are, leave the page standing
  std::string fLv = "LV=-c";       // colours as they are
  std::vector<char*> fPointers;
};

/// A signal that this program passes over for a while.
class IgnoredSignal {
 public:
  explicit IgnoredSignal(int signal) : fSignal(signal) {
    struct sigaction ignored {};
    ignored.sa_handler = SIG_IGN;
    ::sigaction(fSignal, &ignored, &fBefore);
  }
  ~IgnoredSignal() { ::sigaction(fSignal, &fBefore, nullptr); }
  IgnoredSignal(const IgnoredSignal&) = delete;
  IgnoredSignal& operator=(const IgnoredSignal&) = delete;

 private:
  int fSignal;
  struct sigaction fBefore {};
};

/// Where a process finds itself at its start: the reading end of the pipe as its input, and the signals that this
/// program passes over as they are for any other.
class PagerStart {
 public:
  explicit PagerStart(int input) {
    ::posix_spawn_file_actions_init(&fActions);
    ::posix_spawn_file_actions_adddup2(&fActions, input, STDIN_FILENO);
    ::posix_spawnattr_init(&fAttributes);
    sigset_t signals;
    sigemptyset(&signals);
    for (const int signal : {SIGINT, SIGPIPE, SIGXFSZ}) sigaddset(&signals, signal);
    ::posix_spawnattr_setsigdefault(&fAttributes, &signals);
    ::posix_spawnattr_setflags(&fAttributes, POSIX_SPAWN_SETSIGDEF);
  }
  ~PagerStart() {
    ::posix_spawn_file_actions_destroy(&fActions);
    ::posix_spawnattr_destroy(&fAttributes);
  }
  PagerStart(const PagerStart&) = delete;
  PagerStart& operator=(const PagerStart&) = delete;

  /// 0, or an error number.
  int Run(const std::string& command, pid_t& process) {
    PagerEnvironment environment;
    std::string shell = "sh";
    std::string option = "-c";
    std::string text = command;
    char* const arguments[] = {shell.data(), option.data(), text.data(), nullptr};
    return ::posix_spawn(&process, kShell, &fActions, &fAttributes, arguments, environment.entries());
  }

 private:
  posix_spawn_file_actions_t fActions{};
  posix_spawnattr_t fAttributes{};
};

/// A pager that runs and is waited for, whatever happens to the report.
class RunningPager {
 public:
  explicit RunningPager(const std::string& command) {
    int ends[2];
    if (::pipe2(ends, O_CLOEXEC) != 0) return;
    fInput = ends[1];
    if (PagerStart(ends[0]).Run(command, fProcess) != 0) fProcess = 0;
    ::close(ends[0]);
  }
  ~RunningPager() { End(); }
  RunningPager(const RunningPager&) = delete;
  RunningPager& operator=(const RunningPager&) = delete;

  bool isRunning() const { return fProcess > 0; }
  int input() const { return fInput; }

  /// No more is to come. The status that the pager ended with.
  int End() {
    if (fInput >= 0) ::close(std::exchange(fInput, -1));
    while (fProcess > 0 && ::waitpid(fProcess, &fStatus, 0) < 0 && errno == EINTR) {
    }
    fProcess = 0;
    return fStatus;
  }

 private:
  int fInput = -1;
  pid_t fProcess = 0;
  int fStatus = 0;
};

}  // namespace

std::string WantedPager() {
  for (const char* name : {"CODEBOOK_PAGER", "PAGER"}) {
    const char* const pager = std::getenv(name);
    if (pager != nullptr) return std::string_view(pager) == "cat" ? "" : pager;
  }
  return TerminalMovesCursor() && IsInstalled("less") ? "less" : "";
}

bool ShowThroughPager(const std::string& command, const WriteReport& write) {
  const IgnoredSignal interrupts(SIGINT);
  RunningPager pager(command);
  if (!pager.isRunning()) return false;
  const int error = WriteReportTo(pager.input(), write);
  const int status = pager.End();
  if (WIFEXITED(status) && (WEXITSTATUS(status) == kNotFound || WEXITSTATUS(status) == kNotExecutable)) return false;
  if (error != 0 && error != EPIPE)
    throw OutputError(fmt::format("The report could not be written to the pager: {}.", std::strerror(error)));
  return true;
}

}  // namespace app
