#include "runtime/data/csv/recordscanner.h"

#include <optional>
#include <random>
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

#include "runtime/data/csv/headerrecord.h"
#include "runtime/data/csv/segmentscanner.h"

namespace runtime::data {
namespace {

using Record = std::vector<std::string>;
using Records = std::vector<Record>;
using namespace std::string_view_literals;

/// Nothing when a quote is never closed.
std::optional<Records> Scan(std::string_view text, const CsvDialect& dialect = {}) {
  RecordScanner scanner(text, dialect);
  Records records;
  std::vector<std::string_view> cells;
  while (scanner.Next(cells)) {
    records.emplace_back(cells.begin(), cells.end());
    cells.clear();
    scanner.ReleaseTexts();
  }
  if (scanner.unclosedQuote()) return std::nullopt;
  return records;
}

TEST(RecordScanner, endsRecordsAtLineFeedCarriageReturnAndBoth) {
  const Records expected = {{"a", "b"}, {"1", "2"}, {"3", "4"}, {"5", "6"}};
  EXPECT_EQ(Scan("a,b\n1,2\n3,4\n5,6\n"), expected);
  EXPECT_EQ(Scan("a,b\r\n1,2\r\n3,4\r\n5,6\r\n"), expected);
  EXPECT_EQ(Scan("a,b\r1,2\r3,4\r5,6\r"), expected);
  EXPECT_EQ(Scan("a,b\r\n1,2\n3,4\r5,6"), expected);
}

TEST(RecordScanner, needsNoLineEndAtTheEnd) {
  EXPECT_EQ(Scan("a\n1"), (Records{{"a"}, {"1"}}));
  EXPECT_EQ(Scan("a,\n1,"), (Records{{"a", ""}, {"1", ""}}));
  EXPECT_EQ(Scan("\"a\""), (Records{{"a"}}));
  EXPECT_EQ(Scan(""), Records{});
}

TEST(RecordScanner, keepsDelimitersAndLineEndsInQuotes) {
  EXPECT_EQ(Scan("\"a,b\",\"c\nd\",\"e\r\nf\",\"g\rh\"\n"), (Records{{"a,b", "c\nd", "e\r\nf", "g\rh"}}));
}

TEST(RecordScanner, readsADoubledQuoteAsOne) {
  EXPECT_EQ(Scan("\"a\"\"b\",\"\"\"\",\"\"\n"), (Records{{"a\"b", "\"", ""}}));
}

TEST(RecordScanner, takesAStrayQuoteAsItStands) {
  EXPECT_EQ(Scan("5\" pipe,a\"b\"c\n"), (Records{{"5\" pipe", "a\"b\"c"}}));
  EXPECT_EQ(Scan(" \"a\",b\n"), (Records{{" \"a\"", "b"}}));
}

TEST(RecordScanner, keepsTextBehindAClosingQuote) {
  RecordScanner scanner("x\n\"a\"bc,\"d\" ,\"e\"\"f\"g\"h\n", {});
  std::vector<std::string_view> cells;
  while (scanner.Next(cells)) {
  }
  EXPECT_EQ(cells, (std::vector<std::string_view>{"x", "abc", "d", "e\"fg\"h"}));
  EXPECT_EQ(scanner.cellsWithTextBehindQuote(), 2);
  EXPECT_EQ(scanner.firstTextBehindQuote().line, 2);
  EXPECT_EQ(scanner.firstTextBehindQuote().cell, 1U);
}

TEST(RecordScanner, namesThePlaceOfAQuoteThatIsNeverClosed) {
  RecordScanner scanner("a,b\n\"1\n2\",x\n3,\"four\nfive\n", {});
  std::vector<std::string_view> cells;
  while (scanner.Next(cells)) {
  }
  ASSERT_TRUE(scanner.unclosedQuote());
  EXPECT_EQ(scanner.unclosedQuote()->line, 4);
  EXPECT_EQ(scanner.unclosedQuote()->cell, 2U);
  EXPECT_EQ(cells.size(), 4U) << "the cells of the broken record are taken back";
}

TEST(RecordScanner, keepsBlanksAndNulBytes) {
  EXPECT_EQ(Scan(" a ,\tb\n"), (Records{{" a ", "\tb"}}));
  EXPECT_EQ(Scan("a\0b,\0\n"sv), (Records{{std::string("a\0b", 3), std::string("\0", 1)}}));
}

TEST(RecordScanner, leavesBlanksAtTheFrontOutWhenTheDialectSaysSo) {
  CsvDialect dialect;
  dialect.skipInitialSpace = true;
  EXPECT_EQ(Scan("a,  b,  \"c,d\" \n", dialect), (Records{{"a", "b", "c,d"}}));
}

TEST(RecordScanner, knowsNoQuotesWhenTheDialectHasNone) {
  CsvDialect dialect;
  dialect.quote = '\0';
  EXPECT_EQ(Scan("\"a,b\"\n", dialect), (Records{{"\"a", "b\""}}));
}

TEST(RecordScanner, endsACellAtEveryQuoteWhenQuotesAreNotDoubled) {
  CsvDialect dialect;
  dialect.doubleQuote = false;
  EXPECT_EQ(Scan("\"a\"\"b\",c\n", dialect), (Records{{"a\"b\"", "c"}}));
}

TEST(RecordScanner, countsLinesInQuotesToo) {
  RecordScanner scanner("a\n\"b\r\nc\rd\ne\"\nf\n", {});
  std::vector<std::string_view> cells;
  std::vector<std::int64_t> lines;
  while (scanner.Next(cells)) lines.push_back(scanner.line());
  EXPECT_EQ(lines, (std::vector<std::int64_t>{1, 2, 6}));
}

/// The same rules, one character after the other, with nothing but a state.
class NaiveReader {
 public:
  explicit NaiveReader(const CsvDialect& dialect) : fDialect(dialect) {}

  std::optional<Records> Read(const std::string& text) {
    for (std::size_t i = 0; i < text.size(); ++i) {
      const char c = text[i];
      const char following = i + 1 < text.size() ? text[i + 1] : '\0';
      const bool followed = i + 1 < text.size();
      if (fState == State::Quoted) {
        if (c != fDialect.quote)
          fCell += c;
        else if (fDialect.doubleQuote && followed && following == fDialect.quote)
          fCell += text[i++];
        else
          fState = State::Behind;
        continue;
      }
      if (c == fDialect.delimiter) {
        EndCell();
        fInRecord = true;
      } else if (c == '\n' || c == '\r') {
        if (c == '\r' && following == '\n' && followed) ++i;
        EndCell();
        EndRecord();
      } else if (fState == State::Front && c == ' ' && fDialect.skipInitialSpace) {
        fInRecord = true;
      } else if (fState == State::Front && fDialect.quote != '\0' && c == fDialect.quote) {
        fState = State::Quoted;
        fInRecord = true;
      } else if (fState == State::Behind) {
        fBehind += c;
      } else {
        fState = State::Plain;
        fInRecord = true;
        fCell += c;
      }
    }
    if (fState == State::Quoted) return std::nullopt;
    if (fInRecord) {
      EndCell();
      EndRecord();
    }
    return fRecords;
  }

  /// For each record, whether it is a line without any character.
  const std::vector<bool>& blank() const { return fBlank; }

 private:
  enum class State { Front, Plain, Quoted, Behind };

  void EndCell() {
    bool onlyBlanks = true;
    for (const char c : fBehind) onlyBlanks = onlyBlanks && c == ' ';
    fRecord.push_back(onlyBlanks ? fCell : fCell + fBehind);
    fCell.clear();
    fBehind.clear();
    fState = State::Front;
  }
  void EndRecord() {
    fBlank.push_back(!fInRecord);
    fRecords.push_back(fRecord);
    fRecord.clear();
    fInRecord = false;
  }

  CsvDialect fDialect;
  State fState = State::Front;
  bool fInRecord = false;
  std::string fCell;
  std::string fBehind;
  Record fRecord;
  Records fRecords;
  std::vector<bool> fBlank;
};

std::string NastyText(std::mt19937& random, char delimiter) {
  const std::vector<std::string> pieces = {
      "a", "bc", "\"", "\"\"", std::string(1, delimiter), "\n", "\r", "\r\n",
      " ", "7",  "\"", ",",    std::string(1, delimiter), "é",  ";",  std::string(1, '\0')};
  std::string text;
  const std::size_t length = random() % 60;
  // Some texts have few line ends, some are quotes above all.
  const std::size_t favourite = random() % pieces.size();
  for (std::size_t i = 0; i < length; ++i) text += pieces[random() % 4 == 0 ? favourite : random() % pieces.size()];
  return text;
}

TEST(RecordScanner, agreesWithANaiveReaderOnNastyTexts) {
  std::mt19937 random(7);
  int unclosed = 0;
  for (int round = 0; round < 30'000; ++round) {
    CsvDialect dialect;
    dialect.delimiter = ",;\t|"[random() % 4];
    if (random() % 10 == 0) dialect.quote = '\0';
    if (random() % 10 == 0) dialect.quote = '\'';
    dialect.doubleQuote = random() % 8 != 0;
    dialect.skipInitialSpace = random() % 4 == 0;
    const std::string text = NastyText(random, dialect.delimiter);
    const auto expected = NaiveReader(dialect).Read(text);
    const auto scanned = Scan(text, dialect);
    ASSERT_EQ(scanned, expected) << "round " << round << ": " << testing::PrintToString(text);
    unclosed += expected ? 0 : 1;
  }
  EXPECT_GT(unclosed, 1'000);
  EXPECT_LT(unclosed, 25'000);
}

TEST(SegmentScanner, agreesWithANaiveReaderOnNastyTexts) {
  std::mt19937 random(11);
  int compared = 0;
  for (int round = 0; round < 10'000; ++round) {
    const std::string text = NastyText(random, ',') + "\n" + NastyText(random, ',');
    NaiveReader naive({});
    const auto records = naive.Read(text);
    if (!records) continue;
    // The rows by the rules, from the records.
    Records rows;
    std::size_t columns = 0;
    bool headerSeen = false;
    for (std::size_t i = 0; i < records->size(); ++i) {
      Record record = (*records)[i];
      const bool blank = naive.blank()[i];
      if (!headerSeen) {
        if (blank) continue;
        headerSeen = true;
        columns = record.size();
        continue;
      }
      if (blank && columns > 1) continue;
      record.resize(columns);
      rows.push_back(record);
    }
    if (!headerSeen) continue;

    const std::string padded = text + std::string(CellBlock::kReadAhead, ',');
    const std::string_view unpadded = std::string_view(padded).substr(0, text.size());
    ScanLimits limits;
    limits.rows = random() % 3 + 1;
    SegmentScanner scanner(unpadded, {}, columns, limits);
    scanner.Begin(ReadHeaderRecord(unpadded, {}, "test").rowsBegin, text.size());
    Records scanned;
    CellBlock block;
    while (scanner.Next(block)) {
      ASSERT_EQ(block.firstRow, static_cast<std::int64_t>(scanned.size()));
      for (std::size_t row = 0; row < block.rows; ++row) {
        Record record;
        for (std::size_t column = 0; column < columns; ++column) record.emplace_back(block.Text(row, column));
        scanned.push_back(record);
      }
    }
    ASSERT_EQ(scanned, rows) << testing::PrintToString(text);
    ++compared;
  }
  EXPECT_GT(compared, 1'000);
}

}  // namespace
}  // namespace runtime::data
