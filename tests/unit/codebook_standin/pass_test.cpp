// The pass over the cases: which table takes which case.
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

/// The cases of a dataset, some of them split-group ends.
class SplitCursor : public CaseCursor {
 public:
  explicit SplitCursor(std::vector<bool> ends) : fEnds(std::move(ends)) {}
  ~SplitCursor() override { Farewell(); }
  ColumnView Column(int) const override { return {}; }
  const double* Weights() const override { return nullptr; }

 protected:
  bool LoadNextChunk() override {
    if (fNext == fEnds.size()) return false;
    chunkBegin = static_cast<std::int64_t>(fNext);
    chunkEnd = chunkBegin + 1;
    atSplitGroupEnd = fEnds[fNext++];
    return true;
  }

 private:
  std::vector<bool> fEnds;
  std::size_t fNext = 0;
};

std::shared_ptr<const runtime::data::Dataset> rows(std::size_t count) {
  DatasetBuilder builder;
  builder.AddNumeric("v", std::vector<double>(count, 1.0));
  builder.AddNumeric("w", std::vector<double>(count, 1.0));
  builder.AddNumeric("labelled", std::vector<double>(count, 1.0)).ValueLabel(1, "a").ValueLabel(2, "b");
  return builder.Build();
}

/// One categorical variable of these values, passed with MAXCATS.
struct OneVariable {
  int result;
  std::vector<int> taken;
  std::vector<bool> shown;
  bool aggregatorsFetched;

  OneVariable(const std::vector<double>& column, int maxCategories) {
    newHost().dataset = rows(column.size());
    host().tables.resize(1);
    host().tables.front().column = column;
    StatisticsRun run({{"v"}}, {1}, {});
    result = run.setUpAndPass(maxCategories);
    taken = host().tables.front().takenRows;
    shown = run.statistics().shownFlags();
    const std::vector<std::string>& requests = host().tables.front().requests;
    aggregatorsFetched = std::find(requests.begin(), requests.end(), "aggregators") != requests.end();
  }
};

TEST(CasePass, withoutCasesReturnsZeroAndFetchesNoAggregator) {
  const OneVariable run({}, 3);
  EXPECT_EQ(run.result, 0);
  EXPECT_FALSE(run.aggregatorsFetched);
}

TEST(CasePass, itemWithTooManyValuesDropsOutAndThePassEndsBehindTheFirstUntakenCase) {
  const OneVariable seven({1, 2, 3, 4, 5, 6, 7}, 3);
  EXPECT_EQ(seven.result, 5);
  EXPECT_THAT(seven.taken, ElementsAre(0, 1, 2, 3));
  EXPECT_THAT(seven.shown, ElementsAre(false));
  EXPECT_TRUE(seven.aggregatorsFetched);
}

TEST(CasePass, endingTheCasesAtTheUntakenOneGivesTheSameCount) {
  const OneVariable five({1, 2, 3, 4, 5}, 3);
  EXPECT_EQ(five.result, 5);
  EXPECT_THAT(five.taken, ElementsAre(0, 1, 2, 3));
  EXPECT_THAT(five.shown, ElementsAre(false));
}

TEST(CasePass, fewValuesKeepTheItemToTheLastCase) {
  const OneVariable run({1, 2, 1, 2, 1}, 3);
  EXPECT_EQ(run.result, 5);
  EXPECT_THAT(run.taken, ElementsAre(0, 1, 2, 3, 4));
  EXPECT_THAT(run.shown, ElementsAre(true));
}

// The check comes before the adding: a value first met on the very last case is kept. Meant so.
TEST(CasePass, keepsValueFirstMetOnLastCase) {
  const OneVariable run({1, 2, 3, 1, 1, 4}, 3);
  EXPECT_EQ(run.result, 6);
  EXPECT_THAT(run.taken, ElementsAre(0, 1, 2, 3, 4, 5));
  EXPECT_THAT(run.shown, ElementsAre(true));
}

TEST(CasePass, oneCaseMoreAndTheSameValueDropsTheItem) {
  const OneVariable run({1, 2, 3, 1, 1, 4, 1}, 3);
  EXPECT_THAT(run.taken, ElementsAre(0, 1, 2, 3, 4, 5));
  EXPECT_THAT(run.shown, ElementsAre(false));
  EXPECT_EQ(run.result, 7);
}

TEST(CasePass, caseAtMaxCatsIsAddedOnlyOnce) {
  const OneVariable run({1, 1, 1, 1, 1, 1}, 3);
  EXPECT_THAT(run.taken, ElementsAre(0, 1, 2, 3, 4, 5));
}

TEST(CasePass, fewerCasesThanMaxCatsAskForNoValues) {
  // More values than MAXCATS need more cases than MAXCATS, so nothing is planned and nothing asked.
  newHost().dataset = rows(3);
  StatisticsRun run({{"v"}}, {1}, {});
  EXPECT_EQ(run.setUpAndPass(3), 3);
  EXPECT_THAT(host().tables.front().takenRows, ElementsAre(0, 1, 2));
}

TEST(CasePass, scaleItemKeepsThePassGoingToTheLastCase) {
  newHost().dataset = rows(7);
  host().tables.resize(2);
  host().tables[0].column = {1, 2, 3, 4, 5, 6, 7};
  StatisticsRun run({{"v"}, {"w", kScaleItem}}, {1}, {222, 198});
  EXPECT_EQ(run.setUpAndPass(3), 7);
  EXPECT_THAT(host().tables[0].takenRows, ElementsAre(0, 1, 2, 3));
  EXPECT_THAT(host().tables[1].takenRows, ElementsAre(0, 1, 2, 3, 4, 5, 6));
  EXPECT_THAT(run.statistics().shownFlags(), ElementsAre(false, true));
}

TEST(CasePass, scaleItemBeforeTheCategoricalOneBringsTheCheckNoSooner) {
  newHost().dataset = rows(7);
  host().tables.resize(2);
  host().tables[1].column = {1, 2, 3, 4, 5, 6, 7};
  StatisticsRun run({{"w", kScaleItem}, {"v"}}, {1}, {222, 198});
  EXPECT_EQ(run.setUpAndPass(3), 7);
  EXPECT_THAT(host().tables[1].takenRows, ElementsAre(0, 1, 2, 3));
  EXPECT_THAT(run.statistics().shownFlags(), ElementsAre(true, false));
}

TEST(CasePass, itemWithoutDescriptorTakesEveryCase) {
  newHost().dataset = rows(4);
  StatisticsRun run({{""}}, {1}, {});
  EXPECT_EQ(run.setUpAndPass(1), 4);
  EXPECT_THAT(host().tables.front().takenRows, ElementsAre(0, 1, 2, 3));
}

TEST(CasePass, itemClearedAtSetUpTakesNoCase) {
  newHost().dataset = rows(6);
  StatisticsRun labelled({{"labelled"}, {"w", kScaleItem}}, {1}, {222});
  EXPECT_EQ(labelled.setUpAndPass(1), 6);  // two labels, one category allowed
  EXPECT_THAT(host().tables[0].takenRows, IsEmpty());
  EXPECT_THAT(host().tables[1].takenRows, ElementsAre(0, 1, 2, 3, 4, 5));
}

TEST(CasePass, itemWithoutCategoryStatisticsTakesNoCase) {
  newHost().dataset = rows(6);
  StatisticsRun uncounted({{"v"}}, {}, {222});
  EXPECT_EQ(uncounted.setUpAndPass(3), 1);  // the first case, which nobody took, is counted
  EXPECT_THAT(host().tables[0].takenRows, IsEmpty());
}

TEST(CasePass, withoutItemsCountsTheFirstCaseOnly) {
  newHost().dataset = rows(6);
  StatisticsRun run({}, {1}, {});
  EXPECT_EQ(run.setUpAndPass(3), 1);
}

struct SplitRun {
  int result;
  std::vector<int> taken;
  bool aggregatorsFetched;

  SplitRun(const std::vector<bool>& ends, int treatment) {
    newHost().dataset = rows(ends.size());
    host().newIterator = [&ends](ProcedureDataSource& source) -> MAVO_InputCaseIterator* {
      return std::make_unique<ProcDSIterator>(source, std::make_unique<SplitCursor>(ends)).release();
    };
    host().tables.resize(1);
    host().tables.front().column.assign(ends.size(), 1.0);
    StatisticsRun run({{"v", treatment}}, {1}, {222});
    result = run.setUpAndPass(200);
    taken = host().tables.front().takenRows;
    const std::vector<std::string>& requests = host().tables.front().requests;
    aggregatorsFetched = std::find(requests.begin(), requests.end(), "aggregators") != requests.end();
  }
};

TEST(CasePass, splitGroupEndsAreNotCounted) {
  for (const int treatment : {kScaleItem, kNominalItem}) {
    const SplitRun run({false, true, false, false, true, false, true}, treatment);
    EXPECT_EQ(run.result, 4);
    EXPECT_THAT(run.taken, ElementsAre(0, 2, 3, 5));
  }
}

TEST(CasePass, onlySplitGroupEndsGiveZeroAndFetchNoAggregator) {
  const SplitRun run({true, true, true}, kScaleItem);
  EXPECT_EQ(run.result, 0);
  EXPECT_THAT(run.taken, IsEmpty());
  EXPECT_FALSE(run.aggregatorsFetched);
}

TEST(CasePass, splitGroupEndLeavesTheWishForMoreCasesAsItWas) {
  // The item drops out at row 2; the ends behind it are passed over, and the next case is counted without being taken.
  newHost().dataset = rows(7);
  const std::vector<bool> ends = {false, false, false, true, true, false, false};
  host().newIterator = [&ends](ProcedureDataSource& source) -> MAVO_InputCaseIterator* {
    return std::make_unique<ProcDSIterator>(source, std::make_unique<SplitCursor>(ends)).release();
  };
  host().tables.resize(1);
  host().tables.front().column = {1, 2, 3, 9, 9, 4, 5};
  StatisticsRun run({{"v"}}, {1}, {});
  EXPECT_EQ(run.setUpAndPass(2), 4);
  EXPECT_THAT(host().tables.front().takenRows, ElementsAre(0, 1, 2));
}

}  // namespace
}  // namespace codebook::standin
