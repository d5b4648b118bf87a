// The encoding of a text that nobody names.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace runtime::data {

/// UTF-16LE or UTF-16BE for a text in UTF-16 without a byte order mark: its zero bytes all stand in the same half of
/// the units, and so do line ends. Nothing for any other text, and for one that has no line end.
std::optional<std::string> DetectWideEncoding(std::string_view bytes);

struct DetectedEncoding {
  std::string name;
  std::size_t otherBytes = 0;  // beyond ASCII, in the part that was looked at
};

/// For bytes that are not all UTF-8. Nothing when most of what is beyond ASCII is UTF-8 after all, so that only some
/// places are damaged, and when no encoding fits. A short text is taken for windows-1252, of which ISO-8859-1 is a
/// part.
std::optional<DetectedEncoding> DetectEncoding(std::string_view bytes);

}  // namespace runtime::data
