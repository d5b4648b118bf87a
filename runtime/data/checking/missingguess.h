// Values that look like codes for missing answers.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace runtime::data {

/// A number of a column, with how many cells hold it.
struct CountedNumber {
  double number = 0.0;
  std::int64_t count = 0;
};

struct NumberGuess {
  double number = 0.0;
  std::string why;  // the evidence, as a clause: "all other values, 1 to 4, are not negative"
};

/// Numbers that are known as codes for missing answers and stand apart from the others: a negative one (-1 to -9, -66,
/// -77, -88, -99, -666, …) where all others are not negative; or one of those, or 66, 77, 88, 97 to 99, 997, …, that
/// lies farther from all others than these are spread. Not -1 beside 1 alone, nor the lower half of a scale such as -2
/// to 2. `numbers` ascend. The guesses ascend.
std::vector<NumberGuess> GuessMissingNumbers(const std::vector<CountedNumber>& numbers);

/// Whether a text says in words or signs that there is no answer ("NA", "n/a", "Refused", "Don't know", ".", "-"),
/// without regard to case and to blanks around.
bool IsMissingText(std::string_view text);

/// The texts among those of a column that are guessed to say that there is no answer. They must stand beside at least
/// two others; "NA" and "DK" among codes of two letters are countries. Empty texts are not looked at.
std::vector<std::string_view> GuessMissingTexts(const std::vector<std::string_view>& texts);

}  // namespace runtime::data
