#include "runtime/aggregation/exact/dyadic.h"

#include <cmath>
#include <limits>
#include <random>
#include <vector>

#include <gtest/gtest.h>

#include "tests/unit/aggregation/support/rational.h"

namespace runtime::aggregation {
namespace {

constexpr double kDenormal = std::numeric_limits<double>::denorm_min();
constexpr double kLargest = std::numeric_limits<double>::max();

double AnyDouble(std::mt19937_64& random) {
  const int exponent = static_cast<int>(random() % 2098) - 1074;
  const double number = std::ldexp(static_cast<double>(random() >> 11), exponent - 53);
  return random() % 2 == 0 ? number : -number;
}

double NaNForInfinity(double number) { return std::isinf(number) ? std::numeric_limits<double>::quiet_NaN() : number; }

TEST(NearestQuotient, isTheNearestDoubleOfTheExactQuotient) {
  std::mt19937_64 random(1);
  for (int i = 0; i < 3000; ++i) {
    const double a = AnyDouble(random);
    const double b = AnyDouble(random);
    const double divisor = std::fabs(AnyDouble(random)) + kDenormal;
    const mpq_class exact = (mpq_class(a) + mpq_class(b)) / mpq_class(divisor);
    const double nearest = NearestQuotient(Dyadic(a) + Dyadic(b), Dyadic(divisor));
    ASSERT_PRED2(SameNumber, NaNForInfinity(nearest), NearestOf(exact)) << a << " " << b << " " << divisor;
  }
}

TEST(NearestQuotient, breaksTiesToTheEvenDouble) {
  const Dyadic one(1.0);
  EXPECT_EQ(NearestQuotient(Dyadic(9007199254740992.0) + one, one), 9007199254740992.0);
  EXPECT_EQ(NearestQuotient(Dyadic(9007199254740992.0) + one + one + one, one), 9007199254740996.0);
  EXPECT_EQ(NearestQuotient(Dyadic(kDenormal), Dyadic(2.0)), 0.0);
  EXPECT_EQ(NearestQuotient(Dyadic(3 * kDenormal), Dyadic(2.0)), 2 * kDenormal);
}

TEST(NearestQuotient, isInfiniteOnlyBeyondTheLargestDouble) {
  EXPECT_EQ(NearestQuotient(Dyadic(kLargest), Dyadic(1.0)), kLargest);
  EXPECT_TRUE(std::isinf(NearestQuotient(Dyadic(-kLargest), Dyadic(0.5))));
}

TEST(NearestRootOfQuotient, isTheNearestDoubleOfTheExactRoot) {
  std::mt19937_64 random(2);
  for (int i = 0; i < 1500; ++i) {
    const double a = std::fabs(AnyDouble(random));
    const double divisor = std::fabs(AnyDouble(random)) + kDenormal;
    ASSERT_PRED2(SameNumber, NaNForInfinity(NearestRootOfQuotient(Dyadic(a), Dyadic(divisor))),
                 NearestRootOf(mpq_class(a) / mpq_class(divisor)))
        << a << " " << divisor;
  }
  EXPECT_EQ(NearestRootOfQuotient(Dyadic(9.0), Dyadic(4.0)), 1.5);
}

TEST(Dyadic, sumsExactlyAcrossTheWholeRange) {
  Dyadic sum(kLargest);
  sum += Dyadic(kDenormal);
  sum -= Dyadic(kLargest);
  EXPECT_EQ(NearestDouble(sum), kDenormal);
  EXPECT_EQ(Compare(sum, Dyadic(kDenormal)), 0);
}

TEST(Dyadic, floorInUnitsRoundsDownAndSaturates) {
  EXPECT_TRUE(Dyadic(7.75).FloorInUnits(1, 1) == 15);
  EXPECT_TRUE(Dyadic(700.0).FloorInUnits(0, 100) == 7);
  EXPECT_TRUE(Dyadic(-1.0).FloorInUnits(10, 1) == 0);
  EXPECT_TRUE(Dyadic(1e300).FloorInUnits(0, 1) == ~UInt128{0});
}

TEST(FixedSum, doesNotDependOnTheOrderOfItsAddends) {
  std::mt19937_64 random(3);
  std::vector<double> numbers;
  for (int i = 0; i < 500; ++i) numbers.push_back(AnyDouble(random));
  WideWeightSum first;
  for (const double number : numbers) first.Add(number);
  Dyadic exact;
  for (const double number : numbers) exact += Dyadic(number);
  for (int i = 0; i < 20; ++i) {
    std::shuffle(numbers.begin(), numbers.end(), random);
    WideWeightSum again;
    for (const double number : numbers) again.Add(number);
    ASSERT_EQ(again.limbs(), first.limbs());
  }
  EXPECT_EQ(Compare(Dyadic(first), exact), 0);
}

TEST(FixedSum, returnsToZeroFromBelow) {
  WideWeightSum sum;
  sum.Add(-kDenormal);
  EXPECT_EQ(NearestDouble(Dyadic(sum)), -kDenormal);
  sum.Add(-kLargest);
  sum.Add(kDenormal);
  sum.Add(kLargest);
  EXPECT_EQ(Dyadic(sum).sign(), 0);
}

}  // namespace
}  // namespace runtime::aggregation
