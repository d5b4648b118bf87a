#include "runtime/data/typing/datetext.h"

#include <ctime>
#include <optional>

#include <gtest/gtest.h>

namespace runtime::data {
namespace {

constexpr auto kNothing = std::nullopt;

TEST(DaysOfDate, agreeWithTheSystemCalendar) {
  for (std::int64_t day = -140'000; day < 200'000; day += 17) {
    const std::time_t seconds = day * 86'400;
    std::tm parts{};
    ASSERT_NE(gmtime_r(&seconds, &parts), nullptr);
    ASSERT_EQ(DaysOfDate(parts.tm_year + 1900, parts.tm_mon + 1, parts.tm_mday), day);
  }
}

TEST(IsoDate, isYearMonthDay) {
  EXPECT_EQ(ReadIsoDate("1970-01-01"), 0);
  EXPECT_EQ(ReadIsoDate("1969-12-31"), -86'400);
  EXPECT_EQ(ReadIsoDate("2024-02-29"), 1'709'164'800);
  EXPECT_EQ(ReadIsoDate("0001-01-01"), -62'135'596'800);
  for (const char* text : {"2023-02-29", "2024-13-01", "2024-00-01", "2024-01-00", "2024-1-1", "24-01-01", "2024/01/01",
                           "20240101", "2024-01-01 ", "2024-01-01Z", "1900-02-29", "2024-04-31", ""})
    EXPECT_EQ(ReadIsoDate(text), kNothing) << text;
}

TEST(IsoDateTime, hasATOrABlankBetweenDateAndTime) {
  EXPECT_EQ(ReadIsoDateTime("1970-01-02T03:04:05", false), 97'445);
  EXPECT_EQ(ReadIsoDateTime("1970-01-02 03:04:05", false), 97'445);
  EXPECT_EQ(ReadIsoDateTime("1970-01-01T00:00:01.25Z", false), 1.25);
  EXPECT_EQ(ReadIsoDateTime("1970-01-01T00:01", false), 60);
  EXPECT_EQ(ReadIsoDateTime("1970-01-01T00:00:00+01:00", false), kNothing);
  for (const char* text :
       {"1970-01-01", "1970-01-01T", "1970-01-01T24:00:00", "1970-01-01T00:60:00", "1970-01-01T00:00:60",
        "1970-01-01T00:00:00.", "1970-01-01T0:00:00", "1970-01-01  00:00:00", "1970-02-30T00:00:00"})
    EXPECT_EQ(ReadIsoDateTime(text, true), kNothing) << text;
}

TEST(IsoDateTime, takesAnOffsetOff) {
  EXPECT_EQ(ReadIsoDateTime("1970-01-01T02:00:00+02:00", true), 0);
  EXPECT_EQ(ReadIsoDateTime("1970-01-01T00:00:00-0130", true), 5'400);
  EXPECT_EQ(ReadIsoDateTime("1970-01-01T05:00:00+05", true), 0);
  EXPECT_EQ(ReadIsoDateTime("1970-01-01T05:00:00+05:", true), kNothing);
  EXPECT_EQ(ReadIsoDateTime("1970-01-01T05:00:00Zz", true), kNothing);
}

TEST(IsoTime, isHoursMinutesSeconds) {
  EXPECT_EQ(ReadIsoTime("00:00:00", false), 0);
  EXPECT_EQ(ReadIsoTime("23:59:59.5", false), 86'399.5);
  EXPECT_EQ(ReadIsoTime("01:02:03Z", false), 3'723);
  EXPECT_EQ(ReadIsoTime("01:02", false), kNothing);
  EXPECT_EQ(ReadIsoTime("01:02", true), 3'720);
  EXPECT_EQ(ReadIsoTime("1:02:03", true), kNothing);
  EXPECT_EQ(ReadIsoTime("24:00:00", true), kNothing);
}

TEST(IsoYearMonth, isTheFirstDayOfTheMonth) {
  EXPECT_EQ(ReadIsoYearMonth("1970-02"), 31 * 86'400);
  EXPECT_EQ(ReadIsoYearMonth("1970-13"), kNothing);
  EXPECT_EQ(ReadIsoYearMonth("1970-2"), kNothing);
}

TEST(IsoYear, isItsNumber) {
  EXPECT_EQ(ReadIsoYear("2024"), 2024);
  EXPECT_EQ(ReadIsoYear("-0044"), -44);
  EXPECT_EQ(ReadIsoYear("12024"), 12024);
  EXPECT_EQ(ReadIsoYear("98"), kNothing);
  EXPECT_EQ(ReadIsoYear("2024.5"), kNothing);
}

TEST(IsoDuration, addsUpItsParts) {
  EXPECT_EQ(ReadIsoDuration("PT1H2M3S"), 3'723);
  EXPECT_EQ(ReadIsoDuration("P1DT0.5S"), 86'400.5);
  EXPECT_EQ(ReadIsoDuration("-PT90M"), -5'400);
  EXPECT_EQ(ReadIsoDuration("P2W"), 1'209'600);
  EXPECT_EQ(ReadIsoDuration("P1Y"), 365.2425 * 86'400);
  EXPECT_EQ(ReadIsoDuration("P12M"), 365.2425 * 86'400);
  EXPECT_EQ(ReadIsoDuration("P0D"), 0);
  for (const char* text :
       {"P", "PT", "P1", "1D", "P1H", "PT1D", "P1DT", "P1D1Y", "PT1.5H2M", "P1W1D", "PT1S1M", "P-1D", ""})
    EXPECT_EQ(ReadIsoDuration(text), kNothing) << text;
}

}  // namespace
}  // namespace runtime::data
