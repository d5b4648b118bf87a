#include "runtime/aggregation/exact/moments.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <random>
#include <vector>

#include <gtest/gtest.h>

#include "tests/unit/aggregation/support/rational.h"

namespace runtime::aggregation {
namespace {

constexpr double kDenormal = std::numeric_limits<double>::denorm_min();

WeightTotal Units(std::size_t cases) {
  WeightTotal total;
  total.units = cases;
  return total;
}

struct Moments {
  double mean;
  double deviation;
};

Moments Of(const std::vector<double>& values) {
  MomentSums sums;
  sums.AddUnits(values.data(), values.size());
  return {sums.Mean(Units(values.size())), sums.StandardDeviation(Units(values.size()))};
}

TEST(Moments, areCorrectlyRoundedForRandomValues) {
  std::mt19937_64 random(5);
  for (int round = 0; round < 200; ++round) {
    std::vector<double> values(2 + random() % 50);
    const int spread = static_cast<int>(random() % 1000);
    for (double& value : values)
      value =
          std::ldexp(static_cast<double>(random() >> 11) - 0x1p52, static_cast<int>(random() % 9) * spread / 8 - 500);
    mpq_class sum;
    mpq_class squares;
    for (const double value : values) {
      sum += mpq_class(value);
      squares += mpq_class(value) * mpq_class(value);
    }
    const mpq_class n(values.size());
    ASSERT_EQ(Of(values).mean, NearestOf(sum / n));
    ASSERT_EQ(Of(values).deviation, NearestRootOf((squares - sum * sum / n) / (n - 1)));
  }
}

TEST(Moments, neitherOverflowNorUnderflowOnTheWay) {
  EXPECT_EQ(Of({1e308, 1e308, 1e308}).mean, 1e308);
  EXPECT_EQ(Of({1e308, 1e308, 1e308}).deviation, 0.0);
  EXPECT_EQ(Of({-1e308, 1e308}).mean, 0.0);
  EXPECT_EQ(Of({kDenormal, kDenormal, kDenormal}).mean, kDenormal);
  EXPECT_EQ(Of({0.0, 2 * kDenormal}).mean, kDenormal);
  EXPECT_EQ(Of({0.0, 4 * kDenormal}).deviation, 3 * kDenormal);  // 2 sqrt(2) = 2.83 of them
  EXPECT_EQ(Of({1e308, 1.0, -1e308}).mean, 1.0 / 3.0);
}

TEST(Moments, standardDeviationBeyondTheLargestDoubleIsSystemMissing) {
  EXPECT_TRUE(std::isnan(Of({-1.7e308, 1.7e308}).deviation));
}

TEST(Moments, doNotDependOnOrderOrGrouping) {
  std::mt19937_64 random(6);
  std::vector<double> values(3000);
  for (double& value : values) value = std::ldexp(static_cast<double>(random() >> 11), static_cast<int>(random() % 40));
  const Moments whole = Of(values);
  for (int round = 0; round < 5; ++round) {
    std::shuffle(values.begin(), values.end(), random);
    MomentSums sums;
    for (std::size_t i = 0; i < values.size();) {
      const std::size_t part = std::min<std::size_t>(1 + random() % 700, values.size() - i);
      sums.AddUnits(values.data() + i, part);
      i += part;
    }
    EXPECT_EQ(sums.Mean(Units(values.size())), whole.mean);
    EXPECT_EQ(sums.StandardDeviation(Units(values.size())), whole.deviation);
  }
}

TEST(Moments, wholeWeightsEqualRepeatedCases) {
  const std::vector<double> values{0.1, 2.7, -5.3};
  const std::vector<double> weights{3.0, 1.0, 2.0};
  MomentSums weighted;
  weighted.AddWeighted(values.data(), weights.data(), values.size());
  MomentSums counted;
  for (std::size_t i = 0; i < values.size(); ++i)
    counted.AddCounted(values[i], Units(static_cast<std::size_t>(weights[i])));
  const Moments repeated = Of({0.1, 0.1, 0.1, 2.7, -5.3, -5.3});
  for (const MomentSums* sums : {&weighted, &counted}) {
    EXPECT_EQ(sums->Mean(Units(6)), repeated.mean);
    EXPECT_EQ(sums->StandardDeviation(Units(6)), repeated.deviation);
  }
}

TEST(Moments, areSystemMissingWhereTheWeightsDoNotSuffice) {
  const double value = 3.0;
  MomentSums sums;
  EXPECT_TRUE(std::isnan(sums.Mean(Units(0))));
  sums.AddUnits(&value, 1);
  EXPECT_EQ(sums.Mean(Units(1)), 3.0);
  EXPECT_TRUE(std::isnan(sums.StandardDeviation(Units(1))));
}

}  // namespace
}  // namespace runtime::aggregation
