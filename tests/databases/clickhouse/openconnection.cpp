// In the place of the program's own: every address is one of a ClickHouse server.
#include "runtime/data/source/sql/sqlconnection.h"
#include "tests/databases/clickhouse/httpconnection.h"

namespace runtime::data {

std::unique_ptr<SqlConnection> OpenSqlConnection(const std::string& address) {
  return std::make_unique<clickhouse::HttpConnection>(address);
}

bool IsSqlAddress(const std::string& path) { return path.rfind("http://127.0.0.1:", 0) == 0; }

}  // namespace runtime::data
