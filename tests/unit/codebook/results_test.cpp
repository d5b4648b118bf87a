// The statistics as the tables and the run read them back, from the real aggregation library.
#include <cmath>
#include <limits>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "runtime/data/builder.h"
#include "tests/unit/codebook/insession.h"
#include "tests/unit/codebook/statisticsrun.h"

namespace codebook::test {
namespace {

using runtime::data::DatasetBuilder;
using ::testing::DoubleEq;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr double kSystemMissing = std::numeric_limits<double>::quiet_NaN();

struct CategoryResults {
  std::vector<double> counts, percents, values;
  std::vector<std::string> texts;
  std::vector<std::int32_t> codes;
  double missing = 0.0;
  double total = 0.0;
};

CategoryResults read(const VariableStatistics& statistics, int i) {
  CategoryResults results;
  results.total = statistics.ReadCategoryResults(i, results.counts, results.percents, results.values, results.texts,
                                                 results.codes, &results.missing);
  return results;
}

std::shared_ptr<const runtime::data::Dataset> survey() {
  DatasetBuilder builder;
  builder.AddNumeric("v", {1, 2, 2, kSystemMissing, 3}).Missing(3);
  builder.AddNumeric("w", {1, 1, 4, 4, 4});
  builder.AddCategorySet("$c", {"v", "w"});
  builder.AddDichotomySet("$d", {"v", "w"}, "1");
  return builder.Build();
}

TEST(Results, categoricalVariableHasOneEntryACategoryAndItsTotal) {
  runInSession(survey(), "CODEBOOK.", [] {
    StatisticsRun run({{"v"}}, {1, 130}, {});
    run.setUpAndPass(200);
    const CategoryResults results = read(run.statistics(), 0);
    EXPECT_THAT(results.values, ElementsAre(1.0, 2.0, 3.0));
    EXPECT_THAT(results.texts, ElementsAre("1", "2", "3"));
    EXPECT_THAT(results.counts, ElementsAre(1.0, 2.0, 1.0));
    EXPECT_THAT(results.percents, ElementsAre(20.0, 40.0, 20.0));
    EXPECT_THAT(results.codes, IsEmpty());
    EXPECT_EQ(results.missing, 2.0);
    EXPECT_EQ(results.total, 5.0);
  });
}

TEST(Results, dichotomySetHasOneCodeAndTextAMember) {
  runInSession(survey(), "CODEBOOK.", [] {
    StatisticsRun run({{"$d"}}, {1}, {});
    run.setUpAndPass(200);
    const CategoryResults results = read(run.statistics(), 0);
    EXPECT_THAT(results.values, IsEmpty());
    EXPECT_THAT(results.codes, ElementsAre(0, 1));
    EXPECT_THAT(results.texts, ElementsAre("v", "w"));
    EXPECT_THAT(results.counts, ElementsAre(1.0, 2.0));
  });
}

TEST(Results, categorySetHasOneCodeAndValueACategory) {
  runInSession(survey(), "CODEBOOK.", [] {
    StatisticsRun run({{"$c"}}, {1}, {});
    run.setUpAndPass(200);
    const CategoryResults results = read(run.statistics(), 0);
    EXPECT_THAT(results.values, ElementsAre(1.0, 2.0, 4.0));
    EXPECT_THAT(results.codes, ElementsAre(0, 0, 1));
    EXPECT_THAT(results.counts, ElementsAre(2.0, 2.0, 3.0));
    EXPECT_EQ(results.total, 5.0);
  });
}

TEST(Results, scaleItemHasSevenValuesByDefault) {
  runInSession(survey(), "CODEBOOK.", [] {
    StatisticsRun run({{"w", kScaleItem}}, {1, 130}, {222, 198, 179, 203, 468});
    run.setUpAndPass(200);
    std::vector<double> results;
    run.statistics().ReadScaleResults(0, results);
    EXPECT_THAT(results, ElementsAre(5.0, 0.0, DoubleEq(2.8), DoubleEq(std::sqrt(2.7)), 1.0, 4.0, 4.0));
  });
}

TEST(Results, scaleItemHasTwoValuesForCountAlone) {
  runInSession(survey(), "CODEBOOK.", [] {
    StatisticsRun run({{"v", kScaleItem}}, {1}, {222, 198});
    run.setUpAndPass(200);
    std::vector<double> results;
    run.statistics().ReadScaleResults(0, results);
    EXPECT_THAT(results, ElementsAre(3.0, 2.0));
  });
}

TEST(CaseCount, passesOverAnItemWhoseBitIsClear) {
  DatasetBuilder builder;
  builder.AddNumeric("labelled", {1, 1, 2}).ValueLabel(1, "a").ValueLabel(2, "b");
  builder.AddNumeric("v", {1, 1, 1});
  runInSession(builder.Build(), "CODEBOOK.", [] {
    StatisticsRun run({{"labelled"}, {"v"}}, {1}, {});
    run.setUpAndPass(1);
    EXPECT_THAT(run.statistics().shownFlags(), ElementsAre(false, true));
    EXPECT_EQ(run.statistics().CaseCount(), 3.0);
    EXPECT_EQ(run.statistics().CaseCount(), 3.0);
  });
}

TEST(CaseCount, isWeighted) {
  DatasetBuilder builder;
  builder.AddNumeric("v", {1, 2, kSystemMissing});
  builder.AddNumeric("weight", {0.5, 2, 1});
  builder.Weight("weight");
  runInSession(builder.Build(), "CODEBOOK.", [] {
    StatisticsRun run({{"v", kScaleItem}}, {1}, {222, 198});
    EXPECT_EQ(run.setUpAndPass(200), 3);
    EXPECT_EQ(run.statistics().CaseCount(), 3.5);
  });
}

TEST(CaseCount, withoutCasesIsMinusOne) {
  DatasetBuilder builder;
  builder.AddNumeric("v");
  runInSession(builder.Build(), "CODEBOOK.", [] {
    StatisticsRun run({{"v", kScaleItem}}, {1}, {222, 198});
    EXPECT_EQ(run.setUpAndPass(200), 0);
    EXPECT_EQ(run.statistics().CaseCount(), -1.0);
  });
}

}  // namespace
}  // namespace codebook::test
