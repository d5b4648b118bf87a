// Seconds taken apart into days, hours, minutes and seconds.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace runtime::output {

/// Beyond this many seconds (31 million years) a value is no date or time of anything: it is shown as a number.
inline constexpr double kMostSeconds = 1e15;

/// `seconds` and `fraction` are the whole seconds of the minute and the decimals behind them, as digits.
struct ClockTime {
  bool negative = false;  // only of a span of time
  std::int64_t days = 0;
  int hours = 0;
  int minutes = 0;
  int seconds = 0;
  std::string fraction;
};

/// A span of time, rounded to `decimals` decimals of a second. Nothing when it is beyond kMostSeconds.
std::optional<ClockTime> SpanOfSeconds(double value, int decimals);

/// A moment, rounded in the same way: `days` counts from 1970-01-01 (negative before), the rest is the time of that
/// day.
std::optional<ClockTime> MomentOfSeconds(double value, int decimals);

/// The day that a moment falls on, counted from 1970-01-01.
std::optional<std::int64_t> DayOfSeconds(double value);

/// At least two digits.
std::string TwoDigits(std::int64_t number);

}  // namespace runtime::output
