// The end of a run that is interrupted.
#pragma once

#include <string>

namespace app {

/// From now on an interrupt (Ctrl-C, also where a shell has its background jobs ignore it; a request to terminate; a
/// terminal that is closed, unless that is to be ignored) ends the program at once, whatever its threads are at, with
/// the status of an interrupted one. It takes the progress line from the terminal, removes the temporary file, and says
/// so on standard error unless it is to be quiet.
void HandleInterrupts();

/// An interrupt is not spoken of.
void InterruptQuietly();

/// Whether a progress line stands on standard error.
void NoteProgressLine(bool shown);

/// Makes a file by a pattern that ends with XXXXXX; an interrupt removes it until it is forgotten. One at a time.
/// Returns its descriptor, or -1 and errno.
int MakeTemporaryFile(const std::string& pattern);
/// The name of the temporary file that was made last.
const char* TemporaryFileName();
/// The temporary file is gone, or is no longer temporary.
void ForgetTemporaryFile();

}  // namespace app
