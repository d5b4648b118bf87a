// Texts read as values of a numeric field type.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "runtime/data/dictionary/descriptor.h"
#include "runtime/data/typing/datepattern.h"
#include "runtime/data/typing/numbertext.h"

namespace runtime::data {

/// Reads a text the way a field's dialect says. Blanks and tabs around a text do not matter. Numbers INF, -INF and NaN,
/// and those too large for a double, read as system-missing. Dates and datetimes are seconds since 1970-01-01T00:00:00,
/// a yearmonth the first day of its month, times and durations seconds, booleans 0 and 1.
class ValueReader {
 public:
  /// REQUIRES: a numeric type.
  explicit ValueReader(FieldDialect dialect);

  /// Why the dialect cannot be used (a faulty pattern); empty when it can.
  const std::string& problem() const { return fProblem; }
  FieldType type() const { return fDialect.type; }
  /// Whether ReadIntegerText or ReadNumberText alone reads nearly every cell, so that a tight loop can begin with it.
  bool isPlain() const { return fPlain; }

  /// False when the text does not read as the type. A NaN value is system-missing.
  bool Read(std::string_view text, NumberReading& reading) const;

 private:
  bool ReadTrimmed(std::string_view text, NumberReading& reading) const;
  bool ReadNumeric(std::string_view text, NumberReading& reading) const;
  bool ReadDecorated(std::string_view text, NumberReading& reading) const;
  bool ReadBoolean(std::string_view text, NumberReading& reading) const;
  std::optional<double> ReadMoment(std::string_view text) const;

  FieldDialect fDialect;
  bool fPlain = false;
  bool fAny = false;
  std::optional<DatePattern> fPattern;
  std::string fProblem;
};

/// The type in words for a message: "an integer", "a date".
const char* TypeInWords(FieldType type);

}  // namespace runtime::data
