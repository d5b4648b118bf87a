// A connection to a database that answers queries: what the drivers of all engines have in common.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace runtime::data {

/// What a column of a database holds.
enum class SqlType {
  Text,       // character strings, and whatever has no better word here; read as texts
  FixedText,  // CHAR(n): blanks at the end mean nothing
  Whole,      // whole numbers of at most 64 bits
  Decimal,    // decimal fractions of a fixed number of digits
  Single,     // floating point of 32 bits
  Double,     // floating point of 64 bits
  Boolean,
  Date,
  Time,     // of the day
  DateTime  // a moment; with a time zone: in UTC
};

struct SqlColumn {
  std::string name;
  SqlType type = SqlType::Text;
  int decimals = 0;         // Decimal: digits behind the point, as declared; -1 where any number of them may be
  bool isMixed = false;     // Text, for there are texts among its numbers; only of engines whose columns mix types
  std::string description;  // the comment that the database keeps on the column; empty when there is none
};

/// The answer to a query, row by row in the order in which they come. One thread. Errors throw DataError.
class SqlRows {
 public:
  virtual ~SqlRows();
  /// Turns to the next row; false at the end.
  virtual bool Next() = 0;
  /// A cell of the row; nothing for NULL. Text in UTF-8 (bytes that are none replaced), numbers as the engine writes
  /// them, floating point so that it reads back the same, booleans as they come, a BLOB as hexadecimal digits. The view
  /// is valid until Next. Columns count from 0.
  virtual std::optional<std::string_view> Text(std::size_t column) = 0;
};

/// An open connection within one transaction that only reads: every query sees the same rows, as far as the engine can
/// promise it. One thread. Errors throw DataError that names the source, never a credential.
class SqlConnection {
 public:
  virtual ~SqlConnection();

  /// How messages name the source, such as "odbc:DSN=survey"; without credentials.
  const std::string& name() const { return fName; }
  /// What the engine calls itself, such as "PostgreSQL".
  const std::string& engine() const { return fEngine; }

  /// A name as a part of a query, quoted whatever it holds.
  virtual std::string Quoted(std::string_view identifier) const = 0;
  /// The rows of a query. One answer at a time: the one before must be gone.
  virtual std::unique_ptr<SqlRows> Ask(const std::string& query) = 0;
  /// The same, for an answer that may be kept in memory whole: an engine may be faster so (PostgreSQL's parallel
  /// workers do not serve an answer that is fetched little by little).
  virtual std::unique_ptr<SqlRows> AskWhole(const std::string& query) { return Ask(query); }
  /// Runs a statement that has no rows, such as a setting of the session.
  virtual void Run(const std::string& statement) = 0;
  /// Goes on after a query that failed: the transaction stands as if it had not been asked. To be called before a query
  /// that may fail and whose failure is no end (`Keep`), and behind it (`BackTo` when it failed).
  virtual void Keep() {}
  virtual void BackTo() {}

  /// A table or view as a part of a query, from its name as the user gives it: with or without a schema before it,
  /// quoted or not. Throws DataError for one that is not there or that may not be read, and lists those that are.
  virtual std::string FindTable(const std::string& table) = 0;
  /// The only table, when the database holds no other; otherwise throws DataError that lists them.
  virtual std::string OnlyTable() = 0;
  /// The columns of `relation`: what stands behind FROM, a table of FindTable or a query in parentheses with a name.
  virtual std::vector<SqlColumn> ColumnsOf(const std::string& relation) = 0;

 protected:
  std::string fName;
  std::string fEngine;
};

/// Opens what an address names: "sqlite:FILE", "odbc:DSN=..." or "odbc:Driver=...;...". Throws DataError.
std::unique_ptr<SqlConnection> OpenSqlConnection(const std::string& address);

/// Whether a path is such an address.
bool IsSqlAddress(const std::string& path);

}  // namespace runtime::data
