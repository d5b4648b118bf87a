#include "runtime/data/comparing/comparedtable.h"

#include <limits>
#include <string>
#include <vector>

#include <gmock/gmock.h>

#include "runtime/data/builder.h"
#include "runtime/data/comparing/comparetables.h"
#include "runtime/data/dictionary/writing/describe.h"

namespace runtime::data {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

std::vector<std::string> LabelsOf(const ComparedVariable& variable) {
  std::vector<std::string> labels;
  for (const ComparedLabel& label : variable.labels) labels.push_back(label.value + "=" + label.label);
  return labels;
}

class DatasetToCompare : public testing::Test {
 protected:
  DatasetToCompare() {
    fBuilder.AddNumeric("age", {1, 2})
        .Label("Age")
        .ValueLabel(-9.5, "Refused")
        .ValueLabel(1e6, "Many")
        .Missing(-9.5)
        .MissingRange(-std::numeric_limits<double>::infinity(), -100)
        .Level(MAVO_Variable_Enumerations::kLevelScale)
        .Role(MAVO_Variable_Enumerations::kRoleTarget)
        .Attribute("Note", {"a", "b"});
    fBuilder.AddString("sex", {"m", "f"}).Width(8).ValueLabel("m", "Male").Missing("");
    fBuilder.AddNumeric("day", {0, 1}).Format(kFormatSDate, 10);
    fBuilder.AddDichotomySet("$s", {"age", "day"}, "1", "Set");
    fBuilder.Weight("age").Label("File").AddDocument({"one", "two"}).AddDocument({"three"});
    fDataset = fBuilder.Build();
  }

  const Dictionary& dictionary() const { return fDataset->dictionary(); }

  DatasetBuilder fBuilder;
  std::shared_ptr<const Dataset> fDataset;
};

TEST_F(DatasetToCompare, saysAllThatItsDictionaryHas) {
  const ComparedTable table = TableToCompare(dictionary(), nullptr);
  EXPECT_FALSE(table.isDictionaryAlone);
  EXPECT_EQ(table.label, "File");
  EXPECT_EQ(table.weight, "age");
  EXPECT_EQ(table.documents, "one\ntwo\n\nthree\n");
  ASSERT_EQ(table.variables.size(), 3U);
  const ComparedVariable& age = table.variables[0];
  EXPECT_EQ(age.label, "Age");
  EXPECT_EQ(age.type, ComparedType::Numeric);
  EXPECT_EQ(age.level, "scale");
  EXPECT_EQ(age.role, "target");
  EXPECT_THAT(LabelsOf(age), ElementsAre("-9.5=Refused", "1000000=Many"));
  EXPECT_THAT(age.missing, ElementsAre("-9.5", "LO..-100"));
  EXPECT_THAT(age.attributes, ElementsAre(testing::Pair("Note", "a\nb")));
  EXPECT_EQ(table.variables[1].type, ComparedType::String);
  EXPECT_THAT(LabelsOf(table.variables[1]), ElementsAre("m=Male"));
  EXPECT_THAT(table.variables[1].missing, ElementsAre(""));
  EXPECT_EQ(table.variables[2].type, ComparedType::Date);
  ASSERT_EQ(table.sets.size(), 1U);
  EXPECT_EQ(table.sets[0].name, "$s");
  EXPECT_EQ(table.sets[0].countedValue, "1");
  EXPECT_THAT(table.sets[0].variables, ElementsAre("age", "day"));
}

TEST_F(DatasetToCompare, saysNoFormatsThatFollowFromTheCells) {
  EXPECT_FALSE(TableToCompare(dictionary(), nullptr).variables[0].format);
  TableDescriptor source = Describe(dictionary(), {}, nullptr);
  source.fields[1].format.reset();
  const ComparedTable table = TableToCompare(dictionary(), &source);
  EXPECT_EQ(table.variables[0].format, "F8.2");
  EXPECT_FALSE(table.variables[1].format);
  EXPECT_EQ(table.variables[2].format, "SDATE10");
}

TEST_F(DatasetToCompare, isTheSameAsTheDictionaryFileThatDescribesIt) {
  const TableDescriptor description = Describe(dictionary(), {}, nullptr);
  const ComparedTable alone = TableToCompare(description);
  EXPECT_TRUE(alone.isDictionaryAlone);
  const ComparedTable dataset = TableToCompare(dictionary(), &description);
  const Comparison comparison = CompareTables(dataset, alone);
  EXPECT_FALSE(comparison.differs());
  EXPECT_EQ(comparison.variables.size(), 3U);
}

TEST(DictionaryFileToCompare, saysNoMoreThanTheFile) {
  TableDescriptor descriptor;
  descriptor.fields.resize(2);
  descriptor.fields[0].name = "plain";
  descriptor.fields[1].name = "year of birth";
  descriptor.weight = "year of birth";
  const ComparedTable table = TableToCompare(descriptor);
  EXPECT_FALSE(table.variables[0].label);
  EXPECT_FALSE(table.variables[0].type);
  EXPECT_FALSE(table.variables[0].format);
  EXPECT_FALSE(table.variables[0].level);
  EXPECT_FALSE(table.variables[0].role);
  EXPECT_EQ(table.variables[1].name, "year_of_birth");
  EXPECT_EQ(table.variables[1].label, "year of birth");
  EXPECT_EQ(table.weight, "year_of_birth");
}

TEST(DictionaryFileToCompare, takesTheValuesOfAFieldWithoutTypeAsTheyAre) {
  TableDescriptor descriptor;
  descriptor.fields.resize(2);
  descriptor.fields[0].name = "number";
  descriptor.fields[0].valueLabels = {{"01", false, "One"}, {"2.0", false, "Two"}};
  descriptor.fields[1].name = "text";
  descriptor.fields[1].valueLabels = {{"01", false, "One"}, {"b", false, "Two"}};
  const ComparedTable table = TableToCompare(descriptor);
  EXPECT_THAT(LabelsOf(table.variables[0]), ElementsAre("1=One", "2=Two"));
  EXPECT_THAT(LabelsOf(table.variables[1]), ElementsAre("01=One", "b=Two"));
}

}  // namespace
}  // namespace runtime::data
