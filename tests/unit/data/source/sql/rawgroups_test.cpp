#include "runtime/data/source/sql/rawgroups.h"

#include <optional>
#include <string>

#include <gtest/gtest.h>

namespace runtime::data {
namespace {

TEST(RawGroups, standInTheOrderInWhichTheyWereMetFirst) {
  RawGroups groups;
  EXPECT_EQ(groups.Enter("b"), 0U);
  EXPECT_EQ(groups.Enter("a"), 1U);
  EXPECT_EQ(groups.Enter("b"), 0U);
  EXPECT_EQ(groups.Enter("c"), 2U);
  EXPECT_EQ(groups.size(), 3U);
  EXPECT_EQ(groups.text(1), "a");
}

TEST(RawGroups, tellNullFromTheEmptyText) {
  RawGroups groups;
  const std::size_t empty = groups.Enter("");
  EXPECT_FALSE(groups.Find(std::nullopt));
  const std::size_t null = groups.Enter(std::nullopt);
  EXPECT_NE(empty, null);
  EXPECT_EQ(groups.Enter(std::nullopt), null);
  EXPECT_EQ(groups.Find(""), empty);
  EXPECT_EQ(groups.Find(std::nullopt), null);
  EXPECT_TRUE(groups.isNull(null));
  EXPECT_FALSE(groups.isNull(empty));
  EXPECT_EQ(groups.text(null), "");
}

TEST(RawGroups, tellTextsApartByTheirBytes) {
  RawGroups groups;
  const std::string withNull("a\0b", 3);
  for (const std::string& text : {std::string("a"), std::string("A"), std::string("a "), withNull}) groups.Enter(text);
  EXPECT_EQ(groups.size(), 4U);
  EXPECT_EQ(groups.text(*groups.Find(withNull)), withNull);
  EXPECT_FALSE(groups.Find("b"));
}

TEST(RawGroups, addUpCasesAndWeights) {
  RawGroups groups(true);
  const std::size_t a = groups.Enter("a");
  const std::size_t b = groups.Enter("b");
  groups.AddCases(a, 5'000'000'000);
  groups.AddCases(b, 1);
  groups.AddCases(a, 2);
  const mpz_class beyond64Bits = mpz_class(1) << 70;
  groups.AddWeight(a, beyond64Bits);
  groups.AddWeight(a, 1);
  EXPECT_EQ(groups.cases(a), 5'000'000'002);
  EXPECT_EQ(groups.allCases(), 5'000'000'003);
  EXPECT_TRUE(groups.weight(a) == beyond64Bits + 1);
  EXPECT_TRUE(groups.weight(b) == 0);
}

TEST(RawGroups, keepTheirTextsWhenManyAreEnteredAndWhenMoved) {
  RawGroups entered;
  for (int i = 0; i < 2000; ++i) entered.Enter(std::to_string(i));
  const RawGroups groups = std::move(entered);
  for (std::size_t i = 0; i < groups.size(); ++i) {
    ASSERT_EQ(groups.text(i), std::to_string(i));
    ASSERT_EQ(groups.Find(std::to_string(i)), i);
  }
}

}  // namespace
}  // namespace runtime::data
