// What the profiles of Table Schema 2.0 and Data Package 2.0 allow.
#pragma once

#include <string>
#include <string_view>

#include "runtime/data/dictionary/descriptor.h"
#include "runtime/data/dictionary/jsonfile.h"

namespace runtime::data {

inline constexpr std::string_view kTableSchemaProfile = "https://datapackage.org/profiles/2.0/tableschema.json";
inline constexpr std::string_view kDataPackageProfile = "https://datapackage.org/profiles/2.0/datapackage.json";

/// Whether a property of a field may have that value. `type` is the field's type as a word, empty for none. A property
/// that the profile does not name may have any.
bool ProfileAllowsInField(std::string_view type, std::string_view name, const Json& value);
/// The same for a property of a schema, a resource and a package.
bool ProfileAllowsInSchema(std::string_view name, const Json& value);
bool ProfileAllowsInResource(std::string_view name, const Json& value);
bool ProfileAllowsInPackage(std::string_view name, const Json& value);

}  // namespace runtime::data
