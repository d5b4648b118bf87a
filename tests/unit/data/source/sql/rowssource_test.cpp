#include "runtime/data/source/sql/rowssource.h"

#include <deque>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "runtime/data/open.h"
#include "tests/unit/data/source/collectedcolumns.h"
#include "tests/unit/data/source/sql/askedrows.h"
#include "tests/unit/data/source/sqlitefolder.h"

namespace runtime::data {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

using Row = std::vector<std::optional<std::string>>;

class AnswerOf : public SqlRows {
 public:
  explicit AnswerOf(std::vector<Row> rows) : fRows(std::move(rows)) {}
  bool Next() override { return fNext++ < fRows.size(); }
  std::optional<std::string_view> Text(std::size_t column) override {
    const auto& cell = fRows[fNext - 1][column];
    return cell ? std::optional<std::string_view>(*cell) : std::nullopt;
  }

 private:
  std::vector<Row> fRows;
  std::size_t fNext = 0;
};

/// An engine that gives the answers laid in, in their order.
class LaidAnswers : public SqlConnection {
 public:
  explicit LaidAnswers(const std::string& engine = "laid") {
    fName = "odbc:DSN=laid";
    fEngine = engine;
  }
  std::string Quoted(std::string_view identifier) const override { return "<" + std::string(identifier) + ">"; }
  std::unique_ptr<SqlRows> Ask(const std::string& query) override {
    queries.push_back(query);
    if (answers.empty()) throw DataError(fName + ": nothing is laid in");
    auto rows = std::make_unique<AnswerOf>(answers.front());
    answers.pop_front();
    return rows;
  }
  void Run(const std::string&) override {}
  std::string FindTable(const std::string& table) override { return table; }
  std::string OnlyTable() override { return ""; }
  std::vector<SqlColumn> ColumnsOf(const std::string&) override { return {}; }

  std::deque<std::vector<Row>> answers;
  std::vector<std::string> queries;
};

SqlColumn ColumnOf(const std::string& name, SqlType type) {
  SqlColumn column;
  column.name = name;
  column.type = type;
  return column;
}

TEST(SqlRowsSources, readEveryTypeAsItsNumbersOrTexts) {
  LaidAnswers engine;
  engine.answers = {{{"3", "1", "7", "0.5", "2.25"}},
                    {{"7", "2.25", "0.1", "0.1", "t", "2020-02-29", "12:34:56.5", "2020-01-01 00:00:01", "a  ", "x "},
                     {"1", "0.5", "Infinity", "NaN", "0", "infinity", "24:61", "-infinity", "   ", ""},
                     {{}, {}, {}, {}, {}, {}, {}, {}, {}, {}}}};
  const std::vector<SqlColumn> columns = {ColumnOf("w", SqlType::Whole),     ColumnOf("d", SqlType::Decimal),
                                          ColumnOf("s", SqlType::Single),    ColumnOf("f", SqlType::Double),
                                          ColumnOf("b", SqlType::Boolean),   ColumnOf("day", SqlType::Date),
                                          ColumnOf("t", SqlType::Time),      ColumnOf("m", SqlType::DateTime),
                                          ColumnOf("c", SqlType::FixedText), ColumnOf("text", SqlType::Text)};
  const auto source = OpenSqlRows({{&engine, "T"}}, columns);
  EXPECT_EQ(source->rowCount(), 3);
  const std::vector<Collected> cells = ReadAll(*source);
  EXPECT_THAT(cells[0].cells, ElementsAre("7", "1", "nan"));
  EXPECT_THAT(cells[1].cells, ElementsAre("2.25", "0.5", "nan"));
  EXPECT_THAT(cells[2].cells, ElementsAre("0.1", "nan", "nan"));
  EXPECT_THAT(cells[3].cells, ElementsAre("0.1", "nan", "nan"));
  EXPECT_THAT(cells[4].cells, ElementsAre("1", "0", "nan"));
  EXPECT_THAT(cells[5].cells, ElementsAre("1582934400", "nan", "nan"));
  EXPECT_THAT(cells[6].cells, ElementsAre("45296.5", "nan", "nan"));
  EXPECT_THAT(cells[7].cells, ElementsAre("1577836801", "nan", "nan"));
  EXPECT_THAT(cells[8].cells, ElementsAre("a", "", ""));
  EXPECT_THAT(cells[9].cells, ElementsAre("x ", "", ""));
  EXPECT_THAT(engine.queries, ElementsAre("SELECT COUNT(*), MIN(<w>), MAX(<w>), MIN(<d>), MAX(<d>) FROM T",
                                          "SELECT <w>, <d>, <s>, <f>, <b>, <day>, <t>, <m>, <c>, <text> FROM T"));
}

TEST(SqlRowsSources, decimalsKeepTheZerosTheyAreWrittenWith) {
  LaidAnswers engine;
  engine.answers = {{{"2", "1", "2"}}, {{"1.5000", "1.50"}, {"2.00", "2.25"}}};
  const auto source = OpenSqlRows({{&engine, "T"}}, {ColumnOf("d", SqlType::Decimal), ColumnOf("f", SqlType::Double)});
  const std::vector<Collected> cells = ReadAll(*source);
  EXPECT_THAT(cells[0].cells, ElementsAre("1.5", "2"));
  EXPECT_EQ(cells[0].decimals, 4);
  EXPECT_EQ(cells[1].decimals, 0);
}

TEST(SqlRowsSources, haveTheEngineWriteDatesForDriversDropWhatTheyDoNotKnow) {
  LaidAnswers engine("PostgreSQL");
  engine.answers = {{{"3"}}, {{"0044-03-15 BC", "12:00:00", "infinity"}, {"2020-02-29", {}, {}}, {{}, "24:61", {}}}};
  const auto source = OpenSqlRows({{&engine, "T"}}, {ColumnOf("day", SqlType::Date), ColumnOf("t", SqlType::Time),
                                                     ColumnOf("m", SqlType::DateTime)});
  const std::vector<Collected> cells = ReadAll(*source);
  EXPECT_THAT(engine.queries.back(), "SELECT CAST(<day> AS text), CAST(<t> AS text), CAST(<m> AS text) FROM T");
  EXPECT_THAT(cells[0].cells, ElementsAre("nan", "1582934400", "nan"));
  EXPECT_THAT(cells[0].unreadable, ElementsAre("0044-03-15 BC"));
  EXPECT_THAT(cells[1].unreadable, ElementsAre("24:61"));
  EXPECT_THAT(cells[2].unreadable, ElementsAre("infinity"));
}

TEST(SqlRowsSources, giveTextsOfOtherTypesWhenAsked) {
  LaidAnswers engine;
  engine.answers = {{{"1"}}, {{"t", "2020-01-01 00:00:01", "0.10"}}};
  const auto source = OpenSqlRows({{&engine, "T"}}, {ColumnOf("b", SqlType::Boolean), ColumnOf("m", SqlType::DateTime),
                                                     ColumnOf("f", SqlType::Double)});
  const std::vector<Collected> cells = ReadAll(*source, true);
  EXPECT_THAT(cells[0].cells, ElementsAre("true"));
  EXPECT_THAT(cells[1].cells, ElementsAre("2020-01-01T00:00:01"));
  EXPECT_THAT(cells[2].cells, ElementsAre("0.10"));
}

TEST(SqlRowsSources, wholeNumbersThatDoublesDoNotHoldStayTexts) {
  const std::vector<std::pair<std::string, FieldType>> bounds = {{"9007199254740992", FieldType::Integer},
                                                                 {"9007199254740993", FieldType::String},
                                                                 {"-9007199254740993", FieldType::String},
                                                                 {"18446744073709551615", FieldType::String}};
  for (const auto& [bound, type] : bounds) {
    LaidAnswers engine;
    engine.answers = {{{"1", bound, bound}}};
    EXPECT_EQ(OpenSqlRows({{&engine, "T"}}, {ColumnOf("w", SqlType::Whole)})->columns()[0].type, type) << bound;
  }
}

TEST(SqlRowsSources, decimalsBesideNaNAndInfinityHaveBoundsToo) {
  LaidAnswers engine;
  engine.answers = {{{"9", "-Infinity", "NaN"}}, {{"1"}}, {{"Infinity"}}, {{"9007199254740993.5"}}};
  const auto source = OpenSqlRows({{&engine, "T"}}, {ColumnOf("d", SqlType::Decimal)});
  EXPECT_EQ(source->columns()[0].type, FieldType::String);
  EXPECT_THAT(
      engine.queries,
      ElementsAre("SELECT COUNT(*), MIN(<d>), MAX(<d>) FROM T",
                  "SELECT MIN(<d>) FROM T WHERE <d> > (SELECT MIN(<d>) FROM T)",
                  "SELECT MAX(<d>) FROM T WHERE <d> < (SELECT MAX(<d>) FROM T)",
                  "SELECT MAX(<d>) FROM T WHERE <d> < (SELECT MAX(<d>) FROM T WHERE <d> < (SELECT MAX(<d>) FROM T))"));
}

TEST(SqlRowsSources, tellWhenRowsAreLostOrAdded) {
  for (const char* const count : {"1", "3"}) {
    LaidAnswers engine;
    engine.answers = {{{count}}, {{"a"}, {"b"}}};
    const auto source = OpenSqlRows({{&engine, "T"}}, {ColumnOf("s", SqlType::Text)});
    const auto stream = source->Open({{0, false}});
    EXPECT_THAT(DataErrorOf([&] {
                  while (stream->Next() > 0) {
                  }
                }),
                HasSubstr(fmt::format("odbc:DSN=laid: 2 rows were read of {}; the table changed", count)));
  }
}

class SqlRowsOfFiles : public SqliteFolder {};

TEST_F(SqlRowsOfFiles, relationsStandBehindEachOtherAndAreReadAgain) {
  const std::string many = "WITH RECURSIVE c(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM c WHERE i < 5000) ";
  const auto first =
      OpenSqlConnection("sqlite:" + Write("CREATE TABLE t AS " + many + "SELECT i, 'n' || i AS s FROM c", "a"));
  const auto second =
      OpenSqlConnection("sqlite:" + Write("CREATE TABLE u (i, s); INSERT INTO u VALUES (-1, 'last')", "b"));
  std::vector<std::string> told;
  const auto source =
      OpenSqlRows({{first.get(), "t"}, {second.get(), "(SELECT * FROM u) AS q"}}, first->ColumnsOf("t"),
                  [&](const std::string& name, const std::string& query) { told.push_back(name + query); });
  EXPECT_EQ(source->rowCount(), 5001);
  for (int time = 0; time < 2; ++time) {
    const std::vector<Collected> cells = ReadAll(*source);
    EXPECT_EQ(cells[0].cells[2048], "2049");
    EXPECT_EQ(cells[0].cells.back(), "-1");
    EXPECT_EQ(cells[1].cells[4999], "n5000");
    EXPECT_EQ(cells[1].cells.back(), "last");
  }
  EXPECT_EQ(told.size(), 6U);
}

}  // namespace
}  // namespace runtime::data
