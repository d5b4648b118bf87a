#include "host/data/casecursor.h"

#include <cmath>
#include <limits>
#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "host/data/caseiterator.h"
#include "host/data/datasource.h"

#include "runtime/data/builder.h"
#include "runtime/data/open.h"
#include "runtime/data/store/columnardataset.h"

namespace runtime::data {
namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

std::shared_ptr<const Dataset> FiveCases(std::int64_t blockRows, std::int64_t chunkRows) {
  DatasetBuilder builder;
  builder.AddNumeric("x", {1, 2, 3, 4, 5});
  builder.BlockRows(blockRows);
  return builder.Build(chunkRows);
}

TEST(Cursor, countsRowsOverTheWholeDataset) {
  for (const std::int64_t chunkRows : {0, 1, 2, 3, 5, 100}) {
    const auto dataset = FiveCases(4, chunkRows);
    const auto cursor = dataset->NewCursor();
    EXPECT_EQ(cursor->row, -1);
    for (std::int64_t row = 0; row < 5; ++row) {
      ASSERT_TRUE(cursor->Next());
      EXPECT_EQ(cursor->row, row);
      EXPECT_LE(cursor->chunkBegin, row);
      EXPECT_GT(cursor->chunkEnd, row);
      const ColumnView view = cursor->Column(0);
      ASSERT_EQ(view.storage, ColumnStorage::Int8);
      EXPECT_EQ(static_cast<const std::int8_t*>(view.cells)[row - cursor->chunkBegin], row + 1);
    }
    EXPECT_FALSE(cursor->Next());
    EXPECT_EQ(cursor->row, 5);
    EXPECT_FALSE(cursor->Next());
    EXPECT_EQ(cursor->row, 5);
  }
}

TEST(Cursor, neverHandsOutAChunkOverTheEndOfABlock) {
  const auto dataset = FiveCases(4, 3);
  const auto cursor = dataset->NewCursor();
  std::vector<std::int64_t> ends;
  while (cursor->Next())
    if (ends.empty() || ends.back() != cursor->chunkEnd) ends.push_back(cursor->chunkEnd);
  EXPECT_EQ(ends, (std::vector<std::int64_t>{3, 4, 5}));
}

TEST(Cursor, endsAtOnceWithoutCases) {
  DatasetBuilder builder;
  builder.AddNumeric("x");
  const auto cursor = builder.Build()->NewCursor();
  EXPECT_FALSE(cursor->Next());
  EXPECT_EQ(cursor->row, 0);
}

TEST(CaseIterator, givesNonZeroForEveryCaseAndThenZero) {
  MAVO_DataSource source(FiveCases(2, 0));
  const std::unique_ptr<MAVO_InputCaseIterator> iterator(source.NewCaseIterator(0));
  for (int i = 0; i < 5; ++i) EXPECT_NE(iterator->NextCase(), 0);
  EXPECT_EQ(iterator->NextCase(), 0);
  EXPECT_EQ(iterator->NextCase(), 0);
}

TEST(Weights, areZeroForMissingNegativeZeroAndInfiniteOnes) {
  DatasetBuilder builder;
  builder.AddNumeric("w", {2.5, kNaN, -1, 0, std::numeric_limits<double>::infinity(), 1});
  builder.Weight("W");
  const auto dataset = builder.Build(4);
  EXPECT_EQ(dataset->dictionary().weight, 0);
  const auto cursor = dataset->NewCursor();
  std::vector<double> weights;
  while (cursor->Next()) weights.push_back(cursor->Weights()[cursor->row - cursor->chunkBegin]);
  EXPECT_EQ(weights, (std::vector<double>{2.5, 0, 0, 0, 0, 1}));
}

TEST(Weights, areNullWhenUnweighted) {
  const auto dataset = FiveCases(4, 0);
  const auto cursor = dataset->NewCursor();
  ASSERT_TRUE(cursor->Next());
  EXPECT_EQ(cursor->Weights(), nullptr);
}

class Listener : public ChunkListener {
 public:
  explicit Listener(CaseCursor& cursor) : fCursor(&cursor) { cursor.AddListener(this); }
  void LeaveChunk() override {
    ASSERT_NE(fCursor, nullptr);
    left.push_back(fCursor->chunkEnd);
    lastCell = static_cast<const std::int8_t*>(fCursor->Column(0).cells)[fCursor->chunkEnd - fCursor->chunkBegin - 1];
    if (removeAfterFirst) fCursor->RemoveListener(this);
  }
  void CursorGone() override {
    ++gone;
    fCursor = nullptr;
  }

  std::vector<std::int64_t> left;
  int lastCell = 0;
  int gone = 0;
  bool removeAfterFirst = false;

 private:
  CaseCursor* fCursor;
};

TEST(ChunkListeners, areToldBeforeEachChunkIsLeft) {
  const auto dataset = FiveCases(4, 2);
  auto cursor = dataset->NewCursor();
  Listener listener(*cursor);
  while (cursor->Next()) {
  }
  EXPECT_FALSE(cursor->Next());
  EXPECT_EQ(listener.left, (std::vector<std::int64_t>{2, 4, 5}));
  EXPECT_EQ(listener.lastCell, 5);
  cursor.reset();
  EXPECT_EQ(listener.left.size(), 3U);
  EXPECT_EQ(listener.gone, 1);
}

TEST(ChunkListeners, canReadTheColumnsWhenTheCursorDiesInTheMiddleOfAChunk) {
  const auto dataset = FiveCases(5, 0);
  auto cursor = dataset->NewCursor();
  Listener listener(*cursor);
  ASSERT_TRUE(cursor->Next());
  cursor.reset();
  EXPECT_EQ(listener.left, (std::vector<std::int64_t>{5}));
  EXPECT_EQ(listener.lastCell, 5);
  EXPECT_EQ(listener.gone, 1);
}

TEST(ChunkListeners, mayRemoveThemselvesWhileTheyAreTold) {
  const auto dataset = FiveCases(5, 1);
  auto cursor = dataset->NewCursor();
  Listener first(*cursor);
  Listener second(*cursor);
  first.removeAfterFirst = true;
  while (cursor->Next()) {
  }
  cursor.reset();
  EXPECT_EQ(first.left.size(), 1U);
  EXPECT_EQ(first.gone, 0);
  EXPECT_EQ(second.left.size(), 5U);
  EXPECT_EQ(second.gone, 1);
}

TEST(ColumnarDataset, refusesMoreCasesThanTheInterfaceCanCount) {
  EXPECT_NO_THROW(ColumnarDataset(Dictionary{}, {}, kMostCases));
  EXPECT_THROW(ColumnarDataset(Dictionary{}, {}, kMostCases + 1), DataError);
}

}  // namespace
}  // namespace runtime::data
