#include "runtime/output/format/times.h"

#include <cmath>

#include "runtime/output/format/clock.h"
#include "runtime/output/format/numbers.h"

namespace runtime::output {
namespace {

constexpr int kTimeWithSeconds = 8;
constexpr int kDayTimeWithSeconds = 11;

// The seconds and their decimals, or nothing where the format has no room for them.
std::string SecondsPart(const ClockTime& time) {
  std::string text = ':' + TwoDigits(time.seconds);
  if (!time.fraction.empty()) text += '.' + time.fraction;
  return text;
}

bool ShowsSeconds(int width, int decimals, int widthWithSeconds) {
  return width <= 0 || width >= widthWithSeconds || decimals > 0;
}

// A span that is cut to minutes is not negative when no minute is left.
std::string Sign(const ClockTime& time, bool showsSeconds) {
  const bool nothingLeft = !showsSeconds && time.days == 0 && time.hours == 0 && time.minutes == 0;
  return time.negative && !nothingLeft ? "-" : "";
}

}  // namespace

std::string TimeText(double seconds, int width, int decimals) {
  const bool showsSeconds = ShowsSeconds(width, decimals, kTimeWithSeconds);
  const auto time = SpanOfSeconds(showsSeconds ? seconds : std::trunc(seconds), decimals);
  if (!time) return FixedNumber(seconds, decimals);
  const std::int64_t hours = time->days * 24 + time->hours;
  return Sign(*time, showsSeconds) + TwoDigits(hours) + ':' + TwoDigits(time->minutes) +
         (showsSeconds ? SecondsPart(*time) : "");
}

std::string DayTimeText(double seconds, int width, int decimals) {
  const bool showsSeconds = ShowsSeconds(width, decimals, kDayTimeWithSeconds);
  const auto time = SpanOfSeconds(showsSeconds ? seconds : std::trunc(seconds), decimals);
  if (!time) return FixedNumber(seconds, decimals);
  return Sign(*time, showsSeconds) + std::to_string(time->days) + ' ' + TwoDigits(time->hours) + ':' +
         TwoDigits(time->minutes) + (showsSeconds ? SecondsPart(*time) : "");
}

std::string MinuteTimeText(double seconds, int decimals) {
  const auto time = SpanOfSeconds(seconds, decimals);
  if (!time) return FixedNumber(seconds, decimals);
  const std::int64_t minutes = (time->days * 24 + time->hours) * 60 + time->minutes;
  return Sign(*time, true) + TwoDigits(minutes) + SecondsPart(*time);
}

}  // namespace runtime::output
