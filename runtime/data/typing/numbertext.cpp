#include "runtime/data/typing/numbertext.h"

#include <algorithm>
#include <charconv>
#include <cstddef>
#include <limits>
#include <system_error>

#include "runtime/data/typing/shortnumber.h"

namespace runtime::data {

namespace {

constexpr std::uint64_t kExactIntegers = std::uint64_t{1} << 53;
constexpr int kMostExponent = 100'000;  // beyond it every digit string is infinite or zero
// Powers of ten that are doubles exactly: with them one multiplication or division rounds correctly.
constexpr double kPowersOfTen[] = {1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,  1e8,  1e9,  1e10, 1e11,
                                   1e12, 1e13, 1e14, 1e15, 1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};
constexpr int kMostExactPower = 22;
constexpr int kMostExtendedPower = 27;
constexpr int kDigitsOfUint64 = 19;

/// Whether a number with that text is at least 1. `text` is known to be a number.
bool IsLarge(std::string_view text, int exponent) {
  int order = 0;  // of the first digit that is not 0, without the exponent
  bool behindPoint = false;
  bool found = false;
  for (const char c : text) {
    if (c == 'e' || c == 'E') break;
    if (c == '.') behindPoint = true;
    if (!IsDigit(c)) continue;
    if (!found && behindPoint) --order;
    found = found || c != '0';
    if (found && !behindPoint) ++order;
  }
  return found && order + exponent > 0;
}

/// The rounding of from_chars; `text` is known to be a number.
double RoundedByLibrary(std::string_view text, int exponent) {
  if (text.front() == '+') text.remove_prefix(1);
  double value = 0.0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (error == std::errc()) return value;
  if (!IsLarge(text, exponent)) return 0.0;
  const double infinity = std::numeric_limits<double>::infinity();
  return text.front() == '-' ? -infinity : infinity;
}

}  // namespace

bool ReadNumberText(std::string_view text, NumberReading& reading, NumberShape& shape) {
  const char* at = text.data();
  const char* const end = at + text.size();
  if (at == end) return false;
  shape = {};
  const bool negative = *at == '-';
  if (negative || *at == '+') {
    shape.hasSign = true;
    shape.hasPlus = !negative;
    if (++at == end) return false;
  }

  const char* const firstDigit = at;
  std::uint64_t mantissa = 0;  // wraps when there are more digits than it holds; then it is not used
  for (; at != end && IsDigit(*at); ++at) mantissa = mantissa * 10 + static_cast<std::uint64_t>(*at - '0');
  const std::ptrdiff_t whole = at - firstDigit;
  shape.leadingZero = whole > 1 && *firstDigit == '0';
  std::ptrdiff_t fraction = 0;
  if (at != end && *at == '.') {
    shape.hasPoint = true;
    const char* const firstDecimal = ++at;
    for (; at != end && IsDigit(*at); ++at) mantissa = mantissa * 10 + static_cast<std::uint64_t>(*at - '0');
    fraction = at - firstDecimal;
  }
  if (whole + fraction == 0) return false;

  int exponent = 0;
  if (at != end && (*at == 'e' || *at == 'E')) {
    shape.hasExponent = true;
    ++at;
    const bool negativeExponent = at != end && *at == '-';
    if (at != end && (*at == '-' || *at == '+')) ++at;
    if (at == end) return false;
    for (; at != end && IsDigit(*at); ++at) exponent = std::min(exponent * 10 + (*at - '0'), kMostExponent);
    if (negativeExponent) exponent = -exponent;
  }
  if (at != end) return false;

  constexpr std::ptrdiff_t kMostDigits = kMostExponent;
  shape.wholeDigits = static_cast<int>(std::min(whole, kMostDigits));
  shape.fractionDigits = static_cast<int>(std::min(fraction, kMostDigits));
  reading.decimals = std::max(0, shape.fractionDigits - exponent);
  const int power = exponent - shape.fractionDigits;
  const bool mantissaHolds = whole + fraction <= kDigitsOfUint64;
  reading.isExact = mantissaHolds && mantissa <= kExactIntegers;
  if (reading.isExact && power >= -kMostExactPower && power <= kMostExactPower) {
    const double magnitude = power < 0 ? static_cast<double>(mantissa) / kPowersOfTen[-power]
                                       : static_cast<double>(mantissa) * kPowersOfTen[power];
    reading.value = negative ? -magnitude : magnitude;
    return true;
  }
  double magnitude = 0.0;
  const bool divides = mantissaHolds && mantissa > 0 && power <= 0 && power >= -kMostExtendedPower;
  if (divides && DivideInExtendedPrecision(mantissa, -power, magnitude)) {
    reading.value = negative ? -magnitude : magnitude;
    if (shape.hasPoint || shape.hasExponent) return true;
  } else {
    reading.value = RoundedByLibrary(text, exponent);
  }
  if (!reading.isExact && !shape.hasPoint && !shape.hasExponent) {
    // More digits than 2^53 has: the number may still be a double, such as 2^60.
    std::uint64_t number = 0;
    const auto parsed = std::from_chars(firstDigit, end, number);
    magnitude = negative ? -reading.value : reading.value;
    reading.isExact = parsed.ec == std::errc() && magnitude < 18446744073709551616.0 &&
                      static_cast<std::uint64_t>(magnitude) == number;
  }
  return true;
}

bool ReadIntegerText(std::string_view text, NumberReading& reading) {
  const char* at = text.data();
  const char* const end = at + text.size();
  if (at == end) return false;
  const bool negative = *at == '-';
  if (negative || *at == '+') ++at;
  // Up to 15 digits are a double for sure; that is all that hot columns hold.
  if (end - at <= 15) {
    if (at == end) return false;
    std::int64_t value = 0;
    for (; at != end; ++at) {
      if (!IsDigit(*at)) return false;
      value = value * 10 + (*at - '0');
    }
    reading.value = static_cast<double>(negative ? -value : value);
    reading.decimals = 0;
    reading.isExact = true;
    return true;
  }
  for (const char* digit = at; digit != end; ++digit)
    if (!IsDigit(*digit)) return false;
  return ReadNumberText(text, reading);
}

}  // namespace runtime::data
