// The proleptic Gregorian calendar.
#pragma once

#include <cstdint>

namespace runtime::output {

struct CalendarDate {
  std::int64_t year = 1970;  // the year before 1 is 0
  int month = 1;             // 1 to 12
  int day = 1;               // 1 to 31
  int dayOfYear = 1;         // 1 to 366
  int weekDay = 5;           // 1 Sunday to 7 Saturday
};

/// The date of a day counted from 1970-01-01.
CalendarDate DateOfDay(std::int64_t day);

/// Capital letters. REQUIRES: 1 to 12.
const char* MonthName(int month);
/// Capital letters. REQUIRES: 1 to 7.
const char* WeekDayName(int weekDay);

}  // namespace runtime::output
