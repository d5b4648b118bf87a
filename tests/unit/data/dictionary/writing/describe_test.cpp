#include "runtime/data/dictionary/writing/describe.h"

#include <memory>

#include <gtest/gtest.h>

#include "runtime/data/builder.h"
#include "runtime/data/open.h"
#include "tests/unit/data/open/datafolder.h"

namespace runtime::data {
namespace {

TEST(Describe, saysWhatWasInferred) {
  const DataFolder folder;
  OpenOptions options;
  options.path = folder.Write("d.csv", "a,b,when\n1,x,2024-01-31\n2,yy,2024-02-29\n");
  options.describe = true;
  const std::shared_ptr<const TableDescriptor> table = OpenDataset(options).description;
  ASSERT_EQ(table->fields.size(), 3U);
  EXPECT_EQ(table->fields[0].dialect.type, FieldType::Integer);
  EXPECT_EQ(table->fields[0].measure, "nominal");
  EXPECT_EQ(table->fields[0].role, "input");
  EXPECT_EQ(table->fields[1].dialect.type, FieldType::String);
  EXPECT_EQ(table->fields[1].format->width, 2);
  EXPECT_EQ(table->fields[2].dialect.type, FieldType::Date);
  EXPECT_EQ(table->dataPaths.size(), 1U);
}

TEST(Describe, keepsWhatTheDictionaryHasNoWordFor) {
  const DataFolder folder;
  folder.Write(
      "d.schema.json",
      R"({"fields": [{"name": "a b", "type": "number", "decimalChar": ",", "rdfType": "r", "constraints": {"minimum": 0}},
                              {"name": "absent", "type": "string"}], "primaryKey": "a b", "codebook": {"weight": "a b"}})");
  OpenOptions options;
  options.path = folder.Write("d.csv", "a b\n\"1,5\"\n");
  options.describe = true;
  const std::shared_ptr<const TableDescriptor> table = OpenDataset(options).description;
  ASSERT_EQ(table->fields.size(), 1U) << "a field without a column describes nothing";
  EXPECT_EQ(table->fields[0].name, "a b") << "the header, by which the field will be found again";
  EXPECT_EQ(table->fields[0].dialect.decimalChar, ",");
  EXPECT_EQ(table->fields[0].extras.size(), 2U);
  EXPECT_EQ(table->extras.size(), 1U);
  EXPECT_EQ(table->weight, "a b");
}

TEST(Describe, describesADatasetMadeInMemory) {
  DatasetBuilder builder;
  builder.AddNumeric("a", {1, 2}).ValueLabel(1, "one").Missing(-9).MissingRange(90, 99).Label("A");
  builder.AddString("s", {"long enough", "m"}).ValueLabel("m", "man").Missing("?");
  builder.AddNumeric("d", {0, 0}).Format(kFormatDateTime, 20);
  builder.AddDichotomySet("$m", {"a"}, "1", "M");
  builder.Weight("a");
  const TableDescriptor table = Describe(builder.Build()->dictionary(), {}, nullptr);
  ASSERT_EQ(table.fields.size(), 3U);
  EXPECT_EQ(table.fields[0].title, "A");
  ASSERT_EQ(table.fields[0].valueLabels.size(), 1U);
  EXPECT_EQ(table.fields[0].valueLabels[0].value, "1");
  EXPECT_EQ(table.fields[0].missingValues.back().value, "-9");
  ASSERT_EQ(table.fields[0].missingRanges.size(), 1U);
  EXPECT_EQ(table.fields[0].missingRanges[0].max, 99);
  ASSERT_EQ(table.fields[1].valueLabels.size(), 1U);
  EXPECT_EQ(table.fields[1].valueLabels[0].value, "m");
  EXPECT_EQ(table.fields[1].missingValues.back().value, "?");
  EXPECT_EQ(table.fields[2].dialect.type, FieldType::DateTime);
  ASSERT_EQ(table.sets.size(), 1U);
  EXPECT_EQ(table.sets[0].countedValue, "1");
  EXPECT_EQ(table.weight, "a");
}

}  // namespace
}  // namespace runtime::data
