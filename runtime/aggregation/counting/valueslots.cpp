#include "runtime/aggregation/counting/valueslots.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <limits>

namespace runtime::aggregation {

namespace {

constexpr std::uint32_t kUnknown = UINT32_MAX;
constexpr std::int32_t kLowestInWindow = INT16_MIN;
constexpr std::int32_t kHighestInWindow = INT16_MAX;

/// All bits of the value reach the upper bits of the product, which are what is used: the lower bits of doubles, and of
/// their products, are mostly alike.
std::size_t PlaceOf(double value, int unusedBits) {
  std::uint64_t bits = std::bit_cast<std::uint64_t>(value);
  bits = (bits ^ (bits >> 32)) * 0x9E3779B97F4A7C15u;
  return static_cast<std::size_t>(bits >> unusedBits);
}

}  // namespace

NumberSlots::NumberSlots() : fValues(kFirstValueSlot, std::numeric_limits<double>::quiet_NaN()) {}

std::uint32_t NumberSlots::NewSlot(double value) {
  fValues.push_back(value);
  return static_cast<std::uint32_t>(fValues.size() - 1);
}

std::uint32_t NumberSlots::SlotOf(double value) {
  if (value >= kLowestInWindow && value <= kHighestInWindow) {
    const auto whole = static_cast<std::int32_t>(value);
    if (whole == value) return WindowSlot(whole);
  }
  if (std::isnan(value)) return kSystemMissingSlot;
  return HashedSlot(value);
}

std::uint32_t NumberSlots::WindowSlot(std::int32_t value) {
  const auto at = static_cast<std::size_t>(static_cast<std::int64_t>(value) - fWindowLow);
  if (at < fWindow.size() && fWindow[at] != kUnknown) return fWindow[at];
  return EnterInWindow(value);
}

std::uint32_t NumberSlots::EnterInWindow(std::int32_t value) {
  if (fWindow.empty()) fWindowLow = value;
  const std::int32_t high = fWindowLow + static_cast<std::int32_t>(fWindow.size());  // one past
  if (value < fWindowLow) {
    // Room for as many again, so that values that come in falling order do not move the window each time.
    const std::int32_t low = std::max(kLowestInWindow, value - static_cast<std::int32_t>(fWindow.size()));
    fWindow.insert(fWindow.begin(), static_cast<std::size_t>(fWindowLow - low), kUnknown);
    fWindowLow = low;
  } else if (value >= high) {
    fWindow.resize(static_cast<std::size_t>(value - fWindowLow + 1), kUnknown);
  }
  std::uint32_t& slot = fWindow[static_cast<std::size_t>(value - fWindowLow)];
  if (slot == kUnknown)
    slot = fRule == nullptr ? NewSlot(value) : (fRule->holds(value) ? kOtherMissingSlot : kOtherValidSlot);
  return slot;
}

std::uint32_t NumberSlots::HashedSlot(double value) {
  if (2 * (fHashed + 1) > fTable.size()) GrowTable();
  const std::size_t mask = fTable.size() - 1;
  std::size_t at = PlaceOf(value, fUnusedBits);
  while (fTable[at] != kUnknown) {
    if (fValues[fTable[at]] == value) return fTable[at];
    at = (at + 1) & mask;
  }
  if (fRule != nullptr) return fRule->holds(value) ? kOtherMissingSlot : kOtherValidSlot;
  ++fHashed;
  return fTable[at] = NewSlot(value);
}

void NumberSlots::GrowTable() {
  std::vector<std::uint32_t> old = std::move(fTable);
  fTable.assign(std::max<std::size_t>(16, 2 * old.size()), kUnknown);
  fUnusedBits = 64 - std::countr_zero(fTable.size());
  const std::size_t mask = fTable.size() - 1;
  for (const std::uint32_t slot : old) {
    if (slot == kUnknown) continue;
    std::size_t at = PlaceOf(fValues[slot], fUnusedBits);
    while (fTable[at] != kUnknown) at = (at + 1) & mask;
    fTable[at] = slot;
  }
}

template <class Cell>
void NumberSlots::AssignWhole(const Cell* cells, std::size_t count, Cell systemMissing, std::uint32_t* slots) {
  for (std::size_t i = 0; i < count; ++i) {
    const Cell cell = cells[i];
    if (cell == systemMissing)
      slots[i] = kSystemMissingSlot;
    else if (cell >= kLowestInWindow && cell <= kHighestInWindow)
      slots[i] = WindowSlot(cell);
    else
      slots[i] = HashedSlot(cell);
  }
}

void NumberSlots::Assign(const ColumnView& column, std::size_t first, std::size_t count, std::uint32_t* slots) {
  switch (column.storage) {
    case ColumnStorage::Int8: {
      if (!fSlotOfByte) {
        fSlotOfByte = std::make_unique<std::array<std::uint32_t, 256>>();
        fSlotOfByte->fill(kUnknown);
        (*fSlotOfByte)[static_cast<std::uint8_t>(kInt8SystemMissing)] = kSystemMissingSlot;
      }
      const std::int8_t* cells = static_cast<const std::int8_t*>(column.cells) + first;
      for (std::size_t i = 0; i < count; ++i) {
        std::uint32_t& slot = (*fSlotOfByte)[static_cast<std::uint8_t>(cells[i])];
        if (slot == kUnknown) slot = WindowSlot(cells[i]);
        slots[i] = slot;
      }
      break;
    }
    case ColumnStorage::Int16:
      AssignWhole(static_cast<const std::int16_t*>(column.cells) + first, count, kInt16SystemMissing, slots);
      break;
    case ColumnStorage::Int32:
      AssignWhole(static_cast<const std::int32_t*>(column.cells) + first, count, kInt32SystemMissing, slots);
      break;
    case ColumnStorage::Float64: {
      const double* cells = static_cast<const double*>(column.cells) + first;
      for (std::size_t i = 0; i < count; ++i) slots[i] = SlotOf(cells[i]);
      break;
    }
    case ColumnStorage::StringCode:
      std::fill_n(slots, count, kSystemMissingSlot);
      break;
  }
}

std::uint32_t TextSlots::Enter(std::string_view text) {
  fLooksUp = true;
  const auto [found, isNew] = fSlotOfText.try_emplace(text, static_cast<std::uint32_t>(fTexts.size()));
  if (isNew) fTexts.push_back(text);
  return found->second;
}

void TextSlots::ChangeTable(const StringTable* strings) {
  if (fStrings != nullptr && !fLooksUp) {
    fLooksUp = true;
    for (std::size_t slot = kFirstValueSlot; slot < fTexts.size(); ++slot)
      fSlotOfText.emplace(fTexts[slot], static_cast<std::uint32_t>(slot));
  }
  fStrings = strings;
  fSlotOfCode.clear();
}

std::uint32_t TextSlots::SlotOfCode(std::uint32_t code) {
  const std::string_view text = fStrings->Text(code);
  if (fRule != nullptr) {
    const auto found = fSlotOfText.find(text);
    if (found != fSlotOfText.end()) return found->second;
    return IsMissingText(*fRule, text) ? kOtherMissingSlot : kOtherValidSlot;
  }
  if (fLooksUp) return Enter(text);
  fTexts.push_back(text);
  return static_cast<std::uint32_t>(fTexts.size() - 1);
}

void TextSlots::Assign(const ColumnView& column, std::size_t first, std::size_t count, std::uint32_t* slots) {
  if (column.storage != ColumnStorage::StringCode) {
    std::fill_n(slots, count, kSystemMissingSlot);
    return;
  }
  if (column.strings != fStrings) ChangeTable(column.strings);
  const std::size_t known = fStrings->Size();
  if (fSlotOfCode.size() < known) fSlotOfCode.resize(known, kUnknown);
  const std::uint32_t* codes = static_cast<const std::uint32_t*>(column.cells) + first;
  for (std::size_t i = 0; i < count; ++i) {
    std::uint32_t& slot = fSlotOfCode[codes[i]];
    if (slot == kUnknown) slot = SlotOfCode(codes[i]);
    slots[i] = slot;
  }
}

bool ValueSlots::IsUserMissing(std::size_t slot, const MissingRule& rule) const {
  return fIsString ? IsMissingText(rule, fTexts.text(slot)) : rule.holds(fNumbers.value(slot));
}

bool IsMissingText(const MissingRule& rule, std::string_view text) {
  return std::find(rule.texts.begin(), rule.texts.end(), text) != rule.texts.end();
}

}  // namespace runtime::aggregation
