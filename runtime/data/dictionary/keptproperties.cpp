#include "runtime/data/dictionary/keptproperties.h"

#include <utility>

namespace runtime::data {
namespace {

Json* Member(Json& object, const char* name) {
  if (!object.is_object()) return nullptr;
  const auto found = object.find(name);
  return found == object.end() ? nullptr : &*found;
}

void RestoreIn(Json& object) {
  Json* codebook = Member(object, "codebook");
  Json* found = codebook ? Member(*codebook, "kept") : nullptr;
  if (!found || !found->is_object()) return;
  const Json kept = std::move(*found);
  codebook->erase("kept");
  if (codebook->empty()) object.erase("codebook");
  for (auto property = kept.begin(); property != kept.end(); ++property) object[property.key()] = property.value();
}

void RestoreInSchema(Json& schema) {
  RestoreIn(schema);
  Json* fields = Member(schema, "fields");
  if (!fields || !fields->is_array()) return;
  for (Json& field : *fields) RestoreIn(field);
}

}  // namespace

void RestoreKeptProperties(Json& root) {
  RestoreInSchema(root);
  Json* resources = Member(root, "resources");
  if (!resources || !resources->is_array()) return;
  for (Json& resource : *resources) {
    RestoreIn(resource);
    if (Json* schema = Member(resource, "schema")) RestoreInSchema(*schema);
  }
}

}  // namespace runtime::data
