#include "runtime/data/source/sqlite/sqlitetable.h"

#include <fstream>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "runtime/data/open.h"
#include "tests/unit/data/source/collectedcolumns.h"
#include "tests/unit/data/source/sqlitefolder.h"

namespace runtime::data {
namespace {

using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;

class SqliteFiles : public SqliteFolder {
 protected:
  static std::string ErrorOf(const std::string& path, const std::optional<std::string>& table = std::nullopt) {
    try {
      OpenSqliteTable(path, table);
    } catch (const DataError& error) {
      return error.what();
    }
    return "";
  }
};

TEST_F(SqliteFiles, valuesDecideTheTypeOfTheirColumn) {
  const auto source = OpenSqliteTable(
      Write("CREATE TABLE t (i, r, s, m, b, n, big); INSERT INTO t VALUES (1, 1.5, 'x', 1, x'00FF', NULL, 1), "
            "(NULL, 2, NULL, 'a', 'z', NULL, 9007199254740993), (-3, NULL, '', 2.5, NULL, NULL, NULL)"),
      std::nullopt);
  std::vector<FieldType> types;
  for (const SourceColumn& column : source->columns()) types.push_back(column.type);
  EXPECT_THAT(types, ElementsAre(FieldType::Integer, FieldType::Number, FieldType::String, FieldType::String,
                                 FieldType::String, FieldType::String, FieldType::String));
  const auto columns = ReadAll(*source);
  EXPECT_THAT(columns[0].cells, ElementsAre("1", "nan", "-3"));
  EXPECT_THAT(columns[1].cells, ElementsAre("1.5", "2", "nan"));
  EXPECT_THAT(columns[2].cells, ElementsAre("x", "", ""));
  EXPECT_THAT(columns[3].cells, ElementsAre("1", "a", "2.5"));
  EXPECT_THAT(columns[4].cells, ElementsAre("00FF", "z", ""));
  EXPECT_THAT(columns[6].cells, ElementsAre("1", "9007199254740993", ""));
  EXPECT_THAT(ReadAll(*source, true)[1].cells, ElementsAre("1.5", "2", "")) << "numbers as texts";
}

TEST_F(SqliteFiles, longTablesAreReadPieceByPiece) {
  const auto source = OpenSqliteTable(
      Write("CREATE TABLE t AS WITH RECURSIVE c(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM c WHERE i < 5000) "
            "SELECT i, 'n' || i AS s FROM c"),
      std::nullopt);
  const auto columns = ReadAll(*source);
  EXPECT_EQ(columns[0].cells.back(), "5000");
  EXPECT_EQ(columns[1].cells[2048], "n2049");
}

TEST_F(SqliteFiles, oneOfSeveralTablesIsNamed) {
  const std::string path = Write("CREATE TABLE a (x); CREATE TABLE \"b \"\"c\" (y); CREATE VIEW v AS SELECT 1 AS z");
  EXPECT_THAT(ErrorOf(path), AllOf(HasSubstr("t.sqlite: the file holds 3 tables; choose one with --table NAME: \"a\""),
                                   HasSubstr("\"v\" (view)")));
  EXPECT_EQ(OpenSqliteTable(path, "b \"c")->columns()[0].name, "y");
  EXPECT_EQ(OpenSqliteTable(path, "v")->rowCount(), 1);
  EXPECT_THAT(ErrorOf(path, "nosuch"), HasSubstr("there is no table \"nosuch\""));
}

TEST_F(SqliteFiles, aViewBesideTheOnlyTableIsNoChoice) {
  const auto source = OpenSqliteTable(Write("CREATE TABLE a (x); CREATE VIEW v AS SELECT 1 AS z"), std::nullopt);
  EXPECT_EQ(source->columns()[0].name, "x");
}

TEST_F(SqliteFiles, aFileOfAnotherKindIsTold) {
  EXPECT_THAT(ErrorOf(fFolder.Write("x.sqlite", "no database at all, but long enough to look at for a while\n")),
              AllOf(HasSubstr("x.sqlite: the SQLite file cannot be read"), HasSubstr("not a database")));
  const std::string path = Write(
      "CREATE TABLE t AS WITH RECURSIVE c(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM c WHERE "
      "i < 5000) SELECT i, 'n' || i AS s FROM c");
  std::string bytes;
  {
    std::ifstream file(path, std::ios::binary);
    bytes.assign(std::istreambuf_iterator<char>(file), {});
  }
  EXPECT_THAT(ErrorOf(fFolder.Write("cut.sqlite", bytes.substr(0, bytes.size() / 2))), HasSubstr("cut.sqlite"));
  EXPECT_THAT(ErrorOf(Write("VACUUM", "none.sqlite")), testing::Not(""));
}

TEST_F(SqliteFiles, nothingIsWritten) {
  const std::string path = Write("CREATE TABLE t (x); INSERT INTO t VALUES (1)", "a?b#c%20.sqlite");
  std::filesystem::permissions(path, std::filesystem::perms::owner_read);
  EXPECT_EQ(OpenSqliteTable(path, std::nullopt)->rowCount(), 1);
  std::size_t files = 0;
  for ([[maybe_unused]] const auto& entry : std::filesystem::directory_iterator(fFolder.path())) ++files;
  EXPECT_EQ(files, 1U);
}

TEST_F(SqliteFiles, textsAreReadWhateverTheFileKeepsThemIn) {
  const auto source = OpenSqliteTable(Write("PRAGMA encoding = 'UTF-16'; CREATE TABLE \"tÃ¤\" (s); INSERT INTO \"tÃ¤\" "
                                            "VALUES ('Ã¤â¬ð')"),
                                      std::nullopt);
  EXPECT_THAT(ReadAll(*source)[0].cells, ElementsAre("Ã¤â¬ð"));
}

TEST_F(SqliteFiles, isOpenedAsADataset) {
  OpenOptions options;
  options.path = Write("CREATE TABLE t (x, s); INSERT INTO t VALUES (1, 'a'), (2, 'b')", "data.anything");
  EXPECT_EQ(OpenDataset(options).dataset->caseCount(), 2) << "known by its first bytes";
}

}  // namespace
}  // namespace runtime::data
