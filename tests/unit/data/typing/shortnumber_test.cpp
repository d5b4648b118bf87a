#include "runtime/data/typing/shortnumber.h"

#include <charconv>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "runtime/data/typing/numbertext.h"

namespace runtime::data {
namespace {

/// A text with room behind it that holds what would be misread.
class Padded {
 public:
  explicit Padded(const std::string& text) : fText(text + std::string(40, '7')), fSize(text.size()) {}
  const char* at() const { return fText.data(); }
  std::uint32_t size() const { return static_cast<std::uint32_t>(fSize); }

 private:
  std::string fText;
  std::size_t fSize;
};

TEST(CodeTable, readsWholeNumbersOfTwoCharacters) {
  const CodeTable& table = CodeTable::Get();
  const auto read = [&](const std::string& text) { return table.Read(Padded(text).at(), Padded(text).size()); };
  EXPECT_EQ(read("0"), 0);
  EXPECT_EQ(read("7"), 7);
  EXPECT_EQ(read("-9"), -9);
  EXPECT_EQ(read("10"), 10);
  EXPECT_EQ(read("99"), 99);
  EXPECT_EQ(read("3 "), 3);
  EXPECT_EQ(read(" 3"), 3);
  for (const char* blank : {"", " ", "  "}) EXPECT_EQ(read(blank), CodeTable::kBlank);
  const std::string nul("\0", 1);
  const std::vector<std::string> others = {"01", "+1", "-", "x", "1x", "1.", "--", "\t", nul, "1" + nul};
  for (const std::string& other : others) EXPECT_EQ(read(other), CodeTable::kNoCode) << testing::PrintToString(other);
}

/// A text of digits, points, signs and now and then something else.
std::string RandomText(std::mt19937_64& random, std::size_t mostCharacters) {
  static const std::string kCharacters = "0123456789012345678901234567890123456789..-";
  static const std::string kOthers = "+ eE,x:/\xff";
  std::string text;
  const std::size_t size = random() % mostCharacters + 1;
  while (text.size() < size) text += kCharacters[random() % kCharacters.size()];
  if (random() % 4 != 0) {
    // Mostly with one point at most and a sign at the front only.
    std::string plain = random() % 3 == 0 ? "-" : "";
    bool hasPoint = false;
    for (const char c : text) {
      if (c == '-' || (c == '.' && hasPoint)) continue;
      hasPoint = hasPoint || c == '.';
      plain += c;
    }
    if (!plain.empty() && plain.size() <= mostCharacters) text = plain;
  }
  if (random() % 20 == 0) text[random() % text.size()] = kOthers[random() % kOthers.size()];
  return text;
}

TEST(ShortInteger, isReadAsTheLibraryReadsItOrNotAtAll) {
  std::mt19937_64 random(1);
  int read = 0;
  for (int round = 0; round < 200'000; ++round) {
    const std::string text = RandomText(random, 8);
    std::int32_t value = 0;
    if (!ReadShortInteger(Padded(text).at(), Padded(text).size(), value)) continue;
    ++read;
    std::int32_t expected = 0;
    const auto result = std::from_chars(text.data(), text.data() + text.size(), expected);
    ASSERT_TRUE(result.ec == std::errc() && result.ptr == text.data() + text.size()) << text;
    ASSERT_EQ(value, expected) << text;
  }
  EXPECT_GT(read, 50'000);
}

TEST(ShortNumber, isRoundedAsTheLibraryRoundsItOrNotReadAtAll) {
  std::mt19937_64 random(2);
  int read = 0;
  int readLong = 0;
  for (int round = 0; round < 1'000'000; ++round) {
    const std::string text = RandomText(random, kMostOfShortNumber);
    ShortNumber number;
    if (!ReadShortNumber(Padded(text).at(), Padded(text).size(), number)) continue;
    ++read;
    readLong += text.size() > 17 ? 1 : 0;
    double expected = 0.0;
    const auto result = std::from_chars(text.data(), text.data() + text.size(), expected);
    ASSERT_TRUE(result.ec == std::errc() && result.ptr == text.data() + text.size()) << text;
    ASSERT_EQ(number.value, expected) << text;
    const std::size_t point = text.find('.');
    ASSERT_EQ(number.decimals, point == std::string::npos ? 0 : static_cast<int>(text.size() - point - 1)) << text;
  }
  EXPECT_GT(read, 200'000);
  EXPECT_GT(readLong, 20'000);
}

TEST(ShortNumber, leavesOtherFormsToOthers) {
  ShortNumber number;
  for (const char* text :
       {"-", ".5", "5.", "+1", "00", "01.5", "1e5", "1 ", " 1", "1.2.3", "12345678901234567", "-.", "1-"})
    EXPECT_FALSE(ReadShortNumber(Padded(text).at(), Padded(text).size(), number)) << text;
}

TEST(ExtendedDivision, roundsAsTheLibraryOrDeclines) {
  std::mt19937_64 random(3);
  int declined = 0;
  for (int round = 0; round < 500'000; ++round) {
    const std::uint64_t mantissa = (random() >> (random() % 12)) | 1U;
    const int decimals = static_cast<int>(random() % 28);
    double quotient = 0.0;
    if (!DivideInExtendedPrecision(mantissa, decimals, quotient)) {
      ++declined;
      continue;
    }
    const std::string text = std::to_string(mantissa) + "e-" + std::to_string(decimals);
    double expected = 0.0;
    std::from_chars(text.data(), text.data() + text.size(), expected);
    ASSERT_EQ(quotient, expected) << text;
  }
  EXPECT_LT(declined, 5'000);
}

}  // namespace
}  // namespace runtime::data
