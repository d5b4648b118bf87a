#include "runtime/data/source/duckdbsession.h"

#ifdef CODEBOOK_HAVE_DUCKDB

#include <cerrno>
#include <cstdint>
#include <cstring>
#include <limits>
#include <utility>

#include <fcntl.h>
#include <fmt/format.h>
#include <unistd.h>

#include "runtime/data/open.h"
#include "runtime/data/source/duckdblibrary.h"
#include "runtime/data/source/filefault.h"

namespace runtime::data {
namespace {

std::string Quoted(const std::string& text) {
  std::string quoted = "'";
  for (const char byte : text) quoted += byte == '\'' ? "''" : std::string(1, byte);
  return quoted + "'";
}

/// DuckDB's words up to the excerpt of the query, which is ours and tells the user nothing.
std::string WithoutQuery(const char* problem) {
  std::string words = problem ? problem : "no reason was given";
  words = words.substr(0, words.find("\n\nLINE "));
  while (!words.empty() && (words.back() == '\n' || words.back() == ' ')) words.pop_back();
  return words;
}

bool IsValid(const std::uint64_t* validity, std::size_t row) {
  return validity == nullptr || (validity[row / 64] >> (row % 64) & 1) != 0;
}

class FetchedChunk final : public DuckDBChunk {
 public:
  FetchedChunk(const DuckDBLibrary& library, duckdb_data_chunk chunk) : fLibrary(library), fChunk(chunk) {}
  ~FetchedChunk() { fLibrary.duckdb_destroy_data_chunk(&fChunk); }
  FetchedChunk(const FetchedChunk&) = delete;
  FetchedChunk& operator=(const FetchedChunk&) = delete;

  std::size_t rows() const override { return fLibrary.duckdb_data_chunk_get_size(fChunk); }

  void Doubles(std::size_t column, double* values) const override {
    const duckdb_vector vector = fLibrary.duckdb_data_chunk_get_vector(fChunk, column);
    const auto* data = static_cast<const double*>(fLibrary.duckdb_vector_get_data(vector));
    const std::uint64_t* validity = fLibrary.duckdb_vector_get_validity(vector);
    const std::size_t count = rows();
    for (std::size_t row = 0; row < count; ++row)
      values[row] = IsValid(validity, row) ? data[row] : std::numeric_limits<double>::quiet_NaN();
  }

  void Texts(std::size_t column, std::string_view* texts) const override {
    const duckdb_vector vector = fLibrary.duckdb_data_chunk_get_vector(fChunk, column);
    const auto* data = static_cast<const duckdb_string_t*>(fLibrary.duckdb_vector_get_data(vector));
    const std::uint64_t* validity = fLibrary.duckdb_vector_get_validity(vector);
    constexpr std::uint32_t kLongestInlined = sizeof(data->value.inlined.inlined);
    const std::size_t count = rows();
    for (std::size_t row = 0; row < count; ++row) {
      if (!IsValid(validity, row)) {
        texts[row] = {};
        continue;
      }
      const std::uint32_t length = data[row].value.inlined.length;
      texts[row] = {length <= kLongestInlined ? data[row].value.inlined.inlined : data[row].value.pointer.ptr, length};
    }
  }

 private:
  const DuckDBLibrary& fLibrary;
  duckdb_data_chunk fChunk;
};

}  // namespace

struct DuckDBSession::Connection {
  const DuckDBLibrary& library = DuckDBLibrary::Get();
  duckdb_database database = nullptr;
  duckdb_connection connection = nullptr;
  int file = -1;  // kept open while its number stands for its path

  Connection() = default;
  ~Connection() {
    if (file >= 0) close(file);
    library.duckdb_disconnect(&connection);
    library.duckdb_close(&database);
  }
  Connection(const Connection&) = delete;
  Connection& operator=(const Connection&) = delete;
};

/// A query under way.
class DuckDBSession::Result {
 public:
  Result(const DuckDBSession& session, const std::string& sql)
      : fSession(session), fLibrary(session.fConnection->library) {
    if (fLibrary.duckdb_prepare(session.fConnection->connection, sql.c_str(), &fStatement) == DuckDBError)
      Fail(fLibrary.duckdb_prepare_error(fStatement));
    if (sql.find("$1") != std::string::npos &&
        fLibrary.duckdb_bind_varchar(fStatement, 1, session.fPath.c_str()) == DuckDBError)
      Fail("the path cannot be handed over");
    if (fLibrary.duckdb_execute_prepared_streaming(fStatement, &fResult) == DuckDBError)
      Fail(fLibrary.duckdb_result_error(&fResult));
  }
  ~Result() { Release(); }
  Result(const Result&) = delete;
  Result& operator=(const Result&) = delete;

  duckdb_result& get() { return fResult; }

  /// The next piece, null at the end. A failure ends the pieces too, and only the result knows of it.
  duckdb_data_chunk Next() {
    const duckdb_data_chunk chunk = fLibrary.duckdb_fetch_chunk(fResult);
    if (chunk) return chunk;
    if (const char* problem = fLibrary.duckdb_result_error(&fResult)) fSession.Fail(WithoutQuery(problem));
    return nullptr;
  }

 private:
  void Release() {
    fLibrary.duckdb_destroy_result(&fResult);
    fLibrary.duckdb_destroy_prepare(&fStatement);
  }

  /// Of the constructor, after which no destructor runs.
  [[noreturn]] void Fail(const char* problem) {
    const std::string words = WithoutQuery(problem);
    Release();
    fSession.Fail(words);
  }

  const DuckDBSession& fSession;
  const DuckDBLibrary& fLibrary;
  duckdb_prepared_statement fStatement = nullptr;
  duckdb_result fResult{};
};

DuckDBSession::DuckDBSession(const std::string& path, int threads)
    : fFile(path), fPath(path), fConnection(std::make_unique<Connection>()) {
  if (path.find_first_of("*?[") != std::string::npos) {
    // DuckDB takes such a name for a pattern of names and knows no way to write it otherwise.
    fConnection->file = open(path.c_str(), O_RDONLY | O_CLOEXEC);
    if (fConnection->file < 0) Fail(std::strerror(errno));
    fPath = fmt::format("/proc/self/fd/{}", fConnection->file);
  }
  const DuckDBLibrary& library = fConnection->library;
  duckdb_config config = nullptr;
  library.duckdb_create_config(&config);
  library.duckdb_set_config(config, "autoinstall_known_extensions", "false");
  library.duckdb_set_config(config, "autoload_known_extensions", "false");
  library.duckdb_set_config(config, "preserve_insertion_order", "true");
  if (threads > 0) library.duckdb_set_config(config, "threads", std::to_string(threads).c_str());
  char* problem = nullptr;
  const duckdb_state opened = library.duckdb_open_ext(nullptr, &fConnection->database, config, &problem);
  library.duckdb_destroy_config(&config);
  if (opened == DuckDBError) {
    const std::string words = WithoutQuery(problem);
    library.duckdb_free(problem);
    Fail(words);
  }
  if (library.duckdb_connect(fConnection->database, &fConnection->connection) == DuckDBError) Fail("no connection");
  Set("SET allowed_paths = [" + Quoted(fPath) + "]");
  Set("SET enable_external_access = false");
  Set("SET lock_configuration = true");
}

DuckDBSession::~DuckDBSession() = default;

void DuckDBSession::Set(const std::string& sql) const {
  Result result(*this, sql);
  while (duckdb_data_chunk chunk = result.Next()) fConnection->library.duckdb_destroy_data_chunk(&chunk);
}

void DuckDBSession::Run(const std::string& sql, const std::function<void(const DuckDBChunk&)>& take) const {
  Result result(*this, sql);
  while (const duckdb_data_chunk chunk = result.Next()) take(FetchedChunk(fConnection->library, chunk));
}

std::vector<DuckDBColumn> DuckDBSession::Columns(const std::string& sql) const {
  const DuckDBLibrary& library = fConnection->library;
  Result result(*this, sql);
  std::vector<DuckDBColumn> columns(library.duckdb_column_count(&result.get()));
  for (std::size_t i = 0; i < columns.size(); ++i) {
    columns[i].name = library.duckdb_column_name(&result.get(), i);
    columns[i].type = library.duckdb_column_type(&result.get(), i);
    if (columns[i].type != DUCKDB_TYPE_DECIMAL) continue;
    duckdb_logical_type type = library.duckdb_column_logical_type(&result.get(), i);
    columns[i].decimalWidth = library.duckdb_decimal_width(type);
    library.duckdb_destroy_logical_type(&type);
  }
  return columns;
}

void DuckDBSession::Fail(const std::string& problem) const {
  if (const std::optional<std::string> fault = FindFileFault(fFile)) throw DataError(*fault);
  std::string words = problem;
  for (std::size_t at = words.find(fPath); fPath != fFile && at != std::string::npos; at = words.find(fPath, at))
    words.replace(at, fPath.size(), fFile);
  throw DataError(fmt::format("{}: the file cannot be read: {}", fFile, words));
}

}  // namespace runtime::data

#endif
