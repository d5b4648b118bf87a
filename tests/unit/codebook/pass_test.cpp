// The pass over the cases with the real aggregation library, also over cases that the test splits into groups.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "runtime/data/builder.h"
#include "tests/unit/codebook/commandrun.h"
#include "tests/unit/codebook/insession.h"
#include "tests/unit/codebook/splitdataset.h"
#include "tests/unit/codebook/statisticsrun.h"

namespace codebook::test {
namespace {

using namespace MAVO_Variable_Enumerations;
using runtime::data::DatasetBuilder;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

struct Passed {
  int cases = 0;
  std::vector<bool> shown;
  std::vector<double> values, counts;
};

/// One item of these cells, passed with MAXCATS, in chunks of so many rows.
Passed pass(const std::vector<double>& cells, int maxCategories, std::int64_t chunkRows = 0) {
  DatasetBuilder builder;
  builder.AddNumeric("v", cells);
  Passed passed;
  runInSession(builder.Build(chunkRows), "CODEBOOK.", [&] {
    StatisticsRun run({{"v"}}, {1}, {});
    passed.cases = run.setUpAndPass(maxCategories);
    passed.shown = run.statistics().shownFlags();
    if (passed.cases == 0) return;
    std::vector<double> percents;
    std::vector<std::string> texts;
    std::vector<std::int32_t> codes;
    double missing = 0.0;
    run.statistics().ReadCategoryResults(0, passed.counts, percents, passed.values, texts, codes, &missing);
  });
  return passed;
}

TEST(CasePass, withoutCasesReturnsZero) {
  const Passed passed = pass({}, 3);
  EXPECT_EQ(passed.cases, 0);
}

TEST(CasePass, sevenValuesWithMaxCatsThreeEndThePassAtFive) {
  for (const std::int64_t chunkRows : {0, 1, 2, 3, 4, 5}) {
    const Passed passed = pass({1, 2, 3, 4, 5, 6, 7}, 3, chunkRows);
    EXPECT_EQ(passed.cases, 5) << chunkRows;
    EXPECT_THAT(passed.shown, ElementsAre(false)) << chunkRows;
    EXPECT_THAT(passed.values, ElementsAre(1.0, 2.0, 3.0, 4.0)) << chunkRows;
  }
  EXPECT_EQ(pass({1, 2, 3, 4, 5}, 3).cases, 5);
}

TEST(CasePass, twoValuesWithMaxCatsThreeAreAllCounted) {
  const Passed passed = pass({1, 2, 1, 2, 1}, 3);
  EXPECT_EQ(passed.cases, 5);
  EXPECT_THAT(passed.shown, ElementsAre(true));
  EXPECT_THAT(passed.counts, ElementsAre(3.0, 2.0));
}

// The check comes before the adding. Meant so.
TEST(CasePass, keepsValueFirstMetOnLastCase) {
  for (const std::int64_t chunkRows : {0, 1, 3, 5}) {
    const Passed passed = pass({1, 2, 3, 1, 1, 4}, 3, chunkRows);
    EXPECT_EQ(passed.cases, 6) << chunkRows;
    EXPECT_THAT(passed.shown, ElementsAre(true)) << chunkRows;
    EXPECT_THAT(passed.values, ElementsAre(1.0, 2.0, 3.0, 4.0)) << chunkRows;
    EXPECT_THAT(passed.counts, ElementsAre(3.0, 1.0, 1.0, 1.0)) << chunkRows;
  }
}

TEST(CasePass, scaleItemKeepsThePassGoingToTheLastCase) {
  DatasetBuilder builder;
  builder.AddNumeric("c", {1, 2, 3, 4, 5, 6, 7});
  builder.AddNumeric("s", {1, 2, 3, 4, 5, 6, 7});
  runInSession(builder.Build(), "CODEBOOK.", [] {
    StatisticsRun run({{"c"}, {"s", kScaleItem}}, {1}, {222, 198});
    EXPECT_EQ(run.setUpAndPass(3), 7);
    EXPECT_THAT(run.statistics().shownFlags(), ElementsAre(false, true));
    EXPECT_EQ(run.statistics().CaseCount(), 7.0);
  });
}

TEST(CasePass, itemClearedAtSetUpTakesNoCase) {
  DatasetBuilder builder;
  builder.AddNumeric("labelled", {1, 2, 1}).ValueLabel(1, "a").ValueLabel(2, "b");
  builder.AddNumeric("s", {1, 2, 3});
  runInSession(builder.Build(), "CODEBOOK.", [] {
    StatisticsRun run({{"labelled"}, {"s", kScaleItem}}, {1}, {222, 198});
    EXPECT_EQ(run.setUpAndPass(1), 3);
    EXPECT_THAT(run.statistics().shownFlags(), ElementsAre(false, true));
    std::vector<double> counts, percents, values;
    std::vector<std::string> texts;
    std::vector<std::int32_t> codes;
    double missing = 0.0;
    EXPECT_EQ(run.statistics().ReadCategoryResults(0, counts, percents, values, texts, codes, &missing), 0.0);
    EXPECT_THAT(values, IsEmpty());
  });
}

/// The records at which a group ends are no cases.
TEST(CasePass, splitGroupEndsAreCountedByNobody) {
  DatasetBuilder builder;
  builder.AddNumeric("s", {1, 99, 2, 3, 99});
  builder.AddNumeric("c", {1, 99, 1, 2, 99}).Level(kLevelNominal);
  const auto split =
      std::make_shared<SplitDataset>(builder.Build(), std::vector<bool>{false, true, false, false, true});
  const CommandRun run(split, "CODEBOOK /VARINFO VALUELABELS /STATISTICS COUNT MEAN.");
  EXPECT_THAT(run.rowsOf("s", "N"), ElementsAre("N > Valid | Value: 3", "N > Missing | Value: 0"));
  EXPECT_THAT(run.rowsOf("s", "Central"), ElementsAre("Central Tendency and Dispersion > Mean | Value: 2.0000"));
  EXPECT_THAT(run.rowsOf("c", "Valid"),
              ElementsAre("Valid Values > 1.00 | Count: 2", "Valid Values > 2.00 | Count: 1"));
}

TEST(CasePass, onlySplitGroupEndsAreAnEmptyDataset) {
  DatasetBuilder builder;
  builder.AddNumeric("s", {1, 2});
  const auto split = std::make_shared<SplitDataset>(builder.Build(), std::vector<bool>{true, true});
  const CommandRun run(split, "CODEBOOK /FILEINFO NAME.");
  EXPECT_THAT(run.messages(), ElementsAre("error: Empty dataset."));
  EXPECT_THAT(run.titles(), IsEmpty());
}

}  // namespace
}  // namespace codebook::test
