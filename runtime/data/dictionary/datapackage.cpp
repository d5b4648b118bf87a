#include "runtime/data/dictionary/datapackage.h"

#include <algorithm>
#include <filesystem>
#include <system_error>
#include <utility>

#include <fmt/format.h>

#include "runtime/data/dictionary/datapath.h"
#include "runtime/data/dictionary/tableschema.h"

namespace runtime::data {
namespace {

namespace fs = std::filesystem;

/// The paths of a resource: `path` (before version 1: `url`), one or a list.
std::vector<JsonPlace> PathsOf(const JsonPlace& resource) {
  auto path = resource.Find("path");
  if (!path) path = resource.Find("url");
  if (!path) return {};
  return path->isList() ? path->Entries() : std::vector<JsonPlace>{*path};
}

bool ResourceLists(const JsonPlace& resource, const std::string& folder, const std::string& dataPath) {
  std::error_code error;
  const fs::path wanted = fs::weakly_canonical(dataPath, error);
  if (error) return false;
  for (const JsonPlace& path : PathsOf(resource)) {
    if (!path.isText() || IsUrl(path.Text())) continue;
    const fs::path listed = fs::weakly_canonical(fs::path(folder) / path.Text(), error);
    if (!error && listed == wanted) return true;
  }
  return false;
}

std::string ResourceNames(const std::vector<JsonPlace>& resources) {
  std::vector<std::string> names;
  for (const JsonPlace& resource : resources) names.push_back(resource.FindText("name").value_or("(no name)"));
  return fmt::format("{}", fmt::join(names, ", "));
}

JsonPlace ChooseResource(const JsonPlace& package, const DictionaryRequest& request) {
  const JsonPlace list = package.Need("resources");
  const std::vector<JsonPlace> resources = list.Entries();
  if (resources.empty()) list.Fail("the package holds no resource");
  if (request.resource) {
    for (const JsonPlace& resource : resources)
      if (resource.FindText("name") == request.resource) return resource;
    list.Fail(
        fmt::format("there is no resource \"{}\"; the package holds: {}", *request.resource, ResourceNames(resources)));
  }
  if (request.dataPath)
    for (const JsonPlace& resource : resources)
      if (ResourceLists(resource, FolderOf(request.path), *request.dataPath)) return resource;
  if (resources.size() == 1) return resources.front();
  list.Fail(fmt::format("the package holds several resources; choose one with --resource NAME: {}",
                        ResourceNames(resources)));
}

/// A descriptor that stands in place or in a file of the folder.
class Referred {
 public:
  Referred(const JsonPlace& place, const std::string& file) : fFile(file), fTree(ReadJsonFile(file)) {
    if (!fTree.is_object()) place.Fail(fmt::format("the file \"{}\" holds no JSON object", file));
  }
  JsonPlace Root() const { return {fTree, fFile}; }

 private:
  std::string fFile;
  Json fTree;
};

/// A schema is often named by the address from which it is published, while a copy of it lies in the package.
std::string LocalCopy(const std::string& folder, const JsonPlace& place) {
  const std::string& url = place.Text();
  const std::string name = url.substr(url.rfind('/') + 1);
  for (const fs::path& candidate : {fs::path(folder) / name, fs::path(folder) / "schemas" / name}) {
    std::error_code error;
    if (!name.empty() && fs::is_regular_file(candidate, error)) return candidate.string();
  }
  place.Fail(fmt::format("\"{}\" is on the network, and nothing is fetched; save it beside the descriptor as \"{}\"",
                         url, name));
}

std::string ReferredPath(const std::string& folder, const JsonPlace& place, std::vector<Note>& notes) {
  if (!IsUrl(place.Text())) return PathInFolder(folder, place);
  std::string copy = LocalCopy(folder, place);
  notes.push_back({false, fmt::format("{}: \"{}\" was not fetched; its local copy \"{}\" was read", place.Where(),
                                      place.Text(), copy)});
  return copy;
}

void ReadSchemaOf(const JsonPlace& resource, const std::string& folder, TableDescriptor& table,
                  std::vector<Note>& notes) {
  const auto schema = resource.Find("schema");
  if (!schema) {
    table.missingValues = {LabelledValue{}};
    return;
  }
  if (!schema->isText()) {
    ReadTableSchema(*schema, table, notes);
    return;
  }
  const Referred referred(*schema, ReferredPath(folder, *schema, notes));
  ReadTableSchema(referred.Root(), table, notes);
}

/// One character, or none where that has a meaning.
std::string OneCharacter(const JsonPlace& place, bool mayBeEmpty) {
  const std::string& text = place.Text();
  const bool fits =
      text.empty() ? mayBeEmpty : text.size() == 1 && text[0] != '\n' && text[0] != '\r' && text[0] != '\0';
  if (!fits) place.Fail(fmt::format("\"{}\" cannot be used; this must be one ASCII character", text));
  return text;
}

void NoteUnusedDialect(const JsonPlace& dialect, std::vector<Note>& notes) {
  for (const char* name : {"escapeChar", "commentChar", "commentRows", "headerRows", "headerJoin", "nullSequence"}) {
    const auto property = dialect.Find(name);
    if (!property || (std::string(name) == "headerRows" && property->Written() == "[1]") ||
        std::string(name) == "headerJoin")
      continue;
    notes.push_back({false, property->Where() + ": this property of the dialect is not supported and not used"});
  }
  const auto line = dialect.Find("lineTerminator");
  if (line && line->Text() != "\r\n" && line->Text() != "\n" && line->Text() != "\r")
    notes.push_back({false, line->Where() + ": lines are taken to end with LF, CRLF or CR"});
}

void ReadDialect(const JsonPlace& dialect, TextDialect& text, std::vector<Note>& notes) {
  if (const auto delimiter = dialect.Find("delimiter")) text.delimiter = OneCharacter(*delimiter, false);
  auto quote = dialect.Find("quoteChar");
  if (!quote) quote = dialect.Find("quotechar");
  if (quote) text.quoteChar = OneCharacter(*quote, true);
  auto doubled = dialect.FindFlag("doubleQuote");
  if (!doubled) doubled = dialect.FindFlag("doublequote");
  text.doubleQuote = doubled;
  text.header = dialect.FindFlag("header");
  auto skip = dialect.FindFlag("skipInitialSpace");
  if (!skip) skip = dialect.FindFlag("skipinitialspace");
  text.skipInitialSpace = skip;
  NoteUnusedDialect(dialect, notes);
}

void ReadDialectOf(const JsonPlace& resource, const std::string& folder, TableDescriptor& table,
                   std::vector<Note>& notes) {
  table.dialect.encoding = resource.FindText("encoding");
  const auto dialect = resource.Find("dialect");
  if (!dialect) return;
  if (!dialect->isText()) {
    ReadDialect(*dialect, table.dialect, notes);
    return;
  }
  const Referred referred(*dialect, ReferredPath(folder, *dialect, notes));
  ReadDialect(referred.Root(), table.dialect, notes);
}

void ReadDataPaths(const JsonPlace& resource, const std::string& folder, TableDescriptor& table) {
  const std::vector<JsonPlace> paths = PathsOf(resource);
  if (paths.empty() && resource.Find("data"))
    resource.Fail(
        "the data stand in the descriptor itself, which is not read yet; save them as a CSV file and name it "
        "with \"path\"");
  if (paths.empty()) resource.Fail("the resource names no data; give it a \"path\"");
  for (const JsonPlace& path : paths) table.dataPaths.push_back(PathInFolder(folder, path));
}

/// An entry of a list such as the licences: an object becomes its texts, in their order.
std::string EntryText(const JsonPlace& entry) {
  if (!entry.isObject() && !entry.isList()) return entry.isNull() ? std::string() : entry.Scalar();
  std::vector<std::string> parts;
  if (entry.isObject())
    for (const auto& member : entry.Members()) parts.push_back(EntryText(member.second));
  else
    for (const JsonPlace& item : entry.Entries()) parts.push_back(EntryText(item));
  parts.erase(std::remove(parts.begin(), parts.end(), std::string()), parts.end());
  return fmt::format("{}", fmt::join(parts, ", "));
}

void AddPackageAttributes(const JsonPlace& package, DatasourceAttributes& attributes) {
  for (const char* key :
       {"name", "version", "created", "licenses", "contributors", "sources", "keywords", "homepage", "id"}) {
    const auto property = package.Find(key);
    if (!property) continue;
    std::string name = key;
    name[0] = static_cast<char>(name[0] - 'a' + 'A');
    std::vector<std::string> values;
    if (property->isList())
      for (const JsonPlace& entry : property->Entries()) values.push_back(EntryText(entry));
    else
      values.push_back(EntryText(*property));
    attributes.Add(std::move(name), std::move(values));
  }
}

std::optional<std::string> FindFilledText(const JsonPlace& first, const JsonPlace& second, const char* key) {
  for (const JsonPlace& place : {first, second}) {
    std::optional<std::string> text = place.FindText(key);
    if (text && !text->empty()) return text;
  }
  return std::nullopt;
}

void ReadFileFacts(const JsonPlace& resource, const JsonPlace& package, TableDescriptor& table,
                   std::vector<Note>& notes) {
  table.label = FindFilledText(resource, package, "title");
  bool documented = !table.documents.empty();
  const auto ofResource = resource.Find("codebook");
  const auto ofPackage = package.Find("codebook");
  for (const auto& codebook : {ofResource, ofPackage}) {
    if (!codebook) continue;
    NoteUnknownMembers(*codebook, {"weight", "multipleResponseSets", "documents", "attributes"}, notes);
    const auto documents = codebook->Find("documents");
    if (documents && !documented) {
      table.documents = ReadDocuments(*documents);
      documented = true;
    }
    if (const auto attributes = codebook->Find("attributes")) ReadAttributes(*attributes, table.attributes);
  }
  const auto description = FindFilledText(resource, package, "description");
  if (description && !documented) table.documents = {SplitLines(*description)};
  if (ofResource) ReadWeightAndSets(*ofResource, table);
  AddPackageAttributes(package, table.attributes);
}

}  // namespace

bool PackageLists(const JsonPlace& package, const std::string& packagePath, const std::string& dataPath) {
  const auto resources = package.Find("resources");
  if (!resources) return false;
  const std::string folder = FolderOf(packagePath);
  const std::vector<JsonPlace> entries = resources->Entries();
  return std::any_of(entries.begin(), entries.end(),
                     [&](const JsonPlace& resource) { return ResourceLists(resource, folder, dataPath); });
}

TableDescriptor ReadPackage(const JsonPlace& package, const DictionaryRequest& request, std::vector<Note>& notes) {
  TableDescriptor table;
  table.origin = request.path;
  const JsonPlace resource = ChooseResource(package, request);
  const std::string folder = FolderOf(request.path);
  if (!request.dataPath) ReadDataPaths(resource, folder, table);
  ReadDialectOf(resource, folder, table, notes);
  ReadSchemaOf(resource, folder, table, notes);
  ReadFileFacts(resource, package, table, notes);
  return table;
}

}  // namespace runtime::data
