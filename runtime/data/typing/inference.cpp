#include "runtime/data/typing/inference.h"

#include <cmath>
#include <optional>

#include "runtime/data/typing/datetext.h"

namespace runtime::data {

namespace {

bool ReadCertainNumber(std::string_view text, NumberReading& reading, bool onlyIntegers) {
  NumberShape shape;
  if (!ReadNumberText(text, reading, shape) || shape.hasPlus || shape.leadingZero) return false;
  if (shape.hasPoint && shape.fractionDigits == 0) return false;  // "5." numbers a list rather than a value
  const bool written = !shape.hasPoint && !shape.hasExponent;     // as a whole number
  if (written ? !reading.isExact : onlyIntegers) return false;
  return !std::isinf(reading.value);
}

/// The hot cells: up to 15 digits, no zero at the front, perhaps a minus sign.
bool ReadShortInteger(std::string_view text, NumberReading& reading) {
  constexpr std::size_t kDigitsForSure = 15;
  const bool negative = text.front() == '-';
  const std::string_view digits = text.substr(negative ? 1 : 0);
  if (digits.empty() || digits.size() > kDigitsForSure || (digits.front() == '0' && digits.size() > 1)) return false;
  std::int64_t value = 0;
  for (const char digit : digits) {
    if (!IsDigit(digit)) return false;
    value = value * 10 + (digit - '0');
  }
  reading.value = static_cast<double>(negative ? -value : value);
  reading.decimals = 0;
  return true;
}

std::optional<double> BooleanOf(std::string_view text) {
  if (text == "true" || text == "True" || text == "TRUE") return 1.0;
  if (text == "false" || text == "False" || text == "FALSE") return 0.0;
  return std::nullopt;
}

}  // namespace

FieldType InferredTypeOf(std::string_view text) {
  NumberReading reading;
  for (const FieldType type : {FieldType::Boolean, FieldType::Integer, FieldType::Number, FieldType::Date,
                               FieldType::DateTime, FieldType::Time})
    if (ReadAsInferred(type, text, reading)) return type;
  return FieldType::String;
}

bool ReadAsInferred(FieldType type, std::string_view text, NumberReading& reading) {
  if (text.empty()) return false;
  std::optional<double> value;
  switch (type) {
    case FieldType::Boolean:
      value = BooleanOf(text);
      break;
    case FieldType::Integer:
      return ReadShortInteger(text, reading) || ReadCertainNumber(text, reading, true);
    case FieldType::Number:
      return ReadCertainNumber(text, reading, false);
    case FieldType::Date:
      value = ReadIsoDate(text);
      break;
    case FieldType::DateTime:
      value = ReadIsoDateTime(text, false);
      break;
    case FieldType::Time:
      value = ReadIsoTime(text, false);
      break;
    default:
      break;
  }
  if (value) reading.value = *value;
  return value.has_value();
}

}  // namespace runtime::data
