#include "runtime/data/csv/structuremarks.h"

#include <random>
#include <set>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "runtime/data/csv/vectortargets.h"

namespace runtime::data {
namespace {

std::vector<std::size_t> PlacesOf(const std::vector<std::uint64_t>& words, std::size_t count) {
  std::vector<std::size_t> places;
  for (std::size_t at = 0; at < count * 64; ++at)
    if ((words[at / 64] >> at % 64 & 1) != 0) places.push_back(at);
  return places;
}

/// By the definitions, a byte after the other.
struct Expected {
  std::vector<std::size_t> cellEnds;
  std::vector<std::size_t> lineEnds;
  std::vector<std::size_t> quotes;
  std::vector<std::size_t> openings;
  bool hasNonAscii = false;
};

Expected MarkPlainly(const std::string& text, const CsvDialect& dialect, std::size_t begin, bool atRecord,
                     std::size_t bytes) {
  Expected expected;
  char before = atRecord ? '\n' : text[begin - 1];
  for (std::size_t at = begin; at <= text.size() && at - begin < bytes; ++at) {
    const char c = at == text.size() ? '\n' : text[at];
    const std::size_t place = at - begin;
    const bool isSecondOfTwo = c == '\n' && before == '\r';
    const bool endsLine = c == '\n' || c == '\r';
    if ((endsLine || c == dialect.delimiter) && !isSecondOfTwo) expected.cellEnds.push_back(place);
    if (endsLine && !isSecondOfTwo) expected.lineEnds.push_back(place);
    if (dialect.quote != '\0' && c == dialect.quote) {
      expected.quotes.push_back(place);
      if (before == '\n' || before == '\r' || before == dialect.delimiter) expected.openings.push_back(place);
    }
    expected.hasNonAscii = expected.hasNonAscii || static_cast<unsigned char>(c) >= 0x80;
    before = c;
  }
  return expected;
}

void ExpectAsDefined(const std::string& text, const CsvDialect& dialect, std::size_t begin, bool atRecord,
                     std::size_t mostWords) {
  StructureMarks marks;
  StructureMarker(text, dialect, mostWords).Mark(begin, atRecord, marks);
  ASSERT_EQ(marks.begin, begin);
  ASSERT_EQ(marks.words, std::min(mostWords, (text.size() - begin) / 64 + 1));
  const Expected expected = MarkPlainly(text, dialect, begin, atRecord, marks.words * 64);
  ASSERT_EQ(PlacesOf(marks.cellEnds, marks.words), expected.cellEnds);
  ASSERT_EQ(PlacesOf(marks.lineEnds, marks.words), expected.lineEnds);
  ASSERT_EQ(PlacesOf(marks.quotes, marks.words), expected.quotes);
  ASSERT_EQ(PlacesOf(marks.openings, marks.words), expected.openings);
  ASSERT_EQ(marks.hasNonAscii, expected.hasNonAscii);
  ASSERT_EQ(marks.hasQuotes, !expected.quotes.empty());
  if (marks.hasQuotes) return;
  ASSERT_EQ(std::vector<std::size_t>(marks.cellEndPlaces.begin(),
                                     marks.cellEndPlaces.begin() + static_cast<std::ptrdiff_t>(marks.cellEndCount)),
            expected.cellEnds);
  std::vector<std::size_t> lines;
  for (std::size_t line = 0; line < marks.lineEndCount; ++line)
    lines.push_back(marks.cellEndPlaces[marks.lineEndIndices[line]]);
  ASSERT_EQ(lines, expected.lineEnds);
}

TEST(StructureMarks, areAsDefinedWithEveryKindOfVector) {
  std::set<std::string> targets;
  WithEachVectorTarget([&targets](const char* target) {
    SCOPED_TRACE(target);
    targets.insert(target);
    std::mt19937 random(3);
    for (int round = 0; round < 2'000; ++round) {
      CsvDialect dialect;
      dialect.delimiter = ",;\t"[random() % 3];
      if (random() % 5 == 0) dialect.quote = '\0';
      const std::string letters = random() % 2 == 0 ? "ab\n\r,;\t" : "ab\n\r,;\"\"\t\r\xC3";
      std::string text;
      for (auto length = random() % 300; length > 0; --length) text += letters[random() % letters.size()];
      if (random() % 5 == 0) text += '\0';
      const std::size_t begin = random() % (text.size() + 1);
      ExpectAsDefined(text, dialect, begin, begin == 0 || random() % 2 == 0, 1 + random() % 5);
      if (HasFatalFailure()) return;
    }
  });
  EXPECT_GE(targets.size(), 1U);
}

}  // namespace
}  // namespace runtime::data
