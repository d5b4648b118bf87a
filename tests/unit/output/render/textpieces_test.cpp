// The parts that drawn tables are made of: harmless texts, widths, line breaks, column widths.
#include <numeric>
#include <random>
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

#include "runtime/output/render/characters.h"
#include "runtime/output/render/columnwidths.h"
#include "runtime/output/render/terminaltext.h"
#include "runtime/output/render/textwidth.h"
#include "runtime/output/render/textwrap.h"
#include "tests/unit/output/randomreport.h"

using runtime::output::ColumnNeed;
using runtime::output::Comfort;
using runtime::output::DisplayWidth;
using runtime::output::EscapeForTerminal;
using runtime::output::LineEnds;
using runtime::output::ShareWidth;
using runtime::output::SqueezeWidth;
using runtime::output::WrapText;

namespace {

std::string Kept(std::string_view text) { return EscapeForTerminal(text, true, LineEnds::Keep); }

std::vector<std::string> Lines(std::string_view text, int width) {
  std::vector<std::string> lines;
  for (const std::string_view line : WrapText(text, width)) lines.emplace_back(line);
  return lines;
}

std::string WithoutBlanks(std::string_view text) {
  std::string kept;
  for (const char c : text)
    if (c != ' ' && c != '\n') kept += c;
  return kept;
}

int Sum(const std::vector<int>& widths) { return std::accumulate(widths.begin(), widths.end(), 0); }

}  // namespace

TEST(TerminalText, showsControlsAndMarksAsEscapes) {
  EXPECT_EQ(Kept("plain text\\n"), "plain text\\n");
  EXPECT_EQ(Kept("\x1b[31mred"), "\\x1b[31mred");
  EXPECT_EQ(Kept(std::string("\0", 1)), "\\x00");
  EXPECT_EQ(Kept("\x7f\xc2\x9b"), "\\x7f\\x9b");
  EXPECT_EQ(Kept("\xe2\x80\xae"
                 "abc\xe2\x81\xa9"),
            "\\u202eabc\\u2069");
  EXPECT_EQ(Kept("\xe2\x80\xa8\xe2\x80\x8b\xef\xbb\xbf\xc2\xad"), "\\u2028\\u200b\\ufeff\\xad");
  EXPECT_EQ(Kept("\xf3\xa0\x81\x81"), "\\U000e0041");
  EXPECT_EQ(Kept("\xef\xbf\xbe"), "\\ufffe");
  EXPECT_EQ(Kept("a\tb"), "a    b");
  EXPECT_EQ(Kept("a\nb\r\nc\rd"), "a\nb\nc\\x0dd");
  EXPECT_EQ(EscapeForTerminal("a\nb\r\n", true, LineEnds::Escape), "a\\x0ab\\x0d\\x0a");
  EXPECT_EQ(Kept("\xff\xc0\xaf"), "\xEF\xBF\xBD\xEF\xBF\xBD\xEF\xBF\xBD");
}

TEST(TerminalText, keepsWhatScriptsNeed) {
  for (const char* text : {"Köln", "東京", "👩‍👩‍👧‍👦", "❤️", "e\xcc\x81", "نمی‌خواهم",
                           "שלום", "ไทย", "\xC2\xA0"}) {
    EXPECT_EQ(Kept(text), text);
  }
}

TEST(TerminalText, isAsciiOnlyWithoutUtf8) {
  EXPECT_EQ(EscapeForTerminal("Köln", false, LineEnds::Keep), "K\\xf6ln");
  EXPECT_EQ(EscapeForTerminal("東", false, LineEnds::Keep), "\\u6771");
  EXPECT_EQ(EscapeForTerminal("😀", false, LineEnds::Keep), "\\U0001f600");
  EXPECT_EQ(EscapeForTerminal("\xff", false, LineEnds::Keep), "\\ufffd");
}

TEST(TerminalText, neverHoldsAControlCharacter) {
  RandomReport random(4);
  for (int i = 0; i < 5000; ++i) {
    const std::string shown = Kept(random.Text());
    for (std::size_t at = 0; at < shown.size();) {
      bool valid = true;
      const char32_t character = runtime::output::NextCharacter(shown, at, valid);
      ASSERT_TRUE(valid);
      ASSERT_TRUE(character == '\n' || !runtime::output::IsHidden(character));
    }
  }
}

TEST(DisplayWidth, countsWhatAReaderSees) {
  EXPECT_EQ(DisplayWidth(""), 0);
  EXPECT_EQ(DisplayWidth("abc"), 3);
  EXPECT_EQ(DisplayWidth("Köln"), 4);
  EXPECT_EQ(DisplayWidth("東京"), 4);
  EXPECT_EQ(DisplayWidth("ｱ"), 1);   // half width
  EXPECT_EQ(DisplayWidth("Ａ"), 2);  // full width
  EXPECT_EQ(DisplayWidth("한국어"), 6);
  EXPECT_EQ(DisplayWidth("\xe1\x84\x92\xe1\x85\xa1\xe1\x86\xab"), 2);  // one syllable of three letters
  EXPECT_EQ(DisplayWidth("e\xcc\x81"), 1);
  EXPECT_EQ(DisplayWidth("\xcc\x81"), 0);
  EXPECT_EQ(DisplayWidth("ไทย"), 3);
  EXPECT_EQ(DisplayWidth("ที่"), 1);
  EXPECT_EQ(DisplayWidth("😀"), 2);
  EXPECT_EQ(DisplayWidth("👍🏽"), 2);
  EXPECT_EQ(DisplayWidth("👩‍👩‍👧‍👦"), 2);
  EXPECT_EQ(DisplayWidth("❤"), 1);
  EXPECT_EQ(DisplayWidth("❤️"), 2);
  EXPECT_EQ(DisplayWidth("🇩🇪"), 2);
  EXPECT_EQ(DisplayWidth("😀😀"), 4);
  EXPECT_EQ(DisplayWidth("a😀b"), 4);
  EXPECT_EQ(DisplayWidth("שלום"), 4);
  EXPECT_EQ(DisplayWidth("┌─┐"), 3);
}

TEST(WrapText, breaksBetweenWords) {
  using V = std::vector<std::string>;
  EXPECT_EQ(Lines("", 10), (V{""}));
  EXPECT_EQ(Lines("one two three", 13), (V{"one two three"}));
  EXPECT_EQ(Lines("one two three", 12), (V{"one two", "three"}));
  EXPECT_EQ(Lines("one two three", 7), (V{"one two", "three"}));
  EXPECT_EQ(Lines("one two three", 5), (V{"one", "two", "three"}));
  EXPECT_EQ(Lines("one   two", 5), (V{"one", "two"}));
  EXPECT_EQ(Lines("one two   ", 7), (V{"one two"}));
  EXPECT_EQ(Lines("  indented text", 15), (V{"  indented text"}));
  EXPECT_EQ(Lines("  indented text", 10), (V{"  indented", "text"}));
  EXPECT_EQ(Lines("      ", 3), (V{""}));
  EXPECT_EQ(Lines("Kosten-Nutzen-Analyse", 14), (V{"Kosten-Nutzen-", "Analyse"}));
  EXPECT_EQ(Lines("a -5 b", 4), (V{"a -5", "b"}));
}

TEST(WrapText, breaksPathsAtTheirSeparators) {
  using V = std::vector<std::string>;
  EXPECT_EQ(Lines("/home/maria/social-survey/data", 22), (V{"/home/maria/", "social-survey/data"}));
  EXPECT_EQ(Lines("C:\\data\\survey", 10), (V{"C:\\data\\", "survey"}));
}

TEST(WrapText, breaksLongWordsBetweenCharacters) {
  using V = std::vector<std::string>;
  EXPECT_EQ(Lines("abcdefgh", 3), (V{"abc", "def", "gh"}));
  EXPECT_EQ(Lines("abcdefgh ij", 5), (V{"abcde", "fgh", "ij"}));
  EXPECT_EQ(Lines("x abcdefgh ij", 6), (V{"x", "abcdef", "gh ij"}));
  EXPECT_EQ(Lines("東京都", 3), (V{"東", "京", "都"}));
  EXPECT_EQ(Lines("東京都", 1), (V{"東", "京", "都"}));
  EXPECT_EQ(Lines("👩‍👩‍👧‍👦👩‍👩‍👧‍👦", 3),
            (V{"👩‍👩‍👧‍👦", "👩‍👩‍👧‍👦"}));
  EXPECT_EQ(Lines("e\xcc\x81"
                  "e\xcc\x81"
                  "e\xcc\x81",
                  2),
            (V{"e\xcc\x81"
               "e\xcc\x81",
               "e\xcc\x81"}));
}

TEST(WrapText, keepsLineEndsOfTheText) {
  using V = std::vector<std::string>;
  EXPECT_EQ(Lines("ab\nc", 10), (V{"ab", "c"}));
  EXPECT_EQ(Lines("ab\nc\n", 10), (V{"ab", "c"}));
  EXPECT_EQ(Lines("ab\n\nc\n\n", 10), (V{"ab", "", "c", ""}));
  EXPECT_EQ(Lines("\n", 10), (V{""}));
}

TEST(WrapText, losesNothingAndKeepsToTheWidth) {
  RandomReport random(9);
  for (int i = 0; i < 20000; ++i) {
    const std::string text = Kept(random.Text());
    const int width = 1 + static_cast<int>(random.Below(40));
    std::string joined;
    for (const std::string_view line : WrapText(text, width)) {
      joined += line;
      ASSERT_LE(DisplayWidth(line), std::max(width, 2)) << text;
    }
    ASSERT_EQ(WithoutBlanks(joined), WithoutBlanks(text)) << width;
  }
}

TEST(WrapText, takesVeryLongTexts) {
  std::string text;
  for (int i = 0; i < 40000; ++i) text += i % 97 == 96 ? ' ' : 'x';
  std::size_t characters = 0;
  for (const std::string_view line : WrapText(text, 10)) characters += WithoutBlanks(line).size();
  EXPECT_EQ(characters, WithoutBlanks(text).size());
  std::string marks = "e";
  for (int i = 0; i < 40000; ++i) marks += "\xcc\x81";
  EXPECT_EQ(WrapText(marks, 10).size(), 1u);
}

TEST(ColumnWidths, areNaturalWhereThereIsRoom) {
  const std::vector<ColumnNeed> needs = {{3, 5, 10, false}, {4, 4, 4, true}};
  EXPECT_EQ(ShareWidth(needs, 14, Comfort::Comfortable), (std::vector<int>{10, 4}));
  EXPECT_EQ(ShareWidth(needs, 100, Comfort::Comfortable), (std::vector<int>{10, 4}));
  EXPECT_EQ(ShareWidth(needs, 12, Comfort::Comfortable), (std::vector<int>{8, 4}));
  EXPECT_EQ(ShareWidth(needs, 8, Comfort::Comfortable), std::nullopt);
  EXPECT_EQ(ShareWidth(needs, 8, Comfort::Least), (std::vector<int>{4, 4}));
  EXPECT_EQ(ShareWidth(needs, 6, Comfort::Least), std::nullopt);
}

TEST(ColumnWidths, narrowTextsBeforeNumbers) {
  EXPECT_EQ(SqueezeWidth({{12, 12, 12, false}, {20, 20, 20, false}, {7, 7, 7, true}}, 27),
            (std::vector<int>{10, 10, 7}));
  EXPECT_EQ(SqueezeWidth({{5, 5, 5, false}, {20, 20, 20, true}}, 10), (std::vector<int>{5, 5}));
  EXPECT_EQ(SqueezeWidth({{5, 5, 5, false}, {20, 20, 20, true}}, 1), (std::vector<int>{2, 2}));
}

TEST(ColumnWidths, fillThePageAndKeepTheirBounds) {
  std::mt19937_64 random(6);
  for (int i = 0; i < 20000; ++i) {
    std::vector<ColumnNeed> needs(1 + random() % 6);
    int least = 0;
    int natural = 0;
    for (ColumnNeed& need : needs) {
      need.least = 1 + static_cast<int>(random() % 12);
      need.comfortable = need.least + static_cast<int>(random() % 8);
      need.natural = need.comfortable + static_cast<int>(random() % 60);
      need.numeric = random() % 2 == 0;
      least += need.least;
      natural += need.natural;
    }
    const int available = static_cast<int>(random() % 150);
    const auto widths = ShareWidth(needs, available, Comfort::Least);
    ASSERT_EQ(widths.has_value(), least <= available);
    if (!widths) {
      const std::vector<int> squeezed = SqueezeWidth(needs, available);
      ASSERT_LE(Sum(squeezed), std::max(available, 2 * static_cast<int>(needs.size())));
      continue;
    }
    ASSERT_EQ(Sum(*widths), std::min(available, natural));
    for (std::size_t c = 0; c < needs.size(); ++c) {
      ASSERT_GE((*widths)[c], needs[c].least);
      ASSERT_LE((*widths)[c], needs[c].natural);
    }
  }
}
