#include "runtime/output/render/csvtext.h"

#include <charconv>
#include <cmath>

#include "runtime/output/render/characters.h"
#include "runtime/output/render/terminaltext.h"

namespace runtime::output {
namespace {

bool BeginsFormula(std::string_view text) {
  const std::size_t first = text.find_first_not_of('\'');
  if (first == std::string_view::npos) return false;
  text.remove_prefix(first);
  if (std::string_view("=+-@\t\r\n").find(text.front()) != std::string_view::npos) return true;
  for (const std::string_view fullWidth : {"\uFF1D", "\uFF0B", "\uFF0D", "\uFF20"})
    if (text.substr(0, fullWidth.size()) == fullWidth) return true;
  return false;
}

// With quotes doubled.
void AppendHarmless(std::string& csv, std::string_view text) {
  for (std::size_t at = 0; at < text.size();) {
    const std::size_t begin = at;
    bool valid = true;
    const char32_t character = NextCharacter(text, at, valid);
    const bool beforeLineEnd = at < text.size() && text[at] == '\n';
    if (!valid) {
      csv += "\xEF\xBF\xBD";
    } else if (character == '"') {
      csv += "\"\"";
    } else if (IsControl(character) && character != '\t' && character != '\n' &&
               !(character == '\r' && beforeLineEnd)) {
      AppendVisibleEscape(csv, character);
    } else {
      csv.append(text, begin, at - begin);
    }
  }
}

}  // namespace

void AppendCsvText(std::string& csv, std::string_view text) {
  const bool formula = BeginsFormula(text);
  if (!formula) return AppendCsvPlain(csv, text);
  std::string disarmed = "'";
  disarmed += text;
  AppendCsvPlain(csv, disarmed);
}

void AppendCsvPlain(std::string& csv, std::string_view text) {
  // Blanks at the ends, which some readers strip, are safe within quotes.
  const bool quoted = text.empty() || text.find_first_of(",\"\r\n\t") != std::string_view::npos ||
                      text.front() == ' ' || text.back() == ' ';
  if (quoted) csv += '"';
  AppendHarmless(csv, text);
  if (quoted) csv += '"';
}

void AppendCsvNumber(std::string& csv, double number) {
  if (!std::isfinite(number)) return;
  char buffer[32];
  csv.append(buffer, std::to_chars(buffer, buffer + sizeof buffer, number).ptr);
}

}  // namespace runtime::output
