#include "runtime/data/source/sql/exactwhole.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <random>
#include <stdexcept>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/unit/data/source/sql/anynumbers.h"

namespace runtime::data {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr double kDenormal = std::numeric_limits<double>::denorm_min();
constexpr double kLargest = std::numeric_limits<double>::max();

mpz_class AnyWhole(std::mt19937_64& random) {
  mpz_class whole = 0;
  for (unsigned words = static_cast<unsigned>(random() % 5); words > 0; --words) {
    whole <<= 64;
    whole += static_cast<unsigned long>(random() & random());
  }
  whole >>= static_cast<mp_bitcnt_t>(random() % 64);
  if (random() % 2 == 0) whole = -whole;
  return whole;
}

std::vector<double> DoublesOf(const mpz_class& whole, int exponent) {
  std::vector<double> doubles;
  AppendDoubles(whole, exponent, doubles);
  return doubles;
}

/// Whether no double is nearer to a number, and a tie went to the even one.
bool IsNearest(const mpq_class& number, double nearest) {
  const mpq_class distance = abs(number - mpq_class(nearest));
  for (const double side : {-kLargest, kLargest}) {
    const mpq_class ofNeighbour = abs(number - mpq_class(std::nextafter(nearest, side)));
    if (ofNeighbour < distance) return false;
    if (ofNeighbour == distance && std::bit_cast<std::uint64_t>(nearest) % 2 != 0) return false;
  }
  return true;
}

TEST(WholeOfText, readsDigitsOfAnyLength) {
  std::mt19937_64 random(1);
  for (int i = 0; i < 500; ++i) {
    const mpz_class whole = AnyWhole(random);
    const std::string digits = whole.get_str();
    ASSERT_TRUE(WholeOfText(digits) == whole) << digits;
    ASSERT_TRUE(WholeOfText(digits + "." + std::string(static_cast<std::size_t>(i % 4), '0')) == whole) << digits;
  }
}

TEST(WholeOfText, readsEitherSign) {
  EXPECT_EQ(WholeOfText("-18446744073709551616").get_str(), "-18446744073709551616");
  EXPECT_EQ(WholeOfText("-0").get_str(), "0");
  EXPECT_EQ(WholeOfText("+5").get_str(), "5");
}

TEST(WholeOfText, refusesWhatIsNoWholeNumber) {
  for (const char* const text :
       {"", "-", ".", "1.5", "1.0.0", "1e5", "abc", "0x1F", "NaN", "--1", "+-1", "-+1", "1,000", " 1", "1 ", "1 2"})
    EXPECT_THROW(WholeOfText(text), std::invalid_argument) << "'" << text << "'";
}

TEST(MultipleOf, isTheDoubleInUnits) {
  std::mt19937_64 random(2);
  for (int i = 0; i < 2000; ++i) {
    const double number = AnyPositive(random, -1074, 900) * (i % 2 == 0 ? 1.0 : -1.0);
    const int exponent = LowestBit(number) - static_cast<int>(random() % 100);
    ASSERT_TRUE(Scaled(MultipleOf(number, exponent), exponent) == mpq_class(number)) << number << " " << exponent;
  }
  EXPECT_TRUE(MultipleOf(0.0, 5) == 0);
}

TEST(AppendDoubles, giveTheExactNumberInPartsOfOneSignTheLargestFirst) {
  std::mt19937_64 random(3);
  for (int i = 0; i < 2000; ++i) {
    const mpz_class whole = AnyWhole(random);
    const int exponent = static_cast<int>(random() % 400) - 300;
    const std::vector<double> doubles = DoublesOf(whole, exponent);
    ASSERT_TRUE(ExactSum(doubles) == Scaled(whole, exponent)) << whole.get_str() << " " << exponent;
    for (std::size_t part = 0; part < doubles.size(); ++part) {
      ASSERT_EQ(doubles[part] > 0.0, whole > 0);
      ASSERT_NE(doubles[part], 0.0);
      if (part > 0) {
        ASSERT_LT(std::fabs(doubles[part]), std::fabs(doubles[part - 1]));
      }
    }
  }
}

TEST(AppendDoubles, giveNoMorePartsThanTheNumberHasBitsFor) {
  std::mt19937_64 random(4);
  for (int i = 0; i < 2000; ++i) {
    const mpz_class whole = AnyWhole(random);
    const std::size_t bits = whole == 0 ? 0 : mpz_sizeinbase(whole.get_mpz_t(), 2);
    ASSERT_LE(DoublesOf(whole, -7).size(), (bits + 52) / 53) << whole.get_str();
  }
}

TEST(AppendDoubles, giveOnePartForWhatADoubleHolds) {
  std::mt19937_64 random(5);
  for (int i = 0; i < 2000; ++i) {
    const double number = AnyPositive(random, -1074, 900);
    const int unit = std::max(-1074, LowestBit(number) - 70);
    ASSERT_THAT(DoublesOf(MultipleOf(number, unit), unit), ElementsAre(number));
    ASSERT_THAT(DoublesOf(MultipleOf(-number, unit), unit), ElementsAre(-number));
  }
  EXPECT_THAT(DoublesOf(MultipleOf(kLargest, -1074), -1074), ElementsAre(kLargest));
  EXPECT_THAT(DoublesOf(1, -1074), ElementsAre(kDenormal));
  EXPECT_THAT(DoublesOf(0, 3), IsEmpty());
}

TEST(AppendDoubles, giveNoMorePartsThanDoublesWereSummed) {
  std::mt19937_64 random(6);
  for (int i = 0; i < 3000; ++i) {
    std::vector<double> summed(1 + random() % 6);
    mpz_class sum = 0;
    for (double& number : summed) {
      number = AnyPositive(random, -150, -150 + 60 * (i % 5));
      sum += MultipleOf(number, -150);
    }
    ASSERT_LE(DoublesOf(sum, -150).size(), summed.size()) << sum.get_str();
  }
}

TEST(AppendDoubles, keepWhatStandsInTheList) {
  std::vector<double> doubles = {7.0};
  AppendDoubles((mpz_class(1) << 60) + 1, 0, doubles);
  EXPECT_THAT(doubles, ElementsAre(7.0, 0x1p60, 1.0));
}

TEST(NearestDouble, isTheNearestOfAnyNumber) {
  std::mt19937_64 random(7);
  for (int i = 0; i < 3000; ++i) {
    const mpz_class whole = AnyWhole(random);
    const int exponent = static_cast<int>(random() % 600) - 400;
    ASSERT_TRUE(IsNearest(Scaled(whole, exponent), NearestDouble(whole, exponent))) << whole.get_str();
  }
}

TEST(NearestDouble, breaksTiesToTheEvenDoubleAndSeesTheLastBit) {
  std::mt19937_64 random(8);
  for (int i = 0; i < 500; ++i) {
    // 53 bits, a half to the last of them, and a long way below it one more bit or none.
    const mpz_class front = (static_cast<unsigned long>(random() >> 11)) | (1UL << 52);
    const auto below = static_cast<mp_bitcnt_t>(1 + random() % 200);
    const mpz_class tie = ((front << 1) + 1) << below;
    for (const int last : {-1, 0, 1})
      for (const int sign : {-1, 1}) {
        const mpz_class whole = sign * (tie + last);
        ASSERT_TRUE(IsNearest(Scaled(whole, -60), NearestDouble(whole, -60))) << whole.get_str();
      }
  }
  EXPECT_EQ(NearestDouble((mpz_class(1) << 53) + 1, 0), 0x1p53);
  EXPECT_EQ(NearestDouble((mpz_class(1) << 53) + 3, 0), 0x1p53 + 4.0);
  EXPECT_EQ(NearestDouble(0, 12), 0.0);
}

TEST(BitsOfADouble, areFoundWhereTheyAre) {
  EXPECT_EQ(LowestBit(2.5), -1);
  EXPECT_EQ(LowestBit(-12.0), 2);
  EXPECT_EQ(LowestBit(0.1), -55);
  EXPECT_EQ(LowestBit(3.0 * kDenormal), -1074);
  EXPECT_EQ(LowestBit(kLargest), 971);
  EXPECT_EQ(TopBit(1.0), 1);
  EXPECT_EQ(TopBit(-0.75), 0);
  EXPECT_EQ(TopBit(kDenormal), -1073);
  EXPECT_EQ(TopBit(kLargest), 1024);
}

}  // namespace
}  // namespace runtime::data
