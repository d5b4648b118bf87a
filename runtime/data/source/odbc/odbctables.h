// The tables that a connection of ODBC reaches.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "runtime/data/source/odbc/odbcsession.h"

namespace runtime::data {

struct OdbcTable {
  std::string catalog;  // these two empty where the engine has none
  std::string schema;
  std::string name;
  bool isView = false;
};

/// A name as a part of a query, quoted as the engine does. Throws DataError for one that an engine without quotes
/// cannot name.
std::string QuotedOf(const OdbcSession& session, std::string_view identifier);
/// A table as a part of a query.
std::string QuotedOf(const OdbcSession& session, const OdbcTable& table);

/// What the engine takes an unquoted name for.
std::string FoldedName(const OdbcSession& session, const std::string& name);

/// The table of that name, with or without a schema before it, quoted or not; unquoted names mean what they say, then
/// what the engine makes of them. Nothing when the driver lists none. Throws DataError for one that stands in several
/// schemas.
std::optional<OdbcTable> FindOdbcTable(const OdbcSession& session, const std::string& name);
/// All but those of the engine itself.
std::vector<OdbcTable> OdbcTables(const OdbcSession& session);
/// For a message, at most 20 of them.
std::string ListOf(const std::vector<OdbcTable>& tables);

/// The comments on the columns of a table, in their order; empty when the driver tells none.
std::vector<std::string> CommentsOf(const OdbcSession& session, const OdbcTable& table);
/// The same by PostgreSQL's own tables; psqlODBC tells none.
std::vector<std::string> PostgresCommentsOf(const OdbcSession& session, const OdbcTable& table);

}  // namespace runtime::data
