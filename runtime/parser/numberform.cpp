#include "runtime/parser/numberform.h"

#include <charconv>
#include <cstddef>
#include <system_error>

namespace runtime::parser {

namespace {

bool IsDigit(char c) { return c >= '0' && c <= '9'; }

std::size_t SkipSign(std::string_view text, std::size_t i) {
  return i < text.size() && (text[i] == '+' || text[i] == '-') ? i + 1 : i;
}

std::size_t SkipDigits(std::string_view text, std::size_t i) {
  while (i < text.size() && IsDigit(text[i])) ++i;
  return i;
}

}  // namespace

bool IsNumberForm(std::string_view text) {
  const std::size_t start = SkipSign(text, 0);
  std::size_t i = SkipDigits(text, start);
  std::size_t digits = i - start;
  if (i < text.size() && text[i] == '.') {
    const std::size_t fraction = i + 1;
    i = SkipDigits(text, fraction);
    digits += i - fraction;
  }
  if (digits == 0) return false;
  if (i < text.size() && (text[i] == 'e' || text[i] == 'E')) {
    const std::size_t exponent = SkipSign(text, i + 1);
    i = SkipDigits(text, exponent);
    if (i == exponent) return false;
  }
  return i == text.size();
}

std::optional<int> ReadInteger(std::string_view text) {
  if (text.starts_with('+')) {
    text.remove_prefix(1);
    if (text.starts_with('-')) return std::nullopt;
  }
  int value = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
  return value;
}

}  // namespace runtime::parser
