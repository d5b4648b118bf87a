// Dates, times and spans of time written the standard way (ISO 8601).
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace runtime::data {

inline constexpr double kSecondsOfDay = 86'400.0;

/// Days since 1970-01-01 in the Gregorian calendar, also before its time.
std::int64_t DaysOfDate(int year, int month, int day);
/// Whether there is such a day; years from 0 to 9999.
bool IsDate(int year, int month, int day);

/// What is cut out of a text from its front. Every operation steps over what it read and leaves the text alone when it
/// does not stand there.
class TextFront {
 public:
  explicit TextFront(std::string_view text) : fText(text) {}

  bool atEnd() const { return fText.empty(); }
  char next() const { return fText.empty() ? '\0' : fText.front(); }
  std::string_view rest() const { return fText; }
  void Step(std::size_t count) { fText.remove_prefix(count); }

  bool Take(char c);
  /// A number of `fewest` to `most` digits.
  std::optional<int> TakeDigits(int fewest, int most);
  /// A decimal point and digits, 0 when there is no point; nothing when digits are missing behind it.
  std::optional<double> TakeFraction();
  /// `Z` or an offset such as +02:00, +0200 or +02, in seconds east of Greenwich; 0 for Z.
  std::optional<int> TakeZone();

 private:
  std::string_view fText;
};

/// Seconds since 1970-01-01T00:00:00 of a day that the text begins with, YYYY-MM-DD.
std::optional<double> TakeIsoDate(TextFront& text);
/// Seconds since midnight of a time that the text begins with: hh:mm:ss with decimals or not; hh:mm too when
/// `secondsOptional`.
std::optional<double> TakeIsoTime(TextFront& text, bool secondsOptional);

// The whole text; nothing when it reads otherwise. Dates and datetimes in seconds since 1970-01-01T00:00:00, times and
// durations in seconds.

/// YYYY-MM-DD
std::optional<double> ReadIsoDate(std::string_view text);
/// A date, T or a blank, hh:mm or hh:mm:ss with decimals or not; then nothing, Z, or, with `anyZone`, an offset, which
/// is taken off, so that the value is the time in Greenwich.
std::optional<double> ReadIsoDateTime(std::string_view text, bool anyZone);
/// hh:mm:ss with decimals or not, hh:mm too when `secondsOptional`; a Z behind it changes nothing.
std::optional<double> ReadIsoTime(std::string_view text, bool secondsOptional);
/// YYYY-MM: the first day of the month.
std::optional<double> ReadIsoYearMonth(std::string_view text);
/// A year of four digits or more, a minus sign allowed: the year's number.
std::optional<double> ReadIsoYear(std::string_view text);
/// PnYnMnDTnHnMnS or PnW, a minus sign allowed, decimals in the last number. A year counts as 365.2425 days, the mean
/// of the calendar, a month as its twelfth.
std::optional<double> ReadIsoDuration(std::string_view text);

}  // namespace runtime::data
