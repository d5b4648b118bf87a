#include "runtime/output/render/xlsx/temporaryfiles.h"

#include <cerrno>
#include <system_error>

#include <sys/types.h>
#include <unistd.h>
#include <xlsxwriter.h>

#include "runtime/machine/spillfile.h"

namespace runtime::output {
namespace {

thread_local TemporaryFiles* filesOfThread = nullptr;

}  // namespace

struct TemporaryFiles::File {
  explicit File(TemporaryFiles& owner) : files(owner) {}
  ~File() {
    if (stream != nullptr) std::fclose(stream);
  }
  File(const File&) = delete;
  File& operator=(const File&) = delete;

  void Fail() {
    if (!files.fFailure) files.fFailure = std::current_exception();
  }

  /// What cannot be written is dropped: the library would only add words of its own.
  static ssize_t Write(void* cookie, const char* bytes, std::size_t count) {
    File& file = *static_cast<File*>(cookie);
    if (file.descriptor < 0 || file.files.fFailure) return static_cast<ssize_t>(count);
    try {
      runtime::machine::WriteAll(file.descriptor, bytes, count);
    } catch (...) {
      file.Fail();
    }
    return static_cast<ssize_t>(count);
  }

  static ssize_t Read(void* cookie, char* bytes, std::size_t count) {
    File& file = *static_cast<File*>(cookie);
    if (file.descriptor < 0 || file.files.fFailure) return 0;
    ssize_t got = ::read(file.descriptor, bytes, count);
    while (got < 0 && errno == EINTR) got = ::read(file.descriptor, bytes, count);
    if (got >= 0) return got;
    try {
      throw runtime::machine::SpillError("a temporary file cannot be read: " + std::generic_category().message(errno));
    } catch (...) {
      file.Fail();
    }
    return 0;
  }

  static int Seek(void* cookie, off64_t* offset, int from) {
    const File& file = *static_cast<File*>(cookie);
    if (file.descriptor < 0) return 0;
    const off64_t place = ::lseek64(file.descriptor, *offset, from);
    if (place < 0) return -1;
    *offset = place;
    return 0;
  }

  static int Close(void* cookie) {
    File& file = *static_cast<File*>(cookie);
    if (file.descriptor >= 0) ::close(file.descriptor);
    file.descriptor = -1;
    file.stream = nullptr;
    return 0;
  }

  TemporaryFiles& files;
  int descriptor = -1;
  std::FILE* stream = nullptr;
};

TemporaryFiles::TemporaryFiles() { filesOfThread = this; }

TemporaryFiles::~TemporaryFiles() { filesOfThread = nullptr; }

void TemporaryFiles::Check() {
  for (const auto& file : fFiles)
    if (file->stream != nullptr) std::fflush(file->stream);
  if (fFailure) std::rethrow_exception(fFailure);
}

std::FILE* TemporaryFiles::Open() {
  auto file = std::make_unique<File>(*this);
  try {
    if (!fFailure) file->descriptor = runtime::machine::OpenNamelessFile();
  } catch (...) {
    file->Fail();
  }
  file->stream = ::fopencookie(file.get(), "w+b", {File::Read, File::Write, File::Seek, File::Close});
  std::FILE* const stream = file->stream;
  if (stream == nullptr && file->descriptor >= 0) ::close(file->descriptor);
  if (stream != nullptr) fFiles.push_back(std::move(file));
  return stream;
}

}  // namespace runtime::output

/// The library asks this function of its own for every temporary file, through the table of functions that a program
/// may supply itself. Its own one makes files with names, in the folder that the program runs in too when there is no
/// other.
extern "C" __attribute__((visibility("default"))) FILE* lxw_tmpfile(char*) {
  return runtime::output::filesOfThread == nullptr ? nullptr : runtime::output::filesOfThread->Open();
}
