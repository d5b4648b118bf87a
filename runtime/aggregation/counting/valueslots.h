// From the values of a column to slots, the small numbers under which they are counted.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "host/data/casecursor.h"
#include "host/data/missingrule.h"

namespace runtime::aggregation {

// The first slots are kept for what is no value of its own.
inline constexpr std::uint32_t kSystemMissingSlot = 0;
inline constexpr std::uint32_t kOtherValidSlot = 1;    // values outside a closed list
inline constexpr std::uint32_t kOtherMissingSlot = 2;  // user-missing values outside a closed list
inline constexpr std::uint32_t kFirstValueSlot = 3;

/// Slots of numbers, in order of first appearance. 0.0 and -0.0 are one value. Whole numbers of 16 bits are found by
/// direct index, others through a hash table.
class NumberSlots {
 public:
  NumberSlots();

  /// The slot of a value, which is entered when it is new and the list is open.
  std::uint32_t SlotOf(double value);
  /// The slots of rows first, first + 1, ... of a chunk's column.
  void Assign(const ColumnView& column, std::size_t first, std::size_t count, std::uint32_t* slots);
  /// From here on unknown values get kOtherValidSlot or, when the rule holds, kOtherMissingSlot. The rule must outlive
  /// the slots.
  void Close(const MissingRule& rule) { fRule = &rule; }

  /// One past the highest slot.
  std::size_t size() const { return fValues.size(); }
  double value(std::size_t slot) const { return fValues[slot]; }
  /// Values that had to go through the hash table.
  std::size_t hashedValues() const { return fHashed; }

 private:
  template <class Cell>
  void AssignWhole(const Cell* cells, std::size_t count, Cell systemMissing, std::uint32_t* slots);
  std::uint32_t WindowSlot(std::int32_t value);
  std::uint32_t EnterInWindow(std::int32_t value);
  std::uint32_t HashedSlot(double value);
  std::uint32_t NewSlot(double value);
  void GrowTable();

  std::vector<double> fValues;
  std::int32_t fWindowLow = 0;
  std::vector<std::uint32_t> fWindow;  // slot of value fWindowLow + i
  std::vector<std::uint32_t> fTable;   // open addressing; a power of two, at most half of it taken
  int fUnusedBits = 64;                // of a hash: 64 less those that name a place in the table
  std::size_t fHashed = 0;
  std::unique_ptr<std::array<std::uint32_t, 256>> fSlotOfByte;  // made for the first chunk of 8-bit cells
  const MissingRule* fRule = nullptr;                           // null: the list is open
};

/// Slots of texts. A column's string table must live as long as the slots are assigned.
class TextSlots {
 public:
  TextSlots() : fTexts(kFirstValueSlot) {}

  /// Enters a text before the first column is seen. REQUIRES: without trailing blanks; outlives the slots.
  std::uint32_t Enter(std::string_view text);
  void Assign(const ColumnView& column, std::size_t first, std::size_t count, std::uint32_t* slots);
  void Close(const MissingRule& rule) { fRule = &rule; }

  std::size_t size() const { return fTexts.size(); }
  /// Valid while the string table lives that it was met in.
  std::string_view text(std::size_t slot) const { return fTexts[slot]; }

 private:
  std::uint32_t SlotOfCode(std::uint32_t code);
  void ChangeTable(const StringTable* strings);

  std::vector<std::string_view> fTexts;
  const StringTable* fStrings = nullptr;
  std::vector<std::uint32_t> fSlotOfCode;
  // Texts need looking up only where several string tables or a list of texts meet; else a new code is a new text.
  bool fLooksUp = false;
  std::unordered_map<std::string_view, std::uint32_t> fSlotOfText;
  const MissingRule* fRule = nullptr;
};

/// Slots of one variable's values, numbers or texts.
class ValueSlots {
 public:
  explicit ValueSlots(bool isString) : fIsString(isString) {}

  bool isString() const { return fIsString; }
  NumberSlots& numbers() { return fNumbers; }
  const NumberSlots& numbers() const { return fNumbers; }
  TextSlots& texts() { return fTexts; }
  const TextSlots& texts() const { return fTexts; }

  void Assign(const ColumnView& column, std::size_t first, std::size_t count, std::uint32_t* slots) {
    if (fIsString)
      fTexts.Assign(column, first, count, slots);
    else
      fNumbers.Assign(column, first, count, slots);
  }
  void Close(const MissingRule& rule) {
    fNumbers.Close(rule);
    fTexts.Close(rule);
  }
  std::size_t size() const { return fIsString ? fTexts.size() : fNumbers.size(); }
  /// REQUIRES: a value slot.
  bool IsUserMissing(std::size_t slot, const MissingRule& rule) const;

 private:
  bool fIsString;
  NumberSlots fNumbers;
  TextSlots fTexts;
};

/// Whether a string value (without trailing blanks) is user-missing.
bool IsMissingText(const MissingRule& rule, std::string_view text);

}  // namespace runtime::aggregation
