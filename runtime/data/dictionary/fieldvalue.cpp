#include "runtime/data/dictionary/fieldvalue.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <string>
#include <string_view>

namespace runtime::data {
namespace {

std::optional<double> PlainNumber(std::string_view text) {
  const std::size_t first = text.find_first_not_of(' ');
  if (first == std::string_view::npos) return std::nullopt;
  text = text.substr(first, text.find_last_not_of(' ') - first + 1);
  if (text.front() == '+' && text.size() > 1 && text[1] != '-') text.remove_prefix(1);
  double number = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (error != std::errc() || end != text.data() + text.size() || !std::isfinite(number)) return std::nullopt;
  return number;
}

bool Holds(const std::vector<std::string>& texts, const std::string& text) {
  return std::find(texts.begin(), texts.end(), text) != texts.end();
}

}  // namespace

std::optional<double> FieldValueOf(const LabelledValue& entry, const FieldDialect& dialect) {
  if (!entry.isNumber && dialect.type == FieldType::Boolean) {
    if (Holds(dialect.trueValues, entry.value)) return 1;
    if (Holds(dialect.falseValues, entry.value)) return 0;
  }
  return PlainNumber(entry.value);
}

}  // namespace runtime::data
