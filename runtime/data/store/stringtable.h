// The distinct texts of a string column, in memory.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string_view>
#include <vector>

#include "host/data/casecursor.h"

namespace runtime::data {

/// Texts in an arena, found again through an open hash table. Codes count from 0 in order of first appearance.
class ArenaStringTable : public StringTable {
 public:
  ArenaStringTable();
  ~ArenaStringTable() override;
  ArenaStringTable(const ArenaStringTable&) = delete;
  ArenaStringTable& operator=(const ArenaStringTable&) = delete;

  std::string_view Text(std::uint32_t code) const override { return fTexts[code]; }
  std::uint32_t Size() const override { return static_cast<std::uint32_t>(fTexts.size()); }

  /// The code of a text, which is entered when it is new. Trailing blanks are no part of a text.
  std::uint32_t Enter(std::string_view text);
  /// The same for several texts at once, which is faster. Each may be changed: trailing blanks go.
  void Enter(std::string_view* texts, std::size_t count, std::uint32_t* codes);
  /// Begins anew; memory is kept.
  void Clear();
  /// Bytes of the longest text, 0 when there is none.
  std::size_t longestText() const { return fLongestText; }

 private:
  /// What stands for a text: its characters when there are at most eight of them, else a hash.
  struct Key {
    std::uint64_t word = 0;
    std::uint32_t size = 0;  // of the text, at most UINT32_MAX

    bool operator==(const Key& other) const { return word == other.word && size == other.size; }
  };
  struct Slot {
    Key key;
    std::uint32_t code = kFree;
  };
  static constexpr std::uint32_t kFree = UINT32_MAX;

  static Key KeyOf(std::string_view text);
  static std::size_t HashOf(const Key& key);
  std::uint32_t Find(std::string_view text, const Key& key);

  std::string_view Store(std::string_view text);
  void Grow();

  std::vector<std::string_view> fTexts;
  std::vector<Slot> fSlots;  // a power of two, at most half of them taken
  std::vector<std::unique_ptr<char[]>> fArena;
  char* fFree = nullptr;
  std::size_t fFreeBytes = 0;
  std::size_t fLastBlockBytes = 0;
  std::size_t fLongestText = 0;
};

}  // namespace runtime::data
