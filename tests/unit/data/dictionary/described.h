// Dictionaries from descriptors written in the test, over columns that the test makes up.
#pragma once

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "runtime/data/dictionary/assemble.h"
#include "runtime/data/dictionary/jsonfile.h"
#include "runtime/data/dictionary/readdictionary.h"
#include "runtime/data/dictionary/tableschema.h"
#include "runtime/data/store/numericpart.h"

namespace runtime::data {

inline ColumnFacts StringColumn(std::string header, std::size_t longestValue = 0) {
  ColumnFacts facts;
  facts.header = std::move(header);
  facts.type = FieldType::String;
  facts.longestValue = longestValue;
  return facts;
}

inline ColumnFacts NumberColumn(std::string header, FieldType type, const std::vector<double>& values = {},
                                int decimals = 0) {
  ColumnFacts facts;
  facts.header = std::move(header);
  facts.type = type;
  facts.decimals = decimals;
  NumericPart part;
  part.AppendDoubles(values.data(), values.size());
  part.AddFactsTo(facts.values);
  return facts;
}

struct Described {
  TableDescriptor table;
  Dictionary dictionary;
  std::vector<Note> notes;

  const VariableRecord& operator[](std::size_t index) const { return *dictionary.variables[index]; }
};

/// Reads the schema and assembles it with the columns.
inline Described Describe(const std::string& schema, const std::vector<ColumnFacts>& columns, bool strict = false) {
  Described result;
  const Json tree = ParseJson(schema, "test.schema.json");
  result.table.origin = "test.schema.json";
  ReadTableSchema({tree, "test.schema.json"}, result.table, result.notes);
  std::vector<std::string> headers;
  for (const ColumnFacts& facts : columns) headers.push_back(facts.header);
  const auto fields = MatchFields(result.table, headers, strict, result.notes);
  std::vector<DescribedColumn> described;
  for (std::size_t i = 0; i < columns.size(); ++i) described.push_back({&columns[i], fields[i]});
  result.dictionary = AssembleDictionary(&result.table, described, "/data/test.csv", result.notes);
  return result;
}

/// The message of the DataError that reading and assembling throws, empty when it throws none.
inline std::string ErrorOf(const std::string& schema, const std::vector<ColumnFacts>& columns, bool strict = false) {
  try {
    Describe(schema, columns, strict);
  } catch (const DataError& error) {
    return error.what();
  }
  return {};
}

/// The labels of a variable as "value=label" in their order.
inline std::vector<std::string> LabelsOf(const VariableRecord& variable) {
  std::vector<std::string> labels;
  MAVO_ValueLabelMap map(variable.valueLabels);
  const OBS* value = nullptr;
  const char* label = nullptr;
  while (map.GetNextPair(value, label) != 0) {
    std::string text;
    if (variable.width > 0)
      text.assign(reinterpret_cast<const char*>(value), static_cast<std::size_t>(variable.width));
    else
      text = nlohmann::json(value->number).dump();
    labels.push_back(text + "=" + label);
  }
  return labels;
}

/// A folder that is gone when the test ends.
class TemporaryFolder {
 public:
  TemporaryFolder() {
    std::string pattern = (std::filesystem::temp_directory_path() / "codebook-XXXXXX").string();
    fPath = mkdtemp(pattern.data());
  }
  ~TemporaryFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(fPath, ignored);
  }
  TemporaryFolder(const TemporaryFolder&) = delete;
  TemporaryFolder& operator=(const TemporaryFolder&) = delete;

  std::string Write(const std::string& name, std::string_view text) const {
    const std::filesystem::path path = fPath / name;
    std::filesystem::create_directories(path.parent_path());
    std::ofstream(path, std::ios::binary) << text;
    return path.string();
  }
  std::string Path(const std::string& name = {}) const {
    return name.empty() ? fPath.string() : (fPath / name).string();
  }

 private:
  std::filesystem::path fPath;
};

}  // namespace runtime::data
