#include "runtime/data/dictionary/readdictionary.h"

#include <filesystem>
#include <string_view>
#include <system_error>

#include <fmt/format.h>

#include "runtime/data/dictionary/datapackage.h"
#include "runtime/data/dictionary/datapath.h"
#include "runtime/data/dictionary/jsonfile.h"
#include "runtime/data/dictionary/tableschema.h"

namespace runtime::data {
namespace {

namespace fs = std::filesystem;

bool EndsWith(std::string_view text, std::string_view ending) {
  if (text.size() < ending.size()) return false;
  text.remove_prefix(text.size() - ending.size());
  for (std::size_t i = 0; i < text.size(); ++i) {
    const char lower = text[i] >= 'A' && text[i] <= 'Z' ? static_cast<char>(text[i] + 32) : text[i];
    if (lower != ending[i]) return false;
  }
  return true;
}

bool IsFile(const fs::path& path) {
  std::error_code error;
  return fs::is_regular_file(path, error);
}

/// A schema by itself describes one file, so it speaks for the file too.
TableDescriptor ReadSchemaFile(const JsonPlace& schema, const std::string& path, std::vector<Note>& notes) {
  TableDescriptor table;
  table.origin = path;
  ReadTableSchema(schema, table, notes);
  table.label = schema.FindText("title");
  if (table.label && table.label->empty()) table.label.reset();
  const auto description = schema.FindText("description");
  if (description && !description->empty() && table.documents.empty()) table.documents = {SplitLines(*description)};
  return table;
}

}  // namespace

bool NamesDataPackage(const std::string& path) { return EndsWith(path, ".json"); }

std::optional<std::string> FindDictionary(const std::string& dataPath) {
  const fs::path data(dataPath);
  const fs::path package = data.parent_path() / "datapackage.json";
  if (IsFile(package)) {
    const Json tree = ReadJsonFile(package.string());
    if (PackageLists({tree, package.string()}, package.string(), dataPath)) return package.string();
  }
  for (const char* ending : {".schema.json", ".ddi.xml"}) {
    const fs::path candidate = data.parent_path() / (data.stem().string() + ending);
    if (IsFile(candidate)) return candidate.string();
  }
  return std::nullopt;
}

TableDescriptor ReadDictionary(const DictionaryRequest& request, std::vector<Note>& notes) {
  if (EndsWith(request.path, ".xml"))
    throw DataError(fmt::format(
        "{}: dictionaries in XML are not read yet; give a Data Package or a Table Schema (JSON)", request.path));
  const Json tree = ReadJsonFile(request.path);
  const JsonPlace root(tree, request.path);
  if (!root.isObject()) root.Fail("this is no dictionary; it must be a JSON object, a Data Package or a Table Schema");
  if (root.Find("resources")) return ReadPackage(root, request, notes);
  if (!root.Find("fields"))
    root.Fail("this is no dictionary: a Data Package has the property \"resources\", a Table Schema \"fields\"");
  if (request.resource)
    root.Fail(fmt::format("a Table Schema holds no resource \"{}\"; leave out --resource", *request.resource));
  if (!request.dataPath) root.Fail("a Table Schema names no data; give the data file, and this file with -d");
  return ReadSchemaFile(root, request.path, notes);
}

}  // namespace runtime::data
