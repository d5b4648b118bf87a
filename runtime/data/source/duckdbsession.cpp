#include "runtime/data/source/duckdbsession.h"

#ifdef CODEBOOK_HAVE_DUCKDB

#include <limits>
#include <utility>

#include <fmt/format.h>

#include "runtime/data/open.h"

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

}  // namespace

void DuckDBChunk::Doubles(std::size_t column, double* values) const {
  const duckdb_vector vector = fLibrary.duckdb_data_chunk_get_vector(fChunk, column);
  const auto* data = static_cast<const double*>(fLibrary.duckdb_vector_get_data(vector));
  const std::uint64_t* validity = fLibrary.duckdb_vector_get_validity(vector);
  const std::size_t count = rows();
  for (std::size_t row = 0; row < count; ++row)
    values[row] = IsValid(validity, row) ? data[row] : std::numeric_limits<double>::quiet_NaN();
}

void DuckDBChunk::Texts(std::size_t column, std::string_view* texts) const {
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

/// A query under way.
class DuckDBSession::Result {
 public:
  Result(const DuckDBSession& session, const std::string& sql) : fSession(session), fLibrary(session.fLibrary) {
    if (fLibrary.duckdb_prepare(session.fConnection, sql.c_str(), &fStatement) == DuckDBError) {
      const std::string problem = WithoutQuery(fLibrary.duckdb_prepare_error(fStatement));
      fLibrary.duckdb_destroy_prepare(&fStatement);
      session.Fail(problem.c_str());
    }
    if (sql.find("$1") != std::string::npos &&
        fLibrary.duckdb_bind_varchar(fStatement, 1, session.fPath.c_str()) == DuckDBError) {
      fLibrary.duckdb_destroy_prepare(&fStatement);
      session.Fail("the path cannot be handed over");
    }
    if (fLibrary.duckdb_execute_prepared_streaming(fStatement, &fResult) == DuckDBError) {
      const std::string problem = WithoutQuery(fLibrary.duckdb_result_error(&fResult));
      Release();
      session.Fail(problem.c_str());
    }
  }
  ~Result() { Release(); }
  Result(const Result&) = delete;
  Result& operator=(const Result&) = delete;

  duckdb_result& get() { return fResult; }

  /// The next piece, null at the end.
  duckdb_data_chunk Next() {
    const duckdb_data_chunk chunk = fLibrary.duckdb_fetch_chunk(fResult);
    if (chunk) return chunk;
    if (const char* problem = fLibrary.duckdb_result_error(&fResult)) fSession.Fail(problem);
    return nullptr;
  }

 private:
  void Release() {
    fLibrary.duckdb_destroy_result(&fResult);
    fLibrary.duckdb_destroy_prepare(&fStatement);
  }

  const DuckDBSession& fSession;
  const DuckDBLibrary& fLibrary;
  duckdb_prepared_statement fStatement = nullptr;
  duckdb_result fResult{};
};

DuckDBSession::DuckDBSession(const std::string& path, int threads) : fLibrary(DuckDBLibrary::Get()), fPath(path) {
  duckdb_config config = nullptr;
  fLibrary.duckdb_create_config(&config);
  fLibrary.duckdb_set_config(config, "autoinstall_known_extensions", "false");
  fLibrary.duckdb_set_config(config, "autoload_known_extensions", "false");
  fLibrary.duckdb_set_config(config, "preserve_insertion_order", "true");
  if (threads > 0) fLibrary.duckdb_set_config(config, "threads", std::to_string(threads).c_str());
  char* problem = nullptr;
  const duckdb_state opened = fLibrary.duckdb_open_ext(nullptr, &fDatabase, config, &problem);
  fLibrary.duckdb_destroy_config(&config);
  if (opened == DuckDBError) {
    const std::string words = WithoutQuery(problem);
    fLibrary.duckdb_free(problem);
    Fail(words.c_str());
  }
  try {
    if (fLibrary.duckdb_connect(fDatabase, &fConnection) == DuckDBError) Fail("no connection");
    Set("SET allowed_paths = [" + Quoted(path) + "]");
    Set("SET enable_external_access = false");
    Set("SET lock_configuration = true");
  } catch (...) {
    fLibrary.duckdb_disconnect(&fConnection);
    fLibrary.duckdb_close(&fDatabase);
    throw;
  }
}

DuckDBSession::~DuckDBSession() {
  fLibrary.duckdb_disconnect(&fConnection);
  fLibrary.duckdb_close(&fDatabase);
}

void DuckDBSession::Set(const std::string& sql) const {
  duckdb_result result{};
  const duckdb_state state = fLibrary.duckdb_query(fConnection, sql.c_str(), &result);
  const std::string problem =
      state == DuckDBError ? WithoutQuery(fLibrary.duckdb_result_error(&result)) : std::string();
  fLibrary.duckdb_destroy_result(&result);
  if (state == DuckDBError) Fail(problem.c_str());
}

void DuckDBSession::Run(const std::string& sql, const std::function<void(const DuckDBChunk&)>& take) const {
  Result result(*this, sql);
  while (duckdb_data_chunk chunk = result.Next()) {
    try {
      take(DuckDBChunk(fLibrary, chunk));
    } catch (...) {
      fLibrary.duckdb_destroy_data_chunk(&chunk);
      throw;
    }
    fLibrary.duckdb_destroy_data_chunk(&chunk);
  }
}

std::vector<DuckDBColumn> DuckDBSession::Columns(const std::string& sql) const {
  Result result(*this, sql);
  std::vector<DuckDBColumn> columns(fLibrary.duckdb_column_count(&result.get()));
  for (std::size_t i = 0; i < columns.size(); ++i) {
    columns[i].name = fLibrary.duckdb_column_name(&result.get(), i);
    columns[i].type = fLibrary.duckdb_column_type(&result.get(), i);
    if (columns[i].type != DUCKDB_TYPE_DECIMAL) continue;
    duckdb_logical_type type = fLibrary.duckdb_column_logical_type(&result.get(), i);
    columns[i].decimalWidth = fLibrary.duckdb_decimal_width(type);
    fLibrary.duckdb_destroy_logical_type(&type);
  }
  return columns;
}

void DuckDBSession::Fail(const char* problem) const {
  throw DataError(fmt::format("{}: the file cannot be read: {}", fPath, WithoutQuery(problem)));
}

}  // namespace runtime::data

#endif
