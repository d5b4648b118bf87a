#include "runtime/data/store/numericpart.h"

#include <cmath>
#include <cstring>
#include <limits>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "runtime/data/store/columnardataset.h"
#include "runtime/data/store/rowgroups.h"
#include "tests/unit/data/support/storedcells.h"

namespace runtime::data {
namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();

NumericPart PartOf(const std::vector<double>& values) {
  NumericPart part;
  for (const double value : values) part.AppendDoubles(&value, 1);
  return part;
}

ColumnStorage StorageOf(const std::vector<double>& values) { return PartOf(values).storage(); }

std::vector<double> Numbers(const NumericPart& part) {
  const auto groups = std::make_shared<RowGroups>(std::make_shared<ColumnMemory>());
  RowGroup group(part.rows(), 1);
  group.AddColumn(part.storage());
  group.Allocate();
  std::memcpy(group.Cells(0), part.cells(), part.bytes());
  groups->Append(std::move(group));
  return test::Numbers({groups, 0, nullptr});
}

TEST(NumericPart, standsInTheSmallestStorageThatLeavesTheLowestValueFree) {
  EXPECT_EQ(StorageOf({1, 2, kNaN}), ColumnStorage::Int8);
  EXPECT_EQ(StorageOf({-127, 127}), ColumnStorage::Int8);
  EXPECT_EQ(StorageOf({-128}), ColumnStorage::Int16);
  EXPECT_EQ(StorageOf({128}), ColumnStorage::Int16);
  EXPECT_EQ(StorageOf({-32767, 32767}), ColumnStorage::Int16);
  EXPECT_EQ(StorageOf({-32768}), ColumnStorage::Int32);
  EXPECT_EQ(StorageOf({2147483647.0, -2147483647.0}), ColumnStorage::Int32);
  EXPECT_EQ(StorageOf({-2147483648.0}), ColumnStorage::Float64);
  EXPECT_EQ(StorageOf({2147483648.0}), ColumnStorage::Float64);
  EXPECT_EQ(StorageOf({1.5}), ColumnStorage::Float64);
  EXPECT_EQ(StorageOf({kNaN, kNaN}), ColumnStorage::Int8);
}

TEST(NumericPart, marksSystemMissingWithTheLowestValueOfTheStorage) {
  const NumericPart small = PartOf({7, kNaN});
  const auto* cells = reinterpret_cast<const std::int8_t*>(small.cells());
  EXPECT_EQ(cells[0], 7);
  EXPECT_EQ(cells[1], kInt8SystemMissing);

  const NumericPart medium = PartOf({700, kNaN});
  EXPECT_EQ(reinterpret_cast<const std::int16_t*>(medium.cells())[1], kInt16SystemMissing);
  const NumericPart large = PartOf({70000, kNaN});
  EXPECT_EQ(reinterpret_cast<const std::int32_t*>(large.cells())[1], kInt32SystemMissing);
  const NumericPart doubles = PartOf({0.5, kNaN});
  EXPECT_TRUE(std::isnan(reinterpret_cast<const double*>(doubles.cells())[1]));
}

TEST(NumericPart, readsInfinitiesAsSystemMissingAndMinusZeroAsZero) {
  const NumericPart column = PartOf({kInfinity, -kInfinity, -0.0, 0.5});
  EXPECT_TRUE(std::isnan(Numbers(column).at(0)));
  EXPECT_TRUE(std::isnan(Numbers(column).at(1)));
  EXPECT_EQ(Numbers(column).at(2), 0.0);
  EXPECT_FALSE(std::signbit(Numbers(column).at(2)));
}

TEST(NumericPart, keepsEveryValueWhateverTheBatches) {
  std::mt19937_64 random(20240611);
  for (std::size_t round = 0; round < 300; ++round) {
    std::vector<double> values(random() % 1500);
    for (double& value : values) {
      switch (random() % (round % 5 + 2)) {
        case 0:
          value = kNaN;
          break;
        case 1:
          value = static_cast<double>(random() % 9) - 3.0;
          break;
        case 2:
          value = static_cast<double>(random() % 60000) - 30000.0;
          break;
        case 3:
          value = static_cast<double>(random() % 4'000'000'000U) - 2e9;
          break;
        default:
          value = static_cast<double>(random()) / 7.0;
      }
    }
    NumericPart part;
    for (std::size_t at = 0; at < values.size();) {
      const std::size_t count = std::min<std::size_t>(values.size() - at, random() % 600);
      part.AppendDoubles(values.data() + at, count);
      at += count;
    }
    ASSERT_EQ(part.rows(), values.size());
    if (values.empty()) continue;
    const std::vector<double> kept = Numbers(part);
    for (std::size_t row = 0; row < values.size(); ++row) {
      const double stored = kept[row];
      if (std::isnan(values[row]))
        ASSERT_TRUE(std::isnan(stored)) << round << ' ' << row;
      else
        ASSERT_EQ(stored, values[row]) << round << ' ' << row;
    }
  }
}

TEST(NumericPart, takesIntegersAndDoublesInTurn) {
  std::mt19937_64 random(7);
  for (int round = 0; round < 500; ++round) {
    NumericPart part;
    std::vector<double> expected;
    const std::int32_t range = 1 << (random() % 31);
    for (int turn = 0; turn < 6; ++turn) {
      std::vector<std::int32_t> integers(random() % 40);
      for (std::int32_t& value : integers) {
        value = random() % 5 == 0 ? NumericPart::kNoInteger : static_cast<std::int32_t>(random()) % range;
        expected.push_back(value == NumericPart::kNoInteger ? kNaN : value);
      }
      part.AppendIntegers(integers.data(), integers.size());
      if (random() % 3 != 0) continue;
      const double fraction = static_cast<double>(random() % 1000) / 4.0;
      part.AppendDoubles(&fraction, 1);
      expected.push_back(fraction);
    }
    if (expected.empty()) continue;
    const std::vector<double> kept = Numbers(part);
    ASSERT_EQ(kept.size(), expected.size());
    for (std::size_t i = 0; i < expected.size(); ++i)
      ASSERT_TRUE(kept[i] == expected[i] || (std::isnan(kept[i]) && std::isnan(expected[i]))) << round << ' ' << i;
    ValueFacts facts;
    part.AddFactsTo(facts);
    double low = kInfinity;
    bool whole = true;
    for (const double value : expected) {
      if (std::isnan(value)) continue;
      low = std::min(low, value);
      whole = whole && std::trunc(value) == value;
    }
    ASSERT_EQ(facts.hasValues(), low < kInfinity);
    if (facts.hasValues()) {
      ASSERT_EQ(facts.minimum(), low);
    }
    ASSERT_EQ(facts.allIntegers(), whole) << round;
  }
}

}  // namespace
}  // namespace runtime::data
