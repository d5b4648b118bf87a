#include "runtime/data/source/sql/groupedrows.h"

#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "runtime/data/source/sql/typegroups.h"

namespace runtime::data {
namespace {

using testing::ElementsAre;

SqlWeight InUnits(int unit) {
  SqlWeight weight;
  weight.form = SqlWeight::Form::Pairs;
  weight.unit = unit;
  return weight;
}

const mpz_class kSplit = (mpz_class(1) << 60) + 1;  // two doubles

TEST(GroupedRows, keepTheOrderOfTheirCells) {
  GroupedRows rows((SqlWeight()));
  rows.Add(2, 10);
  rows.Add(0, 20);
  rows.Add(2, 30);
  const CountedGroups counted = rows.Take({NumbersColumn({1.5, 2.5, 3.5})});
  EXPECT_EQ(counted.rows, 3);
  EXPECT_TRUE(counted.isComplete);
  EXPECT_THAT(NumbersOf(counted.columns.at(0)), ElementsAre(3.5, 1.5, 3.5));
  EXPECT_THAT(counted.weights, ElementsAre(10.0, 20.0, 30.0));
}

TEST(GroupedRows, spreadAWeightThatNoDoubleHoldsBehindTheFirstRowsOfAll) {
  GroupedRows rows((SqlWeight()));
  rows.Add(0, kSplit);
  rows.Add(1, 7);
  rows.Add(2, kSplit * 2);
  rows.Add(3, 0);
  const CountedGroups counted = rows.Take({NumbersColumn({0, 1, 2, 3})});
  EXPECT_THAT(NumbersOf(counted.columns.at(0)), ElementsAre(0, 1, 2, 3, 0, 2));
  EXPECT_THAT(counted.weights, ElementsAre(0x1p60, 7.0, 0x1p61, 0.0, 1.0, 2.0));
}

TEST(GroupedRows, keepTheFurtherRowsOfAStretchBeforeTheNextOne) {
  GroupedRows rows((SqlWeight()));
  rows.Add(0, kSplit);
  rows.Add(1, 1);
  rows.EndStretch();
  rows.Add(0, kSplit);
  rows.Add(2, 1);
  const CountedGroups counted = rows.Take({NumbersColumn({0, 1, 2})});
  EXPECT_THAT(NumbersOf(counted.columns.at(0)), ElementsAre(0, 1, 0, 0, 2, 0));
  EXPECT_THAT(counted.weights, ElementsAre(0x1p60, 1.0, 1.0, 0x1p60, 1.0, 1.0));
}

TEST(GroupedRows, countWeightsInTheirUnit) {
  GroupedRows rows(InUnits(-4));
  rows.Add(0, 3);
  rows.Add(0, kSplit);
  EXPECT_THAT(rows.Take({NumbersColumn({1})}).weights, ElementsAre(0.1875, 0x1p56, 0x1p-4));
}

TEST(GroupedRows, countCasesByOnesWhateverUnitIsLeftInAWeightThatIsNone) {
  SqlWeight none = InUnits(-4);
  none.form = SqlWeight::Form::None;
  GroupedRows rows(none);
  rows.Add(0, 3);
  EXPECT_THAT(rows.Take({}).weights, ElementsAre(3.0));
}

TEST(GroupedRows, giveEachOfSeveralColumnsTheSameRows) {
  GroupedRows rows((SqlWeight()));
  rows.Add(1, 1);
  rows.Add(0, 1);
  const CountedGroups counted = rows.Take({NumbersColumn({1, 2}), NumbersColumn({10, 20})});
  EXPECT_THAT(NumbersOf(counted.columns.at(0)), ElementsAre(2, 1));
  EXPECT_THAT(NumbersOf(counted.columns.at(1)), ElementsAre(20, 10));
}

TEST(GroupedRows, areNoneWhenNothingWasAdded) {
  const CountedGroups counted = GroupedRows((SqlWeight())).Take({NumbersColumn({})});
  EXPECT_EQ(counted.rows, 0);
  EXPECT_TRUE(counted.weights.empty());
}

TEST(WeightOfGroup, isItsCasesWhereNoWeightIsKept) {
  RawGroups plain;
  plain.AddCases(plain.Enter("a"), 5'000'000'000);
  EXPECT_TRUE(WeightOfGroup(plain, 0) == 5'000'000'000L);
  RawGroups weighted(true);
  weighted.AddCases(weighted.Enter("a"), 5);
  weighted.AddWeight(0, 9);
  EXPECT_TRUE(WeightOfGroup(weighted, 0) == 9);
}

}  // namespace
}  // namespace runtime::data
