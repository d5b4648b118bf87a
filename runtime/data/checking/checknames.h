// Fields against columns, and names that are not told apart.
#pragma once

#include <string>
#include <vector>

#include "runtime/data/checking/finding.h"
#include "runtime/data/checking/readingfacts.h"

namespace runtime::data {

/// Fields without a column and columns without a field, unless the schema allows them (`fieldsMatch`); names that stand
/// twice, are empty, or differ only in capitals, among the columns and among the fields.
void CheckFieldsAndNames(const ReadingFacts& reading, const std::string& dataFile, std::vector<Finding>& findings);

}  // namespace runtime::data
