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

/// Rows with a number and that text, in its encoding.
std::string Rows(const std::string& text) {
  std::string rows = "id,town,answer\n";
  for (int row = 0; row < 12; ++row) rows += std::to_string(row) + "," + text + "\n";
  return rows;
}

TEST(Encoding, ofOtherScriptsIsFoundByTheirLetters) {
  // Moscow, central district; Novgorod, no answer
  EXPECT_EQ(NameOf(Rows("\xCC\xEE\xF1\xEA\xE2\xE0,\xF6\xE5\xED\xF2\xF0\xE0\xEB\xFC\xED\xFB\xE9 \xEE\xEA\xF0\xF3\xE3\n"
                        "9,\xCD\xEE\xE2\xE3\xEE\xF0\xEE\xE4,\xED\xE5\xF2 \xEE\xF2\xE2\xE5\xF2\xE0")),
            "windows-1251");
  // Tokyo, do not know
  EXPECT_EQ(NameOf(Rows("\x93\x8C\x8B\x9E\x93s,\x82\xED\x82\xA9\x82\xE7\x82\xC8\x82\xA2")), "Shift_JIS");
  // Beijing, very satisfied
  EXPECT_EQ(NameOf(Rows("\xB1\xB1\xBE\xA9\xCA\xD0,\xB7\xC7\xB3\xA3\xC2\xFA\xD2\xE2")), "GB18030");
}

TEST(Encoding, ofLanguagesInLatinLettersIsFoundWhereTheirLettersSayIt) {
  // Łódź, województwo łódzkie; Poznań, zupełnie się nie zgadzam
  EXPECT_EQ(
      NameOf(Rows("\xA3\xF3\x64\x9F,wojew\xF3\x64ztwo \xB3\xF3\x64zkie\n9,Pozna\xF1,zupe\xB3nie si\xEA nie zgadzam")),
      "windows-1250");
  // Köln, trifft überhaupt nicht zu; München, weiß nicht
  EXPECT_EQ(NameOf(Rows("K\xF6ln,trifft \xFC\x62\x65rhaupt nicht zu\n9,M\xFCnchen,wei\xDF nicht")), "windows-1252");
  // Names from many countries say nothing.
  EXPECT_EQ(NameOf(Rows("Jos\xE9 Garc\xED\x61,Bogot\xE1\n9,S\xF8ren \xC5ngstr\xF6m,K\xF8\x62\x65nhavn")),
            "windows-1252");
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
  EXPECT_FALSE(DetectWideEncoding("a,b\r\n\xC3\xA9,\0\n"sv));
  EXPECT_FALSE(DetectWideEncoding("a,b\n\0a,1\nx,y\n"sv));
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
