#include "runtime/data/source/sql/tablename.h"

#include <cstddef>
#include <utility>

namespace runtime::data {
namespace {

char ClosingQuote(char opening) {
  switch (opening) {
    case '"':
    case '`':
      return opening;
    case '[':
      return ']';
    default:
      return '\0';
  }
}

/// Reads a quoted part from `text`, whose first character is the opening quote; a closing one that stands twice is one.
/// Gives the bytes read; 0 when it does not end.
std::size_t ReadQuoted(std::string_view text, std::string& name) {
  const char closing = ClosingQuote(text.front());
  for (std::size_t i = 1; i < text.size(); ++i) {
    if (text[i] != closing) {
      name += text[i];
    } else if (i + 1 < text.size() && text[i + 1] == closing) {
      name += text[i++];
    } else {
      return i + 1;
    }
  }
  return 0;
}

}  // namespace

std::optional<std::vector<NamePart>> SplitTableName(std::string_view text) {
  std::vector<NamePart> parts;
  while (true) {
    NamePart part;
    part.isQuoted = !text.empty() && ClosingQuote(text.front()) != '\0';
    if (part.isQuoted) {
      const std::size_t length = ReadQuoted(text, part.name);
      if (length == 0) return std::nullopt;
      text.remove_prefix(length);
    } else {
      part.name = text.substr(0, text.find('.'));
      text.remove_prefix(part.name.size());
    }
    if (part.name.empty()) return std::nullopt;
    parts.push_back(std::move(part));
    if (text.empty()) return parts;
    if (text.front() != '.') return std::nullopt;
    text.remove_prefix(1);
  }
}

}  // namespace runtime::data
