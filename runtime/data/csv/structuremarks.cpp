#include "runtime/data/csv/structuremarks.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "runtime/data/csv/structuremarks.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#ifndef RUNTIME_DATA_CSV_STRUCTUREMARKS_ONCE
#define RUNTIME_DATA_CSV_STRUCTUREMARKS_ONCE
namespace runtime::data {

struct EndCounts {
  std::size_t cellEnds;
  std::size_t lineEnds;
};

}  // namespace runtime::data
#endif

HWY_BEFORE_NAMESPACE();
namespace runtime::data {
namespace HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

#if HWY_TARGET == HWY_SCALAR

/// Bits of eight bytes, for a machine without vectors.
std::uint8_t MarkEight(const std::uint8_t* text, std::uint8_t character) {
  std::uint8_t bits = 0;
  for (unsigned i = 0; i < 8; ++i) bits = static_cast<std::uint8_t>(bits | (text[i] == character ? 1U << i : 0U));
  return bits;
}

bool MarkBytes(const std::uint8_t* text, std::size_t words, std::uint8_t delimiter, std::uint8_t quote,
               std::uint8_t* delimiters, std::uint8_t* lineFeeds, std::uint8_t* carriageReturns, std::uint8_t* quotes) {
  std::uint8_t seen = 0;
  for (std::size_t at = 0; at < words * 64; at += 8) {
    for (std::size_t i = 0; i < 8; ++i) seen = static_cast<std::uint8_t>(seen | text[at + i]);
    delimiters[at / 8] = MarkEight(text + at, delimiter);
    lineFeeds[at / 8] = MarkEight(text + at, '\n');
    carriageReturns[at / 8] = MarkEight(text + at, '\r');
    quotes[at / 8] = MarkEight(text + at, quote);
  }
  return seen >= 0x80;
}

#else

/// Writes a bit a byte for `words` times 64 bytes; whether any byte is 0x80 or above.
bool MarkBytes(const std::uint8_t* HWY_RESTRICT text, std::size_t words, std::uint8_t delimiter, std::uint8_t quote,
               std::uint8_t* HWY_RESTRICT delimiters, std::uint8_t* HWY_RESTRICT lineFeeds,
               std::uint8_t* HWY_RESTRICT carriageReturns, std::uint8_t* HWY_RESTRICT quotes) {
  const hn::CappedTag<std::uint8_t, 64> d;
  const std::size_t lanes = hn::Lanes(d);
  const auto isDelimiter = hn::Set(d, delimiter);
  const auto isQuote = hn::Set(d, quote);
  const auto isLineFeed = hn::Set(d, std::uint8_t{'\n'});
  const auto isCarriageReturn = hn::Set(d, std::uint8_t{'\r'});
  auto seen = hn::Zero(d);
  for (std::size_t at = 0; at < words * 64; at += lanes) {
    const auto bytes = hn::LoadU(d, text + at);
    seen = hn::Or(seen, bytes);
    hn::StoreMaskBits(d, hn::Eq(bytes, isDelimiter), delimiters + at / 8);
    hn::StoreMaskBits(d, hn::Eq(bytes, isLineFeed), lineFeeds + at / 8);
    hn::StoreMaskBits(d, hn::Eq(bytes, isCarriageReturn), carriageReturns + at / 8);
    hn::StoreMaskBits(d, hn::Eq(bytes, isQuote), quotes + at / 8);
  }
  return !hn::AllTrue(d, hn::Lt(seen, hn::Set(d, std::uint8_t{0x80})));
}

#endif  // of a machine with vectors

/// Lists the places of the set bits of `cellEnds` and which of them are set in `lineEnds` too; how many there are. May
/// write a vector more of places.
EndCounts ListEnds(const std::uint64_t* HWY_RESTRICT cellEnds, const std::uint64_t* HWY_RESTRICT lineEnds,
                   std::size_t words, std::uint32_t* HWY_RESTRICT places, std::uint32_t* HWY_RESTRICT lines) {
  const hn::CappedTag<std::uint32_t, 16> d;
  const std::size_t lanes = hn::Lanes(d);
  const std::uint64_t bitsOfVector = (std::uint64_t{1} << lanes) - 1;
  const auto iota = hn::Iota(d, 0);
  std::uint32_t* const firstPlace = places;
  std::uint32_t* const firstLine = lines;
  for (std::size_t word = 0; word < words; ++word) {
    const auto before = static_cast<std::uint32_t>(places - firstPlace);
    for (std::uint64_t lineBits = lineEnds[word]; lineBits != 0; lineBits &= lineBits - 1)
      *lines++ = before + static_cast<std::uint32_t>(hwy::PopCount(cellEnds[word] & (lineBits ^ (lineBits - 1)))) - 1;
    for (std::size_t bit = 0; bit < 64; bit += lanes) {
      const std::uint64_t bits = cellEnds[word] >> bit & bitsOfVector;
      std::uint8_t bytes[8];
      std::memcpy(bytes, &bits, sizeof bytes);
      const auto ends = hn::LoadMaskBits(d, bytes);
      hn::StoreU(hn::Compress(hn::Add(iota, hn::Set(d, static_cast<std::uint32_t>(word * 64 + bit))), ends), d, places);
      places += hwy::PopCount(bits);
    }
  }
  return {static_cast<std::size_t>(places - firstPlace), static_cast<std::size_t>(lines - firstLine)};
}

}  // namespace HWY_NAMESPACE
}  // namespace runtime::data
HWY_AFTER_NAMESPACE();

#if HWY_ONCE

namespace runtime::data {

HWY_EXPORT(MarkBytes);
HWY_EXPORT(ListEnds);

namespace {

// A byte of marks stands for the eight bytes of text at the same place.
static_assert(std::endian::native == std::endian::little);

std::uint8_t* BytesOf(std::vector<std::uint64_t>& words, std::size_t word) {
  return reinterpret_cast<std::uint8_t*>(words.data() + word);
}

}  // namespace

StructureMarker::StructureMarker(std::string_view text, const CsvDialect& dialect, std::size_t mostWords)
    : fText(text),
      fDelimiter(dialect.delimiter),
      fQuote(dialect.quote),
      fHasQuotes(dialect.quote != '\0'),
      fMostWords(mostWords) {}

void StructureMarker::Mark(std::size_t begin, bool atRecord, StructureMarks& marks) const {
  constexpr std::size_t kBytes = StructureMarks::kBytesOfWord;
  for (auto* words : {&marks.cellEnds, &marks.lineEnds, &marks.quotes, &marks.openings}) words->resize(fMostWords);
  const std::size_t left = fText.size() - begin;
  const std::size_t whole = std::min(fMostWords, left / kBytes);
  marks.begin = begin;
  marks.words = std::min(fMostWords, left / kBytes + 1);

  // The line feeds go where the openings will stand, so that no other memory is needed.
  const auto mark = [this, &marks](const char* text, std::size_t word, std::size_t words) {
    return HWY_DYNAMIC_DISPATCH(MarkBytes)(reinterpret_cast<const std::uint8_t*>(text), words,
                                           static_cast<std::uint8_t>(fDelimiter), static_cast<std::uint8_t>(fQuote),
                                           BytesOf(marks.cellEnds, word), BytesOf(marks.openings, word),
                                           BytesOf(marks.lineEnds, word), BytesOf(marks.quotes, word));
  };
  marks.hasNonAscii = mark(fText.data() + begin, 0, whole);
  if (whole < marks.words) {
    std::array<char, kBytes> last{};
    const std::size_t tail = left - whole * kBytes;
    std::memcpy(last.data(), fText.data() + begin + whole * kBytes, tail);
    last[tail] = '\n';
    marks.hasNonAscii = mark(last.data(), whole, 1) || marks.hasNonAscii;
  }

  const char before = atRecord ? '\n' : fText[begin - 1];
  std::uint64_t behindCarriageReturn = before == '\r' ? 1 : 0;
  std::uint64_t behindEnd = before == '\r' || before == '\n' || before == fDelimiter ? 1 : 0;
  const std::uint64_t counted = fHasQuotes ? ~std::uint64_t{0} : 0;
  std::uint64_t anyQuotes = 0;
  for (std::size_t word = 0; word < marks.words; ++word) {
    const std::uint64_t carriageReturns = marks.lineEnds[word];
    const std::uint64_t lineFeeds = marks.openings[word];
    const std::uint64_t ends = marks.cellEnds[word] | carriageReturns | lineFeeds;
    const std::uint64_t quotes = marks.quotes[word] & counted;
    const std::uint64_t secondOfTwo = lineFeeds & (carriageReturns << 1 | behindCarriageReturn);
    marks.cellEnds[word] = ends & ~secondOfTwo;
    marks.lineEnds[word] = (carriageReturns | lineFeeds) & ~secondOfTwo;
    marks.quotes[word] = quotes;
    anyQuotes |= quotes;
    marks.openings[word] = quotes & (ends << 1 | behindEnd);
    behindCarriageReturn = carriageReturns >> 63;
    behindEnd = ends >> 63;
  }
  marks.hasQuotes = anyQuotes != 0;
  if (marks.hasQuotes) return;
  constexpr std::size_t kMostLanes = 16;
  marks.cellEndPlaces.resize(fMostWords * kBytes + kMostLanes);
  marks.lineEndIndices.resize(fMostWords * kBytes);
  const EndCounts counts = HWY_DYNAMIC_DISPATCH(ListEnds)(marks.cellEnds.data(), marks.lineEnds.data(), marks.words,
                                                          marks.cellEndPlaces.data(), marks.lineEndIndices.data());
  marks.cellEndCount = counts.cellEnds;
  marks.lineEndCount = counts.lineEnds;
}

}  // namespace runtime::data

#endif
