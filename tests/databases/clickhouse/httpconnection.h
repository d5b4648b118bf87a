// A ClickHouse server as a connection: statements over HTTP, answers as text.
#pragma once

#include <string>

#include "runtime/data/source/sql/sqlconnection.h"

namespace clickhouse {

/// For tests: every statement is a request of its own, so there is no transaction. Errors throw DataError.
class HttpConnection : public runtime::data::SqlConnection {
 public:
  /// `address`: "http://127.0.0.1:PORT/".
  explicit HttpConnection(const std::string& address);

  std::string Quoted(std::string_view identifier) const override;
  std::unique_ptr<runtime::data::SqlRows> Ask(const std::string& query) override;
  void Run(const std::string& statement) override;
  std::string FindTable(const std::string& table) override;
  std::string OnlyTable() override;
  std::vector<runtime::data::SqlColumn> ColumnsOf(const std::string& relation) override;

 private:
  /// What the server answers to the statement.
  std::string Send(const std::string& statement) const;

  int fPort = 0;
};

}  // namespace clickhouse
