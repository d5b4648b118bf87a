// The requests that set-up makes to the aggregation library, exactly.
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
using ::testing::Each;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;

const std::vector<int> kDefaultScale = {222, 198, 179, 203, 468};

/// n numeric without labels, l numeric with three, w string; $c and $d over n and l, $t over w.
std::shared_ptr<const runtime::data::Dataset> survey() {
  DatasetBuilder builder;
  builder.AddNumeric("n", {1, 2});
  builder.AddNumeric("l", {1, 2}).ValueLabel(3, "three").ValueLabel(1, "one").ValueLabel(2, "two");
  builder.AddString("w", {"a", "b"}).Width(12);
  builder.AddCategorySet("$c", {"l", "n"}, "Category set");
  builder.AddDichotomySet("$d", {"n", "l"}, "1");
  builder.AddDichotomySet("$t", {"w"}, "yes");
  return builder.Build();
}

std::vector<std::string> requestsFor(const ListedEntry& entry, const std::vector<int>& categoryCodes,
                                     const std::vector<int>& scaleCodes = kDefaultScale) {
  newHost().dataset = survey();
  StatisticsRun run({entry}, categoryCodes, scaleCodes);
  EXPECT_EQ(run.statistics().SetUp(run.iterator(), 200), 1);
  return host().tables.front().requests;
}

TEST(SetUp, withoutItemsBuildsNothingAndSucceeds) {
  newHost().dataset = survey();
  StatisticsRun run({}, {1, 130}, kDefaultScale);
  EXPECT_EQ(run.statistics().SetUp(run.iterator(), 200), 1);
  EXPECT_EQ(host().tablesMade, 0U);
  EXPECT_THAT(run.statistics().shownFlags(), IsEmpty());
  EXPECT_EQ(run.statistics().itemCount(), 0U);
}

TEST(SetUp, itemWithoutDescriptorGetsAnEmptyTable) {
  EXPECT_THAT(requestsFor({""}, {1}), ElementsAre("table false true -1", "cube"));
}

TEST(SetUp, categoricalVariableGetsADimensionWithATotal) {
  EXPECT_THAT(requestsFor({"n"}, {1, 130}), ElementsAre("table false true -1", "cube", "variable n over 0, total, at 0",
                                                        "aggregator", "categories of n: 1 130; total: 198 213"));
}

TEST(SetUp, ordinalTreatmentIsCategoricalToo) {
  EXPECT_THAT(requestsFor({"n", kOrdinalItem}, {1}),
              ElementsAre("table false true -1", "cube", "variable n over 0, total, at 0", "aggregator",
                          "categories of n: 1; total: 198 213"));
}

TEST(SetUp, scaleVariableGetsItsStatisticsAndNoDimension) {
  EXPECT_THAT(requestsFor({"l", kScaleItem}, {1, 130}),
              ElementsAre("table false true -1", "cube", "aggregator",
                          "scale 222 of 1 198 of 1 179 of 1 203 of 1 468 of 1 at 25 468 of 1 at 50 468 of 1 at 75"));
}

TEST(SetUp, valueLabelsBecomeTheCategoriesInTheirOwnOrder) {
  EXPECT_THAT(requestsFor({"l", kNominalItem, true}, {1}),
              ElementsAre("table false true -1", "cube", "variable l over 1, total, listed 1 2 3, at 0", "aggregator",
                          "categories of l: 1; total: 198 213"));
}

TEST(SetUp, withoutValueLabelsNoCategoryListIsSet) {
  EXPECT_THAT(requestsFor({"n", kNominalItem, true}, {1}),
              ElementsAre("table false true -1", "cube", "variable n over 0, total, at 0", "aggregator",
                          "categories of n: 1; total: 198 213"));
}

TEST(SetUp, categorySetIsNamedByItsText) {
  EXPECT_THAT(requestsFor({"$c"}, {1}),
              ElementsAre("table false true -1", "cube", "category set Category set over 1 0, total, at 0",
                          "aggregator", "categories of Category set: 1; total: 198 213"));
}

TEST(SetUp, dichotomySetHandsOnTheCountedValueWithItsWidth) {
  EXPECT_THAT(requestsFor({"$d"}, {1}), ElementsAre("table false true -1", "cube",
                                                    "dichotomy set $d over 0 1, total, counted value of width 8, at 0",
                                                    "aggregator", "categories of $d: 1; total: 198 213"));
  EXPECT_THAT(requestsFor({"$t"}, {1})[2], "dichotomy set $t over 2, total, counted value of width 2, at 0");
}

TEST(SetUp, withoutCategoryStatisticsNoneAreAskedForAndTheBitIsClear) {
  newHost().dataset = survey();
  StatisticsRun run({{"n"}, {"l", kScaleItem}}, {}, {222, 198, 179});
  run.statistics().SetUp(run.iterator(), 200);
  EXPECT_THAT(host().tables[0].requests,
              ElementsAre("table false true -1", "cube", "variable n over 0, total, at 0", "aggregator"));
  EXPECT_EQ(host().tables[1].requests.back(), "scale 222 of 1 198 of 1 179 of 1");
  EXPECT_THAT(run.statistics().shownFlags(), ElementsAre(false, true));
}

TEST(SetUp, percentileCodeAloneAsksForThreeCutPoints) {
  newHost().dataset = survey();
  StatisticsRun run({}, {}, {468});
  std::vector<AggregationStatistic> out;
  run.statistics().BuildScaleStatistics(out, 3);
  ASSERT_THAT(out, SizeIs(3));
  EXPECT_EQ(out[0].GetPTileCutPoint(), 25.0);
  EXPECT_EQ(out[1].GetPTileCutPoint(), 50.0);
  EXPECT_EQ(out[2].GetPTileCutPoint(), 75.0);
  for (const AggregationStatistic& statistic : out) EXPECT_EQ(statistic.GetVariable(), 3);
  run.statistics().BuildScaleStatistics(out, 4);
  EXPECT_THAT(out, SizeIs(6));  // appended
}

TEST(SetUp, asManyValueLabelsAsMaxCatsKeepTheBitAndOneMoreClearsIt) {
  for (const int labels : {200, 201}) {
    DatasetBuilder builder;
    runtime::data::VariableBuilder& variable = builder.AddNumeric("v", {1});
    for (int k = 0; k < labels; ++k) variable.ValueLabel(k, "label");
    newHost().dataset = builder.Build();
    StatisticsRun run({{"v"}}, {1}, kDefaultScale);
    run.statistics().SetUp(run.iterator(), 200);
    EXPECT_THAT(run.statistics().shownFlags(), ElementsAre(labels == 200));
    // The requests are made all the same.
    EXPECT_EQ(host().tables.front().requests.back(), "categories of v: 1; total: 198 213");
  }
}

TEST(Statistics, destructorReleasesTablesAndAggregators) {
  newHost().dataset = survey();
  StatisticsRun run({{"n"}, {"l", kScaleItem}}, {1}, kDefaultScale);
  host().tables.resize(2);
  host().tables[0].column = {1, 2};
  EXPECT_EQ(run.setUpAndPass(200), 2);
  run.destroyStatistics();
  for (const Table& table : host().tables) {
    EXPECT_THAT(table.requests, ::testing::Contains("~table"));
    EXPECT_THAT(table.requests, ::testing::Contains("~aggregator"));
  }
}

TEST(Statistics, destructorReleasesTablesThatWereNeverPassed) {
  newHost().dataset = survey();
  StatisticsRun run({{"n"}}, {1}, kDefaultScale);
  run.statistics().SetUp(run.iterator(), 200);
  run.destroyStatistics();
  EXPECT_EQ(host().tables.front().requests.back(), "~table");
}

}  // namespace
}  // namespace codebook::standin
