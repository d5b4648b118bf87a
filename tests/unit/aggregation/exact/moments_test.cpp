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

TEST(Moments, addPartsOfTheSumsExactly) {
  MomentSums sums;
  const double value = 3.0;
  sums.AddUnits(&value, 1);
  const std::vector<double> products{0x1p1000, 7.0, kDenormal, -0x1p1000, -kDenormal};
  const std::vector<double> squares{0x1p1000, 49.0, -0x1p1000};
  sums.AddParts(products, squares);
  EXPECT_EQ(sums.Mean(Units(2)), 5.0);
  EXPECT_EQ(sums.StandardDeviation(Units(2)), std::sqrt(8.0));
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

TEST(Moments, areTheSameHoweverTheWeightsAreGiven) {
  std::mt19937_64 random(6);
  for (int round = 0; round < 60; ++round) {
    // Up to several times what is summed at once, of one exponent or of many.
    std::vector<double> values(1 + random() % (round < 50 ? 300 : 40000));
    std::vector<double> weights(values.size());
    std::vector<std::uint64_t> units(values.size());
    const int shift = round % 2 == 0 ? 50 : static_cast<int>(random() % 12);
    const int spread = round % 3 == 0 ? 1 : 2000;
    WeightTotal total;
    total.shift = shift;
    for (std::size_t i = 0; i < values.size(); ++i) {
      values[i] = std::ldexp(static_cast<double>(random() >> 11) - 0x1p52,
                             static_cast<int>(random() % static_cast<unsigned>(spread)) - 1050);
      // 53 bits, up to below 2^63 units.
      units[i] = (random() >> 11) << (random() % 11);
      weights[i] = std::ldexp(static_cast<double>(units[i]), -shift);
      total.scaled += units[i];
    }
    MomentSums one;
    MomentSums narrow;
    MomentSums inUnits;
    one.AddWeighted(values.data(), weights.data(), values.size());
    narrow.AddNarrow(values.data(), weights.data(), shift, values.size());
    inUnits.AddInUnits(values.data(), units.data(), shift, values.size());
    ASSERT_EQ(narrow.Mean(total), one.Mean(total));
    ASSERT_EQ(inUnits.Mean(total), one.Mean(total));
    const double deviation = one.StandardDeviation(total);
    if (std::isnan(deviation)) continue;
    ASSERT_EQ(narrow.StandardDeviation(total), deviation);
    ASSERT_EQ(inUnits.StandardDeviation(total), deviation);
  }
}

TEST(Moments, holdTheLargestProductsOfAFullBin) {
  // All bits of value and weight set, as many times as a bin takes.
  const double value = std::nextafter(2.0, 1.0);
  const std::uint64_t units = (std::uint64_t{1} << 63) - (std::uint64_t{1} << 10);
  const std::vector<double> values(16384, value);
  const std::vector<double> weights(16384, static_cast<double>(units));
  const std::vector<std::uint64_t> inUnits(16384, units);
  MomentSums one;
  MomentSums many;
  MomentSums whole;
  one.AddWeighted(values.data(), weights.data(), values.size());
  many.AddNarrow(values.data(), weights.data(), 0, values.size());
  whole.AddInUnits(values.data(), inUnits.data(), 0, values.size());
  WeightTotal total;
  total.scaled = UInt128{units} * 16384;
  EXPECT_EQ(one.Mean(total), value);
  EXPECT_EQ(many.Mean(total), value);
  EXPECT_EQ(whole.Mean(total), value);
  EXPECT_EQ(many.StandardDeviation(total), 0.0);
  EXPECT_EQ(whole.StandardDeviation(total), 0.0);
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
