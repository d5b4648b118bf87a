#include "runtime/data/store/groupeddataset.h"

#include <cstdint>
#include <limits>
#include <memory>
#include <set>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include <gmock/gmock.h>

#include "runtime/data/builder.h"
#include "runtime/data/open.h"
#include "tests/unit/data/support/groupingsource.h"

namespace runtime::data {
namespace {

using test::GroupingOptions;
using test::GroupingSource;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::ThrowsMessage;
using Requests = std::vector<CountingRequest>;

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

CountingRequest Categories(std::vector<int> variables) {
  return {CountingRequest::Kind::Categories, std::move(variables)};
}

/// A dataset over the groups of a builder's cases, with its source.
struct Counted {
  explicit Counted(DatasetBuilder& builder, GroupingOptions options = {}, std::int64_t chunkRows = 0) {
    const std::shared_ptr<const Dataset> cases = builder.Build();
    source = std::make_shared<GroupingSource>(cases, options);
    dataset = std::make_shared<GroupedDataset>(cases->dictionary(), source, cases->caseCount(), chunkRows);
    cursor = dataset->NewCursor();
  }

  std::shared_ptr<GroupingSource> source;
  std::shared_ptr<GroupedDataset> dataset;
  std::unique_ptr<CaseCursor> cursor;
};

/// Reads every chunk at its end, as tables do, as long as it is wanted.
class Reader : public ChunkListener {
 public:
  Reader(CaseCursor& cursor, const CaseGroups& groups, int variable, std::int64_t rows)
      : fCursor(cursor), fGroups(groups), fVariable(variable), fRows(rows) {
    cursor.AddListener(this);
  }
  void LeaveChunk() override {
    ends.push_back(fCursor.chunkEnd);
    if (fCursor.chunkBegin >= fRows) return;
    const std::size_t count = fGroups.rows();
    const ColumnView view = fGroups.Column(fVariable);
    for (std::size_t row = 0; row < count; ++row) {
      cells.push_back(view.storage == ColumnStorage::Int8    ? static_cast<const std::int8_t*>(view.cells)[row]
                      : view.storage == ColumnStorage::Int16 ? static_cast<const std::int16_t*>(view.cells)[row]
                                                             : static_cast<const double*>(view.cells)[row]);
      weights.push_back(fGroups.Weights() == nullptr ? 1.0 : fGroups.Weights()[row]);
    }
  }
  void CursorGone() override {}

  std::vector<std::int64_t> ends;
  std::vector<double> cells;
  std::vector<double> weights;

 private:
  CaseCursor& fCursor;
  const CaseGroups& fGroups;
  int fVariable;
  std::int64_t fRows;  // of the cursor, that are read
};

constexpr std::int64_t kAll = std::numeric_limits<std::int64_t>::max();

std::int64_t RowsOf(CaseCursor& cursor) {
  std::int64_t rows = 0;
  while (cursor.Next()) ++rows;
  return rows;
}

TEST(GroupCursor, asksTheSourceOnceForAllRequests) {
  DatasetBuilder builder;
  builder.AddNumeric("a", {1, 2, 1, 1});
  builder.AddNumeric("b", {1, 1, 1, 1});
  Counted counted(builder);
  const CaseGroups* a = counted.cursor->GroupsFor(Categories({0}));
  const CaseGroups* b = counted.cursor->GroupsFor(Categories({1}));
  EXPECT_NE(a, nullptr);
  EXPECT_NE(a, b);
  EXPECT_EQ(counted.cursor->GroupsFor(Categories({0})), a);
  EXPECT_NE(counted.cursor->GroupsFor({CountingRequest::Kind::Scale, {0}}), a);
  EXPECT_EQ(counted.source->counts, 0);
  RowsOf(*counted.cursor);
  EXPECT_EQ(counted.source->counts, 1);
  EXPECT_EQ(counted.cursor->GroupsFor(Categories({1})), b);
  EXPECT_THROW(counted.cursor->GroupsFor(Categories({0, 1})), std::logic_error);
}

TEST(GroupCursor, givesTheGroupsWithTheirWeights) {
  for (const std::int64_t chunkRows : {0, 1, 2}) {
    for (const std::int64_t blockRows : {0, 1, 2, 3}) {
      DatasetBuilder builder;
      builder.AddNumeric("a", {7, 300, 7, 5, 7, 0.5});
      builder.AddNumeric("w", {0.5, 2, 0.25, 0, 1, 3});
      builder.Weight("w");
      Counted counted(builder, {.blockRows = blockRows}, chunkRows);
      Reader reader(*counted.cursor, *counted.cursor->GroupsFor(Categories({0})), 0, kAll);
      RowsOf(*counted.cursor);
      EXPECT_THAT(reader.cells, ElementsAre(7, 300, 5, 0.5));
      EXPECT_THAT(reader.weights, ElementsAre(1.75, 2, 0, 3));
    }
  }
}

TEST(GroupCursor, hasTheCasesThemselvesAsOneGroup) {
  DatasetBuilder builder;
  builder.AddNumeric("a", {7, 8, 7});
  Counted counted(builder);
  const CaseGroups* all = counted.cursor->GroupsFor({});
  ASSERT_TRUE(counted.cursor->Next());
  EXPECT_EQ(all->rows(), 1U);
  EXPECT_EQ(all->Weights()[0], 3.0);
}

TEST(GroupCursor, hasTwoRowsMoreThanItsLongestListButNeverMoreThanThereAreCases) {
  DatasetBuilder fewValues;
  fewValues.AddNumeric("a", {1, 2, 3, 1, 2, 3});
  Counted shorter(fewValues);
  shorter.cursor->GroupsFor({});
  const CaseGroups* a = shorter.cursor->GroupsFor(Categories({0}));
  for (int row = 0; row < 4; ++row) ASSERT_TRUE(shorter.cursor->Next());
  EXPECT_EQ(a->rows(), 0U);
  ASSERT_TRUE(shorter.cursor->Next());
  EXPECT_FALSE(shorter.cursor->Next());
  EXPECT_EQ(shorter.cursor->row, 5);

  DatasetBuilder allDifferent;
  allDifferent.AddNumeric("a", {1, 2, 3, 4, 5, 6});
  Counted longer(allDifferent);
  longer.cursor->GroupsFor(Categories({0}));
  EXPECT_EQ(RowsOf(*longer.cursor), 6);
}

TEST(GroupCursor, hasRowsWhereNothingIsAskedFor) {
  DatasetBuilder builder;
  builder.AddNumeric("a", {1, 2, 3});
  Counted counted(builder);
  EXPECT_EQ(RowsOf(*counted.cursor), 2);
  EXPECT_EQ(counted.source->counts, 0);
}

TEST(GroupCursor, hasNoRowWithoutCases) {
  DatasetBuilder builder;
  builder.AddNumeric("a");
  Counted counted(builder);
  counted.cursor->GroupsFor(Categories({0}));
  EXPECT_EQ(RowsOf(*counted.cursor), 0);
  EXPECT_EQ(counted.cursor->row, 0);
  EXPECT_EQ(counted.source->counts, 0);
}

// Two groups of cases show six values: that they are too many is noticed from the seventh case on only.
TEST(GroupCursor, hasAsManyRowsAsASetMayShowValues) {
  for (const std::size_t cases : {2U, 3U, 5U, 20U}) {
    DatasetBuilder builder;
    for (int member = 0; member < 3; ++member) {
      std::vector<double> cells;
      for (std::size_t i = 0; i < cases; ++i) cells.push_back(i % 2 == 0 ? member : 10 + member);
      builder.AddNumeric("m" + std::to_string(member), std::move(cells));
    }
    Counted counted(builder, {.blockRows = 1});
    counted.cursor->GroupsFor(Categories({0, 1, 2}));
    EXPECT_EQ(RowsOf(*counted.cursor), std::min<std::int64_t>(static_cast<std::int64_t>(cases), 8));
  }
}

TEST(GroupCursor, goesOnWithAnIncompleteListThatIsRead) {
  for (const std::int64_t chunkRows : {0, 1, 2, 3}) {
    for (const std::int64_t most : {1, 2, 4, 6}) {
      DatasetBuilder builder;
      builder.AddNumeric("a", {1, 2, 3, 4, 5, 6, 7, 1});
      builder.AddNumeric("b", {1, 2, 1, 1, 1, 1, 1, 1});
      Counted counted(builder, {.mostGroups = most, .blockRows = 2}, chunkRows);
      Reader reader(*counted.cursor, *counted.cursor->GroupsFor(Categories({0})), 0, kAll);
      EXPECT_EQ(RowsOf(*counted.cursor), 8);
      EXPECT_THAT(reader.cells, ElementsAre(1, 2, 3, 4, 5, 6, 7));
      EXPECT_THAT(reader.weights, ElementsAre(2, 1, 1, 1, 1, 1, 1));
      EXPECT_THAT(counted.source->askedForAll, ElementsAre(Categories({0})));
    }
  }
}

TEST(GroupCursor, endsAnIncompleteListWhoseLastGroupNobodyReads) {
  DatasetBuilder builder;
  builder.AddNumeric("a", {1, 2, 3, 4, 5, 6, 7, 1});
  Counted counted(builder, {.mostGroups = 5});
  // As a table that drops out with the last group but one.
  Reader reader(*counted.cursor, *counted.cursor->GroupsFor(Categories({0})), 0, 4);
  EXPECT_EQ(RowsOf(*counted.cursor), 7);
  EXPECT_THAT(reader.cells, ElementsAre(1, 2, 3, 4));
  EXPECT_THAT(reader.ends, ElementsAre(4, 5, 7));
  EXPECT_THAT(counted.source->askedForAll, IsEmpty());
}

TEST(GroupCursor, keepsTextsOfTheFirstPartWhenItGoesOn) {
  DatasetBuilder builder;
  builder.AddString("s", {"x", "y", "z", "x"});
  Counted counted(builder, {.mostGroups = 2});
  const CaseGroups* groups = counted.cursor->GroupsFor(Categories({0}));
  ASSERT_TRUE(counted.cursor->Next());
  const std::string_view first = groups->Column(0).strings->Text(0);
  std::set<std::string> later;
  do {
    const ColumnView view = groups->Column(0);
    if (groups->rows() > 0)
      later.emplace(view.strings->Text(
          static_cast<const std::uint32_t*>(view.cells)[counted.cursor->row - counted.cursor->chunkBegin]));
  } while (counted.cursor->Next());
  EXPECT_EQ(first, "x");
  EXPECT_EQ(later, (std::set<std::string>{"x", "y", "z"}));
}

/// Answers as it is told.
class ToldSource : public GroupSource {
 public:
  std::vector<CountedGroups> Count(const Requests& requests) override {
    if (failsAt == 0) throw DataError("The server is gone.");
    std::vector<CountedGroups> answers;
    for (std::size_t i = 0; i < requests.size(); ++i) answers.push_back(answer);
    return answers;
  }
  CountedGroups CountAll(const CountingRequest&) override {
    if (failsAt == 1) throw DataError("The server is gone.");
    return answer;
  }

  CountedGroups answer;
  int failsAt = -1;
};

Dictionary OneVariable() {
  DatasetBuilder builder;
  builder.AddNumeric("age");
  return builder.Build()->dictionary();
}

TEST(GroupCursor, refusesMoreGroupsThanTheInterfaceCanCount) {
  const auto source = std::make_shared<ToldSource>();
  source->answer.rows = kMostCases + 1;
  const GroupedDataset dataset(OneVariable(), source, kMostCases + 7);
  const auto cursor = dataset.NewCursor();
  cursor->GroupsFor(Categories({0}));
  EXPECT_THAT([&] { cursor->Next(); }, ThrowsMessage<DataError>(HasSubstr("age has 2147483648 groups")));
}

TEST(GroupCursor, refusesAnAnswerThatIsNoneOfTheRequest) {
  const auto source = std::make_shared<ToldSource>();
  source->answer.rows = 1;
  const GroupedDataset dataset(OneVariable(), source, 10);
  const auto cursor = dataset.NewCursor();
  cursor->GroupsFor(Categories({0}));
  EXPECT_THROW(cursor->Next(), std::logic_error);
}

TEST(GroupCursor, passesOnWhatTheSourceThrowsAtOnceAndLater) {
  for (const int failsAt : {0, 1}) {
    const auto source = std::make_shared<ToldSource>();
    source->failsAt = failsAt;
    source->answer.rows = 1;
    source->answer.isComplete = false;
    const GroupedDataset dataset(OneVariable(), source, 10);
    auto cursor = dataset.NewCursor();
    const CaseGroups* all = cursor->GroupsFor({});
    if (failsAt == 1) {
      ASSERT_TRUE(cursor->Next());
      EXPECT_EQ(all->rows(), 1U);
    }
    EXPECT_THROW(cursor->Next(), DataError);
    EXPECT_FALSE(cursor->exhausted());
    cursor.reset();
  }
}

TEST(GroupCursor, hasNeitherColumnsNorWeightsOfItsOwn) {
  DatasetBuilder builder;
  builder.AddNumeric("a", {1});
  Counted counted(builder);
  ASSERT_TRUE(counted.cursor->Next());
  EXPECT_THROW(counted.cursor->Column(0), std::logic_error);
  EXPECT_THROW(counted.cursor->Weights(), std::logic_error);
}

TEST(GroupedDataset, countsMoreCasesThanACursorHasRows) {
  const auto source = std::make_shared<ToldSource>();
  source->answer.rows = 1;
  source->answer.weights = {3e9};
  const auto dataset = std::make_shared<GroupedDataset>(OneVariable(), source, 3'000'000'000);
  EXPECT_EQ(dataset->caseCount(), 3'000'000'000);
  const auto cursor = dataset->NewCursor();
  cursor->GroupsFor({});
  EXPECT_EQ(RowsOf(*cursor), 3);
}

// What the support counts by itself must be right before anything is compared with it.
TEST(SumOfWeights, isExact) {
  test::SumOfWeights sum;
  for (const double weight : {0x1p59, 0x1p59, 0.75, 0x1p-1074, 0.75, 0.0, 0x1p-1074}) sum.Add(weight);
  EXPECT_THAT(sum.Parts(), ElementsAre(0x1p60, 1.5, 0x1p-1073));
  test::SumOfWeights large;
  for (int i = 0; i < 2; ++i) large.Add(std::numeric_limits<double>::max());
  double total = 0.0;
  for (const double part : large.Parts()) total += std::ldexp(part, -10);
  EXPECT_EQ(total, std::ldexp(std::numeric_limits<double>::max(), -9));
  EXPECT_THAT(test::SumOfWeights().Parts(), IsEmpty());
}

TEST(GroupingSource, formsSystemMissingAndEqualCellsIntoOneGroup) {
  DatasetBuilder builder;
  builder.AddNumeric("a", {kNaN, 1, kNaN, 1, 2});
  Counted counted(builder);
  Reader reader(*counted.cursor, *counted.cursor->GroupsFor(Categories({0})), 0, kAll);
  RowsOf(*counted.cursor);
  EXPECT_THAT(reader.weights, ElementsAre(2, 2, 1));
}

}  // namespace
}  // namespace runtime::data
