#include "runtime/data/source/tablesource.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <string_view>
#include <system_error>

#include <fmt/format.h>

#include "runtime/data/compression/packing.h"
#include "runtime/data/lowerascii.h"
#include "runtime/data/open.h"
#include "runtime/data/source/sqlite/sqlitetable.h"
#ifdef CODEBOOK_HAVE_DUCKDB
#include "runtime/data/source/duckdbtable.h"
#endif

namespace runtime::data {
namespace {

/// The engine's own words for these are about its settings, not about the file.
void CheckReadable(const std::string& path) {
  std::error_code error;
  if (std::filesystem::is_directory(path, error)) throw DataError(fmt::format("{}: this is a directory", path));
  std::FILE* file = std::fopen(path.c_str(), "rb");
  if (!file) throw DataError(fmt::format("{}: cannot open the file: {}", path, std::strerror(errno)));
  const bool isEmpty = std::fgetc(file) == EOF;
  std::fclose(file);
  if (isEmpty) throw DataError(fmt::format("{}: the file is empty", path));
}

bool BeginsAsSqlite(const std::string& path) {
  using namespace std::string_view_literals;
  constexpr std::string_view kMark = "SQLite format 3\0"sv;
  std::error_code error;
  if (!std::filesystem::is_regular_file(path, error)) return false;  // a pipe can be read only once
  char begin[kMark.size()] = {};
  std::ifstream file(path, std::ios::binary);
  return file.read(begin, sizeof begin) && std::string_view(begin, sizeof begin) == kMark;
}

}  // namespace

ColumnSink::~ColumnSink() = default;
TableStream::~TableStream() = default;
TableSource::~TableSource() = default;

std::string LowerEnding(const std::string& path) {
  return LowerAscii(std::filesystem::path(path).extension().string());
}

TableFileKind TableFileKindOf(const std::string& path) {
  const std::string ending = LowerEnding(path);
  if (ending == ".parquet") return TableFileKind::Parquet;
  const std::string unpacked = LowerEnding(WithoutPackedEnding(path));
  if (unpacked == ".jsonl" || unpacked == ".ndjson") return TableFileKind::JsonLines;
  if (ending == ".sqlite" || ending == ".sqlite3" || ending == ".db" || ending == ".db3") return TableFileKind::Sqlite;
  return BeginsAsSqlite(path) ? TableFileKind::Sqlite : TableFileKind::None;
}

std::unique_ptr<TableSource> OpenTableFiles(const std::vector<std::string>& paths,
                                            const std::optional<std::string>& table, [[maybe_unused]] int threads) {
  const TableFileKind kind = TableFileKindOf(paths.front());
  for (const std::string& path : paths) {
    CheckReadable(path);
    if (TableFileKindOf(path) != kind)
      throw DataError(fmt::format(
          "{}: this is not a file of the kind of {}; the files of one table must be of one kind", path, paths.front()));
  }
  if (kind == TableFileKind::Sqlite) {
    if (paths.size() > 1) throw DataError(fmt::format("{}: SQLite files are read one at a time", paths[1]));
    return OpenSqliteTable(paths.front(), table);
  }
  if (table) throw DataError(fmt::format("{}: only SQLite files hold tables; leave out --table", paths.front()));
#ifdef CODEBOOK_HAVE_DUCKDB
  return OpenDuckDBTable(paths, kind, threads);
#else
  throw DataError(
      fmt::format("{}: this program was built without Parquet and JSON lines; build it with DuckDB, or save "
                  "the data as CSV",
                  paths.front()));
#endif
}

}  // namespace runtime::data
