#include <limits>
#include <vector>

#include <gtest/gtest.h>

#include "runtime/data/store/numericpart.h"
#include "runtime/data/typing/columnfacts.h"

namespace runtime::data {
namespace {

ValueFacts FactsOf(const std::vector<double>& values) {
  ValueFacts facts;
  for (const double value : values) {
    NumericPart part;
    part.AppendDoubles(&value, 1);
    part.AddFactsTo(facts);
  }
  return facts;
}

TEST(ValueFacts, rememberUpToTwentyFourDifferentIntegers) {
  std::vector<double> values;
  for (int i = 0; i < 24; ++i) values.push_back(i % 2 == 0 ? i : -1000 * i);
  const ValueFacts few = FactsOf(values);
  EXPECT_TRUE(few.fewIntegers());
  EXPECT_EQ(few.DistinctIntegers().size(), 24U);
  EXPECT_EQ(few.DistinctIntegers().front(), -23000);
  values.push_back(0);
  EXPECT_TRUE(FactsOf(values).fewIntegers());
  values.push_back(99);
  EXPECT_FALSE(FactsOf(values).fewIntegers());
  EXPECT_TRUE(FactsOf(values).allIntegers());
}

TEST(ValueFacts, knowAFractionWhereverItStands) {
  EXPECT_FALSE(FactsOf({1, 2, 2.5, 3}).allIntegers());
  EXPECT_FALSE(FactsOf({0.5}).fewIntegers());
  EXPECT_TRUE(FactsOf({1e300, 3}).allIntegers());
}

TEST(ValueFacts, passOverSystemMissing) {
  const ValueFacts facts = FactsOf({std::numeric_limits<double>::quiet_NaN()});
  EXPECT_FALSE(facts.hasValues());
  EXPECT_TRUE(facts.fewIntegers());
  EXPECT_TRUE(facts.DistinctIntegers().empty());
}

TEST(ValueFacts, countTheColumnsOfTheWholePartWithItsSign) {
  EXPECT_EQ(FactsOf({}).IntegerColumns(), 1);
  EXPECT_EQ(FactsOf({0}).IntegerColumns(), 1);
  EXPECT_EQ(FactsOf({9.99}).IntegerColumns(), 1);
  EXPECT_EQ(FactsOf({10}).IntegerColumns(), 2);
  EXPECT_EQ(FactsOf({-0.5}).IntegerColumns(), 2);
  EXPECT_EQ(FactsOf({-10, 100}).IntegerColumns(), 3);
  EXPECT_EQ(FactsOf({-100, 100}).IntegerColumns(), 4);
  EXPECT_EQ(FactsOf({999999999999999.0}).IntegerColumns(), 15);
}

}  // namespace
}  // namespace runtime::data
