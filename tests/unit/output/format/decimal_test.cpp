#include "runtime/output/format/decimal.h"

#include <bit>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <random>
#include <string>

#include <gtest/gtest.h>

using runtime::output::DecimalDigits;
using runtime::output::RoundToDecimals;
using runtime::output::RoundToScientific;
using runtime::output::ScientificDigits;

namespace {

// All decimals of the exact value.
std::string ExactText(double magnitude) {
  char buffer[1500];
  const int length = std::snprintf(buffer, sizeof buffer, "%.1075f", magnitude);
  return {buffer, static_cast<std::size_t>(length)};
}

// Schoolbook rounding of a written-out decimal number: half away from zero.
std::string RoundedByHand(const std::string& exact, int decimals) {
  const std::size_t point = exact.find('.');
  std::string digits = exact.substr(0, point) + exact.substr(point + 1);
  const std::size_t kept = point + static_cast<std::size_t>(decimals);
  const bool up = digits[kept] >= '5';
  digits.resize(kept);
  std::size_t wholeDigits = point;
  if (up) {
    std::size_t i = kept;
    while (i > 0 && digits[i - 1] == '9') digits[--i] = '0';
    if (i > 0) {
      ++digits[i - 1];
    } else {
      digits.insert(0, "1");
      ++wholeDigits;
    }
  }
  std::string text = digits.substr(0, wholeDigits);
  if (decimals > 0) text += '.' + digits.substr(wholeDigits);
  return text;
}

std::string Text(const DecimalDigits& digits) {
  std::string text = digits.negative ? "-" : "";
  text += digits.whole;
  if (!digits.fraction.empty()) text += '.' + digits.fraction;
  return text;
}

void CheckAgainstHand(double value, int decimals) {
  std::string expected = RoundedByHand(ExactText(std::fabs(value)), decimals);
  if (std::signbit(value) && expected.find_first_not_of("0.") != std::string::npos) expected.insert(0, "-");
  ASSERT_EQ(Text(RoundToDecimals(value, decimals)), expected) << std::hexfloat << value << " to " << decimals;
}

}  // namespace

TEST(RoundToDecimals, agreesWithTheExactDecimalsOfRandomDoubles) {
  std::mt19937_64 random(20240611);
  for (int i = 0; i < 20000; ++i) {
    const auto value = std::bit_cast<double>(random());
    if (!std::isfinite(value)) continue;
    CheckAgainstHand(value, static_cast<int>(random() % 20));
  }
}

TEST(RoundToDecimals, agreesWithTheExactDecimalsOfNumbersAsDataHaveThem) {
  std::mt19937_64 random(7);
  for (int i = 0; i < 40000; ++i) {
    const double hundredths = static_cast<double>(static_cast<std::int64_t>(random() % 2000001) - 1000000) / 100.0;
    CheckAgainstHand(hundredths, static_cast<int>(random() % 4));
    CheckAgainstHand(std::nextafter(hundredths, 1e9), static_cast<int>(random() % 4));
  }
}

// Whole multiples of a power of two lie halfway between two decimal numbers much more often than others.
TEST(RoundToDecimals, agreesWithTheExactDecimalsHalfway) {
  std::mt19937_64 random(11);
  int halfway = 0;
  for (int i = 0; i < 40000; ++i) {
    const int bits = static_cast<int>(random() % 12);
    const auto whole = static_cast<double>(static_cast<std::int64_t>(random() % 200001) - 100000);
    const double value = std::ldexp(whole, -bits);
    const int decimals = std::max(0, bits - 1 - static_cast<int>(random() % 2));
    CheckAgainstHand(value, decimals);
    const std::string exact = ExactText(std::fabs(value));
    const std::string rest = exact.substr(exact.find('.') + 1 + static_cast<std::size_t>(decimals));
    if (rest[0] == '5' && rest.find_first_not_of('0', 1) == std::string::npos) ++halfway;
  }
  EXPECT_GT(halfway, 4000);
}

TEST(RoundToDecimals, keepsToItsBounds) {
  EXPECT_EQ(RoundToDecimals(1.5, -3).whole, "2");
  EXPECT_EQ(RoundToDecimals(1.5, 100000).fraction.size(), 1100u);
  EXPECT_EQ(RoundToDecimals(5e-324, 1074).fraction.back(), '5');
  CheckAgainstHand(5e-324, 1073);
  EXPECT_EQ(RoundToDecimals(std::numeric_limits<double>::max(), 1100).whole.size(), 309u);
}

TEST(RoundToScientific, agreesWithTheCLibraryWhereNothingLiesHalfway) {
  std::mt19937_64 random(5);
  for (int i = 0; i < 20000; ++i) {
    const auto value = std::bit_cast<double>(random());
    if (!std::isfinite(value)) continue;
    const int decimals = static_cast<int>(random() % 12);
    const ScientificDigits number = RoundToScientific(value, decimals);
    std::string text = number.negative ? "-" : "";
    text += number.digits.substr(0, 1);
    if (decimals > 0) text += '.' + number.digits.substr(1);
    char expected[64];
    std::snprintf(expected, sizeof expected, "%.*e", decimals, value);
    char exponent[16];
    std::snprintf(exponent, sizeof exponent, "e%+03d", number.exponent);
    ASSERT_EQ(text + exponent, expected);
  }
}

TEST(RoundToScientific, goesAwayFromZeroExactlyHalfway) {
  EXPECT_EQ(RoundToScientific(2.5, 0).digits, "3");
  EXPECT_EQ(RoundToScientific(-2.5, 0).digits, "3");
  EXPECT_EQ(RoundToScientific(9.5, 0).exponent, 1);
  EXPECT_EQ(RoundToScientific(1.125, 2).digits, "113");
  EXPECT_EQ(RoundToScientific(0, 2).digits, "000");
}
