#include "runtime/data/dictionary/embeddeddictionary.h"

#include <algorithm>

#include <fmt/format.h>

#include "runtime/data/dictionary/readdictionary.h"

namespace runtime::data {

const std::vector<std::string>& DictionaryKeys() {
  static const std::vector<std::string> keys = {"codebook.schema", "datapackage",  "frictionless",
                                                "tableschema",     "table_schema", "schema"};
  return keys;
}

std::optional<TableDescriptor> ReadEmbeddedDictionary(const std::string& dataPath,
                                                      const std::vector<std::pair<std::string, std::string>>& metadata,
                                                      const OpenOptions& options, std::vector<Note>& notes) {
  for (const std::string& key : DictionaryKeys()) {
    const auto found =
        std::find_if(metadata.begin(), metadata.end(), [&](const auto& entry) { return entry.first == key; });
    if (found == metadata.end()) continue;
    const std::string origin = fmt::format("{} (metadata {})", dataPath, key);
    try {
      std::vector<Note> ofReading;
      auto table = ReadDictionaryText(found->second, {origin, options.resource, dataPath, options.schemas}, ofReading);
      if (!table) continue;
      notes.insert(notes.end(), ofReading.begin(), ofReading.end());
      return table;
    } catch (const DataError& error) {
      if (options.strict) throw;
      notes.push_back({false, fmt::format("{}; this dictionary is not used, name another one with -d", error.what())});
    }
  }
  return std::nullopt;
}

}  // namespace runtime::data
