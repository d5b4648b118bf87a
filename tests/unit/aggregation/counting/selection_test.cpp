#include "runtime/aggregation/counting/selection.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <limits>
#include <memory>
#include <random>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "runtime/aggregation/counting/percentiles.h"
#include "tests/unit/aggregation/support/keep.h"

namespace runtime::aggregation {
namespace {

using Random = std::mt19937_64;

double Unit(Random& random) { return static_cast<double>(random() >> 11) * 0x1p-53; }

struct Values {
  std::vector<double> numbers;
  std::vector<double> weights;  // empty: every weight is 1
};

struct Around {
  bool hasLower;
  double lower, upper;
  Dyadic below, upperWeight;
};

/// By sorting. `hundredfold` is 100 t.
Around SortedAround(const Values& values, const Dyadic& hundredfold) {
  std::vector<std::pair<double, double>> sorted;
  for (std::size_t i = 0; i < values.numbers.size(); ++i)
    sorted.emplace_back(values.numbers[i], values.weights.empty() ? 1.0 : values.weights[i]);
  std::sort(sorted.begin(), sorted.end());
  Around around{false, 0.0, 0.0, Dyadic(), Dyadic()};
  for (std::size_t i = 0; i < sorted.size();) {
    Dyadic weight;
    const double value = sorted[i].first;
    for (; i < sorted.size() && sorted[i].first == value; ++i) weight += Dyadic(sorted[i].second);
    if (hundredfold < Dyadic(100.0) * (around.below + weight)) {
      around.upper = value;
      around.upperWeight = weight;
      return around;
    }
    around.below += weight;
    around.lower = value;
    around.hasLower = true;
  }
  return around;
}

WeightTotal TotalOf(const Values& values, int shift) {
  WeightTotal total;
  if (values.weights.empty()) total.units = values.numbers.size();
  total.shift = shift;
  for (const double weight : values.weights) total.scaled += static_cast<UInt128>(std::ldexp(weight, shift));
  return total;
}

/// Compares the selection with sorting at 25, 50, 75 and some more percent, in memory and in a file.
void ExpectAsSorted(const Values& values, int shift) {
  const WeightTotal total = TotalOf(values, shift);
  for (const std::int64_t limit : {std::int64_t{0}, std::int64_t{1}, std::int64_t{20000}}) {
    KeptValues kept(std::make_shared<ValueMemory>(limit));
    Keep(kept, values.numbers, values.weights);
    const WeightedValues all{{}, &kept};
    std::vector<Dyadic> hundredfolds;
    for (const double cutPoint : {0.01, 25.0, 50.0, 50.001, 75.0, 99.0}) {
      const Dyadic hundredfold = (total.Exact() + Dyadic(1.0)) * Dyadic(cutPoint);
      if (hundredfold < Dyadic(100.0) * total.Exact()) hundredfolds.push_back(hundredfold);
    }
    std::vector<UnitTarget> inUnits;
    std::vector<ExactTarget> exact;
    for (const Dyadic& hundredfold : hundredfolds) {
      inUnits.push_back({hundredfold.FloorInUnits(shift, 100), {}});
      exact.push_back({hundredfold, {}});
    }
    SelectInUnits(all, shift, total.InUnits(), inUnits);
    SelectExactly(all, total.Exact(), exact);
    for (std::size_t i = 0; i < hundredfolds.size(); ++i) {
      const Around wanted = SortedAround(values, hundredfolds[i]);
      const Neighbours<UInt128>& found = inUnits[i].around;
      ASSERT_EQ(found.upper, wanted.upper);
      ASSERT_EQ(found.lower.has_value(), wanted.hasLower);
      ASSERT_EQ(found.lower.value_or(0.0), wanted.hasLower ? wanted.lower : 0.0);
      ASSERT_TRUE(Dyadic(found.below, -shift) == wanted.below);
      ASSERT_TRUE(Dyadic(found.upperWeight, -shift) == wanted.upperWeight);
      ASSERT_EQ(exact[i].around.upper, wanted.upper);
      ASSERT_EQ(exact[i].around.lower, found.lower);
      ASSERT_TRUE(exact[i].around.below == wanted.below);
      ASSERT_TRUE(exact[i].around.upperWeight == wanted.upperWeight);
    }
  }
}

Values Draw(Random& random, std::size_t count, const std::function<double()>& draw, int weightBits) {
  Values values;
  for (std::size_t i = 0; i < count; ++i) {
    values.numbers.push_back(draw() + 0.0);
    if (weightBits > 0) values.weights.push_back(std::ldexp(static_cast<double>(1 + random() % 100000), -weightBits));
  }
  return values;
}

void ExpectAsSortedForAllWeights(std::size_t count, const std::function<double(Random&)>& draw) {
  Random random(count);
  const auto drawOne = [&] { return draw(random); };
  ExpectAsSorted(Draw(random, count, drawOne, 0), 0);
  ExpectAsSorted(Draw(random, count, drawOne, 12), 12);  // below 2^63 units
  ExpectAsSorted(Draw(random, count, drawOne, 70), 70);  // not so: 1 alone is 2^70 units
}

TEST(Selection, findsWhatSortingFinds) {
  for (const std::size_t count : {1u, 2u, 95u, 97u, 1000u, 5000u})
    ExpectAsSortedForAllWeights(count, [](Random& random) { return Unit(random) * 1e4 - 3e3; });
}

TEST(Selection, findsThemAmongFewDistinctValues) {
  for (const std::uint64_t distinct : {1u, 2u, 3u, 40u})
    ExpectAsSortedForAllWeights(3000, [distinct](Random& random) { return static_cast<double>(random() % distinct); });
}

TEST(Selection, findsThemWhereMostValuesAreZero) {
  ExpectAsSortedForAllWeights(
      4000, [](Random& random) { return random() % 5 < 3 ? 0.0 : std::ldexp(Unit(random), -40) - 1e-14; });
}

TEST(Selection, findsThemWhereOneValueIsFarFromAllOthers) {
  ExpectAsSortedForAllWeights(4000, [](Random& random) { return random() % 4000 == 7 ? 1e300 : Unit(random); });
}

TEST(Selection, findsThemOverTheWholeRangeOfDoubles) {
  ExpectAsSortedForAllWeights(
      4000, [](Random& random) { return std::ldexp(Unit(random) - 0.5, static_cast<int>(random() % 2098) - 1074); });
}

TEST(Selection, findsThemWhereTheRangeIsBeyondTheLargestDouble) {
  ExpectAsSortedForAllWeights(
      3000, [](Random& random) { return (Unit(random) - 0.5) * 2.0 * std::numeric_limits<double>::max(); });
}

TEST(Selection, findsThemAmongTheSmallestDoubles) {
  ExpectAsSortedForAllWeights(3000, [](Random& random) {
    return (static_cast<double>(random() % 1000) - 500.0) * std::numeric_limits<double>::denorm_min();
  });
}

TEST(Selection, findsThemAmongNeighbouringDoubles) {
  ExpectAsSortedForAllWeights(3000, [](Random& random) {
    return 1.0 + static_cast<double>(random() % 2000) * std::numeric_limits<double>::epsilon();
  });
}

TEST(Selection, goesOnOverAllValuesWhereTooManyLieInOneBucket) {
  // One value far away: a linear map puts the rest, more than are ever taken out at once, into one bucket.
  Random random(3);
  std::vector<double> numbers(2'399'999);
  for (double& number : numbers) number = std::floor(Unit(random) * 1e9);
  numbers[77] = 1e200;
  for (const std::int64_t limit : {std::int64_t{0}, std::int64_t{1'000'000}}) {
    KeptValues kept(std::make_shared<ValueMemory>(limit));
    Keep(kept, numbers);
    WeightTotal total;
    total.units = numbers.size();
    const std::vector<double> found = Percentiles({{}, &kept}, total, {25, 50, 75});
    // (n + 1) p is whole: the order statistic itself.
    for (std::size_t i = 0; i < 3; ++i) {
      const std::size_t place = 600'000 * (i + 1) - 1;
      std::vector<double> sorted = numbers;
      std::nth_element(sorted.begin(), sorted.begin() + static_cast<std::ptrdiff_t>(place), sorted.end());
      ASSERT_EQ(found[i], sorted[place]);
    }
  }
}

}  // namespace
}  // namespace runtime::aggregation
