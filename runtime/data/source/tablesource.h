// A table file that is read by an embedded engine: typed columns, some of them at a time.
#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "runtime/data/dictionary/descriptor.h"

namespace runtime::data {

/// A column as its file has it. A String column holds texts; every other type is handed over as numbers: booleans as 0
/// and 1, dates and dates with time as seconds since 1970-01-01T00:00:00, times as seconds.
struct SourceColumn {
  std::string name;
  FieldType type = FieldType::String;  // never Inferred
  bool isMixed = false;                // String, for there are texts among its numbers
};

/// Takes the cells of some rows of one column. Nothing may be kept beyond the call.
class ColumnSink {
 public:
  static constexpr std::int32_t kNoInteger = std::numeric_limits<std::int32_t>::min();

  static constexpr std::int8_t kNoByte = std::numeric_limits<std::int8_t>::min();

  virtual ~ColumnSink();
  /// Whole numbers of 7 bits and a sign. kNoByte: no value.
  virtual void Bytes(const std::int8_t* values, std::size_t count) = 0;
  /// Numbers that are whole and have 31 bits and a sign. kNoInteger: no value.
  virtual void Integers(const std::int32_t* values, std::size_t count) = 0;
  /// NaN: no value.
  virtual void Numbers(const double* values, std::size_t count) = 0;
  /// Some of the numbers are written with so many decimals, of which the last ones may be zeros.
  virtual void WrittenDecimals(int decimals) { static_cast<void>(decimals); }
  /// One of the numbers handed over before is NaN because this text of it is none that the type knows.
  virtual void Unreadable(std::string_view text) { static_cast<void>(text); }
  /// An empty text: no value, or an empty one.
  virtual void Texts(const std::string_view* texts, std::size_t count) = 0;
};

/// The rows of some columns, piece by piece in their order. One thread at a time. Errors throw DataError.
class TableStream {
 public:
  virtual ~TableStream();
  /// Turns to the next piece and gives its rows; 0 at the end.
  virtual std::size_t Next() = 0;
  /// Hands over `count` cells of the piece from the row `first` on, in one call or several. `column` counts in the
  /// stream.
  virtual void Take(std::size_t column, std::size_t first, std::size_t count, ColumnSink& sink) = 0;
};

/// A column of a stream. `asText` asks for texts also of a column that holds none (numbers as they are written, dates
/// and times in ISO form, true and false).
struct StreamColumn {
  std::size_t column = 0;  // of the table
  bool asText = false;
};

/// A file that was opened and whose columns are known. Errors throw DataError that names the file.
class TableSource {
 public:
  virtual ~TableSource();

  const std::vector<SourceColumn>& columns() const { return fColumns; }
  std::int64_t rowCount() const { return fRowCount; }
  /// What the file says of itself, keys with texts, of the keys that may hold a dictionary; of several files the first.
  const std::vector<std::pair<std::string, std::string>>& metadata() const { return fMetadata; }

  /// As many columns as a stream reads best when so many threads read streams of their own.
  virtual std::size_t ColumnsOfStream(int threads) const = 0;
  /// Reads all rows of some columns. Several threads may open and read streams at once.
  virtual std::unique_ptr<TableStream> Open(const std::vector<StreamColumn>& columns) = 0;

 protected:
  std::vector<SourceColumn> fColumns;
  std::int64_t fRowCount = 0;
  std::vector<std::pair<std::string, std::string>> fMetadata;
};

/// The ending of a file's name in lower case (ASCII letters), with its period; empty when it has none.
std::string LowerEnding(const std::string& path);

/// The kinds of files that give typed columns.
enum class TableFileKind { None, Parquet, JsonLines, Sqlite };

/// The kind of a file by its name, without regard to case: .parquet; .jsonl and .ndjson, also with .gz or .zst behind
/// it; .sqlite, .sqlite3, .db and .db3, and whatever begins as SQLite files do.
TableFileKind TableFileKindOf(const std::string& path);
inline bool IsTableFile(const std::string& path) { return TableFileKindOf(path) != TableFileKind::None; }

/// Opens Parquet or JSON lines files that have the same columns, one behind the other, or one SQLite file. `table` is
/// for the latter, see OpenSqliteTable. `threads` 0: as many as the machine has. Throws DataError, also when this build
/// or this machine has no engine for it. REQUIRES: at least one path, that of a table file.
std::unique_ptr<TableSource> OpenTableFiles(const std::vector<std::string>& paths,
                                            const std::optional<std::string>& table, int threads);
inline std::unique_ptr<TableSource> OpenTableFile(const std::string& path, int threads) {
  return OpenTableFiles({path}, std::nullopt, threads);
}

}  // namespace runtime::data
