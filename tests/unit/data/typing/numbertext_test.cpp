#include "runtime/data/typing/numbertext.h"

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <limits>
#include <random>
#include <string>

#include <gtest/gtest.h>

namespace runtime::data {
namespace {

TEST(NumberText, readsSignsPointsAndExponents) {
  NumberReading reading;
  const std::pair<const char*, double> cases[] = {
      {"0", 0},  {"7", 7},     {"-7", -7},    {"+7", 7},      {"007", 7},     {"1.50", 1.5},   {".5", .5},
      {"5.", 5}, {"-.5", -.5}, {"1e3", 1000}, {"1E+3", 1000}, {"25e-1", 2.5}, {"-1.5e2", -150}};
  for (const auto& [text, value] : cases) {
    ASSERT_TRUE(ReadNumberText(text, reading)) << text;
    EXPECT_EQ(reading.value, value) << text;
  }
}

TEST(NumberText, refusesWhatIsNoNumber) {
  NumberReading reading;
  for (const char* text :
       {"",     "-",   "+",   ".",   "-.",    "e5",  "1e",  "1e+", "1e5x", "4O",    "1,5",     "1 000",
        "0x10", "inf", "nan", "NaN", "1.2.3", "--1", "+-1", " 1",  "1 ",   "1e5.0", "\xD9\xA1"})
    EXPECT_FALSE(ReadNumberText(text, reading)) << text;
}

TEST(NumberText, countsDecimalsWithTheExponentTakenIn) {
  NumberReading reading;
  const std::pair<const char*, int> cases[] = {{"1", 0},      {"1.5", 1},   {"1.50", 2},  {"1.5e-3", 4},
                                               {"1.5e3", 0},  {"15e-1", 1}, {"1e-5", 5},  {".25", 2},
                                               {"-0.125", 3}, {"5.", 0},    {"1.25e1", 1}};
  for (const auto& [text, decimals] : cases) {
    ASSERT_TRUE(ReadNumberText(text, reading)) << text;
    EXPECT_EQ(reading.decimals, decimals) << text;
  }
}

TEST(NumberText, roundsLikeTheLibraryWhateverTheDigits) {
  std::mt19937_64 random(99);
  for (int round = 0; round < 200'000; ++round) {
    std::string text = random() % 2 ? "-" : "";
    for (std::size_t i = random() % 22; i > 0; --i) text += static_cast<char>('0' + random() % 10);
    text += static_cast<char>('0' + random() % 10);
    if (random() % 2) {
      text += '.';
      for (std::size_t i = random() % 25; i > 0; --i) text += static_cast<char>('0' + random() % 10);
    }
    if (random() % 3 == 0) text += "e" + std::to_string(static_cast<int>(random() % 700) - 350);
    NumberReading reading;
    ASSERT_TRUE(ReadNumberText(text, reading)) << text;
    ASSERT_EQ(reading.value, std::strtod(text.c_str(), nullptr)) << text;
  }
}

TEST(NumberText, readsNumbersPastTheRangeAsInfiniteOrZero) {
  NumberReading reading;
  ASSERT_TRUE(ReadNumberText("1e400", reading));
  EXPECT_EQ(reading.value, std::numeric_limits<double>::infinity());
  ASSERT_TRUE(ReadNumberText("-1e99999999999", reading));
  EXPECT_EQ(reading.value, -std::numeric_limits<double>::infinity());
  ASSERT_TRUE(ReadNumberText("1e-400", reading));
  EXPECT_EQ(reading.value, 0);
  ASSERT_TRUE(ReadNumberText("0." + std::string(400, '0') + "1", reading));
  EXPECT_EQ(reading.value, 0);
  ASSERT_TRUE(ReadNumberText("1" + std::string(400, '0'), reading));
  EXPECT_TRUE(std::isinf(reading.value));
  ASSERT_TRUE(ReadNumberText("0e999", reading));
  EXPECT_EQ(reading.value, 0);
}

TEST(NumberText, knowsWhichWholeNumbersAreExact) {
  NumberReading reading;
  const std::pair<const char*, bool> cases[] = {
      {"9007199254740992", true},      {"9007199254740993", false},   {"-9007199254740993", false},
      {"9007199254740994", true},      {"1152921504606846976", true}, {"1152921504606846977", false},
      {"18446744073709551616", false}, {"123456789012345", true},     {"00000000000000000007", true}};
  for (const auto& [text, exact] : cases) {
    ASSERT_TRUE(ReadIntegerText(text, reading)) << text;
    // A number past 64 bits is never called exact, though some powers of two would be.
    EXPECT_EQ(reading.isExact, exact) << text;
  }
}

TEST(IntegerText, hasASignAndDigitsAndNothingElse) {
  NumberReading reading;
  for (const char* text : {"1", "-12", "+12", "0", "-0", "000123", "12345678901234567890"})
    EXPECT_TRUE(ReadIntegerText(text, reading)) << text;
  for (const char* text : {"", "-", "+", "1.0", "1e3", "1-", "--1", "1 ", "12345678901234567x", "1234567890123456.5"})
    EXPECT_FALSE(ReadIntegerText(text, reading)) << text;
}

}  // namespace
}  // namespace runtime::data
