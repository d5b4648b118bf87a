#include "runtime/data/source/odbc/odbcconnection.h"

#include <algorithm>
#include <cstddef>
#include <map>
#include <optional>
#include <string_view>
#include <utility>
#include <vector>

#include <fmt/format.h>

#include "runtime/data/open.h"
#include "runtime/data/source/odbc/odbccolumns.h"
#include "runtime/data/source/odbc/odbcrows.h"
#include "runtime/data/source/odbc/odbcsession.h"
#include "runtime/data/source/odbc/odbctables.h"
#include "runtime/data/source/sql/columnnames.h"
#include "runtime/data/typing/quotedcell.h"

namespace runtime::data {
namespace {

constexpr std::string_view kScheme = "odbc:";

class OdbcConnection : public SqlConnection {
 public:
  explicit OdbcConnection(const std::string& address) : fSession(std::string_view(address).substr(kScheme.size())) {
    fName = fSession.name();
    fEngine = fSession.Info(SQL_DBMS_NAME);
  }

  std::string Quoted(std::string_view identifier) const override { return QuotedOf(fSession, identifier); }

  std::unique_ptr<SqlRows> Ask(const std::string& query) override {
    return std::make_unique<OdbcRows>(fSession, fSession.Execute(query), OdbcRowsOptions{fSession.fetching()});
  }

  std::unique_ptr<SqlRows> AskWhole(const std::string& query) override {
    return std::make_unique<OdbcRows>(fSession, fSession.ExecuteWhole(query), OdbcRowsOptions{fSession.fetching()});
  }

  void Run(const std::string& statement) override { fSession.Execute(statement); }

  // Only PostgreSQL and its family give up a transaction for a query that failed.
  void Keep() override {
    if (!fSession.isPostgres()) return;
    if (fHasSavepoint) Run("RELEASE SAVEPOINT codebook_kept");
    fHasSavepoint = false;
    Run("SAVEPOINT codebook_kept");
    fHasSavepoint = true;
  }
  void BackTo() override {
    if (fHasSavepoint) Run("ROLLBACK TO SAVEPOINT codebook_kept");
  }

  std::string FindTable(const std::string& table) override {
    const std::optional<OdbcTable> found = FindOdbcTable(fSession, table);
    if (!found) return FindUnlisted(table);
    std::string quoted = QuotedOf(fSession, *found);
    Describe(quoted);  // fails when it may not be read
    fTables[quoted] = *found;
    return quoted;
  }

  std::string OnlyTable() override {
    std::vector<OdbcTable> tables = OdbcTables(fSession);
    if (tables.empty()) throw DataError(fName + ": the database holds no table that this user sees");
    std::vector<OdbcTable> stored;
    std::copy_if(tables.begin(), tables.end(), std::back_inserter(stored),
                 [](const OdbcTable& table) { return !table.isView; });
    const std::vector<OdbcTable>& candidates = stored.empty() ? tables : stored;
    if (candidates.size() > 1)
      throw DataError(fmt::format("{}: the database holds {} tables; choose one with --table NAME: {}", fName,
                                  tables.size(), ListOf(tables)));
    std::string quoted = QuotedOf(fSession, candidates.front());
    fTables[quoted] = candidates.front();
    return quoted;
  }

  std::vector<SqlColumn> ColumnsOf(const std::string& relation) override {
    std::vector<SqlColumn> columns = Describe(relation);
    CheckColumnNames(columns, fName);
    const auto table = fTables.find(relation);
    if (table == fTables.end()) return columns;
    const std::vector<std::string> comments = CommentsOf(fSession, table->second);
    for (std::size_t i = 0; i < columns.size() && comments.size() == columns.size(); ++i)
      columns[i].description = comments[i];
    return columns;
  }

 private:
  std::vector<SqlColumn> Describe(const std::string& relation) const {
    const std::unique_ptr<OdbcHandle> statement = fSession.Execute("SELECT * FROM " + relation + " WHERE 1 = 0");
    std::vector<SqlColumn> columns;
    for (const OdbcColumn& described : DescribeColumns(fSession, *statement))
      columns.push_back(SqlColumnOf(fSession, *statement, described, columns.size()));
    return columns;
  }

  /// A table that the driver does not list may be there nevertheless.
  std::string FindUnlisted(const std::string& table) {
    const std::string quoted = Quoted(table);
    Keep();
    try {
      Describe(quoted);
      return quoted;
    } catch (const DataError&) {
      BackTo();
    }
    const std::vector<OdbcTable> tables = OdbcTables(fSession);
    throw DataError(fmt::format("{}: there is no table {}; {}", fName, QuotedCell(table),
                                tables.empty() ? "this user sees none" : "the database holds " + ListOf(tables)));
  }

  OdbcSession fSession;
  bool fHasSavepoint = false;
  std::map<std::string, OdbcTable> fTables;  // those found, as parts of a query
};

}  // namespace

std::unique_ptr<SqlConnection> OpenOdbcConnection(const std::string& address) {
  return std::make_unique<OdbcConnection>(address);
}

}  // namespace runtime::data
