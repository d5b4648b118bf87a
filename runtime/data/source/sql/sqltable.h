// A table that lies in one database or in several, and the questions that are asked of it.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "runtime/data/source/sql/dialect.h"
#include "runtime/data/source/sql/sqlconnection.h"

namespace runtime::data {

/// Told of each statement before it is sent; called by one thread at a time.
using QueryListener = std::function<void(const std::string& source, const std::string& query)>;

struct SqlTableOptions {
  std::vector<std::string> addresses;  // each holds a part of the rows; at least one
  std::optional<std::string> table;
  std::optional<std::string> query;                                                   // instead of a table
  QueryListener onQuery;                                                              // may be empty
  std::function<std::unique_ptr<SqlConnection>(const std::string& address)> connect;  // empty: OpenSqlConnection
};

/// A short answer is taken over whole, which lets some engines use all their cores; a long one comes in portions.
enum class AnswerLength { Short, Long };

/// Where some of the rows are.
struct SqlPlace {
  std::unique_ptr<SqlConnection> connection;
  std::string relation;           // all of them, as it stands behind FROM
  std::vector<std::string> arms;  // relations that together are the same rows; the engine counts each where it is kept
};

/// One thread at a time, but for what a question's rows call. Errors throw DataError.
class SqlTable {
 public:
  explicit SqlTable(const SqlTableOptions& options);

  /// For messages: the first source and the table, or the word "query".
  const std::string& name() const { return fName; }
  const std::string& tableName() const { return fTableName; }
  /// The address of the first place, without credentials.
  const std::string& sourceName() const { return fPlaces.front().connection->name(); }
  const SqlDialect& dialect() const { return fDialect; }
  const std::vector<SqlColumn>& columns() const { return fColumns; }
  /// Column `column` as a part of a query.
  const std::string& quoted(std::size_t column) const { return fQuoted[column]; }
  /// Whether the rows are counted in parts, each by a query of its own.
  bool hasArms() const;
  const std::vector<SqlPlace>& places() const { return fPlaces; }

  /// Asks in every place, in all of them at once, the question that `query` makes for its place, and hands the rows
  /// over, one at a time; those of different places come in any order.
  void Ask(const std::function<std::string(const SqlPlace&)>& query, const std::function<void(SqlRows&)>& onRow,
           AnswerLength length = AnswerLength::Short);
  /// Asks in the first place only.
  void AskFirst(const std::string& query, const std::function<void(SqlRows&)>& onRow);
  /// Behind an inner SELECT over an arm of the place: see SqlDialect::fence. A table on another server is asked
  /// without, for a fence would keep the counting here.
  const char* Fence(const SqlPlace& place) const { return place.arms.size() > 1 ? "" : fDialect.fence; }
  /// The question over all arms of a place: `select` makes it for one relation.
  static std::string OverArms(const SqlPlace& place, const std::function<std::string(const std::string&)>& select);

  const SqlPlace& first() const { return fPlaces.front(); }

 private:
  void OpenPlace(const std::string& address, const SqlTableOptions& options);
  void Set(SqlPlace& place, const std::string& setting);
  void LearnEncoding(const SqlPlace& place);
  void CheckSameColumns(const SqlPlace& place, const std::vector<SqlColumn>& columns) const;
  void AskPlace(SqlPlace& place, const std::string& query, const std::function<void(SqlRows&)>& onRow,
                AnswerLength length);
  void Tell(const SqlPlace& place, const std::string& query);

  QueryListener fOnQuery;
  std::vector<SqlPlace> fPlaces;
  SqlDialect fDialect;
  std::string fTableName;
  std::string fName;
  std::vector<SqlColumn> fColumns;
  std::vector<std::string> fQuoted;
};

/// A cell that must hold a whole number of 64 bits; 0 for NULL. Throws DataError.
std::int64_t WholeCell(SqlRows& rows, std::size_t column);

}  // namespace runtime::data
