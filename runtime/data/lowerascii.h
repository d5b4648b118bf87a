// Lower case of ASCII letters, for words of file formats, whatever the locale.
#pragma once

#include <string>

namespace runtime::data {

constexpr char LowerAscii(char byte) {
  return byte >= 'A' && byte <= 'Z' ? static_cast<char>(byte + ('a' - 'A')) : byte;
}

/// Bytes that are no ASCII letter stay.
inline std::string LowerAscii(std::string text) {
  for (char& byte : text) byte = LowerAscii(byte);
  return text;
}

}  // namespace runtime::data
