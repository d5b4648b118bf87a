// What the comparison of two waves reads off the module's tables.
#include "runtime/common/distributions.h"

#include <limits>
#include <string>
#include <vector>

#include <gmock/gmock.h>

#include "runtime/data/builder.h"
#include "tests/unit/codebook/commandrun.h"

namespace runtime::common {
namespace {

using codebook::test::CommandRun;
using data::DatasetBuilder;
using data::Distribution;
using data::Distributions;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr double kSystemMissing = std::numeric_limits<double>::quiet_NaN();

Distributions DistributionsIn(DatasetBuilder& builder, const std::vector<CountedVariable>& variables) {
  return DistributionsOf(CommandRun(builder.Build(), CountingCommand(variables)).report());
}

std::vector<std::string> InWords(const Distribution& distribution) {
  std::vector<std::string> values;
  for (const data::ValueWeight& value : distribution.values)
    values.push_back(value.value + " " + value.shown + " " + std::to_string(static_cast<int>(value.weight)));
  return values;
}

TEST(DistributionsOf, haveTheWeightsOfTheValuesThatWereMet) {
  DatasetBuilder builder;
  builder.AddNumeric("q", {1, 2, 2, -9, kSystemMissing}).ValueLabel(2, "Two").ValueLabel(3, "Never").Missing(-9);
  builder.AddNumeric("w", {1, 2, 3, 4, 5});
  builder.Weight("w");
  const Distributions distributions = DistributionsIn(builder, {{"q", false}});
  ASSERT_EQ(distributions.size(), 1U);
  const Distribution& q = distributions.at("q");
  EXPECT_FALSE(q.isScale);
  EXPECT_DOUBLE_EQ(q.valid, 6.0);
  EXPECT_DOUBLE_EQ(q.missing, 9.0);
  EXPECT_DOUBLE_EQ(q.missingShare(), 60.0);
  EXPECT_THAT(InWords(q), ElementsAre("1 1.00 1", "2 Two 5"));
}

TEST(DistributionsOf, nameTextsWithoutTheirTrailingBlanks) {
  DatasetBuilder builder;
  builder.AddString("s", {"b", "a", "", "b"}).Width(10).Missing("");
  const Distribution s = DistributionsIn(builder, {{"s", false}}).at("s");
  EXPECT_THAT(InWords(s), ElementsAre("a a 1", "b b 2"));
  EXPECT_DOUBLE_EQ(s.missing, 1.0);
}

TEST(DistributionsOf, haveTheMomentsOfScaleVariables) {
  DatasetBuilder builder;
  builder.AddNumeric("x", {1, 2, 3, 4, 5, 99, kSystemMissing}).Missing(99).ValueLabel(1, "One");
  const Distribution x = DistributionsIn(builder, {{"x", true}}).at("x");
  EXPECT_TRUE(x.isScale);
  EXPECT_THAT(x.values, IsEmpty());
  EXPECT_DOUBLE_EQ(x.valid, 5.0);
  EXPECT_DOUBLE_EQ(x.missing, 2.0);
  ASSERT_TRUE(x.mean && x.deviation);
  EXPECT_DOUBLE_EQ(x.mean->number, 3.0);
  EXPECT_EQ(x.mean->shown, "3.0000");  // two decimals more than the values have
  EXPECT_DOUBLE_EQ(x.deviation->number * x.deviation->number, 2.5);
  ASSERT_EQ(x.quartiles.size(), 3U);
  EXPECT_DOUBLE_EQ(x.quartiles[1].number, 3.0);
}

TEST(DistributionsOf, haveNoMeanWithoutValidValues) {
  DatasetBuilder builder;
  builder.AddNumeric("x", {kSystemMissing, kSystemMissing});
  const Distribution x = DistributionsIn(builder, {{"x", true}}).at("x");
  EXPECT_FALSE(x.mean);
  EXPECT_DOUBLE_EQ(x.valid, 0.0);
  EXPECT_DOUBLE_EQ(x.missing, 2.0);
}

TEST(DistributionsOf, areTakenAsAskedFor) {
  DatasetBuilder builder;
  builder.AddNumeric("x", {1, 2}).Level(MAVO_Variable_Enumerations::kLevelScale);
  builder.AddNumeric("n", {1, 2}).Level(MAVO_Variable_Enumerations::kLevelNominal);
  const Distributions distributions = DistributionsIn(builder, {{"x", false}, {"n", true}});
  EXPECT_FALSE(distributions.at("x").isScale);
  EXPECT_TRUE(distributions.at("n").isScale);
}

TEST(DistributionsOf, haveNothingOfAnEmptyReport) { EXPECT_THAT(DistributionsOf(output::Report()), IsEmpty()); }

}  // namespace
}  // namespace runtime::common
