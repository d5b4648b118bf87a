#include "runtime/data/dictionary/readdictionary.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <fstream>
#include <string_view>
#include <system_error>

#include <fmt/format.h>

#include "runtime/data/compression/packing.h"
#include "runtime/data/dictionary/datapackage.h"
#include "runtime/data/dictionary/datapath.h"
#include "runtime/data/dictionary/ddi/readddi.h"
#include "runtime/data/dictionary/jsonfile.h"
#include "runtime/data/dictionary/keptproperties.h"
#include "runtime/data/dictionary/packagefacts.h"
#include "runtime/data/dictionary/redcap/readredcap.h"
#include "runtime/data/dictionary/tableschema.h"
#include "runtime/data/headersofdata.h"
#include "runtime/data/typing/quotedcell.h"

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

enum class FileKind { Json, Xml, Redcap };

/// By the file's name, else by its first character.
FileKind KindOf(const std::string& path) {
  if (EndsWith(path, ".json")) return FileKind::Json;
  if (EndsWith(path, ".xml")) return FileKind::Xml;
  if (!IsFile(path)) return FileKind::Json;  // a pipe can be read only once
  std::array<char, 64> beginning{};
  std::ifstream file(path, std::ios::binary);
  file.read(beginning.data(), beginning.size());
  if (LooksLikeXml({beginning.data(), static_cast<std::size_t>(file.gcount())})) return FileKind::Xml;
  return IsRedcapDictionary(path) ? FileKind::Redcap : FileKind::Json;
}

/// A schema by itself describes one file, so it speaks for the file too.
TableDescriptor ReadSchemaFile(const JsonPlace& schema, const std::string& path, std::vector<Note>& notes) {
  TableDescriptor table;
  table.origin = path;
  ReadTableSchema(schema, table, notes);
  table.label = schema.FindText("title");
  if (table.label && table.label->empty()) table.label.reset();
  const auto description = schema.FindText("description");
  if (description && !table.documents.empty()) table.extras.push_back({"description", Json(*description).dump()});
  if (description && !description->empty() && table.documents.empty()) table.documents = {SplitLines(*description)};
  const auto profile = schema.Find("$schema");
  if (profile && !IsStandardProfile(*profile)) table.extras.push_back({"$schema", profile->Written()});
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
  const std::string stem = fs::path(WithoutPackedEnding(dataPath)).stem().string();
  for (const char* ending : {".schema.json", ".ddi.xml"}) {
    const fs::path candidate = data.parent_path() / (stem + ending);
    if (IsFile(candidate)) return candidate.string();
  }
  return std::nullopt;
}

TableDescriptor ReadDictionary(const DictionaryRequest& request, std::vector<Note>& notes) {
  const FileKind kind = KindOf(request.path);
  const auto headers = [&] {
    if (request.headers) return *request.headers;
    return request.dataPath ? HeadersOfData(*request.dataPath) : std::vector<std::string>();
  };
  if (kind == FileKind::Xml) return ReadDdi(request.path, {request.resource, request.dataPath, headers}, notes);
  if (kind == FileKind::Redcap && request.resource)
    throw DataError(fmt::format("{}: a REDCap data dictionary holds no resource {}; leave out --resource", request.path,
                                QuotedCell(*request.resource)));
  if (kind == FileKind::Redcap) return ReadRedcap(request.path, headers, notes);
  Json tree = ReadJsonFile(request.path, &notes);
  RestoreKeptProperties(tree);
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

std::optional<TableDescriptor> ReadDictionaryText(const std::string& text, const DictionaryRequest& request,
                                                  std::vector<Note>& notes) {
  Json tree = ParseJson(text, request.path, &notes);
  RestoreKeptProperties(tree);
  const JsonPlace root(tree, request.path);
  if (!root.isObject()) return std::nullopt;
  if (root.Find("resources")) return ReadPackage(root, request, notes);
  const auto fields = root.Find("fields");
  // Other programs keep schemas of their own under such names.
  const auto isField = [](const JsonPlace& field) { return field.isObject() && field.Find("name"); };
  if (!fields || !fields->isList()) return std::nullopt;
  const std::vector<JsonPlace> entries = fields->Entries();
  if (!std::all_of(entries.begin(), entries.end(), isField)) return std::nullopt;
  return ReadSchemaFile(root, request.path, notes);
}

}  // namespace runtime::data
