// Descriptors that were damaged at random: they are read or refused, and nothing else happens.
#include <filesystem>
#include <fstream>
#include <random>
#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "tests/unit/data/dictionary/described.h"

namespace runtime::data {
namespace {

const std::string& Original() {
  static const std::string text = R"({"name":"p","title":"T","keywords":["a",1],"licenses":[{"name":"x","path":null}],
"resources":[{"name":"r","path":["data.csv"],"dialect":{"delimiter":";","quoteChar":"\"","header":true,"escapeChar":"\\",
"commentRows":[1],"headerRows":[2],"commentChar":"#","lineTerminator":";","nullSequence":"NA","property":"x"},
"encoding":"utf-8","description":"a\nb","codebook":{"attributes":{"a":"1","b":["2"]},"documents":["x",["y"]]},
"schema":{"fieldsMatch":"subset","primaryKey":["s"],"missingValues":[{"value":"-9","label":"refused"},""],"fields":[
{"name":"a b","type":"integer","title":"A","categories":[{"value":1,"label":"one"},{"value":"2","label":"two"}],
"categoriesOrdered":true,"constraints":{"maxLength":3,"enum":[1]},"codebook":{"format":"F8.2","measure":"ordinal",
"role":"target","missingRanges":[{"min":90,"max":99}],"attributes":{"k":"v"},"valueLabels":[{"value":3,"label":"x"}]}},
{"name":"s","type":"string","description":"d","missingValues":["NA"],
"categories":{"resource":"codes","valueField":"c","labelField":"l"}},{"name":"w","type":"number","decimalChar":","},
{"name":"d","type":"date","format":"%d.%m.%Y"},{"name":"b","type":"boolean","trueValues":["y"],"falseValues":["n"]}],
"codebook":{"weight":"w","multipleResponseSets":[{"name":"$x","type":"dichotomy","variables":["b","a b"],
"countedValue":"1","categoryLabels":"countedValues"},{"name":"$y","type":"category","variables":["s"]}]}}},
{"name":"codes","format":"json","data":[{"c":"x","l":"an x"},{"c":1,"l":null,"m":[{}]}]}]})";
  return text;
}

/// Reads and assembles; true when the descriptor was taken.
bool Taken(const std::string& descriptor, const TemporaryFolder& folder) {
  static const std::vector<ColumnFacts> columns = {
      NumberColumn("a b", FieldType::Integer, {1, 2, 95}), StringColumn("s", 4),
      NumberColumn("w", FieldType::Number, {1}),           NumberColumn("d", FieldType::Date, {0}),
      NumberColumn("b", FieldType::Boolean, {0, 1}),       StringColumn("", 2)};
  try {
    std::vector<Note> notes;
    const TableDescriptor table = ReadDictionary({folder.Write("datapackage.json", descriptor), "r", {}}, notes);
    std::vector<std::string> headers;
    for (const ColumnFacts& facts : columns) headers.push_back(facts.header);
    const auto fields = MatchFields(table, headers, false, notes);
    std::vector<DescribedColumn> described;
    for (std::size_t i = 0; i < columns.size(); ++i) described.push_back({&columns[i], fields[i]});
    const Dictionary dictionary = AssembleDictionary(&table, described, std::nullopt, notes);
    EXPECT_EQ(dictionary.variables.size(), columns.size());
    return true;
  } catch (const DataError& error) {
    EXPECT_NE(std::string(error.what()).find(folder.Path()), std::string::npos) << error.what();
    return false;
  }
}

TEST(DamagedDescriptor, isTakenAsLongAsItIsWhole) {
  const TemporaryFolder folder;
  folder.Write("data.csv", "");
  EXPECT_TRUE(Taken(Original(), folder));
}

TEST(DamagedDescriptor, isReadOrRefusedWhateverBytesChange) {
  const TemporaryFolder folder;
  folder.Write("data.csv", "");
  std::mt19937 random(20260211);
  const std::string bytes = "{}[]\",:0-9e.\\nulltrue \t\x80\xFF$";
  int taken = 0;
  for (int round = 0; round < 800; ++round) {
    std::string text = Original();
    for (std::size_t changes = 1 + random() % 4; changes > 0; --changes) {
      const std::size_t at = random() % text.size();
      switch (random() % 4) {
        case 0:
          text[at] = bytes[random() % bytes.size()];
          break;
        case 1:
          text.erase(at, 1 + random() % 20);
          break;
        case 2:
          text.insert(at, 1, bytes[random() % bytes.size()]);
          break;
        default:
          text.resize(at + 1);
          break;
      }
      if (text.empty()) text = " ";
    }
    taken += Taken(text, folder) ? 1 : 0;
  }
  EXPECT_GT(taken, 5);
  EXPECT_LT(taken, 790);
}

/// Another value in place of one somewhere in the tree.
void ReplaceSomewhere(Json& tree, std::mt19937& random) {
  static const std::vector<Json> values = {nullptr, 1,  -2.5,          true,           "",          "$x", "F8.2", "s",
                                           "a b",   {}, Json::array(), Json::object(), {1, {2, 3}}, 1e300};
  Json* place = &tree;
  while (place->is_structured() && !place->empty() && random() % 8 != 0) {
    auto child = place->begin();
    std::advance(child, static_cast<std::ptrdiff_t>(random() % place->size()));
    place = &*child;
  }
  *place = values[random() % values.size()];
}

TEST(DamagedDescriptor, isReadOrRefusedWhateverValuesChange) {
  const TemporaryFolder folder;
  folder.Write("data.csv", "");
  std::mt19937 random(20260212);
  const Json original = Json::parse(Original());
  int taken = 0;
  for (int round = 0; round < 1500; ++round) {
    Json tree = original;
    for (std::size_t changes = 1 + random() % 3; changes > 0; --changes) ReplaceSomewhere(tree, random);
    taken += Taken(tree.dump(), folder) ? 1 : 0;
  }
  EXPECT_GT(taken, 100);
  EXPECT_LT(taken, 1450);
}

}  // namespace
}  // namespace runtime::data
