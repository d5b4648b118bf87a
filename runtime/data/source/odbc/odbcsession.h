// An open connection of ODBC, and what its driver is known to do.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <sql.h>
#include <sqlext.h>

#include "runtime/data/source/odbc/connectionstring.h"
#include "runtime/data/source/odbc/credentials.h"
#include "runtime/data/source/odbc/odbcfaults.h"
#include "runtime/data/source/odbc/odbchandles.h"

namespace runtime::data {

/// How cells are fetched so that long ones come whole.
enum class CellFetching {
  Pieces,     // one cell after the other, in their order
  BoundRow,   // a row at a time into buffers; what does not fit is fetched again in pieces
  BoundBlock  // many rows at a time likewise
};

/// Connected, in a transaction that only reads, until it goes. Throws DataError.
class OdbcSession {
 public:
  /// `connectionString`: what stands behind "odbc:".
  explicit OdbcSession(std::string_view connectionString);
  ~OdbcSession();
  OdbcSession(const OdbcSession&) = delete;
  OdbcSession& operator=(const OdbcSession&) = delete;

  const OdbcHandle& connection() const { return fConnection; }
  std::string name() const { return fSource.Name(); }
  TextForm form() const { return fForm; }
  CellFetching fetching() const { return fFetching; }
  /// The driver is psqlODBC, whatever engine of PostgreSQL's family answers.
  bool isPostgres() const { return fIsPostgres; }
  /// Numbers come as texts from the engine itself, so that asking for texts loses nothing.
  bool hasTextsOfNumbers() const { return fHasTextsOfNumbers; }

  /// What SQLGetInfo tells.
  std::string Info(SQLUSMALLINT what) const;
  SQLUINTEGER InfoBits(SQLUSMALLINT what) const;
  SQLUSMALLINT InfoCode(SQLUSMALLINT what) const;

  /// A statement that has run a query.
  std::unique_ptr<OdbcHandle> Execute(const std::string& query) const;
  /// What the engine has against a query; nothing when it ran.
  std::optional<std::vector<OdbcDiagnosis>> ProblemsOf(const std::string& query) const;
  /// The same, for an answer that memory holds whole: PostgreSQL plans parallel workers only where there is no cursor.
  std::unique_ptr<OdbcHandle> ExecuteWhole(const std::string& query) const;
  /// A statement that nothing was done with.
  std::unique_ptr<OdbcHandle> NewStatement() const;

  [[noreturn]] void Fail(const OdbcHandle& handle, OdbcStep step) const;
  [[noreturn]] void Fail(const std::vector<OdbcDiagnosis>& diagnoses, OdbcStep step) const;

 private:
  /// Whether a query ran on a fresh statement.
  bool RunOn(const OdbcHandle& statement, const std::string& query) const;
  void Connect();
  bool Try(const Credentials& credentials);
  void AddPostgresOptions();
  std::string DriverFile() const;
  void FindForm();
  void FindFetching();
  bool Recovers(CellFetching fetching);
  void BeginReading();

  ConnectionString fSource;
  OdbcHandle fEnvironment;
  OdbcHandle fConnection;
  TextForm fForm = TextForm::Wide;
  CellFetching fFetching = CellFetching::Pieces;
  bool fIsPostgres = false;
  bool fHasTextsOfNumbers = false;
  bool fOwnCursors = false;  // whether rows come through a cursor is ours to say
};

}  // namespace runtime::data
