// Numbers written in digits: an optional sign, digits with a decimal point among or beside them, an exponent.
#pragma once

#include <cstdint>
#include <string_view>

namespace runtime::data {

struct NumberReading {
  double value = 0.0;
  int decimals = 0;     // digits behind the decimal point when written without exponent: 1.50 has 2, 1.5e-3 has 4
  bool isExact = true;  // of a whole number without point and exponent: the double is that number
};

/// What the text of a number looks like; the stricter forms are cut out of it.
struct NumberShape {
  bool hasSign = false;
  bool hasPlus = false;
  bool hasPoint = false;
  bool hasExponent = false;
  int wholeDigits = 0;
  int fractionDigits = 0;
  bool leadingZero = false;  // a zero before further whole digits
};

/// Reads the whole text as a number, correctly rounded. A number too large for a double reads as infinite, one too
/// small as 0. False when the text is no number ("inf", "nan" and hexadecimal forms are none).
bool ReadNumberText(std::string_view text, NumberReading& reading, NumberShape& shape);

inline bool ReadNumberText(std::string_view text, NumberReading& reading) {
  NumberShape shape;
  return ReadNumberText(text, reading, shape);
}

/// Reads the whole text as a whole number: an optional sign and digits.
bool ReadIntegerText(std::string_view text, NumberReading& reading);

/// Without blanks and tabs around.
inline std::string_view Trimmed(std::string_view text) {
  while (!text.empty() && (text.front() == ' ' || text.front() == '\t')) text.remove_prefix(1);
  while (!text.empty() && (text.back() == ' ' || text.back() == '\t')) text.remove_suffix(1);
  return text;
}

inline bool IsDigit(char c) { return c >= '0' && c <= '9'; }

}  // namespace runtime::data
