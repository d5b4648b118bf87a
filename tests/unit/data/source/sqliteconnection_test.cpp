#include "runtime/data/source/sqlite/sqliteconnection.h"

#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "runtime/data/open.h"
#include "tests/unit/data/source/sql/askedrows.h"
#include "tests/unit/data/source/sqlitefolder.h"

namespace runtime::data {
namespace {

using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;

class SqliteConnections : public SqliteFolder {
 protected:
  std::unique_ptr<SqlConnection> Open(const std::string& sql) const {
    return OpenSqlConnection("sqlite:" + Write(sql));
  }
};

TEST_F(SqliteConnections, givesEveryKindOfValueAsText) {
  const auto connection = Open(
      "CREATE TABLE t (v); INSERT INTO t VALUES (1), (-9223372036854775808), (0.1), (1e300), "
      "(2.0), ('x'), (''), (x'00FF'), (NULL), (9e999)");
  EXPECT_EQ(connection->engine(), "SQLite");
  EXPECT_THAT(AskedColumn(*connection, "SELECT v FROM t"),
              ElementsAre("1", "-9223372036854775808", "0.1", "1e+300", "2", "x", "", "00FF", std::nullopt, "inf"));
}

TEST_F(SqliteConnections, typesFollowFromTheValues) {
  const auto connection = Open(
      "CREATE TABLE t (i, r, s, m, n, big, bigreal); INSERT INTO t VALUES (1, 1.5, 'x', 1, NULL, 9007199254740993, "
      "9007199254740993), (NULL, 2, x'00', 'a', NULL, 1, 0.5)");
  std::vector<std::string> types;
  for (const std::string relation : {"t", "(SELECT * FROM t) AS q"}) {
    types.clear();
    for (const SqlColumn& column : connection->ColumnsOf(relation))
      types.push_back(
          fmt::format("{} {}{}", column.name, static_cast<int>(column.type), column.isMixed ? " mixed" : ""));
    const auto word = [](SqlType type) { return std::to_string(static_cast<int>(type)); };
    EXPECT_THAT(types,
                ElementsAre("i " + word(SqlType::Whole), "r " + word(SqlType::Double), "s " + word(SqlType::Text),
                            "m " + word(SqlType::Text) + " mixed", "n " + word(SqlType::Text),
                            "big " + word(SqlType::Whole), "bigreal " + word(SqlType::Text)))
        << relation;
  }
}

TEST_F(SqliteConnections, twoColumnsOfOneNameAreRefused) {
  const auto connection = Open("CREATE TABLE t (a, b)");
  EXPECT_THAT(DataErrorOf([&] { connection->ColumnsOf("(SELECT a, b AS \"A\" FROM t) AS q"); }),
              HasSubstr("columns 1 and 2 of the query are both named \"a\"; name them apart with AS"));
}

TEST_F(SqliteConnections, asManyColumnsAsATableHolds) {
  std::string columns;
  for (int i = 0; i < 2000; ++i) columns += fmt::format("{}c{} INT", i > 0 ? ", " : "", i);
  EXPECT_EQ(Open("CREATE TABLE t (" + columns + ")")->ColumnsOf("t").size(), 2000U);
}

TEST_F(SqliteConnections, tablesAreFoundByTheirNameInAnyForm) {
  const auto connection = Open(
      "CREATE TABLE Survey (x); CREATE TABLE \"a \"\"b\"\"; {fn now()} %s ?\" (y); CREATE VIEW v AS SELECT 1 AS z");
  for (const char* name : {"Survey", "survey", "main.survey", "\"survey\"", "MAIN.[SURVEY]"})
    EXPECT_EQ(connection->FindTable(name), "\"Survey\"") << name;
  const std::string odd = "a \"b\"; {fn now()} %s ?";
  EXPECT_EQ(connection->ColumnsOf(connection->FindTable(odd)).front().name, "y");
  EXPECT_EQ(connection->FindTable("V"), "\"v\"");
  EXPECT_THAT(DataErrorOf([&] { connection->FindTable("other.survey"); }),
              AllOf(HasSubstr("there is no table \"other.survey\""), HasSubstr("\"Survey\"")));
  EXPECT_THAT(DataErrorOf([&] { connection->OnlyTable(); }), HasSubstr("3 tables; choose one with --table NAME"));
}

TEST_F(SqliteConnections, failuresNameTheAddress) {
  const std::string missing = "sqlite:" + fFolder.path() + "/missing.sqlite";
  EXPECT_EQ(DataErrorOf([&] { OpenSqlConnection(missing); }),
            missing + ": cannot open the file: No such file or directory");
  EXPECT_THAT(DataErrorOf([&] { OpenSqlConnection("sqlite:" + fFolder.path()); }), HasSubstr("this is a directory"));
  EXPECT_THAT(DataErrorOf([] { OpenSqlConnection("sqlite:"); }), HasSubstr("the name of a SQLite file is missing"));
  const auto connection = Open("CREATE TABLE t (x)");
  EXPECT_EQ(DataErrorOf([&] { connection->Ask("SELECT nosuch FROM t"); }),
            connection->name() + ": the query fails: no such column: nosuch");
}

TEST_F(SqliteConnections, nothingCanBeWritten) {
  const auto connection = Open("CREATE TABLE t (x); INSERT INTO t VALUES (1)");
  EXPECT_THAT(DataErrorOf([&] { connection->Run("DELETE FROM t"); }), HasSubstr("readonly"));
  EXPECT_THAT(AskedColumn(*connection, "SELECT x FROM t"), ElementsAre("1"));
}

TEST_F(SqliteConnections, relativePathsAreTakenFromTheWorkingFolder) {
  Write("CREATE TABLE t (x)", "rel.db");
  const std::filesystem::path before = std::filesystem::current_path();
  std::filesystem::current_path(fFolder.path());
  EXPECT_EQ(OpenSqlConnection("SQLite:rel.db")->OnlyTable(), "\"t\"");
  std::filesystem::current_path(before);
}

}  // namespace
}  // namespace runtime::data
