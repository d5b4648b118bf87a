#include "runtime/data/checking/distinctvalues.h"

#include <cmath>
#include <limits>
#include <map>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "runtime/data/builder.h"

namespace runtime::data {
namespace {

constexpr double kMissing = std::numeric_limits<double>::quiet_NaN();

TEST(DistinctValues, countEveryNumberAndItsFirstRow) {
  DatasetBuilder builder;
  builder.AddNumeric("x", {3, 1, kMissing, 3, 1, 3});
  const auto dataset = builder.Build(2);
  const DistinctValues found = CollectDistinctValues(*dataset, 0);
  ASSERT_EQ(found.values.size(), 2u);
  EXPECT_EQ(found.values[0].number, 1);
  EXPECT_EQ(found.values[0].count, 2);
  EXPECT_EQ(found.values[0].firstRow, 1);
  EXPECT_EQ(found.values[1].count, 3);
  EXPECT_EQ(found.values[1].firstRow, 0);
  EXPECT_EQ(found.systemMissing, 1);
  EXPECT_EQ(found.firstSystemMissingRow, 2);
}

TEST(DistinctValues, countEveryText) {
  DatasetBuilder builder;
  builder.AddString("s", {"b", "", "a", "b"});
  const auto dataset = builder.Build();
  const DistinctValues found = CollectDistinctValues(*dataset, 0);
  ASSERT_EQ(found.values.size(), 3u);
  EXPECT_EQ(found.values[0].text, "");
  EXPECT_EQ(found.values[1].text, "a");
  EXPECT_EQ(found.values[2].count, 2);
  EXPECT_EQ(found.values[2].firstRow, 0);
}

/// Small and large storages in one column, few and very many values: against a plain count.
TEST(DistinctValues, areThoseOfAPlainCount) {
  std::mt19937 random(7);
  for (const int spread : {3, 100, 30000, 2000000}) {
    for (const double unit : {1.0, 0.25}) {
      std::vector<double> cells(120000);
      std::uniform_int_distribution<int> number(-spread, spread);
      for (std::size_t i = 0; i < cells.size(); ++i)
        cells[i] = i % 1000 == 500 ? kMissing : (i < 5000 ? static_cast<int>(i % 7) : number(random) * unit);
      std::map<double, std::pair<std::int64_t, std::int64_t>> expected;
      for (std::size_t i = 0; i < cells.size(); ++i)
        if (!std::isnan(cells[i])) {
          auto& entry = expected.try_emplace(cells[i], 0, static_cast<std::int64_t>(i)).first->second;
          ++entry.first;
        }
      DatasetBuilder builder;
      builder.AddNumeric("x", cells);
      builder.BlockRows(5000);
      const auto dataset = builder.Build();
      const DistinctValues found = CollectDistinctValues(*dataset, 0);
      EXPECT_EQ(found.systemMissing, 120);
      EXPECT_EQ(found.firstSystemMissingRow, 500);
      ASSERT_EQ(found.values.size(), expected.size());
      auto next = expected.begin();
      for (const DistinctValue& value : found.values) {
        ASSERT_EQ(value.number, next->first);
        ASSERT_EQ(value.count, next->second.first);
        ASSERT_EQ(value.firstRow, next->second.second);
        ++next;
      }
    }
  }
}

}  // namespace
}  // namespace runtime::data
