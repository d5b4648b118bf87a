#include "runtime/data/dictionary/ddi/ddispace.h"

#include <algorithm>
#include <cstddef>

#include "runtime/data/typing/numbertext.h"

namespace runtime::data {

std::string DdiLine(std::string_view text) {
  std::string line;
  bool blank = false;
  for (const char byte : text) {
    if (byte == ' ' || byte == '\t' || byte == '\r' || byte == '\n') {
      blank = true;
      continue;
    }
    if (blank && !line.empty()) line += ' ';
    blank = false;
    line += byte;
  }
  return line;
}

std::string DdiLines(std::string_view text) {
  std::string lines;
  std::size_t emptyLines = 0;
  for (std::size_t at = 0; at < text.size();) {
    const std::size_t end = std::min(text.find_first_of("\r\n", at), text.size());
    const std::string_view line = Trimmed(text.substr(at, end - at));
    const bool pair = end + 1 < text.size() && text[end] == '\r' && text[end + 1] == '\n';
    at = end + (pair ? 2 : 1);
    if (line.empty()) {
      ++emptyLines;
      continue;
    }
    if (!lines.empty()) lines.append(emptyLines + 1, '\n');
    emptyLines = 0;
    lines += line;
  }
  return lines;
}

}  // namespace runtime::data
