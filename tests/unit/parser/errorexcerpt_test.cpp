#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "runtime/parser/sourcetext.h"
#include "runtime/parser/visibletext.h"

namespace {

using runtime::parser::ShowText;
using runtime::parser::SourceText;
using testing::HasSubstr;
using testing::Not;

TEST(SourceText, givesLinesWithoutTheirEnds) {
  const SourceText source("a\nb\r\nc\rd");
  EXPECT_EQ(source.lineCount(), 4);
  EXPECT_EQ(source.line(1), "a");
  EXPECT_EQ(source.line(2), "b");
  EXPECT_EQ(source.line(3), "c");
  EXPECT_EQ(source.line(4), "d");
  EXPECT_EQ(source.line(0), "");
  EXPECT_EQ(source.line(5), "");
}

TEST(Excerpt, putsTheCaretUnderThePlace) {
  EXPECT_EQ(SourceText("CODEBOOK /VARINFO LABLE").Excerpt({1, 19}),
            "  CODEBOOK /VARINFO LABLE\n"
            "                    ^");
}

TEST(Excerpt, putsTheCaretBehindTheLastCharacterAtTheEnd) {
  EXPECT_EQ(SourceText("ab").Excerpt({1, 3}), "  ab\n    ^");
  EXPECT_EQ(SourceText("ab").Excerpt({1, 99}), "  ab\n    ^");
  EXPECT_EQ(SourceText("").Excerpt({1, 1}), "  \n  ^");
}

TEST(Excerpt, countsWideCharactersAsTwoColumnsAndMarksAsNone) {
  EXPECT_EQ(SourceText("日本 x").Excerpt({1, 4}), "  日本 x\n       ^");
  EXPECT_EQ(SourceText("😀 x").Excerpt({1, 3}), "  😀 x\n     ^");
  EXPECT_EQ(SourceText("e\xCC\x81 x").Excerpt({1, 4}), "  e\xCC\x81 x\n    ^");
}

TEST(Excerpt, showsATabAsBlanks) { EXPECT_EQ(SourceText("\tx").Excerpt({1, 2}), "      x\n      ^"); }

TEST(Excerpt, writesOutWhatATerminalWouldActOn) {
  const std::string excerpt = SourceText("\x1B[31m\xE2\x80\xAE x\x7F\xC2\x85\xEF\xBB\xBF y\xFF").Excerpt({1, 8});
  EXPECT_EQ(excerpt,
            "  <U+001B>[31m<U+202E> x<U+007F><U+0085><U+FEFF> y<FF>\n"
            "                       ^");
}

TEST(Excerpt, showsTheSurroundingsOfAPlaceInALongLine) {
  const std::string line = std::string(1000, 'a') + "X" + std::string(1000, 'b');
  EXPECT_EQ(SourceText(line).Excerpt({1, 1001}),
            "  ..." + std::string(60, 'a') + "X" + std::string(39, 'b') + "...\n" + std::string(65, ' ') + "^");
}

TEST(Excerpt, boundsALineOfCharactersWithoutWidth) {
  std::string line;
  for (int i = 0; i < 100'000; ++i) line += "\xCC\x81";
  EXPECT_LT(SourceText(line).Excerpt({1, 50'000}).size(), 2'000U);
}

TEST(ShowText, cutsALongText) {
  EXPECT_EQ(ShowText("abc"), "abc");
  EXPECT_EQ(ShowText(std::string(61, 'a')), std::string(60, 'a') + "...");
  EXPECT_EQ(ShowText("日日日", 5), "日日...");
  EXPECT_THAT(ShowText(std::string("\0\x07", 2)), Not(HasSubstr("\x07")));
}

}  // namespace
