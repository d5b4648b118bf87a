// Reading a table file whose columns have types of their own.
#pragma once

#include <string>
#include <vector>

#include "runtime/data/open.h"
#include "runtime/data/source/tablesource.h"
#include "runtime/data/store/readingoptions.h"
#include "runtime/data/typing/columntyper.h"

namespace runtime::data {

/// Reads all columns. One without a declared type keeps the file's. A declared type is read from the column's texts
/// where the file has another one; whole numbers that the file holds as doubles read as integers. `source` names the
/// file in messages; cells that do not read as their type are told, or an error when strict. Throws DataError,
/// SpillError. REQUIRES: one plan a column.
TypedTable ReadSource(TableSource& table, const std::vector<ColumnPlan>& plans, const std::string& source,
                      const ReadingOptions& options, std::vector<Note>& notes);

}  // namespace runtime::data
