// A temporary file for what does not fit into memory.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <stdexcept>
#include <string>

namespace runtime::machine {

/// The temporary file cannot be made, written or read; what() says where, why and what to do.
class SpillError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// A new file in that folder that no folder lists, open for reading and writing; who opens it closes it. Throws
/// SpillError.
int OpenNamelessFile();
/// Whether there can be such a file.
bool CanOpenNamelessFile();
/// Throws SpillError.
void WriteAll(int descriptor, const void* bytes, std::size_t count);

/// Bytes in a file without a name, which vanishes with the process, however that ends. It stands in the folder that
/// TMPDIR names, else in /tmp, and is made at the first Append. Several threads may append and read at once.
class SpillFile {
 public:
  SpillFile();
  ~SpillFile();
  SpillFile(const SpillFile&) = delete;
  SpillFile& operator=(const SpillFile&) = delete;

  /// Writes the bytes behind all others; gives the place where they begin. Throws SpillError.
  std::uint64_t Append(const void* bytes, std::size_t count);
  /// Throws SpillError. REQUIRES: the bytes were appended.
  void Read(std::uint64_t offset, void* bytes, std::size_t count) const;
  /// Bytes in the file.
  std::uint64_t size() const;

 private:
  struct File;
  std::unique_ptr<File> fFile;
};

}  // namespace runtime::machine
