// Tables that count groups of cases instead of cases.
#include <cmath>
#include <memory>
#include <stdexcept>
#include <utility>
#include <vector>

#include <gmock/gmock.h>

#include "host/aggregation/table.h"
#include "host/data/datasource.h"

#include "runtime/data/builder.h"
#include "runtime/data/open.h"
#include "runtime/data/store/groupeddataset.h"
#include "tests/unit/aggregation/support/onetable.h"
#include "tests/unit/data/support/groupingsource.h"

namespace {

using runtime::data::CountedGroups;
using runtime::data::Dataset;
using runtime::data::DatasetBuilder;
using runtime::data::GroupedDataset;
using runtime::data::GroupSource;
using runtime::data::test::Grouped;
using testing::ElementsAre;

/// Answers every request for values with the same groups; the cases are as many as their weights say.
class OneList : public GroupSource {
 public:
  explicit OneList(std::vector<double> cells, std::vector<double> weights) : fWeights(std::move(weights)) {
    DatasetBuilder builder;
    builder.AddNumeric("x", std::move(cells));
    fStored = builder.Build();
  }

  std::vector<CountedGroups> Count(const std::vector<CountingRequest>& requests) override {
    std::vector<CountedGroups> answers;
    for (const CountingRequest& request : requests) answers.push_back(CountAll(request));
    return answers;
  }
  CountedGroups CountAll(const CountingRequest& request) override {
    asked.push_back(request);
    CountedGroups counted;
    counted.rows = static_cast<std::int64_t>(fWeights.size());
    counted.weights = fWeights;
    if (request.variables.empty()) return counted;
    counted.columns = {dynamic_cast<const runtime::data::ColumnarDataset&>(*fStored).column(0)};
    if (request.kind != CountingRequest::Kind::Scale) return counted;
    counted.hasMoments = hasMoments;
    counted.valueSums = valueSums;
    counted.squareSums = squareSums;
    return counted;
  }

  std::shared_ptr<const Dataset> dataset(std::shared_ptr<OneList> self, std::int64_t cases) const {
    return std::make_shared<GroupedDataset>(fStored->dictionary(), std::move(self), cases);
  }

  std::vector<CountingRequest> asked;
  bool hasMoments = false;
  std::vector<double> valueSums;
  std::vector<double> squareSums;

 private:
  std::shared_ptr<const Dataset> fStored;
  std::vector<double> fWeights;
};

TEST(TableOfGroups, takesTheMomentsThatAreGivenApart) {
  const auto source = std::make_shared<OneList>(std::vector<double>{1, 2, 3}, std::vector<double>{1, 4, 1});
  source->hasMoments = true;
  // Their exact sums are 60 and 1200.
  source->valueSums = {0x1p80, 60.0, -0x1p80};
  source->squareSums = {1200.0, 0x1p-900, 0x1p500, -0x1p500, -0x1p-900};
  OneTable table(source->dataset(source, 6));
  table.Scale(0).Pass();
  EXPECT_EQ(table.ScaleValue(0), 6.0);
  EXPECT_EQ(table.ScaleValue(1), 0.0);
  EXPECT_EQ(table.ScaleValue(2), 10.0);
  EXPECT_EQ(table.ScaleValue(3), std::sqrt(120.0));
  // The rows' own.
  EXPECT_THAT((std::vector<double>{table.ScaleValue(4), table.ScaleValue(5), table.ScaleValue(6)}),
              ElementsAre(1.75, 2.0, 2.25));
}

TEST(TableOfGroups, formsTheMomentsOfTheRowsWhereNoneAreGiven) {
  const auto source = std::make_shared<OneList>(std::vector<double>{1, 2, 3}, std::vector<double>{1, 4, 1});
  OneTable table(source->dataset(source, 6));
  table.Scale(0).Pass();
  EXPECT_EQ(table.ScaleValue(2), 2.0);
  EXPECT_EQ(table.ScaleValue(3), std::sqrt(0.4));
}

TEST(TableOfGroups, takesTheMomentsOfAllGroupsAndNotThoseOfTheFirst) {
  DatasetBuilder builder;
  builder.AddNumeric("x", {1, 2, 3, 4, 4, 4});
  OneTable table(Grouped(builder.Build(), {.mostGroups = 2, .givesMoments = true}));
  table.Scale(0).Pass();
  EXPECT_EQ(table.ScaleValue(2), 3.0);
}

TEST(TableOfGroups, asksForEachMemberOfASetOnceAndForTheCases) {
  DatasetBuilder builder;
  builder.AddNumeric("a", {1, 2});
  builder.AddNumeric("b", {2, 2});
  const std::shared_ptr<const Dataset> cases = builder.Build();
  const auto source = std::make_shared<runtime::data::test::GroupingSource>(cases);
  OneTable table(std::make_shared<GroupedDataset>(cases->dictionary(), source, 2));
  table.Categorical(new AggregationMCSet({1, 0, 1}, "$c")).Pass();
  EXPECT_THAT(table.Texts(), ElementsAre("1", "2"));
  EXPECT_THAT(table.Counts(), ElementsAre(1, 2));
  EXPECT_EQ(table.Total(), 2.0);
}

TEST(TableOfGroups, countsDimensionAndScaleStatisticsEachOverItsOwnGroups) {
  DatasetBuilder builder;
  builder.AddNumeric("a", {1, 2, 1, 1});
  builder.AddNumeric("x", {5, 6, 7, 10});
  OneTable table(Grouped(builder.Build()));
  table.Categorical(new AggregationVariable(0, "a"));
  table.cube().AddScaleStatistics({AggregationStatistic(1, TableEncryptionCodes::kMean)});
  table.Pass();
  EXPECT_THAT(table.Counts(), ElementsAre(3, 1));
  EXPECT_EQ(table.results().GetStatValues({}, -1)->GetStatValue(0).GetValue1(), 7.0);
}

TEST(TableOfGroups, countsTheCasesWhereStatisticsNameNoVariable) {
  DatasetBuilder builder;
  builder.AddNumeric("a", {1, 2, 1, 1});
  OneTable table(Grouped(builder.Build()));
  table.cube().AddScaleStatistics({AggregationStatistic(TableEncryptionCodes::kTotal)});
  table.Pass();
  EXPECT_EQ(table.results().GetStatValues({}, -1)->GetStatValue(0).GetValue1(), 4.0);
}

// Behind its groups a table meets no further value, however many rows follow.
TEST(TableOfGroups, knowsTheNumberOfItsValuesInRowsWithoutGroups) {
  DatasetBuilder builder;
  builder.AddNumeric("a", {1, 2, 1, 2, 1, 2, 1});
  builder.AddNumeric("b", {1, 2, 3, 4, 5, 6, 7});
  for (const std::int64_t chunkRows : {0, 1, 2, 3}) {
    const std::shared_ptr<const Dataset> groups = Grouped(builder.Build(), {}, chunkRows);
    OneTable a(groups);
    a.Categorical(new AggregationVariable(0, "a"));
    AggregationTable b(a.iterator(), false, true, -1);
    b.CreateCube()->AddCategoricalVariable(new AggregationVariable(1, "b"), TableEncryptionCodes::kFirstDimension);
    b.CreateCube()->CreateCubeAggregator();
    std::vector<int> numbers;
    while (a.iterator().NextCase() != 0) {
      numbers.push_back(a.NumberOfValues());
      a.table().AddNewCase();
      b.AddNewCase();
    }
    a.Finish();
    EXPECT_THAT(numbers, ElementsAre(0, 1, 2, 2, 2, 2, 2));
    EXPECT_THAT(a.Counts(), ElementsAre(4, 3));
  }
}

TEST(TableOfGroups, cannotBeSetUpBehindTheFirstCase) {
  DatasetBuilder builder;
  builder.AddNumeric("a", {1, 2, 1});
  OneTable table(Grouped(builder.Build()));
  table.Categorical(new AggregationVariable(0, "a"));
  ASSERT_NE(table.iterator().NextCase(), 0);
  AggregationTable late(table.iterator(), false, true, -1);
  const std::vector<AggregationStatistic> mean{AggregationStatistic(0, TableEncryptionCodes::kMean)};
  EXPECT_THROW(late.CreateCube()->AddScaleStatistics(mean), std::logic_error);
}

}  // namespace
