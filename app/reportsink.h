// Where a report goes: standard output, or a file that appears only when it is whole.
#pragma once

#include <functional>
#include <optional>
#include <ostream>
#include <stdexcept>
#include <string>

namespace app {

/// Output could not be written; what() says what, where and why.
class OutputError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

using WriteReport = std::function<void(std::ostream&)>;

/// Calls `write` with a stream and sees to it that all of it was written: throws OutputError when any byte was not.
/// With a file name it writes a temporary file beside the target and renames it at the end, so that an older file of
/// that name stays as it was until then (a device or a pipe is written to directly).
void WriteReportTo(const std::optional<std::string>& fileName, const WriteReport& write);

/// Calls `write` with a stream onto an open file. Why not all of it was written, as an error number; 0: all was.
int WriteReportTo(int descriptor, const WriteReport& write);

/// Gives closed standard streams a place, so that no file that is opened later takes theirs. To be called first of all.
void SecureStandardStreams();

/// A pipe that its reader has closed is from now on an error to report, not a reason to die silently.
void ReportClosedPipes();

/// A file that may not grow any further (a limit of the process) is so too.
void ReportLimitedFiles();

}  // namespace app
