#include "runtime/aggregation/counting/dichotomysetcounter.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <limits>
#include <unordered_set>

#include "runtime/aggregation/counting/celltexts.h"

namespace runtime::aggregation {

namespace {

constexpr std::uint8_t kUnknownCode = 2;
constexpr int kBytesOfUnit = 8;

template <class Cell>
void CompareWhole(const Cell* cells, std::size_t count, double counted, std::uint8_t* hits) {
  // The type's lowest value is system-missing.
  const bool fits = counted > std::numeric_limits<Cell>::min() && counted <= std::numeric_limits<Cell>::max();
  const Cell wanted = fits ? static_cast<Cell>(counted) : Cell{0};
  if (!fits || wanted != counted) {
    std::fill_n(hits, count, std::uint8_t{0});
    return;
  }
  for (std::size_t i = 0; i < count; ++i) hits[i] = cells[i] == wanted ? 1 : 0;
}

}  // namespace

DichotomySetCounter::DichotomySetCounter(const AggregationMDSet& dimension, const MAVO_DataSource& source) {
  std::unordered_set<int> named;
  for (const int variable : dimension.variables()) {
    if (named.insert(variable).second)
      fMembers.push_back({variable, source.GetVariable(variable).GetName(), nullptr, {}});
  }
  ResizeSlots(kFirstOfSetSlot + fMembers.size());
  for (std::uint32_t slot = 0; slot < kFirstOfSetSlot; ++slot) MarkNoValue(slot);
  if (fMembers.empty() || dimension.countedValue() == nullptr) return;

  FormatType format = kFormatNone;
  int width = 0;
  int decimals = 0;
  source.GetVariable(fMembers.front().variable).GetFormatEx(format, width, decimals);
  fCountsText = format == kFormatA;
  if (fCountsText)
    fCountedText = TextOf(dimension.countedValue(), kBytesOfUnit * dimension.countedValueWidth());
  else
    fCountedNumber = dimension.countedValue()->number;
}

void DichotomySetCounter::FindHits(Member& member, const ColumnView& column, std::size_t first, std::size_t count,
                                   std::uint8_t* hits) const {
  const bool isText = column.storage == ColumnStorage::StringCode;
  if (isText != fCountsText) {
    std::fill_n(hits, count, std::uint8_t{0});
    return;
  }
  switch (column.storage) {
    case ColumnStorage::Int8:
      CompareWhole(static_cast<const std::int8_t*>(column.cells) + first, count, fCountedNumber, hits);
      break;
    case ColumnStorage::Int16:
      CompareWhole(static_cast<const std::int16_t*>(column.cells) + first, count, fCountedNumber, hits);
      break;
    case ColumnStorage::Int32:
      CompareWhole(static_cast<const std::int32_t*>(column.cells) + first, count, fCountedNumber, hits);
      break;
    case ColumnStorage::Float64: {
      const double* cells = static_cast<const double*>(column.cells) + first;
      for (std::size_t i = 0; i < count; ++i) hits[i] = cells[i] == fCountedNumber ? 1 : 0;
      break;
    }
    case ColumnStorage::StringCode: {
      if (member.strings != column.strings) {
        member.strings = column.strings;
        member.isCountedCode.clear();
      }
      member.isCountedCode.resize(std::max<std::size_t>(column.strings->Size(), member.isCountedCode.size()),
                                  kUnknownCode);
      const std::uint32_t* codes = static_cast<const std::uint32_t*>(column.cells) + first;
      for (std::size_t i = 0; i < count; ++i) {
        std::uint8_t& isCounted = member.isCountedCode[codes[i]];
        if (isCounted == kUnknownCode) isCounted = column.strings->Text(codes[i]) == fCountedText ? 1 : 0;
        hits[i] = isCounted;
      }
      break;
    }
  }
}

void DichotomySetCounter::CountRows(const Chunk& chunk, std::size_t first, std::size_t count) {
  std::vector<ColumnView> columns;
  columns.reserve(fMembers.size());
  for (const Member& member : fMembers) columns.push_back(chunk.Column(member.variable));

  constexpr std::size_t kTogether = WeightSums::kMostTogether;
  std::array<std::array<std::uint8_t, kBlockRows>, kTogether> hits;
  std::array<const std::uint8_t*, kTogether> hitsOf;
  std::array<std::uint32_t, kTogether> slots;
  for (std::size_t i = 0; i < kTogether; ++i) hitsOf[i] = hits[i].data();
  std::array<std::uint8_t, kBlockRows> responded;
  ForEachBlock(first, count, kBlockRows, [&](std::size_t row, std::size_t rows) {
    responded.fill(0);
    for (std::size_t member = 0; member < fMembers.size();) {
      std::size_t together = 0;
      for (; together < kTogether && member < fMembers.size(); ++together, ++member) {
        std::uint8_t* itsHits = hits[together].data();
        FindHits(fMembers[member], columns[member], row, rows, itsHits);
        for (std::size_t i = 0; i < rows; ++i) responded[i] |= itsHits[i];
        slots[together] = kFirstOfSetSlot + static_cast<std::uint32_t>(member);
      }
      fSums.AddHits(slots.data(), hitsOf.data(), together, rows, chunk.weights, row);
    }
    AddCases(responded.data(), rows, chunk.weights, row);
  });
}

std::size_t DichotomySetCounter::FindNewValues(const Chunk& chunk, std::size_t first, std::size_t count,
                                               std::vector<FirstAppearance>& found) {
  if (!hasNotMet()) return first + count;
  const std::size_t before = found.size();
  std::array<std::uint8_t, kBlockRows> hits;
  for (std::uint32_t member = 0; member < fMembers.size(); ++member) {
    const std::uint32_t slot = kFirstOfSetSlot + member;
    if (fMarks[slot] != kNotMet) continue;
    const ColumnView column = chunk.Column(fMembers[member].variable);
    ForEachBlock(first, count, kBlockRows, [&](std::size_t row, std::size_t rows) {
      if (fMarks[slot] != kNotMet) return;
      FindHits(fMembers[member], column, row, rows, hits.data());
      const void* firstHit = std::memchr(hits.data(), 1, rows);
      if (firstHit == nullptr) return;
      for (auto i = static_cast<std::size_t>(static_cast<const std::uint8_t*>(firstHit) - hits.data()); i < rows; ++i) {
        if (hits[i] == 0 || !chunk.weights.IsPositive(row + i)) continue;
        MarkMet(slot);
        found.push_back({row + i, slot});
        return;
      }
    });
  }
  std::sort(found.begin() + static_cast<std::ptrdiff_t>(before), found.end(),
            [](const FirstAppearance& a, const FirstAppearance& b) { return a.row < b.row; });
  return first + count;
}

DimensionCounts DichotomySetCounter::Finish() {
  DimensionCounts counts;
  for (std::size_t member = 0; member < fMembers.size(); ++member)
    counts.categories.push_back(
        {0.0, fMembers[member].variable, fMembers[member].name, fSums.Total(kFirstOfSetSlot + member), true});
  counts.missing = fSums.Total(kNoResponseSlot);
  counts.total = fSums.Total(kAllCasesSlot);
  return counts;
}

}  // namespace runtime::aggregation
