#include "runtime/aggregation/counting/cellsums.h"

#include <algorithm>
#include <limits>

namespace runtime::aggregation {

namespace {

// For fewer rows a histogram does not pay.
constexpr std::size_t kFewestRows = 256;
// A histogram of so many places stays in the cache.
constexpr std::size_t kMostPlaces = 4096;
constexpr std::size_t kLanes = 4;
// Weighted sums are four times as large, and so are fewer lanes.
constexpr std::size_t kWeightedLanes = 2;

/// The cells of a stretch as places of a histogram: a cell's distance from the lowest one, and behind them
/// system-missing.
template <class Cell>
struct Places {
  static constexpr Cell kSystemMissing = std::numeric_limits<Cell>::min();

  Cell low = 0;
  std::size_t count = 0;

  std::size_t PlaceOf(Cell cell) const {
    const auto distance = static_cast<std::size_t>(static_cast<std::int64_t>(cell) - low);
    return cell == kSystemMissing ? count - 1 : distance;
  }
  Cell CellAt(std::size_t place) const {
    return place == count - 1 ? kSystemMissing : static_cast<Cell>(static_cast<std::int64_t>(place) + low);
  }
};

template <>
struct Places<std::int8_t> {
  std::size_t count = 256;

  std::size_t PlaceOf(std::int8_t cell) const { return static_cast<std::uint8_t>(cell); }
  std::int8_t CellAt(std::size_t place) const { return static_cast<std::int8_t>(place); }
};

template <>
struct Places<std::uint32_t> {
  std::size_t count = 0;

  std::size_t PlaceOf(std::uint32_t code) const { return code; }
  std::uint32_t CellAt(std::size_t place) const { return static_cast<std::uint32_t>(place); }
};

template <class Cell>
Places<Cell> FindPlaces(const Cell* cells, std::size_t count) {
  constexpr Cell kMissing = Places<Cell>::kSystemMissing;
  Cell low = std::numeric_limits<Cell>::max();
  Cell high = kMissing;
  for (std::size_t i = 0; i < count; ++i) {
    const Cell cell = cells[i];
    const Cell least = cell == kMissing ? std::numeric_limits<Cell>::max() : cell;
    low = least < low ? least : low;
    high = cell > high ? cell : high;
  }
  if (high == kMissing) return {0, 1};
  return {low, static_cast<std::size_t>(std::int64_t{high} - low) + 2};
}

/// Lanes in turn: an addition need not wait for the one before it to the same place.
template <std::size_t Lanes, class Sum, class Cell, class Addend>
std::vector<Sum> FillPlaces(const Places<Cell>& places, const Cell* cells, std::size_t count, Addend addend) {
  std::vector<Sum> sums(Lanes * places.count);
  std::size_t i = 0;
  for (; i + Lanes <= count; i += Lanes)
    for (std::size_t lane = 0; lane < Lanes; ++lane)
      sums[places.PlaceOf(cells[i + lane]) * Lanes + lane] += addend(i + lane);
  for (; i < count; ++i) sums[places.PlaceOf(cells[i]) * Lanes] += addend(i);
  return sums;
}

/// The cells met, and their sums over the lanes.
template <std::size_t Lanes, class Sum, class Cell, class Total>
std::vector<Cell> Gather(const Places<Cell>& places, const std::vector<Sum>& sums, std::vector<Total>& totals) {
  std::vector<Cell> met;
  totals.clear();
  for (std::size_t place = 0; place < places.count; ++place) {
    Total total = 0;
    for (std::size_t lane = 0; lane < Lanes; ++lane) total += sums[place * Lanes + lane];
    if (total == 0) continue;
    met.push_back(places.CellAt(place));
    totals.push_back(total);
  }
  return met;
}

template <class Cell>
void SumCells(const Places<Cell>& places, const ColumnView& column, const ChunkWeights& weights, std::size_t first,
              std::size_t count, ValueSlots& slots, CellSums& sums) {
  const Cell* cells = static_cast<const Cell*>(column.cells) + first;
  std::vector<Cell> met;
  sums.cases.clear();
  sums.scaled.clear();
  if (weights.form == ChunkWeights::Form::Units) {
    const auto filled =
        FillPlaces<kLanes, std::uint32_t>(places, cells, count, [](std::size_t) { return std::uint32_t{1}; });
    met = Gather<kLanes>(places, filled, sums.cases);
  } else if (weights.form == ChunkWeights::Form::Narrow) {
    const std::uint64_t* units = weights.narrow + first;
    const auto filled =
        FillPlaces<kWeightedLanes, UInt128>(places, cells, count, [units](std::size_t i) { return units[i]; });
    met = Gather<kWeightedLanes>(places, filled, sums.scaled);
  } else {
    const UInt128* units = weights.broad + first;
    const auto filled =
        FillPlaces<kWeightedLanes, UInt128>(places, cells, count, [units](std::size_t i) { return units[i]; });
    met = Gather<kWeightedLanes>(places, filled, sums.scaled);
  }
  sums.slots.resize(met.size());
  slots.Assign({column.storage, met.data(), column.strings}, 0, met.size(), sums.slots.data());
}

template <class Cell>
bool SumWhole(const ColumnView& column, const ChunkWeights& weights, std::size_t first, std::size_t count,
              ValueSlots& slots, CellSums& sums) {
  const Places<Cell> places = FindPlaces(static_cast<const Cell*>(column.cells) + first, count);
  if (places.count > kMostPlaces) return false;
  SumCells(places, column, weights, first, count, slots, sums);
  return true;
}

}  // namespace

bool SumByCell(const ColumnView& column, const ChunkWeights& weights, std::size_t first, std::size_t count,
               ValueSlots& slots, CellSums& sums) {
  if (count < kFewestRows || weights.form == ChunkWeights::Form::Wide) return false;
  if (slots.isString() != (column.storage == ColumnStorage::StringCode)) return false;
  switch (column.storage) {
    case ColumnStorage::Int8:
      SumCells(Places<std::int8_t>(), column, weights, first, count, slots, sums);
      return true;
    case ColumnStorage::Int16:
      return SumWhole<std::int16_t>(column, weights, first, count, slots, sums);
    case ColumnStorage::Int32:
      return SumWhole<std::int32_t>(column, weights, first, count, slots, sums);
    case ColumnStorage::StringCode: {
      const std::size_t texts = column.strings->Size();
      if (texts > std::min(kMostPlaces, count)) return false;
      SumCells(Places<std::uint32_t>{texts}, column, weights, first, count, slots, sums);
      return true;
    }
    case ColumnStorage::Float64:
      break;
  }
  return false;
}

}  // namespace runtime::aggregation
