#include "runtime/data/dictionary/constraints.h"

#include <string_view>

#include "runtime/data/dictionary/jsonfile.h"

namespace runtime::data {
namespace {

/// Null when there is no such extra.
Json FindExtra(const std::vector<ExtraProperty>& extras, std::string_view name) {
  for (const ExtraProperty& extra : extras) {
    if (extra.name != name) continue;
    Json value = Json::parse(extra.json, nullptr, false);
    return value.is_discarded() ? Json() : value;
  }
  return {};
}

std::optional<LabelledValue> ValueOf(const Json& value) {
  if (value.is_string()) return LabelledValue{value.get<std::string>(), false, std::nullopt};
  if (value.is_number() || value.is_boolean()) return LabelledValue{value.dump(), value.is_number(), std::nullopt};
  return std::nullopt;
}

std::optional<LabelledValue> FindValue(const Json& object, const char* name) {
  const auto found = object.find(name);
  return found == object.end() ? std::nullopt : ValueOf(*found);
}

bool FindFlag(const Json& object, const char* name) {
  const auto found = object.find(name);
  return found != object.end() && found->is_boolean() && found->get<bool>();
}

}  // namespace

FieldConstraints ConstraintsOf(const FieldDescriptor& field) {
  FieldConstraints constraints;
  if (field.maxLength) constraints.maxLength = *field.maxLength;
  const Json json = FindExtra(field.extras, "constraints");
  if (!json.is_object()) return constraints;
  constraints.required = FindFlag(json, "required");
  constraints.unique = FindFlag(json, "unique");
  constraints.minimum = FindValue(json, "minimum");
  constraints.maximum = FindValue(json, "maximum");
  constraints.exclusiveMinimum = FindValue(json, "exclusiveMinimum");
  constraints.exclusiveMaximum = FindValue(json, "exclusiveMaximum");
  if (const auto length = json.find("minLength"); length != json.end() && length->is_number_integer())
    constraints.minLength = length->get<std::int64_t>();
  if (const auto pattern = json.find("pattern"); pattern != json.end() && pattern->is_string())
    constraints.pattern = pattern->get<std::string>();
  if (const auto values = json.find("enum"); values != json.end() && values->is_array())
    for (const Json& value : *values)
      if (auto entry = ValueOf(value)) constraints.values.push_back(std::move(*entry));
  return constraints;
}

std::vector<std::string> PrimaryKeyOf(const TableDescriptor& table) {
  const Json json = FindExtra(table.extras, "primaryKey");
  std::vector<std::string> names;
  if (json.is_string()) names.push_back(json.get<std::string>());
  if (json.is_array())
    for (const Json& name : json)
      if (name.is_string()) names.push_back(name.get<std::string>());
  return names;
}

}  // namespace runtime::data
