#include "runtime/data/source/odbc/credentials.h"

#include <cstdlib>
#include <string_view>

#include <fcntl.h>
#include <fmt/format.h>
#include <termios.h>
#include <unistd.h>

#include "runtime/data/open.h"

namespace runtime::data {
namespace {

/// The terminal of the run, whatever its streams are, without echo. Keys come one by one and none is a signal, so that
/// no interruption leaves it silent.
class SilentTerminal {
 public:
  SilentTerminal() : fFile(open("/dev/tty", O_RDWR | O_NOCTTY | O_CLOEXEC)) {
    if (fFile < 0 || tcgetattr(fFile, &fBefore) != 0) return;
    termios silent = fBefore;
    silent.c_lflag &= ~static_cast<tcflag_t>(ECHO | ICANON | ISIG | IEXTEN);
    silent.c_cc[VMIN] = 1;
    silent.c_cc[VTIME] = 0;
    fIsSilent = tcsetattr(fFile, TCSAFLUSH, &silent) == 0;
  }
  ~SilentTerminal() {
    if (fIsSilent) tcsetattr(fFile, TCSAFLUSH, &fBefore);
    if (fFile >= 0) close(fFile);
  }
  SilentTerminal(const SilentTerminal&) = delete;
  SilentTerminal& operator=(const SilentTerminal&) = delete;

  bool isSilent() const { return fIsSilent; }
  void Write(std::string_view text) const {
    while (!text.empty()) {
      const ssize_t written = write(fFile, text.data(), text.size());
      if (written <= 0) return;
      text.remove_prefix(static_cast<std::size_t>(written));
    }
  }
  /// '\0' when there are no more.
  char Key() const {
    char key = '\0';
    return read(fFile, &key, 1) == 1 ? key : '\0';
  }

 private:
  int fFile = -1;
  termios fBefore{};
  bool fIsSilent = false;
};

void RemoveLastCharacter(std::string& text) {
  const auto isContinuation = [](char byte) { return (static_cast<unsigned char>(byte) & 0xC0U) == 0x80U; };
  while (!text.empty() && isContinuation(text.back())) text.pop_back();
  if (!text.empty()) text.pop_back();
}

}  // namespace

Credentials::Credentials() {
  if (const char* const given = std::getenv("CODEBOOK_ODBC_USER")) user = given;
  const char* const given = std::getenv("CODEBOOK_ODBC_PASSWORD");
  if (given == nullptr) return;
  const std::string_view text = given;
  if (text.size() > Secret<char>::kLongest / 4) throw DataError("CODEBOOK_ODBC_PASSWORD: the password is too long");
  password.text() = text;
  hasPassword = true;
}

bool AskPassword(const std::string& source, Secret<char>& password) {
  constexpr char kInterrupt = '\x03';
  constexpr char kEnd = '\x04';
  constexpr char kDeleteAll = '\x15';
  constexpr char kDelete = '\x7f';
  constexpr std::size_t kLongest = 1024;
  const SilentTerminal terminal;
  if (!terminal.isSilent()) return false;
  terminal.Write(fmt::format("Password for {}: ", source));
  std::string& text = password.text();
  text.clear();
  while (true) {
    const char key = terminal.Key();
    switch (key) {
      case '\r':
      case '\n':
        terminal.Write("\n");
        return true;
      case '\0':
      case kInterrupt:
      case kEnd:
        terminal.Write("\n");
        throw DataError(fmt::format("{}: no password was given", source));
      case kDeleteAll:
        text.clear();
        break;
      case kDelete:
      case '\b':
        RemoveLastCharacter(text);
        break;
      default:
        if (text.size() < kLongest) text += key;
    }
  }
}

}  // namespace runtime::data
