// Properties that a profile does not allow where they belong.
#pragma once

#include "runtime/data/dictionary/jsonfile.h"

namespace runtime::data {

/// Dictionaries that we write are valid against the profiles of their standard. A property whose value is not (an empty
/// list of constraints, a category of an integer field that is no whole number) then stands in `codebook.kept` of its
/// field, schema, resource or package. This puts the properties of a Table Schema or Data Package where they belong.
void RestoreKeptProperties(Json& root);

}  // namespace runtime::data
