#include "runtime/common/passprogress.h"

#include <algorithm>
#include <memory>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace runtime::common {
namespace {

using ::testing::Each;
using ::testing::ElementsAre;
using ::testing::Field;
using ::testing::IsEmpty;

/// A walk over so many cases in chunks of so many.
class PlainCursor : public CaseCursor {
 public:
  PlainCursor(std::int64_t cases, std::int64_t chunk) : fCases(cases), fChunk(chunk) {}
  ~PlainCursor() override { Farewell(); }
  ColumnView Column(int) const override { return {}; }
  const double* Weights() const override { return nullptr; }

 protected:
  bool LoadNextChunk() override {
    if (chunkEnd >= fCases) return false;
    chunkBegin = chunkEnd;
    chunkEnd = std::min(fCases, chunkBegin + fChunk);
    return true;
  }

 private:
  const std::int64_t fCases;
  const std::int64_t fChunk;
};

/// What a table does at the end of a chunk.
class Counting : public ChunkListener {
 public:
  explicit Counting(CaseCursor& cursor) : fCursor(cursor) { cursor.AddListener(this); }
  void LeaveChunk() override { counted = fCursor.chunkEnd; }
  void CursorGone() override {}

  std::int64_t counted = 0;

 private:
  CaseCursor& fCursor;
};

class Pass : public ::testing::Test {
 protected:
  static void Walk(CaseCursor& cursor) {
    while (cursor.Next()) {
    }
  }

  std::vector<machine::Progress> told;
  machine::ProgressListener tell = [this](const machine::Progress& progress) { told.push_back(progress); };
};

std::vector<std::int64_t> casesOf(const std::vector<machine::Progress>& told) {
  std::vector<std::int64_t> cases;
  for (const machine::Progress& progress : told) cases.push_back(progress.cases);
  return cases;
}

TEST_F(Pass, tellsOnceAChunk) {
  PlainCursor cursor(10, 4);
  const PassProgress progress(cursor, 10, tell);
  Walk(cursor);
  EXPECT_THAT(casesOf(told), ElementsAre(4, 8, 10));
  EXPECT_DOUBLE_EQ(told[0].share, 0.4);
  EXPECT_DOUBLE_EQ(told[2].share, 1.0);
}

TEST_F(Pass, tellsOfCasesThatTheTablesHaveCounted) {
  PlainCursor cursor(10, 4);
  const Counting* table = nullptr;
  std::vector<std::int64_t> counted;
  const machine::ProgressListener look = [&](const machine::Progress&) { counted.push_back(table->counted); };
  const PassProgress progress(cursor, 10, look);
  const Counting later(cursor);
  table = &later;
  Walk(cursor);
  EXPECT_THAT(counted, ElementsAre(4, 8, 10));
}

TEST_F(Pass, shortChunksAreNotToldOneByOne) {
  constexpr std::int64_t kCases = 100'000;
  PlainCursor cursor(kCases, 1);
  const PassProgress progress(cursor, kCases, tell);
  Walk(cursor);
  EXPECT_LE(told.size(), 1002u);
  EXPECT_GE(told.size(), 900u);
  EXPECT_EQ(told.back().cases, kCases);
}

TEST_F(Pass, shareIsZeroWhereTheNumberOfCasesIsNotKnown) {
  PlainCursor cursor(10'000, 4'096);
  const PassProgress progress(cursor, -1, tell);
  Walk(cursor);
  EXPECT_THAT(told, Each(Field(&machine::Progress::share, 0.0)));
  EXPECT_EQ(told.front().cases, 4'096);
}

TEST_F(Pass, nothingIsToldOfNoCases) {
  PlainCursor cursor(0, 4);
  const PassProgress progress(cursor, 0, tell);
  Walk(cursor);
  EXPECT_THAT(told, IsEmpty());
}

TEST_F(Pass, cursorMayGoFirst) {
  auto cursor = std::make_unique<PlainCursor>(10, 4);
  const PassProgress progress(*cursor, 10, tell);
  cursor->Next();
  cursor.reset();
  EXPECT_THAT(casesOf(told), ElementsAre(1));
}

TEST_F(Pass, cursorMayStay) {
  PlainCursor cursor(10, 4);
  {
    const PassProgress progress(cursor, 10, tell);
    cursor.Next();
  }
  Walk(cursor);
  EXPECT_THAT(told, IsEmpty());
}

}  // namespace
}  // namespace runtime::common
