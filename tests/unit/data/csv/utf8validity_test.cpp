#include "runtime/data/csv/utf8validity.h"

#include <random>
#include <string>
#include <string_view>

#include <gtest/gtest.h>

#include "runtime/data/csv/encoding.h"
#include "runtime/data/csv/vectortargets.h"
#include "runtime/data/utf8walk.h"

namespace runtime::data {
namespace {

/// By the definition, a character after the other; the text's size when all are valid.
std::size_t ValidUpTo(std::string_view text) {
  std::size_t at = 0;
  while (at < text.size()) {
    const Utf8Step step = StepUtf8(text, at);
    if (!step.valid) break;
    at += step.length;
  }
  return at;
}

void ExpectAsDefined(const std::string& text) {
  const std::size_t valid = ValidUpTo(text);
  ASSERT_EQ(IsValidUtf8(text), valid == text.size()) << testing::PrintToString(text);
  ASSERT_EQ(FirstInvalidUtf8(text), valid == text.size() ? std::string_view::npos : valid)
      << testing::PrintToString(text);
}

TEST(Utf8Validity, isAsDefinedForAllSequencesOfThreeBytes) {
  // Leads and continuations at the borders of their ranges, and what is next to them.
  std::string bytes;
  for (const int byte : {0x00, 0x41, 0x7F, 0x80, 0x8F, 0x90, 0x9F, 0xA0, 0xBF, 0xC0, 0xC1, 0xC2, 0xDF,
                         0xE0, 0xE1, 0xEC, 0xED, 0xEE, 0xEF, 0xF0, 0xF1, 0xF3, 0xF4, 0xF5, 0xF8, 0xFF})
    bytes += static_cast<char>(byte);
  for (const char first : bytes)
    for (const char second : bytes)
      for (const char third : bytes)
        for (const char fourth : bytes) ExpectAsDefined({first, second, third, fourth});
}

TEST(Utf8Validity, isAsDefinedForEveryCharacter) {
  for (char32_t character = 0; character <= 0x10FFFF; ++character) {
    std::string text;
    AppendUtf8(text, character);
    const bool isSurrogate = character >= 0xD800 && character <= 0xDFFF;
    ASSERT_EQ(IsValidUtf8(text), !isSurrogate) << static_cast<std::uint32_t>(character);
  }
}

TEST(Utf8Validity, dependsNeitherOnThePlaceNorOnTheVectors) {
  WithEachVectorTarget([](const char* target) {
    SCOPED_TRACE(target);
    for (std::size_t before = 0; before < 200; ++before) {
      for (const std::size_t behind : {0U, 1U, 2U, 63U, 64U, 65U}) {
        for (const std::string piece :
             {"\xC3\xA9", "\xE2\x82\xAC", "\xF0\x9F\x98\x80", "\xC3", "\xE2\x82", "\xF0\x9F\x98", "\x80", "\xC0\x80",
              "\xED\xA0\x80", "\xF4\x90\x80\x80", "\xE2\x82\xAC\xAC"}) {
          ExpectAsDefined(std::string(before, 'x') + piece + std::string(behind, 'y'));
          if (HasFatalFailure()) return;
        }
      }
    }
  });
}

TEST(Utf8Validity, isAsDefinedForRandomTexts) {
  std::mt19937 random(5);
  int valid = 0;
  constexpr int kRounds = 30'000;
  for (int round = 0; round < kRounds; ++round) {
    std::string text;
    for (auto characters = random() % 150; characters > 0; --characters) {
      const char32_t most[] = {0x7F, 0x7FF, 0xFFFF, 0x10FFFF};
      const char32_t character = static_cast<char32_t>(random()) % most[random() % 4];
      AppendUtf8(text, character >= 0xD800 && character <= 0xDFFF ? U'a' : character);
    }
    if (round % 2 == 0 && !text.empty()) text[random() % text.size()] = static_cast<char>(random() % 256);
    ExpectAsDefined(text);
    valid += IsValidUtf8(text) ? 1 : 0;
  }
  EXPECT_GT(valid, kRounds / 2);
  EXPECT_LT(valid, kRounds * 3 / 4);
}

}  // namespace
}  // namespace runtime::data
