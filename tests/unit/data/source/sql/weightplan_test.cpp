#include "runtime/data/source/sql/weightplan.h"

#include <cmath>
#include <limits>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "runtime/data/source/sql/exactwhole.h"
#include "tests/unit/data/source/sql/groupsof.h"
#include "tests/unit/data/source/sqlitefolder.h"

namespace runtime::data {
namespace {

using testing::HasSubstr;

constexpr double kMissing = std::numeric_limits<double>::quiet_NaN();

MissingRule Missing(double value) {
  MissingRule rule;
  rule.values = {value};
  return rule;
}

class WeightPlans : public SqliteFolder {
 protected:
  /// A table t with the weights in its only column.
  SqlTable& TableOf(const std::string& values) {
    SqlTableOptions options;
    options.addresses = {"sqlite:" + Write("CREATE TABLE t (w REAL); INSERT INTO t VALUES " + values)};
    fTable = std::make_unique<SqlTable>(options);
    return *fTable;
  }

 private:
  std::unique_ptr<SqlTable> fTable;
};

TEST_F(WeightPlans, checkNothingWhereAllWeightsCount) {
  SqlTable& table = TableOf("(0.5), (1.5)");
  const GroupQueries queries(table);
  const auto planned =
      PlanKnownWeight(table.dialect(), queries, {0, {}}, SqlType::Double, GroupsOf({{"0.5", 3}, {"1.5", 2}}), 5);
  ASSERT_TRUE(planned);
  EXPECT_EQ(planned->number, queries.Number(0));
  EXPECT_EQ(planned->counts, "");
  EXPECT_TRUE(planned->hasFewValues);
  EXPECT_LE(planned->unit, -1);
}

TEST_F(WeightPlans, tellWhichCasesCount) {
  SqlTable& table = TableOf("(0.5)");
  const GroupQueries queries(table);
  for (const char* const none : {"0.0", "-1.0", "9.0", "Inf"}) {
    const auto planned = PlanKnownWeight(table.dialect(), queries, {0, Missing(9.0)}, SqlType::Double,
                                         GroupsOf({{"0.5", 3}, {none, 2}}), 5);
    ASSERT_TRUE(planned);
    EXPECT_THAT(planned->number, HasSubstr("CASE WHEN " + planned->counts + " THEN")) << none;
    EXPECT_THAT(planned->counts, HasSubstr("<> CAST(9 AS REAL)")) << none;
  }
  const auto withNull =
      PlanKnownWeight(table.dialect(), queries, {0, {}}, SqlType::Double, GroupsOf({{"0.5", 3}, {std::nullopt, 2}}), 5);
  ASSERT_TRUE(withNull);
  EXPECT_NE(withNull->counts, "");
}

TEST_F(WeightPlans, reachTheDeepestBitOfManyWeights) {
  const std::string values =
      "(1.0), (1.5), (9.313225746154785e-10), (-1.0), (1e-300), (NULL)";  // 2^-30, and one too deep
  SqlTable& table = TableOf(values);
  const GroupQueries queries(table);
  const std::vector<std::optional<std::string>> first = {"1.0", "1.5"};
  EXPECT_FALSE(PlanManyValuedWeight(table, queries, {0, {}}, first, 6));
  const auto planned = PlanManyValuedWeight(table, queries, {0, Missing(1e-300)}, first, 6);
  ASSERT_TRUE(planned);
  EXPECT_LE(planned->unit, -30);
  EXPECT_GE(planned->pieces.top, 1);
  EXPECT_FALSE(planned->hasFewValues);
}

TEST(WeightsOfTheirOwn, areTheNumbersTimesTheCases) {
  const RawGroups groups = GroupsOf({{"0.5", 3}, {std::nullopt, 2}, {"-1", 4}, {"2", 5}, {"9", 7}});
  const std::vector<double> numbers = {0.5, kMissing, -1.0, 2.0, 9.0};
  const SqlWeight planned = PlanPairs({0, Missing(9.0)}, groups, numbers);
  EXPECT_EQ(planned.unit, -1);
  const RawGroups weighed = WithOwnWeights(groups, numbers, planned, Missing(9.0));
  ASSERT_EQ(weighed.size(), groups.size());
  EXPECT_EQ(weighed.allCases(), 21);
  const std::vector<int> halves = {3, 0, 0, 20, 0};
  for (std::size_t i = 0; i < halves.size(); ++i) {
    EXPECT_EQ(weighed.isNull(i), groups.isNull(i));
    EXPECT_EQ(weighed.text(i), groups.text(i));
    EXPECT_TRUE(weighed.weight(i) == halves[i]) << i << " " << weighed.weight(i).get_str();
  }
}

TEST(WeightsOfCells, areThoseOfTheirNumbers) {
  SqlWeight pieces;
  pieces.form = SqlWeight::Form::Pieces;
  pieces.unit = -2;
  EXPECT_TRUE(WeightOfCell("1.75", SqlType::Double, pieces, {}) == 7);
  for (const std::optional<std::string>& none :
       std::vector<std::optional<std::string>>{std::nullopt, "0", "-2", "NaN", "9"})
    EXPECT_TRUE(WeightOfCell(none, SqlType::Double, pieces, Missing(9.0)) == 0) << none.value_or("NULL");
  SqlWeight pairs;
  pairs.form = SqlWeight::Form::Pairs;
  pairs.ofText.emplace("two", 2);
  EXPECT_TRUE(WeightOfCell("two", SqlType::Text, pairs, {}) == 2);
  EXPECT_TRUE(WeightOfCell("one", SqlType::Text, pairs, {}) == 0);
}

}  // namespace
}  // namespace runtime::data
