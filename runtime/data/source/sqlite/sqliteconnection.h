// Queries to a SQLite file.
#pragma once

#include <memory>
#include <string>

#include "runtime/data/source/sql/sqlconnection.h"

namespace runtime::data {

/// Opens the file of an address "sqlite:FILE" for reading only. Types are what a column's values are, found by a scan
/// of the relation: Whole, Double, or Text; a column with wholes beyond 2^53 among fractions is Text too. Numbers are
/// given in the shortest form that reads back. Throws DataError.
std::unique_ptr<SqlConnection> OpenSqliteConnection(const std::string& address);

}  // namespace runtime::data
