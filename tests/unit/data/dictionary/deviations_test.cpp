// What dictionaries do otherwise than their standard has it, and what they say beyond our words.
#include "runtime/data/dictionary/deviations.h"

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

/// The schema alone.
Described Read(const std::string& schema) {
  Described result;
  const Json tree = ParseJson(schema, "s.json");
  ReadTableSchema({tree, "s.json"}, result.table, result.notes);
  return result;
}

FieldDescriptor ReadField(const std::string& properties) {
  return Read(R"({"fields":[{"name":"x",)" + properties + "}]}").table.fields.at(0);
}

std::vector<std::string> Texts(const std::vector<Note>& notes) {
  std::vector<std::string> texts;
  for (const Note& note : notes) texts.push_back(note.text);
  return texts;
}

std::vector<std::string> Written(const std::vector<ExtraProperty>& extras) {
  std::vector<std::string> texts;
  for (const ExtraProperty& extra : extras) texts.push_back(extra.name + "=" + extra.json);
  return texts;
}

std::vector<std::string> ValuesOf(const std::vector<LabelledValue>& values) {
  std::vector<std::string> texts;
  for (const LabelledValue& value : values)
    texts.push_back(value.value + (value.isNumber ? "#" : "") + (value.label ? "=" + *value.label : ""));
  return texts;
}

TEST(Deviation, isToldOnceAKindWithItsFirstPlaceAndNumber) {
  const Described all = Read(R"({"missing_values":["-9"],"fields":[
      {"name":"a","title":"","type":"integer"},{"name":"b","title":"","type":"int"},{"name":"c","label":"C","type":"Float"},
      {"name":"d"},{"name":["e"],"type":["string"]},{"name":"f","type":"colour"},
      {"name":"g","type":"string","missingValues":"NA"}]})");
  EXPECT_THAT(
      Texts(all.notes),
      ElementsAre(
          "s.json: /missing_values: \"missing_values\" stands here for \"missingValues\", and is taken as such",
          "s.json: /fields/0: field \"a\" has an empty title (the first of 2 such places)",
          "s.json: /fields/1/type: \"int\" is no type of Table Schema, and is taken for \"integer\" (the first of 2 "
          "such places)",
          "s.json: /fields/2/label: \"label\" stands here for \"title\", and is taken as such",
          "s.json: /fields/3: field \"d\" has no \"type\"; it is inferred from the data",
          "s.json: /fields/4/name: a list of one value stands here for the value, and is taken as such (the first "
          "of 2 such places)",
          "s.json: /fields/5/type: \"colour\" is no type of Table Schema; the cells are taken as texts",
          "s.json: /fields/6/missingValues: a value stands here for a list of one, and is taken as such"));
  const std::vector<FieldDescriptor>& fields = all.table.fields;
  EXPECT_EQ(fields[1].dialect.type, FieldType::Integer);
  EXPECT_EQ(fields[2].title, "C");
  EXPECT_EQ(fields[2].dialect.type, FieldType::Number);
  EXPECT_EQ(fields[3].dialect.type, FieldType::Inferred);
  EXPECT_EQ(fields[4].name, "e");
  EXPECT_EQ(fields[4].dialect.type, FieldType::String);
  EXPECT_EQ(fields[5].dialect.type, FieldType::String);
  EXPECT_THAT(ValuesOf(fields[0].missingValues), ElementsAre("-9"));
  EXPECT_THAT(ValuesOf(fields[6].missingValues), ElementsAre("NA"));
}

TEST(Deviation, ofNoneIsSilent) {
  const Described all = Read(
      R"({"$schema":"https://datapackage.org/profiles/2.0/tableschema.json","missingValues":["",{"value":"-1","label":"no"}],
      "fields":[{"name":"a","type":"string"},{"name":"b","type":"geopoint","format":"array"}]})");
  EXPECT_THAT(all.notes, IsEmpty());
  EXPECT_THAT(all.table.extras, IsEmpty());
}

TEST(TypeWords, ofOtherHabitsMeanAStandardType) {
  const std::vector<std::pair<const char*, FieldType>> cases = {
      {"Integer", FieldType::Integer}, {"int64", FieldType::Integer},       {"BIGINT", FieldType::Integer},
      {"double", FieldType::Number},   {"numeric", FieldType::Number},      {"bool", FieldType::Boolean},
      {"text", FieldType::String},     {"date-time", FieldType::DateTime},  {"timestamp", FieldType::DateTime},
      {"gyear", FieldType::Year},      {"year_month", FieldType::YearMonth}};
  for (const auto& [word, type] : cases)
    EXPECT_EQ(ReadField(std::string(R"("type":")") + word + "\"").dialect.type, type) << word;
}

TEST(TypeWords, ofAListWithNullIsTheOther) {
  EXPECT_EQ(ReadField(R"("type":["integer","null"])").dialect.type, FieldType::Integer);
}

TEST(Enum, givesCategoriesWithoutLabels) {
  const FieldDescriptor text = ReadField(R"("type":"string","constraints":{"enum":["b","a"],"required":true})");
  EXPECT_TRUE(text.hasCategories);
  EXPECT_THAT(ValuesOf(text.categories), ElementsAre("b", "a"));
  EXPECT_THAT(Written(text.extras), ElementsAre(R"(constraints={"required":true})"));
  const FieldDescriptor number = ReadField(R"("type":"integer","constraints":{"enum":[3,"4",-1]})");
  EXPECT_THAT(ValuesOf(number.categories), ElementsAre("3#", "4", "-1#"));
  EXPECT_THAT(number.extras, IsEmpty());
}

TEST(Enum, ofATypeThatHasNoCategoriesIsKeptToo) {
  const FieldDescriptor field = ReadField(R"("type":"number","constraints":{"enum":[3.1,3.2]})");
  EXPECT_THAT(ValuesOf(field.categories), ElementsAre("3.1#", "3.2#"));
  EXPECT_THAT(Written(field.extras), ElementsAre(R"(constraints={"enum":[3.1,3.2]})"));
}

TEST(Enum, besideCategoriesIsOnlyKept) {
  const FieldDescriptor field = ReadField(
      R"("type":"integer","categories":[{"value":1,"label":"one"},2],"constraints":{"enum":[1],"maxLength":3})");
  EXPECT_THAT(ValuesOf(field.categories), ElementsAre("1#=one", "2#"));
  EXPECT_THAT(Written(field.extras), ElementsAre(R"(constraints={"enum":[1]})"));
  EXPECT_EQ(field.maxLength, 3);
}

TEST(Enum, ofListsAndObjectsIsNoCategory) {
  const FieldDescriptor field = ReadField(R"("type":"array","constraints":{"enum":[[1,2],[3]]})");
  EXPECT_FALSE(field.hasCategories);
  EXPECT_THAT(Written(field.extras), ElementsAre("type=\"array\"", R"(constraints={"enum":[[1,2],[3]]})"));
}

TEST(Enum, makesANumericVariableNominal) {
  std::vector<double> many;
  for (int i = 0; i < 100; ++i) many.push_back(i);
  const Described all = Describe(R"({"fields":[{"name":"x","type":"integer","constraints":{"enum":[1,2]}}]})",
                                 {NumberColumn("x", FieldType::Integer, many)});
  EXPECT_EQ(all[0].level, 1);
  EXPECT_THAT(LabelsOf(all[0]), IsEmpty());
}

TEST(Extras, areAllThatIsNotUnderstoodInItsOrder) {
  const FieldDescriptor field = ReadField(
      R"("type":"list","rdfType":"http://x","example":[1,{"a":null}],"delimiter":"-","title":"T","label":"L",
      "codebook":{"colour":"red","measure":"scale","ddi":{"qstn/preQTxt":"Now"}})");
  EXPECT_THAT(Written(field.extras),
              ElementsAre("label=\"L\"", "type=\"list\"", "codebook.colour=\"red\"", "ddi:qstn/preQTxt=\"Now\"",
                          "rdfType=\"http://x\"", R"(example=[1,{"a":null}])", "delimiter=\"-\""));
  const TableDescriptor table =
      Read(R"({"fields":[],"primaryKey":"id","foreignKeys":[{"fields":"a"}],"uniqueKeys":[["a"]],
      "$schema":"https://example.org/s.json","codebook":{"ddi":{"stdyInfo":{"x":1}}}})")
          .table;
  EXPECT_THAT(Written(table.extras), ElementsAre("primaryKey=\"id\"", R"(foreignKeys=[{"fields":"a"}])",
                                                 R"(uniqueKeys=[["a"]])", R"(ddi:stdyInfo={"x":1})"));
}

TEST(Extras, ofAPackageStandAtTheirLevel) {
  const TemporaryFolder folder;
  folder.Write("data.csv", "a\n1\n");
  std::vector<Note> notes;
  const std::string path = folder.Write(
      "datapackage.json", R"({"$schema":"https://example.org/p.json","name":"p","title":"P","licenses":[{"name":"CC0"}],
      "resources":[{"name":"r","path":"data.csv","title":"R","type":"table","profile":"tabular-data-resource","hash":"x",
      "description":"d","schema":{"title":"S","primaryKey":["a"],"fields":[{"name":"a","type":"integer"}]}}]})");
  const TableDescriptor table = ReadDictionary({path, {}, {}, {}}, notes);
  EXPECT_EQ(table.label, "R");
  EXPECT_THAT(Written(table.packageExtras), ElementsAre("title=\"P\"", "$schema=\"https://example.org/p.json\"",
                                                        "name=\"p\"", R"(licenses=[{"name":"CC0"}])"));
  EXPECT_THAT(Written(table.resourceExtras), ElementsAre("name=\"r\"", "path=\"data.csv\"", "hash=\"x\""));
  EXPECT_THAT(Written(table.extras), ElementsAre(R"(primaryKey=["a"])", "title=\"S\""));
}

/// The title of the field that each column got, "-" for none, and what was told.
std::string Matched(const std::string& fieldsMatch, const std::vector<std::string>& headers, bool strict = false) {
  const Json tree =
      ParseJson(R"({"fieldsMatch":")" + fieldsMatch +
                    R"(","fields":[{"name":"a","type":"any"},{"name":"b","type":"any"},{"name":"c","type":"any"}]})",
                "s.json");
  TableDescriptor table;
  table.origin = "s.json";
  std::vector<Note> notes;
  ReadTableSchema({tree, "s.json"}, table, notes);
  std::string text;
  for (const FieldDescriptor* field : MatchFields(table, headers, strict, notes)) text += field ? field->name : "-";
  for (const Note& note : notes) text += "\n" + note.text;
  return text;
}

TEST(FieldsMatch, exactAsksForTheSameFieldsInTheSameOrder) {
  EXPECT_EQ(Matched("exact", {"a", "b", "c"}), "abc");
  EXPECT_THAT(Matched("exact", {"c", "b", "a"}),
              testing::StartsWith("cba\ns.json: the columns of the data stand in another"));
  EXPECT_EQ(
      Matched("exact", {"a", "B ", "c"}),
      "abc\ns.json: column 2 of the data is named \"B \", and the field there \"b\" (\"fieldsMatch\" is \"exact\"); "
      "they are taken for the same");
  EXPECT_EQ(Matched("exact", {"a", "b"}),
            "ab\ns.json: field \"c\" has no column in the data (\"fieldsMatch\" is \"exact\")");
  EXPECT_THROW(Matched("exact", {"c", "b", "a"}, true), DataError);
}

TEST(FieldsMatch, equalAsksForTheSameFieldsInAnyOrder) {
  EXPECT_EQ(Matched("equal", {"c", "a", "b"}), "cab");
  EXPECT_THAT(Matched("equal", {"c", "x"}),
              HasSubstr("field \"a\" has no column in the data (\"fieldsMatch\" is \"equal\")"));
  EXPECT_THAT(Matched("equal", {"c", "x"}), HasSubstr("column 2 \"x\" of the data has no field"));
}

TEST(FieldsMatch, subsetLetsTheDataHaveMoreColumns) {
  EXPECT_EQ(Matched("subset", {"x", "c", "a", "b"}), "-cab");
  EXPECT_THAT(Matched("subset", {"a", "x"}), HasSubstr("field \"b\" has no column"));
  EXPECT_THROW(Matched("subset", {"a", "x"}, true), DataError);
}

TEST(FieldsMatch, supersetLetsTheDataHaveFewerColumns) {
  EXPECT_EQ(Matched("superset", {"b"}), "b");
  EXPECT_THAT(Matched("superset", {"b", "x"}), HasSubstr("column 2 \"x\" of the data has no field"));
}

TEST(FieldsMatch, partialAsksForOneFieldAtLeast) {
  EXPECT_EQ(Matched("partial", {"x", "b"}), "-b");
  EXPECT_EQ(Matched("partial", {"x"}), "-\ns.json: no field has a column in the data (\"fieldsMatch\" is \"partial\")");
  EXPECT_THROW(Matched("partial", {"x"}, true), DataError);
}

// The text of the standard has a word, its profile a list of words.
TEST(FieldsMatch, isAWordOrAListOfOne) {
  const Described all = Read(R"({"fieldsMatch":["subset"],"fields":[]})");
  EXPECT_EQ(all.table.fieldsMatch, FieldsMatch::Subset);
  EXPECT_THAT(all.notes, IsEmpty());
  EXPECT_THROW(Read(R"({"fieldsMatch":["subset","equal"],"fields":[]})"), DataError);
  EXPECT_THROW(Read(R"({"fieldsMatch":1,"fields":[]})"), DataError);
}

TEST(FieldsMatch, ofAnUnknownWordIsToldAndNotUsed) {
  EXPECT_THAT(Matched("loose", {"c", "b", "a"}),
              testing::StartsWith("cba\ns.json: /fieldsMatch: \"loose\" is none of"));
}

TEST(FieldsMatch, tellsTwentyOfManyByName) {
  std::vector<std::string> headers = {"a", "b", "c"};
  for (int i = 0; i < 50; ++i) headers.push_back("x" + std::to_string(i));
  EXPECT_THAT(Matched("equal", headers), testing::EndsWith("\ns.json: 30 further columns of the data have no field"));
}

TEST(FieldsMatch, withoutRegardToCaseWhereTheDialectSaysSo) {
  TableDescriptor table;
  std::vector<Note> notes;
  const Json tree = ParseJson(R"({"fields":[{"name":"Id","type":"any"},{"name":"id","type":"any"}]})", "t");
  ReadTableSchema({tree, "t"}, table, notes);
  table.dialect.caseSensitiveHeader = false;
  const auto fields = MatchFields(table, {"ID", "id"}, true, notes);
  EXPECT_EQ(fields[0]->name, "Id");
  EXPECT_EQ(fields[1]->name, "id");
}

}  // namespace
}  // namespace runtime::data
