#include "runtime/data/store/numericpart.h"

#include <algorithm>
#include <cmath>
#include <cstring>

namespace runtime::data {

namespace {

constexpr std::size_t kBatch = 256;           // values that are looked at together, on the stack
constexpr std::size_t kFirstCapacity = 1024;  // bytes
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr std::int32_t kNoInteger = NumericPart::kNoInteger;

/// The smallest storage of whole numbers, each type's lowest value being left to system-missing.
ColumnStorage StorageFor(std::int32_t low, std::int32_t high) {
  if (low > INT8_MIN && high <= INT8_MAX) return ColumnStorage::Int8;
  if (low > INT16_MIN && high <= INT16_MAX) return ColumnStorage::Int16;
  return ColumnStorage::Int32;
}

template <typename Integer>
void StoreIntegers(std::byte* cells, const std::int32_t* values, std::size_t count) {
  auto* const to = reinterpret_cast<Integer*>(cells);
  for (std::size_t i = 0; i < count; ++i)
    to[i] = values[i] == kNoInteger ? std::numeric_limits<Integer>::min() : static_cast<Integer>(values[i]);
}

void StoreDoubles(std::byte* cells, const std::int32_t* values, std::size_t count) {
  auto* const to = reinterpret_cast<double*>(cells);
  for (std::size_t i = 0; i < count; ++i) to[i] = values[i] == kNoInteger ? kNaN : static_cast<double>(values[i]);
}

template <typename Integer>
void LoadIntegers(const std::byte* cells, std::int32_t* values, std::size_t count) {
  const auto* const from = reinterpret_cast<const Integer*>(cells);
  for (std::size_t i = 0; i < count; ++i)
    values[i] = from[i] == std::numeric_limits<Integer>::min() ? kNoInteger : std::int32_t{from[i]};
}

/// REQUIRES: a storage of integers.
void LoadCells(ColumnStorage storage, const std::byte* cells, std::int32_t* values, std::size_t count) {
  switch (storage) {
    case ColumnStorage::Int8:
      return LoadIntegers<std::int8_t>(cells, values, count);
    case ColumnStorage::Int16:
      return LoadIntegers<std::int16_t>(cells, values, count);
    default:
      return LoadIntegers<std::int32_t>(cells, values, count);
  }
}

void StoreCells(ColumnStorage storage, std::byte* cells, const std::int32_t* values, std::size_t count) {
  switch (storage) {
    case ColumnStorage::Int8:
      return StoreIntegers<std::int8_t>(cells, values, count);
    case ColumnStorage::Int16:
      return StoreIntegers<std::int16_t>(cells, values, count);
    case ColumnStorage::Int32:
      return StoreIntegers<std::int32_t>(cells, values, count);
    default:
      return StoreDoubles(cells, values, count);
  }
}

/// Whether all values that are not NaN are whole numbers of 32 bits (the lowest excepted); fills them in.
bool AsIntegers(const double* values, std::size_t count, std::int32_t* integers) {
  bool all = true;
  for (std::size_t i = 0; i < count; ++i) {
    // A conversion out of range would be undefined.
    const bool fits = std::abs(values[i]) <= std::numeric_limits<std::int32_t>::max();
    const auto whole = static_cast<std::int32_t>(fits ? values[i] : 0.0);
    const bool missing = std::isnan(values[i]);
    integers[i] = missing ? kNoInteger : whole;
    all &= missing || (fits && whole == values[i]);
  }
  return all;
}

}  // namespace

std::size_t BytesPerCell(ColumnStorage storage) {
  switch (storage) {
    case ColumnStorage::Int8:
      return 1;
    case ColumnStorage::Int16:
      return 2;
    case ColumnStorage::Int32:
    case ColumnStorage::StringCode:
      return 4;
    case ColumnStorage::Float64:
      break;
  }
  return 8;
}

void NumericPart::Clear() {
  fRows = 0;
  fStorage = ColumnStorage::Int8;
  fSummary = {};
}

void NumericPart::Include(double low, double high) {
  fSummary.minimum = fSummary.hasValues ? std::min(fSummary.minimum, low) : low;
  fSummary.maximum = fSummary.hasValues ? std::max(fSummary.maximum, high) : high;
  fSummary.hasValues = true;
}

void NumericPart::IncludeBytes() {
  const auto* const bytes = reinterpret_cast<const std::int8_t*>(fCells.get());
  std::int8_t low = INT8_MAX;
  std::int8_t high = INT8_MIN;
  for (std::size_t i = 0; i < fRows; ++i) {
    high = std::max(high, bytes[i]);
    // The missing ones, the lowest number of all, become the highest one.
    low = std::min(low, bytes[i] == kInt8SystemMissing ? std::int8_t{INT8_MAX} : bytes[i]);
  }
  if (high != kInt8SystemMissing) Include(low, high);
}

void NumericPart::Reallocate(ColumnStorage storage, std::size_t rows) {
  const std::size_t bytes = std::max(rows * BytesPerCell(storage), kFirstCapacity);
  auto cells = std::make_unique_for_overwrite<std::byte[]>(bytes);
  if (storage == fStorage) {
    if (fRows > 0) std::memcpy(cells.get(), fCells.get(), this->bytes());
  } else {
    const std::size_t from = BytesPerCell(fStorage);
    const std::size_t to = BytesPerCell(storage);
    std::int32_t batch[kBatch];
    for (std::size_t row = 0; row < fRows; row += kBatch) {
      const std::size_t count = std::min(kBatch, fRows - row);
      LoadCells(fStorage, fCells.get() + row * from, batch, count);
      StoreCells(storage, cells.get() + row * to, batch, count);
    }
  }
  fCells = std::move(cells);
  fCapacity = bytes;
  fStorage = storage;
}

void NumericPart::PrepareFor(ColumnStorage storage, std::size_t count) {
  const bool widens = BytesPerCell(storage) > BytesPerCell(fStorage);
  const ColumnStorage needed = widens ? storage : fStorage;
  const std::size_t rows = fRows + count;
  if (widens && fStorage == ColumnStorage::Int8) IncludeBytes();
  if (widens && fRows == 0 && rows * BytesPerCell(needed) <= fCapacity) {
    fStorage = needed;
    return;
  }
  if (widens || rows * BytesPerCell(needed) > fCapacity)
    Reallocate(needed, std::max(rows, std::min(2 * fRows, fRows + (std::size_t{1} << 20))));
}

void NumericPart::Store(const std::int32_t* values, std::size_t count) {
  StoreCells(fStorage, fCells.get() + bytes(), values, count);
  fRows += count;
}

void NumericPart::Store(const double* values, std::size_t count) {
  std::memcpy(fCells.get() + bytes(), values, count * sizeof(double));
  fRows += count;
}

void NumericPart::AppendBytes(const std::int8_t* values, std::size_t count) {
  if (count == 0) return;
  if (fStorage == ColumnStorage::Int8) {
    PrepareFor(fStorage, count);
    std::memcpy(fCells.get() + fRows, values, count);
    fRows += count;
    return;
  }
  std::int32_t integers[kBatch];
  for (std::size_t first = 0; first < count; first += kBatch) {
    const std::size_t taken = std::min(kBatch, count - first);
    LoadIntegers<std::int8_t>(reinterpret_cast<const std::byte*>(values + first), integers, taken);
    AppendIntegers(integers, taken);
  }
}

void NumericPart::AppendIntegers(const std::int32_t* values, std::size_t count) {
  if (count == 0) return;
  std::int32_t low = std::numeric_limits<std::int32_t>::max();
  std::int32_t high = kNoInteger;
  for (std::size_t i = 0; i < count; ++i) {
    const std::int32_t value = values[i];
    high = value > high ? value : high;
    // The missing ones, the lowest number of all, become the highest one.
    const std::int32_t lifted = value == kNoInteger ? std::numeric_limits<std::int32_t>::max() : value;
    low = lifted < low ? lifted : low;
  }
  const bool hasValues = high != kNoInteger;
  PrepareFor(hasValues ? StorageFor(low, high) : ColumnStorage::Int8, count);
  if (hasValues && fStorage != ColumnStorage::Int8) Include(low, high);
  Store(values, count);
}

void NumericPart::AppendDoubles(const double* values, std::size_t count) {
  double batch[kBatch];
  while (count > 0) {
    const std::size_t taken = std::min(count, kBatch);
    // Adding 0.0 makes -0.0 a plain zero.
    for (std::size_t i = 0; i < taken; ++i)
      batch[i] = std::abs(values[i]) <= std::numeric_limits<double>::max() ? values[i] + 0.0 : kNaN;
    AppendBatch(batch, taken);
    values += taken;
    count -= taken;
  }
}

void NumericPart::AppendBatch(const double* values, std::size_t count) {
  // Once there are fractions, nothing more follows from whole numbers.
  const bool mayBeWhole = fStorage != ColumnStorage::Float64 || fSummary.allIntegers;
  if (mayBeWhole) {
    std::int32_t integers[kBatch];
    if (AsIntegers(values, count, integers)) return AppendIntegers(integers, count);
  }
  double low = std::numeric_limits<double>::infinity();
  double high = -low;
  for (std::size_t i = 0; i < count; ++i) {
    low = values[i] < low ? values[i] : low;
    high = values[i] > high ? values[i] : high;
  }
  PrepareFor(ColumnStorage::Float64, count);
  if (low <= high) Include(low, high);
  if (mayBeWhole)
    fSummary.allIntegers = fSummary.allIntegers && std::all_of(values, values + count, [](double v) {
                             return std::isnan(v) || std::trunc(v) == v;
                           });
  Store(values, count);
}

void NumericPart::AddFactsTo(ValueFacts& facts) const {
  if (fStorage == ColumnStorage::Int8) {
    AddFactsOfBytes(facts);
    return;
  }
  facts.Include(fSummary);
  double batch[kBatch];
  std::int32_t integers[kBatch];
  for (std::size_t row = 0; row < fRows && facts.fewIntegers(); row += kBatch) {
    const std::size_t count = std::min(kBatch, fRows - row);
    const std::byte* const from = fCells.get() + row * BytesPerCell(fStorage);
    if (fStorage == ColumnStorage::Float64) {
      std::memcpy(batch, from, count * sizeof(double));
    } else {
      LoadCells(fStorage, from, integers, count);
      for (std::size_t i = 0; i < count; ++i) batch[i] = integers[i] == kNoInteger ? kNaN : integers[i];
    }
    for (std::size_t i = 0; i < count; ++i)
      if (!std::isnan(batch[i])) facts.Remember(batch[i]);
  }
}

void NumericPart::AddFactsOfBytes(ValueFacts& facts) const {
  bool seen[256] = {};
  for (std::size_t i = 0; i < fRows; ++i) seen[std::to_integer<std::uint8_t>(fCells[i])] = true;
  for (int value = INT8_MIN + 1; value <= INT8_MAX; ++value) {
    if (!seen[static_cast<std::uint8_t>(value)]) continue;
    const auto number = static_cast<double>(value);
    facts.Include({true, true, number, number});
    facts.Remember(number);
  }
}

}  // namespace runtime::data
