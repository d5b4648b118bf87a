#include "tests/cells/duckdbcells.h"

#include <cstdint>
#include <stdexcept>

#include <fmt/format.h>

namespace cells {

namespace {

std::string Quoted(const std::string& text) {
  std::string quoted = "'";
  for (const char byte : text) quoted += byte == '\'' ? "''" : std::string(1, byte);
  return quoted + "'";
}

std::string ReadStatement(const std::string& path, const runtime::data::CsvDialect& dialect, std::size_t columns) {
  std::string types;
  for (std::size_t column = 0; column < columns; ++column)
    types += fmt::format("{}'c{}': 'VARCHAR'", column > 0 ? ", " : "", column);
  const std::string quote = dialect.quote == '\0' ? "" : std::string(1, dialect.quote);
  // No text of ours is the one that stands for NULL: an empty cell and an empty text in quotes stay apart from it.
  return fmt::format(
      "SELECT * FROM read_csv({}, auto_detect = false, header = false, columns = {{{}}}, delim = {}, quote = {}, "
      "escape = {}, nullstr = '<<NULL>>', strict_mode = false, null_padding = true, ignore_errors = false, "
      "parallel = false, max_line_size = 16777216)",
      Quoted(path), types, Quoted(std::string(1, dialect.delimiter)), Quoted(quote), Quoted(quote));
}

class Result {
 public:
  Result() = default;
  ~Result() { duckdb_destroy_result(&fResult); }
  Result(const Result&) = delete;
  Result& operator=(const Result&) = delete;
  duckdb_result* operator&() { return &fResult; }
  duckdb_result get() const { return fResult; }

 private:
  duckdb_result fResult{};
};

void AppendRows(duckdb_data_chunk chunk, std::vector<Row>& rows) {
  const std::size_t first = rows.size();
  const idx_t count = duckdb_data_chunk_get_size(chunk);
  const idx_t columns = duckdb_data_chunk_get_column_count(chunk);
  rows.resize(first + count, Row(columns));
  for (idx_t column = 0; column < columns; ++column) {
    const duckdb_vector vector = duckdb_data_chunk_get_vector(chunk, column);
    std::uint64_t* const validity = duckdb_vector_get_validity(vector);
    auto* const texts = static_cast<duckdb_string_t*>(duckdb_vector_get_data(vector));
    for (idx_t row = 0; row < count; ++row)
      if (validity == nullptr || duckdb_validity_row_is_valid(validity, row))
        rows[first + row][column].assign(duckdb_string_t_data(&texts[row]), duckdb_string_t_length(texts[row]));
  }
}

}  // namespace

DuckDB::DuckDB() {
  duckdb_config config = nullptr;
  duckdb_create_config(&config);
  duckdb_set_config(config, "threads", "1");
  duckdb_set_config(config, "autoinstall_known_extensions", "false");
  duckdb_set_config(config, "autoload_known_extensions", "false");
  const bool isOpen = duckdb_open_ext(nullptr, &fDatabase, config, nullptr) == DuckDBSuccess &&
                      duckdb_connect(fDatabase, &fConnection) == DuckDBSuccess;
  duckdb_destroy_config(&config);
  if (!isOpen) throw std::runtime_error("no database in memory");
}

DuckDB::~DuckDB() {
  duckdb_disconnect(&fConnection);
  duckdb_close(&fDatabase);
}

Table DuckDB::Read(const std::string& path, const runtime::data::CsvDialect& dialect, std::size_t columns) const {
  Table table;
  Result result;
  if (duckdb_query(fConnection, ReadStatement(path, dialect, columns).c_str(), &result) == DuckDBError) {
    table.problem = duckdb_result_error(&result);
    return table;
  }
  while (duckdb_data_chunk chunk = duckdb_fetch_chunk(result.get())) {
    AppendRows(chunk, table.rows);
    duckdb_destroy_data_chunk(&chunk);
  }
  return table;
}

}  // namespace cells
