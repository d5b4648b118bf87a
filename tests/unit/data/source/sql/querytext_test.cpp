#include "runtime/data/source/sql/querytext.h"

#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/unit/data/source/sql/askedrows.h"

namespace runtime::data {
namespace {

using testing::HasSubstr;

std::string ProblemOf(const std::string& text) {
  return DataErrorOf([&] { CheckQuery(text, "odbc:DSN=x"); });
}

TEST(QueryTexts, oneStatementThatReadsIsTakenAsItIs) {
  for (const std::string text :
       {"SELECT 1", "  select a from t -- all of them", "WITH q AS (SELECT 1) SELECT * FROM q", "VALUES (1), (2)",
        "TABLE t", "/* why */ -- and how\nSELECT 1", "(SELECT 1) UNION (SELECT 2)",
        "SELECT ';', \";\", `;`, 'it''s; \"so\"'", "SELECT $$a;b'c$$, $t$;$$;$t$", "SELECT E'it\\'s; so'",
        "SELECT a FROM t WHERE b LIKE 'x\\_%' ESCAPE '\\'", "SELECT a /* one; /* two; */ three */ FROM t",
        "SELECT ARRAY['a]', ';'], b[1], c['x;y']", "SELECT '{fn now()} %s ?'", "SELECT a #> '{x}' FROM t",
        "SELECT 'it\\'s; so'"}) {
    EXPECT_EQ(ProblemOf(text), "") << text;
    EXPECT_EQ(CheckQuery(text, "x"), text);
  }
}

TEST(QueryTexts, semicolonsAtTheEndAreCutOff) {
  EXPECT_EQ(CheckQuery("SELECT 1;", "x"), "SELECT 1");
  EXPECT_EQ(CheckQuery("SELECT 1 ; \n-- done; really\n/* ; */ ;", "x"), "SELECT 1 ");
}

TEST(QueryTexts, severalStatementsAreRefusedWhateverHidesThem) {
  for (const std::string text : {"SELECT 1; DROP TABLE t", "SELECT 1;SELECT 2;", "SELECT ''; DROP TABLE t; --'",
                                 "SELECT 1 -- '\n; DROP TABLE t", "SELECT 1 /* ' */; DROP TABLE t",
                                 // hidden from engines whose texts have no escapes, seen by those whose have
                                 "SELECT '\\''; DROP TABLE t; -- '",
                                 // the other way round
                                 "SELECT '\\'; DROP TABLE t; -- ''",
                                 // a comment, a name in brackets, a comment that ends early
                                 "SELECT 1 # '\n; DROP TABLE t -- '", "SELECT [a'b]; DROP TABLE t --']",
                                 "SELECT 1 /* /* */; DROP TABLE t -- */ */", "SELECT $$a$$; DROP TABLE t",
                                 "SELECT $1; DROP TABLE $1", "SELECT a$b$; DROP TABLE t; SELECT c$b$"})
    EXPECT_THAT(ProblemOf(text), HasSubstr("odbc:DSN=x: --query: there are several statements")) << text;
}

TEST(QueryTexts, whatDoesNotEndIsRefused) {
  EXPECT_THAT(ProblemOf("SELECT 'a"), HasSubstr("the quote at character 8 does not end"));
  EXPECT_THAT(ProblemOf("SELECT \"a''"), HasSubstr("the quote at character 8 does not end"));
  EXPECT_THAT(ProblemOf("SELECT $x$a$$"), HasSubstr("the quote at character 8 does not end"));
  EXPECT_THAT(ProblemOf("SELECT 1 /* a"), HasSubstr("the comment at character 10 does not end"));
  for (const std::string text : {"SELECT (1", "SELECT 1)", "SELECT 1) q, (SELECT 2", "SELECT '(' || (1"})
    EXPECT_THAT(ProblemOf(text), HasSubstr("the parentheses do not come in pairs")) << text;
}

TEST(QueryTexts, whatDoesNotReadIsRefused) {
  for (const std::string text : {"DELETE FROM t", "insert into t values (1)", "SELECTED", "EXPLAIN SELECT 1",
                                 "{fn now()}", "'SELECT' 1", "SET x = 1", "/* SELECT */ DROP TABLE t"})
    EXPECT_THAT(ProblemOf(text), HasSubstr("begins with SELECT, WITH, VALUES or TABLE")) << text;
  for (const std::string text : {"", "  \n", "-- SELECT 1", ";", "()"})
    EXPECT_THAT(ProblemOf(text), HasSubstr("the query is empty")) << text;
  EXPECT_THAT(ProblemOf(std::string("SELECT 1\0", 9)), HasSubstr("no text in UTF-8"));
  EXPECT_THAT(ProblemOf("SELECT '\xff'"), HasSubstr("no text in UTF-8"));
}

}  // namespace
}  // namespace runtime::data
