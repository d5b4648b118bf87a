#include "runtime/data/source/sql/sqlconnection.h"

#include <fmt/format.h>

#include "runtime/data/lowerascii.h"
#include "runtime/data/open.h"
#include "runtime/data/source/odbc/odbcconnection.h"
#include "runtime/data/source/sqlite/sqliteconnection.h"

namespace runtime::data {
namespace {

bool HasScheme(const std::string& path, std::string_view scheme) {
  return LowerAscii(path.substr(0, scheme.size())) == scheme;
}

}  // namespace

SqlRows::~SqlRows() = default;
SqlConnection::~SqlConnection() = default;

std::unique_ptr<SqlConnection> OpenSqlConnection(const std::string& address) {
  if (HasScheme(address, "sqlite:")) return OpenSqliteConnection(address);
  if (HasScheme(address, "odbc:")) return OpenOdbcConnection(address);
  throw DataError(fmt::format("{}: the address of a database begins with sqlite: or odbc:", address));
}

bool IsSqlAddress(const std::string& path) { return HasScheme(path, "sqlite:") || HasScheme(path, "odbc:"); }

}  // namespace runtime::data
