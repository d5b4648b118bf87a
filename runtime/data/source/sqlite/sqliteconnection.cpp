#include "runtime/data/source/sqlite/sqliteconnection.h"

#include <cerrno>
#include <cstddef>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <limits>
#include <optional>
#include <string_view>
#include <system_error>
#include <utility>
#include <vector>

#include <fmt/format.h>
#include <sqlite3.h>

#include "runtime/data/lowerascii.h"
#include "runtime/data/open.h"
#include "runtime/data/source/sql/columnnames.h"
#include "runtime/data/source/sql/tablename.h"
#include "runtime/data/source/sqlite/sqlitefile.h"

namespace runtime::data {
namespace {

constexpr std::string_view kScheme = "sqlite:";

std::string PathOf(const std::string& address) {
  std::string path = address.substr(kScheme.size());
  if (path.empty())
    throw DataError(fmt::format("{}: the name of a SQLite file is missing behind \"sqlite:\"", address));
  std::error_code error;
  if (std::filesystem::is_directory(path, error)) throw DataError(fmt::format("{}: this is a directory", address));
  // SQLite's own words for these do not say why.
  if (!std::ifstream(path, std::ios::binary))
    throw DataError(fmt::format("{}: cannot open the file: {}", address, std::strerror(errno)));
  return path;
}

class SqliteRows : public SqlRows {
 public:
  SqliteRows(const SqliteFile& file, const std::string& query)
      : fQuery(file, query), fTexts(static_cast<std::size_t>(fQuery.columns())) {}

  bool Next() override { return fQuery.Step(); }

  std::optional<std::string_view> Text(std::size_t column) override {
    const int place = static_cast<int>(column);
    if (fQuery.Kind(place) == SqliteKind::Null) return std::nullopt;
    std::string& text = fTexts[column];
    text.clear();
    fQuery.AppendText(place, text);
    return text;
  }

 private:
  SqliteQuery fQuery;
  std::vector<std::string> fTexts;
};

SqlColumn ColumnOf(const SqliteColumnKinds& kinds) {
  SqlColumn column;
  column.name = kinds.name;
  if (kinds.others || !(kinds.wholes || kinds.reals) || (kinds.reals && kinds.tooLong)) {
    column.isMixed = kinds.isMixed();
    return column;
  }
  column.type = kinds.reals ? SqlType::Double : SqlType::Whole;
  return column;
}

class SqliteConnection : public SqlConnection {
 public:
  explicit SqliteConnection(const std::string& address) : fFile(PathOf(address), address) {
    fName = address;
    fEngine = "SQLite";
  }

  std::string Quoted(std::string_view identifier) const override { return SqliteIdentifier(identifier); }

  std::unique_ptr<SqlRows> Ask(const std::string& query) override { return std::make_unique<SqliteRows>(fFile, query); }

  void Run(const std::string& statement) override {
    SqliteQuery query(fFile, statement);
    while (query.Step()) {
    }
  }

  std::string FindTable(const std::string& table) override {
    return SqliteIdentifier(ChooseSqliteTable(fFile, ActualName(table)));
  }

  std::string OnlyTable() override { return SqliteIdentifier(ChooseSqliteTable(fFile, std::nullopt)); }

  std::vector<SqlColumn> ColumnsOf(const std::string& relation) override {
    CheckNamesOfQuery(relation);
    std::vector<SqlColumn> columns;
    const SqliteScan scan =
        ScanSqlite(fFile, "SELECT * FROM " + relation, std::numeric_limits<std::int64_t>::max() - 1);
    for (const SqliteColumnKinds& kinds : scan.columns) columns.push_back(ColumnOf(kinds));
    CheckColumnNames(columns, fName, relation);
    return columns;
  }

 private:
  /// The name of a table that is there and that `table` means, in quotes, with the schema before it or in other case;
  /// `table` when there is none.
  std::string ActualName(const std::string& table) const {
    const std::vector<SqliteTableName> tables = SqliteTablesOf(fFile);
    for (const SqliteTableName& there : tables)
      if (there.name == table) return table;
    const std::optional<std::vector<NamePart>> parts = SplitTableName(table);
    if (!parts || parts->size() > 2) return table;
    if (parts->size() == 2 && LowerAscii(parts->front().name) != "main") return table;
    // Names in quotes mean the same in any case here.
    const std::string wanted = LowerAscii(parts->back().name);
    for (const SqliteTableName& there : tables)
      if (LowerAscii(there.name) == wanted) return there.name;
    return table;
  }

  /// SQLite gives the second of two equal names of a query in parentheses another name, without a word.
  void CheckNamesOfQuery(const std::string& relation) const {
    const std::size_t end = relation.rfind(')');
    if (relation.empty() || relation.front() != '(' || end == std::string::npos) return;
    const SqliteQuery query(fFile, relation.substr(1, end - 1));
    std::vector<SqlColumn> columns(static_cast<std::size_t>(query.columns()));
    for (std::size_t i = 0; i < columns.size(); ++i) columns[i].name = LowerAscii(query.Name(static_cast<int>(i)));
    CheckColumnNames(columns, fName, relation);
  }

  SqliteFile fFile;
};

}  // namespace

std::unique_ptr<SqlConnection> OpenSqliteConnection(const std::string& address) {
  return std::make_unique<SqliteConnection>(address);
}

}  // namespace runtime::data
