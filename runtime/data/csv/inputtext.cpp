#include "runtime/data/csv/inputtext.h"

#include <cerrno>
#include <cstring>

#include <fcntl.h>
#include <fmt/format.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include "runtime/data/csv/encoding.h"
#include "runtime/data/typing/quotedcell.h"

namespace runtime::data {

namespace {

constexpr std::size_t kReadAtOnce = std::size_t{1} << 20;

std::string NameOf(const std::string& path) { return path == "-" ? "standard input" : path; }

/// Closes what it opened.
class Descriptor {
 public:
  explicit Descriptor(const std::string& path)
      : fOwned(path != "-"), fNumber(fOwned ? open(path.c_str(), O_RDONLY | O_CLOEXEC) : STDIN_FILENO) {}
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

std::string ReadToEnd(const std::string& path, int descriptor) {
  std::string bytes;
  std::size_t used = 0;
  while (true) {
    if (bytes.size() - used < kReadAtOnce) bytes.resize(std::max(bytes.size() * 2, used + kReadAtOnce));
    const ssize_t got = read(descriptor, bytes.data() + used, bytes.size() - used);
    if (got < 0 && errno == EINTR) continue;
    if (got < 0) FailToRead(path, errno);
    if (got == 0) break;
    used += static_cast<std::size_t>(got);
  }
  bytes.resize(used);
  return bytes;
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
  if (S_ISREG(status.st_mode) && status.st_size > 0 && path != "-") {
    fMappedSize = static_cast<std::size_t>(status.st_size);
    void* const mapped = mmap(nullptr, fMappedSize, PROT_READ, MAP_PRIVATE, file.number(), 0);
    if (mapped != MAP_FAILED) {
      fMapped = static_cast<const char*>(mapped);
      madvise(mapped, fMappedSize, MADV_SEQUENTIAL);
      return;
    }
  }
  fRead = ReadToEnd(path, file.number());
  if (fRead.empty())
    throw DataError(fmt::format("{}: {} empty; a table has at least a header line", NameOf(path),
                                path == "-" ? "it is" : "the file is"));
}

FileBytes::~FileBytes() {
  if (fMapped != nullptr) munmap(const_cast<char*>(fMapped), fMappedSize);
}

InputText::InputText(const std::string& path, const std::optional<std::string>& encoding, std::vector<Note>& notes)
    : fName(NameOf(path)), fBytes(std::make_unique<FileBytes>(path)) {
  Decode(encoding, notes);
}

void InputText::Decode(const std::optional<std::string>& encoding, std::vector<Note>& notes) {
  std::string_view bytes = fBytes->bytes();
  std::string name = encoding.value_or("UTF-8");
  const auto mark = FindByteOrderMark(bytes);
  if (mark) {
    name = mark->encoding;
    bytes.remove_prefix(mark->length);
  }
  if (!IsUtf8Name(name) && !IsKnownEncoding(name))
    throw DataError(fmt::format("{}: its encoding {} is unknown; name one such as UTF-8, ISO-8859-1 or windows-1252",
                                fName, QuotedCell(name)));
  if (!IsWide(name) && LooksBinary(bytes))
    throw DataError(
        fmt::format("{}: this is not a table of text (it holds binary data); give a CSV, TSV, Parquet or "
                    "JSON lines file, or the encoding of the text in the dictionary",
                    fName));

  Replacements replaced;
  if (IsUtf8Name(name)) {
    const std::size_t bad = FirstInvalidUtf8(bytes);
    if (bad == std::string_view::npos) {
      fText = bytes;
      return;
    }
    fConverted = RepairedUtf8(bytes, replaced);
  } else {
    fConverted = ConvertedToUtf8(bytes, name, replaced);
  }
  NoteReplacements(fName, replaced, name, encoding.has_value() || mark.has_value(), notes);
  fText = fConverted;
  fBytes.reset();
}

}  // namespace runtime::data
