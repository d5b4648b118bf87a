#include "runtime/data/typing/datepattern.h"

#include <gtest/gtest.h>

#include "runtime/data/typing/datetext.h"

namespace runtime::data {
namespace {

std::optional<double> Read(const char* pattern, const char* text) {
  const DatePattern compiled(pattern);
  EXPECT_EQ(compiled.problem(), "") << pattern;
  return compiled.Read(text);
}

const double kDay = *ReadIsoDate("2013-11-23");

TEST(DatePattern, readsDates) {
  for (const auto& [pattern, text] : {std::pair{"%d/%m/%Y", "23/11/2013"},
                                      {"%m/%d/%y", "11/23/13"},
                                      {"%D", "11/23/13"},
                                      {"%x", "11/23/13"},
                                      {"%F", "2013-11-23"},
                                      {"%Y%m%d", "20131123"},
                                      {"%d %b %y", "23 Nov 13"},
                                      {"%d. %B %Y", "23. NOVEMBER 2013"},
                                      {"%B (%m), %a %d %Y", "November (11), Sat 23 2013"},
                                      {"%Y %j", "2013 327"},
                                      {"100%% %F", "100% 2013-11-23"}})
    EXPECT_EQ(Read(pattern, text), kDay) << pattern;
}

TEST(DatePattern, readsTimes) {
  EXPECT_EQ(Read("%H:%M", "8:30"), 30'600);
  EXPECT_EQ(Read("%T", "08:30:00"), 30'600);
  EXPECT_EQ(Read("%I:%M %p", "12:05 AM"), 300);
  EXPECT_EQ(Read("%I:%M %p", "12:05 pm"), 43'500);
  EXPECT_EQ(Read("%r", "01:00:00 PM"), 46'800);
  EXPECT_EQ(Read("%H:%M:%S.%f", "00:00:01.250"), 1.25);
}

TEST(DatePattern, readsDatesWithTimesAndZones) {
  EXPECT_EQ(Read("%Y-%m-%dT%H:%M:%S%z", "2013-11-23T01:00:00+0100"), kDay);
  EXPECT_EQ(Read("%Y-%m-%d %H:%M:%S %Z", "2013-11-23 01:00:00 UTC"), kDay + 3'600);
  EXPECT_EQ(Read("%c", "Sat Nov 23 00:00:01 2013"), kDay + 1);
}

TEST(DatePattern, putsTwoDigitYearsBetween1969And2068) {
  EXPECT_EQ(Read("%y-%m-%d", "68-01-01"), ReadIsoDate("2068-01-01"));
  EXPECT_EQ(Read("%y-%m-%d", "69-01-01"), ReadIsoDate("1969-01-01"));
}

TEST(DatePattern, readsOnlyTheWholeText) {
  EXPECT_EQ(Read("%d/%m/%Y", "23/11/2013x"), std::nullopt);
  EXPECT_EQ(Read("%d/%m/%Y", "23/11"), std::nullopt);
  EXPECT_EQ(Read("%d/%m/%Y", "31/02/2013"), std::nullopt);
  EXPECT_EQ(Read("%d/%m/%Y", "23-11-2013"), std::nullopt);
  EXPECT_EQ(Read("%Y %j", "2013 366"), std::nullopt);
  EXPECT_EQ(Read("%I %p", "13 PM"), std::nullopt);
}

TEST(DatePattern, namesAPartThatItDoesNotKnow) {
  EXPECT_NE(DatePattern("%Y-%Q").problem().find("\"%Q\""), std::string::npos);
  EXPECT_NE(DatePattern("%Y-%").problem(), "");
  EXPECT_NE(DatePattern("").problem(), "");
}

TEST(AnyMoment, readsDatesOfManyForms) {
  for (const char* text : {"2013-11-23", "2013/11/23", "20131123", "23.11.2013", "11/23/2013", "23/11/2013",
                           "23 Nov 2013", "23-Nov-2013", "November 23, 2013", "Sat, 23 Nov 2013", "Nov 23 2013"}) {
    const auto moment = ReadAnyMoment(text);
    ASSERT_TRUE(moment) << text;
    EXPECT_EQ(moment->date, kDay) << text;
    EXPECT_EQ(moment->time, std::nullopt) << text;
  }
  EXPECT_EQ(ReadAnyMoment("02/03/2013")->date, ReadIsoDate("2013-02-03"));
  EXPECT_EQ(ReadAnyMoment("02.03.2013")->date, ReadIsoDate("2013-03-02"));
}

TEST(AnyMoment, readsTimesOfManyForms) {
  for (const char* text : {"08:30", "8:30", "8:30:00", "8:30 AM", "08:30am", "10:30+02:00"}) {
    const auto moment = ReadAnyMoment(text);
    ASSERT_TRUE(moment) << text;
    EXPECT_EQ(moment->time, 30'600) << text;
    EXPECT_EQ(moment->date, std::nullopt) << text;
  }
  const auto both = ReadAnyMoment("2013-11-23T08:30:00Z");
  ASSERT_TRUE(both);
  EXPECT_EQ(both->date, kDay);
  EXPECT_EQ(both->time, 30'600);
}

TEST(AnyMoment, refusesWhatIsNone) {
  for (const char* text : {"", "x", "2013", "23", "2013-13-01", "2013-02-30", "13/13/2013", "Nov", "23 Nov", "8",
                           "25:00", "0:30 PM", "2013-11-23x", "2013-11-23 ab", "Novemberfest 23 2013", "99999999"})
    EXPECT_FALSE(ReadAnyMoment(text)) << text;
}

}  // namespace
}  // namespace runtime::data
