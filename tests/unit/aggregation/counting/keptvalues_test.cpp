#include "runtime/aggregation/counting/keptvalues.h"

#include <algorithm>
#include <cstdint>
#include <memory>
#include <vector>

#include <gtest/gtest.h>

#include "tests/unit/aggregation/support/keep.h"

namespace runtime::aggregation {
namespace {

struct Read {
  std::vector<double> values;
  std::vector<double> weights;  // 1 for the values of a block without weights
  std::size_t weightedBlocks = 0;
  std::size_t blocks = 0;
};

Read ReadAll(const KeptValues& kept) {
  Read read;
  kept.ForEachBlock([&read](const KeptValues::Block& block) {
    ++read.blocks;
    read.weightedBlocks += block.weights == nullptr ? 0 : 1;
    read.values.insert(read.values.end(), block.values, block.values + block.count);
    for (std::size_t i = 0; i < block.count; ++i)
      read.weights.push_back(block.weights == nullptr ? 1.0 : block.weights[i]);
  });
  return read;
}

std::vector<double> Numbers(std::size_t count, double first) {
  std::vector<double> numbers(count);
  for (double& number : numbers) number = first++;
  return numbers;
}

TEST(KeptValues, comeBackInTheirOrderFromMemoryAndFile) {
  for (const std::int64_t limit : {std::int64_t{0}, std::int64_t{1}, std::int64_t{50000}, std::int64_t{400000}}) {
    const auto memory = std::make_shared<ValueMemory>(limit);
    KeptValues first(memory);
    KeptValues second(memory);
    const std::vector<double> numbers = Numbers(40000, 1.0);
    const std::vector<double> weights = Numbers(40000, 0.5);
    Keep(first, numbers);
    Keep(second, numbers, weights);
    EXPECT_EQ(ReadAll(first).values, numbers);
    EXPECT_EQ(ReadAll(second).values, numbers);
    EXPECT_EQ(ReadAll(second).weights, weights);
    EXPECT_EQ(memory->file().size() > 0, limit != 0);
    EXPECT_EQ(second.count(), 40000u);
    EXPECT_EQ(second.lowest(), 1.0);
    EXPECT_EQ(second.highest(), 40000.0);
    EXPECT_EQ(second.aboveWeights(), 40000.0);
  }
}

TEST(KeptValues, withoutAWeightBetweenThoseWithOneHaveTheWeightOne) {
  for (const std::int64_t limit : {std::int64_t{0}, std::int64_t{1}}) {
    KeptValues kept(std::make_shared<ValueMemory>(limit));
    Keep(kept, Numbers(100, 0));
    Keep(kept, Numbers(1000, 100), Numbers(1000, 7));
    Keep(kept, Numbers(300, 1100));
    const Read read = ReadAll(kept);
    EXPECT_EQ(read.values, Numbers(1400, 0));
    std::vector<double> weights(1400, 1.0);
    for (std::size_t i = 0; i < 1000; ++i) weights[100 + i] = 7.0 + static_cast<double>(i);
    EXPECT_EQ(read.weights, weights);
    EXPECT_EQ(read.weightedBlocks, read.blocks - 1);
  }
}

TEST(KeptValues, stayWithinTheirRoom) {
  const auto memory = std::make_shared<ValueMemory>(100000);
  {
    KeptValues kept(memory);
    Keep(kept, Numbers(100000, 0));
    EXPECT_GT(memory->file().size(), 600000u);
    EXPECT_FALSE(memory->Take(100000));
  }
  EXPECT_TRUE(memory->Take(100000));  // all was given back
  memory->GiveBack(100000);
}

TEST(KeptValues, ofABlockThatIsNotKeptAreGone) {
  KeptValues kept;
  const std::vector<double> numbers = Numbers(5000, 0);
  for (std::size_t done = 0; done < numbers.size(); ++done) {
    if (kept.next(false).room == 0) kept.OpenNext(false, false);
    *kept.next(false).values = numbers[done];
    kept.Written(1, 0.0);
  }
  EXPECT_EQ(kept.count(), kept.open().count);
  EXPECT_EQ(kept.open().values[kept.open().count - 1], 4999.0);
}

}  // namespace
}  // namespace runtime::aggregation
