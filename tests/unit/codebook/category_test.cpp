// What one item is in the dictionary.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "codebook/cbkcategory.h"
#include "codebook/parser/cbksettings.h"
#include "runtime/data/builder.h"

namespace codebook::test {
namespace {

using runtime::data::DatasetBuilder;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

std::string bytesOf(const CategoryDescriptor& descriptor) {
  return std::string(descriptor.countedValue.front().bytes, descriptor.countedValue.size() * sizeof(OBS));
}

DatasetBuilder twoNumbers() {
  DatasetBuilder builder;
  builder.AddNumeric("one", {1}).Label("First").ValueLabel(1, "yes").ValueLabel(0, "no");
  builder.AddNumeric("two", {1}).ValueLabel(1, "ticked");
  return builder;
}

TEST(CategoryCollection, describesAVariableByItsIndex) {
  DatasetBuilder builder = twoNumbers();
  MAVO_DataSource source(builder.Build());
  CategoryDescriptor descriptor;
  EXPECT_TRUE(DescribeVariable(descriptor, &source, 1));
  EXPECT_EQ(descriptor.kind, kVariableItem);
  EXPECT_EQ(descriptor.index, 1);
  EXPECT_EQ(descriptor.dataSource, &source);
  EXPECT_EQ(descriptor.variable, &source.GetVariable(1));
  EXPECT_EQ(descriptor.categoryCount, 1);
}

TEST(CategoryCollection, withoutADataSourceOrAnIndexNothingIsDescribed) {
  DatasetBuilder builder = twoNumbers();
  MAVO_DataSource source(builder.Build());
  CategoryDescriptor descriptor;
  EXPECT_FALSE(DescribeVariable(descriptor, nullptr, 0));
  EXPECT_FALSE(DescribeVariable(descriptor, &source, -1));
  EXPECT_EQ(DescribeItemByName(descriptor, nullptr, "one"), 0);
  EXPECT_EQ(descriptor.kind, kNoItem);
}

TEST(CategoryCollection, nameOfAVariableDescribesTheVariable) {
  DatasetBuilder builder = twoNumbers();
  MAVO_DataSource source(builder.Build());
  CategoryDescriptor descriptor;
  EXPECT_EQ(DescribeItemByName(descriptor, &source, "ONE"), 1);
  EXPECT_EQ(descriptor.kind, kVariableItem);
  EXPECT_EQ(descriptor.index, 0);
  EXPECT_EQ(descriptor.categoryCount, 2);
}

TEST(CategoryCollection, setResolvesInOtherLetterCaseAndKeepsTheDictionarysSpelling) {
  DatasetBuilder builder = twoNumbers();
  builder.AddCategorySet("$Other", {"one"});
  builder.AddCategorySet("$Media", {"two", "one"});
  MAVO_DataSource source(builder.Build());
  CategoryDescriptor descriptor;
  EXPECT_EQ(DescribeItemByName(descriptor, &source, "$mEDIA"), 1);
  EXPECT_EQ(descriptor.text, "$Media");
  EXPECT_EQ(descriptor.label, "");
  EXPECT_EQ(descriptor.index, 3);  // behind two variables, the second set
  EXPECT_THAT(descriptor.memberIndices, ElementsAre(1, 0));
}

TEST(CategoryCollection, dollarNameOfNothingGivesZero) {
  DatasetBuilder builder = twoNumbers();
  builder.AddCategorySet("$Media", {"one"});
  MAVO_DataSource source(builder.Build());
  CategoryDescriptor descriptor;
  EXPECT_EQ(DescribeItemByName(descriptor, &source, "$Nobody"), 0);
  EXPECT_EQ(DescribeItemByName(descriptor, &source, "nobody"), 0);
  EXPECT_EQ(descriptor.kind, kNoItem);
}

TEST(CategoryCollection, datasetWithoutSetsListsNone) {
  DatasetBuilder builder = twoNumbers();
  MAVO_DataSource source(builder.Build());
  EXPECT_THAT(source.GetMRSets(), IsEmpty());
  EXPECT_THAT(VariableSets(source, kMultipleResponseSets), IsEmpty());
  CategoryDescriptor descriptor;
  EXPECT_EQ(DescribeItemByName(descriptor, &source, "$any"), 0);
}

TEST(CategoryCollection, numericDichotomySetCountsTheNumberOfItsText) {
  DatasetBuilder builder = twoNumbers();
  builder.AddDichotomySet("$yes", {"one", "two"}, "1");
  builder.AddDichotomySet("$text", {"one", "two"}, "yes");
  MAVO_DataSource source(builder.Build());
  CategoryDescriptor one;
  EXPECT_EQ(DescribeItemByName(one, &source, "$yes"), 1);
  ASSERT_EQ(one.countedValue.size(), 1U);
  EXPECT_EQ(one.countedValue.front().number, 1.0);
  EXPECT_EQ(one.countedValueWidth, 8);
  CategoryDescriptor text;
  EXPECT_EQ(DescribeItemByName(text, &source, "$text"), 1);
  EXPECT_EQ(text.countedValue.front().number, 0.0);
  EXPECT_EQ(text.countedValueWidth, 8);
}

// The width is 8 (bytes) for a number and a number of 8-byte units for text: two measures, meant so.
TEST(CategoryCollection, stringCountedValueIsMeasuredInUnitsOfEightBytes) {
  DatasetBuilder builder;
  builder.AddString("narrow", {"abc"}).Width(3);
  builder.AddString("wide", {"abc"}).Width(12);
  builder.AddDichotomySet("$s", {"narrow", "wide"}, "yes");
  MAVO_DataSource source(builder.Build());
  CategoryDescriptor descriptor;
  EXPECT_EQ(DescribeItemByName(descriptor, &source, "$s"), 1);
  EXPECT_EQ(descriptor.countedValueWidth, 2);
  EXPECT_EQ(bytesOf(descriptor), "yes             ");
}

TEST(CategoryCollection, stringCountedValueOfEightBytesOrLessTakesOneUnit) {
  for (const int width : {1, 8}) {
    DatasetBuilder builder;
    builder.AddString("s", {"a"}).Width(width);
    builder.AddDichotomySet("$s", {"s"}, "a");
    MAVO_DataSource source(builder.Build());
    CategoryDescriptor descriptor;
    EXPECT_EQ(DescribeItemByName(descriptor, &source, "$s"), 1);
    EXPECT_EQ(descriptor.countedValueWidth, 1) << width;
    EXPECT_EQ(bytesOf(descriptor), "a       ") << width;
  }
}

TEST(CategoryCollection, dichotomySetWithoutMembersCountsANumber) {
  DatasetBuilder builder = twoNumbers();
  builder.AddDichotomySet("$empty", {"nobody"}, "1");
  MAVO_DataSource source(builder.Build());
  CategoryDescriptor descriptor;
  EXPECT_EQ(DescribeItemByName(descriptor, &source, "$empty"), 1);
  EXPECT_EQ(descriptor.kind, kDichotomySetItem);
  EXPECT_THAT(descriptor.memberIndices, IsEmpty());
  EXPECT_EQ(descriptor.categoryCount, 0);
  EXPECT_EQ(descriptor.countedValueWidth, 8);
}

TEST(CategoryCollection, numericMembersOfADichotomySetCountWithTheLengthOfTheirNames) {
  DatasetBuilder builder;
  builder.AddNumeric("abc", {1});
  builder.AddNumeric("abcdefghij", {1});
  builder.AddDichotomySet("$s", {"abc", "abcdefghij"}, "1");
  MAVO_DataSource source(builder.Build());
  CategoryDescriptor descriptor;
  DescribeItemByName(descriptor, &source, "$s");
  EXPECT_EQ(ItemValueWidth(descriptor), 10);
}

TEST(CategoryCollection, categorySetCountsTheLabelsOfItsFirstMemberOnly) {
  DatasetBuilder builder = twoNumbers();
  builder.AddCategorySet("$a", {"two", "one"});
  builder.AddCategorySet("$b", {"one", "two"});
  MAVO_DataSource source(builder.Build());
  CategoryDescriptor a;
  DescribeItemByName(a, &source, "$a");
  EXPECT_EQ(a.kind, kCategorySetItem);
  EXPECT_EQ(a.categoryCount, 1);
  CategoryDescriptor b;
  DescribeItemByName(b, &source, "$b");
  EXPECT_EQ(b.categoryCount, 2);
}

TEST(CategoryCollection, categorySetWithoutResolvedMemberHasNoCategories) {
  DatasetBuilder builder = twoNumbers();
  builder.AddCategorySet("$a", {"nobody"}, "Label");
  MAVO_DataSource source(builder.Build());
  CategoryDescriptor descriptor;
  EXPECT_EQ(DescribeItemByName(descriptor, &source, "$a"), 1);
  EXPECT_EQ(descriptor.categoryCount, 0);
  EXPECT_EQ(descriptor.text, "Label");
  EXPECT_EQ(descriptor.label, "Label");
  EXPECT_EQ(ItemValueWidth(descriptor), 0);
  EXPECT_FALSE(IsStringItem(descriptor));
}

TEST(CategoryCollection, unresolvedMembersAreLeftOut) {
  DatasetBuilder builder = twoNumbers();
  builder.AddDichotomySet("$s", {"nobody", "TWO", "nor_he", "one"}, "1");
  MAVO_DataSource source(builder.Build());
  CategoryDescriptor descriptor;
  DescribeItemByName(descriptor, &source, "$s");
  EXPECT_THAT(descriptor.memberIndices, ElementsAre(1, 0));
  EXPECT_EQ(descriptor.categoryCount, 2);
}

TEST(CategoryCollection, setOfAnyOtherTypeNeedsNothingFurther) {
  DatasetBuilder builder = twoNumbers();
  VariableSet set;
  set.SetName("$plain");
  set.SetLabel("Plain");
  set.SetVariableNames({"two"});
  builder.AddSet(set);
  MAVO_DataSource source(builder.Build());
  CategoryDescriptor descriptor;
  EXPECT_EQ(DescribeItemByName(descriptor, &source, "$plain"), 1);
  EXPECT_EQ(descriptor.kind, kNoItem);
  EXPECT_EQ(descriptor.label, "Plain");
  EXPECT_EQ(descriptor.text, "");
  EXPECT_EQ(descriptor.index, 2);
  EXPECT_THAT(descriptor.memberIndices, ElementsAre(1));
  EXPECT_EQ(ItemValueWidth(descriptor), 0);
  EXPECT_FALSE(IsStringItem(descriptor));
  EXPECT_EQ(CategoryLabel(descriptor, "1", nullptr), "");
}

TEST(CategoryCollection, widthOfAVariableIsThatOfItsPlainStringFormat) {
  DatasetBuilder builder;
  builder.AddString("s", {"abc"}).Width(5);
  builder.AddString("hex", {"abc"}).Format(kFormatAHex, 6);
  builder.AddNumeric("n", {1});
  builder.AddCategorySet("$s", {"s", "n"});
  builder.AddCategorySet("$n", {"n", "s"});
  MAVO_DataSource source(builder.Build());
  const auto describe = [&source](const std::string& name) {
    CategoryDescriptor descriptor;
    DescribeItemByName(descriptor, &source, name);
    return descriptor;
  };
  EXPECT_EQ(ItemValueWidth(describe("s")), 5);
  EXPECT_TRUE(IsStringItem(describe("s")));
  EXPECT_EQ(ItemValueWidth(describe("hex")), 0);
  EXPECT_FALSE(IsStringItem(describe("hex")));
  EXPECT_EQ(ItemValueWidth(describe("n")), 0);
  EXPECT_FALSE(IsStringItem(describe("n")));
  EXPECT_EQ(ItemValueWidth(describe("$s")), 5);
  EXPECT_TRUE(IsStringItem(describe("$s")));
  EXPECT_EQ(ItemValueWidth(describe("$n")), 0);
  EXPECT_FALSE(IsStringItem(describe("$n")));
}

TEST(CategoryCollection, widthOfADichotomySetIsTheLargestOfItsMembers) {
  DatasetBuilder builder;
  builder.AddString("s", {"a"}).Width(12);
  builder.AddNumeric("abc", {1});
  builder.AddDichotomySet("$s", {"abc", "s"}, "1");
  MAVO_DataSource source(builder.Build());
  CategoryDescriptor descriptor;
  DescribeItemByName(descriptor, &source, "$s");
  EXPECT_EQ(ItemValueWidth(descriptor), 12);
  EXPECT_FALSE(IsStringItem(descriptor));  // the first member is numeric
}

TEST(CategoryCollection, categoryLabelsFlagComesFromTheDictionary) {
  DatasetBuilder builder = twoNumbers();
  builder.AddDichotomySet("$byValue", {"one", "two"}, "1", "", true);
  builder.AddDichotomySet("$byVariable", {"one", "two"}, "1");
  MAVO_DataSource source(builder.Build());
  CategoryDescriptor byValue;
  DescribeItemByName(byValue, &source, "$byValue");
  EXPECT_TRUE(byValue.useCategoryLabels);
  CategoryDescriptor byVariable;
  DescribeItemByName(byVariable, &source, "$byVariable");
  EXPECT_FALSE(byVariable.useCategoryLabels);
}

TEST(CategoryLabel, ofAVariableIsItsValueLabel) {
  DatasetBuilder builder = twoNumbers();
  MAVO_DataSource source(builder.Build());
  CategoryDescriptor descriptor;
  DescribeVariable(descriptor, &source, 0);
  OBS value;
  value.number = 1.0;
  EXPECT_EQ(CategoryLabel(descriptor, "0", &value), "yes");  // the value counts before the text
  EXPECT_EQ(CategoryLabel(descriptor, "0", nullptr), "no");
  value.number = 7.0;
  EXPECT_EQ(CategoryLabel(descriptor, "", &value), "");
}

TEST(CategoryLabel, ofACategorySetComesFromTheFirstMemberThatHasOne) {
  DatasetBuilder builder;
  builder.AddNumeric("p", {1}).ValueLabel(1, "radio");
  builder.AddNumeric("q", {1}).ValueLabel(1, "wireless").ValueLabel(2, "press");
  builder.AddCategorySet("$s", {"p", "q"});
  MAVO_DataSource source(builder.Build());
  CategoryDescriptor descriptor;
  DescribeItemByName(descriptor, &source, "$s");
  EXPECT_EQ(CategoryLabel(descriptor, "1", nullptr), "radio");
  EXPECT_EQ(CategoryLabel(descriptor, "2", nullptr), "press");
  EXPECT_EQ(CategoryLabel(descriptor, "3", nullptr), "");
}

TEST(CategoryLabel, ofADichotomySetIsTheMembersLabel) {
  DatasetBuilder builder = twoNumbers();
  builder.AddDichotomySet("$s", {"one", "two"}, "1");
  MAVO_DataSource source(builder.Build());
  CategoryDescriptor descriptor;
  DescribeItemByName(descriptor, &source, "$s");
  EXPECT_EQ(CategoryLabel(descriptor, "ONE", nullptr), "First");
  EXPECT_EQ(CategoryLabel(descriptor, "two", nullptr), "");  // no label of its own
  EXPECT_EQ(CategoryLabel(descriptor, "nobody", nullptr), "");
}

TEST(CategoryLabel, ofADichotomySetTakesTheNameFromTheCharactersOfTheValue) {
  DatasetBuilder builder = twoNumbers();
  builder.AddDichotomySet("$s", {"one", "two"}, "1");
  MAVO_DataSource source(builder.Build());
  CategoryDescriptor descriptor;
  DescribeItemByName(descriptor, &source, "$s");
  OBS value;
  std::fill(std::begin(value.bytes), std::end(value.bytes), ' ');
  value.bytes[0] = 'o';
  value.bytes[1] = 'n';
  value.bytes[2] = 'e';
  EXPECT_EQ(CategoryLabel(descriptor, "two", &value), "First");
}

TEST(CategoryLabel, ofADichotomySetByValueIsTheLabelOfTheCountedValue) {
  DatasetBuilder builder = twoNumbers();
  builder.AddDichotomySet("$s", {"one", "two"}, "1", "", true);
  MAVO_DataSource source(builder.Build());
  CategoryDescriptor descriptor;
  DescribeItemByName(descriptor, &source, "$s");
  EXPECT_EQ(CategoryLabel(descriptor, "one", nullptr), "yes");
  EXPECT_EQ(CategoryLabel(descriptor, "two", nullptr), "ticked");
  descriptor.countedValue.clear();
  EXPECT_EQ(CategoryLabel(descriptor, "one", nullptr), "");
}

TEST(CategoryLabel, ofAStringDichotomySetByValueWorksForMembersOfDifferentWidth) {
  DatasetBuilder builder;
  builder.AddString("narrow", {"y"}).Width(3).ValueLabel("y", "yes");
  builder.AddString("wide", {"y"}).Width(20).ValueLabel("y", "indeed");
  builder.AddDichotomySet("$s", {"narrow", "wide"}, "y", "", true);
  MAVO_DataSource source(builder.Build());
  CategoryDescriptor descriptor;
  DescribeItemByName(descriptor, &source, "$s");
  EXPECT_EQ(CategoryLabel(descriptor, "narrow", nullptr), "yes");
  EXPECT_EQ(CategoryLabel(descriptor, "wide", nullptr), "indeed");
}

TEST(DisplayName, isTheVariablesNameOrTheSetsText) {
  DatasetBuilder builder = twoNumbers();
  builder.AddCategorySet("$s", {"one"}, "Media used");
  MAVO_DataSource source(builder.Build());
  const auto entryOf = [&source](const std::string& name) {
    auto descriptor = std::make_unique<CategoryDescriptor>();
    DescribeItemByName(*descriptor, &source, name);
    return ItemEntry(std::move(descriptor), ItemEntry::kMainEntry);
  };
  EXPECT_EQ(displayName(entryOf("one")), "one");
  EXPECT_EQ(displayName(entryOf("$s")), "Media used");
  EXPECT_EQ(displayName(ItemEntry(nullptr, ItemEntry::kMainEntry)), "");
  auto unresolved = std::make_unique<CategoryDescriptor>();
  unresolved->kind = kVariableItem;
  EXPECT_EQ(displayName(ItemEntry(std::move(unresolved), ItemEntry::kMainEntry)), "");
}

TEST(ItemEntry, startsWithoutTreatmentAndWithoutTheValueLabelFlag) {
  ItemEntry entry(std::make_unique<CategoryDescriptor>(), ItemEntry::kValueLabelEntry);
  EXPECT_EQ(entry.positionCode(), 1);
  EXPECT_EQ(entry.treatment(), 0);
  EXPECT_FALSE(entry.valueLabelsAsCategories());
  entry.setTreatment(kNominalItem);
  entry.setValueLabelsAsCategories(true);
  EXPECT_EQ(entry.treatment(), 2);
  EXPECT_TRUE(entry.valueLabelsAsCategories());
}

}  // namespace
}  // namespace codebook::test
