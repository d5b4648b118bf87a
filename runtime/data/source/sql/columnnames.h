// What the columns of a query must have.
#pragma once

#include <string>
#include <vector>

#include "runtime/data/source/sql/sqlconnection.h"

namespace runtime::data {

/// Throws DataError when there is no column, one has no name, or two have the same. `source` and `relation` are named
/// in it.
void CheckColumnNames(const std::vector<SqlColumn>& columns, const std::string& source, const std::string& relation);

}  // namespace runtime::data
