#include "runtime/data/dictionary/packagefacts.h"

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include <fmt/format.h>

#include "runtime/data/dictionary/extras.h"
#include "runtime/data/dictionary/tableschema.h"

namespace runtime::data {
namespace {

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

/// The first text of that name that is not empty, of the resource or else of the package. The other level's text, which
/// then stands for nothing, is kept.
std::optional<std::string> TakeText(const JsonPlace& resource, const PackageContext& context, const char* key,
                                    TableDescriptor& table) {
  std::optional<std::string> ofResource = FindText(resource, key, context.deviations);
  std::optional<std::string> ofPackage = FindText(context.package, key, context.deviations);
  if (ofResource && !ofResource->empty()) {
    if (ofPackage) table.packageExtras.push_back({key, Json(*ofPackage).dump()});
    return ofResource;
  }
  if (ofPackage && !ofPackage->empty()) return ofPackage;
  return std::nullopt;
}

void KeepProfile(const JsonPlace& object, std::vector<ExtraProperty>& extras) {
  const auto schema = object.Find("$schema");
  if (schema && !IsStandardProfile(*schema)) extras.push_back({"$schema", schema->Written()});
}

/// Version 1 says by a profile that a resource is a table, version 2 by a type.
void KeepExtrasOfResource(const JsonPlace& resource, std::vector<ExtraProperty>& extras) {
  KeepProfile(resource, extras);
  for (const auto& [key, word] : {std::pair{"type", "table"}, std::pair{"profile", "tabular-data-resource"}}) {
    const auto property = resource.Find(key);
    if (property && !(property->isText() && property->Text() == word)) extras.push_back({key, property->Written()});
  }
  KeepExtras(resource,
             {"$schema", "type", "profile", "title", "description", "encoding", "dialect", "schema", "codebook"},
             extras);
}

}  // namespace

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

bool IsStandardProfile(const JsonPlace& schema) {
  if (!schema.isText()) return false;
  const std::string& address = schema.Text();
  return address.find("datapackage.org/profiles/") != std::string::npos ||
         address.find("specs.frictionlessdata.io/schemas/") != std::string::npos;
}

void ReadPackageFacts(const JsonPlace& resource, const PackageContext& context, TableDescriptor& table) {
  table.label = TakeText(resource, context, "title", table);
  bool documented = !table.documents.empty();
  const auto ofResource = resource.Find("codebook");
  const auto ofPackage = context.package.Find("codebook");
  for (const auto& [codebook, extras] :
       {std::pair{&ofResource, &table.resourceExtras}, std::pair{&ofPackage, &table.packageExtras}}) {
    if (!*codebook) continue;
    NoteUnknownMembers(**codebook, {"weight", "multipleResponseSets", "documents", "attributes", "ddi"}, context.notes,
                       *extras);
    KeepDdiExtras(**codebook, table.extras);
    const auto documents = (*codebook)->Find("documents");
    if (documents && !documented) {
      table.documents = ReadDocuments(*documents);
      documented = true;
    }
    if (const auto attributes = (*codebook)->Find("attributes")) ReadAttributes(*attributes, table.attributes);
  }
  if (documented) {
    for (const auto& [place, extras] :
         {std::pair{&resource, &table.resourceExtras}, std::pair{&context.package, &table.packageExtras}})
      if (const auto description = FindText(*place, "description", context.deviations))
        extras->push_back({"description", Json(*description).dump()});
  } else if (const auto description = TakeText(resource, context, "description", table)) {
    table.documents = {SplitLines(*description)};
  }
  if (ofResource) ReadWeightAndSets(*ofResource, table);
  AddPackageAttributes(context.package, table.attributes);
  KeepExtrasOfResource(resource, table.resourceExtras);
  KeepProfile(context.package, table.packageExtras);
  KeepExtras(context.package, {"$schema", "title", "description", "resources", "codebook"}, table.packageExtras);
}

}  // namespace runtime::data
