// Packages as others published them.
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/unit/data/dictionary/described.h"

namespace runtime::data {
namespace {

using testing::ElementsAre;

std::string PackagePath(const std::string& folder) {
  return std::string(CODEBOOK_SOURCE_DIR) + "/tests/unit/data/dictionary/packages/" + folder + "/datapackage.json";
}

Described Read(const std::string& folder, const std::optional<std::string>& resource,
               const std::vector<ColumnFacts>& columns) {
  Described result;
  result.table = ReadDictionary({PackagePath(folder), resource, {}}, result.notes);
  std::vector<std::string> headers;
  for (const ColumnFacts& facts : columns) headers.push_back(facts.header);
  const auto fields = MatchFields(result.table, headers, true, result.notes);
  std::vector<DescribedColumn> described;
  for (std::size_t i = 0; i < columns.size(); ++i) described.push_back({&columns[i], fields[i]});
  result.dictionary = AssembleDictionary(&result.table, described, result.table.dataPaths.at(0), result.notes);
  return result;
}

/// All that the dictionary knows of its variables.
std::string Written(const Dictionary& dictionary) {
  std::string text;
  for (const auto& variable : dictionary.variables) {
    text += variable->name + "|" + variable->label.value_or("-") + "|" + std::to_string(variable->width) + "|" +
            std::to_string(variable->print.type) + ":" + std::to_string(variable->print.width) + "." +
            std::to_string(variable->print.decimals) + "|" + std::to_string(variable->level) + "|" +
            std::to_string(variable->role);
    for (const std::string& label : LabelsOf(*variable)) text += "|" + label;
    for (const double missing : variable->missing.values) text += "|m" + std::to_string(missing);
    for (const std::string& missing : variable->missing.texts) text += "|m" + missing;
    text += "\n";
  }
  return text;
}

const std::vector<ColumnFacts>& Deployments() {
  static const std::vector<ColumnFacts> columns = {
      StringColumn("deployment_id", 1), NumberColumn("longitude", FieldType::Number, {4.62}, 2),
      NumberColumn("latitude", FieldType::Number, {50.76}, 2), NumberColumn("start", FieldType::Date, {1.6e9}),
      StringColumn("comments", 9)};
  return columns;
}

const std::vector<ColumnFacts>& Observations() {
  static const std::vector<ColumnFacts> columns = {StringColumn("observation_id", 3),
                                                   StringColumn("deployment_id", 1),
                                                   NumberColumn("timestamp", FieldType::DateTime, {1.6e9}),
                                                   StringColumn("scientific_name", 20),
                                                   NumberColumn("count", FieldType::Integer, {1, 5}),
                                                   StringColumn("life_stage", 8),
                                                   StringColumn("comments", 9)};
  return columns;
}

TEST(PublishedPackages, versionsOneAndTwoOfADeploymentTableGiveTheSameDictionary) {
  const Described one = Read("v1", "deployments", Deployments());
  const Described two = Read("v2", "deployments", Deployments());
  EXPECT_EQ(Written(one.dictionary), Written(two.dictionary));
  EXPECT_EQ(one.dictionary.label, "Camera trap deployments");
  EXPECT_EQ(two.dictionary.label, one.dictionary.label);
  EXPECT_THAT(one[0].missing.texts, ElementsAre("", "NA", "NaN"));
  EXPECT_EQ(one.table.fields.at(3).dialect.format, "%x");
  EXPECT_EQ(one.table.fields.at(2).dialect.type, FieldType::Inferred);
  for (const Described& version : {one, two}) {
    ASSERT_EQ(version.notes.size(), 1U);
    EXPECT_THAT(version.notes[0].text,
                testing::EndsWith("field \"latitude\" has no \"type\"; it is inferred from the data"));
  }
}

TEST(PublishedPackages, versionTwoLabelsTheMissingValuesOfAnObservationTable) {
  const Described one = Read("v1", "observations", Observations());
  const Described two = Read("v2", "observations", Observations());
  for (std::size_t i = 0; i < Observations().size(); ++i) {
    EXPECT_EQ(one[i].name, two[i].name);
    EXPECT_EQ(one[i].level, two[i].level);
    EXPECT_EQ(one[i].missing.texts, two[i].missing.texts);
    EXPECT_THAT(LabelsOf(one[i]), testing::IsEmpty());
  }
  EXPECT_THAT(LabelsOf(two[0]), ElementsAre("   =missing", "NA =not applicable", "NaN=not a number"));
  EXPECT_THAT(LabelsOf(two[4]), testing::IsEmpty());  // no entry reads as a number
  EXPECT_EQ(one.table.dataPaths.size(), 2U);
  EXPECT_EQ(one.table.dialect.delimiter, "\t");
  EXPECT_EQ(two.table.dialect.delimiter, "\t");
}

TEST(PublishedPackages, countryListHasOneResourceWithoutAName) {
  const Described all = Read("country-list", {}, {StringColumn("Name", 40), StringColumn("Code", 2)});
  EXPECT_EQ(all.dictionary.label, "List of all countries with their 2 digit codes (ISO 3166-2)");
  EXPECT_EQ(all[0].attributes.Name(0), "Description");
  EXPECT_THAT(all[1].attributes.Values(0), ElementsAre("ISO 2-digit code from ISO 3166-alpha-2"));
  EXPECT_EQ(all.dictionary.attributes.Name(0), "Name");
  EXPECT_THAT(all.dictionary.fileSpec.value(), testing::EndsWith("/country-list\\data.csv"));
}

}  // namespace
}  // namespace runtime::data
