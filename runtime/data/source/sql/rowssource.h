// The rows of a table of a database, or of several behind each other, for engines that cannot group and for who needs
// rows.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "runtime/data/source/sql/sqlconnection.h"
#include "runtime/data/source/tablesource.h"

namespace runtime::data {

/// Rows of one connection.
struct SqlRelation {
  SqlConnection* connection = nullptr;
  std::string relation;  // as it stands behind FROM
};

/// Opens the rows of all relations, one relation behind the other, in whatever order the engines give them. `columns`
/// are those of each. Their number, and the least and greatest of whole numbers and decimals, are asked for first: a
/// column with a whole number that no double holds is a String. Dates and times that are no ISO ones, infinities and
/// NaN are no values; decimals keep the zeros that they are written with; the blanks at the end of a FixedText are
/// none. `onQuery`, when there is one, is told of each query with its connection's name. Throws DataError. REQUIRES: at
/// least one relation; its connections outlive the source and its streams; one stream at a time.
std::unique_ptr<TableSource> OpenSqlRows(
    std::vector<SqlRelation> relations, const std::vector<SqlColumn>& columns,
    std::function<void(const std::string& source, const std::string& query)> onQuery = {});

}  // namespace runtime::data
