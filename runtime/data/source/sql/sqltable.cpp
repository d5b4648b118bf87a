#include "runtime/data/source/sql/sqltable.h"

#include <charconv>
#include <exception>
#include <future>
#include <mutex>
#include <utility>

#include <fmt/format.h>

#include "runtime/data/open.h"
#include "runtime/data/source/sql/leaves.h"
#include "runtime/data/source/sql/querytext.h"
#include "runtime/data/source/sql/tablename.h"
#include "runtime/data/typing/quotedcell.h"

namespace runtime::data {

namespace {

/// A quoted name as people write it.
std::string PlainName(const std::string& relation) {
  const std::optional<std::vector<NamePart>> parts = SplitTableName(relation);
  if (!parts) return relation;
  std::string name;
  for (const NamePart& part : *parts) name += (name.empty() ? "" : ".") + part.name;
  return name;
}

}  // namespace

SqlTable::SqlTable(const SqlTableOptions& options) : fOnQuery(options.onQuery) {
  if (options.table && options.query) throw DataError("--table and --query exclude each other; leave one of them out");
  fTableName = options.query ? "query" : options.table.value_or("");
  for (const std::string& address : options.addresses) OpenPlace(address, options);
  fName = fPlaces.front().connection->name() + ": " + fTableName;
}

void SqlTable::OpenPlace(const std::string& address, const SqlTableOptions& options) {
  SqlPlace place;
  place.connection = options.connect ? options.connect(address) : OpenSqlConnection(address);
  SqlConnection& connection = *place.connection;
  const SqlDialect& dialect = DialectOf(connection.engine());
  for (const std::string& setting : dialect.settings) Set(place, setting);
  if (options.query) {
    place.relation = fmt::format("(\n{}\n) q", CheckQuery(*options.query, connection.name()));
  } else {
    place.relation = options.table ? connection.FindTable(*options.table) : connection.OnlyTable();
    if (fTableName.empty()) fTableName = PlainName(place.relation);
  }
  const std::vector<SqlColumn> columns = connection.ColumnsOf(place.relation);
  place.arms = {place.relation};
  if (dialect.hasPartitions && !options.query) {
    std::vector<std::string> leaves = FindLeaves(connection, place.relation);
    if (!leaves.empty()) place.arms = std::move(leaves);
  }
  if (fPlaces.empty()) {
    fDialect = dialect;
    LearnEncoding(place);
    fColumns = columns;
    for (const SqlColumn& column : columns) fQuoted.push_back(connection.Quoted(column.name));
  } else {
    if (dialect.name != fDialect.name)
      throw DataError(fmt::format("{}: this is {}, and {} is {}; the parts of a table must lie in engines of one kind",
                                  connection.name(), dialect.name, fPlaces.front().connection->name(), fDialect.name));
    CheckSameColumns(place, columns);
  }
  fPlaces.push_back(std::move(place));
}

/// Where texts are not kept in UTF-8, their length is that of their conversion.
void SqlTable::LearnEncoding(const SqlPlace& place) {
  if (fDialect.encoding == nullptr) return;
  Tell(place, fDialect.encoding);
  const std::unique_ptr<SqlRows> rows = place.connection->Ask(fDialect.encoding);
  if (rows->Next() && rows->Text(0) != "UTF8") fDialect.byteLength = fDialect.convertedLength;
}

/// A version of the engine that does not know a setting has nothing to set.
void SqlTable::Set(SqlPlace& place, const std::string& setting) {
  Tell(place, setting);
  place.connection->Keep();
  try {
    place.connection->Run(setting);
  } catch (const DataError&) {
    place.connection->BackTo();
  }
}

void SqlTable::CheckSameColumns(const SqlPlace& place, const std::vector<SqlColumn>& columns) const {
  const std::string& first = fPlaces.front().connection->name();
  if (columns.size() != fColumns.size())
    throw DataError(
        fmt::format("{}: the table has {} columns, and that of {} has {}; the parts of a table must have "
                    "the same columns in the same order",
                    place.connection->name(), columns.size(), first, fColumns.size()));
  for (std::size_t i = 0; i < columns.size(); ++i)
    if (columns[i].name != fColumns[i].name || columns[i].type != fColumns[i].type)
      throw DataError(fmt::format(
          "{}: column {} is {}, and that of {} is {} or has another type; the parts of a table "
          "must have the same columns in the same order",
          place.connection->name(), i + 1, QuotedCell(columns[i].name), first, QuotedCell(fColumns[i].name)));
}

bool SqlTable::hasArms() const {
  for (const SqlPlace& place : fPlaces)
    if (place.arms.size() > 1) return true;
  return false;
}

void SqlTable::Tell(const SqlPlace& place, const std::string& query) {
  if (fOnQuery) fOnQuery(place.connection->name(), query);
}

void SqlTable::AskPlace(SqlPlace& place, const std::string& query, const std::function<void(SqlRows&)>& onRow,
                        AnswerLength length) {
  SqlConnection& connection = *place.connection;
  const std::unique_ptr<SqlRows> rows =
      length == AnswerLength::Short ? connection.AskWhole(query) : connection.Ask(query);
  while (rows->Next()) onRow(*rows);
}

void SqlTable::Ask(const std::function<std::string(const SqlPlace&)>& query, const std::function<void(SqlRows&)>& onRow,
                   AnswerLength length) {
  std::vector<std::string> queries;
  for (const SqlPlace& place : fPlaces) {
    queries.push_back(query(place));
    Tell(place, queries.back());
  }
  if (fPlaces.size() == 1) return AskPlace(fPlaces.front(), queries.front(), onRow, length);
  std::mutex mutex;
  const auto onRowOfOne = [&](SqlRows& rows) {
    const std::lock_guard<std::mutex> lock(mutex);
    onRow(rows);
  };
  std::vector<std::future<void>> running;
  for (std::size_t i = 0; i < fPlaces.size(); ++i)
    running.push_back(std::async(std::launch::async, [&, i] { AskPlace(fPlaces[i], queries[i], onRowOfOne, length); }));
  std::exception_ptr failure;
  for (std::future<void>& place : running) {
    try {
      place.get();
    } catch (...) {
      if (!failure) failure = std::current_exception();
    }
  }
  if (failure) std::rethrow_exception(failure);
}

void SqlTable::AskFirst(const std::string& query, const std::function<void(SqlRows&)>& onRow) {
  Tell(fPlaces.front(), query);
  AskPlace(fPlaces.front(), query, onRow, AnswerLength::Short);
}

std::string SqlTable::OverArms(const SqlPlace& place, const std::function<std::string(const std::string&)>& select) {
  std::string query;
  for (const std::string& arm : place.arms) query += (query.empty() ? "" : " UNION ALL ") + select(arm);
  return query;
}

std::int64_t WholeCell(SqlRows& rows, std::size_t column) {
  const std::optional<std::string_view> text = rows.Text(column);
  if (!text) return 0;
  std::int64_t number = 0;
  std::string_view digits = *text;
  // Sums of whole numbers come as decimals from some engines.
  if (const std::size_t point = digits.find('.');
      point != std::string_view::npos && digits.find_first_not_of('0', point + 1) == std::string_view::npos)
    digits = digits.substr(0, point);
  const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), number);
  if (error != std::errc() || end != digits.data() + digits.size())
    throw DataError(
        fmt::format("The database answered {} where a number of rows was asked for; please report the "
                    "engine and its driver.",
                    QuotedCell(*text)));
  return number;
}

}  // namespace runtime::data
