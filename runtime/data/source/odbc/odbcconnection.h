// Queries through a driver of ODBC.
#pragma once

#include <memory>
#include <string>

#include "runtime/data/source/sql/sqlconnection.h"

namespace runtime::data {

/// Opens an address such as "odbc:DSN=survey" or "odbc:Driver={PostgreSQL Unicode};Server=...;Database=...". User and
/// password come from the data source, from CODEBOOK_ODBC_USER and CODEBOOK_ODBC_PASSWORD, or from the terminal, where
/// they are asked for; an address with a password is refused. Throws DataError.
std::unique_ptr<SqlConnection> OpenOdbcConnection(const std::string& address);

}  // namespace runtime::data
