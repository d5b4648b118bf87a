// A table file that is read by an embedded engine: typed columns, handed over in pieces.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "runtime/data/dictionary/descriptor.h"

namespace runtime::data {

/// A column as its file has it. A String column holds texts; every other type is handed over as numbers: booleans as 0
/// and 1, dates and dates with time as seconds since 1970-01-01T00:00:00, times as seconds.
struct SourceColumn {
  std::string name;
  FieldType type = FieldType::String;  // never Inferred
};

/// Takes the cells of a table, column by column, in the order of the rows. Nothing may be kept beyond the call.
class ColumnSink {
 public:
  virtual ~ColumnSink();
  /// NaN: no value.
  virtual void Numbers(std::size_t column, const double* values, std::size_t count) = 0;
  /// An empty text: no value, or an empty one.
  virtual void Texts(std::size_t column, const std::string_view* texts, std::size_t count) = 0;
  /// All columns of so many rows have been handed over.
  virtual void EndRows(std::size_t count) = 0;
};

/// A file that was opened and whose columns are known. Errors throw DataError that names the file.
class TableSource {
 public:
  virtual ~TableSource();

  const std::vector<SourceColumn>& columns() const { return fColumns; }
  std::int64_t rowCount() const { return fRowCount; }

  /// Reads all rows. `asText` has an entry for each column: true asks for texts also of a column that holds no texts
  /// (numbers as they are written, dates and times in ISO form, true and false).
  virtual void Read(const std::vector<bool>& asText, ColumnSink& sink) = 0;

 protected:
  std::vector<SourceColumn> fColumns;
  std::int64_t fRowCount = 0;
};

/// The ending of a file's name in lower case (ASCII letters), with its period; empty when it has none.
std::string LowerEnding(const std::string& path);

/// Whether a path names a file of such a kind: .parquet, .jsonl, .ndjson, without regard to case.
bool IsTableFile(const std::string& path);

/// Opens a Parquet or JSON lines file. `threads` 0: as many as the machine has. Throws DataError, also when this build
/// or this machine has no engine for it.
std::unique_ptr<TableSource> OpenTableFile(const std::string& path, int threads);

}  // namespace runtime::data
