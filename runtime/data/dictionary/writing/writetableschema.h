// Writing Table Schema and Data Package, version 2.
#pragma once

#include <ostream>
#include <string>

#include "runtime/data/dictionary/descriptor.h"
#include "runtime/data/dictionary/writing/writtenfacts.h"

namespace runtime::data {

/// A Table Schema by itself, valid against the profile of version 2.0 where there is at least one field: two spaces a
/// level, properties in the order of the standard. Facts of a resource or package (dialect, paths, their extras) have
/// no place in it.
WrittenFacts WriteTableSchema(const TableDescriptor& table, std::ostream& out);

/// A Data Package of one resource, valid likewise; everything that a descriptor can say. `data` is the path of the data
/// below the package's folder, for a descriptor that gives none.
WrittenFacts WriteDataPackage(const TableDescriptor& table, const std::string& data, std::ostream& out);

}  // namespace runtime::data
