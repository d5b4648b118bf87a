# DuckDB, which reads Parquet and JSON lines for us. Sets CODEBOOK_DUCKDB_INCLUDE (the folder of duckdb.h) and
# CODEBOOK_DUCKDB_LIBRARY (the file); the machine's own goes first, then the cache that scripts/duckdb fills. Both may be
# given by hand (-DCODEBOOK_DUCKDB_INCLUDE=... -DCODEBOOK_DUCKDB_LIBRARY=...).
#
# The library is never linked: it is opened when the first such file is, so that the program starts without it and without
# its cost. The program looks for libduckdb.so beside itself, then at the path that is compiled in. So a build uses the
# file where it lies (no copy of 65 MB a build folder), and who hands the program on lays the file beside it.
execute_process(COMMAND ${CMAKE_CURRENT_LIST_DIR}/../scripts/duckdb --path OUTPUT_VARIABLE _cache
                OUTPUT_STRIP_TRAILING_WHITESPACE)
find_path(CODEBOOK_DUCKDB_INCLUDE duckdb.h)
find_library(CODEBOOK_DUCKDB_LIBRARY duckdb)
# Never one half from the machine and the other from the cache.
if(NOT CODEBOOK_DUCKDB_INCLUDE OR NOT CODEBOOK_DUCKDB_LIBRARY)
  unset(CODEBOOK_DUCKDB_INCLUDE CACHE)
  unset(CODEBOOK_DUCKDB_LIBRARY CACHE)
  find_path(CODEBOOK_DUCKDB_INCLUDE duckdb.h PATHS ${_cache} NO_DEFAULT_PATH)
  find_library(CODEBOOK_DUCKDB_LIBRARY duckdb PATHS ${_cache} NO_DEFAULT_PATH)
endif()
mark_as_advanced(CODEBOOK_DUCKDB_INCLUDE CODEBOOK_DUCKDB_LIBRARY)

include(FindPackageHandleStandardArgs)
find_package_handle_standard_args(CodebookDuckDB REQUIRED_VARS CODEBOOK_DUCKDB_LIBRARY CODEBOOK_DUCKDB_INCLUDE
                                  REASON_FAILURE_MESSAGE "building without Parquet and JSON lines (scripts/duckdb brings it)")
unset(_cache)

# Makes DuckDB known to a target: #include <duckdb.h>, CODEBOOK_HAVE_DUCKDB=1 (who links the target sees this one too) and
# CODEBOOK_DUCKDB_LIBRARY="path". Without DuckDB none of the three.
function(codebook_use_duckdb target)
  if(CodebookDuckDB_FOUND)
    target_include_directories(${target} SYSTEM PRIVATE ${CODEBOOK_DUCKDB_INCLUDE})
    target_compile_definitions(${target} PUBLIC CODEBOOK_HAVE_DUCKDB=1
                                         PRIVATE CODEBOOK_DUCKDB_LIBRARY="${CODEBOOK_DUCKDB_LIBRARY}")
  endif()
endfunction()
