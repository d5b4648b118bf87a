#include "runtime/data/source/sql/leaves.h"

#include <memory>
#include <string_view>

#include <fmt/format.h>

#include "runtime/data/source/sql/dialect.h"

namespace runtime::data {

std::vector<std::string> FindLeaves(SqlConnection& connection, const std::string& relation) {
  // Of each table: its name, whether it is foreign, whether it holds no rows itself, whether it has children, whether
  // it may be read alone.
  const std::string query = fmt::format(
      "WITH RECURSIVE tree AS (SELECT CAST({} AS regclass)::oid AS oid UNION SELECT i.inhrelid FROM pg_inherits i JOIN "
      "tree t ON i.inhparent = t.oid) "
      "SELECT quote_ident(n.nspname) || '.' || quote_ident(c.relname), CASE WHEN c.relkind = 'f' THEN 1 ELSE 0 END, "
      "CASE WHEN c.relkind = 'p' THEN 1 ELSE 0 END, "
      "CASE WHEN EXISTS (SELECT 1 FROM pg_inherits i WHERE i.inhparent = c.oid) THEN 1 ELSE 0 END, "
      "CASE WHEN has_table_privilege(c.oid, 'SELECT') AND NOT c.relrowsecurity THEN 1 ELSE 0 END "
      "FROM tree t JOIN pg_class c ON c.oid = t.oid JOIN pg_namespace n ON n.oid = c.relnamespace ORDER BY c.oid",
      TextLiteral(relation));
  std::vector<std::string> leaves;
  std::size_t tables = 0;
  bool hasForeign = false;
  bool mayReadAll = true;
  const std::unique_ptr<SqlRows> rows = connection.Ask(query);
  while (rows->Next()) {
    const std::string name(rows->Text(0).value_or(std::string_view()));
    const auto isSet = [&](std::size_t column) { return rows->Text(column) == "1"; };
    ++tables;
    hasForeign = hasForeign || isSet(1);
    mayReadAll = mayReadAll && isSet(4);
    if (isSet(2)) continue;
    leaves.push_back(isSet(3) ? "ONLY " + name : name);
  }
  if (tables < 2 || !hasForeign || !mayReadAll) return {};
  return leaves;
}

}  // namespace runtime::data
