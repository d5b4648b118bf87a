#include "runtime/aggregation/counting/categorysetcounter.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <utility>

#include "runtime/aggregation/counting/cellsums.h"
#include "runtime/aggregation/counting/celltexts.h"

namespace runtime::aggregation {

namespace {

constexpr std::size_t kBlockCells = 16 * kBlockRows;
// Rows of a block in which hits are noted, and bytes of the notes that stay in the cache.
constexpr std::size_t kHitRows = 512;
constexpr std::size_t kHitBytes = std::size_t{1} << 18;
constexpr std::size_t kNoMember = std::numeric_limits<std::size_t>::max();

}  // namespace

CategorySetCounter::CategorySetCounter(const std::vector<int>& members, const MAVO_DataSource& source) {
  ResizeSlots(kFirstOfSetSlot);
  MarkNoValue(kNoResponseSlot);
  MarkNoValue(kAllCasesSlot);
  fCountedFor.resize(kFirstOfSetSlot);
  fMembers.reserve(members.size());
  for (const int index : members) {
    const MAVO_Variable& variable = source.GetVariable(index);
    fMembers.push_back({index, variable, ValueSlots(variable.GetType() > 0), {}, {}});
    AddLabelledValues(fMembers.size() - 1);
  }
}

std::uint32_t CategorySetCounter::NewCategory(Category category) {
  fCategories.push_back(std::move(category));
  const std::size_t slots = kFirstOfSetSlot + fCategories.size();
  ResizeSlots(slots);
  fCountedFor.resize(slots);
  return static_cast<std::uint32_t>(slots - 1);
}

CategorySetCounter::Category& CategorySetCounter::CategoryAt(std::uint32_t slot) {
  return fCategories[slot - kFirstOfSetSlot];
}

std::uint32_t CategorySetCounter::CategoryOfNumber(double number) {
  number += 0.0;  // -0.0 is the same value as 0.0
  const auto found = fCategoryOfNumber.find(number);
  if (found != fCategoryOfNumber.end()) return found->second;
  return fCategoryOfNumber[number] = NewCategory({false, number, {}, false, kNoMember});
}

std::uint32_t CategorySetCounter::CategoryOfText(const std::string& text) {
  const auto found = fCategoryOfText.find(text);
  if (found != fCategoryOfText.end()) return found->second;
  return fCategoryOfText[text] = NewCategory({true, 0.0, text, false, kNoMember});
}

void CategorySetCounter::AddLabelledValues(std::size_t member) {
  const MAVO_Variable& variable = fMembers[member].variable;
  const MissingRule& rule = variable.GetMissingRule();
  const MAVO_ValueLabelMap labels(variable.GetValueLabels());
  const OBS* value = nullptr;
  const char* label = nullptr;
  while (labels.GetNextPair(value, label) != 0) {
    std::uint32_t slot = kNoResponseSlot;
    if (fMembers[member].slots.isString()) {
      const std::string text(TextOf(value, variable.GetType()));
      if (!IsMissingText(rule, text)) slot = CategoryOfText(text);
    } else if (!std::isnan(value->number) && !rule.holds(value->number)) {
      slot = CategoryOfNumber(value->number);
    }
    if (slot == kNoResponseSlot) continue;
    CategoryAt(slot).isLabelled = true;
    CategoryAt(slot).firstMember = std::min(CategoryAt(slot).firstMember, member);
  }
}

std::size_t CategorySetCounter::BlockRows() const {
  const std::size_t members = std::max<std::size_t>(1, fMembers.size());
  return std::clamp<std::size_t>(kBlockCells / members, 16, kBlockRows);
}

std::vector<ColumnView> CategorySetCounter::Columns(const Chunk& chunk) const {
  std::vector<ColumnView> columns;
  columns.reserve(fMembers.size());
  for (const Member& member : fMembers) columns.push_back(chunk.Column(member.index));
  return columns;
}

void CategorySetCounter::EnterValues(Member& member) {
  const MissingRule& rule = member.variable.GetMissingRule();
  for (std::size_t own = member.category.size(); own < member.slots.size(); ++own) {
    std::uint32_t slot = kNoResponseSlot;
    if (own >= kFirstValueSlot && !member.slots.IsUserMissing(own, rule))
      slot = member.slots.isString() ? CategoryOfText(std::string(member.slots.texts().text(own)))
                                     : CategoryOfNumber(member.slots.numbers().value(own));
    member.category.push_back(slot);
  }
  member.isHeld.resize(member.category.size());
}

void CategorySetCounter::AssignSlots(const std::vector<ColumnView>& columns, std::size_t first, std::size_t count) {
  fBlock.resize(fMembers.size() * count);
  std::uint32_t* slots = fBlock.data();
  for (std::size_t m = 0; m < fMembers.size(); ++m, slots += count) {
    Member& member = fMembers[m];
    member.slots.Assign(columns[m], first, count, slots);
    EnterValues(member);
    for (std::size_t i = 0; i < count; ++i) slots[i] = member.category[slots[i]];
  }
}

void CategorySetCounter::CountRows(const Chunk& chunk, std::size_t first, std::size_t count) {
  const std::vector<ColumnView> columns = Columns(chunk);
  ForEachBlock(first, count, kHitRows, [&](std::size_t row, std::size_t rows) {
    if (fMarks.size() * kHitRows <= kHitBytes)
      CountByMember(chunk, columns, row, rows);
    else
      ForEachBlock(row, rows, BlockRows(),
                   [&](std::size_t begin, std::size_t part) { CountByCase(chunk, columns, begin, part); });
  });
}

/// Notes, member by member, which rows hold which category: a note is the same however many members make it.
void CategorySetCounter::CountByMember(const Chunk& chunk, const std::vector<ColumnView>& columns, std::size_t first,
                                       std::size_t count) {
  std::array<std::uint32_t, kHitRows> slots;
  const double* weights = chunk.weights.exact;
  const bool allCount = weights == nullptr || *std::min_element(weights + first, weights + first + count) > 0.0;
  for (std::size_t m = 0; m < fMembers.size(); ++m) {
    Member& member = fMembers[m];
    member.slots.Assign(columns[m], first, count, slots.data());
    EnterValues(member);
    fHits.resize(std::max(fHits.size(), fMarks.size() * kHitRows));
    // A case that does not count holds nothing.
    for (std::size_t i = 0; !allCount && i < count; ++i)
      slots[i] = weights[first + i] > 0.0 ? slots[i] : kSystemMissingSlot;
    const std::uint32_t* category = member.category.data();
    std::uint8_t* isHeld = member.isHeld.data();
    std::uint8_t* hits = fHits.data();
    for (std::size_t i = 0; i < count; ++i) {
      isHeld[slots[i]] = 1;
      hits[category[slots[i]] * kHitRows + i] = 1;
    }
    for (std::size_t own = 0; own < member.isHeld.size(); ++own) {
      if (isHeld[own] == 0) continue;
      isHeld[own] = 0;
      const std::uint32_t slot = category[own];
      if (slot == kNoResponseSlot || fCountedFor[slot] == fVisit + 1) continue;
      CategoryAt(slot).firstMember = std::min(CategoryAt(slot).firstMember, m);
      fCountedFor[slot] = fVisit + 1;
      fHitSlots.push_back(slot);
    }
  }
  ++fVisit;
  std::array<std::uint8_t, kHitRows> responded{};
  std::array<const std::uint8_t*, WeightSums::kMostTogether> hitsOf;
  for (std::size_t done = 0; done < fHitSlots.size();) {
    const std::size_t together = std::min(WeightSums::kMostTogether, fHitSlots.size() - done);
    for (std::size_t k = 0; k < together; ++k) {
      hitsOf[k] = fHits.data() + fHitSlots[done + k] * kHitRows;
      for (std::size_t i = 0; i < count; ++i) responded[i] |= hitsOf[k][i];
    }
    fSums.AddHits(fHitSlots.data() + done, hitsOf.data(), together, count, chunk.weights, first);
    done += together;
  }
  for (const std::uint32_t slot : fHitSlots) std::fill_n(fHits.data() + slot * kHitRows, count, std::uint8_t{0});
  fHitSlots.clear();
  AddCases(responded.data(), count, chunk.weights, first);
}

/// For so many categories that most would be noted in no row of a block.
void CategorySetCounter::CountByCase(const Chunk& chunk, const std::vector<ColumnView>& columns, std::size_t first,
                                     std::size_t count) {
  AssignSlots(columns, first, count);
  for (std::size_t i = 0; i < count; ++i) {
    if (!chunk.weights.IsPositive(first + i)) continue;
    ++fVisit;
    bool responded = false;
    for (std::size_t member = 0; member < fMembers.size(); ++member) {
      const std::uint32_t slot = fBlock[member * count + i];
      if (slot == kNoResponseSlot) continue;
      responded = true;
      if (fCountedFor[slot] == fVisit) continue;
      fCountedFor[slot] = fVisit;
      CategoryAt(slot).firstMember = std::min(CategoryAt(slot).firstMember, member);
      fSums.AddRow(slot, chunk.weights, first + i);
    }
    if (!responded) fSums.AddRow(kNoResponseSlot, chunk.weights, first + i);
    fSums.AddRow(kAllCasesSlot, chunk.weights, first + i);
  }
}

/// Whether the rest of the chunk may show values not met; true also where that cannot be told at little cost.
bool CategorySetCounter::HasNewValues(const Chunk& chunk, const std::vector<ColumnView>& columns, std::size_t first) {
  CellSums sums;
  for (std::size_t m = 0; m < fMembers.size(); ++m) {
    Member& member = fMembers[m];
    if (!SumByCell(columns[m], chunk.weights, first, chunk.rows() - first, member.slots, sums)) return true;
    EnterValues(member);
    for (std::size_t i = 0; i < sums.slots.size(); ++i)
      if (sums.IsPositive(i) && fMarks[member.category[sums.slots[i]]] == kNotMet) return true;
  }
  return false;
}

std::size_t CategorySetCounter::FindNewValues(const Chunk& chunk, std::size_t first, std::size_t count,
                                              std::vector<FirstAppearance>& found) {
  const std::vector<ColumnView> columns = Columns(chunk);
  if (fSearchedChunk != chunk.cursor->chunkBegin) {
    fSearchedChunk = chunk.cursor->chunkBegin;
    if (!HasNewValues(chunk, columns, first)) return chunk.rows();
  }
  ForEachBlock(first, count, BlockRows(), [&](std::size_t row, std::size_t rows) {
    AssignSlots(columns, row, rows);
    if (!hasNotMet()) return;
    const bool hasNew =
        std::any_of(fBlock.begin(), fBlock.end(), [this](std::uint32_t slot) { return fMarks[slot] == kNotMet; });
    if (!hasNew) return;
    for (std::size_t i = 0; i < rows; ++i)
      for (std::size_t member = 0; member < fMembers.size(); ++member)
        FindInBlock(&fBlock[member * rows + i], 1, chunk.weights, row + i, found);
  });
  return first + count;
}

DimensionCounts CategorySetCounter::Finish() {
  struct Placed {
    const Category* category;
    std::uint32_t slot;
  };
  std::vector<Placed> placed;
  for (std::size_t i = 0; i < fCategories.size(); ++i) {
    const auto slot = static_cast<std::uint32_t>(kFirstOfSetSlot + i);
    if (fCategories[i].isLabelled || !fSums.IsZero(slot)) placed.push_back({&fCategories[i], slot});
  }
  std::sort(placed.begin(), placed.end(), [](const Placed& a, const Placed& b) {
    if (a.category->isText != b.category->isText) return b.category->isText;
    return a.category->isText ? a.category->text < b.category->text : a.category->number < b.category->number;
  });

  DimensionCounts counts;
  for (const Placed& place : placed) {
    const Category& category = *place.category;
    counts.categories.push_back({category.number, fMembers[category.firstMember].index,
                                 category.isText ? category.text : ShortestText(category.number),
                                 fSums.Total(place.slot), true});
  }
  counts.missing = fSums.Total(kNoResponseSlot);
  counts.total = fSums.Total(kAllCasesSlot);
  return counts;
}

}  // namespace runtime::aggregation
