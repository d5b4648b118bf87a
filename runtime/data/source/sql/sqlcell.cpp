#include "runtime/data/source/sql/sqlcell.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <optional>

#include "runtime/data/lowerascii.h"
#include "runtime/data/typing/datetext.h"
#include "runtime/data/typing/numbertext.h"

namespace runtime::data {

namespace {

constexpr double kNoValue = std::numeric_limits<double>::quiet_NaN();

double NumberOfText(std::string_view text) {
  NumberReading reading;
  return ReadNumberText(text, reading) && std::isfinite(reading.value) ? reading.value + 0.0 : kNoValue;
}

double NumberOfBoolean(std::string_view text) {
  if (text == "1" || text == "t" || text == "true") return 1.0;
  if (text == "0" || text == "f" || text == "false") return 0.0;
  const std::string lower = LowerAscii(std::string(text));
  if (lower == "true" || lower == "t") return 1.0;
  if (lower == "false" || lower == "f") return 0.0;
  return kNoValue;
}

}  // namespace

FieldType FieldTypeOf(SqlType type) {
  switch (type) {
    case SqlType::Text:
    case SqlType::FixedText:
      return FieldType::String;
    case SqlType::Whole:
      return FieldType::Integer;
    case SqlType::Decimal:
    case SqlType::Single:
    case SqlType::Double:
      return FieldType::Number;
    case SqlType::Boolean:
      return FieldType::Boolean;
    case SqlType::Date:
      return FieldType::Date;
    case SqlType::Time:
      return FieldType::Time;
    case SqlType::DateTime:
      return FieldType::DateTime;
  }
  return FieldType::String;
}

double NumberOfCell(SqlType type, std::string_view text) {
  text = Trimmed(text);
  switch (type) {
    case SqlType::Boolean:
      return NumberOfBoolean(text);
    case SqlType::Date:
      return ReadIsoDate(text).value_or(kNoValue);
    case SqlType::Time:
      return ReadIsoTime(text, true).value_or(kNoValue);
    case SqlType::DateTime:
      return ReadIsoDateTime(text, true).value_or(kNoValue);
    default:
      return NumberOfText(text);
  }
}

bool IsUnreadable(SqlType type, std::string_view text, double number) {
  const bool isOfTime = type == SqlType::Date || type == SqlType::Time || type == SqlType::DateTime;
  return isOfTime && std::isnan(number) && !text.empty();
}

int WrittenDecimals(std::string_view text) {
  constexpr std::size_t kMostDecimals = 16;
  const std::size_t point = text.find('.');
  return point == std::string_view::npos ? 0 : static_cast<int>(std::min(text.size() - point - 1, kMostDecimals));
}

}  // namespace runtime::data
