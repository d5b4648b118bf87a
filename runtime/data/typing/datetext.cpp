#include "runtime/data/typing/datetext.h"

#include <charconv>
#include <system_error>

#include "runtime/data/typing/numbertext.h"

namespace runtime::data {

namespace {

constexpr double kSecondsOfYear = 365.2425 * kSecondsOfDay;

struct DurationUnit {
  char letter;
  double seconds;
};
constexpr DurationUnit kDateUnits[] = {{'Y', kSecondsOfYear}, {'M', kSecondsOfYear / 12}, {'D', kSecondsOfDay}};
constexpr DurationUnit kTimeUnits[] = {{'H', 3600.0}, {'M', 60.0}, {'S', 1.0}};

/// Numbers with the letters of `units`, in their order, each at most once; false when something else stands there. A
/// number with decimals must be the last one of the text.
template <std::size_t count>
bool TakeUnits(TextFront& text, const DurationUnit (&units)[count], double& seconds, int& taken) {
  std::size_t unit = 0;
  while (IsDigit(text.next())) {
    std::size_t length = 0;
    bool fraction = false;
    const std::string_view rest = text.rest();
    for (; length < rest.size() && (IsDigit(rest[length]) || rest[length] == '.'); ++length)
      fraction = fraction || rest[length] == '.';
    NumberReading number;
    if (!ReadNumberText(rest.substr(0, length), number)) return false;
    text.Step(length);
    while (unit < count && units[unit].letter != text.next()) ++unit;
    if (unit == count) return false;
    text.Step(1);
    seconds += number.value * units[unit].seconds;
    ++unit;
    ++taken;
    if (fraction) return text.atEnd();
  }
  return true;
}

}  // namespace

// The era-based algorithm: years begin in March, so that the leap day is a year's last.
std::int64_t DaysOfDate(int year, int month, int day) {
  const std::int64_t y = month <= 2 ? year - 1 : year;
  const std::int64_t era = (y >= 0 ? y : y - 399) / 400;
  const std::int64_t yearOfEra = y - era * 400;
  const std::int64_t dayOfYear = (153 * (month + (month > 2 ? -3 : 9)) + 2) / 5 + day - 1;
  const std::int64_t dayOfEra = yearOfEra * 365 + yearOfEra / 4 - yearOfEra / 100 + dayOfYear;
  return era * 146'097 + dayOfEra - 719'468;
}

bool IsDate(int year, int month, int day) {
  constexpr int kDays[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
  if (year < 0 || year > 9999 || month < 1 || month > 12 || day < 1) return false;
  const bool leap = (year % 4 == 0 && year % 100 != 0) || year % 400 == 0;
  return day <= kDays[month - 1] + (leap && month == 2 ? 1 : 0);
}

bool TextFront::Take(char c) {
  if (next() != c || atEnd()) return false;
  Step(1);
  return true;
}

std::optional<int> TextFront::TakeDigits(int fewest, int most) {
  int value = 0;
  int digits = 0;
  for (const char c : fText) {
    if (digits == most || !IsDigit(c)) break;
    value = value * 10 + (c - '0');
    ++digits;
  }
  if (digits < fewest) return std::nullopt;
  Step(static_cast<std::size_t>(digits));
  return value;
}

std::optional<double> TextFront::TakeFraction() {
  if (next() != '.') return 0.0;
  std::size_t length = 1;
  while (length < fText.size() && IsDigit(fText[length])) ++length;
  if (length == 1) return std::nullopt;
  double fraction = 0.0;
  const auto [end, error] = std::from_chars(fText.data(), fText.data() + length, fraction);
  if (error != std::errc()) fraction = 0.0;  // too small to be told from 0
  Step(length);
  return fraction;
}

std::optional<int> TextFront::TakeZone() {
  if (Take('Z')) return 0;
  TextFront ahead = *this;
  const bool west = ahead.Take('-');
  if (!west && !ahead.Take('+')) return std::nullopt;
  const auto hours = ahead.TakeDigits(2, 2);
  if (!hours || *hours > 23) return std::nullopt;
  int minutes = 0;
  const bool colon = ahead.Take(':');
  if (const auto digits = ahead.TakeDigits(2, 2))
    minutes = *digits;
  else if (colon)
    return std::nullopt;
  if (minutes > 59) return std::nullopt;
  *this = ahead;
  const int offset = *hours * 3600 + minutes * 60;
  return west ? -offset : offset;
}

std::optional<double> TakeIsoDate(TextFront& text) {
  TextFront ahead = text;
  const auto year = ahead.TakeDigits(4, 4);
  if (!year || !ahead.Take('-')) return std::nullopt;
  const auto month = ahead.TakeDigits(2, 2);
  if (!month || !ahead.Take('-')) return std::nullopt;
  const auto day = ahead.TakeDigits(2, 2);
  if (!day || !IsDate(*year, *month, *day)) return std::nullopt;
  text = ahead;
  return static_cast<double>(DaysOfDate(*year, *month, *day)) * kSecondsOfDay;
}

std::optional<double> TakeIsoTime(TextFront& text, bool secondsOptional) {
  TextFront ahead = text;
  const auto hours = ahead.TakeDigits(2, 2);
  if (!hours || *hours > 23 || !ahead.Take(':')) return std::nullopt;
  const auto minutes = ahead.TakeDigits(2, 2);
  if (!minutes || *minutes > 59) return std::nullopt;
  double seconds = 0.0;
  if (ahead.Take(':')) {
    const auto whole = ahead.TakeDigits(2, 2);
    if (!whole || *whole > 59) return std::nullopt;
    const auto fraction = ahead.TakeFraction();
    if (!fraction) return std::nullopt;
    seconds = *whole + *fraction;
  } else if (!secondsOptional) {
    return std::nullopt;
  }
  text = ahead;
  return *hours * 3600.0 + *minutes * 60.0 + seconds;
}

std::optional<double> ReadIsoDate(std::string_view text) {
  TextFront front(text);
  const auto date = TakeIsoDate(front);
  return date && front.atEnd() ? date : std::nullopt;
}

std::optional<double> ReadIsoDateTime(std::string_view text, bool anyZone) {
  TextFront front(text);
  const auto date = TakeIsoDate(front);
  if (!date || (!front.Take('T') && !front.Take(' '))) return std::nullopt;
  const auto time = TakeIsoTime(front, true);
  if (!time) return std::nullopt;
  if (front.atEnd()) return *date + *time;
  if (!anyZone && front.next() != 'Z') return std::nullopt;
  const auto offset = front.TakeZone();
  if (!offset || !front.atEnd()) return std::nullopt;
  return *date + *time - *offset;
}

std::optional<double> ReadIsoTime(std::string_view text, bool secondsOptional) {
  TextFront front(text);
  const auto time = TakeIsoTime(front, secondsOptional);
  if (!time) return std::nullopt;
  front.Take('Z');
  return front.atEnd() ? time : std::nullopt;
}

std::optional<double> ReadIsoYearMonth(std::string_view text) {
  TextFront front(text);
  const auto year = front.TakeDigits(4, 4);
  if (!year || !front.Take('-')) return std::nullopt;
  const auto month = front.TakeDigits(2, 2);
  if (!month || !front.atEnd() || !IsDate(*year, *month, 1)) return std::nullopt;
  return static_cast<double>(DaysOfDate(*year, *month, 1)) * kSecondsOfDay;
}

std::optional<double> ReadIsoYear(std::string_view text) {
  TextFront front(text);
  const bool negative = front.Take('-');
  const auto year = front.TakeDigits(4, 9);
  if (!year || !front.atEnd()) return std::nullopt;
  return negative ? -*year : *year;
}

std::optional<double> ReadIsoDuration(std::string_view text) {
  TextFront front(text);
  const bool negative = front.Take('-');
  if (!front.Take('P')) return std::nullopt;
  double seconds = 0.0;
  int taken = 0;
  constexpr DurationUnit kWeeks[] = {{'W', 7 * kSecondsOfDay}};
  const bool inWeeks = !text.empty() && text.back() == 'W';
  if (inWeeks ? !TakeUnits(front, kWeeks, seconds, taken) : !TakeUnits(front, kDateUnits, seconds, taken))
    return std::nullopt;
  if (front.Take('T')) {
    const int before = taken;
    if (!TakeUnits(front, kTimeUnits, seconds, taken) || taken == before) return std::nullopt;
  }
  if (taken == 0 || !front.atEnd()) return std::nullopt;
  return negative ? -seconds : seconds;
}

}  // namespace runtime::data
