#include "runtime/data/source/sqlite/sqlitetable.h"

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <string_view>
#include <utility>
#include <vector>

#include <fmt/format.h>
#include <sqlite3.h>

#include "runtime/data/csv/encoding.h"
#include "runtime/data/open.h"
#include "runtime/data/store/rowgroups.h"
#include "runtime/data/typing/quotedcell.h"

namespace runtime::data {

namespace {

constexpr std::size_t kRowsAtOnce = 2048;

std::string Identifier(const std::string& name) {
  std::string quoted = "\"";
  for (const char byte : name) quoted += byte == '"' ? "\"\"" : std::string(1, byte);
  return quoted + "\"";
}

/// A file, open for reading, within one transaction: every query sees the same rows.
class SqliteFile {
 public:
  explicit SqliteFile(const std::string& path) : fPath(path) {
    if (sqlite3_open_v2(UriOf(path).c_str(), &fDatabase, SQLITE_OPEN_READONLY | SQLITE_OPEN_URI, nullptr) != SQLITE_OK)
      FailInConstructor();
    constexpr int kWaitMilliseconds = 5000;
    sqlite3_busy_timeout(fDatabase, kWaitMilliseconds);
    // What a stranger wrote into the schema calls no function with an effect.
    sqlite3_db_config(fDatabase, SQLITE_DBCONFIG_DEFENSIVE, 1, nullptr);
    sqlite3_db_config(fDatabase, SQLITE_DBCONFIG_TRUSTED_SCHEMA, 0, nullptr);
    if (sqlite3_exec(fDatabase, "PRAGMA query_only = ON; PRAGMA cell_size_check = ON; BEGIN", nullptr, nullptr,
                     nullptr) != SQLITE_OK)
      FailInConstructor();
  }
  ~SqliteFile() { sqlite3_close(fDatabase); }
  SqliteFile(const SqliteFile&) = delete;
  SqliteFile& operator=(const SqliteFile&) = delete;

  sqlite3* database() const { return fDatabase; }
  const std::string& path() const { return fPath; }
  [[noreturn]] void Fail() const { throw DataError(Problem()); }

 private:
  /// Nothing in a path is a parameter or an escape.
  static std::string UriOf(const std::string& path) {
    std::string uri = path.front() == '/' ? "file://" : "file:";
    for (const char byte : path) {
      if (byte == '%' || byte == '?' || byte == '#')
        uri += fmt::format("%{:02x}", static_cast<unsigned char>(byte));
      else
        uri += byte;
    }
    return uri + "?mode=ro";
  }
  std::string Problem() const {
    return fmt::format("{}: the SQLite file cannot be read: {}", fPath, sqlite3_errmsg(fDatabase));
  }
  [[noreturn]] void FailInConstructor() {
    const std::string problem = Problem();
    sqlite3_close(fDatabase);
    throw DataError(problem);
  }

  std::string fPath;
  sqlite3* fDatabase = nullptr;
};

/// A query under way.
class Query {
 public:
  Query(const SqliteFile& file, const std::string& sql) : fFile(file) {
    if (sqlite3_prepare_v2(file.database(), sql.c_str(), static_cast<int>(sql.size()), &fStatement, nullptr) !=
        SQLITE_OK)
      file.Fail();
  }
  ~Query() { sqlite3_finalize(fStatement); }
  Query(const Query&) = delete;
  Query& operator=(const Query&) = delete;

  bool Step() {
    const int result = sqlite3_step(fStatement);
    if (result != SQLITE_ROW && result != SQLITE_DONE) fFile.Fail();
    return result == SQLITE_ROW;
  }
  int columns() const { return sqlite3_column_count(fStatement); }
  std::string Name(int column) const {
    const char* const name = sqlite3_column_name(fStatement, column);
    return name != nullptr ? name : "";
  }
  int Kind(int column) const { return sqlite3_column_type(fStatement, column); }
  std::int64_t Whole(int column) const { return sqlite3_column_int64(fStatement, column); }
  double Real(int column) const { return sqlite3_column_double(fStatement, column); }
  std::string_view Bytes(int column) const {
    const void* const bytes = sqlite3_column_blob(fStatement, column);
    return {static_cast<const char*>(bytes), static_cast<std::size_t>(sqlite3_column_bytes(fStatement, column))};
  }

 private:
  const SqliteFile& fFile;
  sqlite3_stmt* fStatement = nullptr;
};

struct NamedTable {
  std::string name;
  bool isView = false;
};

std::vector<NamedTable> TablesOf(const SqliteFile& file) {
  std::vector<NamedTable> tables;
  Query query(file,
              "SELECT name, type = 'view' FROM sqlite_schema WHERE type IN ('table', 'view') AND name NOT LIKE "
              "'sqlite\\_%' ESCAPE '\\' ORDER BY name");
  while (query.Step()) tables.push_back({std::string(query.Bytes(0)), query.Whole(1) != 0});
  return tables;
}

std::string ListOf(const std::vector<NamedTable>& tables) {
  constexpr std::size_t kNamed = 20;
  std::string list;
  for (std::size_t i = 0; i < tables.size() && i < kNamed; ++i)
    list += (i > 0 ? ", " : "") + QuotedCell(tables[i].name) + (tables[i].isView ? " (view)" : "");
  return tables.size() > kNamed ? fmt::format("{} and {} more", list, tables.size() - kNamed) : list;
}

std::string ChooseTable(const SqliteFile& file, const std::optional<std::string>& wanted) {
  const std::vector<NamedTable> tables = TablesOf(file);
  if (tables.empty()) throw DataError(fmt::format("{}: the SQLite file holds no table", file.path()));
  if (wanted) {
    for (const NamedTable& table : tables)
      if (table.name == *wanted) return table.name;
    throw DataError(
        fmt::format("{}: there is no table {}; the file holds {}", file.path(), QuotedCell(*wanted), ListOf(tables)));
  }
  std::vector<std::string> names;
  for (const NamedTable& table : tables)
    if (!table.isView) names.push_back(table.name);
  if (names.size() == 1) return names.front();
  if (tables.size() == 1) return tables.front().name;
  throw DataError(fmt::format("{}: the file holds {} tables; choose one with --table NAME: {}", file.path(),
                              tables.size(), ListOf(tables)));
}

/// What the values of a column have been so far.
struct ValueKinds {
  bool wholes = false;
  bool reals = false;
  bool tooLong = false;  // whole numbers that a double cannot hold
  bool others = false;

  void Add(const Query& row, int column) {
    constexpr std::int64_t kLargest = std::int64_t{1} << 53;
    switch (row.Kind(column)) {
      case SQLITE_INTEGER:
        wholes = true;
        tooLong = tooLong || row.Whole(column) > kLargest || row.Whole(column) < -kLargest;
        return;
      case SQLITE_FLOAT:
        reals = true;
        return;
      case SQLITE_NULL:
        return;
      default:
        others = true;
    }
  }
  FieldType Type() const {
    if (others || tooLong || !(wholes || reals)) return FieldType::String;
    return reals ? FieldType::Number : FieldType::Integer;
  }
};

void AppendText(const Query& row, int column, std::string& text) {
  switch (row.Kind(column)) {
    case SQLITE_INTEGER:
      text += std::to_string(row.Whole(column));
      return;
    case SQLITE_FLOAT:
      text += fmt::format("{}", row.Real(column));
      return;
    case SQLITE_TEXT: {
      const std::string_view bytes = row.Bytes(column);
      Replacements unused;
      if (FirstInvalidUtf8(bytes) == std::string_view::npos)
        text += bytes;
      else
        text += RepairedUtf8(bytes, unused);
      return;
    }
    case SQLITE_BLOB:
      for (const char byte : row.Bytes(column)) text += fmt::format("{:02X}", static_cast<unsigned char>(byte));
      return;
    default:
      return;
  }
}

class SqliteStream : public TableStream {
 public:
  /// `columns` says of each column of the query whether it is wanted as texts.
  SqliteStream(const SqliteFile& file, const std::string& sql, std::vector<bool> isText)
      : fQuery(file, sql), fIsText(std::move(isText)), fNumbers(fIsText.size()), fTexts(fIsText.size()) {}

  std::size_t Next() override {
    for (std::size_t column = 0; column < fIsText.size(); ++column) {
      fNumbers[column].clear();
      fTexts[column] = {};
    }
    std::size_t rows = 0;
    while (rows < kRowsAtOnce && !fEnded) {
      fEnded = !fQuery.Step();
      if (fEnded) break;
      for (std::size_t column = 0; column < fIsText.size(); ++column) Keep(column);
      ++rows;
    }
    return rows;
  }

  void Take(std::size_t column, std::size_t first, std::size_t count, ColumnSink& sink) override {
    if (!fIsText[column]) return sink.Numbers(fNumbers[column].data() + first, count);
    const KeptTexts& texts = fTexts[column];
    fViews.clear();
    for (std::size_t row = first; row < first + count; ++row) {
      const std::size_t begin = row > 0 ? texts.ends[row - 1] : 0;
      fViews.emplace_back(texts.bytes.data() + begin, texts.ends[row] - begin);
    }
    sink.Texts(fViews.data(), count);
  }

 private:
  struct KeptTexts {
    std::string bytes;
    std::vector<std::size_t> ends;
  };

  void Keep(std::size_t column) {
    const int place = static_cast<int>(column);
    if (fIsText[column]) {
      AppendText(fQuery, place, fTexts[column].bytes);
      fTexts[column].ends.push_back(fTexts[column].bytes.size());
      return;
    }
    fNumbers[column].push_back(fQuery.Kind(place) == SQLITE_NULL ? std::numeric_limits<double>::quiet_NaN()
                                                                 : fQuery.Real(place));
  }

  Query fQuery;
  std::vector<bool> fIsText;
  std::vector<std::vector<double>> fNumbers;
  std::vector<KeptTexts> fTexts;
  std::vector<std::string_view> fViews;
  bool fEnded = false;
};

class SqliteTable : public TableSource {
 public:
  SqliteTable(const std::string& path, const std::optional<std::string>& table)
      : fFile(path), fTable(Identifier(ChooseTable(fFile, table))) {
    Query rows(fFile, "SELECT * FROM " + fTable);
    std::vector<ValueKinds> kinds(static_cast<std::size_t>(rows.columns()));
    while (rows.Step()) {
      if (++fRowCount > kMostCases) break;
      for (std::size_t column = 0; column < kinds.size(); ++column) kinds[column].Add(rows, static_cast<int>(column));
    }
    for (std::size_t column = 0; column < kinds.size(); ++column)
      fColumns.push_back({rows.Name(static_cast<int>(column)), kinds[column].Type(),
                          kinds[column].others && (kinds[column].wholes || kinds[column].reals)});
  }

  // One stream: each of them steps through all rows.
  std::size_t ColumnsOfStream(int) const override { return fColumns.size(); }

  /// By place, for two columns of a view may have one name. REQUIRES: the columns are all, in their order.
  std::unique_ptr<TableStream> Open(const std::vector<StreamColumn>& columns) override {
    std::vector<bool> isText;
    for (const StreamColumn& wanted : columns)
      isText.push_back(wanted.asText || fColumns[wanted.column].type == FieldType::String);
    return std::make_unique<SqliteStream>(fFile, "SELECT * FROM " + fTable, std::move(isText));
  }

 private:
  SqliteFile fFile;
  std::string fTable;
};

}  // namespace

std::unique_ptr<TableSource> OpenSqliteTable(const std::string& path, const std::optional<std::string>& table) {
  return std::make_unique<SqliteTable>(path, table);
}

}  // namespace runtime::data
