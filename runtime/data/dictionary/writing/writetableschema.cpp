#include "runtime/data/dictionary/writing/writetableschema.h"

#include "runtime/data/dictionary/writing/descriptorjson.h"

namespace runtime::data {
namespace {

void WriteJson(const Json& json, std::ostream& out) {
  out << json.dump(2, ' ', false, Json::error_handler_t::replace) << '\n';
}

}  // namespace

void WriteTableSchema(const TableDescriptor& table, std::ostream& out) { WriteJson(SchemaJson(table), out); }

void WriteDataPackage(const TableDescriptor& table, const std::string& data, std::ostream& out) {
  WriteJson(PackageJson(table, data), out);
}

}  // namespace runtime::data
