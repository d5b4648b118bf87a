#include "runtime/data/dictionary/datapackage.h"

#include <algorithm>
#include <filesystem>
#include <system_error>
#include <utility>

#include <fmt/format.h>

#include "runtime/data/dictionary/categoryresource.h"
#include "runtime/data/dictionary/datapath.h"
#include "runtime/data/dictionary/packagefacts.h"
#include "runtime/data/dictionary/referredfile.h"
#include "runtime/data/dictionary/resourcedata.h"
#include "runtime/data/dictionary/tableschema.h"

namespace runtime::data {
namespace {

namespace fs = std::filesystem;

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

JsonPlace ChooseResource(const PackageContext& context, const DictionaryRequest& request) {
  const JsonPlace list = context.package.Need("resources");
  const std::vector<JsonPlace> resources = list.Entries();
  if (resources.empty()) list.Fail("the package holds no resource");
  if (request.resource) return FindResource(context, *request.resource, list);
  if (request.dataPath)
    for (const JsonPlace& resource : resources)
      if (ResourceLists(resource, context.folder, *request.dataPath)) return resource;
  if (resources.size() == 1) return resources.front();
  list.Fail(
      fmt::format("the package holds several resources; choose one with --resource NAME: {}", ResourceNames(context)));
}

/// Title and description of a schema that stands in a package say nothing of the dataset.
void ReadSchema(const JsonPlace& schema, const SchemaContext& context, TableDescriptor& table) {
  ReadTableSchema(schema, table, context);
  for (const char* key : {"title", "description"})
    if (const auto property = schema.Find(key)) table.extras.push_back({key, property->Written()});
}

void ReadSchemaOf(const JsonPlace& resource, const PackageContext& package, TableDescriptor& table) {
  const auto schema = resource.Find("schema");
  if (!schema) {
    table.missingValues = {LabelledValue{}};
    return;
  }
  const SchemaContext context{package.notes, package.deviations, [&](const JsonPlace& reference) {
                                return ReadCategoryResource(reference, resource, package);
                              }};
  if (!schema->isText()) {
    ReadSchema(*schema, context, table);
    return;
  }
  const ReferredFile file(*schema, package);
  ReadSchema(file.root(), context, table);
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
  Deviations deviations;
  const PackageContext context{package, FolderOf(request.path), request.schemas, notes, deviations};
  const JsonPlace resource = ChooseResource(context, request);
  ResourceData data = ReadResourceData(resource, context, !request.dataPath, table.dialect);
  table.dataPaths = std::move(data.paths);
  table.inlineData = std::move(data.inlineData);
  ReadSchemaOf(resource, context, table);
  ReadPackageFacts(resource, context, table);
  deviations.Report(notes);
  return table;
}

}  // namespace runtime::data
