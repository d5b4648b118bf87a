#include "runtime/data/source/nativecells.h"

#ifdef CODEBOOK_HAVE_DUCKDB

#include <algorithm>
#include <bit>
#include <cstdint>
#include <limits>
#include <type_traits>

#include <duckdb.h>

namespace runtime::data {
namespace {

constexpr std::size_t kMostCells = 2048;
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

/// Calls `take` with the number of each null cell, counted from `first`.
template <class Take>
void ForEachNull(const std::uint64_t* validity, std::size_t first, std::size_t count, Take take) {
  if (validity == nullptr) return;
  for (std::size_t at = 0; at < count;) {
    const std::size_t bit = (first + at) % 64;
    const std::size_t taken = std::min(64 - bit, count - at);
    std::uint64_t nulls = ~validity[(first + at) / 64] >> bit;
    if (taken < 64) nulls &= (std::uint64_t{1} << taken) - 1;
    for (; nulls != 0; nulls &= nulls - 1) take(at + static_cast<std::size_t>(std::countr_zero(nulls)));
    at += taken;
  }
}

/// False when one is not of 7 bits and a sign.
template <class Whole>
bool AsBytes(const Whole* cells, std::size_t count, std::int8_t* bytes) {
  constexpr std::size_t kTogether = 128;
  for (std::size_t first = 0; first < count; first += kTogether) {
    const std::size_t end = std::min(count, first + kTogether);
    bool beyond = false;
    for (std::size_t i = first; i < end; ++i) {
      beyond |= cells[i] > static_cast<Whole>(INT8_MAX);
      // The lowest byte stands for no value.
      if constexpr (std::is_signed_v<Whole>) beyond |= cells[i] <= static_cast<Whole>(INT8_MIN);
      bytes[i] = static_cast<std::int8_t>(cells[i]);
    }
    if (beyond) return false;
  }
  return true;
}

/// False when one is not of 31 bits and a sign, or close to that.
template <class Whole>
bool AsIntegers(const Whole* cells, std::size_t count, std::int32_t* integers) {
  constexpr std::int64_t kHalf = std::int64_t{1} << 30;
  std::uint64_t all = 0;
  for (std::size_t i = 0; i < count; ++i) {
    if constexpr (sizeof(Whole) > 2) all |= static_cast<std::uint64_t>(cells[i]) + kHalf;
    // By way of 64 bits, where a byte is a number like others.
    integers[i] = static_cast<std::int32_t>(static_cast<std::int64_t>(cells[i]));
  }
  return all < 2 * kHalf;
}

/// Whether doubles hold all cells.
template <class Whole>
bool FitDoubles(const Whole* cells, std::size_t count) {
  if constexpr (sizeof(Whole) == 8) {
    constexpr std::uint64_t kMost = std::uint64_t{1} << 53;
    bool fit = true;
    for (std::size_t i = 0; i < count; ++i) {
      const auto bits = static_cast<std::uint64_t>(cells[i]);
      const bool isNegative = std::is_signed_v<Whole> && (bits >> 63) != 0;
      fit &= (isNegative ? 0 - bits : bits) <= kMost;
    }
    return fit;
  }
  return true;
}

class Taking {
 public:
  Taking(const DuckDBVector& vector, const NativeNumbers& numbers, std::size_t first, std::size_t count,
         ColumnSink& sink)
      : fVector(vector), fNumbers(numbers), fFirst(first), fCount(count), fSink(sink) {}

  template <class Whole>
  bool Wholes() {
    const Whole* cells = static_cast<const Whole*>(fVector.cells) + fFirst;
    if (fNumbers.isPlain() && (GiveBytes(cells) || GiveIntegers(cells))) return true;
    // What stands where a cell is null may be anything.
    Whole clean[kMostCells];
    if (fVector.validity != nullptr) {
      std::copy(cells, cells + fCount, clean);
      ForEachNull(fVector.validity, fFirst, fCount, [&](std::size_t at) { clean[at] = 0; });
      cells = clean;
      if (fNumbers.isPlain() && (GiveBytes(cells) || GiveIntegers(cells))) return true;
    }
    if (!fNumbers.hasInfinity && !FitDoubles(cells, fCount)) return false;
    GiveDoubles(cells);
    return true;
  }

  template <class Real>
  bool Reals() {
    GiveDoubles(static_cast<const Real*>(fVector.cells) + fFirst);
    return true;
  }

 private:
  template <class Whole>
  bool GiveBytes(const Whole* cells) {
    std::int8_t bytes[kMostCells];
    if (!AsBytes(cells, fCount, bytes)) return false;
    ForEachNull(fVector.validity, fFirst, fCount, [&](std::size_t at) { bytes[at] = ColumnSink::kNoByte; });
    fSink.Bytes(bytes, fCount);
    return true;
  }

  template <class Whole>
  bool GiveIntegers(const Whole* cells) {
    std::int32_t integers[kMostCells];
    if (!AsIntegers(cells, fCount, integers)) return false;
    ForEachNull(fVector.validity, fFirst, fCount, [&](std::size_t at) { integers[at] = ColumnSink::kNoInteger; });
    fSink.Integers(integers, fCount);
    return true;
  }

  template <class Number>
  void GiveDoubles(const Number* cells) {
    double values[kMostCells];
    if (fNumbers.divisor != 1.0)
      for (std::size_t i = 0; i < fCount; ++i) values[i] = static_cast<double>(cells[i]) / fNumbers.divisor;
    else
      for (std::size_t i = 0; i < fCount; ++i) values[i] = static_cast<double>(cells[i]) * fNumbers.factor;
    if constexpr (std::is_signed_v<Number> && std::is_integral_v<Number>) {
      constexpr Number kFarthest = std::numeric_limits<Number>::max();
      if (fNumbers.hasInfinity)
        for (std::size_t i = 0; i < fCount; ++i)
          if (cells[i] == kFarthest || cells[i] == -kFarthest) values[i] = kNaN;
    }
    ForEachNull(fVector.validity, fFirst, fCount, [&](std::size_t at) { values[at] = kNaN; });
    fSink.Numbers(values, fCount);
  }

  const DuckDBVector& fVector;
  const NativeNumbers& fNumbers;
  std::size_t fFirst;
  std::size_t fCount;
  ColumnSink& fSink;
};

}  // namespace

bool HasNativeNumbers(int type) {
  switch (type) {
    case DUCKDB_TYPE_BOOLEAN:
    case DUCKDB_TYPE_TINYINT:
    case DUCKDB_TYPE_UTINYINT:
    case DUCKDB_TYPE_SMALLINT:
    case DUCKDB_TYPE_USMALLINT:
    case DUCKDB_TYPE_INTEGER:
    case DUCKDB_TYPE_UINTEGER:
    case DUCKDB_TYPE_BIGINT:
    case DUCKDB_TYPE_UBIGINT:
    case DUCKDB_TYPE_FLOAT:
    case DUCKDB_TYPE_DOUBLE:
      return true;
    default:
      return false;
  }
}

bool TakeNumbers(const DuckDBVector& vector, const NativeNumbers& numbers, std::size_t first, std::size_t count,
                 ColumnSink& sink) {
  Taking taking(vector, numbers, first, count, sink);
  switch (numbers.type) {
    case DUCKDB_TYPE_TINYINT:
      return taking.Wholes<std::int8_t>();
    case DUCKDB_TYPE_BOOLEAN:
    case DUCKDB_TYPE_UTINYINT:
      return taking.Wholes<std::uint8_t>();
    case DUCKDB_TYPE_SMALLINT:
      return taking.Wholes<std::int16_t>();
    case DUCKDB_TYPE_USMALLINT:
      return taking.Wholes<std::uint16_t>();
    case DUCKDB_TYPE_INTEGER:
      return taking.Wholes<std::int32_t>();
    case DUCKDB_TYPE_UINTEGER:
      return taking.Wholes<std::uint32_t>();
    case DUCKDB_TYPE_BIGINT:
      return taking.Wholes<std::int64_t>();
    case DUCKDB_TYPE_UBIGINT:
      return taking.Wholes<std::uint64_t>();
    case DUCKDB_TYPE_FLOAT:
      return taking.Reals<float>();
    default:
      return taking.Reals<double>();
  }
}

}  // namespace runtime::data

#endif
