#include "runtime/data/csv/segmentscanner.h"

#include <cstring>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "runtime/data/csv/headerrecord.h"
#include "runtime/data/csv/recordscanner.h"

namespace runtime::data {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

/// A text with as many bytes behind it as must be readable, and not one more. They look like structure, so that
/// whoever takes them for text goes wrong.
class PaddedText {
 public:
  explicit PaddedText(std::string_view text)
      : fBytes(new char[text.size() + CellBlock::kReadAhead]), fSize(text.size()) {
    std::memcpy(fBytes.get(), text.data(), text.size());
    for (std::size_t i = 0; i < CellBlock::kReadAhead; ++i) fBytes[text.size() + i] = "\"\n,\r"[i % 4];
  }
  std::string_view text() const { return {fBytes.get(), fSize}; }

 private:
  std::unique_ptr<char[]> fBytes;
  std::size_t fSize;
};

struct Table {
  std::vector<std::string> headers;
  std::vector<std::vector<std::string>> rows;
  std::vector<std::int64_t> lines;  // from 1
  std::vector<std::string> notes;
  std::string error;  // nothing else is there when it is not empty
};

void PrintTo(const Table& table, std::ostream* out) {
  *out << testing::PrintToString(table.headers) << testing::PrintToString(table.rows)
       << testing::PrintToString(table.lines) << testing::PrintToString(table.notes) << table.error;
}

bool operator==(const Table& one, const Table& other) {
  return one.headers == other.headers && one.rows == other.rows && one.lines == other.lines &&
         one.notes == other.notes && one.error == other.error;
}

/// How the text is divided, and into blocks of what size.
struct Division {
  std::vector<std::size_t> cuts;  // ascending positions in the text, where segments are supposed to begin
  ScanLimits limits;
};

/// What happened on the way.
struct Course {
  int wrongGuesses = 0;
  int givenUp = 0;
};

/// The rows of a segment, appended, and its lines, behind `linesBefore` line ends.
void Take(SegmentScanner& scanner, std::int64_t linesBefore, Table& table) {
  CellBlock block;
  std::int64_t rows = 0;
  while (scanner.Next(block)) {
    EXPECT_EQ(block.firstRow, rows);
    rows += static_cast<std::int64_t>(block.rows);
    for (std::size_t row = 0; row < block.rows; ++row) {
      table.rows.emplace_back();
      for (std::size_t column = 0; column < block.columns; ++column) {
        const Cell& cell = block.cells[row * block.stride + column];
        if ((cell.size & Cell::kOwnText) == 0) {
          // Must be readable; the sanitizer sees to it.
          char ahead[CellBlock::kReadAhead];
          std::memcpy(ahead, block.text + cell.begin, sizeof ahead);
        }
        table.rows.back().emplace_back(block.Text(row, column));
      }
      table.lines.push_back(linesBefore + block.lines[row] + 1);
    }
  }
  EXPECT_EQ(rows, scanner.gaveUp() ? rows : scanner.findings().rows);
}

/// As the reader works: all segments are scanned from a guessed begin, and once more where the guess proves wrong.
Table ReadSegments(std::string_view text, const CsvDialect& dialect, bool strict, const Division& division,
                   Course* course = nullptr) {
  Table table;
  try {
    const HeaderRecord header = ReadHeaderRecord(text, dialect, "x.csv");
    const std::size_t columns = header.names.size();
    table.headers = header.names;
    std::vector<std::size_t> begins = {header.rowsBegin};
    for (const std::size_t cut : division.cuts) {
      const std::size_t guess = GuessRecordBegin(text, std::max(cut, header.rowsBegin));
      if (guess > begins.back()) begins.push_back(guess);
    }
    if (begins.size() > 1 && begins.back() == text.size()) begins.pop_back();
    begins.push_back(text.size());

    ScanFindings all = header.findings;
    std::size_t proven = header.rowsBegin;
    SegmentScanner scanner(text, dialect, columns, division.limits);
    for (std::size_t segment = 0; segment + 1 < begins.size() && !all.unclosedQuote; ++segment) {
      const std::size_t end = begins[segment + 1];
      Table rows;
      scanner.Begin(begins[segment], end, SegmentScanner::BeginIs::Guessed);
      Take(scanner, all.lineEnds, rows);
      if (begins[segment] != proven || scanner.gaveUp()) {
        if (course != nullptr) {
          course->wrongGuesses += begins[segment] != proven ? 1 : 0;
          course->givenUp += scanner.gaveUp() ? 1 : 0;
        }
        rows = {};
        scanner.Begin(proven, std::max(end, proven));
        Take(scanner, all.lineEnds, rows);
        EXPECT_FALSE(scanner.gaveUp());
      }
      proven = scanner.position();
      EXPECT_TRUE(proven >= end || scanner.findings().unclosedQuote);
      all.Append(scanner.findings());
      for (std::size_t row = 0; row < rows.rows.size(); ++row) {
        table.rows.push_back(std::move(rows.rows[row]));
        table.lines.push_back(rows.lines[row]);
      }
    }
    all.ThrowFirstError("x.csv", columns, strict);
    EXPECT_EQ(all.rows, static_cast<std::int64_t>(table.rows.size()));
    std::vector<Note> notes;
    all.Report("x.csv", columns, notes);
    for (const Note& note : notes) table.notes.push_back(note.text);
  } catch (const DataError& error) {
    table = {};
    table.error = error.what();
  }
  return table;
}

/// By the rules, a record after the other.
Table ReadPlainly(std::string_view text, const CsvDialect& dialect, bool strict) {
  Table table;
  try {
    const HeaderRecord header = ReadHeaderRecord(text, dialect, "x.csv");
    const std::size_t columns = header.names.size();
    table.headers = header.names;
    RecordScanner scanner(text, dialect);
    ScanFindings found;
    std::vector<std::string_view> cells;
    bool isHeader = dialect.header;
    for (; scanner.Next(cells); cells.clear()) {
      found.lineEnds = scanner.line() - 1;
      if (isHeader) {
        isHeader = scanner.lineIsBlank();
        continue;
      }
      if (scanner.lineIsBlank() && columns > 1) {
        found.NoteBlankLine();
        continue;
      }
      found.NoteRow();
      if (cells.size() != columns) found.NoteRagged(scanner.line() - 1, cells.size(), columns);
      cells.resize(columns);
      table.rows.emplace_back(cells.begin(), cells.end());
      table.lines.push_back(scanner.line());
    }
    found.textsBehindQuotes = scanner.cellsWithTextBehindQuote();
    found.firstTextBehindQuote = {scanner.firstTextBehindQuote().line - 1, scanner.firstTextBehindQuote().cell};
    if (const auto& quote = scanner.unclosedQuote()) found.unclosedQuote = {quote->line - 1, quote->cell};
    found.ThrowFirstError("x.csv", columns, strict);
    std::vector<Note> notes;
    found.Report("x.csv", columns, notes);
    for (const Note& note : notes) table.notes.push_back(note.text);
  } catch (const DataError& error) {
    table = {};
    table.error = error.what();
  }
  return table;
}

Table Read(std::string_view text, bool strict = false, const CsvDialect& dialect = {}) {
  ScanLimits limits;
  limits.rows = 2;
  const PaddedText padded(text);
  return ReadSegments(padded.text(), dialect, strict, {{}, limits});
}

std::string ErrorOf(std::string_view text, bool strict = false) { return Read(text, strict).error; }

TEST(Rows, thatAreTooShortAreFilledUpAndTold) {
  const Table table = Read("a,b,c\n1\n1,2,3\n1,2\n");
  EXPECT_EQ(table.rows[0], (std::vector<std::string>{"1", "", ""}));
  EXPECT_EQ(table.rows[2], (std::vector<std::string>{"1", "2", ""}));
  EXPECT_THAT(
      table.notes,
      ElementsAre("x.csv:2: 2 rows have fewer cells than the 3 columns; the cells that are not there are read as "
                  "empty: row 1 (line 2) has 1, row 3 (line 4) has 2"));
}

TEST(Rows, thatAreTooLongLoseTheRestAndAreTold) {
  const Table table = Read("a,b\n1,2,3\n4,5\n6,7,8,9\n1,1,1\n1,1,1\n");
  EXPECT_EQ(table.rows[0], (std::vector<std::string>{"1", "2"}));
  EXPECT_THAT(table.notes,
              ElementsAre("x.csv:2: 4 rows have more cells than the 2 columns; the cells past the last are left out: "
                          "row 1 (line 2) has 3, row 3 (line 4) has 4, row 4 (line 5) has 3, ..."));
}

TEST(Rows, ofAWrongLengthAreAnErrorWhenStrict) {
  EXPECT_EQ(ErrorOf("a,b\n1,2\n\"x\ny\"\n1,2,3\n", true),
            "x.csv:3: row 2 has 1 cell where there are 2 columns; mend the row, or run without --strict");
  EXPECT_EQ(ErrorOf("a,b\n1,2\n1,2,3\n1\n", true),
            "x.csv:3: row 2 has 3 cells where there are 2 columns; mend the row, or run without --strict");
  EXPECT_EQ(ErrorOf("a\n1,2\n", true),
            "x.csv:2: row 1 has 2 cells where there are 1 column; mend the row, or run without --strict");
  EXPECT_EQ(ErrorOf("a,b\n1\n\"", true),
            "x.csv:2: row 1 has 1 cell where there are 2 columns; mend the row, or run without --strict");
}

TEST(BlankLines, arePassedOverWhenThereAreSeveralColumns) {
  const Table table = Read("\n\r\na,b\n\n1,2\n\n\n3,4\n\n\n");
  EXPECT_THAT(table.headers, ElementsAre("a", "b"));
  EXPECT_EQ(table.rows.size(), 2U);
  EXPECT_THAT(table.lines, ElementsAre(5, 8));
  EXPECT_THAT(table.notes, ElementsAre("x.csv:4: 3 blank lines among the rows were passed over"));
}

TEST(BlankLines, atTheEndAreNotWorthAWord) {
  EXPECT_TRUE(Read("a,b\n1,2\n\n\n").notes.empty());
  EXPECT_TRUE(Read("a,b\n1,2\n\n\n", true).notes.empty());
}

TEST(BlankLines, areEmptyCellsOfAnOnlyColumn) {
  const Table table = Read("a\n1\n\n2\n\n");
  EXPECT_EQ(table.rows, (std::vector<std::vector<std::string>>{{"1"}, {""}, {"2"}, {""}}));
  EXPECT_TRUE(table.notes.empty());
}

TEST(BlankLines, areNotLinesWithQuotesOrBlanks) {
  EXPECT_EQ(Read("a,b\n\"\"\n").rows.size(), 1U);
  EXPECT_EQ(Read("a,b\n \n").rows.size(), 1U);
}

TEST(Header, isGivenAsItStands) {
  EXPECT_THAT(Read("a,,a, b ,\"c\nd\"\n").headers, ElementsAre("a", "", "a", " b ", "c\nd"));
}

TEST(Header, aloneMakesATableWithoutRows) {
  EXPECT_TRUE(Read("a,b").rows.empty());
  EXPECT_TRUE(Read("a,b\n").rows.empty());
}

TEST(Header, mayBeMissing) {
  CsvDialect dialect;
  dialect.header = false;
  const Table table = Read("1,2\n3,4\n", false, dialect);
  EXPECT_THAT(table.headers, ElementsAre("", ""));
  EXPECT_EQ(table.rows.size(), 2U);
  EXPECT_EQ(table.rows[0], (std::vector<std::string>{"1", "2"}));
  EXPECT_THAT(table.lines, ElementsAre(1, 2));
}

TEST(Text, withoutARecordIsNoTable) {
  EXPECT_EQ(ErrorOf("\n\r\n\n"), "x.csv: the file holds no record; a table has at least a header line");
}

TEST(Quotes, thatAreNeverClosedAreAnError) {
  EXPECT_EQ(ErrorOf("a,b\n1,\"2\n3,4\n"),
            "x.csv:2: the quote that opens cell 2 of this record is not closed before the end of the file");
  EXPECT_THAT(ErrorOf("\"a,b\n"), HasSubstr("x.csv:1: the quote that opens cell 1"));
}

TEST(Quotes, withTextBehindThemAreTold) {
  const Table table = Read("a,b\n1,\"2\"x\n");
  EXPECT_EQ(table.rows[0][1], "2x");
  EXPECT_THAT(table.notes, ElementsAre("x.csv:2: 1 cell has text behind the closing quote (the first is cell 2 of its "
                                       "record); it is taken as part of the cell"));
}

TEST(Quotes, inTheHeaderWithTextBehindThemAreTold) {
  EXPECT_THAT(Read("\"a\nb\"c,\"d\"e\n1,\"2\"3\n").notes,
              ElementsAre(HasSubstr("x.csv:2: 3 cells have text behind the closing quote (the first is cell 1 of")));
}

TEST(Cells, stayPlacesInTheTextUnlessTheyReadDifferently) {
  const PaddedText padded("1,\"a\nb\",\"\",\"c\"\"d\",\"e\"f,\"g\"  \n");
  SegmentScanner scanner(padded.text(), {}, 6);
  scanner.Begin(0, padded.text().size());
  CellBlock block;
  ASSERT_TRUE(scanner.Next(block));
  std::vector<bool> own;
  for (std::size_t column = 0; column < 6; ++column) own.push_back((block.cells[column].size & Cell::kOwnText) != 0);
  EXPECT_THAT(own, ElementsAre(false, false, false, true, true, false));
}

TEST(Cells, ofOneColumnSpreadOverTheCache) {
  for (const std::size_t columns : {1U, 2U, 5U, 8U, 9U, 20U, 64U, 500U, 512U, 1024U, 5000U, 32'768U}) {
    const PaddedText padded(std::string(columns - 1, ','));
    ScanLimits limits;
    limits.rows = 1;
    SegmentScanner scanner(padded.text(), {}, columns, limits);
    scanner.Begin(0, padded.text().size());
    CellBlock block;
    scanner.Next(block);
    EXPECT_GE(block.stride, columns);
    EXPECT_LT(block.stride, columns + 16);
    // 64 sets of a line each; 64 rows of a column may meet in none of them more than once, as far as rows are longer.
    std::vector<int> cellsOfSet(64);
    for (std::size_t row = 0; row < 64; ++row) ++cellsOfSet[row * block.stride * sizeof(Cell) / 64 % 64];
    if (columns > 8) {
      EXPECT_THAT(cellsOfSet, testing::Each(1)) << columns;
    }
  }
}

TEST(RecordBegin, isGuessedBehindTheNextLineEnd) {
  const std::string_view text = "ab\ncd\r\nef\rgh";
  std::vector<std::size_t> guesses;
  for (std::size_t at = 0; at <= text.size(); ++at) guesses.push_back(GuessRecordBegin(text, at));
  EXPECT_THAT(guesses, ElementsAre(3, 3, 3, 7, 7, 7, 7, 10, 10, 10, 12, 12, 12));
}

TEST(RecordBegin, isFoundHoweverFarItIs) {
  for (const std::size_t before : {4094U, 4095U, 4096U, 4097U, 10'000U}) {
    const std::string text(before, 'x');
    EXPECT_EQ(GuessRecordBegin(text, 0), before);
    EXPECT_EQ(GuessRecordBegin(text + "\n", 1), before + 1);
    EXPECT_EQ(GuessRecordBegin(text + "\r\n", 2), before + 2);
    EXPECT_EQ(GuessRecordBegin(text + "\ra\n", 3), before + 1);
  }
}

TEST(Segment, endsWithTheRecordThatBeginsInIt) {
  const PaddedText padded("1,2\n3,\"4\n5\"\n6,7\n");
  SegmentScanner scanner(padded.text(), {}, 2);
  Table table;
  scanner.Begin(0, 5);
  Take(scanner, 0, table);
  EXPECT_EQ(table.rows, (std::vector<std::vector<std::string>>{{"1", "2"}, {"3", "4\n5"}}));
  EXPECT_EQ(scanner.position(), 12U);
  EXPECT_EQ(scanner.findings().lineEnds, 3);
  scanner.Begin(12, padded.text().size());
  EXPECT_EQ(scanner.findings().rows, 0);
  Take(scanner, 3, table);
  EXPECT_THAT(table.lines, ElementsAre(1, 2, 4));
  EXPECT_EQ(scanner.position(), padded.text().size());
}

TEST(Segment, withoutAByteHasNoRows) {
  const PaddedText padded("1,2\n3,4\n");
  SegmentScanner scanner(padded.text(), {}, 2);
  CellBlock block;
  for (const std::size_t at : {0U, 4U, 8U}) {
    scanner.Begin(at, at);
    EXPECT_FALSE(scanner.Next(block));
    EXPECT_EQ(scanner.position(), at);
  }
}

TEST(Segment, isGivenUpWhenAQuoteBehindAGuessedBeginGoesFar) {
  std::string text = "1,\"2\n";
  text.append(5000, 'x');
  text += "\"\n";
  const PaddedText padded(text);
  ScanLimits limits;
  limits.guessedQuoteReach = 1000;
  limits.windowWords = 4;
  SegmentScanner scanner(padded.text(), {}, 2, limits);
  CellBlock block;
  scanner.Begin(0, text.size(), SegmentScanner::BeginIs::Guessed);
  EXPECT_FALSE(scanner.Next(block));
  EXPECT_TRUE(scanner.gaveUp());
  EXPECT_FALSE(scanner.Next(block));
  scanner.Begin(0, text.size());
  EXPECT_TRUE(scanner.Next(block));
  EXPECT_FALSE(scanner.gaveUp());
  EXPECT_EQ(block.Text(0, 1).size(), 5002U);
}

TEST(Segment, tellsOfBytesThatAreNotAscii) {
  std::string text;
  for (int row = 0; row < 5000; ++row) text += "abc,def\n";
  std::string accented = text;
  accented[36'000] = '\xE9';
  for (const std::string& each : {text, accented}) {
    const PaddedText padded(each);
    SegmentScanner scanner(padded.text(), {}, 2);
    CellBlock block;
    bool seen = false;
    for (std::size_t begin = 0; begin < each.size(); begin += 4000) {
      scanner.Begin(begin, begin + 4000);
      while (scanner.Next(block)) {
      }
      if (begin == 36'000) seen = scanner.sawNonAscii();
      // Not too early: a window before.
      if (begin < 18'000) {
        EXPECT_FALSE(scanner.sawNonAscii());
      }
    }
    EXPECT_EQ(seen, each == accented);
  }
}

std::string NastyText(std::mt19937& random, const CsvDialect& dialect) {
  const std::string quote(1, dialect.quote == '\0' ? '"' : dialect.quote);
  const std::string delimiter(1, dialect.delimiter);
  const std::vector<std::string> pieces = {"a",
                                           quote,
                                           quote + quote,
                                           delimiter,
                                           "\n",
                                           "\r",
                                           "\r\n",
                                           " ",
                                           "12",
                                           std::string(70, 'y'),
                                           delimiter + quote,
                                           quote + delimiter,
                                           "é",
                                           "\n\n",
                                           std::string(1, '\0'),
                                           quote + "\n"};
  const std::size_t favourites = 1 + random() % 4;
  std::vector<std::string> alphabet;
  for (std::size_t i = 0; i < favourites + 1; ++i) alphabet.push_back(pieces[random() % pieces.size()]);
  std::string text;
  const std::size_t length = random() % 4 == 0 ? random() % 400 : random() % 60;
  while (text.size() < length)
    text += random() % 8 == 0 ? pieces[random() % pieces.size()] : alphabet[random() % alphabet.size()];
  // Now and then a proper table, so that not all is ragged.
  if (random() % 3 == 0) {
    const std::size_t columns = 1 + random() % 4;
    text.clear();
    const std::size_t rows = random() % 30;
    for (std::size_t row = 0; row < rows; ++row) {
      for (std::size_t column = 0; column < columns; ++column) {
        if (column > 0) text += delimiter;
        const auto kind = random() % 6;
        if (kind == 0) text += quote + "x" + delimiter + "\r\n" + quote;
        if (kind == 1) text += quote + quote + quote + "y" + quote;
        if (kind == 2) text += quote + quote;
        if (kind == 3) text += std::string(random() % 64, 'z');
        if (kind == 4) text += "7";
      }
      text += row % 7 == 0 ? "\r\n" : "\n";
    }
    if (random() % 2 == 0 && !text.empty()) text.pop_back();
  }
  return text;
}

CsvDialect AnyDialect(std::mt19937& random) {
  CsvDialect dialect;
  dialect.delimiter = ",;\t| "[random() % 5];
  dialect.quote = "\"\"\"\"'"[random() % 5];
  if (random() % 10 == 0) dialect.quote = '\0';
  dialect.doubleQuote = random() % 6 != 0;
  dialect.header = random() % 4 != 0;
  dialect.skipInitialSpace = random() % 4 == 0;
  return dialect;
}

TEST(Scanning, agreesWithTheRulesOnNastyTextsHoweverTheyAreDivided) {
  std::mt19937 random(7);
  int tables = 0;
  int notes = 0;
  int errors = 0;
  Course course;
  for (int round = 0; round < 60'000; ++round) {
    const CsvDialect dialect = AnyDialect(random);
    const std::string text = NastyText(random, dialect);
    const bool strict = random() % 5 == 0;
    Division division;
    std::size_t cut = 0;
    const std::size_t most = 1 + random() % 100;
    while ((cut += random() % most) < text.size() && random() % 20 != 0) division.cuts.push_back(cut);
    division.limits.rows = 1 + random() % 4;
    division.limits.windowWords = 1 + random() % 3;
    if (random() % 3 == 0) division.limits.placeReach = 130 + random() % 300;
    if (random() % 3 == 0) division.limits.guessedQuoteReach = random() % 200;
    const Table expected = ReadPlainly(text, dialect, strict);
    const PaddedText padded(text);
    ASSERT_EQ(ReadSegments(padded.text(), dialect, strict, division, &course), expected)
        << "round " << round << ": " << testing::PrintToString(text);
    tables += expected.rows.size() > 1 ? 1 : 0;
    notes += static_cast<int>(expected.notes.size());
    errors += expected.error.empty() ? 0 : 1;
  }
  // The texts are of all kinds, so that this test says something.
  EXPECT_GT(tables, 20'000);
  EXPECT_GT(notes, 10'000);
  EXPECT_GT(errors, 5'000);
  EXPECT_GT(course.wrongGuesses, 5'000);
  EXPECT_GT(course.givenUp, 500);
}

TEST(Scanning, findsEveryKindOfByteAtEveryPlaceOfAWord) {
  for (const std::string special :
       {",", "\n", "\r", "\r\n", "\"\"", "\"x\"", "\"\n\"", ",\"", "\"\"\"\"", "\"a\"\"\",", "\"a\"b"}) {
    for (std::size_t before = 0; before < 140; ++before) {
      for (const std::size_t behind : {0U, 1U, 5U, 62U, 63U, 64U, 65U, 128U}) {
        const std::string text = std::string(before, 'x') + special + std::string(behind, 'y');
        const PaddedText padded(text);
        CsvDialect dialect;
        dialect.header = false;
        Division division;
        division.limits.windowWords = 1;
        ASSERT_EQ(ReadSegments(padded.text(), dialect, false, division), ReadPlainly(text, dialect, false))
            << testing::PrintToString(text);
        const std::string quoted = "\"" + text;
        const PaddedText paddedQuoted(quoted);
        ASSERT_EQ(ReadSegments(paddedQuoted.text(), dialect, false, division), ReadPlainly(quoted, dialect, false))
            << testing::PrintToString(quoted);
      }
    }
  }
}

TEST(Scanning, dividesATextAtAnyPlace) {
  const std::string text =
      "a,b\n1,\"2\"\r\n\"3\r\n,\"\"4\",5\r\n\n6,7\r\r\n8\n\"9,\n\"\"\n,10\"x,11\n12,13,14\n15,16\n\n";
  const PaddedText padded(text);
  const Table expected = ReadPlainly(text, {}, false);
  EXPECT_EQ(expected.rows.size(), 7U);
  for (std::size_t first = 0; first <= text.size(); ++first)
    for (std::size_t second = first; second <= text.size(); ++second)
      ASSERT_EQ(ReadSegments(padded.text(), {}, false, {{first, second}, {}}), expected) << first << " " << second;
}

}  // namespace
}  // namespace runtime::data
