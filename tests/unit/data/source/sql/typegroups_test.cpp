#include "runtime/data/source/sql/typegroups.h"

#include <cmath>
#include <cstdint>
#include <limits>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/unit/data/source/sql/groupsof.h"

namespace runtime::data {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::NanSensitiveDoubleEq;

SqlColumn ColumnOf(SqlType type) {
  SqlColumn column;
  column.name = "x";
  column.type = type;
  return column;
}

ColumnPlan PlanOf(FieldType type) {
  ColumnPlan plan;
  plan.dialect.type = type;
  return plan;
}

constexpr double kMissing = std::numeric_limits<double>::quiet_NaN();

TEST(TypeGroups, giveCellIToGroupI) {
  const RawGroups groups = GroupsOf({{"7", 3}, {std::nullopt, 2}, {"-1", 1}, {"300", 1}});
  const TypedColumn typed = TypeGroups(ColumnOf(SqlType::Whole), FieldType::Integer, {}, groups);
  EXPECT_EQ(typed.facts.type, FieldType::Integer);
  EXPECT_THAT(NumbersOf(typed.column), ElementsAre(7.0, NanSensitiveDoubleEq(kMissing), -1.0, 300.0));
  EXPECT_EQ(typed.facts.values.minimum(), -1.0);
  EXPECT_EQ(typed.facts.values.maximum(), 300.0);
}

TEST(TypeGroups, factsCountCasesNotGroups) {
  const RawGroups groups = GroupsOf({{"a", 5'000'000'000}, {"", 3}, {std::nullopt, 4}, {"  ", 5}});
  const TypedColumn typed = TypeGroups(ColumnOf(SqlType::Text), FieldType::String, PlanOf(FieldType::String), groups);
  EXPECT_TRUE(typed.facts.isString());
  EXPECT_EQ(typed.facts.rows, 5'000'000'012);
  EXPECT_EQ(typed.facts.blankCells, 12);
}

TEST(TypeGroups, oddCellsOfADeclaredNumberAreCountedByCases) {
  const RawGroups groups = GroupsOf({{"1", 10}, {"x", 20}, {"007", 30}, {"y", 50}, {"9007199254740993", 60}});
  const ColumnFacts facts =
      TypeGroups(ColumnOf(SqlType::Text), FieldType::String, PlanOf(FieldType::Integer), groups).facts;
  EXPECT_EQ(facts.type, FieldType::Integer);
  EXPECT_EQ(facts.rows, 170);
  EXPECT_EQ(facts.unreadableCells, 70);
  EXPECT_EQ(facts.zeroPaddedCells, 30);
  EXPECT_EQ(facts.roundedCells, 60);
  EXPECT_EQ(facts.firstZeroPadded, "007");
}

TEST(TypeGroups, unreadableCellsHaveNoRow) {
  const RawGroups groups = GroupsOf({{"1", 1}, {"x", 1}});
  const ColumnFacts facts =
      TypeGroups(ColumnOf(SqlType::Text), FieldType::String, PlanOf(FieldType::Integer), groups).facts;
  ASSERT_EQ(facts.unreadable.size(), 1U);
  EXPECT_EQ(facts.unreadable[0].text, "x");
  EXPECT_EQ(facts.unreadable[0].row, 0);
  EXPECT_EQ(facts.unreadable[0].line, 0);
}

TEST(TypeGroups, wholesReadAsTextsKeepTheirDigits) {
  const RawGroups groups = GroupsOf({{"9007199254740992", 1}, {"9007199254740993", 1}});
  const TypedColumn typed = TypeGroups(ColumnOf(SqlType::Whole), FieldType::String, {}, groups);
  ASSERT_TRUE(typed.column.isString());
  EXPECT_EQ(typed.column.strings->Size(), 2U);
  EXPECT_EQ(typed.column.strings->Text(1), "9007199254740993");
}

TEST(TypeGroups, decimalsKeepTheZerosTheyAreWrittenWith) {
  const RawGroups groups = GroupsOf({{"1.500", 1}, {"2.250", 1}});
  const auto decimalsAs = [&](SqlType type) {
    return TypeGroups(ColumnOf(type), FieldType::Number, {}, groups).facts.decimals;
  };
  EXPECT_EQ(decimalsAs(SqlType::Decimal), 3);
  EXPECT_EQ(decimalsAs(SqlType::Double), 2);
}

TEST(TypeGroups, momentsReadWithABlankBeforeTheTime) {
  const RawGroups groups = GroupsOf({{"1970-01-02 00:00:01", 1}});
  const SqlColumn moment = ColumnOf(SqlType::DateTime);
  EXPECT_THAT(NumbersOf(TypeGroups(moment, FieldType::DateTime, {}, groups).column), ElementsAre(86401.0));
  const TypedColumn text = TypeGroups(moment, FieldType::String, PlanOf(FieldType::String), groups);
  EXPECT_EQ(text.column.strings->Text(0), "1970-01-02T00:00:01");
}

TEST(TypeGroups, aColumnWithoutGroupsHasNoCells) {
  const TypedColumn typed = TypeGroups(ColumnOf(SqlType::Double), FieldType::Number, {}, RawGroups());
  EXPECT_EQ(typed.facts.rows, 0);
  EXPECT_THAT(NumbersOf(typed.column), IsEmpty());
}

TEST(TypeGroups, moreGroupsThanAreReadAtOnceStayInOrder) {
  RawGroups groups;
  for (int i = 0; i < 5000; ++i) groups.AddCases(groups.Enter(std::to_string(i * 3)), 1);
  const std::vector<double> numbers =
      NumbersOf(TypeGroups(ColumnOf(SqlType::Whole), FieldType::Integer, {}, groups).column);
  ASSERT_EQ(numbers.size(), 5000U);
  for (std::size_t i = 0; i < numbers.size(); ++i) ASSERT_EQ(numbers[i], static_cast<double>(3 * i));
}

TEST(WholesBeyondDoubles, areThoseAbove2To53) {
  for (const SqlType type : {SqlType::Whole, SqlType::Decimal}) {
    EXPECT_FALSE(HasWholesBeyondDoubles(type, GroupsOf({{"9007199254740992", 1}, {"1", 1}})));
    EXPECT_FALSE(HasWholesBeyondDoubles(type, GroupsOf({{"-9007199254740992", 1}, {std::nullopt, 1}})));
    EXPECT_TRUE(HasWholesBeyondDoubles(type, GroupsOf({{"1", 1}, {"9007199254740993", 1}})));
    EXPECT_TRUE(HasWholesBeyondDoubles(type, GroupsOf({{"9007199254740992", 1}, {"-9007199254740993", 1}})));
    EXPECT_TRUE(HasWholesBeyondDoubles(type, GroupsOf({{"9223372036854775807", 1}})));
  }
}

TEST(WholesBeyondDoubles, areNoneWhereTheDatabaseHoldsDoublesOrTexts) {
  for (const SqlType type : {SqlType::Double, SqlType::Single, SqlType::Text})
    EXPECT_FALSE(HasWholesBeyondDoubles(type, GroupsOf({{"9007199254740993", 1}, {"1e300", 1}})));
}

TEST(Gathering, mayNameAGroupSeveralTimes) {
  const StoredColumn numbers = NumbersColumn({0.5, kMissing, -2.0});
  EXPECT_THAT(NumbersOf(Gather(numbers, {2, 0, 2, 1})), ElementsAre(-2.0, 0.5, -2.0, NanSensitiveDoubleEq(kMissing)));
  EXPECT_THAT(NumbersOf(Gather(numbers, {})), IsEmpty());
}

TEST(Gathering, keepsTextsWithTheirTable) {
  const RawGroups groups = GroupsOf({{"a", 1}, {"b", 1}});
  const StoredColumn texts = TypeGroups(ColumnOf(SqlType::Text), FieldType::String, {}, groups).column;
  const StoredColumn gathered = Gather(texts, {1, 1, 0});
  ASSERT_TRUE(gathered.isString());
  EXPECT_EQ(gathered.groups->rows(), 3);
  std::vector<std::byte> buffer;
  const ColumnView view = gathered.groups->View(0, gathered.groups->Load(0, buffer), gathered.column, 0);
  const auto* const codes = static_cast<const std::uint32_t*>(view.cells);
  EXPECT_EQ(gathered.strings->Text(codes[0]), "b");
  EXPECT_EQ(gathered.strings->Text(codes[1]), "b");
  EXPECT_EQ(gathered.strings->Text(codes[2]), "a");
}

}  // namespace
}  // namespace runtime::data
