// Multiple response sets as the dimension of a table.
#include <limits>

#include <gtest/gtest.h>

#include "tests/unit/aggregation/support/onetable.h"

namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
using Texts = std::vector<std::string>;
using Numbers = std::vector<double>;
using Codes = std::vector<int>;

OBS Number(double number) {
  OBS value{};
  value.number = number;
  return value;
}

TEST(DichotomySet, countsEachMemberInSetOrderUnderItsNameAndIndex) {
  runtime::data::DatasetBuilder builder;
  builder.AddNumeric("a", {1, 0, 1, kNaN});
  builder.AddNumeric("b", {0, 0, 1, 1});
  builder.AddNumeric("c", {0, 0, 0, 0});
  OneTable table(builder);
  const OBS counted = Number(1);
  table.Categorical(new AggregationMDSet({2, 1, 0}, "$s", &counted, 8, false)).Pass();
  EXPECT_EQ(table.Texts(), (Texts{"c", "b", "a"}));
  EXPECT_EQ(table.Codes(), (Codes{2, 1, 0}));
  EXPECT_EQ(table.Counts(), (Numbers{0, 2, 2}));  // a member without a case is a category all the same
  EXPECT_EQ(table.Percents(), (Numbers{0, 50, 50}));
  EXPECT_EQ(table.Missing(), 1.0);
  EXPECT_EQ(table.Total(), 4.0);
  EXPECT_EQ(table.NumberOfValues(), 2);
  EXPECT_NE(dynamic_cast<TableMDSet*>(table.table().GetTableMetaData()->GetDimension(0)), nullptr);
}

TEST(DichotomySet, countsAUserMissingCountedValue) {
  runtime::data::DatasetBuilder builder;
  builder.AddNumeric("a", {1, 2}).Missing(1);
  OneTable table(builder);
  const OBS counted = Number(1);
  table.Categorical(new AggregationMDSet({0}, "$s", &counted, 8, false)).Pass();
  EXPECT_EQ(table.Counts(), (Numbers{1}));
  EXPECT_EQ(table.Missing(), 1.0);
}

TEST(DichotomySet, aMemberNamedTwiceCountsOnce) {
  runtime::data::DatasetBuilder builder;
  builder.AddNumeric("a", {1, 1});
  builder.AddNumeric("b", {1, 0});
  OneTable table(builder);
  const OBS counted = Number(1);
  table.Categorical(new AggregationMDSet({0, 1, 0}, "$s", &counted, 8, false)).Pass();
  EXPECT_EQ(table.Codes(), (Codes{0, 1}));
  EXPECT_EQ(table.Counts(), (Numbers{2, 1}));
}

TEST(DichotomySet, textIsCountedWhenTheFirstMemberHasTheStringFormat) {
  runtime::data::DatasetBuilder builder;
  builder.AddString("a", {"yes", "no", "yes  "}).Width(12);
  builder.AddNumeric("n", {1, 1, 1});
  builder.AddString("b", {"no", "yes", ""});
  OneTable table(builder);
  const std::string counted = "yes             ";  // two units
  table.Categorical(new AggregationMDSet({0, 1, 2}, "$s", reinterpret_cast<const OBS*>(counted.data()), 2, false));
  table.Pass();
  EXPECT_EQ(table.Counts(), (Numbers{2, 0, 1}));
}

TEST(DichotomySet, aStringMemberNeverHasANumericCountedValue) {
  runtime::data::DatasetBuilder builder;
  builder.AddNumeric("n", {1, 0});
  builder.AddString("a", {"1", "1"});
  OneTable table(builder);
  const OBS counted = Number(1);
  table.Categorical(new AggregationMDSet({0, 1}, "$s", &counted, 8, false)).Pass();
  EXPECT_EQ(table.Counts(), (Numbers{1, 0}));
}

TEST(DichotomySet, copiesTheCountedValueWhenItIsCreated) {
  runtime::data::DatasetBuilder builder;
  builder.AddNumeric("a", {1, 2});
  OneTable table(builder);
  OBS counted = Number(1);
  table.Categorical(new AggregationMDSet({0}, "$s", &counted, 8, false));
  counted.number = 2;
  table.Pass();
  table.DropIterator();
  EXPECT_EQ(table.Counts(), (Numbers{1}));
}

TEST(DichotomySet, withoutMembersHasOnlyCasesWithoutResponse) {
  runtime::data::DatasetBuilder builder;
  builder.AddNumeric("a", {1, 2});
  OneTable table(builder);
  table.Categorical(new AggregationMDSet({}, "$s", nullptr, 8, false)).Pass();
  EXPECT_TRUE(table.Texts().empty());
  EXPECT_EQ(table.Missing(), 2.0);
  EXPECT_EQ(table.Total(), 2.0);
}

TEST(CategorySet, categoriesAreTheLabelledValuesAndThoseMetByValue) {
  runtime::data::DatasetBuilder builder;
  builder.AddNumeric("a", {1, 5, kNaN}).ValueLabel(3, "three").ValueLabel(1, "one");
  builder.AddNumeric("b", {2, 5, kNaN}).ValueLabel(0, "nought");
  OneTable table(builder);
  table.Categorical(new AggregationMCSet({0, 1}, "$s")).Pass();
  EXPECT_EQ(table.Texts(), (Texts{"0", "1", "2", "3", "5"}));
  EXPECT_EQ(table.Counts(), (Numbers{0, 1, 1, 0, 1}));
  EXPECT_EQ(table.Codes(), (Codes{1, 0, 1, 0, 0}));
  EXPECT_EQ(table.Missing(), 1.0);
  EXPECT_EQ(table.Total(), 3.0);
  EXPECT_EQ(table.NumberOfValues(), 3);  // values met, not those only labelled
  EXPECT_NE(dynamic_cast<TableMCSet*>(table.table().GetTableMetaData()->GetDimension(0)), nullptr);
}

TEST(CategorySet, aCaseCountsOnceHoweverManyMembersHoldTheValue) {
  runtime::data::DatasetBuilder builder;
  builder.AddNumeric("a", {1, 1});
  builder.AddNumeric("b", {1, 2});
  builder.AddNumeric("c", {1, 1});
  OneTable table(builder);
  table.Categorical(new AggregationMCSet({0, 1, 2}, "$s")).Pass();
  EXPECT_EQ(table.Texts(), (Texts{"1", "2"}));
  EXPECT_EQ(table.Counts(), (Numbers{2, 1}));
  EXPECT_EQ(table.Percents(), (Numbers{100, 50}));
}

TEST(CategorySet, userMissingValuesAreExceptedForTheirMemberOnly) {
  runtime::data::DatasetBuilder builder;
  builder.AddNumeric("a", {9, 1, 9}).Missing(9).ValueLabel(9, "refused");
  builder.AddNumeric("b", {9, kNaN, kNaN});
  OneTable table(builder);
  table.Categorical(new AggregationMCSet({0, 1}, "$s")).Pass();
  EXPECT_EQ(table.Texts(), (Texts{"1", "9"}));
  EXPECT_EQ(table.Counts(), (Numbers{1, 1}));
  EXPECT_EQ(table.Codes(), (Codes{0, 1}));
  EXPECT_EQ(table.Missing(), 1.0);
}

TEST(CategorySet, theCodeIsTheFirstMemberInSetOrderThatLabelsOrHoldsTheValue) {
  runtime::data::DatasetBuilder builder;
  builder.AddNumeric("a", {1, 2, 3});
  builder.AddNumeric("b", {2, 3, 1}).ValueLabel(7, "seven");
  builder.AddNumeric("w", {1, 0, 1});
  builder.Weight("w");
  OneTable table(builder);
  table.Categorical(new AggregationMCSet({1, 0}, "$s")).Pass();
  EXPECT_EQ(table.Texts(), (Texts{"1", "2", "3", "7"}));
  EXPECT_EQ(table.Codes(), (Codes{1, 1, 0, 1}));  // b holds 3 only in a case of weight 0
}

TEST(CategorySet, theCodeIsTakenFromRowsTakenOnly) {
  runtime::data::DatasetBuilder builder;
  builder.AddNumeric("a", {kNaN, 4, kNaN});
  builder.AddNumeric("b", {4, 4, 5});
  OneTable table(builder);
  table.Categorical(new AggregationMCSet({0, 1}, "$s"));
  for (int row = 0; row < 3; ++row) {
    table.iterator().NextCase();
    if (row == 0) table.table().AddNewCase();
    EXPECT_EQ(table.NumberOfValues(), 1);
  }
  table.Finish();
  EXPECT_EQ(table.Texts(), (Texts{"4"}));
  EXPECT_EQ(table.Codes(), (Codes{1}));
}

TEST(CategorySet, textsComeBehindNumbers) {
  runtime::data::DatasetBuilder builder;
  builder.AddString("a", {"x", "1"}).ValueLabel(std::string("k"), "labelled");
  builder.AddNumeric("b", {1, 30});
  OneTable table(builder);
  table.Categorical(new AggregationMCSet({0, 1}, "$s")).Pass();
  EXPECT_EQ(table.Texts(), (Texts{"1", "30", "1", "k", "x"}));
  EXPECT_EQ(table.Codes(), (Codes{1, 1, 0, 0, 0}));
}

TEST(CategorySet, aSetOfManyMembersIsCountedInBlocks) {
  runtime::data::DatasetBuilder builder;
  constexpr int kMembers = 400;
  constexpr std::size_t kRows = 150;
  std::vector<int> members;
  for (int member = 0; member < kMembers; ++member) {
    std::vector<double> cells(kRows);
    for (std::size_t row = 0; row < kRows; ++row)
      cells[row] = static_cast<double>((member + static_cast<int>(row)) % 3);
    builder.AddNumeric("m" + std::to_string(member), cells);
    members.push_back(member);
  }
  OneTable table(builder);
  table.Categorical(new AggregationMCSet(members, "$s")).Pass();
  EXPECT_EQ(table.Counts(), (Numbers{kRows, kRows, kRows}));
  EXPECT_EQ(table.Codes(), (Codes{0, 0, 0}));
}

}  // namespace
