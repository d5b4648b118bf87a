#include "runtime/data/source/sqlite/sqlitefile.h"

#include <cstddef>
#include <utility>

#include <fmt/format.h>
#include <sqlite3.h>

#include "runtime/data/csv/encoding.h"
#include "runtime/data/open.h"
#include "runtime/data/typing/quotedcell.h"

namespace runtime::data {
namespace {

/// Nothing in a path is a parameter or an escape.
std::string UriOf(const std::string& path) {
  std::string uri = !path.empty() && path.front() == '/' ? "file://" : "file:";
  for (const char byte : path) {
    if (byte == '%' || byte == '?' || byte == '#')
      uri += fmt::format("%{:02x}", static_cast<unsigned char>(byte));
    else
      uri += byte;
  }
  return uri + "?mode=ro";
}

std::string ListOf(const std::vector<SqliteTableName>& tables) {
  constexpr std::size_t kNamed = 20;
  std::string list;
  for (std::size_t i = 0; i < tables.size() && i < kNamed; ++i)
    list += (i > 0 ? ", " : "") + QuotedCell(tables[i].name) + (tables[i].isView ? " (view)" : "");
  return tables.size() > kNamed ? fmt::format("{} and {} more", list, tables.size() - kNamed) : list;
}

void AddValue(const SqliteQuery& row, int column, SqliteColumnKinds& kinds) {
  constexpr std::int64_t kLargest = std::int64_t{1} << 53;
  switch (row.Kind(column)) {
    case SqliteKind::Null:
      return;
    case SqliteKind::Whole:
      kinds.wholes = true;
      kinds.tooLong = kinds.tooLong || row.Whole(column) > kLargest || row.Whole(column) < -kLargest;
      return;
    case SqliteKind::Real:
      kinds.reals = true;
      return;
    case SqliteKind::Text:
    case SqliteKind::Blob:
      kinds.others = true;
  }
}

}  // namespace

SqliteFile::SqliteFile(const std::string& path, std::string name) : fName(std::move(name)) {
  const auto failInConstructor = [this] {
    const std::string problem = Problem();
    sqlite3_close(fDatabase);
    throw DataError(problem);
  };
  if (sqlite3_open_v2(UriOf(path).c_str(), &fDatabase, SQLITE_OPEN_READONLY | SQLITE_OPEN_URI, nullptr) != SQLITE_OK)
    failInConstructor();
  constexpr int kWaitMilliseconds = 5000;
  sqlite3_busy_timeout(fDatabase, kWaitMilliseconds);
  // What a stranger wrote into the schema calls no function with an effect.
  sqlite3_db_config(fDatabase, SQLITE_DBCONFIG_DEFENSIVE, 1, nullptr);
  sqlite3_db_config(fDatabase, SQLITE_DBCONFIG_TRUSTED_SCHEMA, 0, nullptr);
  if (sqlite3_exec(fDatabase, "PRAGMA query_only = ON; PRAGMA cell_size_check = ON; BEGIN", nullptr, nullptr,
                   nullptr) != SQLITE_OK)
    failInConstructor();
}

SqliteFile::~SqliteFile() { sqlite3_close(fDatabase); }

std::string SqliteFile::Problem() const {
  const char* const words = sqlite3_errmsg(fDatabase);
  if (sqlite3_errcode(fDatabase) == SQLITE_ERROR) return fmt::format("{}: the query fails: {}", fName, words);
  return fmt::format("{}: the SQLite file cannot be read: {}", fName, words);
}

void SqliteFile::Fail() const { throw DataError(Problem()); }

SqliteQuery::SqliteQuery(const SqliteFile& file, const std::string& sql) : fFile(file) {
  if (sqlite3_prepare_v2(file.database(), sql.c_str(), static_cast<int>(sql.size()), &fStatement, nullptr) != SQLITE_OK)
    file.Fail();
}

SqliteQuery::~SqliteQuery() { sqlite3_finalize(fStatement); }

bool SqliteQuery::Step() {
  const int result = sqlite3_step(fStatement);
  if (result != SQLITE_ROW && result != SQLITE_DONE) fFile.Fail();
  return result == SQLITE_ROW;
}

int SqliteQuery::columns() const { return sqlite3_column_count(fStatement); }

std::string SqliteQuery::Name(int column) const {
  const char* const name = sqlite3_column_name(fStatement, column);
  return name != nullptr ? name : "";
}

SqliteKind SqliteQuery::Kind(int column) const {
  switch (sqlite3_column_type(fStatement, column)) {
    case SQLITE_INTEGER:
      return SqliteKind::Whole;
    case SQLITE_FLOAT:
      return SqliteKind::Real;
    case SQLITE_TEXT:
      return SqliteKind::Text;
    case SQLITE_BLOB:
      return SqliteKind::Blob;
    default:
      return SqliteKind::Null;
  }
}

std::int64_t SqliteQuery::Whole(int column) const { return sqlite3_column_int64(fStatement, column); }

double SqliteQuery::Real(int column) const { return sqlite3_column_double(fStatement, column); }

std::string_view SqliteQuery::Bytes(int column) const {
  // As a BLOB a text would come in the encoding of the file.
  const void* const bytes = sqlite3_column_type(fStatement, column) == SQLITE_TEXT
                                ? static_cast<const void*>(sqlite3_column_text(fStatement, column))
                                : sqlite3_column_blob(fStatement, column);
  return {static_cast<const char*>(bytes), static_cast<std::size_t>(sqlite3_column_bytes(fStatement, column))};
}

void SqliteQuery::AppendText(int column, std::string& text) const {
  switch (Kind(column)) {
    case SqliteKind::Null:
      return;
    case SqliteKind::Whole:
      text += std::to_string(Whole(column));
      return;
    case SqliteKind::Real:
      text += fmt::format("{}", Real(column));
      return;
    case SqliteKind::Text: {
      const std::string_view bytes = Bytes(column);
      Replacements unused;
      if (FirstInvalidUtf8(bytes) == std::string_view::npos)
        text += bytes;
      else
        text += RepairedUtf8(bytes, unused);
      return;
    }
    case SqliteKind::Blob:
      for (const char byte : Bytes(column)) text += fmt::format("{:02X}", static_cast<unsigned char>(byte));
  }
}

std::string SqliteIdentifier(std::string_view name) {
  std::string quoted = "\"";
  for (const char byte : name) quoted += byte == '"' ? "\"\"" : std::string(1, byte);
  return quoted + "\"";
}

std::vector<SqliteTableName> SqliteTablesOf(const SqliteFile& file) {
  std::vector<SqliteTableName> tables;
  SqliteQuery query(file,
                    "SELECT name, type = 'view' FROM sqlite_schema WHERE type IN ('table', 'view') AND name NOT LIKE "
                    "'sqlite\\_%' ESCAPE '\\' ORDER BY name");
  while (query.Step()) tables.push_back({std::string(query.Bytes(0)), query.Whole(1) != 0});
  return tables;
}

std::string ChooseSqliteTable(const SqliteFile& file, const std::optional<std::string>& wanted) {
  const std::vector<SqliteTableName> tables = SqliteTablesOf(file);
  if (tables.empty()) throw DataError(fmt::format("{}: the SQLite file holds no table", file.name()));
  if (wanted) {
    for (const SqliteTableName& table : tables)
      if (table.name == *wanted) return table.name;
    throw DataError(
        fmt::format("{}: there is no table {}; the file holds {}", file.name(), QuotedCell(*wanted), ListOf(tables)));
  }
  std::vector<std::string> names;
  for (const SqliteTableName& table : tables)
    if (!table.isView) names.push_back(table.name);
  if (names.size() == 1) return names.front();
  if (tables.size() == 1) return tables.front().name;
  throw DataError(fmt::format("{}: the file holds {} tables; choose one with --table NAME: {}", file.name(),
                              tables.size(), ListOf(tables)));
}

SqliteScan ScanSqlite(const SqliteFile& file, const std::string& sql, std::int64_t mostRows) {
  SqliteQuery rows(file, sql);
  SqliteScan scan;
  scan.columns.resize(static_cast<std::size_t>(rows.columns()));
  while (scan.rows <= mostRows && rows.Step()) {
    ++scan.rows;
    for (std::size_t column = 0; column < scan.columns.size(); ++column)
      AddValue(rows, static_cast<int>(column), scan.columns[column]);
  }
  for (std::size_t column = 0; column < scan.columns.size(); ++column)
    scan.columns[column].name = rows.Name(static_cast<int>(column));
  return scan;
}

}  // namespace runtime::data
