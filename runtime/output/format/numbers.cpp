#include "runtime/output/format/numbers.h"

#include <algorithm>
#include <charconv>
#include <cstdlib>

#include "runtime/output/format/decimal.h"

namespace runtime::output {
namespace {

std::string Join(const DecimalDigits& digits, const char* prefix, char decimalSign) {
  std::string text;
  text.reserve(digits.whole.size() + digits.fraction.size() + 4);
  if (digits.negative) text += '-';
  text += prefix;
  text += digits.whole;
  if (digits.fraction.empty()) return text;
  text += decimalSign;
  text += digits.fraction;
  return text;
}

std::string WithThousands(const std::string& whole, char thousands) {
  std::string text;
  text.reserve(whole.size() + whole.size() / 3);
  for (std::size_t i = 0; i < whole.size(); ++i) {
    if (i > 0 && (whole.size() - i) % 3 == 0) text += thousands;
    text += whole[i];
  }
  return text;
}

}  // namespace

std::string FixedNumber(double value, int decimals) { return Join(RoundToDecimals(value, decimals), "", '.'); }

std::string GroupedNumber(double value, int decimals, char thousands, char decimalSign) {
  DecimalDigits digits = RoundToDecimals(value, decimals);
  digits.whole = WithThousands(digits.whole, thousands);
  return Join(digits, "", decimalSign);
}

std::string DollarNumber(double value, int decimals) {
  DecimalDigits digits = RoundToDecimals(value, decimals);
  digits.whole = WithThousands(digits.whole, ',');
  return Join(digits, "$", '.');
}

std::string ZeroPaddedNumber(double value, int width, int decimals) {
  std::string text = FixedNumber(value, decimals);
  const auto wanted = static_cast<std::size_t>(std::max(width, 0));
  if (text.front() != '-' && text.size() < wanted) text.insert(0, wanted - text.size(), '0');
  return text;
}

std::string ScientificNumber(double value, int decimals) {
  const ScientificDigits number = RoundToScientific(value, decimals);
  std::string text;
  if (number.negative) text += '-';
  text += number.digits.front();
  if (number.digits.size() > 1) text.append(".").append(number.digits, 1);
  text += number.exponent < 0 ? "E-" : "E+";
  const int exponent = std::abs(number.exponent);
  if (exponent < 10) text += '0';
  return text + std::to_string(exponent);
}

std::string ShortestNumber(double value) {
  if (value == 0.0) return "0";  // also the negative zero
  char buffer[32];
  std::string text(buffer, std::to_chars(buffer, buffer + sizeof buffer, value).ptr);
  std::replace(text.begin(), text.end(), 'e', 'E');
  return text;
}

}  // namespace runtime::output
