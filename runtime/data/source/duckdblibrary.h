// DuckDB, opened when the first file needs it.
#pragma once

#ifdef CODEBOOK_HAVE_DUCKDB

#include <duckdb.h>

namespace runtime::data {

/// The functions that we call, by their names in DuckDB's C interface.
struct DuckDBLibrary {
#define CODEBOOK_DUCKDB_FUNCTIONS(USE)   \
  USE(duckdb_bind_varchar)               \
  USE(duckdb_close)                      \
  USE(duckdb_column_count)               \
  USE(duckdb_column_logical_type)        \
  USE(duckdb_column_name)                \
  USE(duckdb_column_type)                \
  USE(duckdb_connect)                    \
  USE(duckdb_create_config)              \
  USE(duckdb_data_chunk_get_size)        \
  USE(duckdb_data_chunk_get_vector)      \
  USE(duckdb_decimal_scale)              \
  USE(duckdb_decimal_width)              \
  USE(duckdb_destroy_config)             \
  USE(duckdb_destroy_data_chunk)         \
  USE(duckdb_destroy_logical_type)       \
  USE(duckdb_destroy_prepare)            \
  USE(duckdb_destroy_result)             \
  USE(duckdb_disconnect)                 \
  USE(duckdb_execute_prepared_streaming) \
  USE(duckdb_fetch_chunk)                \
  USE(duckdb_free)                       \
  USE(duckdb_library_version)            \
  USE(duckdb_open_ext)                   \
  USE(duckdb_prepare)                    \
  USE(duckdb_prepare_error)              \
  USE(duckdb_result_error)               \
  USE(duckdb_set_config)                 \
  USE(duckdb_vector_get_data)            \
  USE(duckdb_vector_get_validity)

#define CODEBOOK_DUCKDB_MEMBER(function) decltype(&::function) function = nullptr;
  CODEBOOK_DUCKDB_FUNCTIONS(CODEBOOK_DUCKDB_MEMBER)
#undef CODEBOOK_DUCKDB_MEMBER

  /// The library beside the program, else where it lay when the program was built; opened once and kept. Throws
  /// DataError when there is none or it is another version.
  static const DuckDBLibrary& Get();
};

}  // namespace runtime::data

#endif
