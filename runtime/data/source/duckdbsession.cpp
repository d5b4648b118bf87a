#include "runtime/data/source/duckdbsession.h"

#ifdef CODEBOOK_HAVE_DUCKDB

#include <cerrno>
#include <cstdint>
#include <cstring>
#include <limits>
#include <optional>
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

bool IsValid(const DuckDBVector& vector, std::size_t row) {
  return vector.validity == nullptr || (vector.validity[row / 64] >> (row % 64) & 1) != 0;
}

class FetchedChunk final : public DuckDBChunk {
 public:
  FetchedChunk(const DuckDBLibrary& library, duckdb_data_chunk chunk) : fLibrary(library), fChunk(chunk) {}
  ~FetchedChunk() { fLibrary.duckdb_destroy_data_chunk(&fChunk); }
  FetchedChunk(const FetchedChunk&) = delete;
  FetchedChunk& operator=(const FetchedChunk&) = delete;

  std::size_t rows() const override { return fLibrary.duckdb_data_chunk_get_size(fChunk); }

  DuckDBVector Vector(std::size_t column) const override {
    const duckdb_vector vector = fLibrary.duckdb_data_chunk_get_vector(fChunk, column);
    return {fLibrary.duckdb_vector_get_data(vector), fLibrary.duckdb_vector_get_validity(vector)};
  }

 private:
  const DuckDBLibrary& fLibrary;
  duckdb_data_chunk fChunk;
};

}  // namespace

DuckDBStream::~DuckDBStream() = default;

double DuckDBChunk::Number(std::size_t column, std::size_t row) const {
  const DuckDBVector vector = Vector(column);
  return IsValid(vector, row) ? static_cast<const double*>(vector.cells)[row]
                              : std::numeric_limits<double>::quiet_NaN();
}

void DuckDBChunk::Texts(std::size_t column, std::size_t first, std::size_t count, std::string_view* texts) const {
  const DuckDBVector vector = Vector(column);
  const auto* const cells = static_cast<const duckdb_string_t*>(vector.cells);
  constexpr std::uint32_t kLongestInlined = sizeof(cells->value.inlined.inlined);
  for (std::size_t row = first; row < first + count; ++row) {
    const duckdb_string_t& cell = cells[row];
    const std::uint32_t length = cell.value.inlined.length;
    *texts++ =
        !IsValid(vector, row)
            ? std::string_view()
            : std::string_view(length <= kLongestInlined ? cell.value.inlined.inlined : cell.value.pointer.ptr, length);
  }
}

struct DuckDBSession::Database {
  const DuckDBLibrary& library = DuckDBLibrary::Get();
  duckdb_database database = nullptr;
  std::vector<int> opened;  // kept open while their numbers stand for paths

  Database() = default;
  ~Database() {
    for (const int file : opened) close(file);
    library.duckdb_close(&database);
  }
  Database(const Database&) = delete;
  Database& operator=(const Database&) = delete;
};

class DuckDBSession::Connection {
 public:
  explicit Connection(const DuckDBSession& session) : fLibrary(session.fDatabase->library) {
    if (fLibrary.duckdb_connect(session.fDatabase->database, &fConnection) == DuckDBError)
      session.Fail("no connection");
  }
  ~Connection() { fLibrary.duckdb_disconnect(&fConnection); }
  Connection(const Connection&) = delete;
  Connection& operator=(const Connection&) = delete;

  duckdb_connection get() const { return fConnection; }

 private:
  const DuckDBLibrary& fLibrary;
  duckdb_connection fConnection = nullptr;
};

/// A query under way.
class DuckDBSession::Result {
 public:
  Result(const DuckDBSession& session, const Connection& connection, const std::string& sql)
      : fSession(session), fLibrary(session.fDatabase->library) {
    if (fLibrary.duckdb_prepare(connection.get(), sql.c_str(), &fStatement) == DuckDBError)
      Fail(fLibrary.duckdb_prepare_error(fStatement));
    // A name may hold these characters too; then there is nothing to be bound, and no harm in trying.
    if (sql.find("$1") != std::string::npos)
      fLibrary.duckdb_bind_varchar(fStatement, 1, session.fPaths.front().c_str());
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

class DuckDBSession::Stream : public DuckDBStream {
 public:
  /// `own` null: on the session's connection.
  Stream(const DuckDBSession& session, std::unique_ptr<Connection> own, const std::string& sql)
      : fLibrary(session.fDatabase->library),
        fOwnConnection(std::move(own)),
        fResult(session, fOwnConnection ? *fOwnConnection : *session.fConnection, sql) {}

  const DuckDBChunk* Next() override {
    fChunk.reset();
    const duckdb_data_chunk chunk = fResult.Next();
    if (!chunk) return nullptr;
    return &fChunk.emplace(fLibrary, chunk);
  }

 private:
  const DuckDBLibrary& fLibrary;
  std::unique_ptr<Connection> fOwnConnection;
  Result fResult;
  std::optional<FetchedChunk> fChunk;
};

DuckDBSession::DuckDBSession(std::vector<DuckDBFile> files, int threads)
    : fFiles(std::move(files)), fDatabase(std::make_unique<Database>()), fThreads(threads) {
  for (const DuckDBFile& file : fFiles)
    if (file.descriptor >= 0) fDatabase->opened.push_back(file.descriptor);
  for (const DuckDBFile& file : fFiles) {
    int descriptor = file.descriptor;
    if (descriptor < 0 && file.name.find_first_of("*?[") != std::string::npos) {
      // DuckDB takes such a name for a pattern of names and knows no way to write it otherwise.
      descriptor = open(file.name.c_str(), O_RDONLY | O_CLOEXEC);
      if (descriptor < 0)
        throw DataError(fmt::format("{}: the file cannot be read: {}", file.name, std::strerror(errno)));
      fDatabase->opened.push_back(descriptor);
    }
    fPaths.push_back(descriptor < 0 ? file.name : fmt::format("/proc/self/fd/{}", descriptor));
  }
  const DuckDBLibrary& library = fDatabase->library;
  duckdb_config config = nullptr;
  library.duckdb_create_config(&config);
  library.duckdb_set_config(config, "autoinstall_known_extensions", "false");
  library.duckdb_set_config(config, "autoload_known_extensions", "false");
  library.duckdb_set_config(config, "preserve_insertion_order", "true");
  library.duckdb_set_config(config, "temp_directory", "");
  if (threads > 0) library.duckdb_set_config(config, "threads", std::to_string(threads).c_str());
  char* problem = nullptr;
  const duckdb_state opened = library.duckdb_open_ext(nullptr, &fDatabase->database, config, &problem);
  library.duckdb_destroy_config(&config);
  if (opened == DuckDBError) {
    const std::string words = WithoutQuery(problem);
    library.duckdb_free(problem);
    Fail(words);
  }
  fConnection = std::make_unique<Connection>(*this);
  // Many streams read one file, each from its own place.
  Set("SET GLOBAL parquet_metadata_cache = true");
  // Several threads work on one query only as far as there is room for what they are ahead.
  if (threads != 1) Set("SET streaming_buffer_size = '64MB'");
  Set("SET allowed_paths = " + this->files());
  Set("SET enable_external_access = false");
  Set("SET lock_configuration = true");
}

DuckDBSession::~DuckDBSession() = default;

std::string DuckDBSession::files() const {
  std::string list;
  for (const std::string& path : fPaths) list += (list.empty() ? "[" : ", ") + Quoted(path);
  return list + "]";
}

std::string DuckDBSession::file(std::size_t index) const { return "[" + Quoted(fPaths[index]) + "]"; }

void DuckDBSession::Set(const std::string& sql) const {
  Result result(*this, *fConnection, sql);
  while (duckdb_data_chunk chunk = result.Next()) fDatabase->library.duckdb_destroy_data_chunk(&chunk);
}

void DuckDBSession::Run(const std::string& sql, const std::function<void(const DuckDBChunk&)>& take) const {
  Result result(*this, *fConnection, sql);
  while (const duckdb_data_chunk chunk = result.Next()) take(FetchedChunk(fDatabase->library, chunk));
}

std::unique_ptr<DuckDBStream> DuckDBSession::Open(const std::string& sql) const {
  // A second query on a connection would end the first one's rows without a word.
  return std::make_unique<Stream>(*this, fThreads == 1 ? std::make_unique<Connection>(*this) : nullptr, sql);
}

std::vector<DuckDBColumn> DuckDBSession::Columns(const std::string& sql) const {
  const DuckDBLibrary& library = fDatabase->library;
  Result result(*this, *fConnection, sql);
  std::vector<DuckDBColumn> columns(library.duckdb_column_count(&result.get()));
  for (std::size_t i = 0; i < columns.size(); ++i) {
    columns[i].name = library.duckdb_column_name(&result.get(), i);
    columns[i].type = library.duckdb_column_type(&result.get(), i);
    if (columns[i].type != DUCKDB_TYPE_DECIMAL) continue;
    duckdb_logical_type type = library.duckdb_column_logical_type(&result.get(), i);
    columns[i].decimalWidth = library.duckdb_decimal_width(type);
    columns[i].decimalScale = library.duckdb_decimal_scale(type);
    library.duckdb_destroy_logical_type(&type);
  }
  return columns;
}

void DuckDBSession::Fail(const std::string& problem) const {
  std::string words = problem;
  for (std::size_t i = 0; i < fFiles.size(); ++i) {
    const std::string& name = fFiles[i].name;
    const std::string& path = fPaths[i];
    if (const std::optional<std::string> fault = FindFileFault(name, path)) throw DataError(*fault);
    for (std::size_t at = words.find(path); path != name && at != std::string::npos;
         at = words.find(path, at + name.size()))
      words.replace(at, path.size(), name);
  }
  throw DataError(fmt::format("{}: the file cannot be read: {}", fFiles.front().name, words));
}

}  // namespace runtime::data

#endif
