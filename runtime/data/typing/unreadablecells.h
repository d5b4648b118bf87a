// What there is to say of cells that did not read as the type of their column.
#pragma once

#include <string>
#include <vector>

#include "runtime/data/open.h"
#include "runtime/data/typing/columnfacts.h"

namespace runtime::data {

/// Tells of the cells that did not read as the type of their column, once a column with the first place, and of whole
/// numbers that had to be rounded or that lost leading zeros. `source` is the file. With `strict` the first such cell
/// of the data is a DataError.
void ReportUnreadableCells(const std::string& source, const std::vector<const ColumnFacts*>& columns, bool strict,
                           std::vector<Note>& notes);

}  // namespace runtime::data
