// A DuckDB database in memory that may read one file and nothing else.
#pragma once

#ifdef CODEBOOK_HAVE_DUCKDB

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

#include "runtime/data/source/duckdblibrary.h"

namespace runtime::data {

/// A piece of a result.
class DuckDBChunk {
 public:
  DuckDBChunk(const DuckDBLibrary& library, duckdb_data_chunk chunk) : fLibrary(library), fChunk(chunk) {}

  std::size_t rows() const { return fLibrary.duckdb_data_chunk_get_size(fChunk); }
  /// The cells of a DOUBLE column; NaN for null.
  void Doubles(std::size_t column, double* values) const;
  /// The cells of a VARCHAR column; views into the chunk, of data() null for null.
  void Texts(std::size_t column, std::string_view* texts) const;

 private:
  const DuckDBLibrary& fLibrary;
  duckdb_data_chunk fChunk;
};

/// What is known of a column of a query before its rows are read.
struct DuckDBColumn {
  std::string name;
  duckdb_type type = DUCKDB_TYPE_INVALID;
  int decimalWidth = 0;  // of DECIMAL
};

/// Extensions are neither fetched nor loaded, the network is out of reach, rows keep their order. Errors throw
/// DataError that names the file.
class DuckDBSession {
 public:
  /// `path` is absolute. `threads` 0: as many as the machine has.
  DuckDBSession(const std::string& path, int threads);
  ~DuckDBSession();
  DuckDBSession(const DuckDBSession&) = delete;
  DuckDBSession& operator=(const DuckDBSession&) = delete;

  /// Runs a query whose parameter $1, where it has one, is the path, and hands over its rows.
  void Run(const std::string& sql, const std::function<void(const DuckDBChunk&)>& take) const;
  /// The columns of a query, which should give no rows.
  std::vector<DuckDBColumn> Columns(const std::string& sql) const;

 private:
  class Result;

  void Set(const std::string& sql) const;
  [[noreturn]] void Fail(const char* problem) const;

  const DuckDBLibrary& fLibrary;
  std::string fPath;
  duckdb_database fDatabase = nullptr;
  duckdb_connection fConnection = nullptr;
};

}  // namespace runtime::data

#endif
