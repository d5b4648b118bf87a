// What differs between two dictionaries.
#pragma once

#include "runtime/data/comparing/comparedtable.h"
#include "runtime/data/comparing/comparison.h"

namespace runtime::data {

/// Where only one of the two is a dictionary file without data, what that one does not say (type, format, level, role)
/// is no difference; nor is a format that either does not say, unless both are such files.
Comparison CompareTables(const ComparedTable& before, const ComparedTable& after);

}  // namespace runtime::data
