#include "runtime/data/checking/missingguess.h"

#include <string_view>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace runtime::data {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

std::vector<double> Guessed(const std::vector<double>& numbers, std::int64_t count = 5) {
  std::vector<CountedNumber> counted;
  for (const double number : numbers) counted.push_back({number, count});
  std::vector<double> guesses;
  for (const NumberGuess& guess : GuessMissingNumbers(counted)) guesses.push_back(guess.number);
  return guesses;
}

TEST(MissingGuess, isANegativeCodeAmongNumbersThatAreNot) {
  EXPECT_THAT(Guessed({-9, 1, 2, 3, 4, 5, 6, 7}), ElementsAre(-9));
  EXPECT_THAT(Guessed({-1, 1, 2}), ElementsAre(-1));
  EXPECT_THAT(Guessed({-99, -8, -1, 0, 1, 2}), ElementsAre(-99, -8, -1));
  EXPECT_THAT(Guessed({-999, 0.5, 12.25, 80}), ElementsAre(-999));
}

TEST(MissingGuess, isNotTheLowerHalfOfAScale) {
  EXPECT_THAT(Guessed({-1, 1}), IsEmpty());
  EXPECT_THAT(Guessed({-1, 0, 1}), IsEmpty());
  EXPECT_THAT(Guessed({-3, -2, -1, 0, 1, 2, 3}), IsEmpty());
  EXPECT_THAT(Guessed({-2, -1, 0, 1, 2, 3, 4, 5}), ElementsAre(-2, -1));
}

TEST(MissingGuess, isNoNegativeNumberThatIsNoCode) {
  EXPECT_THAT(Guessed({-12, 1, 2, 3}), IsEmpty());
  EXPECT_THAT(Guessed({-9.5, 1, 2, 3}), IsEmpty());
  EXPECT_THAT(Guessed({-20, -9, 3, 15}), IsEmpty());
}

TEST(MissingGuess, isAPositiveCodeFarAboveTheOthers) {
  EXPECT_THAT(Guessed({1, 2, 3, 4, 5, 6, 7, 99}), ElementsAre(99));
  EXPECT_THAT(Guessed({0, 1, 2, 97, 98, 99}), ElementsAre(97, 98, 99));
  EXPECT_THAT(Guessed({1950, 1987, 2020, 9999}), ElementsAre(9999));
  EXPECT_THAT(Guessed({-9, 1, 2, 3, 99}), ElementsAre(-9, 99));
}

TEST(MissingGuess, isNoPositiveCodeAmongItsNeighbours) {
  EXPECT_THAT(Guessed({18, 25, 47, 66, 77, 88, 97, 99}), IsEmpty());
  EXPECT_THAT(Guessed({1, 2, 3, 4, 5, 6, 7, 8, 9}), IsEmpty());
  EXPECT_THAT(Guessed({1, 2, 3, 55}), IsEmpty());
  EXPECT_THAT(Guessed({10, 300, 700, 999}), IsEmpty());
}

TEST(MissingGuess, isFarBelowWhereOthersAreNegative) { EXPECT_THAT(Guessed({-999, -20.5, 3, 35}), ElementsAre(-999)); }

TEST(MissingGuess, ofMeasuredNumbersIsMetMoreThanOnce) {
  EXPECT_THAT(Guessed({-1, 0.5, 2.25}, 1), IsEmpty());
  EXPECT_THAT(Guessed({-1, 0.5, 2.25}, 2), ElementsAre(-1));
}

TEST(MissingGuess, needsTwoOthers) {
  EXPECT_THAT(Guessed({}), IsEmpty());
  EXPECT_THAT(Guessed({-9}), IsEmpty());
  EXPECT_THAT(Guessed({-9, 5}), IsEmpty());
  EXPECT_THAT(Guessed({-9, 99}), IsEmpty());
  EXPECT_THAT(Guessed({1, 99}), IsEmpty());
}

TEST(MissingGuess, tellsItsEvidence) {
  const std::vector<NumberGuess> guesses = GuessMissingNumbers({{-1, 3}, {1, 9}, {4, 9}, {99, 1}});
  ASSERT_EQ(guesses.size(), 2u);
  EXPECT_EQ(guesses[0].why, "no other value, 1 to 4, is negative");
  EXPECT_THAT(guesses[1].why, HasSubstr("far above all other values, 1 to 4"));
}

TEST(MissingGuess, knowsTextsWithoutRegardToCase) {
  for (const char* text : {"NA", "n/a", " Refused ", "DON'T KNOW", "don\u2019t know", ".", "-"})
    EXPECT_TRUE(IsMissingText(text)) << text;
  for (const char* text : {"", "No", "Unfamiliar (N/A)", "Nan Hua", "Refused to say more"})
    EXPECT_FALSE(IsMissingText(text)) << text;
}

TEST(MissingGuess, ofTextsNeedsTwoOthers) {
  EXPECT_THAT(GuessMissingTexts({"", "NA", "yes", "no"}), ElementsAre("NA"));
  EXPECT_THAT(GuessMissingTexts({"Refused", "yes"}), IsEmpty());
}

TEST(MissingGuess, leavesTheCountryCodeAlone) {
  EXPECT_THAT(GuessMissingTexts({"DE", "FR", "IT", "NA", "PL", "SE"}), IsEmpty());
  EXPECT_THAT(GuessMissingTexts({"de", "dk", "fr", "it", "na", "pl", "se"}), IsEmpty());
  EXPECT_THAT(GuessMissingTexts({"DE", "NA", "Refused", "yes", "maybe"}), ElementsAre("NA", "Refused"));
}

}  // namespace
}  // namespace runtime::data
