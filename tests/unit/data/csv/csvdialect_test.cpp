#include "runtime/data/csv/csvdialect.h"

#include <gtest/gtest.h>

#include "runtime/data/open.h"

namespace runtime::data {
namespace {

char DelimiterOf(std::string_view text, const std::string& source = "data.csv") {
  return FindDialect(text, {}, source).delimiter;
}

TEST(Delimiter, isFoundAmongTheFour) {
  EXPECT_EQ(DelimiterOf("a,b,c\n1,2,3\n"), ',');
  EXPECT_EQ(DelimiterOf("a;b;c\n1;2;3\n"), ';');
  EXPECT_EQ(DelimiterOf("a\tb\tc\n1\t2\t3\n"), '\t');
  EXPECT_EQ(DelimiterOf("a|b|c\n1|2|3\n"), '|');
}

TEST(Delimiter, isNotTakenForADecimalComma) {
  EXPECT_EQ(DelimiterOf("name;price\nA;1,5\nB;2,5\n"), ';');
  EXPECT_EQ(DelimiterOf("x;y;z\n1,5;2,5;3,5\n1,5;2,5;3,5\n"), ';');
}

TEST(Delimiter, isNotTakenFromQuotedCells) {
  EXPECT_EQ(DelimiterOf("\"a, b, c\";\"d\"\n\"1, 2, 3\";\"4\"\n"), ';');
  EXPECT_EQ(DelimiterOf("a,b\n\"x;y;z\",\"1;2;3\"\n"), ',');
}

TEST(Delimiter, thatFitsMostRecordsWinsOverRaggedOnes) {
  EXPECT_EQ(DelimiterOf("a,b;c\n1,2;3\n4,5,6,7;8\n9;1\n"), ';');
}

TEST(Delimiter, isTheCommaInAFileOfOneColumn) {
  EXPECT_EQ(DelimiterOf("city\nParis; France\nRome; Italy\n"), ',');
  const CsvDialect dialect = FindDialect("city\nParis\n", {}, "x.csv");
  EXPECT_EQ(dialect.delimiter, ',');
}

TEST(Delimiter, ofATabFileIsTheTab) {
  EXPECT_EQ(DelimiterOf("a,b\tc\n1,2\t3\n", "x.tsv"), '\t');
  EXPECT_EQ(DelimiterOf("text\nno, it is not\nyes, it is\n", "x.TSV"), '\t');
  EXPECT_EQ(DelimiterOf("a,b,c\n1,2,3\n", "x.tsv"), ',') << "no tab at all, and commas throughout";
}

TEST(Delimiter, survivesAQuoteThatIsNeverClosed) { EXPECT_EQ(DelimiterOf("a;b\n1;\"2\n3;4\n"), ';'); }

TEST(Dialect, saidByTheDictionaryIsNotLookedFor) {
  TextDialect said;
  said.delimiter = ":";
  said.quoteChar = "";
  said.doubleQuote = false;
  said.header = false;
  said.skipInitialSpace = true;
  const CsvDialect dialect = FindDialect("a,b\n", said, "x.csv");
  EXPECT_EQ(dialect.delimiter, ':');
  EXPECT_EQ(dialect.quote, '\0');
  EXPECT_FALSE(dialect.doubleQuote);
  EXPECT_FALSE(dialect.header);
  EXPECT_TRUE(dialect.skipInitialSpace);
}

TEST(Dialect, refusesADelimiterThatIsNotOneCharacter) {
  for (const char* delimiter : {"", "::", "\n", "é", "\""}) {
    TextDialect said;
    said.delimiter = delimiter;
    EXPECT_THROW(FindDialect("a,b\n", said, "x.csv"), DataError) << delimiter;
  }
}

}  // namespace
}  // namespace runtime::data
