// The columns of an answer, as a driver describes them.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include <sql.h>
#include <sqlext.h>

#include "runtime/data/source/odbc/odbcsession.h"
#include "runtime/data/source/sql/sqlconnection.h"

namespace runtime::data {

struct OdbcColumn {
  std::string name;
  SQLSMALLINT type = SQL_UNKNOWN_TYPE;  // ODBC's SQL data type
  std::size_t size = 0;                 // characters of texts, digits of numbers; 0: unknown
  int decimals = 0;
};

/// None for a statement without an answer.
std::vector<OdbcColumn> DescribeColumns(const OdbcSession& session, const OdbcHandle& statement);

/// As the data know them. `column` counts from 0.
SqlColumn SqlColumnOf(const OdbcSession& session, const OdbcHandle& statement, const OdbcColumn& described,
                      std::size_t column);

bool IsTextType(SQLSMALLINT type);
bool IsBinaryType(SQLSMALLINT type);

}  // namespace runtime::data
