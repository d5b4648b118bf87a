// A descriptor as the JSON of Table Schema and Data Package, version 2.
#pragma once

#include <string>
#include <vector>

#include "runtime/data/dictionary/descriptor.h"
#include "runtime/data/dictionary/jsonfile.h"

namespace runtime::data {

/// A field. What Table Schema has no word for, or what its profile does not allow for the field's type (a category of
/// an integer field that is no whole number), stands in the property `codebook`. `missingOfSchema` are the missing
/// values that hold without a word; null: the field's are always written. Reading it gives the same field, but that the
/// codes of missing values are texts, written as the field writes its numbers.
Json FieldJson(const FieldDescriptor& field, const std::vector<LabelledValue>* missingOfSchema);

/// A schema by itself: fields, weight, sets, and the file's label, documents and attributes. `$schema` names the
/// profile. What is said of a resource or a package has no place in it.
Json SchemaJson(const TableDescriptor& table);

/// A package of one resource with its schema. Title and description stand with the resource. A resource must have a
/// name and a place of its data: `data`, where the descriptor's extras give neither `path` nor `data`, is that place, a
/// path below the package's folder; its last part without ending becomes a name that is missing.
Json PackageJson(const TableDescriptor& table, const std::string& data);

}  // namespace runtime::data
