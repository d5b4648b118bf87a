#include "runtime/output/format/calendar.h"

namespace runtime::output {
namespace {

bool IsLeapYear(std::int64_t year) { return year % 4 == 0 && (year % 100 != 0 || year % 400 == 0); }

}  // namespace

// Days are counted from 0000-03-01 in eras of 400 years (146097 days each): with March as the first month a leap day is
// the last day of its year, and the first day of a month is a linear function of the month.
CalendarDate DateOfDay(std::int64_t day) {
  const std::int64_t sinceMarch = day + 719468;
  const std::int64_t era = (sinceMarch >= 0 ? sinceMarch : sinceMarch - 146096) / 146097;
  const std::int64_t dayOfEra = sinceMarch - era * 146097;
  const std::int64_t yearOfEra = (dayOfEra - dayOfEra / 1460 + dayOfEra / 36524 - dayOfEra / 146096) / 365;
  const int dayOfMarchYear = static_cast<int>(dayOfEra - (365 * yearOfEra + yearOfEra / 4 - yearOfEra / 100));
  const int marchMonth = (5 * dayOfMarchYear + 2) / 153;

  CalendarDate date;
  date.day = dayOfMarchYear - (153 * marchMonth + 2) / 5 + 1;
  date.month = marchMonth < 10 ? marchMonth + 3 : marchMonth - 9;
  date.year = yearOfEra + era * 400 + (date.month <= 2 ? 1 : 0);
  const int daysBeforeMarch = IsLeapYear(date.year) ? 60 : 59;
  date.dayOfYear = date.month <= 2 ? dayOfMarchYear - 306 + 1 : dayOfMarchYear + daysBeforeMarch + 1;
  const std::int64_t weekDay = (day % 7 + 7 + 4) % 7;  // 1970-01-01 was a Thursday
  date.weekDay = static_cast<int>(weekDay) + 1;
  return date;
}

const char* MonthName(int month) {
  static const char* const names[] = {"JANUARY", "FEBRUARY", "MARCH",     "APRIL",   "MAY",      "JUNE",
                                      "JULY",    "AUGUST",   "SEPTEMBER", "OCTOBER", "NOVEMBER", "DECEMBER"};
  return names[month - 1];
}

const char* WeekDayName(int weekDay) {
  static const char* const names[] = {"SUNDAY", "MONDAY", "TUESDAY", "WEDNESDAY", "THURSDAY", "FRIDAY", "SATURDAY"};
  return names[weekDay - 1];
}

}  // namespace runtime::output
