#include "runtime/data/source/sql/groupqueries.h"

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/unit/data/source/sqlitefolder.h"

namespace runtime::data {
namespace {

using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;
using testing::Pair;

class NoRows : public SqlRows {
 public:
  bool Next() override { return false; }
  std::optional<std::string_view> Text(std::size_t) override { return std::nullopt; }
};

/// An engine of some family with a table, and nothing in it.
class EmptyEngine : public SqlConnection {
 public:
  EmptyEngine(const std::string& engine, std::vector<SqlColumn> columns) : fColumns(std::move(columns)) {
    fName = "odbc:DSN=empty";
    fEngine = engine;
  }
  std::string Quoted(std::string_view identifier) const override { return "<" + std::string(identifier) + ">"; }
  std::unique_ptr<SqlRows> Ask(const std::string&) override { return std::make_unique<NoRows>(); }
  void Run(const std::string&) override {}
  std::string FindTable(const std::string& table) override { return table; }
  std::string OnlyTable() override { return "T"; }
  std::vector<SqlColumn> ColumnsOf(const std::string&) override { return fColumns; }

 private:
  std::vector<SqlColumn> fColumns;
};

SqlColumn ColumnOf(const std::string& name, SqlType type) {
  SqlColumn column;
  column.name = name;
  column.type = type;
  return column;
}

/// Columns: n whole, s text, w double.
SqlTable TableIn(const std::string& engine) {
  SqlTableOptions options;
  options.addresses = {"odbc:DSN=empty"};
  options.connect = [&](const std::string&) {
    return std::make_unique<EmptyEngine>(
        engine, std::vector<SqlColumn>{ColumnOf("n", SqlType::Whole), ColumnOf("s", SqlType::Text),
                                       ColumnOf("w", SqlType::Double)});
  };
  return SqlTable(options);
}

SqlPlace PlaceOf(const std::vector<std::string>& arms) {
  SqlPlace place;
  place.relation = "T";
  place.arms = arms;
  return place;
}

SqlWeight TwoPieces() {
  SqlWeight weight;
  weight.form = SqlWeight::Form::Pieces;
  weight.column = 2;
  weight.number = "W";
  weight.pieces = {3, 2, 2};
  return weight;
}

SqlWeight Pairs() {
  SqlWeight weight;
  weight.form = SqlWeight::Form::Pairs;
  weight.column = 2;
  return weight;
}

TEST(GroupQueries, groupAColumnOfOneArm) {
  const SqlTable table = TableIn("Trino");
  const GroupQueries queries(table);
  EXPECT_EQ(queries.Groups(PlaceOf({"T"}), 0, std::nullopt),
            "SELECT CAST(v AS VARCHAR), n FROM (SELECT c AS v, COUNT(*) AS n FROM (SELECT <n> AS c FROM T) s "
            "GROUP BY c) g");
  EXPECT_EQ(queries.Groups(PlaceOf({"T"}), 0, 10), queries.Groups(PlaceOf({"T"}), 0, std::nullopt) + " LIMIT 10");
}

TEST(GroupQueries, addUpWhatArmsHaveInCommonBeforeItIsSent) {
  const SqlTable table = TableIn("Trino");
  const GroupQueries queries(table);
  EXPECT_EQ(queries.Groups(PlaceOf({"A", "B"}), 1, std::nullopt),
            "SELECT CAST(v AS VARCHAR), SUM(n) FROM ("
            "SELECT c AS v, COUNT(*) AS n FROM (SELECT <s> AS c FROM A) s GROUP BY c UNION ALL "
            "SELECT c AS v, COUNT(*) AS n FROM (SELECT <s> AS c FROM B) s GROUP BY c) g GROUP BY v");
}

TEST(GroupQueries, sumThePiecesOfAWeight) {
  const SqlTable table = TableIn("Trino");
  GroupQueries queries(table);
  queries.SetWeight(TwoPieces());
  const std::string sums =
      "SUM(CAST(FLOOR(w * CAST(2 AS DOUBLE)) AS BIGINT)) AS p0, "
      "SUM(CAST(FLOOR(w * CAST(16 AS DOUBLE)) - FLOOR(w * CAST(2 AS DOUBLE)) * CAST(8 AS DOUBLE) AS BIGINT)) AS p1";
  EXPECT_EQ(queries.Rows(PlaceOf({"T"})), "SELECT COUNT(*), " + sums + " FROM (SELECT 1 AS one, W AS w FROM T) s");
  const std::string arm =
      "SELECT c AS v, COUNT(*) AS n, " + sums + " FROM (SELECT <n> AS c, W AS w FROM {}) s GROUP BY c";
  EXPECT_EQ(queries.Groups(PlaceOf({"T"}), 0, std::nullopt),
            "SELECT CAST(v AS VARCHAR), n, p0, p1 FROM (" + fmt::format(fmt::runtime(arm), "T") + ") g");
  EXPECT_EQ(queries.Groups(PlaceOf({"A", "B"}), 0, std::nullopt),
            "SELECT CAST(v AS VARCHAR), SUM(n), SUM(p0), SUM(p1) FROM (" + fmt::format(fmt::runtime(arm), "A") +
                " UNION ALL " + fmt::format(fmt::runtime(arm), "B") + ") g GROUP BY v");
}

TEST(GroupQueries, countPairsOfValueAndWeight) {
  const SqlTable table = TableIn("Trino");
  GroupQueries queries(table);
  queries.SetWeight(Pairs());
  EXPECT_EQ(queries.Rows(PlaceOf({"T"})), "SELECT COUNT(*) FROM (SELECT 1 AS one FROM T) s");
  const std::string arm = "SELECT c AS v, COUNT(*) AS n, u FROM (SELECT <n> AS c, <w> AS u FROM {}) s GROUP BY c, u";
  EXPECT_EQ(queries.Groups(PlaceOf({"T"}), 0, std::nullopt),
            "SELECT CAST(v AS VARCHAR), n, CAST(u AS VARCHAR) FROM (" + fmt::format(fmt::runtime(arm), "T") + ") g");
  EXPECT_EQ(queries.Groups(PlaceOf({"A", "B"}), 0, std::nullopt),
            "SELECT CAST(v AS VARCHAR), SUM(n), CAST(u AS VARCHAR) FROM (" + fmt::format(fmt::runtime(arm), "A") +
                " UNION ALL " + fmt::format(fmt::runtime(arm), "B") + ") g GROUP BY v, u");
}

TEST(GroupQueries, nameTheSetOfARowOfGroupingSets) {
  const SqlTable table = TableIn("Trino");
  GroupQueries queries(table);
  EXPECT_EQ(queries.GroupingSets(PlaceOf({"T"}), {0, 1}),
            "SELECT CASE WHEN GROUPING(c0) = 0 THEN 0 WHEN GROUPING(c1) = 0 THEN 1 END AS k, "
            "CASE WHEN GROUPING(c0) = 0 THEN CAST(c0 AS VARCHAR) WHEN GROUPING(c1) = 0 THEN CAST(c1 AS VARCHAR) END AS "
            "v, COUNT(*) AS n FROM (SELECT <n> AS c0, <s> AS c1 FROM T) s GROUP BY GROUPING SETS ((c0), (c1))");
  queries.SetWeight(Pairs());
  EXPECT_THAT(queries.GroupingSets(PlaceOf({"T"}), {0, 1}),
              HasSubstr("COUNT(*) AS n, CAST(u AS VARCHAR) AS u FROM (SELECT <n> AS c0, <s> AS c1, <w> AS u FROM T) s "
                        "GROUP BY GROUPING SETS ((c0, u), (c1, u))"));
}

TEST(GroupQueries, groupColumnsTogether) {
  const SqlTable table = TableIn("Trino");
  const GroupQueries queries(table);
  EXPECT_EQ(queries.JointGroups(PlaceOf({"T"}), {1, 0}),
            "SELECT CAST(c0 AS VARCHAR), CAST(c1 AS VARCHAR), n FROM (SELECT c0, c1, COUNT(*) AS n FROM "
            "(SELECT <s> AS c0, <n> AS c1 FROM T) s GROUP BY c0, c1) g");
}

TEST(GroupQueries, addUpWhatColumnsTogetherHaveInCommonInSeveralArms) {
  const SqlTable table = TableIn("Trino");
  GroupQueries queries(table);
  const std::string arm = "SELECT c0, c1, COUNT(*) AS n FROM (SELECT <s> AS c0, <n> AS c1 FROM {}) s GROUP BY c0, c1";
  EXPECT_EQ(queries.JointGroups(PlaceOf({"A", "B"}), {1, 0}),
            "SELECT CAST(c0 AS VARCHAR), CAST(c1 AS VARCHAR), SUM(n) FROM (" + fmt::format(fmt::runtime(arm), "A") +
                " UNION ALL " + fmt::format(fmt::runtime(arm), "B") + ") g GROUP BY c0, c1");
  queries.SetWeight(Pairs());
  EXPECT_THAT(queries.JointGroups(PlaceOf({"A", "B"}), {1, 0}), EndsWith(" GROUP BY c0, c1, u) g GROUP BY c0, c1, u"));
}

TEST(GroupQueries, askForFirstRowsInTheEnginesWay) {
  const auto firstRowsIn = [](const std::string& engine) {
    const SqlTable table = TableIn(engine);
    return GroupQueries(table).FirstRows(PlaceOf({"T"}), 5);
  };
  EXPECT_EQ(firstRowsIn("Trino"),
            "SELECT CAST(<n> AS VARCHAR), CAST(<s> AS VARCHAR), CAST(<w> AS VARCHAR) FROM T LIMIT 5");
  EXPECT_EQ(
      firstRowsIn("Microsoft SQL Server"),
      "SELECT TOP (5) CAST(<n> AS NVARCHAR(MAX)), CAST(<s> AS NVARCHAR(MAX)), CONVERT(VARCHAR(40), <w>, 3) FROM T");
  EXPECT_THAT(firstRowsIn("some engine"), HasSubstr(" FROM T FETCH FIRST 5 ROWS ONLY"));
}

TEST(GroupQueries, compareTextsByteByByteWhereACollationMergesThem) {
  const SqlTable table = TableIn("PostgreSQL");
  GroupQueries queries(table);
  EXPECT_EQ(queries.Key(1), "CAST(<s> AS text)");
  queries.CompareBytes(1);
  EXPECT_EQ(queries.Key(1), "(CAST(<s> AS text) COLLATE \"C\")");
  EXPECT_EQ(queries.Key(0), "<n>");
}

TEST(GroupQueries, fenceTheWeightOnlyWhereAllRowsAreOnOneServer) {
  const SqlTable table = TableIn("PostgreSQL");
  GroupQueries queries(table);
  EXPECT_THAT(queries.Rows(PlaceOf({"T"})), Not(HasSubstr("OFFSET")));
  queries.SetWeight(TwoPieces());
  EXPECT_THAT(queries.Rows(PlaceOf({"T"})), HasSubstr("FROM T OFFSET '0') s"));
  EXPECT_THAT(queries.Rows(PlaceOf({"A", "B"})), Not(HasSubstr("OFFSET")));
}

class GroupQueriesOfFiles : public SqliteFolder {};

TEST_F(GroupQueriesOfFiles, groupColumnsWhateverTheirNames) {
  const std::vector<std::string> names = {"a\"b",
                                          "x; DROP TABLE t; --",
                                          "{} {0} {fn now()}",
                                          "%s ?",
                                          "it's",
                                          "/* c",
                                          "\\",
                                          "SELECT",
                                          "größe 名",
                                          " ",
                                          "c",
                                          "v",
                                          "[n]`u`"};
  std::string columns;
  std::string values;
  for (std::size_t i = 0; i < names.size(); ++i) {
    std::string quoted;
    for (const char byte : names[i]) quoted += byte == '"' ? "\"\"" : std::string(1, byte);
    columns += fmt::format("{}\"{}\"", i > 0 ? ", " : "", quoted);
    values += fmt::format("{}'{}'", i > 0 ? ", " : "", i);
  }
  SqlTableOptions options;
  options.addresses = {
      "sqlite:" + Write(fmt::format("CREATE TABLE t ({}); INSERT INTO t VALUES ({}), ({})", columns, values, values))};
  SqlTable table(options);
  const GroupQueries queries(table);
  std::vector<std::size_t> all;
  for (std::size_t i = 0; i < names.size(); ++i) {
    all.push_back(i);
    EXPECT_EQ(table.columns().at(i).name, names[i]);
    std::map<std::string, std::int64_t> groups;
    table.Ask([&](const SqlPlace& place) { return queries.Groups(place, i, std::nullopt); },
              [&](SqlRows& rows) { groups[std::string(rows.Text(0).value_or("NULL"))] += WholeCell(rows, 1); });
    EXPECT_THAT(groups, ElementsAre(Pair(std::to_string(i), 2))) << names[i];
  }
  int rowsOfAll = 0;
  table.Ask([&](const SqlPlace& place) { return queries.JointGroups(place, all); },
            [&](SqlRows& rows) {
              ++rowsOfAll;
              for (const std::size_t i : all) EXPECT_EQ(rows.Text(i), std::to_string(i));
              EXPECT_EQ(WholeCell(rows, all.size()), 2);
            });
  EXPECT_EQ(rowsOfAll, 1);
}

TEST_F(GroupQueriesOfFiles, tellTextsApartThatTheColumnTakesForEqual) {
  SqlTableOptions options;
  options.addresses = {"sqlite:" +
                       Write("CREATE TABLE t (s TEXT COLLATE NOCASE); INSERT INTO t VALUES ('a'), ('A'), ('a')")};
  SqlTable table(options);
  const GroupQueries queries(table);
  std::map<std::string, std::int64_t> groups;
  table.Ask([&](const SqlPlace& place) { return queries.Groups(place, 0, std::nullopt); },
            [&](SqlRows& rows) { groups[std::string(rows.Text(0).value_or("NULL"))] += WholeCell(rows, 1); });
  EXPECT_THAT(groups, ElementsAre(Pair("A", 1), Pair("a", 2)));
}

}  // namespace
}  // namespace runtime::data
