#include "runtime/data/source/sql/rowssource.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <optional>
#include <string_view>
#include <utility>

#include <fmt/format.h>

#include "runtime/data/open.h"
#include "runtime/data/source/rowpiece.h"
#include "runtime/data/source/sql/dialect.h"
#include "runtime/data/source/sql/sqlcell.h"
#include "runtime/data/typing/numbertext.h"

namespace runtime::data {
namespace {

constexpr std::size_t kRowsAtOnce = 2048;
constexpr std::size_t kTextBytesAtOnce = std::size_t{16} << 20;

using QueryListener = std::function<void(const std::string&, const std::string&)>;

std::unique_ptr<SqlRows> Ask(const SqlRelation& relation, const std::string& query, const QueryListener& onQuery) {
  if (onQuery) onQuery(relation.connection->name(), query);
  return relation.connection->Ask(query);
}

/// A cell as a text of a file would have it.
std::string_view TextOfCell(SqlType type, std::string_view text, std::string& buffer) {
  constexpr std::size_t kBehindDate = 10;
  switch (type) {
    case SqlType::FixedText:
      while (!text.empty() && text.back() == ' ') text.remove_suffix(1);
      return text;
    case SqlType::DateTime:
      if (text.size() <= kBehindDate || text[kBehindDate] != ' ') return text;
      buffer = text;
      buffer[kBehindDate] = 'T';
      return buffer;
    case SqlType::Boolean: {
      const double number = NumberOfCell(type, text);
      if (std::isnan(number)) return text;
      return number != 0.0 ? "true" : "false";
    }
    default:
      return text;
  }
}

class SqlRowStream : public TableStream {
 public:
  SqlRowStream(const std::vector<SqlRelation>& relations, std::vector<SqlType> types, std::vector<bool> isText,
               std::string list, std::int64_t rowCount, const QueryListener& onQuery)
      : fRelations(relations),
        fTypes(std::move(types)),
        fPiece(std::move(isText)),
        fList(std::move(list)),
        fRowCount(rowCount),
        fOnQuery(onQuery) {}

  std::size_t Next() override {
    fPiece.Clear();
    std::size_t rows = 0;
    while (rows < kRowsAtOnce && fPiece.textBytes() < kTextBytesAtOnce && NextRow()) {
      for (std::size_t column = 0; column < fPiece.columns(); ++column) Keep(column);
      ++rows;
    }
    fRowsRead += static_cast<std::int64_t>(rows);
    if (fRowsRead > fRowCount || (rows == 0 && fRowsRead < fRowCount))
      throw DataError(fmt::format("{}: {} rows were read of {}; the table changed meanwhile; run the command again",
                                  fRelations.front().connection->name(), fRowsRead, fRowCount));
    return rows;
  }

  void Take(std::size_t column, std::size_t first, std::size_t count, ColumnSink& sink) override {
    fPiece.Take(column, first, count, sink);
  }

 private:
  bool NextRow() {
    while (true) {
      if (fRows && fRows->Next()) return true;
      fRows.reset();
      if (fNextRelation == fRelations.size()) return false;
      const SqlRelation& relation = fRelations[fNextRelation++];
      fRows = Ask(relation, fmt::format("SELECT {} FROM {}", fList, relation.relation), fOnQuery);
    }
  }

  void Keep(std::size_t column) {
    const std::optional<std::string_view> cell = fRows->Text(column);
    if (fPiece.isText(column)) {
      fPiece.AddText(column, cell ? TextOfCell(fTypes[column], *cell, fBuffer) : std::string_view());
      return;
    }
    if (!cell) return fPiece.AddNumber(column, std::numeric_limits<double>::quiet_NaN());
    const double number = NumberOfCell(fTypes[column], *cell);
    fPiece.AddNumber(column, number);
    if (fTypes[column] == SqlType::Decimal) fPiece.AddDecimals(column, WrittenDecimals(*cell));
    if (IsUnreadable(fTypes[column], *cell, number)) fPiece.AddUnreadable(column, *cell);
  }

  const std::vector<SqlRelation>& fRelations;
  std::vector<SqlType> fTypes;
  RowPiece fPiece;
  std::string fList;
  std::int64_t fRowCount;
  std::int64_t fRowsRead = 0;
  const QueryListener& fOnQuery;
  std::unique_ptr<SqlRows> fRows;
  std::size_t fNextRelation = 0;
  std::string fBuffer;
};

class SqlRowsSource : public TableSource {
 public:
  SqlRowsSource(std::vector<SqlRelation> relations, const std::vector<SqlColumn>& columns, QueryListener onQuery)
      : fRelations(std::move(relations)), fOnQuery(std::move(onQuery)) {
    for (const SqlColumn& column : columns) {
      fColumns.push_back({column.name, FieldTypeOf(column.type), column.isMixed});
      fTypes.push_back(column.type);
      fQuoted.push_back(fRelations.front().connection->Quoted(column.name));
    }
    for (const SqlRelation& relation : fRelations) Learn(relation);
  }

  // One stream: each of them fetches all rows.
  std::size_t ColumnsOfStream(int) const override { return fColumns.size(); }

  std::unique_ptr<TableStream> Open(const std::vector<StreamColumn>& columns) override {
    std::vector<SqlType> types;
    std::vector<bool> isText;
    std::string list;
    for (const StreamColumn& wanted : columns) {
      types.push_back(fTypes[wanted.column]);
      isText.push_back(wanted.asText || fColumns[wanted.column].type == FieldType::String);
      list += (list.empty() ? "" : ", ") + CellOf(wanted.column);
    }
    return std::make_unique<SqlRowStream>(fRelations, std::move(types), std::move(isText), std::move(list), fRowCount,
                                          fOnQuery);
  }

 private:
  /// A column as it is asked for. Drivers make dates of their own form, in which those outside of the calendar look
  /// like others; an engine that is known is asked to write them.
  std::string CellOf(std::size_t column) const {
    const SqlDialect& dialect = DialectOf(fRelations.front().connection->engine());
    const SqlType type = fTypes[column];
    const bool isOfTime = type == SqlType::Date || type == SqlType::Time || type == SqlType::DateTime;
    return isOfTime && dialect.isKnown ? dialect.CastToText(fQuoted[column], type) : fQuoted[column];
  }

  /// Counts the rows and finds the columns whose numbers doubles do not hold.
  void Learn(const SqlRelation& relation) {
    constexpr std::size_t kColumnsAtOnce = 400;  // engines take at least a thousand results
    std::vector<std::size_t> exact;
    for (std::size_t i = 0; i < fTypes.size(); ++i)
      if (fTypes[i] == SqlType::Whole || fTypes[i] == SqlType::Decimal) exact.push_back(i);
    for (std::size_t first = 0; first == 0 || first < exact.size(); first += kColumnsAtOnce) {
      const std::size_t count = std::min(kColumnsAtOnce, exact.size() - first);
      std::string list = "COUNT(*)";
      for (std::size_t i = first; i < first + count; ++i)
        list += fmt::format(", MIN({0}), MAX({0})", fQuoted[exact[i]]);
      auto rows = Ask(relation, fmt::format("SELECT {} FROM {}", list, relation.relation), fOnQuery);
      if (!rows->Next()) throw DataError(relation.connection->name() + ": the engine gives no answer to COUNT(*)");
      if (first == 0) fRowCount += RowsOf(relation, rows->Text(0));
      std::vector<Bound> unsettled;
      for (std::size_t i = 0; i < count; ++i) {
        const std::size_t column = exact[first + i];
        if (!Settle(column, rows->Text(2 * i + 1))) unsettled.push_back({column, "MIN", ">"});
        if (!Settle(column, rows->Text(2 * i + 2))) unsettled.push_back({column, "MAX", "<"});
      }
      rows.reset();
      for (const Bound& bound : unsettled) FindNumber(relation, bound);
    }
  }

  struct Bound {
    std::size_t column = 0;
    const char* function = nullptr;
    const char* inside = nullptr;  // how the other values compare with this one
  };

  /// Whether the least or greatest value of a column is a number, or missing; then the column's type heeds it.
  bool Settle(std::size_t column, std::optional<std::string_view> text) {
    if (!text) return true;
    const double number = NumberOfCell(fTypes[column], *text);
    // 2^53 + 1 reads as 2^53.
    if (std::abs(number) > kLargestWhole ||
        (std::abs(number) == kLargestWhole && text->find("9007199254740992") == std::string_view::npos))
      fColumns[column].type = FieldType::String;
    return !std::isnan(number);
  }

  /// PostgreSQL's decimals know NaN and infinities, which stand outside of the numbers.
  void FindNumber(const SqlRelation& relation, const Bound& bound) {
    constexpr int kMostBeyondNumbers = 2;
    const std::string& name = fQuoted[bound.column];
    const std::string extreme = fmt::format("SELECT {}({}) FROM {}", bound.function, name, relation.relation);
    std::string query = extreme;
    for (int i = 0; i < kMostBeyondNumbers; ++i) {
      query = fmt::format("{} WHERE {} {} ({})", extreme, name, bound.inside, query);
      const auto rows = Ask(relation, query, fOnQuery);
      if (rows->Next() && Settle(bound.column, rows->Text(0))) return;
    }
  }

  std::int64_t RowsOf(const SqlRelation& relation, std::optional<std::string_view> text) const {
    NumberReading reading;
    if (text && ReadIntegerText(*text, reading) && reading.value >= 0.0 && reading.value <= kLargestWhole)
      return static_cast<std::int64_t>(reading.value);
    throw DataError(relation.connection->name() + ": the engine gives no number for COUNT(*)");
  }

  std::vector<SqlRelation> fRelations;
  QueryListener fOnQuery;
  std::vector<SqlType> fTypes;
  std::vector<std::string> fQuoted;
};

}  // namespace

std::unique_ptr<TableSource> OpenSqlRows(std::vector<SqlRelation> relations, const std::vector<SqlColumn>& columns,
                                         std::function<void(const std::string&, const std::string&)> onQuery) {
  return std::make_unique<SqlRowsSource>(std::move(relations), columns, std::move(onQuery));
}

}  // namespace runtime::data
