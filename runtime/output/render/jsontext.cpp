#include "runtime/output/render/jsontext.h"

#include <charconv>
#include <cmath>

#include "runtime/output/render/characters.h"

namespace runtime::output {
namespace {

void AppendEscape(std::string& json, char32_t unit) {
  static constexpr char kDigits[] = "0123456789abcdef";
  json += "\\u";
  for (int shift = 12; shift >= 0; shift -= 4) json += kDigits[(unit >> shift) & 15U];
}

}  // namespace

void AppendJsonText(std::string& json, std::string_view text) {
  json += '"';
  std::size_t at = 0;
  std::size_t copied = 0;  // up to here the text stands in the JSON
  while (at < text.size()) {
    const char byte = text[at];
    if (byte >= ' ' && byte <= '~' && byte != '"' && byte != '\\') {  // nearly all there is
      ++at;
      continue;
    }
    const std::size_t begin = at;
    bool valid = true;
    const char32_t character = NextCharacter(text, at, valid);
    if (valid && character != '"' && character != '\\' && !IsControl(character)) continue;
    json.append(text, copied, begin - copied);
    copied = at;
    if (!valid) {
      json += "\xEF\xBF\xBD";
    } else if (character == '"' || character == '\\') {
      json += '\\';
      json += static_cast<char>(character);
    } else {
      AppendEscape(json, character);  // all control characters lie below U+10000
    }
  }
  json.append(text, copied, text.size() - copied);
  json += '"';
}

void AppendJsonNumber(std::string& json, double number) {
  if (!std::isfinite(number)) {
    json += "null";
    return;
  }
  if (number == 0.0 && std::signbit(number)) {
    json += "-0.0";  // readers take "-0" for the integer 0, which has no sign
    return;
  }
  char buffer[32];
  json.append(buffer, std::to_chars(buffer, buffer + sizeof buffer, number).ptr);
}

}  // namespace runtime::output
