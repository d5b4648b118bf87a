#include <cstdint>
#include <ctime>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "runtime/output/format/calendar.h"
#include "runtime/output/format/kinds.h"
#include "runtime/output/format/valueformat.h"

using runtime::output::DateOfDay;
using runtime::output::FormatNumber;

namespace {

constexpr double kDay = 86400.0;
constexpr double kLastOf1999 = 946684799.0;    // 1999-12-31T23:59:59
constexpr double kLeapDay2024 = 1709164800.0;  // 2024-02-29T00:00:00

struct Case {
  double value;
  FormatType type;
  int width;
  int decimals;
  const char* text;
};

void Check(const std::vector<Case>& cases) {
  for (const Case& c : cases) {
    EXPECT_EQ(FormatNumber(c.value, {c.type, c.width, c.decimals}), c.text)
        << c.value << " as " << runtime::output::FormatSpecText({c.type, c.width, c.decimals});
  }
}

}  // namespace

TEST(DateFormats, showTheDayInTheirWay) {
  Check({
      {kLastOf1999, kFormatDate, 11, 0, "31-DEC-1999"},
      {kLastOf1999, kFormatDate, 0, 0, "31-DEC-1999"},
      {kLastOf1999, kFormatDate, 20, 0, "31-DEC-1999"},
      {kLastOf1999, kFormatDate, 9, 0, "31-DEC-99"},
      {kLastOf1999, kFormatADate, 10, 0, "12/31/1999"},
      {kLastOf1999, kFormatADate, 8, 0, "12/31/99"},
      {kLastOf1999, kFormatEDate, 10, 0, "31.12.1999"},
      {kLastOf1999, kFormatEDate, 8, 0, "31.12.99"},
      {kLastOf1999, kFormatSDate, 10, 0, "1999/12/31"},
      {kLastOf1999, kFormatSDate, 8, 0, "99/12/31"},
      {kLastOf1999, kFormatJDate, 7, 0, "1999365"},
      {kLastOf1999, kFormatJDate, 5, 0, "99365"},
      {kLastOf1999, kFormatQYr, 8, 0, "4 Q 1999"},
      {kLastOf1999, kFormatQYr, 6, 0, "4 Q 99"},
      {kLastOf1999, kFormatMoYr, 8, 0, "DEC 1999"},
      {kLastOf1999, kFormatMoYr, 6, 0, "DEC 99"},
      {kLastOf1999, kFormatWkYr, 10, 0, "53 WK 1999"},
      {kLastOf1999, kFormatWkYr, 8, 0, "53 WK 99"},
      {0, kFormatSDate, 10, 0, "1970/01/01"},
      {0, kFormatDate, 11, 0, "01-JAN-1970"},
      {0, kFormatQYr, 8, 0, "1 Q 1970"},
      {0, kFormatWkYr, 10, 0, "1 WK 1970"},
      {0, kFormatJDate, 7, 0, "1970001"},
      {6 * kDay, kFormatWkYr, 10, 0, "1 WK 1970"},
      {7 * kDay, kFormatWkYr, 10, 0, "2 WK 1970"},
      {kLeapDay2024, kFormatSDate, 10, 0, "2024/02/29"},
      {kLeapDay2024, kFormatJDate, 7, 0, "2024060"},
      {kLeapDay2024 + kDay, kFormatJDate, 7, 0, "2024061"},
      {kLeapDay2024, kFormatQYr, 8, 0, "1 Q 2024"},
      {kLeapDay2024 + 32 * kDay, kFormatQYr, 8, 0, "2 Q 2024"},
  });
}

TEST(DateFormats, cutTheTimeOfTheDayOffAlsoBefore1970) {
  Check({
      {kDay - 0.001, kFormatSDate, 10, 0, "1970/01/01"},
      {-0.001, kFormatSDate, 10, 0, "1969/12/31"},
      {-1, kFormatSDate, 10, 0, "1969/12/31"},
      {-kDay, kFormatSDate, 10, 0, "1969/12/31"},
      {-kDay - 1, kFormatSDate, 10, 0, "1969/12/30"},
      {-2208988800.0, kFormatDate, 11, 0, "01-JAN-1900"},
      {-12219292800.0, kFormatSDate, 10, 0, "1582/10/15"},
      {-62135596800.0, kFormatSDate, 10, 0, "0001/01/01"},
      {-62135596801.0, kFormatSDate, 10, 0, "0000/12/31"},
      {-62167219201.0, kFormatSDate, 10, 0, "-0001/12/31"},
  });
}

TEST(DateFormats, showYearsInFullWhereTwoDigitsWouldLeaveADoubt) {
  const double years = 365.2425 * kDay;
  Check({
      {-20 * years, kFormatDate, 9, 0, "01-JAN-50"},  // 1950
      {-21 * years, kFormatDate, 9, 0, "31-DEC-1948"},
      {2524608000.0 - 1, kFormatADate, 8, 0, "12/31/49"},  // the last second of 2049
      {2524608000.0, kFormatADate, 8, 0, "01/01/2050"},
      {253402300800.0, kFormatSDate, 10, 0, "10000/01/01"},
      {253402300800.0, kFormatMoYr, 6, 0, "JAN 10000"},
      {1e14, kFormatSDate, 10, 0, "3170843/11/07"},
  });
}

TEST(DateFormats, showWhatIsNoDateOfAnythingAsANumber) {
  Check({
      {1e15, kFormatSDate, 10, 0, "1000000000000000"},
      {-1e300, kFormatE, 10, 0, "-1E+300"},
      {1e15, kFormatYMDHMS, 19, 0, "1000000000000000"},
      {1e15, kFormatTime, 8, 0, "1000000000000000"},
      {-1e15, kFormatDTime, 12, 1, "-1000000000000000.0"},
      {1e15, kFormatMTime, 8, 0, "1000000000000000"},
  });
}

TEST(DateTimeFormats, roundToTheirDecimals) {
  Check({
      {kLastOf1999, kFormatYMDHMS, 19, 0, "1999-12-31 23:59:59"},
      {kLastOf1999, kFormatYMDHMS, 0, 0, "1999-12-31 23:59:59"},
      {kLastOf1999, kFormatYMDHMS, 16, 0, "1999-12-31 23:59"},
      {kLastOf1999 + 0.9, kFormatYMDHMS, 16, 0, "1999-12-31 23:59"},
      {kLastOf1999 + 0.25, kFormatYMDHMS, 22, 2, "1999-12-31 23:59:59.25"},
      {kLastOf1999 + 0.25, kFormatYMDHMS, 21, 1, "1999-12-31 23:59:59.3"},
      {kLastOf1999 + 0.75, kFormatYMDHMS, 19, 0, "2000-01-01 00:00:00"},
      {kLastOf1999 + 0.75, kFormatYMDHMS, 16, 1, "1999-12-31 23:59:59.8"},
      {kLastOf1999, kFormatDateTime, 20, 0, "31-DEC-1999 23:59:59"},
      {kLastOf1999, kFormatDateTime, 17, 0, "31-DEC-1999 23:59"},
      {kLastOf1999, kFormatDateTime, 0, 0, "31-DEC-1999 23:59:59"},
      {kLastOf1999 + 0.5, kFormatDateTime, 23, 2, "31-DEC-1999 23:59:59.50"},
      {0, kFormatYMDHMS, 19, 0, "1970-01-01 00:00:00"},
      {-1, kFormatYMDHMS, 19, 0, "1969-12-31 23:59:59"},
      {-0.25, kFormatYMDHMS, 22, 2, "1969-12-31 23:59:59.75"},
      {-0.5, kFormatYMDHMS, 21, 1, "1969-12-31 23:59:59.5"},
      {-1.5, kFormatYMDHMS, 22, 2, "1969-12-31 23:59:58.50"},
      {-1.25, kFormatYMDHMS, 23, 3, "1969-12-31 23:59:58.750"},
      {-0.0004, kFormatYMDHMS, 23, 3, "1970-01-01 00:00:00.000"},
      {-0.5, kFormatYMDHMS, 16, 0, "1969-12-31 23:59"},
      {-3600, kFormatDateTime, 17, 0, "31-DEC-1969 23:00"},
      {253402300800.0, kFormatYMDHMS, 19, 0, "10000-01-01 00:00:00"},
  });
}

TEST(TimeFormats, countHoursDaysAndMinutesWithoutEnd) {
  Check({
      {0, kFormatTime, 8, 0, "00:00:00"},
      {3661, kFormatTime, 8, 0, "01:01:01"},
      {3661, kFormatTime, 0, 0, "01:01:01"},
      {3661, kFormatTime, 5, 0, "01:01"},
      {3719.9, kFormatTime, 5, 0, "01:01"},
      {3661.25, kFormatTime, 11, 2, "01:01:01.25"},
      {3661.25, kFormatTime, 5, 1, "01:01:01.3"},
      {3599.99, kFormatTime, 8, 0, "01:00:00"},
      {90000, kFormatTime, 8, 0, "25:00:00"},
      {3600000, kFormatTime, 8, 0, "1000:00:00"},
      {-3661, kFormatTime, 8, 0, "-01:01:01"},
      {-0.4, kFormatTime, 8, 0, "00:00:00"},
      {-59, kFormatTime, 5, 0, "00:00"},
      {-60, kFormatTime, 5, 0, "-00:01"},
      {0, kFormatDTime, 11, 0, "0 00:00:00"},
      {90061, kFormatDTime, 13, 0, "1 01:01:01"},
      {90061, kFormatDTime, 0, 0, "1 01:01:01"},
      {90061, kFormatDTime, 8, 0, "1 01:01"},
      {90061.5, kFormatDTime, 13, 1, "1 01:01:01.5"},
      {-90061.5, kFormatDTime, 13, 1, "-1 01:01:01.5"},
      {86399.999, kFormatDTime, 13, 0, "1 00:00:00"},
      {8640000000.0, kFormatDTime, 13, 0, "100000 00:00:00"},
      {61, kFormatMTime, 5, 0, "01:01"},
      {6000.125, kFormatMTime, 8, 2, "100:00.13"},
      {-61, kFormatMTime, 5, 0, "-01:01"},
      {59.999, kFormatMTime, 8, 2, "01:00.00"},
  });
}

TEST(NamesOfDaysAndMonths, areShownForTheirNumbersAndForDates) {
  Check({
      {1, kFormatWkDay, 9, 0, "SUNDAY"},
      {7, kFormatWkDay, 0, 0, "SATURDAY"},
      {4, kFormatWkDay, 9, 0, "WEDNESDAY"},
      {4, kFormatWkDay, 8, 0, "WED"},
      {4, kFormatWkDay, 3, 0, "WED"},
      {2, kFormatWkDay, 6, 0, "MONDAY"},
      {0, kFormatWkDay, 9, 0, "0"},
      {8, kFormatWkDay, 9, 0, "8"},
      {3.5, kFormatWkDay, 9, 0, "3.5"},
      {kLastOf1999, kFormatWkDay, 9, 0, "FRIDAY"},
      {1, kFormatMonth, 9, 0, "JANUARY"},
      {12, kFormatMonth, 9, 0, "DECEMBER"},
      {9, kFormatMonth, 3, 0, "SEP"},
      {5, kFormatMonth, 3, 0, "MAY"},
      {13, kFormatMonth, 9, 0, "13"},
      {-1, kFormatMonth, 9, 0, "-1"},
      {kLeapDay2024, kFormatMonth, 9, 0, "FEBRUARY"},
      {-kDay, kFormatMonth, 9, 0, "DECEMBER"},
  });
}

// The C library's calendar is the reference.
TEST(Calendar, agreesWithTheCLibraryOnRandomDays) {
  std::mt19937_64 random(3);
  for (int i = 0; i < 50000; ++i) {
    const std::int64_t day = static_cast<std::int64_t>(random() % 4000000) - 2000000;
    const std::time_t seconds = static_cast<std::time_t>(day * 86400);
    std::tm expected{};
    ASSERT_NE(gmtime_r(&seconds, &expected), nullptr);
    const auto date = DateOfDay(day);
    ASSERT_EQ(date.year, expected.tm_year + 1900) << day;
    ASSERT_EQ(date.month, expected.tm_mon + 1) << day;
    ASSERT_EQ(date.day, expected.tm_mday) << day;
    ASSERT_EQ(date.dayOfYear, expected.tm_yday + 1) << day;
    ASSERT_EQ(date.weekDay, expected.tm_wday + 1) << day;
  }
}
