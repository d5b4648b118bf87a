// A table of a SQLite file.
#pragma once

#include <memory>
#include <optional>
#include <string>

#include "runtime/data/source/tablesource.h"

namespace runtime::data {

/// Opens a file for reading only. `table` names a table or view; without it the file's only table is read. A column of
/// whole numbers that doubles hold is Integer, one of numbers Number, any other one String: numbers among texts in the
/// shortest form, a BLOB as its bytes in hexadecimal digits. Dates are what the file holds, texts or numbers. Throws
/// DataError, also for a file with several tables, which it lists.
std::unique_ptr<TableSource> OpenSqliteTable(const std::string& path, const std::optional<std::string>& table);

}  // namespace runtime::data
