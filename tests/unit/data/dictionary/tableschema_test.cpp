#include "runtime/data/dictionary/tableschema.h"

#include <limits>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/unit/data/dictionary/described.h"

namespace runtime::data {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

/// A schema of one field with these properties.
std::string OneField(const std::string& properties) { return R"({"fields":[{"name":"x",)" + properties + "}]}"; }

FieldType TypeOfWord(const std::string& word) {
  return Describe(OneField(R"("type":")" + word + "\""), {}).table.fields.at(0).dialect.type;
}

TEST(TableSchema, makesAVariableOfAField) {
  const Described all = Describe(R"({"fields":[{"name":"age","title":"Age in years","type":"integer"}]})",
                                 {NumberColumn("age", FieldType::Integer, {1, 20})});
  EXPECT_EQ(all[0].name, "age");
  EXPECT_EQ(all[0].label, "Age in years");
  EXPECT_EQ(all[0].width, 0);
  EXPECT_TRUE(all.notes.empty());
  EXPECT_EQ(all.dictionary.FindVariable("AGE"), 0);
}

TEST(TableSchema, takesTheOriginalNameForALabelWhereTheNameHadToBeChanged) {
  const Described all = Describe(
      R"({"fields":[{"name":"body mass"},{"name":"1st","title":"First"},{"name":"ok"},{"name":"e","title":""}]})",
      {StringColumn("body mass"), StringColumn("1st"), StringColumn("ok"), StringColumn("e")});
  EXPECT_EQ(all[0].name, "body_mass");
  EXPECT_EQ(all[0].label, "body mass");
  EXPECT_EQ(all[1].name, "@1st");
  EXPECT_EQ(all[1].label, "First");
  EXPECT_EQ(all[2].label, std::nullopt);
  EXPECT_EQ(all[3].label, std::nullopt);
}

TEST(TableSchema, readsNineTypesAsNumbersAndAllOthersAsStrings) {
  EXPECT_EQ(TypeOfWord("integer"), FieldType::Integer);
  EXPECT_EQ(TypeOfWord("number"), FieldType::Number);
  EXPECT_EQ(TypeOfWord("boolean"), FieldType::Boolean);
  EXPECT_EQ(TypeOfWord("year"), FieldType::Year);
  EXPECT_EQ(TypeOfWord("date"), FieldType::Date);
  EXPECT_EQ(TypeOfWord("datetime"), FieldType::DateTime);
  EXPECT_EQ(TypeOfWord("time"), FieldType::Time);
  EXPECT_EQ(TypeOfWord("yearmonth"), FieldType::YearMonth);
  EXPECT_EQ(TypeOfWord("duration"), FieldType::Duration);
  for (const char* word : {"string", "any", "object", "array", "list", "geopoint", "geojson", "something"})
    EXPECT_EQ(TypeOfWord(word), FieldType::String) << word;
  EXPECT_EQ(Describe(R"({"fields":[{"name":"x"}]})", {}).table.fields.at(0).dialect.type, FieldType::Inferred);
}

TEST(TableSchema, keepsHowTheCellsAreWritten) {
  const FieldDialect dialect =
      Describe(OneField(R"("type":"number","decimalChar":",","groupChar":".","bareNumber":false,
      "trueValues":["y"],"falseValues":["n","no"],"format":"fmt:%d.%m.%Y")"),
               {})
          .table.fields.at(0)
          .dialect;
  EXPECT_EQ(dialect.decimalChar, ",");
  EXPECT_EQ(dialect.groupChar, ".");
  EXPECT_FALSE(dialect.bareNumber);
  EXPECT_THAT(dialect.trueValues, ElementsAre("y"));
  EXPECT_THAT(dialect.falseValues, ElementsAre("n", "no"));
  EXPECT_EQ(dialect.format, "%d.%m.%Y");
}

TEST(StringWidth, isThatOfTheLongestValueAtLeastOne) {
  EXPECT_EQ(Describe(OneField(R"("type":"string")"), {StringColumn("x", 7)})[0].width, 7);
  EXPECT_EQ(Describe(OneField(R"("type":"string")"), {StringColumn("x", 0)})[0].width, 1);
}

TEST(StringWidth, isTheMaximumLengthWhereThatIsMore) {
  const std::string schema = OneField(R"("type":"string","constraints":{"maxLength":5})");
  EXPECT_EQ(Describe(schema, {StringColumn("x", 3)})[0].width, 5);
  EXPECT_EQ(Describe(schema, {StringColumn("x", 9)})[0].width, 9);
}

TEST(StringWidth, isEnoughForEveryValueWithALabel) {
  const Described all =
      Describe(OneField(R"("type":"string","categories":[{"value":"adult","label":"Adult"},"subadult"],
      "codebook":{"valueLabels":[{"value":"juvenile","label":"Young"}]})"),
               {StringColumn("x", 5)});
  EXPECT_EQ(all[0].width, 8);
  EXPECT_THAT(LabelsOf(all[0]), ElementsAre("adult   =Adult", "juvenile=Young"));
}

TEST(DefaultFormat, followsFromTypeAndValues) {
  const std::vector<ColumnFacts> columns = {
      NumberColumn("a", FieldType::Integer, {-12, 7}), NumberColumn("b", FieldType::Number, {1.25, 100.5}, 2),
      NumberColumn("c", FieldType::Number, {0.5}, 20), StringColumn("d", 12),
      NumberColumn("e", FieldType::Boolean, {0, 1}),   NumberColumn("f", FieldType::Date, {0}),
      NumberColumn("g", FieldType::DateTime, {0}),     NumberColumn("h", FieldType::Time, {0}),
      NumberColumn("i", FieldType::YearMonth, {0}),    NumberColumn("j", FieldType::Duration, {86400.0 * 12}),
      NumberColumn("k", FieldType::Year, {1999}),      NumberColumn("l", FieldType::Number)};
  const Described all = Describe(R"({"fields":[]})", columns);
  std::vector<std::string> formats;
  for (const auto& variable : all.dictionary.variables) {
    const MAVO_Format& format = variable->print;
    EXPECT_EQ(variable->write.width, format.width);
    formats.push_back(std::to_string(format.type) + ":" + std::to_string(format.width) + "." +
                      std::to_string(format.decimals));
  }
  EXPECT_THAT(formats, ElementsAre("5:3.0", "5:6.2", "5:18.16", "1:12.0", "5:1.0", "39:10.0", "86:19.0", "21:8.0",
                                   "28:8.0", "25:11.0", "5:4.0", "5:1.0"));
}

TEST(Format, isTakenForPrintingAndWriting) {
  const Described all = Describe(OneField(R"("type":"number","codebook":{"format":"COMMA10.1"})"),
                                 {NumberColumn("x", FieldType::Number, {1.5}, 1)});
  EXPECT_EQ(all[0].print.type, kFormatComma);
  EXPECT_EQ(all[0].print.width, 10);
  EXPECT_EQ(all[0].write.decimals, 1);
}

TEST(Format, ofStringsOnANumericVariableIsAnError) {
  EXPECT_THAT(
      ErrorOf(OneField(R"("type":"integer","codebook":{"format":"A8"})"), {NumberColumn("x", FieldType::Integer)}),
      HasSubstr("field \"x\": the format A8 is one of strings, and the variable is numeric"));
}

TEST(Format, ofNumbersOnAStringVariableIsAnError) {
  EXPECT_THAT(ErrorOf(OneField(R"("codebook":{"format":"F8.2"})"), {StringColumn("x")}),
              HasSubstr("the format F8.2 is one of numbers, and the variable is a string"));
}

TEST(Format, thatCannotBeReadIsAnErrorAtItsPlace) {
  EXPECT_THAT(ErrorOf(OneField(R"("codebook":{"format":"F8.9"})"), {}),
              HasSubstr("test.schema.json: /fields/0/codebook/format: "));
}

TEST(Level, isWhatTheFieldSays) {
  for (const auto& [word, level] :
       std::vector<std::pair<std::string, int>>{{"nominal", 1}, {"ordinal", 2}, {"scale", 3}, {"unknown", 0}})
    EXPECT_EQ(Describe(OneField(R"("categories":[1],"codebook":{"measure":")" + word + "\"}"),
                       {NumberColumn("x", FieldType::Integer)})[0]
                  .level,
              level);
}

TEST(Level, ofCategoriesIsNominalOrOrdinal) {
  std::vector<double> many;
  for (int i = 0; i < 100; ++i) many.push_back(i);
  const ColumnFacts column = NumberColumn("x", FieldType::Integer, many);
  EXPECT_EQ(Describe(OneField(R"("type":"integer","categories":[1,2])"), {column})[0].level, 1);
  EXPECT_EQ(Describe(OneField(R"("type":"integer","categories":[1,2],"categoriesOrdered":true)"), {column})[0].level,
            2);
  EXPECT_EQ(Describe(OneField(R"("type":"integer","categories":[1,2],"categoriesOrdered":false)"), {column})[0].level,
            1);
  EXPECT_EQ(Describe(OneField(R"("type":"integer","categoriesOrdered":true)"), {column})[0].level, 3);
}

TEST(Level, followsFromTypeAndValuesOtherwise) {
  std::vector<double> twentyFour;
  for (int i = 0; i < 24; ++i) twentyFour.push_back(i);
  std::vector<double> twentyFive = twentyFour;
  twentyFive.push_back(24);
  const auto level = [](const ColumnFacts& column) { return Describe(R"({"fields":[]})", {column})[0].level; };
  EXPECT_EQ(level(StringColumn("x")), 1);
  EXPECT_EQ(level(NumberColumn("x", FieldType::Boolean, {0, 1})), 1);
  for (const FieldType type :
       {FieldType::Date, FieldType::DateTime, FieldType::Time, FieldType::YearMonth, FieldType::Duration})
    EXPECT_EQ(level(NumberColumn("x", type, {0})), 3);
  for (const FieldType type : {FieldType::Integer, FieldType::Number, FieldType::Year}) {
    EXPECT_EQ(level(NumberColumn("x", type, twentyFour)), 1);
    EXPECT_EQ(level(NumberColumn("x", type, twentyFive)), 3);
    EXPECT_EQ(level(NumberColumn("x", type)), 1);
  }
  EXPECT_EQ(level(NumberColumn("x", FieldType::Number, {1, 1.5}, 1)), 3);
}

TEST(Level, ofAnUnknownWordIsAnError) {
  EXPECT_THAT(ErrorOf(OneField(R"("codebook":{"measure":"Nominal"})"), {}),
              HasSubstr("/fields/0/codebook/measure: \"Nominal\" is no measurement level; write one of nominal"));
}

TEST(Role, isInputOrWhatTheFieldSays) {
  EXPECT_EQ(Describe(R"({"fields":[{"name":"x"}]})", {StringColumn("x")})[0].role, 0);
  const std::vector<std::string> words = {"input", "target", "both", "none", "partition", "split"};
  for (std::size_t i = 0; i < words.size(); ++i)
    EXPECT_EQ(Describe(OneField(R"("codebook":{"role":")" + words[i] + "\"}"), {StringColumn("x")})[0].role,
              static_cast<int>(i));
}

TEST(Role, ofAnUnknownWordIsAnError) {
  EXPECT_THAT(ErrorOf(OneField(R"("codebook":{"role":"weight"})"), {}), HasSubstr("\"weight\" is no role"));
}

TEST(ValueLabels, comeFromCategoriesOrderedByValue) {
  const Described all = Describe(
      OneField(R"("type":"integer","categories":[{"value":10,"label":"ten"},{"value":2,"label":"two"},{"value":3}])"),
      {NumberColumn("x", FieldType::Integer)});
  EXPECT_THAT(LabelsOf(all[0]), ElementsAre("2.0=two", "10.0=ten"));
}

TEST(ValueLabels, ofBareCategoriesAreNone) {
  const Described all = Describe(OneField(R"("type":"string","categories":["b","a"])"), {StringColumn("x", 1)});
  EXPECT_THAT(LabelsOf(all[0]), IsEmpty());
  EXPECT_EQ(all[0].level, 1);
}

TEST(ValueLabels, ofStringsAreOrderedByBytesAndPadded) {
  const Described all = Describe(
      OneField(
          R"("type":"string","categories":[{"value":"é","label":"e"},{"value":"b","label":"B"},{"value":"a  ","label":"A"}])"),
      {StringColumn("x", 3)});
  EXPECT_THAT(LabelsOf(all[0]), ElementsAre("a  =A", "b  =B", "é =e"));
}

TEST(ValueLabels, firstLabelOfAValueHolds) {
  const Described all = Describe(OneField(R"("type":"number","missingValues":[{"value":"1","label":"missing one"},
      {"value":"-9","label":"refused"},{"value":"NA","label":"not asked"}],"categories":[{"value":1,"label":"first"},
      {"value":"1.0","label":"second"}],"codebook":{"valueLabels":[{"value":1,"label":"third"},{"value":2,"label":"two"},
      {"value":3,"label":"two"}]})"),
                                 {NumberColumn("x", FieldType::Number)});
  EXPECT_THAT(LabelsOf(all[0]), ElementsAre("-9.0=refused", "1.0=first", "2.0=two", "3.0=two"));
}

TEST(ValueLabels, ofMissingValuesOfAStringAreAllTaken) {
  const Described all = Describe(
      OneField(
          R"("type":"string","missingValues":[{"value":"","label":"omitted"},{"value":"-99","label":"refused"},"x"])"),
      {StringColumn("x", 3)});
  EXPECT_THAT(LabelsOf(all[0]), ElementsAre("   =omitted", "-99=refused"));
}

TEST(ValueLabels, ofBooleansAreFalseAndTrueWhereThereIsNoOther) {
  const ColumnFacts column = NumberColumn("x", FieldType::Boolean);
  EXPECT_THAT(LabelsOf(Describe(OneField(R"("type":"boolean")"), {column})[0]), ElementsAre("0.0=false", "1.0=true"));
  EXPECT_THAT(LabelsOf(Describe(OneField(R"("type":"boolean","categories":[{"value":true,"label":"Yes"}],
      "missingValues":[{"value":"-1","label":"refused"}])"),
                                {column})[0]),
              ElementsAre("-1.0=refused", "0.0=false", "1.0=Yes"));
  EXPECT_THAT(LabelsOf(Describe(OneField(R"("type":"boolean","trueValues":["si"],"falseValues":["no"],
      "categories":[{"value":"si","label":"Sí"},{"value":"no","label":"No"}])"),
                                {column})[0]),
              ElementsAre("0.0=No", "1.0=Sí"));
}

TEST(ValueLabels, ofAValueThatIsNoNumberAreTold) {
  const Described all = Describe(OneField(R"("type":"integer","categories":[{"value":"apple","label":"Apple"}])"),
                                 {NumberColumn("x", FieldType::Integer)});
  ASSERT_EQ(all.notes.size(), 1U);
  EXPECT_THAT(all.notes[0].text, HasSubstr("the label \"Apple\" is not used"));
}

TEST(MissingValues, areTheEmptyTextWhenNothingIsSaid) {
  const Described all = Describe(R"({"fields":[{"name":"n","type":"integer"},{"name":"s","type":"string"}]})",
                                 {NumberColumn("n", FieldType::Integer), StringColumn("s"), StringColumn("extra")});
  EXPECT_TRUE(all[0].missing.empty());
  EXPECT_THAT(all[1].missing.texts, ElementsAre(""));
  EXPECT_THAT(all[2].missing.texts, ElementsAre(""));
}

TEST(MissingValues, ofTheFieldReplaceThoseOfTheSchema) {
  const Described all = Describe(R"({"missingValues":["","-1"],"fields":[{"name":"a","type":"integer"},
      {"name":"b","type":"integer","missingValues":["-2"]},{"name":"c","type":"integer","missingValues":[]}]})",
                                 {NumberColumn("a", FieldType::Integer), NumberColumn("b", FieldType::Integer),
                                  NumberColumn("c", FieldType::Integer), NumberColumn("extra", FieldType::Integer)});
  EXPECT_THAT(all[0].missing.values, ElementsAre(-1));
  EXPECT_THAT(all[1].missing.values, ElementsAre(-2));
  EXPECT_TRUE(all[2].missing.empty());
  EXPECT_THAT(all[3].missing.values, ElementsAre(-1));
}

TEST(MissingValues, ofANumericVariableAreTheEntriesThatReadAsNumbers) {
  const Described all = Describe(OneField(R"("type":"number","missingValues":["","NA","-9","99.5","-9.0","1e2"])"),
                                 {NumberColumn("x", FieldType::Number)});
  EXPECT_THAT(all[0].missing.values, ElementsAre(-9, 99.5, 100));
}

TEST(MissingValues, areReadInTheWayTheFieldWritesNumbers) {
  const Described all =
      Describe(OneField(R"("type":"number","decimalChar":",","groupChar":".","missingValues":["-9,5","1.000"])"),
               {NumberColumn("x", FieldType::Number)});
  EXPECT_THAT(all[0].missing.values, ElementsAre(-9.5, 1000));
}

TEST(MissingValues, ofDatesAndBooleansAreNumbersOnly) {
  for (const auto& [word, type] : std::vector<std::pair<std::string, FieldType>>{
           {"date", FieldType::Date}, {"boolean", FieldType::Boolean}, {"time", FieldType::Time}}) {
    const Described all =
        Describe(OneField(R"("missingValues":["1900-01-01","true","00:00:00","-99"],"type":")" + word + "\""),
                 {NumberColumn("x", type)});
    EXPECT_THAT(all[0].missing.values, ElementsAre(-99)) << word;
  }
}

TEST(ValueLabels, ofDatesAreReadAsDates) {
  const Described all = Describe(
      OneField(
          R"("type":"date","format":"%d.%m.%Y","codebook":{"valueLabels":[{"value":"02.01.1970","label":"day two"}]})"),
      {NumberColumn("x", FieldType::Date)});
  EXPECT_THAT(LabelsOf(all[0]), ElementsAre("86400.0=day two"));
}

TEST(ValueLabels, ofAnInferredTypeAreReadByThatType) {
  const Described all =
      Describe(OneField(R"("categories":[{"value":"true","label":"Yes"},{"value":"2","label":"two"}])"),
               {NumberColumn("x", FieldType::Boolean)});
  EXPECT_THAT(LabelsOf(all[0]), ElementsAre("0.0=false", "1.0=Yes", "2.0=two"));
}

TEST(MissingValues, ofAStringVariableAreAllEntriesWithoutTrailingBlanks) {
  const Described all =
      Describe(OneField(R"("type":"string","missingValues":["","  ","NA ","-9"])"), {StringColumn("x", 2)});
  EXPECT_THAT(all[0].missing.texts, ElementsAre("", "NA", "-9"));
  EXPECT_TRUE(all[0].missing.values.empty());
}

TEST(MissingRanges, areOpenWhereNoBoundIsGiven) {
  const Described all = Describe(
      OneField(R"("type":"integer","codebook":{"missingRanges":[{"min":90,"max":99},{"max":-1},{"min":1000}]})"),
      {NumberColumn("x", FieldType::Integer)});
  ASSERT_EQ(all[0].missing.ranges.size(), 3U);
  EXPECT_EQ(all[0].missing.ranges[0].low, 90);
  EXPECT_EQ(all[0].missing.ranges[0].high, 99);
  EXPECT_EQ(all[0].missing.ranges[1].low, -std::numeric_limits<double>::infinity());
  EXPECT_EQ(all[0].missing.ranges[2].high, std::numeric_limits<double>::infinity());
}

TEST(MissingRanges, areErrorsWhenEmptyOrBackwardsOrOfAString) {
  EXPECT_THAT(ErrorOf(OneField(R"("codebook":{"missingRanges":[{}]})"), {}), HasSubstr("/missingRanges/0: "));
  EXPECT_THAT(ErrorOf(OneField(R"("codebook":{"missingRanges":[{"min":2,"max":1}]})"), {}),
              HasSubstr("ends before it"));
  EXPECT_THAT(ErrorOf(OneField(R"("codebook":{"missingRanges":[{"min":1}]})"), {StringColumn("x")}),
              HasSubstr("the variable is a string"));
}

TEST(Attributes, keepTheirOrderWithTheDescriptionBehind) {
  const Described all = Describe(
      OneField(R"("description":"Asked last","codebook":{"attributes":{"zeta":"1","alpha":["a","b"],"none":[]}})"),
      {StringColumn("x")});
  const DatasourceAttributes& attributes = all[0].attributes;
  ASSERT_EQ(attributes.Size(), 4U);
  EXPECT_EQ(attributes.Name(0), "zeta");
  EXPECT_THAT(attributes.Values(0), ElementsAre("1"));
  EXPECT_EQ(attributes.Name(1), "alpha");
  EXPECT_THAT(attributes.Values(1), ElementsAre("a", "b"));
  EXPECT_THAT(attributes.Values(2), IsEmpty());
  EXPECT_EQ(attributes.Name(3), "Description");
  EXPECT_THAT(attributes.Values(3), ElementsAre("Asked last"));
}

TEST(Attributes, thatAreNoTextsAreErrors) {
  EXPECT_THAT(ErrorOf(OneField(R"("codebook":{"attributes":{"a":1}})"), {}), HasSubstr("/codebook/attributes/a: "));
  EXPECT_THAT(ErrorOf(OneField(R"("codebook":{"attributes":["a"]})"), {}), HasSubstr("must be an object"));
}

TEST(TableSchema, tellsUnknownPropertiesOfCodebook) {
  const Described all =
      Describe(R"({"fields":[{"name":"x","type":"string","codebook":{"mesure":"scale"}}],"codebook":{"wieght":"x"}})",
               {StringColumn("x")});
  ASSERT_EQ(all.notes.size(), 2U);
  EXPECT_THAT(all.notes[0].text, HasSubstr("/fields/0/codebook/mesure: "));
  EXPECT_THAT(all.notes[1].text, HasSubstr("/codebook/wieght: "));
}

TEST(TableSchema, refusesWrongTypesAtTheirPlace) {
  const std::vector<std::pair<std::string, std::string>> cases = {
      {R"({"fields":{}})", "/fields: this must be a list, and is an object"},
      {R"({"fields":[1]})", "/fields/0: this must be an object, and is a number"},
      {R"({"fields":[{}]})", "/fields/0: the property \"name\" is missing"},
      {R"({"fields":[{"name":1}]})", "/fields/0/name: this must be a text, and is a number"},
      {R"({"fields":[{"name":"x","title":[]}]})", "/fields/0/title: "},
      {R"({"fields":[{"name":"x","type":["string","integer"]}]})", "/fields/0/type: a field has one type"},
      {R"({"fields":[{"name":"x","type":{"of":"string"}}]})", "/fields/0/type: this must be a text, and is an object"},
      {R"({"fields":[{"name":"x","missingValues":{}}]})", "/fields/0/missingValues: this must be a list"},
      {R"({"fields":[{"name":"x","missingValues":[{"label":"a"}]}]})", "/missingValues/0: the property \"value\""},
      {R"({"fields":[{"name":"x","categories":[[1]]}]})", "/categories/0: this must be a text or a number"},
      {R"({"fields":[{"name":"x","categories":[{"value":1,"label":2}]}]})", "/categories/0/label: this must be a text"},
      {R"({"fields":[{"name":"x","categoriesOrdered":"yes"}]})", "/categoriesOrdered: this must be true or false"},
      {R"({"fields":[{"name":"x","constraints":{"maxLength":"9"}}]})", "/constraints/maxLength: this must be a number"},
      {R"({"fields":[{"name":"x","constraints":{"maxLength":-1}}]})", "/constraints/maxLength: "},
      {R"({"fields":[{"name":"x","constraints":{"maxLength":1.5}}]})", "/constraints/maxLength: "},
      {R"({"fields":[{"name":"x","codebook":[]}]})", "/fields/0/codebook: this must be an object"},
      {R"({"fields":[],"codebook":{"weight":3}})", "/codebook/weight: this must be a text"},
      {R"({"fields":[],"codebook":{"multipleResponseSets":{}}})",
       "/codebook/multipleResponseSets: this must be a list"},
      {R"({})", "test.schema.json: the property \"fields\" is missing"},
      {R"({"fields":[{"name":"a/b~c","title":1,"name":"a/b~c"}]})", "/fields/0/title: "},
  };
  for (const auto& [schema, problem] : cases) EXPECT_THAT(ErrorOf(schema, {}), HasSubstr(problem)) << schema;
}

// Version 2 of the standard has it that a name that stands twice makes no schema invalid.
TEST(TableSchema, letsFieldsOfOneNameMeetTheColumnsOfThatNameInOrder) {
  const Described all = Describe(R"({"fields":[{"name":"a","type":"string","title":"1"},
      {"name":"b","type":"string"},{"name":"a","type":"string","title":"2"}]})",
                                 {StringColumn("a"), StringColumn("a"), StringColumn("b")});
  EXPECT_EQ(all[0].label, "1");
  EXPECT_EQ(all[1].label, "2");
  ASSERT_EQ(all.notes.size(), 2U);
  EXPECT_THAT(all.notes[0].text, HasSubstr("/fields/2: the field name \"a\" stands twice, first as field 1"));
}

TEST(Matching, goesByNameWithoutRegardToOrder) {
  const Described all =
      Describe(R"({"fields":[{"name":"a","type":"string","title":"A"},{"name":"b","type":"string","title":"B"}]})",
               {StringColumn("b"), StringColumn("a")});
  EXPECT_EQ(all[0].label, "B");
  EXPECT_EQ(all[1].label, "A");
  EXPECT_TRUE(all.notes.empty());
}

TEST(Matching, tellsFieldsAndColumnsThatStayAlone) {
  const std::string schema = R"({"fields":[{"name":"a","type":"string"},{"name":"gone","type":"string"}]})";
  const Described all = Describe(schema, {StringColumn("a"), StringColumn("more")});
  ASSERT_EQ(all.notes.size(), 2U);
  EXPECT_THAT(all.notes[0].text, HasSubstr("field \"gone\" has no column"));
  EXPECT_THAT(all.notes[1].text, HasSubstr("column 2 \"more\" of the data has no field"));
  EXPECT_EQ(all.dictionary.variables.size(), 2U);
  EXPECT_THAT(ErrorOf(schema, {StringColumn("a")}, true), HasSubstr("field \"gone\" has no column"));
  EXPECT_THAT(ErrorOf(R"({"fields":[]})", {StringColumn("a")}, true), HasSubstr("has no field"));
}

TEST(Matching, givesAFieldToTheFirstOfEqualHeaders) {
  const Described all =
      Describe(R"({"fields":[{"name":"a","type":"string","title":"A"}]})", {StringColumn("a"), StringColumn("a")});
  EXPECT_EQ(all[0].label, "A");
  EXPECT_EQ(all[1].name, "a_2");
  EXPECT_EQ(all[1].label, "a");
  ASSERT_EQ(all.notes.size(), 2U);
  EXPECT_THAT(all.notes[0].text, HasSubstr("column 2 \"a\" of the data has no field"));
  EXPECT_THAT(all.notes[1].text, HasSubstr("\"a\" in column 2 is a_2"));
}

TEST(Matching, goesByPositionWithoutAHeaderRow) {
  TableDescriptor table;
  std::vector<Note> notes;
  const Json tree = ParseJson(R"({"fields":[{"name":"a"},{"name":"b"}]})", "t");
  ReadTableSchema({tree, "t"}, table, notes);
  table.dialect.header = false;
  const auto fields = MatchFields(table, {"", "", ""}, false, notes);
  ASSERT_EQ(fields.size(), 3U);
  EXPECT_EQ(fields[0]->name, "a");
  EXPECT_EQ(fields[1]->name, "b");
  EXPECT_EQ(fields[2], nullptr);
}

TEST(Weight, isFoundByItsField) {
  const Described all =
      Describe(R"({"fields":[{"name":"x"},{"name":"case weight"}],"codebook":{"weight":"case weight"}})",
               {StringColumn("x"), NumberColumn("case weight", FieldType::Number)});
  EXPECT_EQ(all.dictionary.weight, 1);
}

TEST(Weight, thatIsUnknownOrAStringIsAnError) {
  const std::vector<ColumnFacts> columns = {StringColumn("x")};
  EXPECT_THAT(ErrorOf(R"({"fields":[{"name":"x"}],"codebook":{"weight":"w"}})", columns),
              HasSubstr("there is no variable \"w\""));
  EXPECT_THAT(ErrorOf(R"({"fields":[{"name":"x"}],"codebook":{"weight":"x"}})", columns),
              HasSubstr("\"x\" is a string"));
}

TEST(Weight, canBeOverriddenAndSwitchedOff) {
  Described all =
      Describe(R"({"fields":[{"name":"w"},{"name":"v"},{"name":"s"}],"codebook":{"weight":"w"}})",
               {NumberColumn("w", FieldType::Number), NumberColumn("v", FieldType::Number), StringColumn("s")});
  OverrideWeight(all.dictionary, "V");
  EXPECT_EQ(all.dictionary.weight, 1);
  EXPECT_THROW(OverrideWeight(all.dictionary, "s"), DataError);
  EXPECT_THROW(OverrideWeight(all.dictionary, "none"), DataError);
  EXPECT_EQ(all.dictionary.weight, 1);
  OverrideWeight(all.dictionary, "");
  EXPECT_EQ(all.dictionary.weight, -1);
}

TEST(FileSpec, hasABackslashBeforeTheFileName) {
  std::vector<Note> notes;
  EXPECT_EQ(AssembleDictionary(nullptr, {}, "/data/a b/x.csv", notes).fileSpec, "/data/a b\\x.csv");
  EXPECT_EQ(AssembleDictionary(nullptr, {}, "/data/../x.csv", notes).fileSpec, "/\\x.csv");
  EXPECT_EQ(AssembleDictionary(nullptr, {}, "x.csv", notes).fileSpec,
            std::filesystem::current_path().string() + "\\x.csv");
  EXPECT_EQ(AssembleDictionary(nullptr, {}, std::nullopt, notes).fileSpec, std::nullopt);
}

TEST(Inference, makesADictionaryWithoutADescriptor) {
  std::vector<Note> notes;
  const ColumnFacts text = StringColumn("Full Name", 4);
  const ColumnFacts number = NumberColumn("n", FieldType::Integer, {1});
  const Dictionary dictionary =
      AssembleDictionary(nullptr, {{&text, nullptr}, {&number, nullptr}}, std::nullopt, notes);
  EXPECT_EQ(dictionary.variables[0]->name, "Full_Name");
  EXPECT_EQ(dictionary.variables[0]->label, "Full Name");
  EXPECT_THAT(dictionary.variables[0]->missing.texts, ElementsAre(""));
  EXPECT_EQ(dictionary.variables[1]->role, 0);
  EXPECT_EQ(dictionary.label, std::nullopt);
  EXPECT_EQ(dictionary.weight, -1);
  EXPECT_TRUE(notes.empty());
}

}  // namespace
}  // namespace runtime::data
