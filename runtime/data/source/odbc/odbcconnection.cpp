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
#include "runtime/data/source/sql/tablename.h"
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
    Keep();
    if (const auto problems = fSession.ProblemsOf(NoRowsOf(quoted))) {
      BackTo();
      fSession.Fail(*problems, OdbcStep::Asking);
    }
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
    CheckColumnNames(columns, fName, relation);
    const auto table = fTables.find(relation);
    if (table == fTables.end()) return columns;
    const std::vector<std::string> comments = Comments(table->second);
    for (std::size_t i = 0; i < columns.size() && comments.size() == columns.size(); ++i)
      columns[i].description = comments[i];
    return columns;
  }

 private:
  static std::string NoRowsOf(const std::string& relation) { return "SELECT * FROM " + relation + " WHERE 1 = 0"; }

  std::vector<SqlColumn> Describe(const std::string& relation) const {
    const std::unique_ptr<OdbcHandle> statement = fSession.Execute(NoRowsOf(relation));
    std::vector<SqlColumn> columns;
    for (const OdbcColumn& described : DescribeColumns(fSession, *statement))
      columns.push_back(SqlColumnOf(fSession, *statement, described, columns.size()));
    return columns;
  }

  /// A table that the driver does not list may be there nevertheless.
  std::string FindUnlisted(const std::string& table) {
    std::vector<std::string> names = {Quoted(table)};
    if (const std::optional<std::vector<NamePart>> parts = SplitTableName(table)) {
      names.emplace_back();
      for (const NamePart& part : *parts)
        names.back() +=
            (names.back().empty() ? "" : ".") + Quoted(part.isQuoted ? part.name : FoldedName(fSession, part.name));
    }
    for (const std::string& name : names) {
      Keep();
      const std::optional<std::vector<OdbcDiagnosis>> problems = fSession.ProblemsOf(NoRowsOf(name));
      if (!problems) return name;
      BackTo();
      if (IsAboutPermission(problems->front())) fSession.Fail(*problems, OdbcStep::Asking);
    }
    const std::vector<OdbcTable> tables = OdbcTables(fSession);
    throw DataError(fmt::format("{}: there is no table {}; {}", fName, QuotedCell(table),
                                tables.empty() ? "this user sees none" : "the database holds " + ListOf(tables)));
  }

  /// The comments are no reason to fail.
  std::vector<std::string> Comments(const OdbcTable& table) {
    Keep();
    try {
      return fSession.isPostgres() ? PostgresCommentsOf(fSession, table) : CommentsOf(fSession, table);
    } catch (const DataError&) {
      BackTo();
      return {};
    }
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
