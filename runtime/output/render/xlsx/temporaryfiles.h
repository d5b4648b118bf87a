// The temporary files that the workbook library writes its sheets to.
#pragma once

#include <cstdio>
#include <exception>
#include <memory>
#include <vector>

namespace runtime::output {

/// As long as there is one, the library's temporary files of this thread are files without a name
/// (runtime/machine/spillfile.h). The library does not look whether they could be written, so a failure is kept here
/// and the library is let go on. At most one a thread.
class TemporaryFiles {
 public:
  TemporaryFiles();
  ~TemporaryFiles();
  TemporaryFiles(const TemporaryFiles&) = delete;
  TemporaryFiles& operator=(const TemporaryFiles&) = delete;

  /// Hands on what the streams hold back and throws the first failure, if there was any.
  void Check();

  /// For the library: the stream of a new file, null when there is no memory for it.
  std::FILE* Open();

 private:
  struct File;

  std::vector<std::unique_ptr<File>> fFiles;
  std::exception_ptr fFailure;
};

}  // namespace runtime::output
