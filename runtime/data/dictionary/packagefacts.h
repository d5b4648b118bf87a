// What a package and its resource say of the dataset as a whole.
#pragma once

#include "runtime/data/dictionary/descriptor.h"
#include "runtime/data/dictionary/packagecontext.h"

namespace runtime::data {

/// Label, documents, attributes, weight and sets; what the schema gave already stays. Everything that is not understood
/// is kept in the extras of both. Throws DataError.
void ReadPackageFacts(const JsonPlace& resource, const PackageContext& context, TableDescriptor& table);

/// Adds the attributes that properties of a package become.
void AddPackageAttributes(const JsonPlace& package, DatasourceAttributes& attributes);

/// Whether a `$schema` names a profile of the standard, which a writer names by itself.
bool IsStandardProfile(const JsonPlace& schema);

}  // namespace runtime::data
