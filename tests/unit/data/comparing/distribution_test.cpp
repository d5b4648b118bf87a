#include "runtime/data/comparing/distribution.h"

#include <cmath>
#include <string>
#include <utility>
#include <vector>

#include <gmock/gmock.h>

namespace runtime::data {
namespace {

using testing::IsEmpty;
using testing::SizeIs;

Distribution Values(std::vector<ValueWeight> values, double missing = 0.0) {
  Distribution distribution;
  for (const ValueWeight& value : values) distribution.valid += value.weight;
  distribution.values = std::move(values);
  distribution.missing = missing;
  return distribution;
}

Distribution Scale(double mean, double deviation) {
  Distribution distribution;
  distribution.isScale = true;
  distribution.valid = 100.0;
  distribution.mean = Figure{mean, std::to_string(mean)};
  distribution.deviation = Figure{deviation, std::to_string(deviation)};
  return distribution;
}

std::vector<Change> ChangesOf(const Distribution& before, const Distribution& after,
                              std::vector<Change> dictionaryChanges = {}, const Thresholds& thresholds = {}) {
  Comparison comparison;
  VariableComparison variable;
  variable.before = "old";
  variable.after = "new";
  const std::size_t told = dictionaryChanges.size();
  variable.changes = std::move(dictionaryChanges);
  comparison.variables.push_back(std::move(variable));
  CompareDistributions({{"old", before}}, {{"new", after}}, thresholds, comparison);
  std::vector<Change> changes = comparison.variables[0].changes;
  changes.erase(changes.begin(), changes.begin() + static_cast<std::ptrdiff_t>(told));
  return changes;
}

TEST(CompareDistributions, findNothingInTheSame) {
  EXPECT_THAT(ChangesOf(Values({{"1", "Yes", 3}}, 2), Values({{"1", "Yes", 3}}, 2)), IsEmpty());
  EXPECT_THAT(ChangesOf(Scale(5, 2), Scale(5, 2)), IsEmpty());
}

TEST(CompareDistributions, findNothingWhereOnlyTheNumberOfCasesDiffers) {
  EXPECT_THAT(ChangesOf(Values({{"1", "Yes", 3}, {"2", "No", 1}}, 2), Values({{"1", "Yes", 30}, {"2", "No", 10}}, 20)),
              IsEmpty());
}

TEST(CompareDistributions, tellAMissingShareThatMovedByOnePoint) {
  const auto changes = ChangesOf(Values({{"1", "", 98}}, 2), Values({{"1", "", 97}}, 3));
  ASSERT_THAT(changes, SizeIs(1));
  EXPECT_EQ(changes[0].kind, ChangeKind::MissingShareMoved);
  EXPECT_DOUBLE_EQ(*changes[0].numberBefore, 2.0);
  EXPECT_DOUBLE_EQ(*changes[0].numberAfter, 3.0);
  EXPECT_DOUBLE_EQ(changes[0].size, 1.0);
  EXPECT_THAT(ChangesOf(Values({{"1", "", 980}}, 20), Values({{"1", "", 971}}, 29)), IsEmpty());
}

TEST(CompareDistributions, tellAValuesShareThatMovedByFivePoints) {
  const auto changes =
      ChangesOf(Values({{"1", "Yes", 50}, {"2", "No", 50}}), Values({{"1", "Yes", 55}, {"2", "No", 45}}));
  ASSERT_THAT(changes, SizeIs(2));
  EXPECT_EQ(changes[0].kind, ChangeKind::ValueShareMoved);
  EXPECT_EQ(changes[0].about, "1");
  EXPECT_EQ(changes[0].aboutLabel, "Yes");
  EXPECT_DOUBLE_EQ(*changes[0].numberBefore, 50.0);
  EXPECT_DOUBLE_EQ(*changes[0].numberAfter, 55.0);
  EXPECT_THAT(ChangesOf(Values({{"1", "", 50}, {"2", "", 50}}), Values({{"1", "", 54}, {"2", "", 46}})), IsEmpty());
}

TEST(CompareDistributions, takeSharesOfTheValidCases) {
  const auto changes = ChangesOf(Values({{"1", "", 50}, {"2", "", 50}}), Values({{"1", "", 25}, {"2", "", 25}}, 50));
  ASSERT_THAT(changes, SizeIs(1));
  EXPECT_EQ(changes[0].kind, ChangeKind::MissingShareMoved);
}

TEST(CompareDistributions, tellValuesThatOneWaveDoesNotHave) {
  const auto changes = ChangesOf(Values({{"1", "", 9}, {"2", "", 1}}), Values({{"1", "", 9}, {"3", "", 1}}));
  ASSERT_THAT(changes, SizeIs(2));
  EXPECT_EQ(changes[0].about, "2");
  EXPECT_DOUBLE_EQ(*changes[0].numberAfter, 0.0);
  EXPECT_EQ(changes[1].about, "3");
  EXPECT_DOUBLE_EQ(*changes[1].numberBefore, 0.0);
}

TEST(CompareDistributions, followMovedCodes) {
  const Distribution before = Values({{"1", "Yes", 80}, {"2", "No", 20}});
  const Distribution after = Values({{"1", "No", 20}, {"2", "Yes", 80}});
  EXPECT_THAT(ChangesOf(before, after), SizeIs(2));
  EXPECT_THAT(ChangesOf(before, after,
                        {TextChange(ChangeKind::CodeMoved, "Yes", "1", "2"),
                         TextChange(ChangeKind::CodeMoved, "No", "2", "1")}),
              IsEmpty());
}

TEST(CompareDistributions, tellAMeanThatMovedByAFifthOfTheStandardDeviation) {
  const auto changes = ChangesOf(Scale(50, 10), Scale(52, 10));
  ASSERT_THAT(changes, SizeIs(1));
  EXPECT_EQ(changes[0].kind, ChangeKind::MeanMoved);
  EXPECT_DOUBLE_EQ(changes[0].size, 0.2);
  EXPECT_THAT(ChangesOf(Scale(50, 10), Scale(51.9, 10)), IsEmpty());
}

TEST(CompareDistributions, takeBothWavesDeviationsAlike) {
  const double unit = std::sqrt((3.0 * 3.0 + 4.0 * 4.0) / 2);
  EXPECT_DOUBLE_EQ(ChangesOf(Scale(0, 3), Scale(9, 4)).at(0).size, 9 / unit);
  EXPECT_DOUBLE_EQ(ChangesOf(Scale(9, 4), Scale(0, 3)).at(0).size, 9 / unit);
}

TEST(CompareDistributions, tellAnyOtherMeanWithoutSpread) {
  const auto changes = ChangesOf(Scale(1, 0), Scale(2, 0));
  ASSERT_THAT(changes, SizeIs(1));
  EXPECT_TRUE(std::isinf(changes[0].size));
  EXPECT_THAT(ChangesOf(Scale(1, 0), Scale(1, 0)), IsEmpty());
}

TEST(CompareDistributions, compareNoValuesOfAScaleWithCategories) {
  EXPECT_THAT(ChangesOf(Scale(1, 0), Values({{"1", "", 100}})), IsEmpty());
}

TEST(CompareDistributions, takeNoShareWhereThereAreNoCases) {
  EXPECT_THAT(ChangesOf(Values({}), Values({{"1", "", 100}}, 50)), IsEmpty());
  const auto changes = ChangesOf(Values({}, 10), Values({{"1", "", 10}}));
  ASSERT_THAT(changes, SizeIs(1));
  EXPECT_EQ(changes[0].kind, ChangeKind::MissingShareMoved);
}

TEST(CompareDistributions, keepToTheThresholds) {
  Thresholds all;
  all.missing = all.value = all.mean = 0.0;
  EXPECT_THAT(ChangesOf(Values({{"1", "", 999}}, 1), Values({{"1", "", 1000}}), {}, all), SizeIs(1));
  EXPECT_THAT(ChangesOf(Values({{"1", "", 1}, {"2", "", 2}}), Values({{"1", "", 10}, {"2", "", 20}}), {}, all),
              IsEmpty());
  EXPECT_THAT(ChangesOf(Scale(50, 10), Scale(50.01, 10), {}, all), SizeIs(1));
}

}  // namespace
}  // namespace runtime::data
