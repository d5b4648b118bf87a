// A SQLite file, open for reading, and queries to it.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

struct sqlite3;
struct sqlite3_stmt;

namespace runtime::data {

/// Open for reading only, within one transaction: every query sees the same rows. Throws DataError.
class SqliteFile {
 public:
  /// `name` is how messages call the file.
  SqliteFile(const std::string& path, std::string name);
  ~SqliteFile();
  SqliteFile(const SqliteFile&) = delete;
  SqliteFile& operator=(const SqliteFile&) = delete;

  sqlite3* database() const { return fDatabase; }
  const std::string& name() const { return fName; }
  /// Throws what SQLite says of its last operation.
  [[noreturn]] void Fail() const;

 private:
  std::string Problem() const;

  std::string fName;
  sqlite3* fDatabase = nullptr;
};

enum class SqliteKind { Null, Whole, Real, Text, Blob };

/// A query under way. Columns count from 0. Errors throw DataError.
class SqliteQuery {
 public:
  SqliteQuery(const SqliteFile& file, const std::string& sql);
  ~SqliteQuery();
  SqliteQuery(const SqliteQuery&) = delete;
  SqliteQuery& operator=(const SqliteQuery&) = delete;

  /// Turns to the next row; false at the end.
  bool Step();
  int columns() const;
  std::string Name(int column) const;

  // Cells of the row.
  SqliteKind Kind(int column) const;
  std::int64_t Whole(int column) const;
  double Real(int column) const;
  /// Of a text in UTF-8, whatever the file keeps; of a BLOB as they are.
  std::string_view Bytes(int column) const;
  /// Appends a cell as text in UTF-8, nothing for NULL: numbers in the shortest form that reads back, of texts what is
  /// no UTF-8 replaced, a BLOB as hexadecimal digits.
  void AppendText(int column, std::string& text) const;

 private:
  const SqliteFile& fFile;
  sqlite3_stmt* fStatement = nullptr;
};

/// A name as a part of a query, quoted whatever it holds.
std::string SqliteIdentifier(std::string_view name);

struct SqliteTableName {
  std::string name;
  bool isView = false;
};

std::vector<SqliteTableName> SqliteTablesOf(const SqliteFile& file);
/// The table or view of that name, or the only table when none is named; otherwise throws DataError that lists them.
std::string ChooseSqliteTable(const SqliteFile& file, const std::optional<std::string>& wanted);

/// What the values of a column are.
struct SqliteColumnKinds {
  std::string name;
  bool wholes = false;
  bool reals = false;
  bool tooLong = false;  // whole numbers that a double cannot hold
  bool others = false;   // texts and BLOBs

  bool isMixed() const { return others && (wholes || reals); }
};

struct SqliteScan {
  std::vector<SqliteColumnKinds> columns;
  std::int64_t rows = 0;
};

/// The kinds of values of all columns of a query, found by one scan, which ends early when there are more rows than
/// `mostRows`.
SqliteScan ScanSqlite(const SqliteFile& file, const std::string& sql, std::int64_t mostRows);

}  // namespace runtime::data
