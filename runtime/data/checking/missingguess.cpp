#include "runtime/data/checking/missingguess.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>

#include <fmt/format.h>

#include "runtime/data/dictionary/numberwords.h"
#include "runtime/data/foldedname.h"
#include "runtime/data/typing/numbertext.h"

namespace runtime::data {
namespace {

/// 66, 77, 88, 97, 98, 99; the same with more digits: 666, 997, 9998, …
bool HasCodeDigits(double size) {
  for (const double tail : {6.0, 7.0, 8.0, 9.0}) {
    double same = tail;
    for (int digits = 2; digits <= 6; ++digits) {
      same = same * 10 + tail;
      if (size == same) return true;
    }
  }
  for (double nines = 99; nines < 1e6; nines = nines * 10 + 9)
    if (size == nines - 1 || size == nines - 2) return true;
  return false;
}

bool IsNegativeCode(double number) {
  return number < 0 && number == std::floor(number) && (number >= -9 || HasCodeDigits(-number));
}

bool IsPositiveCode(double number) { return number > 0 && HasCodeDigits(number); }

/// Whether the `count` negative codes are the lower half of a scale around zero: -1 beside 1, -2 … 2.
bool IsMirrored(double lowest, std::size_t count, double highest) {
  return static_cast<double>(count) == -lowest && highest <= -lowest;
}

}  // namespace

std::vector<NumberGuess> GuessMissingNumbers(const std::vector<CountedNumber>& numbers) {
  std::size_t begin = 0;
  std::size_t end = numbers.size();
  while (begin < end && IsNegativeCode(numbers[begin].number)) ++begin;
  while (end > begin && IsPositiveCode(numbers[end - 1].number)) --end;
  std::vector<NumberGuess> guesses;
  const auto words = [&](std::size_t from, std::size_t to) {
    return fmt::format("{} to {}", NumberWords(numbers[from].number), NumberWords(numbers[to - 1].number));
  };

  // What may be a code on one side is an ordinary value for the other, unless it proves to be one.
  const auto guessAbove = [&](std::size_t from) {
    std::size_t others = end;
    // 97, 98 and 99 stand together: those that do not stand apart from the rest belong to it, then the next is tried.
    while (others < numbers.size()) {
      if (others >= from + 2) {
        const double highest = numbers[others - 1].number;
        const double spread = highest - numbers[from].number;
        if (numbers[others].number - highest > spread) break;
      }
      ++others;
    }
    for (std::size_t i = others; i < numbers.size(); ++i)
      guesses.push_back(
          {numbers[i].number, fmt::format("it stands far above all other values, {}", words(from, others))});
    return others;
  };

  if (begin == 0) {
    guessAbove(0);
    return guesses;
  }
  const std::size_t top = guessAbove(begin);
  std::vector<NumberGuess> above;
  above.swap(guesses);
  const bool othersNotNegative = begin < top && numbers[begin].number >= 0;
  const bool mirrored = begin < top && IsMirrored(numbers.front().number, begin, numbers[top - 1].number);
  const bool whole = std::all_of(numbers.begin(), numbers.end(),
                                 [](const CountedNumber& n) { return n.number == std::floor(n.number); });
  if (othersNotNegative && top - begin >= 2 && !mirrored) {
    for (std::size_t i = 0; i < begin; ++i)
      if (whole || numbers[i].count >= 2)
        guesses.push_back({numbers[i].number, fmt::format("no other value, {}, is negative", words(begin, top))});
  } else {
    // Other values are negative too: only what stands far below them.
    std::size_t others = begin;
    while (others > 0) {
      if (top >= others + 2 && !mirrored &&
          numbers[others].number - numbers[others - 1].number > numbers[top - 1].number - numbers[others].number)
        break;
      --others;
    }
    for (std::size_t i = 0; i < others; ++i)
      guesses.push_back(
          {numbers[i].number, fmt::format("it stands far below all other values, {}", words(others, top))});
  }
  guesses.insert(guesses.end(), above.begin(), above.end());
  return guesses;
}

bool IsMissingText(std::string_view text) {
  static constexpr std::array<std::string_view, 36> kWords = {"na",
                                                              "n/a",
                                                              "n.a.",
                                                              "n.a",
                                                              "#n/a",
                                                              "#null!",
                                                              "nan",
                                                              "null",
                                                              "nil",
                                                              "missing",
                                                              "refused",
                                                              "refusal",
                                                              "refuse",
                                                              "don't know",
                                                              "dont know",
                                                              "don\u2019t know",
                                                              "do not know",
                                                              "dk",
                                                              "d/k",
                                                              "dk/na",
                                                              "dk/ref",
                                                              "unknown",
                                                              "not applicable",
                                                              "not available",
                                                              "not asked",
                                                              "no answer",
                                                              "no response",
                                                              "not answered",
                                                              "prefer not to say",
                                                              "prefer not to answer",
                                                              "rather not say",
                                                              ".",
                                                              "-",
                                                              "--",
                                                              "?",
                                                              "*"};
  constexpr std::size_t kLongestWord = 40;
  const std::string_view trimmed = Trimmed(text);
  if (trimmed.empty() || trimmed.size() > kLongestWord) return false;
  const std::string folded = FoldName(trimmed);
  return std::find(kWords.begin(), kWords.end(), folded) != kWords.end();
}

std::vector<std::string_view> GuessMissingTexts(const std::vector<std::string_view>& texts) {
  const auto isLetter = [](char c) { return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z'); };
  const auto isPair = [&](std::string_view text) { return text.size() == 2 && isLetter(text[0]) && isLetter(text[1]); };
  std::vector<std::string_view> guesses;
  std::size_t others = 0;
  std::size_t pairs = 0;
  for (const std::string_view text : texts) {
    if (text.empty()) continue;
    if (IsMissingText(text)) {
      guesses.push_back(text);
      continue;
    }
    ++others;
    if (isPair(text)) ++pairs;
  }
  if (others < 2) return {};
  constexpr std::size_t kManyPairs = 5;
  if (pairs >= kManyPairs && pairs * 2 > others)
    guesses.erase(std::remove_if(guesses.begin(), guesses.end(), isPair), guesses.end());
  return guesses;
}

}  // namespace runtime::data
