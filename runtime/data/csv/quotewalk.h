// What stands within quotes, word by word of marks.
#pragma once

#include <cstdint>

#include "runtime/data/csv/bitsofword.h"

namespace runtime::data {

/// Passes over the quotes of one record, all as long as they stand as they should: an opening quote first in its cell,
/// a closing one last, and no doubled ones. What is odd is told for the caller to look at.
class QuoteWalk {
 public:
  explicit QuoteWalk(bool doubleQuote) : fDoubleQuote(doubleQuote) {}

  /// Goes to a word, or to a place in it where no quote is open: `quotes` are those from there on.
  void EnterAt(std::uint64_t quotes) {
    fQuotes = quotes;
    fInside = 0;
    fClosed = false;
  }
  /// Leaves a word behind: isInside() is now whether it ended within quotes.
  void Leave() {
    const std::uint64_t within = Within();
    fClosed = ((fQuotes & ~within) >> 63) != 0;
    fInside = (within >> 63) != 0 ? ~std::uint64_t{0} : 0;
    fQuotes = 0;
  }
  /// Goes on to the next word.
  void GoOn(std::uint64_t quotes) { fQuotes = quotes; }
  /// Takes the lowest of `oddities` for a character like others.
  void LeaveOut(std::uint64_t oddities) { fQuotes &= ~LowestBit(oddities); }

  /// Whether quotes matter in this word at all.
  bool concernsWord() const { return (fQuotes | fInside) != 0 || fClosed; }
  /// Whether a quote was open before this word.
  bool isInside() const { return fInside != 0; }

  /// The bytes from an opening quote to before its closing one.
  std::uint64_t Within() const { return PrefixXor(fQuotes) ^ fInside; }
  /// The quotes that open where no cell begins: they are characters like others.
  std::uint64_t Stray(std::uint64_t within, std::uint64_t openings) const {
    return fQuotes & within & ~openings & ~BehindQuote();
  }
  /// The quotes that make a cell read differently than it stands: doubled ones, and closing ones with something behind.
  std::uint64_t Special(std::uint64_t within, std::uint64_t cellEnds) const {
    const std::uint64_t mayFollow = MayFollow(cellEnds) >> 1 | std::uint64_t{1} << 63;
    return (fQuotes & within & BehindQuote()) | (fQuotes & ~within & ~mayFollow);
  }
  /// Something stands behind a closing quote at the end of the word before.
  bool IsSpecialBefore(std::uint64_t cellEnds) const { return fClosed && (MayFollow(cellEnds) & 1) == 0; }

 private:
  std::uint64_t BehindQuote() const { return fQuotes << 1 | (fClosed ? 1 : 0); }
  std::uint64_t MayFollow(std::uint64_t cellEnds) const { return cellEnds | (fDoubleQuote ? fQuotes : 0); }

  bool fDoubleQuote;
  std::uint64_t fQuotes = 0;
  std::uint64_t fInside = 0;  // all bits when the word begins within quotes
  bool fClosed = false;       // the last byte of the word before is a closing quote
};

}  // namespace runtime::data
