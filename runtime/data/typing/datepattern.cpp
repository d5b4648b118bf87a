#include "runtime/data/typing/datepattern.h"

#include <cstddef>

#include <fmt/format.h>

#include "runtime/data/lowerascii.h"
#include "runtime/data/typing/datetext.h"
#include "runtime/data/typing/numbertext.h"
#include "runtime/data/typing/quotedcell.h"

namespace runtime::data {

namespace {

constexpr std::string_view kMonths[] = {"january", "february", "march",     "april",   "may",      "june",
                                        "july",    "august",   "september", "october", "november", "december"};
constexpr std::string_view kDays[] = {"monday", "tuesday", "wednesday", "thursday", "friday", "saturday", "sunday"};
constexpr std::size_t kShortName = 3;
constexpr std::string_view kPlainDirectives = "YymdjbBhaAHIMSfpzZe%";

bool IsLetter(char c) { return LowerAscii(c) >= 'a' && LowerAscii(c) <= 'z'; }

bool BeginsWith(std::string_view text, std::string_view lowerWord) {
  if (text.size() < lowerWord.size()) return false;
  for (std::size_t i = 0; i < lowerWord.size(); ++i)
    if (LowerAscii(text[i]) != lowerWord[i]) return false;
  return true;
}

/// The index of the name that the text begins with, in full or by its first letters; steps over it.
template <std::size_t count>
std::optional<std::size_t> TakeName(std::string_view& text, const std::string_view (&names)[count]) {
  for (std::size_t i = 0; i < count; ++i) {
    for (const std::string_view name : {names[i], names[i].substr(0, kShortName)}) {
      if (!BeginsWith(text, name)) continue;
      text.remove_prefix(name.size());
      return i;
    }
  }
  return std::nullopt;
}

/// The parts of a moment as they are read from a text.
struct Parts {
  int year = 1970;
  int month = 1;
  int day = 1;
  int dayOfYear = 0;  // 0: not given
  int hour = 0;
  int minute = 0;
  int second = 0;
  double fraction = 0.0;
  bool twelveHours = false;
  bool afternoon = false;
  int offset = 0;

  std::optional<double> Seconds() const {
    if (!IsDate(year, month, day)) return std::nullopt;
    int hours = hour;
    if (twelveHours) hours = hour % 12 + (afternoon ? 12 : 0);
    std::int64_t days = DaysOfDate(year, month, day);
    if (dayOfYear > 0) {
      if (dayOfYear == 366 && !IsDate(year, 2, 29)) return std::nullopt;
      days = DaysOfDate(year, 1, 1) + dayOfYear - 1;
    }
    return static_cast<double>(days) * kSecondsOfDay + hours * 3600.0 + minute * 60.0 + second + fraction - offset;
  }
};

bool TakeBetween(TextFront& text, int mostDigits, int low, int high, int& part) {
  TextFront ahead = text;
  const auto value = ahead.TakeDigits(1, mostDigits);
  if (!value || *value < low || *value > high) return false;
  part = *value;
  text = ahead;
  return true;
}

bool TakeHalfOfDay(TextFront& text, bool& afternoon) {
  const bool am = BeginsWith(text.rest(), "am");
  if (!am && !BeginsWith(text.rest(), "pm")) return false;
  afternoon = !am;
  text.Step(2);
  return true;
}

void SkipBlanks(TextFront& text) {
  while (text.next() == ' ' || text.next() == '\t') text.Step(1);
}

bool TakePart(TextFront& text, char directive, Parts& parts) {
  switch (directive) {
    case 'Y': {
      const auto year = text.TakeDigits(4, 4);
      parts.year = year.value_or(0);
      return year.has_value();
    }
    case 'y': {
      const auto year = text.TakeDigits(2, 2);
      parts.year = year.value_or(0) + (year.value_or(0) < 69 ? 2000 : 1900);
      return year.has_value();
    }
    case 'm':
      return TakeBetween(text, 2, 1, 12, parts.month);
    case 'e':
      SkipBlanks(text);
      return TakeBetween(text, 2, 1, 31, parts.day);
    case 'd':
      return TakeBetween(text, 2, 1, 31, parts.day);
    case 'j':
      return TakeBetween(text, 3, 1, 366, parts.dayOfYear);
    case 'b':
    case 'B':
    case 'h': {
      std::string_view rest = text.rest();
      const auto month = TakeMonthName(rest);
      if (!month) return false;
      parts.month = *month;
      text = TextFront(rest);
      return true;
    }
    case 'a':
    case 'A': {
      std::string_view rest = text.rest();
      if (!TakeDayName(rest)) return false;
      text = TextFront(rest);
      return true;
    }
    case 'H':
      return TakeBetween(text, 2, 0, 23, parts.hour);
    case 'I':
      parts.twelveHours = true;
      return TakeBetween(text, 2, 1, 12, parts.hour);
    case 'p':
      return TakeHalfOfDay(text, parts.afternoon);
    case 'M':
      return TakeBetween(text, 2, 0, 59, parts.minute);
    case 'S':
      return TakeBetween(text, 2, 0, 59, parts.second);
    case 'f': {
      double unit = 0.1;
      if (!IsDigit(text.next())) return false;
      for (; IsDigit(text.next()); unit /= 10, text.Step(1)) parts.fraction += (text.next() - '0') * unit;
      return true;
    }
    case 'z': {
      const auto offset = text.TakeZone();
      parts.offset = offset.value_or(0);
      return offset.has_value();
    }
    case 'Z': {
      if (text.Take('Z')) return true;
      if (!BeginsWith(text.rest(), "utc") && !BeginsWith(text.rest(), "gmt")) return false;
      text.Step(3);
      return true;
    }
    default:
      return text.Take('%');
  }
}

}  // namespace

std::optional<int> TakeMonthName(std::string_view& text) {
  const auto index = TakeName(text, kMonths);
  if (!index) return std::nullopt;
  return static_cast<int>(*index) + 1;
}

bool TakeDayName(std::string_view& text) { return TakeName(text, kDays).has_value(); }

DatePattern::DatePattern(std::string_view pattern) {
  Compile(pattern);
  if (fSteps.empty() && fProblem.empty()) fProblem = "the pattern is empty";
}

void DatePattern::Compile(std::string_view pattern) {
  for (std::size_t at = 0; at < pattern.size(); ++at) {
    if (pattern[at] != '%') {
      fSteps.push_back({'\0', pattern[at]});
      continue;
    }
    if (++at == pattern.size()) {
      fProblem = "the pattern ends with a single %";
      return;
    }
    const char directive = pattern[at];
    switch (directive) {
      case 'T':
        Compile("%H:%M:%S");
        break;
      case 'R':
        Compile("%H:%M");
        break;
      case 'D':
        Compile("%m/%d/%y");
        break;
      case 'F':
        Compile("%Y-%m-%d");
        break;
      case 'x':
        Compile("%m/%d/%y");
        break;
      case 'X':
        Compile("%H:%M:%S");
        break;
      case 'r':
        Compile("%I:%M:%S %p");
        break;
      case 'c':
        Compile("%a %b %e %H:%M:%S %Y");
        break;
      case 'n':
      case 't':
        fSteps.push_back({'\0', ' '});
        break;
      default:
        if (kPlainDirectives.find(directive) == std::string_view::npos) {
          fProblem = fmt::format("the pattern has the unknown part {}", QuotedCell(pattern.substr(at - 1, 2)));
          return;
        }
        fSteps.push_back({directive, '\0'});
    }
  }
}

std::optional<double> DatePattern::Read(std::string_view text) const {
  TextFront front(text);
  Parts parts;
  for (const Step& step : fSteps) {
    if (step.directive != '\0') {
      if (!TakePart(front, step.directive, parts)) return std::nullopt;
    } else if (step.literal == ' ') {
      SkipBlanks(front);
    } else if (!front.Take(step.literal)) {
      return std::nullopt;
    }
  }
  if (!front.atEnd()) return std::nullopt;
  return parts.Seconds();
}

namespace {

bool TakeAnySeparator(TextFront& text) {
  bool taken = false;
  while (text.next() == ' ' || text.next() == ',') {
    text.Step(1);
    taken = true;
  }
  return taken;
}

/// Day and month by number, the year behind them: with points the day first, else the month, unless it is past 12.
bool OrderDayAndMonth(char separator, int first, int second, Parts& parts) {
  const bool dayFirst = separator == '.' || first > 12;
  parts.day = dayFirst ? first : second;
  parts.month = dayFirst ? second : first;
  return true;
}

bool TakeNumericDate(TextFront& text, Parts& parts) {
  std::size_t digits = 0;
  while (digits < text.rest().size() && IsDigit(text.rest()[digits])) ++digits;
  if (digits == 8) {
    parts.year = *text.TakeDigits(4, 4);
    parts.month = *text.TakeDigits(2, 2);
    parts.day = *text.TakeDigits(2, 2);
    return true;
  }
  const auto first = text.TakeDigits(1, 4);
  if (!first || digits == 3 || digits > 4) return false;
  const char separator = text.next();
  if (separator != '-' && separator != '/' && separator != '.') return false;
  text.Step(1);
  const auto second = text.TakeDigits(1, 2);
  if (!second || !text.Take(separator)) return false;
  if (digits == 4) {
    const auto day = text.TakeDigits(1, 2);
    parts.year = *first;
    parts.month = *second;
    parts.day = day.value_or(0);
    return day.has_value();
  }
  const auto year = text.TakeDigits(4, 4);
  parts.year = year.value_or(0);
  return year && OrderDayAndMonth(separator, *first, *second, parts);
}

/// 5 March 2020, 5-Mar-2020, March 5, 2020
bool TakeNamedDate(TextFront& text, Parts& parts) {
  const auto skip = [&text] {
    while (text.next() == ' ' || text.next() == ',' || text.next() == '-' || text.next() == '.') text.Step(1);
  };
  std::string_view rest = text.rest();
  if (TakeDayName(rest)) {
    text = TextFront(rest);
    skip();
  }
  const auto dayBefore = text.TakeDigits(1, 2);
  skip();
  rest = text.rest();
  const auto month = TakeMonthName(rest);
  if (!month || (!rest.empty() && IsLetter(rest.front()))) return false;
  text = TextFront(rest);
  skip();
  const auto day = dayBefore ? dayBefore : text.TakeDigits(1, 2);
  if (!dayBefore) skip();
  const auto year = text.TakeDigits(4, 4);
  if (!day || !year) return false;
  parts.year = *year;
  parts.month = *month;
  parts.day = *day;
  return true;
}

/// 9:05, 09:05:30.5, 9:05 pm, 09:05:30+02:00
std::optional<double> TakeAnyTime(TextFront& text) {
  Parts parts;
  if (!TakeBetween(text, 2, 0, 23, parts.hour)) return std::nullopt;
  if (!text.Take(':') || !TakeBetween(text, 2, 0, 59, parts.minute)) return std::nullopt;
  if (text.Take(':')) {
    if (!TakeBetween(text, 2, 0, 59, parts.second)) return std::nullopt;
    const auto fraction = text.TakeFraction();
    if (!fraction) return std::nullopt;
    parts.fraction = *fraction;
  }
  SkipBlanks(text);
  if (TakeHalfOfDay(text, parts.afternoon)) {
    if (parts.hour < 1 || parts.hour > 12) return std::nullopt;
    parts.twelveHours = true;
  }
  SkipBlanks(text);
  if (!text.atEnd()) {
    const auto offset = text.TakeZone();
    if (!offset) return std::nullopt;
    parts.offset = *offset;
  }
  return parts.Seconds();
}

}  // namespace

std::optional<AnyMoment> ReadAnyMoment(std::string_view text) {
  TextFront front(Trimmed(text));
  AnyMoment moment;
  Parts parts;
  TextFront ahead = front;
  bool hasDate = TakeNumericDate(ahead, parts);
  if (!hasDate) {
    ahead = front;
    hasDate = TakeNamedDate(ahead, parts);
  }
  if (hasDate) {
    moment.date = parts.Seconds();
    if (!moment.date) return std::nullopt;
    front = ahead;
    if (front.atEnd()) return moment;
    if (!front.Take('T') && !TakeAnySeparator(front)) return std::nullopt;
  }
  moment.time = TakeAnyTime(front);
  if (!moment.time || !front.atEnd()) return std::nullopt;
  return moment;
}

}  // namespace runtime::data
