// A categorical variable as the dimension of a table.
#include <limits>

#include <gtest/gtest.h>

#include "tests/unit/aggregation/support/onetable.h"

namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
using Texts = std::vector<std::string>;
using Numbers = std::vector<double>;

TEST(CategoricalVariable, categoriesAreTheValuesMetInAscendingOrder) {
  runtime::data::DatasetBuilder builder;
  builder.AddNumeric("v", {3, -1, 2.5, 3, 40000, 3});
  OneTable table(builder);
  table.Categorical(new AggregationVariable(0, "v")).Pass();
  EXPECT_EQ(table.Texts(), (Texts{"-1", "2.5", "3", "40000"}));
  EXPECT_EQ(table.Codes(), (std::vector<int>{0, 1, 2, 3}));
  EXPECT_EQ(table.Counts(), (Numbers{1, 1, 3, 1}));
  EXPECT_EQ(table.Categories().front()->GetValue(), -1.0);
  EXPECT_EQ(table.NumberOfValues(), 4);
}

TEST(CategoricalVariable, countsEveryRowOfALongChunk) {
  for (const std::size_t rows : {511u, 512u, 513u, 1026u, 1027u}) {
    std::vector<double> cells(rows, 1.0);
    cells.back() = 2.0;
    cells[rows / 2] = kNaN;
    runtime::data::DatasetBuilder builder;
    builder.AddNumeric("v", cells);
    OneTable table(builder);
    table.Categorical(new AggregationVariable(0, "v")).Pass();
    EXPECT_EQ(table.Counts(), (Numbers{static_cast<double>(rows - 2), 1}));
    EXPECT_EQ(table.Missing(), 1.0);
  }
}

TEST(CategoricalVariable, stringsAreOrderedByBytesAndLoseTrailingBlanks) {
  runtime::data::DatasetBuilder builder;
  builder.AddString("v", {"b", "a  ", "B", "", "\xC3\xA9", "a"}).Width(6);
  OneTable table(builder);
  table.Categorical(new AggregationVariable(0, "v")).Pass();
  EXPECT_EQ(table.Texts(), (Texts{"", "B", "a", "b", "\xC3\xA9"}));
  EXPECT_EQ(table.Counts(), (Numbers{1, 1, 2, 1, 1}));
  EXPECT_EQ(table.Categories().front()->GetValue(), 0.0);
}

TEST(CategoricalVariable, userMissingValuesAreCategoriesAndSystemMissingIsNone) {
  runtime::data::DatasetBuilder builder;
  builder.AddNumeric("v", {1, -9, kNaN, 2, -9}).Missing(-9);
  OneTable table(builder);
  table.Categorical(new AggregationVariable(0, "v")).Pass();
  EXPECT_EQ(table.Texts(), (Texts{"-9", "1", "2"}));
  EXPECT_EQ(table.Missing(), 3.0);
  EXPECT_EQ(table.Total(), 5.0);
  EXPECT_EQ(table.Percents(), (Numbers{40, 20, 20}));
}

TEST(CategoricalVariable, theBlankTextIsMissingWhenTheRuleHoldsTheEmptyText) {
  runtime::data::DatasetBuilder builder;
  builder.AddString("v", {"a", "", "  ", "b"}).Missing(std::string());
  OneTable table(builder);
  table.Categorical(new AggregationVariable(0, "v")).Pass();
  EXPECT_EQ(table.Missing(), 2.0);
  EXPECT_EQ(table.Texts(), (Texts{"", "a", "b"}));
}

TEST(CategoricalVariable, casesOfWeightZeroChangeNothing) {
  runtime::data::DatasetBuilder builder;
  builder.AddNumeric("v", {1, 2, 3, 4, 5});
  builder.AddNumeric("w", {2, 0, -1, kNaN, 0.5});
  builder.Weight("w");
  OneTable table(builder);
  table.Categorical(new AggregationVariable(0, "v")).Pass();
  EXPECT_EQ(table.Texts(), (Texts{"1", "5"}));
  EXPECT_EQ(table.Counts(), (Numbers{2, 0.5}));
  EXPECT_EQ(table.Total(), 2.5);
  EXPECT_EQ(table.NumberOfValues(), 2);
}

TEST(CategoricalVariable, percentsAreZeroWhereTheTotalIsZero) {
  runtime::data::DatasetBuilder builder;
  auto& variable = builder.AddNumeric("v", {1, 2});
  variable.ValueLabel(1, "one");
  builder.AddNumeric("w", {0, 0});
  builder.Weight("w");
  OneTable table(builder);
  table.Categorical(new AggregationMCSet({0}, "$s")).Pass();
  EXPECT_EQ(table.Counts(), (Numbers{0}));
  EXPECT_EQ(table.Percents(), (Numbers{0}));
  EXPECT_EQ(table.Total(), 0.0);
}

TEST(CategoricalVariable, theTotalCategoryIsLastAndOnlyWhenAskedFor) {
  runtime::data::DatasetBuilder builder;
  builder.AddNumeric("v", {1, 2});
  MAVO_DataSource source(builder.Build());
  const std::unique_ptr<MAVO_InputCaseIterator> iterator(source.NewCaseIterator(0));
  for (const bool noTotal : {true, false}) {
    AggregationTable table(*iterator, false, true, -1);
    auto* dimension = new AggregationVariable(0, "v");
    dimension->SetIsTotalNo(noTotal);
    table.CreateCube()->AddCategoricalVariable(dimension, TableEncryptionCodes::kFirstDimension);
    EXPECT_EQ(dimension->GetTableDimension(), nullptr);
    table.CreateCube()->CreateCubeAggregator();
    const std::unique_ptr<CubeAggregator> results(table.GetCubeAggregators().front());
    EXPECT_EQ(dimension->GetTableDimension()->GetCategoryPointers().size(), noTotal ? 0u : 1u);
  }
}

TEST(CategoryList, listedValuesAreTheCategoriesInTheirOrder) {
  runtime::data::DatasetBuilder builder;
  builder.AddNumeric("v", {1, 2, 2, 5, -9, 0.5, kNaN}).Missing(-9).MissingRange(5, 6);
  OneTable table(builder);
  OBS two{}, seven{}, one{};
  two.number = 2;
  seven.number = 7;
  one.number = 1;
  auto* dimension = new AggregationVariable(0, "v");
  dimension->SetCategoryList({new ParsedCategory(two, 0), new ParsedCategory(seven, 0), new ParsedCategory(one, 0)});
  table.Categorical(dimension).Pass();
  EXPECT_EQ(table.Texts(), (Texts{"2", "7", "1"}));
  EXPECT_EQ(table.Codes(), (std::vector<int>{0, 1, 2}));
  EXPECT_EQ(table.Counts(), (Numbers{2, -1, 1}));  // no case has 7: no cell values
  EXPECT_EQ(table.Total(), 7.0);
  EXPECT_EQ(table.Missing(), 3.0);  // the two unlisted user-missing values and the system-missing one
  EXPECT_EQ(table.NumberOfValues(), 2);
}

TEST(CategoryList, listedTextsAreCompletedFromThePaddedValue) {
  runtime::data::DatasetBuilder builder;
  builder.AddString("v", {"no", "yes", "", "maybe", "yes"}).Missing(std::string()).Width(8);
  OneTable table(builder);
  const std::string yes = "yes     ";
  auto* dimension = new AggregationVariable(0, "v");
  dimension->SetCategoryList({new ParsedCategory(*reinterpret_cast<const OBS*>(yes.data()), 0)});
  table.Categorical(dimension).Pass();
  EXPECT_EQ(table.Texts(), (Texts{"yes"}));
  EXPECT_EQ(table.Counts(), (Numbers{2}));
  EXPECT_EQ(table.Missing(), 1.0);
  EXPECT_EQ(table.NumberOfValues(), 1);
}

TEST(NumberOfValues, isThatOfTheRowsTakenAndNotOfTheRowsAhead) {
  runtime::data::DatasetBuilder builder;
  builder.AddNumeric("v", {1, 1, 2, 1, 3, kNaN, 4});
  for (const std::int64_t chunkRows : {0, 1, 2, 3}) {
    OneTable table(builder, chunkRows);
    table.Categorical(new AggregationVariable(0, "v"));
    EXPECT_EQ(table.NumberOfValues(), 0);
    for (const int values : {1, 1, 2, 2, 3, 3, 4}) {
      ASSERT_NE(table.iterator().NextCase(), 0);
      table.table().AddNewCase();
      EXPECT_EQ(table.NumberOfValues(), values);
      EXPECT_EQ(table.NumberOfValues(), values);
    }
  }
}

TEST(NumberOfValues, forgetsWhatItSawInRowsThatWereSkipped) {
  runtime::data::DatasetBuilder builder;
  builder.AddNumeric("v", {1, 2, 3, 2, 4});
  OneTable table(builder);
  table.Categorical(new AggregationVariable(0, "v"));
  table.iterator().NextCase();
  table.table().AddNewCase();
  EXPECT_EQ(table.NumberOfValues(), 1);  // looks ahead over all five rows
  table.iterator().NextCase();           // 2 is skipped,
  table.iterator().NextCase();           // 3 too
  table.iterator().NextCase();
  table.table().AddNewCase();
  EXPECT_EQ(table.NumberOfValues(), 2);
  table.Finish();
  EXPECT_EQ(table.Texts(), (Texts{"1", "2"}));
  EXPECT_EQ(table.Counts(), (Numbers{1, 1}));
}

TEST(Table, aRowOfferedTwiceCountsTwice) {
  runtime::data::DatasetBuilder builder;
  builder.AddNumeric("v", {1, 2});
  OneTable table(builder);
  table.Categorical(new AggregationVariable(0, "v"));
  table.iterator().NextCase();
  table.table().AddNewCase();
  table.table().AddNewCase();
  table.iterator().NextCase();
  table.table().AddNewCase();
  table.Finish();
  EXPECT_EQ(table.Counts(), (Numbers{2, 1}));
  EXPECT_EQ(table.Total(), 3.0);
}

TEST(Table, countsOnlyTheRowsTakenBeforeItWasDropped) {
  runtime::data::DatasetBuilder builder;
  builder.AddNumeric("v", {1, 2, 3, 4});
  OneTable table(builder);
  table.Categorical(new AggregationVariable(0, "v"));
  for (int row = 0; row < 4; ++row) {
    table.iterator().NextCase();
    if (row < 2) table.table().AddNewCase();
  }
  table.Finish();
  EXPECT_EQ(table.Texts(), (Texts{"1", "2"}));
  EXPECT_EQ(table.NumberOfValues(), 2);
}

TEST(Table, outlivesTheIteratorAndKeepsItsRows) {
  runtime::data::DatasetBuilder builder;
  builder.AddString("v", {"a", "b", "a"});
  OneTable table(builder);
  table.Categorical(new AggregationVariable(0, "v"));
  while (table.iterator().NextCase() != 0) table.table().AddNewCase();
  table.DropIterator();
  table.Finish();
  EXPECT_EQ(table.Texts(), (Texts{"a", "b"}));
  EXPECT_EQ(table.Counts(), (Numbers{2, 1}));
}

TEST(Table, mayGoBeforeItsResults) {
  runtime::data::DatasetBuilder builder;
  builder.AddNumeric("v", {1});
  OneTable table(builder);
  table.Categorical(new AggregationVariable(0, "v")).Pass();
  table.DropTable();
  table.DropResults();
}

TEST(Table, withoutARequestHasNoCells) {
  runtime::data::DatasetBuilder builder;
  builder.AddNumeric("v", {1, 2});
  OneTable table(builder);
  table.Pass();
  EXPECT_EQ(table.table().GetTableMetaData()->GetDimension(0), nullptr);
  EXPECT_EQ(table.results().GetStatValues({}, -1), nullptr);
}

TEST(Table, refusesAVariableThatIsNotInTheDictionary) {
  runtime::data::DatasetBuilder builder;
  builder.AddNumeric("v", {1});
  OneTable table(builder);
  EXPECT_THROW(table.Categorical(new AggregationVariable(7, "seven")), std::out_of_range);
}

TEST(Cells, holdTheStatisticsOfTheRequestListsInTheirOrder) {
  using namespace TableEncryptionCodes;
  runtime::data::DatasetBuilder builder;
  builder.AddNumeric("v", {1, 1, kNaN, 2});
  OneTable table(builder);
  auto* dimension = new AggregationVariable(0, "v");
  table.Categorical(dimension);
  table.cube().AddCategoryAndTotalStatistics({AggregationStatistic(kCount)}, dimension,
                                             {AggregationStatistic(kTotal), AggregationStatistic(kMissing)});
  table.Pass();
  const StatValues* cell = table.results().GetStatValues({table.Categories().front()}, -1);
  ASSERT_EQ(cell->NumOfValues(), 1);
  EXPECT_EQ(cell->GetCellStatistics().GetStatistics().at(0).GetSummaryStatistic(), kCount);
  const StatValues* total = table.results().GetStatValues({table.Categories().back()}, -1);
  ASSERT_EQ(total->NumOfValues(), 2);
  EXPECT_EQ(total->GetStatValue(0).GetValue1(), 4.0);
  EXPECT_EQ(total->GetStatValue(1).GetValue1(), 1.0);
  EXPECT_EQ(table.results().GetStatValues({table.Categories().back()}, -1), total);  // the same object each time
}

TEST(Cells, ofAnotherTablesCategoryAreNone) {
  runtime::data::DatasetBuilder builder;
  builder.AddNumeric("v", {1});
  OneTable table(builder);
  table.Categorical(new AggregationVariable(0, "v")).Pass();
  const AggregationCategory stranger(1.0, 0, "1", false);
  EXPECT_EQ(table.results().GetStatValues({&stranger}, -1), nullptr);
  EXPECT_EQ(table.results().GetStatValues({table.Categories().front(), table.Categories().back()}, -1), nullptr);
}

}  // namespace
