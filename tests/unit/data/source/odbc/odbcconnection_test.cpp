#include "runtime/data/source/odbc/odbcconnection.h"

#include <algorithm>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "runtime/data/open.h"
#include "runtime/data/source/odbc/odbchandles.h"
#include "tests/unit/data/source/sql/askedrows.h"
#include "tests/unit/data/source/sqlitefolder.h"

namespace runtime::data {
namespace {

using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;

/// Tables in a SQLite file, read through its driver.
class OdbcConnections : public SqliteFolder {
 protected:
  void SetUp() override {
    const std::vector<OdbcEntry> drivers = InstalledDrivers(OdbcHandle());
    if (std::none_of(drivers.begin(), drivers.end(), [](const OdbcEntry& driver) { return driver.name == "SQLite3"; }))
      GTEST_SKIP() << "ODBC's driver \"SQLite3\" is not installed (Debian: libsqliteodbc)";
  }
  std::unique_ptr<SqlConnection> Open(const std::string& sql) const {
    return OpenSqlConnection("odbc:Driver={SQLite3};Database=" + Write(sql));
  }
};

TEST_F(OdbcConnections, giveValuesAsTextsAndNothingForNull) {
  const auto connection = Open(
      "CREATE TABLE t (i INTEGER, s TEXT, b BLOB); INSERT INTO t VALUES (1, 'x', x'00FF'), "
      "(-9223372036854775808, '', NULL), (NULL, NULL, x'')");
  EXPECT_EQ(connection->engine(), "SQLite");
  EXPECT_THAT(AskedColumn(*connection, "SELECT i FROM t"), ElementsAre("1", "-9223372036854775808", std::nullopt));
  EXPECT_THAT(AskedColumn(*connection, "SELECT s FROM t"), ElementsAre("x", "", std::nullopt));
}

TEST_F(OdbcConnections, textsOfAnyLengthComeWhole) {
  std::vector<std::size_t> lengths;
  for (std::size_t length = 0; length <= 20; ++length) lengths.push_back(length);
  for (const std::size_t border : {32UL, 256UL, 8191UL, 65535UL, 131070UL})
    for (std::size_t length = border - 3; length <= border + 3; ++length) lengths.push_back(length);
  lengths.push_back(300'000);
  std::string sql = "CREATE TABLE t (s TEXT); ";
  std::vector<std::optional<std::string>> expected;
  for (const std::string letter : {"a", "\xc3\xa4", "\xe2\x82\xac", "\xf0\x9d\x84\x9e"}) {
    for (const std::size_t length : lengths) {
      std::string text = fmt::format("{}", length);  // so that letters lie at every place
      text.resize(std::min(text.size(), length));
      while (text.size() < length) text += letter;
      sql += fmt::format("INSERT INTO t VALUES ('{}'); ", text);
      expected.emplace_back(text);
    }
  }
  const auto connection = Open(sql);
  const auto cells = AskedColumn(*connection, "SELECT s FROM t ORDER BY rowid");
  ASSERT_EQ(cells.size(), expected.size());
  for (std::size_t i = 0; i < cells.size(); ++i) EXPECT_TRUE(cells[i] == expected[i]) << expected[i]->size();
}

TEST_F(OdbcConnections, cellsMayBeAskedForInAnyOrderAndTwice) {
  const auto connection = Open("CREATE TABLE t (a, b); INSERT INTO t VALUES ('x', NULL), ('y', 'z')");
  const auto rows = connection->Ask("SELECT a, b FROM t ORDER BY a");
  ASSERT_TRUE(rows->Next());
  EXPECT_EQ(rows->Text(1), std::nullopt);
  EXPECT_EQ(rows->Text(0), "x");
  ASSERT_TRUE(rows->Next());
  EXPECT_EQ(rows->Text(1), "z");
  EXPECT_EQ(rows->Text(0), "y");
  EXPECT_EQ(rows->Text(0), "y");
  EXPECT_FALSE(rows->Next());
}

TEST_F(OdbcConnections, oddNamesAreOnlyNames) {
  const std::string odd = "a \"b\"; {fn now()} %s ? '";
  const auto connection = Open(
      "CREATE TABLE \"a \"\"b\"\"; {fn now()} %s ? '\" (\"{d x} \"\"; ? %s '\" INTEGER); "
      "INSERT INTO \"a \"\"b\"\"; {fn now()} %s ? '\" VALUES (7)");
  const std::string table = connection->FindTable(odd);
  const std::vector<SqlColumn> columns = connection->ColumnsOf(table);
  ASSERT_EQ(columns.size(), 1U);
  EXPECT_EQ(columns.front().name, "{d x} \"; ? %s '");
  EXPECT_THAT(AskedColumn(*connection, "SELECT " + connection->Quoted(columns.front().name) + " FROM " + table),
              ElementsAre("7"));
  EXPECT_THAT(AskedColumn(*connection, "SELECT '{fn now()} ? %s'"), ElementsAre("{fn now()} ? %s"));
}

TEST_F(OdbcConnections, tablesAreFoundOrThoseThereAreListed) {
  const auto connection = Open("CREATE TABLE Survey (x); CREATE TABLE b (y); CREATE VIEW v AS SELECT 1 AS z");
  EXPECT_EQ(connection->FindTable("Survey"), "\"Survey\"");
  EXPECT_EQ(connection->FindTable("v"), "\"v\"");
  EXPECT_THAT(DataErrorOf([&] { connection->FindTable("nosuch"); }),
              AllOf(HasSubstr("there is no table \"nosuch\""), HasSubstr("\"Survey\""), HasSubstr("\"v\" (view)")));
  EXPECT_THAT(DataErrorOf([&] { connection->OnlyTable(); }),
              HasSubstr("the database holds 3 tables; choose one with --table NAME: "));
}

TEST_F(OdbcConnections, failuresNameTheSourceAndTheCause) {
  const auto connection = Open("CREATE TABLE t (x)");
  EXPECT_THAT(
      DataErrorOf([&] { connection->Ask("SELECT nosuch FROM t"); }),
      AllOf(HasSubstr("odbc:Driver={SQLite3};Database="), HasSubstr("the query fails: no such column: nosuch")));
  EXPECT_THAT(DataErrorOf([] { OpenSqlConnection("odbc:Driver={No Such Driver};Server=x"); }),
              AllOf(HasSubstr("the ODBC driver \"No Such Driver\" is not installed"), HasSubstr("\"SQLite3\"")));
  EXPECT_THAT(DataErrorOf([] { OpenSqlConnection("odbc:DSN=nosuchsource"); }),
              HasSubstr("there is no data source \"nosuchsource\""));
}

}  // namespace
}  // namespace runtime::data
