#include "runtime/data/store/columnstore.h"

#include <cmath>
#include <cstring>
#include <limits>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "runtime/data/open.h"

namespace runtime::data {
namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();

StoredColumn NumericColumn(const std::vector<double>& values, std::int64_t blockRows) {
  NumericColumnBuilder builder(blockRows);
  for (const double value : values) builder.Append(value);
  return builder.Finish();
}

ColumnStorage StorageOf(const std::vector<double>& values) { return NumericColumn(values, 16).ViewFrom(0).storage; }

TEST(NumericColumn, standsInTheSmallestStorageThatLeavesTheLowestValueFree) {
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

TEST(NumericColumn, marksSystemMissingWithTheLowestValueOfTheStorage) {
  const StoredColumn small = NumericColumn({7, kNaN}, 16);
  const auto* cells = static_cast<const std::int8_t*>(small.ViewFrom(0).cells);
  EXPECT_EQ(cells[0], 7);
  EXPECT_EQ(cells[1], kInt8SystemMissing);

  const StoredColumn medium = NumericColumn({700, kNaN}, 16);
  EXPECT_EQ(static_cast<const std::int16_t*>(medium.ViewFrom(0).cells)[1], kInt16SystemMissing);
  const StoredColumn large = NumericColumn({70000, kNaN}, 16);
  EXPECT_EQ(static_cast<const std::int32_t*>(large.ViewFrom(0).cells)[1], kInt32SystemMissing);
  const StoredColumn doubles = NumericColumn({0.5, kNaN}, 16);
  EXPECT_TRUE(std::isnan(static_cast<const double*>(doubles.ViewFrom(0).cells)[1]));
}

TEST(NumericColumn, readsInfinitiesAsSystemMissingAndMinusZeroAsZero) {
  const StoredColumn column = NumericColumn({kInfinity, -kInfinity, -0.0, 0.5}, 16);
  EXPECT_TRUE(std::isnan(column.Number(0)));
  EXPECT_TRUE(std::isnan(column.Number(1)));
  EXPECT_EQ(column.Number(2), 0.0);
  EXPECT_FALSE(std::signbit(column.Number(2)));
}

TEST(NumericColumn, choosesTheStorageOfEachBlockByItself) {
  const StoredColumn column = NumericColumn({1, 2, 3, 1e6, 0.25, 4}, 2);
  EXPECT_EQ(column.ViewFrom(0).storage, ColumnStorage::Int8);
  EXPECT_EQ(column.ViewFrom(2).storage, ColumnStorage::Int32);
  EXPECT_EQ(column.ViewFrom(4).storage, ColumnStorage::Float64);
}

TEST(NumericColumn, keepsEveryValueWhateverTheBlocksAndBatches) {
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
    NumericColumnBuilder builder(static_cast<std::int64_t>(random() % 700 + 1));
    for (std::size_t at = 0; at < values.size();) {
      const std::size_t count = std::min<std::size_t>(values.size() - at, random() % 600);
      builder.Append(values.data() + at, count);
      at += count;
    }
    const StoredColumn column = builder.Finish();
    ASSERT_EQ(column.rows(), static_cast<std::int64_t>(values.size()));
    for (std::size_t row = 0; row < values.size(); ++row) {
      const double stored = column.Number(static_cast<std::int64_t>(row));
      if (std::isnan(values[row]))
        ASSERT_TRUE(std::isnan(stored)) << round << ' ' << row;
      else
        ASSERT_EQ(stored, values[row]) << round << ' ' << row;
    }
  }
}

TEST(StringColumn, givesCodesInOrderOfFirstAppearance) {
  StringColumnBuilder builder(2);
  for (const char* text : {"b", "a", "b  ", "", "a", "   "}) builder.Append(text);
  EXPECT_EQ(builder.longestText(), 1U);
  const StoredColumn column = builder.Finish();
  ASSERT_TRUE(column.isString());
  ASSERT_EQ(column.strings()->Size(), 3U);
  EXPECT_EQ(column.strings()->Text(0), "b");
  EXPECT_EQ(column.strings()->Text(1), "a");
  EXPECT_EQ(column.strings()->Text(2), "");
  EXPECT_EQ(column.Text(2), "b");
  EXPECT_EQ(column.Text(5), "");
  const auto* codes = static_cast<const std::uint32_t*>(column.ViewFrom(2).cells);
  EXPECT_EQ(codes[0], 0U);
  EXPECT_EQ(codes[1], 2U);
}

TEST(StringColumn, keepsManyDifferentTexts) {
  StringColumnBuilder builder(1000);
  std::vector<std::string> texts;
  for (std::size_t i = 0; i < 50'000; ++i)
    texts.push_back("text " + std::to_string(i % 20'000) + std::string(i % 19, 'x'));
  texts.push_back(std::string(300'000, 'y'));
  texts.push_back(std::string("nul\0inside", 10));
  for (const std::string& text : texts) builder.Append(text);
  EXPECT_EQ(builder.longestText(), 300'000U);
  const StoredColumn column = builder.Finish();
  for (std::size_t row = 0; row < texts.size(); ++row)
    ASSERT_EQ(column.Text(static_cast<std::int64_t>(row)), texts[row]);
}

TEST(BlockRows, shrinkWhenTheTableIsVeryWide) {
  EXPECT_EQ(RowsPerBlock(1), 16'384);
  EXPECT_EQ(RowsPerBlock(500), 16'384);
  EXPECT_LT(RowsPerBlock(5'000), 2'000);
  EXPECT_GE(RowsPerBlock(1'000'000), 256);
}

TEST(ColumnarDataset, refusesMoreCasesThanACountHolds) {
  EXPECT_NO_THROW(ColumnarDataset(Dictionary{}, {}, kMostCases, 0));
  try {
    const ColumnarDataset dataset(Dictionary{}, {}, kMostCases + 1, 0);
    FAIL() << "taken";
  } catch (const DataError& error) {
    EXPECT_STREQ(error.what(),
                 "The data has 2147483648 cases; more than 2147483647 cannot be worked with. Split the file.");
  }
}

}  // namespace
}  // namespace runtime::data
