#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/unit/data/dictionary/described.h"

namespace runtime::data {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

const std::vector<ColumnFacts>& Columns() {
  static const std::vector<ColumnFacts> columns = {NumberColumn("q1 a", FieldType::Integer),
                                                   NumberColumn("q1 b", FieldType::Integer), StringColumn("s1", 3),
                                                   StringColumn("s2", 3), NumberColumn("b1", FieldType::Boolean)};
  return columns;
}

std::string SchemaWith(const std::string& sets, const std::string& s2 = R"("type":"string")") {
  return R"({"fields":[{"name":"q1 a","type":"integer"},{"name":"q1 b","type":"integer"},{"name":"s1","type":"string"},
      {"name":"s2",)" +
         s2 + R"(},{"name":"b1","type":"boolean","trueValues":["yes"],"falseValues":["no"]}],
      "codebook":{"multipleResponseSets":[)" +
         sets + "]}}";
}

Described WithSets(const std::string& sets) { return Describe(SchemaWith(sets), Columns()); }
std::string SetError(const std::string& sets) { return ErrorOf(SchemaWith(sets), Columns()); }

TEST(Sets, resolveTheirMembersByFieldOrVariableName) {
  const Described all =
      WithSets(R"({"name":"$q1","label":"Q1","type":"dichotomy","variables":["q1 b","Q1_A"],"countedValue":"1"})");
  ASSERT_EQ(all.dictionary.sets.size(), 1U);
  const VariableSet& set = all.dictionary.sets[0];
  EXPECT_EQ(set.GetName(kKeepCase), "$q1");
  EXPECT_EQ(set.GetLabel(), "Q1");
  EXPECT_EQ(set.GetType(), VariableSet::kDichotomySet);
  EXPECT_THAT(set.GetVariableNames(kKeepCase), ElementsAre("q1_b", "q1_a"));
  EXPECT_EQ(set.GetValue(), "1");
  EXPECT_FALSE(set.qIsEnhancedDichotomy());
  EXPECT_TRUE(all.notes.empty());
}

TEST(Sets, canBeCategorySetsAndLabelledByCountedValues) {
  const Described all = WithSets(R"({"name":"$c","type":"category","variables":["s1","s2"]},
      {"name":"$d","type":"dichotomy","variables":["q1 a"],"countedValue":2,"categoryLabels":"countedValues"},
      {"name":"$e","type":"dichotomy","variables":["q1 a","q1 a"],"countedValue":"2","categoryLabels":"variableLabels"})");
  EXPECT_EQ(all.dictionary.sets[0].GetType(), VariableSet::kCategorySet);
  EXPECT_EQ(all.dictionary.sets[0].GetLabel(), "");
  EXPECT_EQ(all.dictionary.sets[1].GetValue(), "2");
  EXPECT_TRUE(all.dictionary.sets[1].qIsEnhancedDichotomy());
  EXPECT_TRUE(all.dictionary.sets[1].qUseVariableCategoryLabels());
  EXPECT_FALSE(all.dictionary.sets[2].qUseVariableCategoryLabels());
  EXPECT_EQ(all.dictionary.sets[2].GetVariableNames(kKeepCase).size(), 2U);
}

TEST(Sets, getWellFormedNamesThatNoOtherHas) {
  const Described all = WithSets(R"({"name":"langs","type":"category","variables":["s1"]},
      {"name":"$Langs","type":"category","variables":["s1"]},{"name":"$1 a","type":"category","variables":["s1"]})");
  EXPECT_EQ(all.dictionary.sets[0].GetName(kKeepCase), "$langs");
  EXPECT_EQ(all.dictionary.sets[1].GetName(kKeepCase), "$Langs_2");
  EXPECT_EQ(all.dictionary.sets[2].GetName(kKeepCase), "$@1_a");
  EXPECT_EQ(all.notes.size(), 3U);
}

TEST(Sets, readATruthValueOfBooleansAsItsNumber) {
  const auto counted = [](const std::string& value) {
    return WithSets(R"({"name":"$b","type":"dichotomy","variables":["b1"],"countedValue":)" + value + "}")
        .dictionary.sets[0]
        .GetValue();
  };
  EXPECT_EQ(counted(R"("yes")"), "1");
  EXPECT_EQ(counted(R"("1")"), "1");
  EXPECT_EQ(counted("0"), "0");
}

TEST(Sets, withUnknownMembersAreErrors) {
  EXPECT_THAT(SetError(R"({"name":"$a","type":"category","variables":["s1","s9"]})"),
              HasSubstr("multiple response set \"$a\": there is no variable \"s9\""));
}

TEST(Sets, ofNumericAndStringMembersAreErrors) {
  EXPECT_THAT(SetError(R"({"name":"$a","type":"category","variables":["s1","b1"]})"),
              HasSubstr("\"s1\" and \"b1\" are not of one kind"));
}

TEST(Sets, ofNumericMembersNeedANumberToCount) {
  EXPECT_THAT(SetError(R"({"name":"$a","type":"dichotomy","variables":["q1 a"],"countedValue":"yes"})"),
              HasSubstr("the counted value \"yes\" is no number"));
}

TEST(Sets, thatAreNotWholeAreErrorsAtTheirPlace) {
  const std::vector<std::pair<std::string, std::string>> cases = {
      {R"({"type":"category","variables":["s1"]})", "/0: the property \"name\" is missing"},
      {R"({"name":"","type":"category","variables":["s1"]})", "/0/name: a set needs a name"},
      {R"({"name":"$","type":"category","variables":["s1"]})", "/0/name: a set needs a name"},
      {R"({"name":"$a","variables":["s1"]})", "/0: the property \"type\" is missing"},
      {R"({"name":"$a","type":"multiple","variables":["s1"]})", "\"multiple\" is no type of set"},
      {R"({"name":"$a","type":"category"})", "the property \"variables\" is missing"},
      {R"({"name":"$a","type":"category","variables":[]})", "/0/variables: a set needs at least one variable"},
      {R"({"name":"$a","type":"category","variables":"s1"})", "/0/variables: this must be a list"},
      {R"({"name":"$a","type":"dichotomy","variables":["s1"]})", "needs \"countedValue\""},
      {R"({"name":"$a","type":"category","variables":["s1"],"categoryLabels":"x"})", "/0/categoryLabels: "},
  };
  for (const auto& [set, problem] : cases) EXPECT_THAT(SetError(set), HasSubstr(problem)) << set;
}

TEST(Sets, warnOfMembersPrintedInHexadecimal) {
  const Described all =
      Describe(SchemaWith(R"({"name":"$a","type":"dichotomy","variables":["s1","s2"],"countedValue":"yes"})",
                          R"("type":"string","codebook":{"format":"AHEX6"})"),
               Columns());
  ASSERT_EQ(all.notes.size(), 1U);
  EXPECT_THAT(all.notes[0].text, HasSubstr("\"s2\" is printed in hexadecimal"));
}

}  // namespace
}  // namespace runtime::data
