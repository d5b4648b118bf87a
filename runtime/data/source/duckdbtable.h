// Parquet and JSON lines, read through DuckDB.
#pragma once

#ifdef CODEBOOK_HAVE_DUCKDB

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "runtime/data/source/tablesource.h"

namespace runtime::data {

/// Whole numbers and decimals that a double cannot hold make a column text rather than lose digits; so does a JSON
/// column of mixed kinds. Lists and structures are texts in JSON. Several files are one table, and must have the same
/// columns in the same order. Throws DataError. REQUIRES: Parquet or JsonLines; at least one path.
std::unique_ptr<TableSource> OpenDuckDBTable(const std::vector<std::string>& paths, TableFileKind kind, int threads);

/// Whether a number that is written in plain decimal digits ("-1234.50") has at most 2^53 when its point is left out.
bool FitsDouble(std::string_view digits);

}  // namespace runtime::data

#endif
