#include "runtime/aggregation/sketch/binedges.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>
#include <random>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace runtime::aggregation {
namespace {

using Limits = std::numeric_limits<double>;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;

/// What holds of all edges.
void ExpectSound(const std::vector<double>& edges, const BinBasis& basis) {
  ASSERT_GE(edges.size(), 2u);
  EXPECT_LE(edges.size() - 1, static_cast<std::size_t>(kMostBins));
  EXPECT_TRUE(std::is_sorted(edges.begin(), edges.end()));
  EXPECT_EQ(std::adjacent_find(edges.begin(), edges.end()), edges.end()) << "two edges are the same";
  EXPECT_LE(edges.front(), basis.lowest);
  EXPECT_GT(edges[1], basis.lowest) << "the first class is empty";
  EXPECT_GE(edges.back(), basis.highest);
  EXPECT_LT(edges[edges.size() - 2], basis.highest) << "the last class is empty";
  for (const double edge : edges) EXPECT_TRUE(std::isfinite(edge));
}

/// The first digits of a positive number: "1", "2", "5" for a nice one.
std::string Digits(double number) {
  char text[64];
  const auto end = std::to_chars(text, text + sizeof text, number, std::chars_format::scientific, 6).ptr;
  std::string digits(text, end);
  digits.erase(std::find(digits.begin(), digits.end(), 'e'), digits.end());
  while (digits.back() == '0') digits.pop_back();
  if (digits.back() == '.') digits.pop_back();
  return digits;
}

TEST(BinEdges, widthIsThatOfFreedmanAndDiaconisMadeNice) {
  // 2 x 50 / 10 = 10
  EXPECT_THAT(BinEdges({0, 100, 25, 75, 1000}), ElementsAre(0, 10, 20, 30, 40, 50, 60, 70, 80, 90, 100));
  // 2 x 5 / 2 = 5
  EXPECT_THAT(BinEdges({-7, 12, 0, 5, 8}), ElementsAre(-10, -5, 0, 5, 10, 15));
}

TEST(BinEdges, widthFollowsSturgesWhereTheQuartilesAreTheSame) {
  // 100 / (ceil(log2 1000) + 1) = 9.09, nearest nice 10
  EXPECT_THAT(BinEdges({0, 100, 3, 3, 1000}), SizeIs(11));
  // 80 / (ceil(log2 16) + 1) = 16, nearest nice 20: 4 classes are too few, so 10
  EXPECT_THAT(BinEdges({0, 80, 3, 3, 16}), SizeIs(9));
}

TEST(BinEdges, edgesAreDecimalMultiplesRoundedOnce) {
  EXPECT_THAT(BinEdges({0.1, 0.65, 0.2, 0.45, 125}), ElementsAre(0.1, 0.2, 0.3, 0.4, 0.5, 0.6, 0.7));
}

TEST(BinEdges, highestValueOnAnEdgeEndsTheLastClass) {
  EXPECT_EQ(BinEdges({0, 100, 25, 75, 1000}).back(), 100);
  EXPECT_EQ(BinEdges({0, 100.5, 25, 75, 1000}).back(), 110);
}

TEST(BinEdges, thereAreAtMostFortyAndAtLeastFive) {
  // One value far away: 2 x 1 / 10 = 0.2 would make five million classes.
  const std::vector<double> far = BinEdges({0, 1e6, 1, 2, 1000});
  EXPECT_THAT(far, SizeIs(21));
  EXPECT_EQ(far[1], 50000);
  // All within the quartiles: 2 x 10 / 1 = 20 would make one class.
  EXPECT_THAT(BinEdges({0, 10, 0, 10, 1}), ElementsAre(0, 2, 4, 6, 8, 10));
}

TEST(BinEdges, weightBelowOneMakesNoOddWidth) {
  ExpectSound(BinEdges({0, 10, 2, 8, 0.001}), {0, 10, 2, 8, 0.001});
  ExpectSound(BinEdges({0, 10, 2, 2, 0.001}), {0, 10, 2, 2, 0.001});
}

TEST(BinEdges, rangeMayBeBeyondTheLargestDouble) {
  const double most = Limits::max();
  for (const BinBasis& basis : {BinBasis{-1e308, 1e308, -1e308, 1e308, 2}, BinBasis{-most, most, -most, most, 100},
                                BinBasis{-most, most, 0, 0, 100}, BinBasis{0, most, 0, 1, 1e9}}) {
    const std::vector<double> edges = BinEdges(basis);
    ExpectSound(edges, basis);
    EXPECT_GE(edges.size() - 1, static_cast<std::size_t>(kFewestBins));
  }
}

TEST(BinEdges, numbersMayBeTooSmallForFiveClasses) {
  const double least = Limits::denorm_min();
  for (const BinBasis& basis :
       {BinBasis{0, least, 0, least, 2}, BinBasis{-least, least, 0, 0, 5}, BinBasis{0, 100 * least, 0, 50 * least, 9},
        BinBasis{1, std::nextafter(1, 2), 1, 1, 3},
        BinBasis{1e300, std::nextafter(1e300, Limits::max()), 1e300, 1e300, 3},
        BinBasis{-9007199254740993.0, -9007199254740990.0, -9007199254740992.0, -9007199254740991.0, 3}})
    ExpectSound(BinEdges(basis), basis);
}

TEST(BinEdges, areSoundAndNiceForRandomValues) {
  std::mt19937_64 random(7);
  std::uniform_real_distribution<double> unit(0.0, 1.0);
  for (int round = 0; round < 4000; ++round) {
    const double size = std::pow(10.0, std::floor(unit(random) * 600.0) - 300.0);
    const double offset = round % 3 == 0 ? size * 1e3 * (unit(random) - 0.5) : 0.0;
    std::vector<double> values;
    for (int i = 0; i < 4; ++i) values.push_back(offset + (unit(random) - 0.5) * size);
    if (round % 5 == 0) values[1] = values[2] = values[0];
    std::sort(values.begin(), values.end());
    if (values[0] == values[3]) continue;
    const BinBasis basis{values[0], values[3], values[1], values[2], std::exp(unit(random) * 30.0 - 3.0)};
    const std::vector<double> edges = BinEdges(basis);
    ExpectSound(edges, basis);
    EXPECT_GE(edges.size() - 1, static_cast<std::size_t>(kFewestBins));
    const double width = (edges.back() - edges.front()) / static_cast<double>(edges.size() - 1);
    EXPECT_THAT(Digits(width), ::testing::AnyOf("1", "2", "5")) << width;
    if (::testing::Test::HasFailure()) break;
  }
}

TEST(WholeNumberEdges, giveEachNumberAClassAroundIt) {
  EXPECT_THAT(WholeNumberEdges(-1, 2), ElementsAre(-1.5, -0.5, 0.5, 1.5, 2.5));
  EXPECT_THAT(WholeNumberEdges(7, 7), ElementsAre(6.5, 7.5));
}

TEST(WholeNumberEdges, spanFortyNumbersAtMost) {
  EXPECT_THAT(WholeNumberEdges(1, 40), SizeIs(41));
  EXPECT_THAT(WholeNumberEdges(1, 41), IsEmpty());
}

TEST(WholeNumberEdges, areForWholeNumbersThatHalvesTellApart) {
  EXPECT_THAT(WholeNumberEdges(1, 2.5), IsEmpty());
  EXPECT_THAT(WholeNumberEdges(0.5, 2), IsEmpty());
  EXPECT_THAT(WholeNumberEdges(2251799813685240.0, 2251799813685248.0), SizeIs(10));
  EXPECT_THAT(WholeNumberEdges(2251799813685240.0, 2251799813685249.0), IsEmpty());
  EXPECT_THAT(WholeNumberEdges(-1e300, -1e300), IsEmpty());
}

}  // namespace
}  // namespace runtime::aggregation
