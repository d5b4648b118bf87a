// The five orders of the items and their two directions.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "codebook/cbkorder.h"
#include "runtime/data/builder.h"

namespace codebook::test {
namespace {

using namespace MAVO_Variable_Enumerations;
using runtime::data::DatasetBuilder;
using ::testing::ElementsAre;

/// The names of the items as they stand after ordering.
std::vector<std::string> ordered(DatasetBuilder& builder, std::vector<ListedItem> items, VarOrder order, bool ascending,
                                 const std::string& attribute = {}) {
  const MAVO_DataSource dataSource(builder.Build());
  CodebookSettings settings;
  settings.setVarOrder(order);
  settings.setSortAscending(ascending);
  settings.setVarOrderAttribute(attribute);
  orderItems(settings, dataSource, items);
  std::vector<std::string> names;
  for (const ListedItem& item : items) names.push_back(item.name);
  return names;
}

DatasetBuilder lettersAndSet() {
  DatasetBuilder builder;
  for (const char* name : {"b", "A", "c"}) builder.AddNumeric(name, {1});
  return builder;
}

const std::vector<ListedItem> kLetters = {{"b", 0}, {"A", 1}, {"a", 2}, {"$s", 3}};

TEST(Order, alphaComparesBytesSoThatSetsAndCapitalsComeFirst) {
  DatasetBuilder up = lettersAndSet();
  EXPECT_THAT(ordered(up, kLetters, kOrderAlpha, true), ElementsAre("$s", "A", "a", "b"));
  DatasetBuilder down = lettersAndSet();
  EXPECT_THAT(ordered(down, kLetters, kOrderAlpha, false), ElementsAre("b", "a", "A", "$s"));
}

TEST(Order, alphaAscendingBreaksTiesByIndex) {
  DatasetBuilder builder = lettersAndSet();
  const MAVO_DataSource dataSource(builder.Build());
  CodebookSettings settings;
  settings.setVarOrder(kOrderAlpha);
  std::vector<ListedItem> items = {{"$s", 5}, {"b", 0}, {"$s", 4}, {"$s", 3}};
  orderItems(settings, dataSource, items);
  std::vector<int> indices;
  for (const ListedItem& item : items) indices.push_back(item.index);
  EXPECT_THAT(indices, ElementsAre(3, 4, 5, 0));
}

TEST(Order, shorterNameIsSmallerAndBytesCountUnsigned) {
  DatasetBuilder builder = lettersAndSet();
  EXPECT_THAT(ordered(builder, {{"\xC3\xA4", 0}, {"ab", 1}, {"z", 2}, {"a", 0}}, kOrderAlpha, true),
              ElementsAre("a", "ab", "z", "\xC3\xA4"));
}

TEST(Order, listedOrderAscendingLeavesTheListUntouched) {
  DatasetBuilder builder = lettersAndSet();
  EXPECT_THAT(ordered(builder, kLetters, kOrderVarList, true), ElementsAre("b", "A", "a", "$s"));
}

TEST(Order, listedOrderDescendingReversesTheList) {
  DatasetBuilder builder = lettersAndSet();
  EXPECT_THAT(ordered(builder, kLetters, kOrderVarList, false), ElementsAre("$s", "a", "A", "b"));
}

/// Levels: w 3, x 0, y 2, z 1; a second nominal one m.
DatasetBuilder levels() {
  DatasetBuilder builder;
  builder.AddNumeric("w", {1}).Level(kLevelScale);
  builder.AddNumeric("x", {1}).Level(kLevelUnknown);
  builder.AddNumeric("y", {1}).Level(kLevelOrdinal);
  builder.AddNumeric("z", {1}).Level(kLevelNominal);
  builder.AddNumeric("m", {1}).Level(kLevelNominal);
  return builder;
}

const std::vector<ListedItem> kLevels = {{"w", 0}, {"x", 1}, {"y", 2}, {"z", 3}, {"$s", 5}, {"m", 4}};

TEST(Order, measureAscendingMixesSetsAndNominalByName) {
  DatasetBuilder builder = levels();
  EXPECT_THAT(ordered(builder, kLevels, kOrderMeasure, true), ElementsAre("$s", "m", "z", "y", "w", "x"));
}

// No known level is last in both directions, and names go upwards in both. Meant so.
TEST(Order, measureDescendingStillHasTheUnknownLevelLast) {
  DatasetBuilder builder = levels();
  EXPECT_THAT(ordered(builder, kLevels, kOrderMeasure, false), ElementsAre("w", "y", "$s", "m", "z", "x"));
}

TEST(Order, levelOutsideTheFourReusesTheRankOfTheItemBeforeIt) {
  DatasetBuilder builder = levels();
  builder.AddNumeric("odd", {1}).Level(static_cast<MeasurementLevel>(7));
  EXPECT_THAT(ordered(builder, {{"y", 2}, {"odd", 5}, {"w", 0}, {"z", 3}}, kOrderMeasure, true),
              ElementsAre("z", "odd", "y", "w"));
}

/// No variable has the attribute that is asked for.
TEST(Order, attributeThatNoVariableHasEqualsAlpha) {
  DatasetBuilder up = lettersAndSet();
  EXPECT_THAT(ordered(up, kLetters, kOrderAttribute, true, "Block"), ElementsAre("$s", "A", "a", "b"));
  DatasetBuilder down = lettersAndSet();
  EXPECT_THAT(ordered(down, kLetters, kOrderAttribute, false, "Block"), ElementsAre("b", "a", "A", "$s"));
}

TEST(Order, hiddenAttributeNeverMakesAVariableValued) {
  for (const char* name : {"@Block", "$@Block"}) {
    DatasetBuilder builder;
    builder.AddNumeric("a", {1}).Attribute(name, {"1"});
    builder.AddNumeric("b", {1}).Attribute(name, {"2"});
    EXPECT_THAT(ordered(builder, {{"b", 1}, {"a", 0}}, kOrderAttribute, true, name), ElementsAre("a", "b"));
  }
}

TEST(Order, arrayAttributeOrdersByItsFirstValueAlone) {
  DatasetBuilder builder;
  builder.AddNumeric("a", {1}).Attribute("Block", {"1", "9"});
  builder.AddNumeric("b", {1}).Attribute("Block", {"2", "0"});
  EXPECT_THAT(ordered(builder, {{"a", 0}, {"b", 1}}, kOrderAttribute, true, "Block"), ElementsAre("b", "a"));
}

TEST(Order, emptyAttributePutsItsVariableFirstAmongTheValuedAscending) {
  DatasetBuilder builder;
  builder.AddNumeric("a", {1}).Attribute("Block", {"1"});
  builder.AddNumeric("b", {1}).Attribute("Block", {""});
  builder.AddNumeric("c", {1}).Attribute("Block", {});
  builder.AddNumeric("d", {1});
  const std::vector<ListedItem> items = {{"a", 0}, {"b", 1}, {"c", 2}, {"d", 3}};
  EXPECT_THAT(ordered(builder, items, kOrderAttribute, true, "Block"), ElementsAre("d", "b", "c", "a"));
}

TEST(Order, emptyAttributeComesLastAmongTheValuedDescending) {
  DatasetBuilder builder;
  builder.AddNumeric("a", {1}).Attribute("Block", {"1"});
  builder.AddNumeric("b", {1}).Attribute("Block", {""});
  builder.AddNumeric("c", {1}).Attribute("Block", {"2"});
  builder.AddNumeric("d", {1});
  const std::vector<ListedItem> items = {{"a", 0}, {"b", 1}, {"c", 2}, {"d", 3}};
  EXPECT_THAT(ordered(builder, items, kOrderAttribute, false, "Block"), ElementsAre("a", "c", "b", "d"));
}

// The texts run against the keyword: ascending gives the larger text first. Required so.
TEST(Order, attributeTextsRunAgainstTheKeywordsDirection) {
  const std::vector<ListedItem> items = {{"p", 0}, {"q", 1}, {"r", 2}};
  const auto build = [] {
    DatasetBuilder builder;
    builder.AddNumeric("p", {1}).Attribute("Block", {"2"});
    builder.AddNumeric("q", {1}).Attribute("Block", {"1"});
    builder.AddNumeric("r", {1}).Attribute("Block", {"3"});
    return builder;
  };
  DatasetBuilder up = build();
  EXPECT_THAT(ordered(up, items, kOrderAttribute, true, "Block"), ElementsAre("r", "p", "q"));
  DatasetBuilder down = build();
  EXPECT_THAT(ordered(down, items, kOrderAttribute, false, "Block"), ElementsAre("q", "p", "r"));
}

TEST(Order, equalAttributeTextsFollowTheNameInTheKeywordsDirection) {
  const std::vector<ListedItem> items = {{"q", 0}, {"p", 1}, {"r", 2}};
  const auto build = [] {
    DatasetBuilder builder;
    for (const char* name : {"q", "p", "r"}) builder.AddNumeric(name, {1}).Attribute("Block", {"1"});
    return builder;
  };
  DatasetBuilder up = build();
  EXPECT_THAT(ordered(up, items, kOrderAttribute, true, "Block"), ElementsAre("p", "q", "r"));
  DatasetBuilder down = build();
  EXPECT_THAT(ordered(down, items, kOrderAttribute, false, "Block"), ElementsAre("r", "q", "p"));
}

TEST(Order, plainItemsComeBeforeTheValuedAscendingAndBehindThemDescending) {
  const auto build = [] {
    DatasetBuilder builder;
    builder.AddNumeric("a", {1}).Attribute("block", {"1"});   // matched without regard to case
    builder.AddNumeric("b", {1}).Attribute("Blocks", {"1"});  // another name
    builder.AddNumeric("c", {1});
    return builder;
  };
  const std::vector<ListedItem> items = {{"a", 0}, {"c", 2}, {"$s", 3}, {"b", 1}};
  DatasetBuilder up = build();
  EXPECT_THAT(ordered(up, items, kOrderAttribute, true, "BLOCK"), ElementsAre("$s", "b", "c", "a"));
  DatasetBuilder down = build();
  EXPECT_THAT(ordered(down, items, kOrderAttribute, false, "BLOCK"), ElementsAre("a", "c", "b", "$s"));
}

TEST(Order, fileKeepsTheAddingOrderOfSetsBehindAllVariables) {
  const std::vector<ListedItem> items = {{"$t", 3}, {"c", 2}, {"$s", 4}, {"b", 0}, {"A", 1}};
  DatasetBuilder up = lettersAndSet();
  EXPECT_THAT(ordered(up, items, kOrderFile, true), ElementsAre("b", "A", "c", "$t", "$s"));
  DatasetBuilder down = lettersAndSet();
  EXPECT_THAT(ordered(down, items, kOrderFile, false), ElementsAre("$s", "$t", "c", "A", "b"));
}

TEST(Order, unknownOrderLeavesTheListUnchanged) {
  DatasetBuilder builder = lettersAndSet();
  EXPECT_THAT(ordered(builder, kLetters, static_cast<VarOrder>(9), false), ElementsAre("b", "A", "a", "$s"));
}

}  // namespace
}  // namespace codebook::test
