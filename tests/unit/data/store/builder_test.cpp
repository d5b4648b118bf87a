#include "runtime/data/builder.h"

#include <stdexcept>
#include <string>

#include <gtest/gtest.h>

#include "host/data/datasource.h"

#include "runtime/data/store/columnardataset.h"

namespace runtime::data {
namespace {

TEST(DatasetBuilder, describesVariables) {
  DatasetBuilder builder;
  builder.AddNumeric("age", {1, 2})
      .Label("Age")
      .ValueLabel(2, "two")
      .ValueLabel(1, "one")
      .ValueLabel(1, "once more")
      .Missing(-9)
      .MissingRange(90, 99)
      .Format(kFormatF, 2)
      .Level(MAVO_Variable_Enumerations::kLevelOrdinal)
      .Role(MAVO_Variable_Enumerations::kRoleTarget)
      .Attribute("a", {"1", "2"});
  builder.AddString("name", {"Ann  ", "Bob"}).Missing("").ValueLabel("Ann", "Anna");
  const auto dataset = builder.Build();
  MAVO_DataSource source(dataset);

  const MAVO_Variable& age = source.GetVariable(0);
  EXPECT_STREQ(age.GetLabel(), "Age");
  EXPECT_EQ(age.GetType(), 0);
  MAVO_ValueLabelMap labels(age.GetValueLabels());
  EXPECT_EQ(labels.Size(), 2U);
  EXPECT_STREQ(labels.GetLabel("1"), "one");
  EXPECT_TRUE(age.GetMissingRule().holds(95));
  EXPECT_EQ(age.GetMeasurementLevel(), MAVO_Variable_Enumerations::kLevelOrdinal);
  EXPECT_EQ(age.GetRole(), MAVO_Variable_Enumerations::kRoleTarget);
  EXPECT_EQ(age.GetAttributes().Size(), 1U);
  EXPECT_EQ(age.GetWriteFormatEx().width, 2);

  const MAVO_Variable& name = source.GetVariable(1);
  EXPECT_EQ(name.GetType(), 3);
  EXPECT_EQ(MAVO_ValueLabelMap(name.GetValueLabels()).Size(), 1U);
  EXPECT_EQ(name.GetMeasurementLevel(), MAVO_Variable_Enumerations::kLevelNominal);
  EXPECT_EQ(source.FindVarIndex("NAME", 0), 1);
  EXPECT_EQ(source.NumberOfCases(), 2);
}

TEST(DatasetBuilder, refusesColumnsOfDifferentLength) {
  DatasetBuilder builder;
  builder.AddNumeric("x", {1, 2});
  builder.AddNumeric("y", {1});
  EXPECT_THROW(builder.Build(), std::invalid_argument);
}

TEST(DatasetBuilder, refusesAWeightThatIsUnknownOrAString) {
  DatasetBuilder unknown;
  unknown.AddNumeric("x", {1}).Label("X");
  unknown.Weight("w");
  EXPECT_THROW(unknown.Build(), std::invalid_argument);
  DatasetBuilder text;
  text.AddString("w", {"1"});
  text.Weight("w");
  EXPECT_THROW(text.Build(), std::invalid_argument);
}

TEST(DatasetBuilder, keepsSetsDocumentsAndFileFacts) {
  DatasetBuilder builder;
  builder.AddNumeric("a", {1}).Label("A");
  builder.AddNumeric("b", {0});
  builder.AddDichotomySet("$d", {"a", "b"}, "1", "Both").AddCategorySet("$c", {"a", "b"});
  builder.FileSpec("/tmp\\x.csv").Label("File").AddDocument({"one", "two"}).Attribute("Source", {"us"});
  MAVO_DataSource source(builder.Build());
  ASSERT_EQ(source.GetMRSets().size(), 2U);
  const auto sets = VariableSets(source, kMultipleResponseSets);
  EXPECT_EQ(sets[0].GetType(), VariableSet::kDichotomySet);
  EXPECT_EQ(sets[0].GetValue(), "1");
  EXPECT_EQ(sets[1].GetType(), VariableSet::kCategorySet);
  EXPECT_STREQ(source.GetFileSpec(), "/tmp\\x.csv");
  EXPECT_STREQ(source.GetLabel(), "File");
  EXPECT_EQ(GetDocuments(source).size(), 1U);
  EXPECT_EQ(source.GetAttributes().Size(), 1U);
}

}  // namespace
}  // namespace runtime::data
