// A DuckDB database in memory that may read certain files and nothing else.
#pragma once

#ifdef CODEBOOK_HAVE_DUCKDB

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace runtime::data {

/// The cells of a column of a piece as DuckDB holds them, in a type of its own; valid as long as the piece.
struct DuckDBVector {
  const void* cells = nullptr;
  const std::uint64_t* validity = nullptr;  // a bit a row, 0 for null; null: no cell is null
};

/// A piece of a result.
class DuckDBChunk {
 public:
  virtual std::size_t rows() const = 0;
  virtual DuckDBVector Vector(std::size_t column) const = 0;

  /// The cell of a row of a DOUBLE column; NaN for null.
  double Number(std::size_t column, std::size_t row) const;
  /// The cells of a VARCHAR column from a row on; views into the chunk, empty for null.
  void Texts(std::size_t column, std::size_t first, std::size_t count, std::string_view* texts) const;

 protected:
  ~DuckDBChunk() = default;
};

/// The rows of a query that are not there all at once. One thread at a time.
class DuckDBStream {
 public:
  virtual ~DuckDBStream();
  /// The next piece, valid until the next call; null at the end. A failure on the way throws DataError.
  virtual const DuckDBChunk* Next() = 0;
};

/// What is known of a column of a query before its rows are read.
struct DuckDBColumn {
  std::string name;
  int type = 0;          // a duckdb_type
  int decimalWidth = 0;  // of DECIMAL: digits, and those behind the point
  int decimalScale = 0;
};

/// A file that a session may read.
struct DuckDBFile {
  std::string name;     // an absolute path
  int descriptor = -1;  // of another, open file to read in its place; the session closes it. -1: none
};

/// Extensions are neither fetched nor loaded, the network is out of reach, nothing is written to disk, rows keep their
/// order. Errors throw DataError that names the file.
class DuckDBSession {
 public:
  /// The files can be opened; characters of patterns (* ? [) in their names are taken literally. `threads` 0: as many
  /// as the machine has. With 1 a query runs on the thread that takes its rows. REQUIRES: at least one file.
  DuckDBSession(std::vector<DuckDBFile> files, int threads);
  DuckDBSession(const std::string& path, int threads) : DuckDBSession({DuckDBFile{path}}, threads) {}
  ~DuckDBSession();
  DuckDBSession(const DuckDBSession&) = delete;
  DuckDBSession& operator=(const DuckDBSession&) = delete;

  /// The files, and one of them, as a list of SQL for the functions that read files.
  std::string files() const;
  std::string file(std::size_t index) const;

  /// Runs a query, whose parameter $1 is the first file's path; it must end before the session. With one thread several
  /// may be under way at once, also on other threads than this one; with several, which then work on it, it must be the
  /// only query.
  std::unique_ptr<DuckDBStream> Open(const std::string& sql) const;
  /// Runs a query whose parameter $1, where it has one, is the first file's path, and hands over its rows.
  void Run(const std::string& sql, const std::function<void(const DuckDBChunk&)>& take) const;
  /// The columns of a query, which should give no rows.
  std::vector<DuckDBColumn> Columns(const std::string& sql) const;

 private:
  struct Database;
  class Connection;
  class Result;
  class Stream;

  void Set(const std::string& sql) const;
  [[noreturn]] void Fail(const std::string& problem) const;

  std::vector<DuckDBFile> fFiles;
  std::vector<std::string> fPaths;  // of each file, as DuckDB is told it
  std::unique_ptr<Database> fDatabase;
  int fThreads;
  std::unique_ptr<Connection> fConnection;
};

}  // namespace runtime::data

#endif
