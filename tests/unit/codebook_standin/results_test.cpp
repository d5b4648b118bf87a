// Reading the statistics back from cells that the test planned.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "runtime/data/builder.h"
#include "tests/unit/codebook/statisticsrun.h"
#include "tests/unit/codebook_standin/standin.h"

namespace codebook::standin {
namespace {

using runtime::data::DatasetBuilder;
using test::ListedEntry;
using test::StatisticsRun;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

std::shared_ptr<const runtime::data::Dataset> survey() {
  DatasetBuilder builder;
  builder.AddNumeric("v", {1, 1});
  builder.AddNumeric("w", {1, 1});
  builder.AddCategorySet("$c", {"v", "w"});
  builder.AddDichotomySet("$d", {"v", "w"}, "1");
  return builder.Build();
}

struct CategoryResults {
  std::vector<double> counts{9}, percents{9}, values{9};
  std::vector<std::string> texts{"before"};
  std::vector<std::int32_t> codes{9};
  double missing = 9.0;
  double total = 9.0;

  void read(const VariableStatistics& statistics, int i) {
    total = statistics.ReadCategoryResults(i, counts, percents, values, texts, codes, &missing);
  }
};

/// Three categories, the second without any case, and the total.
std::vector<Category> threeCategories() {
  return {{1.0, 10, "1", Cell{{1, 4.0}, {130, 40.0}}},
          {2.0, 11, "2", std::nullopt},
          {3.0, 12, "3", Cell{{1, 5.0}, {130, 50.0}}},
          {0.0, 13, "", Cell{{198, 1.0}, {213, 10.0}}}};
}

CategoryResults resultsOf(const std::string& name, const std::vector<Category>& categories) {
  newHost().dataset = survey();
  host().tables.resize(1);
  host().tables.front().column = {1, 1};
  host().tables.front().categories = categories;
  StatisticsRun run({{name}}, {1, 130}, {});
  run.setUpAndPass(200);
  CategoryResults results;
  results.read(run.statistics(), 0);
  return results;
}

TEST(Results, categoricalVariableHasOneEntryACategoryAndItsTotal) {
  const CategoryResults results = resultsOf("v", threeCategories());
  EXPECT_THAT(results.values, ElementsAre(1.0, 2.0, 3.0));
  EXPECT_THAT(results.texts, ElementsAre("1", "2", "3"));
  EXPECT_THAT(results.counts, ElementsAre(4.0, 0.0, 5.0));
  EXPECT_THAT(results.percents, ElementsAre(40.0, 0.0, 50.0));
  EXPECT_THAT(results.codes, IsEmpty());
  EXPECT_EQ(results.missing, 1.0);
  EXPECT_EQ(results.total, 10.0);
}

TEST(Results, dichotomySetHasCodesAndTextsAndNoValues) {
  const CategoryResults results = resultsOf("$d", threeCategories());
  EXPECT_THAT(results.values, IsEmpty());
  EXPECT_THAT(results.codes, ElementsAre(10, 11, 12));
  EXPECT_THAT(results.texts, ElementsAre("1", "2", "3"));
}

TEST(Results, categorySetHasCodesAndValues) {
  const CategoryResults results = resultsOf("$c", threeCategories());
  EXPECT_THAT(results.values, ElementsAre(1.0, 2.0, 3.0));
  EXPECT_THAT(results.codes, ElementsAre(10, 11, 12));
  EXPECT_THAT(results.texts, ElementsAre("1", "2", "3"));
}

TEST(Results, percentsAreOnlyTheZerosOfEmptyCellsWhenNoneWereAskedFor) {
  std::vector<Category> categories = threeCategories();
  categories[0].cell = Cell{{1, 4.0}};
  categories[2].cell = Cell{{1, 5.0}};
  const CategoryResults results = resultsOf("v", categories);
  EXPECT_THAT(results.counts, ElementsAre(4.0, 0.0, 5.0));
  EXPECT_THAT(results.percents, ElementsAre(0.0));
}

TEST(Results, totalCountsInTheLastCategoryOnlyAndOtherCodesNowhere) {
  std::vector<Category> categories = threeCategories();
  categories[0].cell = Cell{{1, 4.0}, {213, 77.0}, {179, 3.0}};
  const CategoryResults results = resultsOf("v", categories);
  EXPECT_EQ(results.total, 10.0);
  EXPECT_THAT(results.counts, ElementsAre(4.0, 0.0, 5.0));
}

TEST(Results, totalWithoutACellGivesNothing) {
  std::vector<Category> categories = threeCategories();
  categories[3].cell = std::nullopt;
  const CategoryResults results = resultsOf("v", categories);
  EXPECT_EQ(results.total, 0.0);
  EXPECT_EQ(results.missing, 0.0);
  EXPECT_THAT(results.counts, ElementsAre(4.0, 0.0, 5.0));
}

/// A scale item in front of a categorical one; the scale item's cell as given.
class TwoItems {
 public:
  TwoItems(const std::optional<Cell>& scaleCell, const std::vector<Category>& categories,
           const std::vector<int>& categoryCodes = {1}) {
    newHost().dataset = survey();
    host().tables.resize(2);
    host().tables[0].wholeCell = scaleCell;
    host().tables[1].column = {1, 1};
    host().tables[1].categories = categories;
    fRun = std::make_unique<StatisticsRun>(std::vector<ListedEntry>{{"v", kScaleItem}, {"w"}}, categoryCodes,
                                           std::vector<int>{222, 198});
    fRun->setUpAndPass(200);
  }
  VariableStatistics& statistics() { return fRun->statistics(); }

 private:
  std::unique_ptr<StatisticsRun> fRun;
};

TEST(Results, scaleItemGivesItsValuesInOrder) {
  TwoItems items(Cell{{222, 8.0}, {198, 2.0}, {179, 1.5}, {203, 0.5}, {468, 1.0}, {468, 2.0}, {468, 3.0}},
                 threeCategories());
  std::vector<double> results = {9.0};
  items.statistics().ReadScaleResults(0, results);
  EXPECT_THAT(results, ElementsAre(8.0, 2.0, 1.5, 0.5, 1.0, 2.0, 3.0));
}

TEST(Results, scaleReadingOfACategoricalItemIsEmpty) {
  TwoItems items(Cell{{222, 8.0}}, threeCategories());
  std::vector<double> results = {9.0};
  items.statistics().ReadScaleResults(1, results);
  EXPECT_THAT(results, IsEmpty());
}

TEST(Results, scaleItemWithoutACellGivesNothing) {
  TwoItems items(std::nullopt, threeCategories());
  std::vector<double> results = {9.0};
  items.statistics().ReadScaleResults(0, results);
  EXPECT_THAT(results, IsEmpty());
}

TEST(Results, categoryReadingOfAScaleItemClearsTheListsAndGivesZero) {
  TwoItems items(Cell{{222, 8.0}}, threeCategories());
  CategoryResults results;
  results.read(items.statistics(), 0);
  EXPECT_THAT(results.counts, IsEmpty());
  EXPECT_THAT(results.percents, IsEmpty());
  EXPECT_THAT(results.values, IsEmpty());
  EXPECT_THAT(results.texts, IsEmpty());
  EXPECT_THAT(results.codes, IsEmpty());
  EXPECT_EQ(results.missing, 0.0);
  EXPECT_EQ(results.total, 0.0);
}

TEST(CaseCount, ofAScaleItemIsValidPlusMissing) {
  TwoItems items(Cell{{222, 8.0}, {179, 100.0}, {198, 2.5}}, threeCategories());
  EXPECT_EQ(items.statistics().CaseCount(), 10.5);
}

TEST(CaseCount, isKeptOnceKnown) {
  TwoItems items(Cell{{222, 8.0}, {198, 2.0}}, threeCategories());
  EXPECT_EQ(items.statistics().CaseCount(), 10.0);
  host().tables[0].wholeCell = Cell{{222, 1.0}};
  EXPECT_EQ(items.statistics().CaseCount(), 10.0);
}

TEST(CaseCount, goesOnToTheNextItemWhereOneHasNoneOrZero) {
  std::vector<Category> categories = threeCategories();
  categories[3].cell = Cell{{198, 1.0}, {213, 12.0}};
  EXPECT_EQ(TwoItems(std::nullopt, categories).statistics().CaseCount(), 12.0);
  EXPECT_EQ(TwoItems(Cell{{222, 0.0}, {198, 0.0}}, categories).statistics().CaseCount(), 12.0);
}

TEST(CaseCount, passesOverAnItemWhoseStatisticsAreNotShown) {
  newHost().dataset = survey();
  host().tables.resize(2);
  // Too many values: the first item drops out of the pass; its total would say 99.
  host().tables[0].column = {1, 2};
  host().tables[0].categories = {{0.0, 0, "", Cell{{213, 99.0}}}};
  host().tables[1].wholeCell = Cell{{222, 2.0}, {198, 0.0}};
  StatisticsRun run({{"v"}, {"w", kScaleItem}}, {1}, {222, 198});
  run.statistics().SetUp(run.iterator(), -1);
  run.statistics().PassCases(200);
  EXPECT_THAT(run.statistics().shownFlags(), ElementsAre(false, true));
  EXPECT_EQ(run.statistics().CaseCount(), 2.0);
}

TEST(CaseCount, ofACategoricalItemIsItsFirstTotal) {
  std::vector<Category> categories = threeCategories();
  categories[3].cell = Cell{{198, 1.0}, {213, 7.0}, {213, 8.0}};
  EXPECT_EQ(TwoItems(std::nullopt, categories).statistics().CaseCount(), 7.0);
  categories[3].cell = Cell{{198, 1.0}};
  EXPECT_EQ(TwoItems(std::nullopt, categories).statistics().CaseCount(), -1.0);
}

TEST(CaseCount, ofADimensionWithoutCategoriesIsUnknown) {
  EXPECT_EQ(TwoItems(std::nullopt, {}).statistics().CaseCount(), -1.0);
}

TEST(CaseCount, withoutCasesIsMinusOne) {
  DatasetBuilder builder;
  builder.AddNumeric("v");
  newHost().dataset = builder.Build();
  StatisticsRun run({{"v", kScaleItem}}, {1}, {222, 198});
  EXPECT_EQ(run.setUpAndPass(200), 0);
  EXPECT_EQ(run.statistics().CaseCount(), -1.0);
}

}  // namespace
}  // namespace codebook::standin
