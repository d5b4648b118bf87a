#include "runtime/data/csv/encodingdetection.h"

#include <random>
#include <string>
#include <string_view>

#include <gtest/gtest.h>

#include "runtime/data/csv/encoding.h"

namespace runtime::data {
namespace {

using namespace std::string_view_literals;

std::string NameOf(std::string_view bytes) {
  const auto detected = DetectEncoding(bytes);
  return detected ? detected->name : "none";
}

TEST(Encoding, ofAFewBytesIsWindows1252) {
  EXPECT_EQ(NameOf("name,town\nAnn,Z\xFCrich\n"), "windows-1252");
  EXPECT_EQ(NameOf("price\n\x80 5\n"), "windows-1252");
  EXPECT_EQ(DetectEncoding("a\nZ\xFCrich\n")->otherBytes, 1U);
}

TEST(Encoding, thatFitsNoneIsNotGuessed) { EXPECT_EQ(NameOf("a\nx\x81\n"), "none"); }

TEST(Encoding, isUtf8WithDamagedPlacesWhenMostOfItIs) {
  EXPECT_EQ(NameOf("a\nZ\xC3\xBCrich\nB\xC3\xA4r\nx\xFFy\n"), "none");
  EXPECT_EQ(NameOf("a\nZ\xC3\xBCrich\ncut off\xC3"), "none");
}

TEST(Encoding, ofOtherScriptsIsFoundByTheirLetters) {
  // "the weather is good today, and tomorrow too" or so, several times.
  std::string russian = "id,text\n";
  std::string japanese = "id,text\n";
  for (int i = 0; i < 20; ++i) {
    russian += std::to_string(i) +
               ",\xF1\xE5\xE3\xEE\xE4\xED\xFF \xF5\xEE\xF0\xEE\xF8\xE0\xFF \xEF\xEE\xE3\xEE\xE4\xE0 "
               "\xE8 \xE7\xE0\xE2\xF2\xF0\xE0 \xF2\xEE\xE6\xE5\n";
    japanese += std::to_string(i) + ",\x8D\xA1\x93\xFA\x82\xCD\x93V\x8B\x43\x82\xAA\x82\xA2\x82\xA2\x82\xC5\x82\xB7\n";
  }
  EXPECT_EQ(NameOf(russian), "windows-1251");
  EXPECT_EQ(NameOf(japanese), "Shift_JIS");
}

TEST(WideEncoding, isFoundByItsZeros) {
  EXPECT_EQ(DetectWideEncoding("a\0,\0b\0\n\0001\0,\0002\0\n\0"sv), "UTF-16LE");
  EXPECT_EQ(DetectWideEncoding("\0a\0,\0b\0\n"sv), "UTF-16BE");
  // Cyrillic letters have no zeros; delimiters and line ends do.
  EXPECT_EQ(DetectWideEncoding("\x18\x04\x3C\x04\x4F\x04\n\0\x10\x04\n\0"sv), "UTF-16LE");
}

TEST(WideEncoding, isNotSeenInOtherBytes) {
  EXPECT_FALSE(DetectWideEncoding("a,b\n1,2\n"));
  EXPECT_FALSE(DetectWideEncoding("a,b\nx\0y,2\n"sv)) << "a zero in a cell";
  EXPECT_FALSE(DetectWideEncoding("a\0\0\0,\0\0\0"sv)) << "UTF-32";
  EXPECT_FALSE(DetectWideEncoding(""));
  std::mt19937 random(5);
  for (int i = 0; i < 200; ++i) {
    std::string bytes;
    for (int n = 0; n < 4'000; ++n) bytes += static_cast<char>(random());
    EXPECT_FALSE(DetectWideEncoding(bytes));
  }
}

}  // namespace
}  // namespace runtime::data
