#include "runtime/data/typing/quotedcell.h"

#include <cstddef>
#include <iterator>

#include <fmt/format.h>
#include <unicode/uchar.h>

#include "runtime/data/utf8walk.h"

namespace runtime::data {

namespace {

constexpr std::size_t kMostCharacters = 40;

bool IsHarmless(char32_t character) {
  switch (u_charType(static_cast<UChar32>(character))) {
    case U_CONTROL_CHAR:
    case U_FORMAT_CHAR:  // direction marks among them
    case U_LINE_SEPARATOR:
    case U_PARAGRAPH_SEPARATOR:
    case U_SURROGATE:
    case U_UNASSIGNED:
      return false;
    default:
      return true;
  }
}

void AppendEscaped(std::string& quoted, std::string_view text, std::size_t at, const Utf8Step& step) {
  if (!step.valid) {
    fmt::format_to(std::back_inserter(quoted), "\\x{:02x}", static_cast<unsigned char>(text[at]));
    return;
  }
  switch (step.character) {
    case '\n':
      quoted += "\\n";
      return;
    case '\r':
      quoted += "\\r";
      return;
    case '\t':
      quoted += "\\t";
      return;
    default:
      break;
  }
  if (IsHarmless(step.character))
    quoted.append(text.substr(at, step.length));
  else
    fmt::format_to(std::back_inserter(quoted), "\\u{:04x}", static_cast<unsigned>(step.character));
}

}  // namespace

std::string QuotedCell(std::string_view text) {
  std::string quoted = "\"";
  std::size_t characters = 0;
  for (std::size_t at = 0; at < text.size(); ++characters) {
    if (characters == kMostCharacters) {
      quoted += "...";
      break;
    }
    const Utf8Step step = StepUtf8(text, at);
    AppendEscaped(quoted, text, at, step);
    at += step.length;
  }
  quoted += '"';
  return quoted;
}

}  // namespace runtime::data
