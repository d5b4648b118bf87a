// A file through DuckDB's CSV reader.
#pragma once

#include <cstddef>
#include <string>

#include <duckdb.h>

#include "runtime/data/csv/csvdialect.h"
#include "tests/cells/table.h"

namespace cells {

/// A DuckDB in memory, one thread.
class DuckDB {
 public:
  DuckDB();
  ~DuckDB();
  DuckDB(const DuckDB&) = delete;
  DuckDB& operator=(const DuckDB&) = delete;

  /// Reads the file as `columns` columns of texts, the header as a row like others. Nothing is left to be found out:
  /// the dialect is given; what is not quite a CSV file is read as far as DuckDB is able to (no strict mode, short rows
  /// filled up). A NULL is an empty text.
  Table Read(const std::string& path, const runtime::data::CsvDialect& dialect, std::size_t columns) const;

 private:
  duckdb_database fDatabase = nullptr;
  duckdb_connection fConnection = nullptr;
};

}  // namespace cells
