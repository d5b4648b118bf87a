#include "runtime/data/dictionary/formattext.h"

#include <string>

#include <gtest/gtest.h>

namespace runtime::data {
namespace {

void ExpectFormat(const char* text, int type, int width, int decimals) {
  const FormatReading reading = ReadFormatText(text);
  EXPECT_EQ(reading.problem, "") << text;
  EXPECT_EQ(reading.format.type, type) << text;
  EXPECT_EQ(reading.format.width, width) << text;
  EXPECT_EQ(reading.format.decimals, decimals) << text;
}

TEST(FormatText, readsTypeWidthAndDecimals) {
  ExpectFormat("F8.2", kFormatF, 8, 2);
  ExpectFormat("f8.0", kFormatF, 8, 0);
  ExpectFormat("A20", kFormatA, 20, 0);
  ExpectFormat("AHEX4", kFormatAHex, 4, 0);
  ExpectFormat("SDATE10", kFormatSDate, 10, 0);
  ExpectFormat("DATETIME23.2", kFormatDateTime, 23, 2);
  ExpectFormat("YMDHMS19", kFormatYMDHMS, 19, 0);
  ExpectFormat("MTIME8", kFormatMTime, 8, 0);
  ExpectFormat("CCE12.3", kFormatCCE, 12, 3);
  ExpectFormat("PIBHEX4", kFormatPIBHex, 4, 0);
  ExpectFormat("A32767", kFormatA, 32767, 0);
}

TEST(FormatText, writesWhatItReads) {
  for (const char* text : {"F8.2", "A20", "SDATE10", "DTIME15", "COMMA10.1", "G5"})
    EXPECT_EQ(WriteFormatText(ReadFormatText(text).format), text);
}

TEST(FormatText, refusesWhatIsNoFormat) {
  for (const char* text :
       {"",     "F",         "8.2",  "X8",     "F0",    "F8.", "F8.2x", "F8,2", "F-8", "F41", "A32768", "F99999999999",
        "A8.2", "SDATE10.1", "F2.2", "F20.17", "AHEX3", "F 8", " F8",   "FÄ8"})
    EXPECT_NE(ReadFormatText(text).problem, "") << text;
}

TEST(FormatText, tellsStringsFromNumbers) {
  EXPECT_TRUE(IsStringFormat(kFormatA));
  EXPECT_TRUE(IsStringFormat(kFormatAHex));
  EXPECT_FALSE(IsStringFormat(kFormatF));
  EXPECT_TRUE(IsTemporalFormat(kFormatYMDHMS));
  EXPECT_TRUE(IsTemporalFormat(kFormatDTime));
  EXPECT_FALSE(IsTemporalFormat(kFormatPct));
}

}  // namespace
}  // namespace runtime::data
