#include "runtime/aggregation/counting/percentiles.h"

#include <algorithm>
#include <cmath>
#include <random>
#include <vector>

#include <gtest/gtest.h>

#include "tests/unit/aggregation/support/keep.h"

namespace runtime::aggregation {
namespace {

WeightTotal Units(std::size_t cases) {
  WeightTotal total;
  total.units = cases;
  return total;
}

/// A sum of weights that are multiples of 1/1024.
WeightTotal Fractional(double weight) {
  WeightTotal total;
  total.shift = 10;
  total.scaled = static_cast<UInt128>(weight * 1024.0);
  return total;
}

std::vector<double> Unweighted(const std::vector<double>& numbers, const std::vector<double>& cutPoints) {
  KeptValues kept;
  Keep(kept, numbers);
  return Percentiles({{}, &kept}, Units(numbers.size()), cutPoints);
}

std::vector<double> Weighted(const std::vector<double>& numbers, const std::vector<double>& weights,
                             const std::vector<double>& cutPoints) {
  KeptValues kept;
  Keep(kept, numbers, weights);
  double sum = 0.0;
  for (const double weight : weights) sum += weight;
  return Percentiles({{}, &kept}, Fractional(sum), cutPoints);
}

using Results = std::vector<double>;

TEST(Percentiles, areTheWeightedAverageAtTheShareOfOneMoreCase) {
  EXPECT_EQ(Unweighted({1, 2, 3, 4}, {25, 50, 75}), (Results{1.25, 2.5, 3.75}));
  EXPECT_EQ(Unweighted({5, 1, 3}, {25, 50, 75}), (Results{1, 3, 5}));
  EXPECT_EQ(Unweighted({7}, {25, 50, 75}), (Results{7, 7, 7}));
}

TEST(Percentiles, areTheExtremesBeyondTheFirstAndLastCase) {
  EXPECT_EQ(Unweighted({10, 20, 30}, {1, 99}), (Results{10, 30}));
}

TEST(Percentiles, stayOnAValueWhoseCasesReachFarEnough) {
  EXPECT_EQ(Unweighted({1, 2, 2, 2, 2, 9}, {25, 50, 75}), (Results{1.75, 2, 3.75}));
}

TEST(Percentiles, spreadOverAnUpperWeightBelowOne) {
  // W = 1.5, t = 1.25, c_1 = 1, d = 0.25, w_2 = 0.5: half-way.
  EXPECT_EQ(Weighted({10, 20}, {1.0, 0.5}, {50}), (Results{15}));
}

TEST(Percentiles, useTheDistanceItselfWhereTheUpperWeightIsOneOrMore) {
  // W = 3.5, t = 2.25, c_1 = 2, d = 0.25, w_2 = 1.5.
  EXPECT_EQ(Weighted({10, 20}, {2.0, 1.5}, {50}), (Results{12.5}));
}

TEST(Percentiles, areTheUpperValueAWholeCaseOn) {
  // W = 5, t = 3, c_1 = 1, d = 2.
  EXPECT_EQ(Weighted({10, 20}, {1.0, 4.0}, {50}), (Results{20}));
}

TEST(Percentiles, areSystemMissingWithoutAValue) { EXPECT_TRUE(std::isnan(Unweighted({}, {50}).at(0))); }

TEST(Percentiles, areRoundedOnceAfterExactComparisons) {
  // (9 + 1) x 10.000000000000002 % is just above 1, where doubles see 1.0000000000000002 at best.
  const double cutPoint = std::nextafter(10.0, 11.0);
  const double distance = (cutPoint - 10.0) / 10.0;
  EXPECT_EQ(Unweighted({0, 1e15, 2e15, 3e15, 4e15, 5e15, 6e15, 7e15, 8e15}, {cutPoint, std::nextafter(10.0, 9.0)}),
            (Results{distance * 1e15, 0}));
}

TEST(Percentiles, ofManyValuesEqualThoseOfTheSortedValues) {
  std::mt19937_64 random(7);
  for (const std::size_t distinct : {std::size_t{1} << 40, std::size_t{300}, std::size_t{2}}) {
    std::vector<double> numbers(20001);
    for (double& number : numbers) number = static_cast<double>(random() % distinct);
    const Results results = Unweighted(numbers, {75, 25, 50, 0.001, 99.999});
    std::sort(numbers.begin(), numbers.end());
    // (n + 1) p is 15001.5, 5000.5 and 10001.
    EXPECT_EQ(results.at(0), (numbers[15000] + numbers[15001]) / 2);
    EXPECT_EQ(results.at(1), (numbers[4999] + numbers[5000]) / 2);
    EXPECT_EQ(results.at(2), numbers[10000]);
    EXPECT_EQ(results.at(3), numbers.front());
    EXPECT_EQ(results.at(4), numbers.back());
  }
}

TEST(Percentiles, wholeWeightsEqualRepeatedCases) {
  std::mt19937_64 random(8);
  for (int round = 0; round < 200; ++round) {
    std::vector<double> numbers(1 + random() % 300);
    std::vector<double> weights(numbers.size());
    std::vector<double> repeated;
    for (std::size_t i = 0; i < numbers.size(); ++i) {
      numbers[i] = static_cast<double>(random() % 500) / 8.0;
      weights[i] = static_cast<double>(1 + random() % 4);
      repeated.insert(repeated.end(), static_cast<std::size_t>(weights[i]), numbers[i]);
    }
    const std::vector<double> cutPoints{25, 50, 75, 10, 90};
    ASSERT_EQ(Weighted(numbers, weights, cutPoints), Unweighted(repeated, cutPoints));
  }
}

TEST(Percentiles, countedAndPlainValuesMix) {
  std::mt19937_64 random(9);
  for (int round = 0; round < 100; ++round) {
    std::vector<double> all;
    KeptValues kept;
    WeightedValues mixed{{}, &kept};
    for (double value = 0; value < 40; ++value) {
      const std::size_t cases = 1 + random() % 5;
      mixed.counted.emplace_back(value, Units(cases));
      all.insert(all.end(), cases, value);
    }
    std::vector<double> plain(random() % 400);
    for (double& number : plain) number = static_cast<double>(random() % 160) / 4.0;
    Keep(kept, plain);
    all.insert(all.end(), plain.begin(), plain.end());
    const std::vector<double> cutPoints{25, 50, 75};
    ASSERT_EQ(Percentiles(mixed, Units(all.size()), cutPoints), Unweighted(all, cutPoints));
  }
}

}  // namespace
}  // namespace runtime::aggregation
