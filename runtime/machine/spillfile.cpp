#include "runtime/machine/spillfile.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <mutex>

#include <fcntl.h>
#include <fmt/format.h>
#include <unistd.h>

namespace runtime::machine {

namespace {

std::string FolderOfTemporaryFiles() {
  const char* const folder = std::getenv("TMPDIR");
  return folder != nullptr && *folder != '\0' ? folder : "/tmp";
}

[[noreturn]] void Fail(const char* what, int error) {
  throw SpillError(fmt::format(
      "{}: the temporary file {}: {}; set TMPDIR to a folder with room, or raise --memory-limit if it is set",
      FolderOfTemporaryFiles(), what, std::strerror(error)));
}

}  // namespace

int OpenNamelessFile() {
  const std::string folder = FolderOfTemporaryFiles();
#ifdef O_TMPFILE
  const int nameless = open(folder.c_str(), O_TMPFILE | O_RDWR | O_CLOEXEC | O_EXCL, 0600);
  if (nameless >= 0) return nameless;
#endif
  std::string name = folder + "/codebook-XXXXXX";
  const int named = mkostemp(name.data(), O_CLOEXEC);
  if (named < 0) Fail("cannot be made", errno);
  unlink(name.c_str());
  return named;
}

bool CanOpenNamelessFile() {
  try {
    close(OpenNamelessFile());
    return true;
  } catch (const SpillError&) {
    return false;
  }
}

void WriteAll(int descriptor, const void* bytes, std::size_t count) {
  const char* from = static_cast<const char*>(bytes);
  while (count > 0) {
    const ssize_t now = write(descriptor, from, count);
    if (now < 0 && errno == EINTR) continue;
    if (now < 0) Fail("cannot be written", errno);
    from += now;
    count -= static_cast<std::size_t>(now);
  }
}

struct SpillFile::File {
  std::mutex mutex;
  int descriptor = -1;
  std::uint64_t size = 0;
};

SpillFile::SpillFile() : fFile(std::make_unique<File>()) {}

SpillFile::~SpillFile() {
  if (fFile->descriptor >= 0) close(fFile->descriptor);
}

std::uint64_t SpillFile::Append(const void* bytes, std::size_t count) {
  std::uint64_t offset = 0;
  {
    const std::lock_guard lock(fFile->mutex);
    if (fFile->descriptor < 0) fFile->descriptor = OpenNamelessFile();
    offset = fFile->size;
    fFile->size += count;
  }
  const char* from = static_cast<const char*>(bytes);
  for (std::size_t written = 0; written < count;) {
    const ssize_t now =
        pwrite(fFile->descriptor, from + written, count - written, static_cast<off_t>(offset + written));
    if (now < 0 && errno == EINTR) continue;
    if (now < 0) Fail("cannot be written", errno);
    written += static_cast<std::size_t>(now);
  }
  return offset;
}

void SpillFile::Read(std::uint64_t offset, void* bytes, std::size_t count) const {
  char* const to = static_cast<char*>(bytes);
  for (std::size_t done = 0; done < count;) {
    const ssize_t now = pread(fFile->descriptor, to + done, count - done, static_cast<off_t>(offset + done));
    if (now < 0 && errno == EINTR) continue;
    if (now < 0) Fail("cannot be read", errno);
    if (now == 0) Fail("cannot be read", EIO);
    done += static_cast<std::size_t>(now);
  }
}

std::uint64_t SpillFile::size() const {
  const std::lock_guard lock(fFile->mutex);
  return fFile->size;
}

}  // namespace runtime::machine
