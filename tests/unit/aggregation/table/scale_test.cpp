// Summary statistics of a variable treated as scale.
#include <algorithm>
#include <cmath>
#include <limits>
#include <random>

#include <gtest/gtest.h>

#include "runtime/aggregation/binding.h"
#include "tests/unit/aggregation/support/onetable.h"
#include "tests/unit/aggregation/support/testdataset.h"

namespace {

using namespace TableEncryptionCodes;

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
enum Place { kValidPlace, kMissingPlace, kMeanPlace, kStdDevPlace, kLowerQuartile, kMedian, kUpperQuartile };

TEST(ScaleVariable, summarisesTheValidValues) {
  runtime::data::DatasetBuilder builder;
  builder.AddNumeric("v", {1, 2, 3, 4, -9, kNaN}).Missing(-9);
  OneTable table(builder);
  table.Scale(0).Pass();
  EXPECT_EQ(table.ScaleValue(kValidPlace), 4.0);
  EXPECT_EQ(table.ScaleValue(kMissingPlace), 2.0);
  EXPECT_EQ(table.ScaleValue(kMeanPlace), 2.5);
  EXPECT_EQ(table.ScaleValue(kStdDevPlace), 1.2909944487358056);
  EXPECT_EQ(table.ScaleValue(kLowerQuartile), 1.25);
  EXPECT_EQ(table.ScaleValue(kMedian), 2.5);
  EXPECT_EQ(table.ScaleValue(kUpperQuartile), 3.75);
}

TEST(ScaleVariable, standardDeviationUsesTheSumOfWeightsLessOne) {
  runtime::data::DatasetBuilder builder;
  builder.AddNumeric("v", {0, 4});
  builder.AddNumeric("w", {0.75, 0.75});
  builder.Weight("w");
  OneTable table(builder);
  table.Scale(0).Pass();
  EXPECT_EQ(table.ScaleValue(kValidPlace), 1.5);
  EXPECT_EQ(table.ScaleValue(kMeanPlace), 2.0);
  EXPECT_EQ(table.ScaleValue(kStdDevPlace), std::sqrt(12.0));  // (0.75 x 4 + 0.75 x 4) / 0.5
}

TEST(ScaleVariable, standardDeviationIsSystemMissingUpToAWeightOfOne) {
  runtime::data::DatasetBuilder builder;
  builder.AddNumeric("v", {0, 4});
  builder.AddNumeric("w", {0.5, 0.5});
  builder.Weight("w");
  OneTable table(builder);
  table.Scale(0).Pass();
  EXPECT_EQ(table.ScaleValue(kMeanPlace), 2.0);
  EXPECT_TRUE(std::isnan(table.ScaleValue(kStdDevPlace)));
}

TEST(ScaleVariable, withoutAValidValueHasOnlyCounts) {
  runtime::data::DatasetBuilder builder;
  builder.AddNumeric("v", {kNaN, 7}).Missing(7);
  OneTable table(builder);
  table.Scale(0).Pass();
  EXPECT_EQ(table.ScaleValue(kValidPlace), 0.0);
  EXPECT_EQ(table.ScaleValue(kMissingPlace), 2.0);
  for (const int place : {kMeanPlace, kStdDevPlace, kLowerQuartile, kMedian, kUpperQuartile})
    EXPECT_TRUE(std::isnan(table.ScaleValue(place)));
}

TEST(ScaleVariable, aStringVariableHasOnlyCounts) {
  runtime::data::DatasetBuilder builder;
  builder.AddString("v", {"a", "", "b", "NA"}).Missing(std::string()).Missing(std::string("NA"));
  OneTable table(builder);
  table.Scale(0).Pass();
  EXPECT_EQ(table.ScaleValue(kValidPlace), 2.0);
  EXPECT_EQ(table.ScaleValue(kMissingPlace), 2.0);
  for (const int place : {kMeanPlace, kStdDevPlace, kLowerQuartile, kMedian, kUpperQuartile})
    EXPECT_TRUE(std::isnan(table.ScaleValue(place)));
}

TEST(ScaleVariable, aVariableOutsideTheDictionaryHasEveryCaseMissing) {
  runtime::data::DatasetBuilder builder;
  builder.AddNumeric("v", {1, 2, 3});
  OneTable table(builder);
  table.Scale(5).Pass();
  EXPECT_EQ(table.ScaleValue(kValidPlace), 0.0);
  EXPECT_EQ(table.ScaleValue(kMissingPlace), 3.0);
  EXPECT_TRUE(std::isnan(table.ScaleValue(kMeanPlace)));
}

TEST(ScaleVariable, countsAloneNeedNoValues) {
  runtime::data::DatasetBuilder builder;
  builder.AddNumeric("v", {1.5, kNaN, -9}).Missing(-9);
  OneTable table(builder);
  table.cube().CreateCubeAggregator();
  table.cube().AddScaleStatistics({AggregationStatistic(0, kMissing), AggregationStatistic(0, kValid)});
  table.Pass();
  EXPECT_EQ(table.ScaleValue(0), 2.0);
  EXPECT_EQ(table.ScaleValue(1), 1.0);
}

TEST(ScaleVariable, theOrderOfTheCasesChangesNoBit) {
  std::mt19937_64 random(11);
  std::vector<std::pair<double, double>> cases(4000);
  for (auto& [value, weight] : cases) {
    value = std::ldexp(static_cast<double>(random() >> 11), static_cast<int>(random() % 60) - 60);
    weight = std::ldexp(static_cast<double>(random() >> 11), -52);
  }
  std::vector<double> first;
  for (int round = 0; round < 4; ++round) {
    std::vector<double> values;
    std::vector<double> weights;
    for (const auto& [value, weight] : cases) {
      values.push_back(value);
      weights.push_back(weight);
    }
    runtime::data::DatasetBuilder builder;
    builder.AddNumeric("v", values);
    builder.AddNumeric("w", weights);
    builder.Weight("w");
    OneTable table(builder, round == 0 ? 0 : 1 + round * 97);
    table.Scale(0).Pass();
    std::vector<double> results;
    for (int place = kValidPlace; place <= kUpperQuartile; ++place) results.push_back(table.ScaleValue(place));
    if (round == 0) first = results;
    EXPECT_EQ(results, first);
    std::shuffle(cases.begin(), cases.end(), random);
  }
}

TEST(ScaleVariable, wholeWeightsEqualRepeatedCases) {
  std::mt19937_64 random(12);
  std::vector<double> values;
  std::vector<double> weights;
  std::vector<double> repeated;
  for (int i = 0; i < 3000; ++i) {
    values.push_back(static_cast<double>(random() >> 11) * 0x1p-40);
    weights.push_back(static_cast<double>(random() % 4));
    repeated.insert(repeated.end(), static_cast<std::size_t>(weights.back()), values.back());
  }
  runtime::data::DatasetBuilder weightedBuilder;
  weightedBuilder.AddNumeric("v", values);
  weightedBuilder.AddNumeric("w", weights);
  weightedBuilder.Weight("w");
  OneTable weighted(weightedBuilder);
  weighted.Scale(0).Pass();
  runtime::data::DatasetBuilder repeatedBuilder;
  repeatedBuilder.AddNumeric("v", repeated);
  OneTable again(repeatedBuilder);
  again.Scale(0).Pass();
  for (int place = kValidPlace; place <= kUpperQuartile; ++place)
    EXPECT_EQ(weighted.ScaleValue(place), again.ScaleValue(place)) << place;
}

TEST(ScaleVariable, aZeroResultHasNoSign) {
  TestColumn column;
  for (int i = 1; i <= 2000; ++i) {
    column.numbers.push_back(i / 8192.0);
    column.numbers.push_back(-i / 8192.0);
  }
  column.numbers.insert(column.numbers.end(), 5000, -0.0);
  runtime::data::DatasetBuilder builder;
  builder.AddNumeric("v");
  const auto rows = static_cast<std::int64_t>(column.numbers.size());
  const auto dataset =
      std::make_shared<TestDataset>(builder.Build()->dictionary(), TestData{{column}, {}, {1000, rows}, {}, false, 0});
  OneTable table(dataset);
  table.Scale(0).Pass();
  for (const int place : {kMeanPlace, kMedian}) {
    EXPECT_EQ(table.ScaleValue(place), 0.0);
    EXPECT_FALSE(std::signbit(table.ScaleValue(place)));
  }
}

TEST(ScaleStatisticRead, isToldForMeanDeviationAndPercentilesWhenTheirValueIsRead) {
  runtime::data::DatasetBuilder builder;
  builder.AddNumeric("u", {1, 2});
  builder.AddNumeric("v", {1, 2});
  OneTable table(builder);
  table.Scale(1).Pass();
  std::vector<int> told;
  runtime::aggregation::AggregationBinding binding;
  binding.onScaleStatisticRead = [&told](int variable) { told.push_back(variable); };
  runtime::aggregation::AggregationBinding* before = runtime::aggregation::BindAggregation(&binding);
  const StatValues* cell = table.results().GetStatValues({}, -1);
  cell->GetCellStatistics();
  cell->GetStatValue(kValidPlace);
  cell->GetStatValue(kMissingPlace);
  EXPECT_TRUE(told.empty());
  for (const int place : {kMeanPlace, kStdDevPlace, kMedian}) cell->GetStatValue(place);
  EXPECT_EQ(told, (std::vector<int>{1, 1, 1}));
  runtime::aggregation::BindAggregation(before);
  cell->GetStatValue(kMeanPlace);
  EXPECT_EQ(told.size(), 3u);
}

}  // namespace
