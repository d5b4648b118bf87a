#include "runtime/data/source/odbc/odbctables.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <memory>
#include <utility>

#include <fmt/format.h>
#include <sqlucode.h>
#include <unicode/locid.h>
#include <unicode/unistr.h>

#include "runtime/data/lowerascii.h"
#include "runtime/data/open.h"
#include "runtime/data/source/odbc/odbcrows.h"
#include "runtime/data/source/odbc/widetext.h"
#include "runtime/data/source/sql/tablename.h"
#include "runtime/data/typing/quotedcell.h"

namespace runtime::data {
namespace {

/// A text argument of a function that lists things, in the form that the driver takes; null when there is none.
class Argument {
 public:
  explicit Argument(const std::string* text)
      : fIsNull(text == nullptr), fNarrow(text ? *text : ""), fWide(WideText(fNarrow)) {}

  SQLCHAR* narrow() { return fIsNull ? nullptr : reinterpret_cast<SQLCHAR*>(fNarrow.data()); }
  SQLWCHAR* wide() { return fIsNull ? nullptr : reinterpret_cast<SQLWCHAR*>(fWide.data()); }

 private:
  bool fIsNull;
  std::string fNarrow;
  std::u16string fWide;
};

/// The argument is a pattern: % and _ in it also stand for themselves, and a sign that escapes them is left to _.
std::string PatternOf(std::string name) {
  std::replace(name.begin(), name.end(), '\\', '_');
  return name;
}

using ListFunction = SQLRETURN (*)(SQLHSTMT, SQLCHAR*, SQLSMALLINT, SQLCHAR*, SQLSMALLINT, SQLCHAR*, SQLSMALLINT,
                                   SQLCHAR*, SQLSMALLINT);
using WideListFunction = SQLRETURN (*)(SQLHSTMT, SQLWCHAR*, SQLSMALLINT, SQLWCHAR*, SQLSMALLINT, SQLWCHAR*, SQLSMALLINT,
                                       SQLWCHAR*, SQLSMALLINT);

/// The rows of SQLTables or SQLColumns: catalog, schema, table, and types or columns.
OdbcRows List(const OdbcSession& session, ListFunction narrow, WideListFunction wide,
              const std::array<const std::string*, 4>& texts) {
  std::unique_ptr<OdbcHandle> statement = session.NewStatement();
  std::array<Argument, 4> given = {Argument(texts[0]), Argument(texts[1]), Argument(texts[2]), Argument(texts[3])};
  const SQLRETURN result = session.form() == TextForm::Narrow
                               ? narrow(statement->get(), given[0].narrow(), SQL_NTS, given[1].narrow(), SQL_NTS,
                                        given[2].narrow(), SQL_NTS, given[3].narrow(), SQL_NTS)
                               : wide(statement->get(), given[0].wide(), SQL_NTS, given[1].wide(), SQL_NTS,
                                      given[2].wide(), SQL_NTS, given[3].wide(), SQL_NTS);
  if (!SQL_SUCCEEDED(result)) session.Fail(*statement, OdbcStep::Asking);
  return {session, std::move(statement), OdbcRowsOptions{}};
}

bool IsOfEngine(const OdbcTable& table, const std::string& type) {
  constexpr std::array<std::string_view, 5> kSchemas = {"information_schema", "pg_catalog", "pg_toast", "sys",
                                                        "system"};
  const auto isOne = [&](const std::string& name) {
    return std::find(kSchemas.begin(), kSchemas.end(), LowerAscii(name)) != kSchemas.end();
  };
  return type.find("SYSTEM") != std::string::npos || isOne(table.schema) || isOne(table.catalog);
}

/// Of tables whose names fit the pattern; all when there is none.
std::vector<OdbcTable> ListTables(const OdbcSession& session, const std::string* pattern) {
  constexpr std::size_t kCatalog = 0;
  constexpr std::size_t kSchema = 1;
  constexpr std::size_t kName = 2;
  constexpr std::size_t kType = 3;
  // Without a schema psqlODBC looks only where the user's own search path leads.
  const std::string anySchema = "%";
  OdbcRows rows =
      List(session, SQLTables, SQLTablesW, {nullptr, session.isPostgres() ? &anySchema : nullptr, pattern, nullptr});
  std::vector<OdbcTable> tables;
  while (rows.Next()) {
    OdbcTable table;
    table.catalog = rows.Text(kCatalog).value_or("");
    table.schema = rows.Text(kSchema).value_or("");
    table.name = rows.Text(kName).value_or("");
    const std::string type(rows.Text(kType).value_or(""));
    table.isView = type.find("VIEW") != std::string::npos;
    if (table.name.empty() || (!table.isView && type.find("TABLE") == std::string::npos)) continue;
    if (!IsOfEngine(table, type)) tables.push_back(std::move(table));
  }
  return tables;
}

std::string Upper(const std::string& text) {
  std::string upper;
  icu::UnicodeString::fromUTF8(text).toUpper(icu::Locale::getRoot()).toUTF8String(upper);
  return upper;
}

std::string Lower(const std::string& text) {
  std::string lower;
  icu::UnicodeString::fromUTF8(text).toLower(icu::Locale::getRoot()).toUTF8String(lower);
  return lower;
}

bool IsSame(const OdbcSession& session, const std::string& actual, const NamePart& wanted) {
  if (actual == wanted.name) return true;
  if (wanted.isQuoted) return false;
  if (actual == FoldedName(session, wanted.name)) return true;
  return session.InfoCode(SQL_IDENTIFIER_CASE) == SQL_IC_MIXED && Lower(actual) == Lower(wanted.name);
}

/// Tables that `parts` name, from the last one to the first.
std::vector<OdbcTable> Matching(const OdbcSession& session, const std::vector<NamePart>& parts) {
  constexpr std::size_t kMostParts = 3;
  if (parts.size() > kMostParts) return {};
  const NamePart& name = parts.back();
  std::vector<std::string> patterns = {PatternOf(name.name)};
  if (!name.isQuoted)
    for (const std::string& other : {FoldedName(session, name.name), Lower(name.name), Upper(name.name)})
      if (std::find(patterns.begin(), patterns.end(), PatternOf(other)) == patterns.end())
        patterns.push_back(PatternOf(other));
  for (const std::string& pattern : patterns) {
    std::vector<OdbcTable> matching;
    for (OdbcTable& table : ListTables(session, &pattern)) {
      if (!IsSame(session, table.name, name)) continue;
      if (parts.size() > 1) {
        // An engine has one of the two, or both.
        const std::string& above = table.schema.empty() ? table.catalog : table.schema;
        if (!IsSame(session, above, parts[parts.size() - 2])) continue;
      }
      if (parts.size() == kMostParts && !IsSame(session, table.catalog, parts.front())) continue;
      matching.push_back(std::move(table));
    }
    // As it is written goes before what only means the same.
    const auto isExact = [&](const OdbcTable& table) { return table.name == name.name; };
    if (std::any_of(matching.begin(), matching.end(), isExact))
      matching.erase(std::remove_if(matching.begin(), matching.end(), std::not_fn(isExact)), matching.end());
    if (!matching.empty()) return matching;
  }
  return {};
}

std::string ShownName(const OdbcTable& table) {
  const std::string& above = table.schema.empty() ? table.catalog : table.schema;
  return above.empty() ? QuotedCell(table.name) : QuotedCell(above) + "." + QuotedCell(table.name);
}

}  // namespace

std::string QuotedOf(const OdbcSession& session, std::string_view identifier) {
  const std::string quote = session.Info(SQL_IDENTIFIER_QUOTE_CHAR);
  if (quote.empty() || quote == " ") {
    const bool isPlain = !identifier.empty() && std::all_of(identifier.begin(), identifier.end(), [](char byte) {
      return (byte >= 'a' && byte <= 'z') || (byte >= 'A' && byte <= 'Z') || (byte >= '0' && byte <= '9') ||
             byte == '_';
    });
    if (isPlain) return std::string(identifier);
    throw DataError(fmt::format("{}: the engine has no quotes for the name {}; give it another name in a view",
                                session.name(), QuotedCell(identifier)));
  }
  const std::string closing = quote == "[" ? "]" : quote;
  std::string quoted = quote;
  for (const char byte : identifier) {
    quoted += byte;
    if (byte == closing.front()) quoted += byte;
  }
  return quoted + closing;
}

std::string QuotedOf(const OdbcSession& session, const OdbcTable& table) {
  const std::string& above = table.schema.empty() ? table.catalog : table.schema;
  const std::string name = QuotedOf(session, table.name);
  return above.empty() ? name : QuotedOf(session, above) + "." + name;
}

std::string FoldedName(const OdbcSession& session, const std::string& name) {
  switch (session.InfoCode(SQL_IDENTIFIER_CASE)) {
    case SQL_IC_UPPER:
      return Upper(name);
    case SQL_IC_LOWER:
      return Lower(name);
    default:
      return name;
  }
}

std::optional<OdbcTable> FindOdbcTable(const OdbcSession& session, const std::string& name) {
  // A name may hold whatever its parts are cut and quoted with.
  std::vector<OdbcTable> found = Matching(session, {{name, true}});
  if (found.empty())
    if (const std::optional<std::vector<NamePart>> parts = SplitTableName(name)) found = Matching(session, *parts);
  if (found.empty()) return std::nullopt;
  if (found.size() > 1)
    throw DataError(fmt::format("{}: the table {} stands in several schemas: {}; name one of them with its schema",
                                session.name(), QuotedCell(name), ListOf(found)));
  return found.front();
}

std::vector<OdbcTable> OdbcTables(const OdbcSession& session) { return ListTables(session, nullptr); }

std::string ListOf(const std::vector<OdbcTable>& tables) {
  constexpr std::size_t kNamed = 20;
  std::string list;
  for (std::size_t i = 0; i < tables.size() && i < kNamed; ++i)
    list += (i > 0 ? ", " : "") + ShownName(tables[i]) + (tables[i].isView ? " (view)" : "");
  return tables.size() > kNamed ? fmt::format("{} and {} more", list, tables.size() - kNamed) : list;
}

std::vector<std::string> CommentsOf(const OdbcSession& session, const OdbcTable& table) {
  constexpr std::size_t kSchema = 1;
  constexpr std::size_t kName = 2;
  constexpr std::size_t kRemarks = 11;
  std::vector<std::string> comments;
  const std::string schema = PatternOf(table.schema);
  const std::string name = PatternOf(table.name);
  OdbcRows rows = List(
      session, SQLColumns, SQLColumnsW,
      {table.catalog.empty() ? nullptr : &table.catalog, table.schema.empty() ? nullptr : &schema, &name, nullptr});
  while (rows.Next()) {
    const bool isOfTable =
        rows.Text(kSchema).value_or("") == table.schema && rows.Text(kName).value_or("") == table.name;
    if (isOfTable) comments.emplace_back(rows.Text(kRemarks).value_or(""));
  }
  return comments;
}

std::vector<std::string> PostgresCommentsOf(const OdbcSession& session, const OdbcTable& table) {
  std::string name;
  for (const char byte : QuotedOf(session, table)) name += byte == '\'' ? "''" : std::string(1, byte);
  const std::string query = fmt::format(
      "SELECT pg_catalog.col_description(attrelid, attnum) FROM pg_catalog.pg_attribute WHERE attrelid = "
      "'{}'::regclass AND attnum > 0 AND NOT attisdropped ORDER BY attnum",
      name);
  std::vector<std::string> comments;
  OdbcRows rows(session, session.Execute(query), OdbcRowsOptions{});
  while (rows.Next()) comments.emplace_back(rows.Text(0).value_or(""));
  return comments;
}

}  // namespace runtime::data
