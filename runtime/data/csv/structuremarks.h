// Where cells, lines and quotes may end in a stretch of text, found many bytes at a time.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

#include "runtime/data/csv/csvdialect.h"

namespace runtime::data {

/// Marks of a window of text, 64 bytes a word, the first byte in the lowest bit. Nothing is known here of what stands
/// within quotes: whoever walks the marks leaves out what does.
struct StructureMarks {
  static constexpr std::size_t kBytesOfWord = 64;

  std::vector<std::uint64_t> cellEnds;  // delimiters and line ends; of a CRLF only the CR
  std::vector<std::uint64_t> lineEnds;  // CR, LF; of a CRLF only the CR
  std::vector<std::uint64_t> quotes;
  std::vector<std::uint64_t> openings;  // quotes that stand right behind a delimiter or line end
  std::size_t begin = 0;                // of the window: position in the text
  std::size_t words = 0;                // that are marked, 0: no window yet
  bool hasNonAscii = false;             // some byte of the window is 0x80 or above
  bool hasQuotes = false;

  // Of a window without a quote, the same as lists.
  std::vector<std::uint32_t> cellEndPlaces;   // from the begin of the window
  std::vector<std::uint32_t> lineEndIndices;  // of the cell ends that are line ends, in cellEndPlaces
  std::size_t cellEndCount = 0;
  std::size_t lineEndCount = 0;

  /// Behind the window.
  std::size_t end() const { return begin + words * kBytesOfWord; }
};

/// Makes marks with the widest vectors that the machine has.
class StructureMarker {
 public:
  /// `mostWords` is the size of a window.
  StructureMarker(std::string_view text, const CsvDialect& dialect, std::size_t mostWords);

  /// Marks the window that begins at `begin`; with `atRecord` a record begins there, whatever stands before. Behind the
  /// last byte of the text a line end is marked, as if one stood there; what is in memory from there on does not count.
  /// REQUIRES: begin <= text.size().
  void Mark(std::size_t begin, bool atRecord, StructureMarks& marks) const;

 private:
  std::string_view fText;
  char fDelimiter;
  char fQuote;
  bool fHasQuotes;
  std::size_t fMostWords;
};

}  // namespace runtime::data
