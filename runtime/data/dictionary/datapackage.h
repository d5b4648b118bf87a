// Data Package, versions 1 and 2.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "runtime/data/dictionary/descriptor.h"
#include "runtime/data/dictionary/jsonfile.h"
#include "runtime/data/dictionary/readdictionary.h"
#include "runtime/data/open.h"

namespace runtime::data {

/// Whether a resource of the package names the data file.
bool PackageLists(const JsonPlace& package, const std::string& packagePath, const std::string& dataPath);

/// Reads the resource that the request asks for, with what the package says of all its resources. Throws DataError.
TableDescriptor ReadPackage(const JsonPlace& package, const DictionaryRequest& request, std::vector<Note>& notes);

}  // namespace runtime::data
