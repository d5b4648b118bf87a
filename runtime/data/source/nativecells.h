// The numbers of DuckDB's columns, taken from its own types.
#pragma once

#ifdef CODEBOOK_HAVE_DUCKDB

#include <cstddef>

#include "runtime/data/source/duckdbsession.h"
#include "runtime/data/source/tablesource.h"

namespace runtime::data {

/// How the cells of a vector become numbers: the whole number, float or flag that stands there, divided or multiplied;
/// at most one rounding.
struct NativeNumbers {
  int type = 0;              // a duckdb_type that has a C type of a number or a bool
  double divisor = 1.0;      // such as 10^scale of a DECIMAL, 10^6 of microseconds
  double factor = 1.0;       // such as the seconds of a day; where the divisor is 1
  bool hasInfinity = false;  // dates and moments: the two farthest whole numbers stand for infinity and are no values

  bool isPlain() const { return divisor == 1.0 && factor == 1.0 && !hasInfinity; }
};

/// Whether TakeNumbers knows the type.
bool HasNativeNumbers(int type);

/// Hands over `count` cells from `first` on. False for a whole number that no double holds; it was not handed over.
/// REQUIRES: HasNativeNumbers; at most a vector of DuckDB's, 2,048 cells.
bool TakeNumbers(const DuckDBVector& vector, const NativeNumbers& numbers, std::size_t first, std::size_t count,
                 ColumnSink& sink);

}  // namespace runtime::data

#endif
