#include "runtime/data/dictionary/writing/writetableschema.h"

#include <vector>

#include "runtime/data/dictionary/writing/descriptorjson.h"

namespace runtime::data {
namespace {

void WriteJson(const Json& json, std::ostream& out) {
  out << json.dump(2, ' ', false, Json::error_handler_t::replace) << '\n';
}

void CountExtensions(const Json& object, WrittenFacts& facts) {
  const auto codebook = object.find("codebook");
  if (codebook == object.end()) return;
  for (auto property = codebook->begin(); property != codebook->end(); ++property) ++facts.extensions[property.key()];
}

void CountExtensionsOfSchema(const Json& schema, WrittenFacts& facts) {
  CountExtensions(schema, facts);
  for (const Json& field : schema["fields"]) CountExtensions(field, facts);
}

}  // namespace

WrittenFacts WriteTableSchema(const TableDescriptor& table, std::ostream& out) {
  const Json schema = SchemaJson(table);
  WriteJson(schema, out);
  WrittenFacts facts;
  CountExtensionsOfSchema(schema, facts);
  for (const std::vector<ExtraProperty>* extras : {&table.resourceExtras, &table.packageExtras})
    for (const ExtraProperty& extra : *extras) ++facts.leftOut[extra.name];
  const Json resource = PackageJson(table, "data.csv")["resources"][0];
  for (const char* name : {"dialect", "encoding"})
    if (resource.contains(name)) ++facts.leftOut[name];
  return facts;
}

WrittenFacts WriteDataPackage(const TableDescriptor& table, const std::string& data, std::ostream& out) {
  const Json package = PackageJson(table, data);
  WriteJson(package, out);
  WrittenFacts facts;
  CountExtensions(package, facts);
  const Json& resource = package["resources"][0];
  CountExtensions(resource, facts);
  if (resource.contains("schema")) CountExtensionsOfSchema(resource["schema"], facts);
  return facts;
}

}  // namespace runtime::data
