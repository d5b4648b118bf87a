#include "runtime/data/csv/inputtext.h"

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <cstring>
#include <utility>

#include <fcntl.h>
#include <fmt/format.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include "runtime/data/compression/packing.h"
#include "runtime/data/csv/encoding.h"
#include "runtime/data/csv/encodingdetection.h"
#include "runtime/data/typing/cellblock.h"
#include "runtime/data/typing/quotedcell.h"
#include "runtime/machine/spillfile.h"

namespace runtime::data {

namespace {

constexpr std::size_t kReadAtOnce = std::size_t{1} << 20;
constexpr std::size_t kMostInMemory = std::size_t{64} << 20;  // of what cannot be mapped
constexpr std::size_t kBeginning = std::size_t{1} << 20;      // whose encoding is checked at once

std::string NameOf(const std::string& path) { return path == "-" ? "standard input" : path; }

/// Closes what it opened.
class Descriptor {
 public:
  explicit Descriptor(const std::string& path)
      : fOwned(path != "-"), fNumber(fOwned ? open(path.c_str(), O_RDONLY | O_CLOEXEC) : STDIN_FILENO) {}
  explicit Descriptor(int opened) : fOwned(true), fNumber(opened) {}
  ~Descriptor() {
    if (fOwned && fNumber >= 0) close(fNumber);
  }
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;
  int number() const { return fNumber; }

 private:
  bool fOwned;
  int fNumber;
};

[[noreturn]] void FailToRead(const std::string& path, int error) {
  if (error == ENOENT) throw DataError(fmt::format("{}: there is no such file", NameOf(path)));
  if (error == EISDIR) throw DataError(fmt::format("{}: this is a directory; name a data file", NameOf(path)));
  throw DataError(fmt::format("{}: the file cannot be read: {}", NameOf(path), std::strerror(error)));
}

/// Reads until the buffer is full or the file ends; the number of bytes.
std::size_t ReadInto(const std::string& path, int descriptor, char* buffer, std::size_t size) {
  std::size_t used = 0;
  while (used < size) {
    const ssize_t got = read(descriptor, buffer + used, std::min(size - used, kReadAtOnce));
    if (got < 0 && errno == EINTR) continue;
    if (got < 0) FailToRead(path, errno);
    if (got == 0) break;
    used += static_cast<std::size_t>(got);
  }
  return used;
}

/// Without a character that is cut off at the end.
std::string_view BeginningOf(std::string_view text) {
  if (text.size() <= kBeginning) return text;
  std::size_t end = kBeginning;
  const auto isFollower = [text](std::size_t at) { return (static_cast<unsigned char>(text[at]) & 0xC0) == 0x80; };
  while (end + 3 > kBeginning && isFollower(end)) --end;
  return text.substr(0, end);
}

/// Text has next to no control characters; what was compressed or compiled is full of them.
bool LooksBinary(std::string_view bytes) {
  constexpr std::size_t kLookedAt = std::size_t{64} * 1024;
  constexpr std::size_t kFewControls = 4;
  constexpr std::size_t kOneInSoMany = 20;
  bytes = bytes.substr(0, kLookedAt);
  // A cell may hold a NUL, but no one names a column with one.
  if (bytes.substr(0, bytes.find_first_of("\r\n")).find('\0') != std::string_view::npos) return true;
  std::size_t controls = 0;
  for (const char c : bytes) {
    const auto byte = static_cast<unsigned char>(c);
    if (byte < 0x20 && (byte < '\t' || byte > '\r')) ++controls;
  }
  return controls >= kFewControls && controls * kOneInSoMany > bytes.size();
}

bool IsWide(const std::string& encoding) {
  return encoding.find("16") != std::string::npos || encoding.find("32") != std::string::npos;
}

void NoteReplacements(const std::string& name, const Replacements& replaced, const std::string& encoding, bool said,
                      std::vector<Note>& notes) {
  if (replaced.count == 0) return;
  std::string text = fmt::format("{}:{}: {} not {} and {} replaced with U+FFFD", name, replaced.firstLine,
                                 replaced.count == 1 ? std::string("1 byte or character is")
                                                     : fmt::format("{} bytes or characters are", replaced.count),
                                 encoding, replaced.count == 1 ? "was" : "were");
  if (!said) text += "; the dictionary can name the encoding (\"encoding\": \"windows-1252\")";
  notes.push_back({false, std::move(text)});
}

}  // namespace

FileBytes::FileBytes(const std::string& path) {
  const Descriptor file(path);
  if (file.number() < 0) FailToRead(path, errno);
  struct stat status {};
  if (fstat(file.number(), &status) != 0) FailToRead(path, errno);
  if (S_ISDIR(status.st_mode)) FailToRead(path, EISDIR);
  const bool isRegular = S_ISREG(status.st_mode) && status.st_size > 0 && path != "-";
  if (!isRegular || !Map(file.number(), static_cast<std::size_t>(status.st_size)))
    ReadToEnd(path, [&](char* buffer, std::size_t size) { return ReadInto(path, file.number(), buffer, size); });
  if (PackingOf(fBytes) != Packing::None) Unpack(path);
  if (fBytes.empty())
    throw DataError(fmt::format("{}: {} empty; a table has at least a header line", NameOf(path),
                                path == "-" ? "it is" : "the file is"));
}

bool FileBytes::Map(int descriptor, std::size_t size) {
  // A page of nothing behind the file's own makes reading ahead of its last byte harmless.
  const auto page = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
  const std::size_t withRoom = size + page;
  void* const room = mmap(nullptr, withRoom, PROT_READ, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
  if (room == MAP_FAILED) return false;
  if (mmap(room, size, PROT_READ, MAP_PRIVATE | MAP_FIXED, descriptor, 0) == MAP_FAILED) {
    munmap(room, withRoom);
    return false;
  }
  madvise(room, size, MADV_SEQUENTIAL);
  fMapped = room;
  fMappedSize = withRoom;
  fBytes = {static_cast<const char*>(room), size};
  return true;
}

FileBytes::FileBytes(FileBytes&& other) noexcept
    : fMapped(std::exchange(other.fMapped, nullptr)),
      fMappedSize(std::exchange(other.fMappedSize, 0)),
      fRead(std::move(other.fRead)),
      fBytes(std::exchange(other.fBytes, {})) {
  if (fMapped == nullptr) fBytes = std::string_view(fRead).substr(0, fBytes.size());
  other.fRead.clear();
}

void FileBytes::Unpack(const std::string& path) {
  const FileBytes packed(std::move(*this));
  const auto unpacker = NewUnpacker(PackingOf(packed.bytes()), packed.bytes(), NameOf(path));
  ReadToEnd(path, [&](char* buffer, std::size_t size) { return unpacker->Read(buffer, size); });
}

void FileBytes::ReadToEnd(const std::string& path, const ReadPiece& readPiece) {
  std::size_t used = 0;
  while (used <= kMostInMemory) {
    const std::size_t room = std::max(used, kReadAtOnce);
    fRead.resize(used + room + CellBlock::kReadAhead);
    const std::size_t got = readPiece(fRead.data() + used, room);
    used += got;
    if (got < room) {
      fRead.resize(used + CellBlock::kReadAhead);
      fBytes = std::string_view(fRead).substr(0, used);
      return;
    }
  }
  const Descriptor temporary(machine::OpenNamelessFile());
  machine::WriteAll(temporary.number(), fRead.data(), used);
  while (const std::size_t got = readPiece(fRead.data(), kReadAtOnce)) {
    machine::WriteAll(temporary.number(), fRead.data(), got);
    used += got;
  }
  std::string().swap(fRead);
  if (!Map(temporary.number(), used)) FailToRead(path, errno);
}

FileBytes::~FileBytes() {
  if (fMapped != nullptr) munmap(fMapped, fMappedSize);
}

void FileBytes::Release(std::string_view bytes) const {
  if (fMapped == nullptr) return;
  const auto page = static_cast<std::uintptr_t>(sysconf(_SC_PAGESIZE));
  const std::uintptr_t past = reinterpret_cast<std::uintptr_t>(bytes.data()) % page;
  const std::size_t skipped = past == 0 ? 0 : page - past;
  if (bytes.size() < skipped + page) return;
  madvise(const_cast<char*>(bytes.data()) + skipped, (bytes.size() - skipped) / page * page, MADV_DONTNEED);
}

InputText::InputText(const std::string& path, const std::optional<std::string>& encoding, std::vector<Note>& notes)
    : fName(NameOf(path)), fBytes(std::make_unique<FileBytes>(path)) {
  Decode(encoding, notes);
}

InputText::InputText(std::string name, std::string text) : fName(std::move(name)) { Take(std::move(text)); }

void InputText::Decode(const std::optional<std::string>& encoding, std::vector<Note>& notes) {
  std::string_view bytes = fBytes->bytes();
  std::string name = encoding.value_or("UTF-8");
  const auto mark = FindByteOrderMark(bytes);
  if (mark) {
    name = mark->encoding;
    bytes.remove_prefix(mark->length);
  }
  const std::optional<std::string> wide = encoding || mark ? std::nullopt : DetectWideEncoding(bytes);
  if (wide) {
    name = *wide;
    notes.push_back({false, fmt::format("{}: it was read as {}, as its zero bytes suggest; the dictionary can name the "
                                        "encoding (\"encoding\": \"{}\")",
                                        fName, name, name)});
  }
  if (!IsUtf8Name(name) && !IsKnownEncoding(name))
    throw DataError(fmt::format("{}: its encoding {} is unknown; name one such as UTF-8, ISO-8859-1 or windows-1252",
                                fName, QuotedCell(name)));
  if (!IsWide(name) && LooksBinary(bytes))
    throw DataError(
        fmt::format("{}: this is not a table of text (it holds binary data); give a CSV, TSV, Parquet or "
                    "JSON lines file, or the encoding of the text in the dictionary",
                    fName));

  fEncodingIsSaid = encoding.has_value() || mark.has_value();
  if (IsUtf8Name(name)) {
    fText = bytes;
    fMayBeInvalid = true;
    if (FirstInvalidUtf8(BeginningOf(bytes)) != std::string_view::npos) Repair(notes);
    return;
  }
  Replacements replaced;
  std::string converted = ConvertedToUtf8(bytes, name, replaced);
  NoteReplacements(fName, replaced, name, fEncodingIsSaid, notes);
  Take(std::move(converted));
}

void InputText::Take(std::string converted) {
  const std::size_t size = converted.size();
  fConverted = std::move(converted);
  fConverted.resize(size + CellBlock::kReadAhead);
  fText = std::string_view(fConverted).substr(0, size);
  fBytes.reset();
  fMayBeInvalid = false;
}

void InputText::Repair(std::vector<Note>& notes) {
  Replacements replaced;
  const auto detected = fEncodingIsSaid ? std::nullopt : DetectEncoding(fText);
  if (detected) {
    notes.push_back({false, fmt::format("{}: it is not UTF-8 and was read as {}, by its {} beyond ASCII; if that is "
                                        "wrong, name the encoding in the dictionary (\"encoding\": \"...\")",
                                        fName, detected->name,
                                        detected->otherBytes == 1 ? std::string("1 byte")
                                                                  : fmt::format("{} bytes", detected->otherBytes))});
    std::string converted = ConvertedToUtf8(fText, detected->name, replaced);
    NoteReplacements(fName, replaced, detected->name, true, notes);
    Take(std::move(converted));
    return;
  }
  std::string repaired = RepairedUtf8(fText, replaced);
  NoteReplacements(fName, replaced, "UTF-8", fEncodingIsSaid, notes);
  Take(std::move(repaired));
}

void InputText::Release(std::string_view part) const {
  if (fBytes != nullptr) fBytes->Release(part);
}

}  // namespace runtime::data
