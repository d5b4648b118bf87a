#include "host/data/datasource.h"

#include <memory>

#include <gtest/gtest.h>

#include "runtime/data/builder.h"

namespace {

using runtime::data::DatasetBuilder;

/// A dataset whose number of cases is made up.
class CountedDataset : public runtime::data::Dataset {
 public:
  explicit CountedDataset(std::int64_t count) : Dataset(runtime::data::Dictionary()), fCount(count) {}
  std::unique_ptr<CaseCursor> NewCursor() const override { return nullptr; }
  std::int64_t caseCount() const override { return fCount; }

 private:
  std::int64_t fCount;
};

TEST(DataSource, findsVariablesWithoutRegardToCase) {
  DatasetBuilder builder;
  builder.AddNumeric("Größe", {1});
  builder.AddString("b", {"x"});
  const MAVO_DataSource source(builder.Build());
  EXPECT_EQ(source.ColumnCount(), 2U);
  EXPECT_EQ(source.FindVarIndex("GRÖßE", 0), 0);
  EXPECT_EQ(source.FindVarIndex("B", 0), 1);
  EXPECT_EQ(source.FindVarIndex("c", 0), -1);
  EXPECT_STREQ(source.GetVariable(1).GetName(), "b");
}

TEST(DataSource, listsSetsInTheSameOrderBothWays) {
  DatasetBuilder builder;
  builder.AddNumeric("a", {1});
  builder.AddNumeric("b", {1});
  builder.AddDichotomySet("$z", {"a", "b"}, "1", "Z", true);
  builder.AddCategorySet("$y", {"b"});
  const MAVO_DataSource source(builder.Build());
  const std::vector<VariableSetImpl> names = source.GetMRSets();
  const std::vector<VariableSet> sets = VariableSets(source, kMultipleResponseSets);
  ASSERT_EQ(names.size(), 2U);
  ASSERT_EQ(sets.size(), 2U);
  EXPECT_EQ(names[0].Name(), "$z");
  EXPECT_EQ(sets[0].GetName(kKeepCase), "$z");
  EXPECT_EQ(sets[0].GetType(), VariableSet::kDichotomySet);
  EXPECT_EQ(sets[0].GetValue(), "1");
  EXPECT_TRUE(sets[0].qIsEnhancedDichotomy());
  EXPECT_TRUE(sets[0].qUseVariableCategoryLabels());
  EXPECT_EQ(sets[1].GetType(), VariableSet::kCategorySet);
  EXPECT_EQ(sets[1].GetVariableNames(kKeepCase), std::vector<std::string>{"b"});
  EXPECT_EQ(sets[1].GetLabel(), "");
}

TEST(DataSource, ofADatasetWithoutSetsHasEmptyLists) {
  DatasetBuilder builder;
  builder.AddNumeric("a", {1});
  const MAVO_DataSource source(builder.Build());
  EXPECT_TRUE(source.GetMRSets().empty());
  EXPECT_TRUE(VariableSets(source, kMultipleResponseSets).empty());
  EXPECT_TRUE(GetDocuments(source).empty());
  EXPECT_EQ(source.GetFileSpec(), nullptr);
  EXPECT_EQ(source.GetLabel(), nullptr);
  EXPECT_EQ(source.WeightIndex(), -1);
}

TEST(DataSource, givesDocumentsAndAttributesInOrder) {
  DatasetBuilder builder;
  builder.AddNumeric("a", {1});
  builder.AddDocument({"one", "two"}).AddDocument({}).Attribute("B", {"x", "y"}).Attribute("A", {""}).Label("L");
  const MAVO_DataSource source(builder.Build());
  const std::vector<DSDocument> documents = GetDocuments(source);
  ASSERT_EQ(documents.size(), 2U);
  EXPECT_EQ(documents[0].Size(), 2U);
  EXPECT_EQ(documents[0][1], "two");
  EXPECT_EQ(documents[1].Size(), 0U);
  EXPECT_EQ(source.GetAttributes().Name(0), "B");
  EXPECT_EQ(source.GetAttributes().Values(0), (std::vector<std::string>{"x", "y"}));
  EXPECT_EQ(source.GetAttributes().Name(1), "A");
  EXPECT_STREQ(source.GetLabel(), "L");
}

TEST(DataSource, walksTheCases) {
  DatasetBuilder builder;
  builder.AddNumeric("a", {1, 2, 3});
  MAVO_DataSource source(builder.Build());
  const std::unique_ptr<MAVO_InputCaseIterator> iterator(source.NewCaseIterator(0));
  int cases = 0;
  while (iterator->NextCase() != 0) ++cases;
  EXPECT_EQ(cases, 3);
  EXPECT_EQ(source.NumberOfCases(), 3);
}

TEST(DataSource, saysANegativeNumberOfCasesWhenItIsNotKnown) {
  EXPECT_LT(MAVO_DataSource(std::make_shared<CountedDataset>(-1)).NumberOfCases(), 0);
  EXPECT_LT(MAVO_DataSource(std::make_shared<CountedDataset>(std::int64_t{1} << 31)).NumberOfCases(), 0);
  EXPECT_EQ(MAVO_DataSource(std::make_shared<CountedDataset>((std::int64_t{1} << 31) - 1)).NumberOfCases(), 2147483647);
}

TEST(DataSource, withoutADatasetIsEmpty) {
  MAVO_DataSource source(nullptr);
  EXPECT_EQ(source.ColumnCount(), 0U);
  EXPECT_EQ(source.FindVarIndex("a", 0), -1);
  EXPECT_TRUE(source.GetMRSets().empty());
  EXPECT_EQ(source.GetAttributes().Size(), 0U);
  EXPECT_LT(source.NumberOfCases(), 0);
  EXPECT_EQ(source.NewCaseIterator(0), nullptr);
}

}  // namespace
