// Bytes of a file as UTF-8.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace runtime::data {

/// What was replaced with U+FFFD while text was read.
struct Replacements {
  std::int64_t count = 0;
  std::int64_t firstLine = 0;  // of the file, from 1
};

/// Position of the first byte that belongs to no valid UTF-8, npos when there is none.
std::size_t FirstInvalidUtf8(std::string_view text);
/// The text with U+FFFD for each byte that is no UTF-8.
std::string RepairedUtf8(std::string_view text, Replacements& replaced);

/// Whether a name means UTF-8 (utf8, UTF-8, ...).
bool IsUtf8Name(const std::string& encoding);
/// Whether there is a converter for an encoding of that name.
bool IsKnownEncoding(const std::string& encoding);
/// From another encoding; what has no meaning in it becomes U+FFFD. REQUIRES: a known encoding.
std::string ConvertedToUtf8(std::string_view bytes, const std::string& encoding, Replacements& replaced);

/// A byte order mark at the front: the encoding that it tells and its length.
struct ByteOrderMark {
  const char* encoding = nullptr;
  std::size_t length = 0;
};
std::optional<ByteOrderMark> FindByteOrderMark(std::string_view bytes);

}  // namespace runtime::data
