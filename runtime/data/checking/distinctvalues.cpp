#include "runtime/data/checking/distinctvalues.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstring>
#include <limits>
#include <memory>

#include "host/data/casecursor.h"

namespace runtime::data {
namespace {

constexpr std::size_t kMostLookedUp = std::size_t{1} << 15;

/// Calls work(view, first row, rows) for each chunk of a column, as long as it returns true.
template <typename Work>
void WalkColumn(const Dataset& dataset, int variable, Work work) {
  const std::unique_ptr<CaseCursor> cursor = dataset.NewCursor();
  while (cursor->Next()) {
    if (!work(cursor->Column(variable), cursor->chunkBegin, cursor->chunkEnd - cursor->chunkBegin)) return;
    cursor->row = cursor->chunkEnd - 1;
  }
}

/// Calls work(number, row) for each cell of a numeric column; NaN for system-missing.
template <typename Work>
void WalkNumbers(const ColumnView& view, std::int64_t begin, std::int64_t rows, Work work) {
  constexpr double kMissing = std::numeric_limits<double>::quiet_NaN();
  const auto walk = [&](const auto* cells, auto missing) {
    for (std::int64_t i = 0; i < rows; ++i)
      work(cells[i] == missing ? kMissing : static_cast<double>(cells[i]), begin + i);
  };
  switch (view.storage) {
    case ColumnStorage::Int8:
      return walk(static_cast<const std::int8_t*>(view.cells), kInt8SystemMissing);
    case ColumnStorage::Int16:
      return walk(static_cast<const std::int16_t*>(view.cells), kInt16SystemMissing);
    case ColumnStorage::Int32:
      return walk(static_cast<const std::int32_t*>(view.cells), kInt32SystemMissing);
    case ColumnStorage::Float64:
      return walk(static_cast<const double*>(view.cells), kMissing);
    case ColumnStorage::StringCode:
      return;
  }
}

/// Numbers looked up in an open table.
class NumberCounts {
 public:
  NumberCounts() : fSlots(256) {}

  void Add(double number, std::int64_t row, std::int64_t count = 1) {
    std::size_t slot = SlotOf(number);
    while (fSlots[slot].count > 0 && fSlots[slot].number != number) slot = (slot + 1) & (fSlots.size() - 1);
    if (fSlots[slot].count == 0) {
      fSlots[slot] = {number, {}, count, row};
      if (++fSize * 2 > fSlots.size()) Grow();
      return;
    }
    fSlots[slot].count += count;
  }

  std::size_t size() const { return fSize; }
  std::vector<DistinctValue> Values() const {
    std::vector<DistinctValue> values;
    values.reserve(fSize);
    for (const DistinctValue& slot : fSlots)
      if (slot.count > 0) values.push_back(slot);
    return values;
  }

 private:
  std::size_t SlotOf(double number) const {
    std::uint64_t bits = 0;
    std::memcpy(&bits, &number, sizeof bits);
    bits ^= bits >> 32;  // whole numbers differ in their high bits only
    return static_cast<std::size_t>(bits * 0x9E3779B97F4A7C15u >> 32) & (fSlots.size() - 1);
  }

  void Grow() {
    const std::vector<DistinctValue> values = Values();
    fSlots.assign(fSlots.size() * 2, {});
    fSize = 0;
    for (const DistinctValue& value : values) Add(value.number, value.firstRow, value.count);
  }

  std::vector<DistinctValue> fSlots;  // a power of two; count 0: free
  std::size_t fSize = 0;
};

/// The cells of bytes are counted in a table of all 256 values first.
void AddBytes(const ColumnView& view, std::int64_t begin, std::int64_t rows, NumberCounts& counts,
              DistinctValues& found) {
  std::array<std::int64_t, 256> count{};
  std::array<std::int64_t, 256> first{};
  const auto* cells = static_cast<const std::uint8_t*>(view.cells);
  for (std::int64_t i = 0; i < rows; ++i)
    if (count[cells[i]]++ == 0) first[cells[i]] = begin + i;
  for (std::size_t value = 0; value < count.size(); ++value) {
    if (count[value] == 0) continue;
    const auto number = static_cast<std::int8_t>(value);
    if (number == kInt8SystemMissing) {
      found.systemMissing += count[value];
      if (found.firstSystemMissingRow < 0) found.firstSystemMissingRow = first[value];
    } else {
      counts.Add(number, first[value], count[value]);
    }
  }
}

struct NumberAtRow {
  double number;
  std::int64_t row;
};

std::vector<DistinctValue> SortedNumbers(const Dataset& dataset, int variable) {
  std::vector<NumberAtRow> cells;
  WalkColumn(dataset, variable, [&](const ColumnView& view, std::int64_t begin, std::int64_t rows) {
    WalkNumbers(view, begin, rows, [&](double number, std::int64_t row) {
      if (!std::isnan(number)) cells.push_back({number, row});
    });
    return true;
  });
  std::sort(cells.begin(), cells.end(), [](const NumberAtRow& a, const NumberAtRow& b) {
    return a.number != b.number ? a.number < b.number : a.row < b.row;
  });
  std::vector<DistinctValue> values;
  for (const NumberAtRow& cell : cells) {
    if (values.empty() || values.back().number != cell.number) values.push_back({cell.number, {}, 0, cell.row});
    ++values.back().count;
  }
  return values;
}

void CollectNumbers(const Dataset& dataset, int variable, DistinctValues& found) {
  NumberCounts counts;
  bool tooMany = false;
  WalkColumn(dataset, variable, [&](const ColumnView& view, std::int64_t begin, std::int64_t rows) {
    if (!tooMany && view.storage == ColumnStorage::Int8) {
      AddBytes(view, begin, rows, counts, found);
      return true;
    }
    WalkNumbers(view, begin, rows, [&](double number, std::int64_t row) {
      if (std::isnan(number)) {
        ++found.systemMissing;
        if (found.firstSystemMissingRow < 0) found.firstSystemMissingRow = row;
      } else if (!tooMany) {
        counts.Add(number, row);
        tooMany = counts.size() > kMostLookedUp;
      }
    });
    return true;
  });
  if (tooMany) {
    found.values = SortedNumbers(dataset, variable);
    return;
  }
  found.values = counts.Values();
  std::sort(found.values.begin(), found.values.end(),
            [](const DistinctValue& a, const DistinctValue& b) { return a.number < b.number; });
}

void CollectTexts(const Dataset& dataset, int variable, DistinctValues& found) {
  WalkColumn(dataset, variable, [&](const ColumnView& view, std::int64_t begin, std::int64_t rows) {
    if (found.values.size() < view.strings->Size()) found.values.resize(view.strings->Size());
    const auto* codes = static_cast<const std::uint32_t*>(view.cells);
    for (std::int64_t i = 0; i < rows; ++i) {
      DistinctValue& value = found.values[codes[i]];
      if (value.count++ > 0) continue;
      value.firstRow = begin + i;
      value.text = view.strings->Text(codes[i]);
    }
    return true;
  });
  found.values.erase(
      std::remove_if(found.values.begin(), found.values.end(), [](const DistinctValue& v) { return v.count == 0; }),
      found.values.end());
  std::sort(found.values.begin(), found.values.end(),
            [](const DistinctValue& a, const DistinctValue& b) { return a.text < b.text; });
}

}  // namespace

DistinctValues CollectDistinctValues(const Dataset& dataset, int variable) {
  DistinctValues found;
  found.isString = dataset.dictionary().variables[static_cast<std::size_t>(variable)]->width > 0;
  found.rows = dataset.caseCount();
  if (found.isString)
    CollectTexts(dataset, variable, found);
  else
    CollectNumbers(dataset, variable, found);
  return found;
}

}  // namespace runtime::data
