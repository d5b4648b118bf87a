// The numbers of one column over a group of rows, while they are collected.
#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>
#include <memory>

#include "host/data/casecursor.h"

#include "runtime/data/typing/columnfacts.h"

namespace runtime::data {

/// Bytes of a cell.
std::size_t BytesPerCell(ColumnStorage storage);

/// Cells stand in compact storage from the first one on and are widened when a cell asks for it. System-missing is
/// kNoInteger among integers, NaN among doubles; infinities become system-missing, -0.0 becomes 0.0.
class NumericPart {
 public:
  static constexpr std::int32_t kNoInteger = std::numeric_limits<std::int32_t>::min();

  // A few dozen to a few thousand values at once.

  /// System-missing is kInt8SystemMissing.
  void AppendBytes(const std::int8_t* values, std::size_t count);
  void AppendIntegers(const std::int32_t* values, std::size_t count);
  void AppendDoubles(const double* values, std::size_t count);

  std::size_t rows() const { return fRows; }
  ColumnStorage storage() const { return fStorage; }
  /// rows() cells. Valid until the next Append.
  const std::byte* cells() const { return fCells.get(); }
  std::size_t bytes() const { return fRows * BytesPerCell(fStorage); }
  /// Adds what is known of the values to the facts of their column.
  void AddFactsTo(ValueFacts& facts) const;
  /// Begins anew; memory is kept.
  void Clear();

 private:
  void AppendBatch(const double* values, std::size_t count);
  void Store(const std::int32_t* values, std::size_t count);
  void Store(const double* values, std::size_t count);
  /// Room for `count` more cells of the storage, which is widened to `storage` when it is narrower.
  void PrepareFor(ColumnStorage storage, std::size_t count);
  void Reallocate(ColumnStorage storage, std::size_t rows);
  void Include(double low, double high);
  /// Takes the bytes that are stored into the summary.
  void IncludeBytes();
  void AddFactsOfBytes(ValueFacts& facts) const;

  std::size_t fRows = 0;
  ColumnStorage fStorage = ColumnStorage::Int8;
  std::unique_ptr<std::byte[]> fCells;
  std::size_t fCapacity = 0;  // bytes
  ValueSummary fSummary;      // of all values, unless the storage is Int8
};

}  // namespace runtime::data
