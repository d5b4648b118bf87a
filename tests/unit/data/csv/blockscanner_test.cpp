#include "runtime/data/csv/blockscanner.h"

#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace runtime::data {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

struct Table {
  std::vector<std::string> headers;
  std::vector<std::vector<std::string>> rows;
  std::vector<std::int64_t> lines;
  std::vector<Note> notes;
};

Table Read(std::string_view text, bool strict = false, const CsvDialect& dialect = {}) {
  BlockScanner scanner(text, dialect, "x.csv", strict);
  Table table;
  table.headers = scanner.headers();
  CellBlock block;
  while (scanner.Next(block, 2)) {
    for (std::size_t row = 0; row < block.rows; ++row) {
      table.rows.emplace_back();
      for (std::size_t column = 0; column < block.columns; ++column)
        table.rows.back().emplace_back(block.Text(row, column));
      table.lines.push_back(block.lines[row]);
    }
  }
  scanner.Report(table.notes);
  return table;
}

std::string ErrorOf(std::string_view text, bool strict = false) {
  try {
    Read(text, strict);
  } catch (const DataError& error) {
    return error.what();
  }
  return "";
}

TEST(Rows, thatAreTooShortAreFilledUpAndTold) {
  const Table table = Read("a,b,c\n1\n1,2,3\n1,2\n");
  EXPECT_EQ(table.rows[0], (std::vector<std::string>{"1", "", ""}));
  EXPECT_EQ(table.rows[2], (std::vector<std::string>{"1", "2", ""}));
  ASSERT_EQ(table.notes.size(), 1U);
  EXPECT_THAT(table.notes[0].text, HasSubstr("x.csv:2: 2 rows have fewer cells than the 3 columns"));
  EXPECT_THAT(table.notes[0].text, HasSubstr("row 1 (line 2) has 1, row 3 (line 4) has 2"));
}

TEST(Rows, thatAreTooLongLoseTheRestAndAreTold) {
  const Table table = Read("a,b\n1,2,3\n4,5\n6,7,8,9\n1,1,1\n1,1,1\n");
  EXPECT_EQ(table.rows[0], (std::vector<std::string>{"1", "2"}));
  ASSERT_EQ(table.notes.size(), 1U);
  EXPECT_THAT(table.notes[0].text, HasSubstr("4 rows have more cells than the 2 columns"));
  EXPECT_THAT(table.notes[0].text, HasSubstr("row 1 (line 2) has 3, row 3 (line 4) has 4, row 4 (line 5) has 3, ..."));
}

TEST(Rows, ofAWrongLengthAreAnErrorWhenStrict) {
  EXPECT_EQ(ErrorOf("a,b\n1,2\n\"x\ny\"\n", true),
            "x.csv:3: row 2 has 1 cell where there are 2 columns; mend the row, or run without --strict");
  EXPECT_EQ(ErrorOf("a\n1,2\n", true),
            "x.csv:2: row 1 has 2 cells where there are 1 column; mend the row, or run without --strict");
}

TEST(BlankLines, arePassedOverWhenThereAreSeveralColumns) {
  const Table table = Read("\n\r\na,b\n\n1,2\n\n\n3,4\n\n\n");
  EXPECT_THAT(table.headers, ElementsAre("a", "b"));
  EXPECT_EQ(table.rows.size(), 2U);
  EXPECT_THAT(table.lines, ElementsAre(5, 8));
  ASSERT_EQ(table.notes.size(), 1U);
  EXPECT_THAT(table.notes[0].text, HasSubstr("x.csv:4: 3 blank lines among the rows"));
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

TEST(Text, withoutARecordIsNoTable) { EXPECT_THAT(ErrorOf("\n\r\n\n"), HasSubstr("x.csv: the file holds no record")); }

TEST(Quotes, thatAreNeverClosedAreAnError) {
  EXPECT_EQ(ErrorOf("a,b\n1,\"2\n3,4\n"),
            "x.csv:2: the quote that opens cell 2 of this record is not closed before the end of the file");
  EXPECT_THAT(ErrorOf("\"a,b\n"), HasSubstr("x.csv:1: the quote that opens cell 1"));
}

TEST(Quotes, withTextBehindThemAreTold) {
  const Table table = Read("a,b\n1,\"2\"x\n");
  EXPECT_EQ(table.rows[0][1], "2x");
  ASSERT_EQ(table.notes.size(), 1U);
  EXPECT_THAT(table.notes[0].text, HasSubstr("x.csv:2: 1 cell has text behind the closing quote"));
}

}  // namespace
}  // namespace runtime::data
