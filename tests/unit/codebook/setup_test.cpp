// What the chosen statistics keywords make of set-up, seen in the results of the real aggregation library.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "runtime/data/builder.h"
#include "tests/unit/codebook/insession.h"
#include "tests/unit/codebook/statisticsrun.h"

namespace codebook::test {
namespace {

using runtime::data::DatasetBuilder;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;

struct Read {
  int cases = 0;
  std::vector<bool> shown;
  std::vector<double> counts, percents, values, scale;
  double total = 0.0;
};

/// c categorical and s scale, both of the values 1, 2, 2, 3.
Read readWith(const std::vector<int>& categoryCodes, const std::vector<int>& scaleCodes) {
  DatasetBuilder builder;
  builder.AddNumeric("c", {1, 2, 2, 3});
  builder.AddNumeric("s", {1, 2, 2, 3});
  Read read;
  runInSession(builder.Build(), "CODEBOOK.", [&] {
    StatisticsRun run({{"c"}, {"s", kScaleItem}}, categoryCodes, scaleCodes);
    read.cases = run.setUpAndPass(200);
    read.shown = run.statistics().shownFlags();
    std::vector<std::string> texts;
    std::vector<std::int32_t> codes;
    double missing = 0.0;
    read.total =
        run.statistics().ReadCategoryResults(0, read.counts, read.percents, read.values, texts, codes, &missing);
    run.statistics().ReadScaleResults(1, read.scale);
  });
  return read;
}

TEST(SetUp, countAloneLeavesPercentsOutAndScaleItemsKeepValidAndMissing) {
  const Read read = readWith({1}, {222, 198});
  EXPECT_THAT(read.counts, ElementsAre(1.0, 2.0, 1.0));
  EXPECT_THAT(read.percents, IsEmpty());
  EXPECT_THAT(read.scale, ElementsAre(4.0, 0.0));
  EXPECT_THAT(read.shown, ElementsAre(true, true));
}

TEST(SetUp, percentAloneBringsCountsWithIt) {
  const Read read = readWith({1, 130}, {222, 198});
  EXPECT_THAT(read.counts, ElementsAre(1.0, 2.0, 1.0));
  EXPECT_THAT(read.percents, ElementsAre(25.0, 50.0, 25.0));
  EXPECT_EQ(read.total, 4.0);
}

TEST(SetUp, meanAloneGivesCategoricalItemsNothing) {
  const Read read = readWith({}, {222, 198, 179});
  EXPECT_THAT(read.shown, ElementsAre(false, true));
  EXPECT_THAT(read.scale, ElementsAre(4.0, 0.0, 2.0));
}

TEST(SetUp, defaultsGiveSevenScaleValuesForFiveCodes) {
  const Read read = readWith({1, 130}, {222, 198, 179, 203, 468});
  ASSERT_THAT(read.scale, SizeIs(7));
  EXPECT_EQ(read.scale[2], 2.0);
  EXPECT_EQ(read.scale[5], 2.0);  // the median
}

TEST(SetUp, withoutItemsSucceedsAndBuildsNothing) {
  DatasetBuilder builder;
  builder.AddNumeric("c", {1});
  runInSession(builder.Build(), "CODEBOOK.", [] {
    StatisticsRun run({}, {1}, {222, 198});
    EXPECT_EQ(run.statistics().SetUp(run.iterator(), 200), 1);
    EXPECT_THAT(run.statistics().shownFlags(), IsEmpty());
  });
}

TEST(SetUp, valueLabelFlagWithoutLabelsLeavesTheValuesMetAsCategories) {
  DatasetBuilder builder;
  builder.AddNumeric("plain", {1, 2});
  builder.AddNumeric("labelled", {1, 2}).ValueLabel(2, "two").ValueLabel(5, "five");
  runInSession(builder.Build(), "CODEBOOK.", [] {
    StatisticsRun run({{"plain", kNominalItem, true}, {"labelled", kNominalItem, true}}, {1}, {});
    run.setUpAndPass(200);
    std::vector<double> counts, percents, values;
    std::vector<std::string> texts;
    std::vector<std::int32_t> codes;
    double missing = 0.0;
    run.statistics().ReadCategoryResults(0, counts, percents, values, texts, codes, &missing);
    EXPECT_THAT(values, ElementsAre(1.0, 2.0));
    run.statistics().ReadCategoryResults(1, counts, percents, values, texts, codes, &missing);
    EXPECT_THAT(values, ElementsAre(2.0, 5.0));
    EXPECT_THAT(counts, ElementsAre(1.0, 0.0));
  });
}

TEST(SetUp, asManyLabelsAsMaxCatsKeepTheBitAndOneMoreClearsIt) {
  for (const int labels : {200, 201}) {
    DatasetBuilder builder;
    runtime::data::VariableBuilder& variable = builder.AddNumeric("v", {1});
    for (int k = 0; k < labels; ++k) variable.ValueLabel(k, "label");
    runInSession(builder.Build(), "CODEBOOK.", [labels] {
      StatisticsRun run({{"v"}}, {1}, {222, 198, 468});
      run.statistics().SetUp(run.iterator(), 200);
      EXPECT_THAT(run.statistics().shownFlags(), ElementsAre(labels == 200));
    });
  }
}

}  // namespace
}  // namespace codebook::test
