#include "app/reportsink.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <streambuf>
#include <utility>

#include <fcntl.h>
#include <fmt/format.h>
#include <sys/stat.h>
#include <unistd.h>

#include "app/interrupt.h"

namespace app {

namespace {

/// A stream over a file descriptor that remembers why writing failed.
class DescriptorBuffer : public std::streambuf {
 public:
  explicit DescriptorBuffer(int descriptor) : fDescriptor(descriptor) {
    setp(fBytes.data(), fBytes.data() + fBytes.size());
  }

  int error() const { return fError; }

 protected:
  int_type overflow(int_type c) override {
    if (sync() != 0) return traits_type::eof();
    if (!traits_type::eq_int_type(c, traits_type::eof())) {
      *pptr() = traits_type::to_char_type(c);
      pbump(1);
    }
    return traits_type::not_eof(c);
  }

  int sync() override {
    const char* from = pbase();
    while (from < pptr() && fError == 0) {
      const ssize_t written = ::write(fDescriptor, from, static_cast<std::size_t>(pptr() - from));
      if (written >= 0)
        from += written;
      else if (errno != EINTR)
        fError = errno;
    }
    setp(fBytes.data(), fBytes.data() + fBytes.size());
    return fError == 0 ? 0 : -1;
  }

 private:
  int fDescriptor;
  int fError = 0;
  std::array<char, 1 << 16> fBytes;
};

void WriteTo(int descriptor, const std::string& name, const WriteReport& write) {
  if (const int error = WriteReportTo(descriptor, write); error != 0)
    throw OutputError(fmt::format("The report could not be written to {}: {}.", name, std::strerror(error)));
}

/// A file beside the target, removed again unless it was renamed to it.
class TemporaryFile {
 public:
  explicit TemporaryFile(const std::string& target) : fTarget(target) {
    const std::filesystem::path path(target);
    const std::string pattern = (path.parent_path() / ("." + path.filename().string() + ".XXXXXX")).string();
    fDescriptor = MakeTemporaryFile(pattern);
    if (fDescriptor < 0) throw OutputError(fmt::format("{} cannot be written: {}.", target, std::strerror(errno)));
  }

  ~TemporaryFile() {
    if (fDescriptor >= 0) ::close(fDescriptor);
    if (!fRenamed) ::unlink(TemporaryFileName());
    ForgetTemporaryFile();
  }

  TemporaryFile(const TemporaryFile&) = delete;
  TemporaryFile& operator=(const TemporaryFile&) = delete;

  int descriptor() const { return fDescriptor; }

  void BecomeTarget() {
    const mode_t mask = ::umask(0);
    ::umask(mask);
    struct stat old {};
    const mode_t mode = ::stat(fTarget.c_str(), &old) == 0 ? old.st_mode & 07777 : 0666 & ~mask;
    const bool kept = ::fchmod(fDescriptor, mode) == 0 && ::fsync(fDescriptor) == 0;
    const bool closed = ::close(std::exchange(fDescriptor, -1)) == 0;
    if (!kept || !closed || ::rename(TemporaryFileName(), fTarget.c_str()) != 0)
      throw OutputError(fmt::format("{} cannot be written: {}.", fTarget, std::strerror(errno)));
    fRenamed = true;
  }

 private:
  std::string fTarget;
  int fDescriptor = -1;
  bool fRenamed = false;
};

}  // namespace

int WriteReportTo(int descriptor, const WriteReport& write) {
  DescriptorBuffer buffer(descriptor);
  std::ostream stream(&buffer);
  write(stream);
  stream.flush();
  if (buffer.error() != 0) return buffer.error();
  return stream ? 0 : EIO;
}

void WriteReportTo(const std::optional<std::string>& fileName, const WriteReport& write) {
  if (!fileName) {
    WriteTo(STDOUT_FILENO, "standard output", write);
    return;
  }
  std::error_code ignored;
  const std::filesystem::file_status status = std::filesystem::status(*fileName, ignored);
  if (std::filesystem::is_directory(status)) throw OutputError(fmt::format("{} is a directory.", *fileName));
  if (std::filesystem::exists(status) && !std::filesystem::is_regular_file(status)) {
    const int descriptor = ::open(fileName->c_str(), O_WRONLY | O_CLOEXEC);
    if (descriptor < 0) throw OutputError(fmt::format("{} cannot be written: {}.", *fileName, std::strerror(errno)));
    WriteTo(descriptor, *fileName, write);
    if (::close(descriptor) != 0)
      throw OutputError(fmt::format("{} cannot be written: {}.", *fileName, std::strerror(errno)));
    return;
  }
  if (std::filesystem::exists(status) && ::access(fileName->c_str(), W_OK) != 0)
    throw OutputError(fmt::format("{} cannot be written: {}.", *fileName, std::strerror(errno)));
  // Through a link, so that the link stays and its target is replaced.
  const std::string target =
      std::filesystem::exists(status) ? std::filesystem::canonical(*fileName).string() : *fileName;
  TemporaryFile temporary(target);
  WriteTo(temporary.descriptor(), *fileName, write);
  temporary.BecomeTarget();
}

void SecureStandardStreams() {
  // Read-only even for output: writing to it fails, as it would have to a closed stream.
  for (int descriptor = 0; descriptor <= 2; ++descriptor)
    if (::fcntl(descriptor, F_GETFD) < 0) (void)!::open("/dev/null", O_RDONLY);
}

void ReportClosedPipes() { std::signal(SIGPIPE, SIG_IGN); }

void ReportLimitedFiles() { std::signal(SIGXFSZ, SIG_IGN); }

}  // namespace app
