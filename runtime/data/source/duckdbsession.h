// A DuckDB database in memory that may read one file and nothing else.
#pragma once

#ifdef CODEBOOK_HAVE_DUCKDB

#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace runtime::data {

/// A piece of a result.
class DuckDBChunk {
 public:
  virtual std::size_t rows() const = 0;
  /// The cells of a DOUBLE column; NaN for null.
  virtual void Doubles(std::size_t column, double* values) const = 0;
  /// The cells of a VARCHAR column; views into the chunk, empty for null.
  virtual void Texts(std::size_t column, std::string_view* texts) const = 0;

 protected:
  ~DuckDBChunk() = default;
};

/// What is known of a column of a query before its rows are read.
struct DuckDBColumn {
  std::string name;
  int type = 0;          // a duckdb_type
  int decimalWidth = 0;  // of DECIMAL
};

/// Extensions are neither fetched nor loaded, the network is out of reach, rows keep their order. Errors throw
/// DataError that names the file.
class DuckDBSession {
 public:
  /// `path` is absolute and names a file that can be opened; characters of patterns (* ? [) are taken literally.
  /// `threads` 0: as many as the machine has.
  DuckDBSession(const std::string& path, int threads);
  ~DuckDBSession();
  DuckDBSession(const DuckDBSession&) = delete;
  DuckDBSession& operator=(const DuckDBSession&) = delete;

  /// Runs a query whose parameter $1, where it has one, is the path, and hands over its rows.
  void Run(const std::string& sql, const std::function<void(const DuckDBChunk&)>& take) const;
  /// The columns of a query, which should give no rows.
  std::vector<DuckDBColumn> Columns(const std::string& sql) const;

 private:
  struct Connection;
  class Result;

  void Set(const std::string& sql) const;
  [[noreturn]] void Fail(const std::string& problem) const;

  std::string fFile;  // in messages
  std::string fPath;  // as DuckDB is told it
  std::unique_ptr<Connection> fConnection;
};

}  // namespace runtime::data

#endif
