#include "runtime/output/render/xlsx/celltext.h"

#include <string>

#include <gtest/gtest.h>

using runtime::output::kLongestCellText;

namespace {

std::string Fitted(const std::string& text) { return runtime::output::FitIntoCell(text, "~").text; }

std::string Repeated(const std::string& piece, std::size_t times) {
  std::string text;
  for (std::size_t i = 0; i < times; ++i) text += piece;
  return text;
}

}  // namespace

TEST(FitIntoCell, plainTextStaysAsItIs) {
  for (const char* text : {"", "plain", "=1+1", "http://example.org", " two  blanks ", "tab\tand\nline", "007",
                           "é 東京 👩‍👩‍👧"})
    EXPECT_EQ(Fitted(text), text);
  EXPECT_EQ(runtime::output::FitIntoCell("plain", "~").cutFrom, 0U);
}

TEST(FitIntoCell, whatXmlCannotHoldIsEscaped) {
  EXPECT_EQ(Fitted(std::string("a\0b", 3)), "a_x0000_b");
  EXPECT_EQ(Fitted("\x1b[31m\x07"), "_x001B_[31m_x0007_");
  EXPECT_EQ(Fitted("\r\n"), "_x000D_\n");
  EXPECT_EQ(Fitted("\xef\xbf\xbe\xef\xbf\xbf"), "_xFFFE__xFFFF_");
  EXPECT_EQ(Fitted("\x7f\xc2\x85"), "\x7f\xc2\x85");
}

TEST(FitIntoCell, whatLooksLikeAnEscapeStaysText) {
  EXPECT_EQ(Fitted("_x0041_"), "_x005F_x0041_");
  EXPECT_EQ(Fitted("_x0041_x0042_"), "_x005F_x0041_x005F_x0042_");
  EXPECT_EQ(Fitted("_xabcd_"), "_x005F_xabcd_");
  EXPECT_EQ(Fitted("_x004_ _x0041 _X0041_ _x00G1_"), "_x004_ _x0041 _X0041_ _x00G1_");
}

TEST(FitIntoCell, bytesThatAreNoUtf8BecomeReplacementCharacters) {
  EXPECT_EQ(Fitted("a\xff"), "a\xef\xbf\xbd");
  EXPECT_EQ(Fitted("\xed\xa0\x80"), Repeated("\xef\xbf\xbd", 3));
}

TEST(FitIntoCell, theLongestTextIsWhole) {
  const std::string longest(kLongestCellText, 'a');
  EXPECT_EQ(Fitted(longest), longest);
  const std::string wide = Repeated("😀", kLongestCellText / 2);
  EXPECT_EQ(Fitted(wide + "a"), wide + "a");
}

TEST(FitIntoCell, longerTextIsCutBehindACharacterWithAMark) {
  const auto plain = runtime::output::FitIntoCell(std::string(40000, 'a'), " [cut]");
  EXPECT_EQ(plain.text, std::string(kLongestCellText - 6, 'a') + " [cut]");
  EXPECT_EQ(plain.cutFrom, 40000U);

  // Two units each: the last one that would leave no room for the mark goes as a whole.
  const auto wide = runtime::output::FitIntoCell(Repeated("😀", 20000), "~");
  EXPECT_EQ(wide.text, Repeated("😀", (kLongestCellText - 1) / 2) + "~");
  EXPECT_EQ(wide.cutFrom, 20000U);

  // An escape counts as it stands in the file, and is not torn.
  const auto escaped = runtime::output::FitIntoCell(std::string(10000, '\x01'), "~");
  EXPECT_EQ(escaped.text, Repeated("_x0001_", (kLongestCellText - 1) / 7) + "~");
  EXPECT_EQ(escaped.cutFrom, 10000U);
}
