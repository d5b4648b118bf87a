// The text of a data file.
#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "runtime/data/open.h"

namespace runtime::data {

/// Bytes of a file, unpacked where it is compressed, with CellBlock::kReadAhead readable ones behind them: mapped when
/// it is a regular file, read otherwise; what is long and cannot be mapped, or was packed, is written to a temporary
/// file first, which can. A mapped file must not shrink meanwhile.
class FileBytes {
 public:
  /// "-" is standard input. Throws DataError when there is no such file, it is a directory, cannot be read, is empty,
  /// or cannot be unpacked.
  explicit FileBytes(const std::string& path);
  ~FileBytes();
  FileBytes(const FileBytes&) = delete;
  FileBytes& operator=(const FileBytes&) = delete;

  std::string_view bytes() const { return fBytes; }
  /// Gives the memory back that these bytes took, as far as it comes from a file; they can be read again.
  void Release(std::string_view bytes) const;

 private:
  /// Fills a buffer of that size, but for the end; gives the number of bytes.
  using ReadPiece = std::function<std::size_t(char* buffer, std::size_t size)>;

  FileBytes(FileBytes&& other) noexcept;
  bool Map(int descriptor, std::size_t size);
  void ReadToEnd(const std::string& path, const ReadPiece& readPiece);
  void Unpack(const std::string& path);

  void* fMapped = nullptr;
  std::size_t fMappedSize = 0;  // with the room behind the bytes
  std::string fRead;
  std::string_view fBytes;
};

/// The file's text in UTF-8, without a byte order mark.
class InputText {
 public:
  /// A byte order mark tells the encoding, else `encoding` does, else it is UTF-8, unless the bytes are those of
  /// UTF-16, which a note tells. What cannot be read is replaced with U+FFFD and counted in one note; of a text in
  /// UTF-8 only the beginning is looked at, and who reads the rest calls Repair when it meets a byte that is no UTF-8.
  /// Throws DataError as FileBytes does, for an unknown encoding, and for a file that is no text.
  InputText(const std::string& path, const std::optional<std::string>& encoding, std::vector<Note>& notes);

  /// A text that is at hand, in UTF-8. `name` is what messages name it.
  InputText(std::string name, std::string text);

  /// CellBlock::kReadAhead bytes can be read behind it.
  std::string_view text() const { return fText; }
  /// Whether the text may hold bytes that are no UTF-8.
  bool mayBeInvalid() const { return fMayBeInvalid; }
  /// Takes another encoding for that of the text, where nobody has named one and one fits; else replaces what is no
  /// UTF-8. A note tells which. The former text is gone.
  void Repair(std::vector<Note>& notes);
  /// Takes another text for the file's. The former text is gone.
  void Replace(std::string text) { Take(std::move(text)); }
  /// The memory of a part of the text is not needed for now.
  void Release(std::string_view part) const;
  /// As messages name it: the path, or "standard input".
  const std::string& name() const { return fName; }

 private:
  void Decode(const std::optional<std::string>& encoding, std::vector<Note>& notes);
  void Take(std::string converted);

  std::string fName;
  std::unique_ptr<FileBytes> fBytes;  // gone when the text is a converted copy
  std::string fConverted;
  std::string_view fText;
  bool fMayBeInvalid = false;
  bool fEncodingIsSaid = false;
};

}  // namespace runtime::data
