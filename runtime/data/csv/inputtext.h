// The text of a data file.
#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "runtime/data/open.h"

namespace runtime::data {

/// Bytes of a file: mapped when it is a regular file, read otherwise. A mapped file must not shrink meanwhile.
class FileBytes {
 public:
  /// "-" is standard input. Throws DataError when there is no such file, it is a directory, cannot be read or is empty.
  explicit FileBytes(const std::string& path);
  ~FileBytes();
  FileBytes(const FileBytes&) = delete;
  FileBytes& operator=(const FileBytes&) = delete;

  std::string_view bytes() const { return fMapped ? std::string_view(fMapped, fMappedSize) : std::string_view(fRead); }

 private:
  const char* fMapped = nullptr;
  std::size_t fMappedSize = 0;
  std::string fRead;
};

/// The file's text in UTF-8, without a byte order mark.
class InputText {
 public:
  /// A byte order mark tells the encoding, else `encoding` does, else it is UTF-8. What cannot be read is replaced with
  /// U+FFFD and counted in one note. Throws DataError as FileBytes does, for an unknown encoding, and for a file that
  /// is no text.
  InputText(const std::string& path, const std::optional<std::string>& encoding, std::vector<Note>& notes);

  std::string_view text() const { return fText; }
  /// As messages name it: the path, or "standard input".
  const std::string& name() const { return fName; }

 private:
  void Decode(const std::optional<std::string>& encoding, std::vector<Note>& notes);

  std::string fName;
  std::unique_ptr<FileBytes> fBytes;  // gone when the text is a converted copy
  std::string fConverted;
  std::string_view fText;
};

}  // namespace runtime::data
