#include "runtime/data/source/tablesource.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <system_error>

#include <fmt/format.h>

#include "runtime/data/lowerascii.h"
#include "runtime/data/open.h"
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

}  // namespace

ColumnSink::~ColumnSink() = default;
TableStream::~TableStream() = default;
TableSource::~TableSource() = default;

std::string LowerEnding(const std::string& path) {
  return LowerAscii(std::filesystem::path(path).extension().string());
}

bool IsTableFile(const std::string& path) {
  const std::string ending = LowerEnding(path);
  return ending == ".parquet" || ending == ".jsonl" || ending == ".ndjson";
}

std::unique_ptr<TableSource> OpenTableFile(const std::string& path, [[maybe_unused]] int threads) {
  CheckReadable(path);
#ifdef CODEBOOK_HAVE_DUCKDB
  return OpenDuckDBTable(path, LowerEnding(path) == ".parquet" ? TableFileKind::Parquet : TableFileKind::JsonLines,
                         threads);
#else
  throw DataError(
      fmt::format("{}: this program was built without Parquet and JSON lines; build it with DuckDB, or save "
                  "the data as CSV",
                  path));
#endif
}

}  // namespace runtime::data
