#include "runtime/data/store/columnstore.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <utility>

namespace runtime::data {

namespace {

constexpr std::int64_t kMostBlockRows = 16'384;
constexpr std::int64_t kFewestBlockRows = 256;
constexpr std::int64_t kBlockCells = std::int64_t{8} * 1024 * 1024;  // of all columns together
constexpr std::size_t kBatch = 256;                                  // values that are looked at together, on the stack
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

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

/// The smallest storage of the values, each type's lowest value being left to system-missing.
ColumnStorage StorageFor(const ValueSummary& summary) {
  if (!summary.hasValues) return ColumnStorage::Int8;
  if (!summary.allIntegers) return ColumnStorage::Float64;
  const double low = summary.minimum;
  const double high = summary.maximum;
  if (low > INT8_MIN && high <= INT8_MAX) return ColumnStorage::Int8;
  if (low > INT16_MIN && high <= INT16_MAX) return ColumnStorage::Int16;
  if (low > INT32_MIN && high <= INT32_MAX) return ColumnStorage::Int32;
  return ColumnStorage::Float64;
}

bool Holds(ColumnStorage present, ColumnStorage wanted) { return BytesPerCell(present) >= BytesPerCell(wanted); }

template <typename Integer>
void StoreIntegers(std::byte* cells, const double* values, std::size_t count) {
  for (std::size_t i = 0; i < count; ++i) {
    const Integer cell = std::isnan(values[i]) ? std::numeric_limits<Integer>::min() : static_cast<Integer>(values[i]);
    std::memcpy(cells + i * sizeof(Integer), &cell, sizeof(Integer));
  }
}

void StoreCells(ColumnStorage storage, std::byte* cells, const double* values, std::size_t count) {
  switch (storage) {
    case ColumnStorage::Int8:
      return StoreIntegers<std::int8_t>(cells, values, count);
    case ColumnStorage::Int16:
      return StoreIntegers<std::int16_t>(cells, values, count);
    case ColumnStorage::Int32:
      return StoreIntegers<std::int32_t>(cells, values, count);
    case ColumnStorage::Float64:
    case ColumnStorage::StringCode:
      break;
  }
  std::memcpy(cells, values, count * sizeof(double));
}

template <typename Integer>
void LoadIntegers(const std::byte* cells, double* values, std::size_t count) {
  for (std::size_t i = 0; i < count; ++i) {
    Integer cell;
    std::memcpy(&cell, cells + i * sizeof(Integer), sizeof(Integer));
    values[i] = cell == std::numeric_limits<Integer>::min() ? kNaN : static_cast<double>(cell);
  }
}

void LoadCells(ColumnStorage storage, const std::byte* cells, double* values, std::size_t count) {
  switch (storage) {
    case ColumnStorage::Int8:
      return LoadIntegers<std::int8_t>(cells, values, count);
    case ColumnStorage::Int16:
      return LoadIntegers<std::int16_t>(cells, values, count);
    case ColumnStorage::Int32:
      return LoadIntegers<std::int32_t>(cells, values, count);
    case ColumnStorage::Float64:
    case ColumnStorage::StringCode:
      break;
  }
  std::memcpy(values, cells, count * sizeof(double));
}

std::unique_ptr<std::byte[]> ExactCopy(const void* bytes, std::size_t count) {
  auto copy = std::make_unique_for_overwrite<std::byte[]>(count);
  if (count > 0) std::memcpy(copy.get(), bytes, count);
  return copy;
}

}  // namespace

std::int64_t RowsPerBlock(std::size_t columns) {
  std::int64_t rows = kMostBlockRows;
  while (rows > kFewestBlockRows && rows * static_cast<std::int64_t>(columns) > kBlockCells) rows /= 2;
  return rows;
}

StoredColumn::StoredColumn(std::int64_t rows, std::int64_t blockRows, std::vector<Block> blocks,
                           std::shared_ptr<const StringTable> strings)
    : fRows(rows), fBlockRows(blockRows), fBlocks(std::move(blocks)), fStrings(std::move(strings)) {}

ColumnView StoredColumn::ViewFrom(std::int64_t row) const {
  const Block& block = fBlocks[static_cast<std::size_t>(row / fBlockRows)];
  const std::size_t offset = static_cast<std::size_t>(row % fBlockRows) * BytesPerCell(block.storage);
  return {block.storage, block.cells.get() + offset, fStrings.get()};
}

double StoredColumn::Number(std::int64_t row) const {
  const ColumnView view = ViewFrom(row);
  double value = kNaN;
  LoadCells(view.storage, static_cast<const std::byte*>(view.cells), &value, 1);
  return value;
}

std::string_view StoredColumn::Text(std::int64_t row) const {
  std::uint32_t code = 0;
  std::memcpy(&code, ViewFrom(row).cells, sizeof code);
  return fStrings->Text(code);
}

NumericColumnBuilder::NumericColumnBuilder(std::int64_t blockRows) : fBlockRows(blockRows) {}

void NumericColumnBuilder::Append(const double* values, std::size_t count) {
  double batch[kBatch];
  while (count > 0) {
    const auto room = static_cast<std::size_t>(fBlockRows - fRowsInBlock);
    const std::size_t taken = std::min({count, kBatch, room});
    // Adding 0.0 makes -0.0 a plain zero.
    for (std::size_t i = 0; i < taken; ++i)
      batch[i] = std::abs(values[i]) <= std::numeric_limits<double>::max() ? values[i] + 0.0 : kNaN;
    AppendToBlock(batch, taken);
    values += taken;
    count -= taken;
  }
}

void NumericColumnBuilder::AppendToBlock(const double* values, std::size_t count) {
  const ValueSummary summary = Summarize(values, count);
  fFacts.Add(values, count, summary);

  const ColumnStorage wanted = StorageFor(summary);
  if (!Holds(fStorage, wanted)) Widen(wanted);
  const std::size_t cellBytes = BytesPerCell(fStorage);
  const std::size_t used = static_cast<std::size_t>(fRowsInBlock) * cellBytes;
  fBlock.resize(used + count * cellBytes);
  StoreCells(fStorage, fBlock.data() + used, values, count);

  fRows += static_cast<std::int64_t>(count);
  fRowsInBlock += static_cast<std::int64_t>(count);
  if (fRowsInBlock == fBlockRows) CloseBlock();
}

void NumericColumnBuilder::Widen(ColumnStorage storage) {
  const auto rows = static_cast<std::size_t>(fRowsInBlock);
  std::vector<std::byte> wide(rows * BytesPerCell(storage));
  double batch[kBatch];
  for (std::size_t row = 0; row < rows; row += kBatch) {
    const std::size_t count = std::min(kBatch, rows - row);
    LoadCells(fStorage, fBlock.data() + row * BytesPerCell(fStorage), batch, count);
    StoreCells(storage, wide.data() + row * BytesPerCell(storage), batch, count);
  }
  fBlock = std::move(wide);
  fStorage = storage;
}

void NumericColumnBuilder::CloseBlock() {
  fBlocks.push_back({fStorage, ExactCopy(fBlock.data(), fBlock.size())});
  fBlock.clear();
  fRowsInBlock = 0;
  fStorage = ColumnStorage::Int8;
}

StoredColumn NumericColumnBuilder::Finish() {
  if (fRowsInBlock > 0) CloseBlock();
  return {fRows, fBlockRows, std::move(fBlocks), nullptr};
}

StringColumnBuilder::StringColumnBuilder(std::int64_t blockRows)
    : fBlockRows(blockRows), fStrings(std::make_shared<ArenaStringTable>()) {}

void StringColumnBuilder::Append(std::string_view text) {
  fBlock.push_back(fStrings->Enter(text));
  ++fRows;
  if (static_cast<std::int64_t>(fBlock.size()) == fBlockRows) CloseBlock();
}

void StringColumnBuilder::CloseBlock() {
  fBlocks.push_back({ColumnStorage::StringCode, ExactCopy(fBlock.data(), fBlock.size() * sizeof(std::uint32_t))});
  fBlock.clear();
}

StoredColumn StringColumnBuilder::Finish() {
  if (!fBlock.empty()) CloseBlock();
  return {fRows, fBlockRows, std::move(fBlocks), std::move(fStrings)};
}

}  // namespace runtime::data
