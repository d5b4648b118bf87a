#include "runtime/data/store/stringtable.h"

#include <algorithm>
#include <cstring>

namespace runtime::data {

namespace {

constexpr std::size_t kArenaBytes = std::size_t{64} * 1024;
constexpr std::size_t kFirstSlots = 16;
constexpr std::size_t kWordBytes = 8;

template <typename Word>
std::uint64_t ReadAs(const char* bytes) {
  Word word;
  std::memcpy(&word, bytes, sizeof word);
  return word;
}

/// Up to eight bytes as one word, another one for all other bytes of that number. Two reads that overlap spare a loop.
std::uint64_t ReadWord(const char* bytes, std::size_t count) {
  if (count >= 4) return ReadAs<std::uint32_t>(bytes) | ReadAs<std::uint32_t>(bytes + count - 4) << 32;
  if (count == 0) return 0;
  const std::uint64_t middle = static_cast<std::uint8_t>(bytes[count / 2]);
  const std::uint64_t last = static_cast<std::uint8_t>(bytes[count - 1]);
  return static_cast<std::uint8_t>(bytes[0]) | middle << 8 | last << 16;
}

std::uint64_t Mix(std::uint64_t a, std::uint64_t b) {
  __extension__ using Wide = unsigned __int128;
  const Wide product = static_cast<Wide>(a) * b;
  return static_cast<std::uint64_t>(product) ^ static_cast<std::uint64_t>(product >> 64);
}

/// Multiply-and-fold over words of eight bytes.
std::uint64_t HashOfLong(std::string_view text) {
  constexpr std::uint64_t kFirst = 0x9E3779B97F4A7C15U;
  constexpr std::uint64_t kSecond = 0xD6E8FEB86659FD93U;
  std::uint64_t hash = kFirst ^ text.size();
  const char* at = text.data();
  std::size_t left = text.size();
  for (; left >= 8; at += 8, left -= 8) hash = Mix(hash ^ ReadWord(at, 8), kSecond);
  if (left > 0) hash = Mix(hash ^ ReadWord(at, left), kSecond);
  return Mix(hash, kFirst);
}

std::string_view WithoutTrailingBlanks(std::string_view text) {
  while (!text.empty() && text.back() == ' ') text.remove_suffix(1);
  return text;
}

}  // namespace

ArenaStringTable::ArenaStringTable() : fSlots(kFirstSlots) {}
ArenaStringTable::~ArenaStringTable() = default;

void ArenaStringTable::Clear() {
  std::fill(fSlots.begin(), fSlots.end(), Slot());
  fTexts.clear();
  fLongestText = 0;
  if (fArena.empty()) return;
  fArena.erase(fArena.begin(), fArena.end() - 1);
  fFree = fArena.back().get();
  fFreeBytes = fLastBlockBytes;
}

ArenaStringTable::Key ArenaStringTable::KeyOf(std::string_view text) {
  const auto size = static_cast<std::uint32_t>(std::min<std::size_t>(text.size(), UINT32_MAX));
  return {size <= kWordBytes ? ReadWord(text.data(), size) : HashOfLong(text), size};
}

std::size_t ArenaStringTable::HashOf(const Key& key) { return Mix(key.word ^ key.size, 0x9E3779B97F4A7C15U); }

std::uint32_t ArenaStringTable::Find(std::string_view text, const Key& key) {
  const std::size_t mask = fSlots.size() - 1;
  std::size_t at = HashOf(key) & mask;
  for (; fSlots[at].code != kFree; at = (at + 1) & mask)
    if (fSlots[at].key == key && (key.size <= kWordBytes || fTexts[fSlots[at].code] == text)) return fSlots[at].code;

  const auto code = static_cast<std::uint32_t>(fTexts.size());
  fTexts.push_back(Store(text));
  fSlots[at] = {key, code};
  fLongestText = std::max(fLongestText, text.size());
  if (fTexts.size() * 2 > fSlots.size()) Grow();
  return code;
}

std::uint32_t ArenaStringTable::Enter(std::string_view text) {
  text = WithoutTrailingBlanks(text);
  return Find(text, KeyOf(text));
}

void ArenaStringTable::Enter(std::string_view* texts, std::size_t count, std::uint32_t* codes) {
  constexpr std::size_t kBatch = 32;
  Key keys[kBatch];
  while (count > 0) {
    const std::size_t taken = std::min(count, kBatch);
    // The slots are fetched for all texts before the first one is needed.
    for (std::size_t i = 0; i < taken; ++i) {
      texts[i] = WithoutTrailingBlanks(texts[i]);
      keys[i] = KeyOf(texts[i]);
      __builtin_prefetch(&fSlots[HashOf(keys[i]) & (fSlots.size() - 1)]);
    }
    for (std::size_t i = 0; i < taken; ++i) codes[i] = Find(texts[i], keys[i]);
    texts += taken;
    codes += taken;
    count -= taken;
  }
}

std::string_view ArenaStringTable::Store(std::string_view text) {
  if (text.empty()) return {};
  if (text.size() > fFreeBytes) {
    // Small columns pay for what they hold, large ones for few allocations.
    const std::size_t bytes = std::max(text.size(), std::min(kArenaBytes, std::size_t{256} << fArena.size()));
    fArena.push_back(std::make_unique_for_overwrite<char[]>(bytes));
    fFree = fArena.back().get();
    fFreeBytes = fLastBlockBytes = bytes;
  }
  std::memcpy(fFree, text.data(), text.size());
  const std::string_view stored(fFree, text.size());
  fFree += text.size();
  fFreeBytes -= text.size();
  return stored;
}

void ArenaStringTable::Grow() {
  std::vector<Slot> slots(fSlots.size() * 2);
  const std::size_t mask = slots.size() - 1;
  for (const Slot& slot : fSlots) {
    if (slot.code == kFree) continue;
    std::size_t at = HashOf(slot.key) & mask;
    while (slots[at].code != kFree) at = (at + 1) & mask;
    slots[at] = slot;
  }
  fSlots = std::move(slots);
}

}  // namespace runtime::data
