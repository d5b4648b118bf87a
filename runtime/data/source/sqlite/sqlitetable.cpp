#include "runtime/data/source/sqlite/sqlitetable.h"

#include <cstddef>
#include <limits>
#include <utility>
#include <vector>

#include "runtime/data/source/rowpiece.h"
#include "runtime/data/source/sqlite/sqlitefile.h"
#include "runtime/data/store/rowgroups.h"

namespace runtime::data {

namespace {

constexpr std::size_t kRowsAtOnce = 2048;

FieldType TypeOf(const SqliteColumnKinds& kinds) {
  if (kinds.others || kinds.tooLong || !(kinds.wholes || kinds.reals)) return FieldType::String;
  return kinds.reals ? FieldType::Number : FieldType::Integer;
}

class SqliteStream : public TableStream {
 public:
  /// `columns` says of each column of the query whether it is wanted as texts.
  SqliteStream(const SqliteFile& file, const std::string& sql, std::vector<bool> isText)
      : fQuery(file, sql), fPiece(std::move(isText)) {}

  std::size_t Next() override {
    fPiece.Clear();
    std::size_t rows = 0;
    while (rows < kRowsAtOnce && !fEnded) {
      fEnded = !fQuery.Step();
      if (fEnded) break;
      for (std::size_t column = 0; column < fPiece.columns(); ++column) Keep(column);
      ++rows;
    }
    return rows;
  }

  void Take(std::size_t column, std::size_t first, std::size_t count, ColumnSink& sink) override {
    fPiece.Take(column, first, count, sink);
  }

 private:
  void Keep(std::size_t column) {
    const int place = static_cast<int>(column);
    if (!fPiece.isText(column)) {
      fPiece.AddNumber(column, fQuery.Kind(place) == SqliteKind::Null ? std::numeric_limits<double>::quiet_NaN()
                                                                      : fQuery.Real(place));
      return;
    }
    fText.clear();
    fQuery.AppendText(place, fText);
    fPiece.AddText(column, fText);
  }

  SqliteQuery fQuery;
  RowPiece fPiece;
  std::string fText;
  bool fEnded = false;
};

class SqliteTable : public TableSource {
 public:
  SqliteTable(const std::string& path, const std::optional<std::string>& table)
      : fFile(path, path), fTable(SqliteIdentifier(ChooseSqliteTable(fFile, table))) {
    const SqliteScan scan = ScanSqlite(fFile, "SELECT * FROM " + fTable, kMostCases);
    fRowCount = scan.rows;
    for (const SqliteColumnKinds& column : scan.columns)
      fColumns.push_back({column.name, TypeOf(column), column.isMixed()});
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
