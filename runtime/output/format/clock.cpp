#include "runtime/output/format/clock.h"

#include <charconv>
#include <cmath>
#include <utility>

#include "runtime/output/format/decimal.h"

namespace runtime::output {
namespace {

constexpr std::int64_t kSecondsPerDay = 86400;

ClockTime TakeApart(std::int64_t seconds, std::string fraction) {
  ClockTime time;
  time.days = seconds / kSecondsPerDay;
  const int rest = static_cast<int>(seconds % kSecondsPerDay);
  time.hours = rest / 3600;
  time.minutes = rest / 60 % 60;
  time.seconds = rest % 60;
  time.fraction = std::move(fraction);
  return time;
}

std::int64_t ToInteger(const std::string& digits) {
  std::int64_t number = 0;
  std::from_chars(digits.data(), digits.data() + digits.size(), number);
  return number;
}

}  // namespace

std::optional<ClockTime> SpanOfSeconds(double value, int decimals) {
  if (!(std::fabs(value) < kMostSeconds)) return std::nullopt;
  DecimalDigits digits = RoundToDecimals(value, decimals);
  ClockTime time = TakeApart(ToInteger(digits.whole), std::move(digits.fraction));
  time.negative = digits.negative;
  return time;
}

std::optional<ClockTime> MomentOfSeconds(double value, int decimals) {
  if (!(std::fabs(value) < kMostSeconds)) return std::nullopt;
  DecimalDigits digits = RoundToDecimals(value, decimals);
  std::int64_t seconds = ToInteger(digits.whole);
  if (digits.negative) {
    // -0.25 is the last quarter of the second that began at -1: the fraction counts from the second below.
    seconds = -seconds;
    if (digits.fraction.find_first_not_of('0') != std::string::npos) {
      --seconds;
      int carry = 10;
      for (std::size_t i = digits.fraction.size(); i-- > 0;) {
        const int digit = carry - (digits.fraction[i] - '0');
        digits.fraction[i] = static_cast<char>('0' + digit % 10);
        carry = digit == 10 ? 10 : 9;
      }
    }
  }
  std::int64_t day = seconds / kSecondsPerDay;
  std::int64_t rest = seconds % kSecondsPerDay;
  if (rest < 0) {
    rest += kSecondsPerDay;
    --day;
  }
  ClockTime time = TakeApart(rest, std::move(digits.fraction));
  time.days = day;
  return time;
}

std::optional<std::int64_t> DayOfSeconds(double value) {
  if (!(std::fabs(value) < kMostSeconds)) return std::nullopt;
  return static_cast<std::int64_t>(std::floor(value / static_cast<double>(kSecondsPerDay)));
}

std::string TwoDigits(std::int64_t number) {
  std::string text = std::to_string(number);
  if (text.size() < 2) text.insert(0, 1, '0');
  return text;
}

}  // namespace runtime::output
