#include "runtime/output/format/dates.h"

#include <cmath>
#include <cstdlib>
#include <cstring>

#include "runtime/output/format/calendar.h"
#include "runtime/output/format/clock.h"
#include "runtime/output/format/numbers.h"

namespace runtime::output {
namespace {

constexpr double kDay = 86400.0;

bool HasFourDigitYears(FormatType type, int width) {
  if (width <= 0) return true;
  switch (type) {
    case kFormatDate:
      return width >= 11;
    case kFormatJDate:
      return width >= 7;
    case kFormatQYr:
    case kFormatMoYr:
      return width >= 8;
    default:
      return width >= 10;
  }
}

std::string Year(std::int64_t year, bool fourDigits) {
  if (!fourDigits && year >= 1950 && year <= 2049) return TwoDigits(year % 100);
  std::string digits = std::to_string(std::llabs(year));
  if (digits.size() < 4) digits.insert(0, 4 - digits.size(), '0');
  return year < 0 ? '-' + digits : digits;
}

std::string ShortMonth(int month) { return std::string(MonthName(month), 3); }

std::string ThreeDigits(int number) {
  const std::string text = TwoDigits(number);
  return text.size() < 3 ? '0' + text : text;
}

std::string NameOrInitials(const char* name, int width) {
  const std::size_t length = std::strlen(name);
  return width > 0 && length > static_cast<std::size_t>(width) ? std::string(name, 3) : std::string(name, length);
}

bool IsNumberOf(double value, int last) { return value >= 1 && value <= last && value == std::floor(value); }

}  // namespace

std::string DateText(double value, FormatType type, int width) {
  const auto day = DayOfSeconds(value);
  if (!day) return FixedNumber(value, 0);
  const CalendarDate date = DateOfDay(*day);
  const std::string year = Year(date.year, HasFourDigitYears(type, width));
  const std::string dd = TwoDigits(date.day);
  const std::string mm = TwoDigits(date.month);
  switch (type) {
    case kFormatADate:
      return mm + '/' + dd + '/' + year;
    case kFormatEDate:
      return dd + '.' + mm + '.' + year;
    case kFormatSDate:
      return year + '/' + mm + '/' + dd;
    case kFormatJDate:
      return year + ThreeDigits(date.dayOfYear);
    case kFormatQYr:
      return std::to_string((date.month + 2) / 3) + " Q " + year;
    case kFormatMoYr:
      return ShortMonth(date.month) + ' ' + year;
    case kFormatWkYr:
      return std::to_string((date.dayOfYear + 6) / 7) + " WK " + year;
    default:
      return dd + '-' + ShortMonth(date.month) + '-' + year;
  }
}

std::string DateTimeText(double value, FormatType type, int width, int decimals) {
  const bool yearFirst = type == kFormatYMDHMS;
  const bool showsSeconds = width <= 0 || decimals > 0 || width >= (yearFirst ? 19 : 20);
  // A moment without seconds is cut to its minute, so that it never shows a time yet to come.
  const auto moment = MomentOfSeconds(showsSeconds ? value : std::floor(value), decimals);
  if (!moment) return FixedNumber(value, decimals);
  const CalendarDate date = DateOfDay(moment->days);
  std::string text = yearFirst ? Year(date.year, true) + '-' + TwoDigits(date.month) + '-' + TwoDigits(date.day)
                               : TwoDigits(date.day) + '-' + ShortMonth(date.month) + '-' + Year(date.year, true);
  text += ' ' + TwoDigits(moment->hours) + ':' + TwoDigits(moment->minutes);
  if (!showsSeconds) return text;
  text += ':' + TwoDigits(moment->seconds);
  if (!moment->fraction.empty()) text += '.' + moment->fraction;
  return text;
}

std::string WeekDayText(double value, int width) {
  if (IsNumberOf(value, 7)) return NameOrInitials(WeekDayName(static_cast<int>(value)), width);
  const auto day = std::fabs(value) >= kDay ? DayOfSeconds(value) : std::nullopt;
  return day ? NameOrInitials(WeekDayName(DateOfDay(*day).weekDay), width) : ShortestNumber(value);
}

std::string MonthText(double value, int width) {
  if (IsNumberOf(value, 12)) return NameOrInitials(MonthName(static_cast<int>(value)), width);
  const auto day = std::fabs(value) >= kDay ? DayOfSeconds(value) : std::nullopt;
  return day ? NameOrInitials(MonthName(DateOfDay(*day).month), width) : ShortestNumber(value);
}

}  // namespace runtime::output
