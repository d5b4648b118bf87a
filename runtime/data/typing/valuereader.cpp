#include "runtime/data/typing/valuereader.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>
#include <utility>
#include <vector>

#include <fmt/format.h>

#include "runtime/data/lowerascii.h"
#include "runtime/data/typing/datetext.h"
#include "runtime/data/typing/quotedcell.h"

namespace runtime::data {

namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

bool IsMoment(FieldType type) {
  return type == FieldType::Date || type == FieldType::DateTime || type == FieldType::Time;
}

/// INF, -INF, NaN, in whatever case they are written.
bool IsSpecialNumber(std::string_view text) {
  if (!text.empty() && (text.front() == '-' || text.front() == '+')) text.remove_prefix(1);
  if (text.size() != 3) return false;
  const std::string lower = LowerAscii(std::string(text));
  return lower == "inf" || lower == "nan";
}

/// Whether a separator, which may have several bytes, stands there.
bool StandsAt(std::string_view text, std::size_t at, const std::string& separator) {
  return !separator.empty() && text.compare(at, separator.size(), separator) == 0;
}

}  // namespace

ValueReader::ValueReader(FieldDialect dialect) : fDialect(std::move(dialect)) {
  const bool isNumber = fDialect.type == FieldType::Integer || fDialect.type == FieldType::Number;
  fPlain = isNumber && fDialect.decimalChar == "." && fDialect.groupChar.empty() && fDialect.bareNumber;
  if (isNumber && !fDialect.groupChar.empty() && fDialect.groupChar == fDialect.decimalChar)
    fProblem = "decimalChar and groupChar are the same";
  if (!IsMoment(fDialect.type) || fDialect.format == "default" || fDialect.format.empty()) return;
  fAny = fDialect.format == "any";
  if (fAny) return;
  // Older descriptors mark a pattern with "fmt:".
  std::string_view pattern = fDialect.format;
  if (pattern.substr(0, 4) == "fmt:") pattern.remove_prefix(4);
  fPattern.emplace(pattern);
  if (!fPattern->problem().empty())
    fProblem = fmt::format("the format {} cannot be used: {}", QuotedCell(fDialect.format), fPattern->problem());
}

bool ValueReader::Read(std::string_view text, NumberReading& reading) const {
  reading = {};
  return ReadTrimmed(Trimmed(text), reading);
}

bool ValueReader::ReadTrimmed(std::string_view text, NumberReading& reading) const {
  if (text.empty()) return false;
  std::optional<double> value;
  switch (fDialect.type) {
    case FieldType::Integer:
    case FieldType::Number:
      return ReadNumeric(text, reading);
    case FieldType::Boolean:
      return ReadBoolean(text, reading);
    case FieldType::Year:
      value = ReadIsoYear(text);
      break;
    case FieldType::YearMonth:
      value = ReadIsoYearMonth(text);
      break;
    case FieldType::Duration:
      value = ReadIsoDuration(text);
      break;
    case FieldType::Date:
    case FieldType::DateTime:
    case FieldType::Time:
      value = ReadMoment(text);
      break;
    case FieldType::Inferred:
    case FieldType::String:
      break;
  }
  if (value) reading.value = *value;
  return value.has_value();
}

bool ValueReader::ReadNumeric(std::string_view text, NumberReading& reading) const {
  const bool isInteger = fDialect.type == FieldType::Integer;
  if (isInteger && fPlain) return ReadIntegerText(text, reading);
  if (!isInteger && IsSpecialNumber(text)) {
    reading.value = kNaN;
    return true;
  }
  if (!(fPlain ? ReadNumberText(text, reading) : ReadDecorated(text, reading))) return false;
  if (std::isinf(reading.value)) reading.value = kNaN;
  return true;
}

/// Takes separators of groups out, puts a point for the decimal character, and leaves out what stands before and behind
/// a number that is not bare.
bool ValueReader::ReadDecorated(std::string_view text, NumberReading& reading) const {
  if (!fDialect.bareNumber) {
    const auto begins = [&](std::size_t at) {
      if (text[at] == '-' || text[at] == '+') ++at;
      if (at < text.size() && StandsAt(text, at, fDialect.decimalChar)) at += fDialect.decimalChar.size();
      return at < text.size() && IsDigit(text[at]);
    };
    std::size_t first = 0;
    while (first < text.size() && !begins(first)) ++first;
    text.remove_prefix(first);
    while (!text.empty() && !IsDigit(text.back())) text.remove_suffix(1);
  }

  std::string plain;
  plain.reserve(text.size());
  bool wholePart = true;
  for (std::size_t at = 0; at < text.size();) {
    const bool betweenDigits = !plain.empty() && IsDigit(plain.back());
    if (wholePart && betweenDigits && StandsAt(text, at, fDialect.groupChar)) {
      at += fDialect.groupChar.size();
      if (at >= text.size() || !IsDigit(text[at])) return false;
    } else if (wholePart && StandsAt(text, at, fDialect.decimalChar)) {
      plain.push_back('.');
      at += fDialect.decimalChar.size();
      wholePart = false;
    } else if (text[at] == '.') {
      return false;  // not the decimal character of this field
    } else {
      plain.push_back(text[at++]);
    }
  }
  return fDialect.type == FieldType::Integer ? ReadIntegerText(plain, reading) : ReadNumberText(plain, reading);
}

bool ValueReader::ReadBoolean(std::string_view text, NumberReading& reading) const {
  const auto holds = [text](const std::vector<std::string>& words) {
    return std::find(words.begin(), words.end(), text) != words.end();
  };
  if (holds(fDialect.trueValues)) {
    reading.value = 1.0;
    return true;
  }
  reading.value = 0.0;
  return holds(fDialect.falseValues);
}

std::optional<double> ValueReader::ReadMoment(std::string_view text) const {
  if (fPattern) return fPattern->Read(text);
  if (fAny) {
    const auto moment = ReadAnyMoment(text);
    if (!moment) return std::nullopt;
    if (fDialect.type == FieldType::Time) return moment->date ? std::nullopt : moment->time;
    if (fDialect.type == FieldType::Date) return moment->time ? std::nullopt : moment->date;
    if (!moment->date) return std::nullopt;
    return *moment->date + moment->time.value_or(0.0);
  }
  if (fDialect.type == FieldType::Date) return ReadIsoDate(text);
  if (fDialect.type == FieldType::DateTime) return ReadIsoDateTime(text, true);
  return ReadIsoTime(text, true);
}

const char* TypeInWords(FieldType type) {
  switch (type) {
    case FieldType::Integer:
      return "an integer";
    case FieldType::Number:
      return "a number";
    case FieldType::Boolean:
      return "a boolean";
    case FieldType::Year:
      return "a year";
    case FieldType::Date:
      return "a date";
    case FieldType::DateTime:
      return "a date with time";
    case FieldType::Time:
      return "a time";
    case FieldType::YearMonth:
      return "a month of a year";
    case FieldType::Duration:
      return "a duration";
    case FieldType::Inferred:
    case FieldType::String:
      break;
  }
  return "a text";
}

}  // namespace runtime::data
