#include "runtime/output/format/decimal.h"

#include <algorithm>
#include <bit>
#include <charconv>
#include <cmath>
#include <cstdint>

namespace runtime::output {
namespace {

// No double has more decimals (1074) or more significant digits (767).
constexpr int kMostDecimals = 1100;
constexpr int kMostSignificant = 767;

// Number of binary digits behind the point; 0 of whole numbers. As each takes exactly one decimal digit, the last of
// them a 5, it is also the number of decimals of the exact value.
int FractionDigits(double magnitude) {
  if (magnitude == 0.0) return 0;
  const auto bits = std::bit_cast<std::uint64_t>(magnitude);
  const int biased = static_cast<int>(bits >> 52);
  constexpr std::uint64_t kHidden = std::uint64_t{1} << 52;
  const std::uint64_t mantissa = biased == 0 ? bits : ((bits & (kHidden - 1)) | kHidden);
  const int exponent = (biased == 0 ? 1 : biased) - 1075;
  return std::max(0, -(exponent + std::countr_zero(mantissa)));
}

// Adds one unit in the last place of a string of digits; true when a 1 has to go before it.
bool Increment(std::string& digits) {
  for (std::size_t i = digits.size(); i-- > 0;) {
    if (digits[i] != '9') {
      ++digits[i];
      return false;
    }
    digits[i] = '0';
  }
  return true;
}

bool AllZero(const std::string& digits) { return digits.find_first_not_of('0') == std::string::npos; }

}  // namespace

DecimalDigits RoundToDecimals(double value, int decimals) {
  decimals = std::clamp(decimals, 0, kMostDecimals);
  const double magnitude = std::fabs(value);
  // Exactly halfway: the exact value has one decimal more than asked for. It is written out whole and rounded by hand,
  // because to_chars goes to the even digit there.
  const bool halfway = FractionDigits(magnitude) == decimals + 1;
  const int written = halfway ? decimals + 1 : decimals;
  char buffer[312 + kMostDecimals];
  const auto end = std::to_chars(buffer, buffer + sizeof buffer, magnitude, std::chars_format::fixed, written).ptr;
  char* const point = std::find(buffer, end, '.');

  DecimalDigits result;
  result.whole.assign(buffer, point);
  if (point != end) result.fraction.assign(point + 1, end);
  if (halfway) {
    result.fraction.pop_back();
    if (Increment(result.fraction) && Increment(result.whole)) result.whole.insert(0, 1, '1');
  }
  result.negative = std::signbit(value) && !(AllZero(result.whole) && AllZero(result.fraction));
  return result;
}

ScientificDigits RoundToScientific(double value, int decimals) {
  decimals = std::clamp(decimals, 0, kMostDecimals);
  const double magnitude = std::fabs(value);
  char buffer[kMostSignificant + 16];
  const auto end =
      std::to_chars(buffer, buffer + sizeof buffer, magnitude, std::chars_format::scientific, kMostSignificant - 1).ptr;
  char* const mark = std::find(buffer, end, 'e');

  ScientificDigits result;
  result.digits.assign(1, buffer[0]);
  result.digits.append(buffer + 2, mark);
  const char* exponent = mark + 1;
  if (*exponent == '+') ++exponent;
  std::from_chars(exponent, end, result.exponent);

  const auto wanted = static_cast<std::size_t>(decimals) + 1;
  if (result.digits.size() <= wanted) {
    result.digits.append(wanted - result.digits.size(), '0');
  } else {
    const bool up = result.digits[wanted] >= '5';  // the digits are exact, so halfway is a plain 5
    result.digits.resize(wanted);
    if (up && Increment(result.digits)) {
      result.digits.insert(0, 1, '1');
      result.digits.pop_back();
      ++result.exponent;
    }
  }
  result.negative = std::signbit(value) && value != 0.0;
  return result;
}

}  // namespace runtime::output
