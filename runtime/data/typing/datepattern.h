// Dates and times written to a pattern that the dictionary gives.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace runtime::data {

/// A pattern of strptime: %Y %y %m %d %j %b %B %h %a %A %H %I %M %S %f %p %z %Z %e, their abbreviations %T %D %F %R %r
/// %x %X %c as in the C locale, %n %t %% and text; a blank stands for any blanks or none. Names of months and days are
/// English, without regard to case. Years of two digits are 1969 to 2068. What a pattern leaves out is 1970, January,
/// 1, 0 o'clock.
class DatePattern {
 public:
  explicit DatePattern(std::string_view pattern);

  /// What is wrong with the pattern; empty when it can be used.
  const std::string& problem() const { return fProblem; }

  /// Seconds since 1970-01-01T00:00:00 of the whole text (a pattern without a date: since midnight); an offset from
  /// Greenwich is taken off. Nothing when the text does not follow the pattern. REQUIRES: no problem.
  std::optional<double> Read(std::string_view text) const;

 private:
  struct Step {
    char directive = '\0';  // '\0': the character `literal`
    char literal = '\0';
  };

  void Compile(std::string_view pattern);

  std::vector<Step> fSteps;
  std::string fProblem;
};

/// A date, time or datetime in whatever form is unmistakable: the ISO form; year, month, day in that order; day, month,
/// year with points; a month by its English name; with slashes or hyphens the month first, unless what would be the
/// month is past 12. Hours with AM or PM or without.
struct AnyMoment {
  std::optional<double> date;  // seconds since 1970-01-01T00:00:00 of the day's begin
  std::optional<double> time;  // seconds since midnight, an offset from Greenwich taken off
};
std::optional<AnyMoment> ReadAnyMoment(std::string_view text);

/// The number, from 1, of a month that the text begins with, by its name or its first three letters; steps over it.
std::optional<int> TakeMonthName(std::string_view& text);
/// Steps over the name of a weekday or its first three letters; false when there is none.
bool TakeDayName(std::string_view& text);

}  // namespace runtime::data
