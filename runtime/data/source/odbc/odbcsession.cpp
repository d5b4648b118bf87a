#include "runtime/data/source/odbc/odbcsession.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

#include <fmt/format.h>
#include <sqlucode.h>

#include "runtime/data/lowerascii.h"
#include "runtime/data/open.h"
#include "runtime/data/source/odbc/odbcrows.h"
#include "runtime/data/source/odbc/widetext.h"

namespace runtime::data {
namespace {

constexpr std::string_view kPostgresDrivers = "psqlodbc";
constexpr SQLINTEGER kPostgresUsesCursors = 65539;  // psqlODBC's attribute of a connection: UseDeclareFetch

// Every way in which engines select a constant.
constexpr std::array<std::string_view, 3> kTailsOfConstants = {"", " FROM DUAL", " FROM SYSIBM.SYSDUMMY1"};

}  // namespace

OdbcSession::OdbcSession(std::string_view connectionString)
    : fSource(connectionString), fConnection(SQL_HANDLE_DBC, fEnvironment) {
  constexpr std::uintptr_t kLoginSeconds = 15;
  SQLSetConnectAttr(fConnection.get(), SQL_ATTR_LOGIN_TIMEOUT, OdbcNumber(kLoginSeconds), SQL_IS_UINTEGER);
  AddPostgresOptions();
  Connect();
  try {
    FindForm();
    fIsPostgres = LowerAscii(Info(SQL_DRIVER_NAME)).rfind(kPostgresDrivers, 0) == 0;
    fHasTextsOfNumbers = fIsPostgres || Info(SQL_DBMS_NAME) == "SQLite";
    FindFetching();
    BeginReading();
  } catch (...) {
    SQLDisconnect(fConnection.get());
    throw;
  }
}

OdbcSession::~OdbcSession() {
  SQLEndTran(SQL_HANDLE_DBC, fConnection.get(), SQL_ROLLBACK);
  SQLDisconnect(fConnection.get());
}

std::string OdbcSession::DriverFile() const {
  std::string driver;
  if (const std::string* const named = fSource.Find("Driver")) {
    driver = *named;
  } else if (const std::string* const source = fSource.Find("DSN")) {
    for (const OdbcEntry& known : KnownSources(fEnvironment))
      if (LowerAscii(known.name) == LowerAscii(*source)) driver = known.facts.front();
  }
  constexpr std::string_view kFile = "driver=";
  for (const OdbcEntry& installed : InstalledDrivers(fEnvironment)) {
    if (LowerAscii(installed.name) != LowerAscii(driver)) continue;
    for (const std::string& fact : installed.facts)
      if (LowerAscii(fact).rfind(kFile, 0) == 0) driver = fact.substr(kFile.size());
    break;
  }
  return LowerAscii(driver.substr(driver.rfind('/') + 1));
}

void OdbcSession::AddPostgresOptions() {
  if (DriverFile().rfind(kPostgresDrivers, 0) != 0) return;
  fOwnCursors = fSource.Find("UseDeclareFetch") == nullptr;
  // A failed query neither ends the transaction, with what it sees (7.4-1), nor costs a savepoint before each (7.4-2).
  fSource.AddMissing("Protocol", "7.4-0");
  fSource.AddMissing("UseDeclareFetch", "1");
  fSource.AddMissing("Fetch", "1000");
  fSource.AddMissing("BoolsAsChar", "0");
  fSource.AddMissing("TextAsLongVarchar", "0");
  fSource.AddMissing("ByteaAsLongVarBinary", "0");
  fSource.AddMissing("MaxVarcharSize", "255");
  fSource.AddMissing("UpdatableCursors", "0");
}

void OdbcSession::Connect() {
  Credentials credentials;
  if (Try(credentials)) return;
  const std::vector<OdbcDiagnosis> first = fConnection.Diagnoses(TextForm::Wide);
  if (!credentials.hasPassword && IsAboutPassword(first.front()) && AskPassword(name(), credentials.password)) {
    credentials.hasPassword = true;
    if (Try(credentials)) return;
  }
  throw DataError(DescribeFault(fSource, OdbcStep::Connecting, fConnection.Diagnoses(TextForm::Wide), fEnvironment,
                                credentials.password.text()));
}

bool OdbcSession::Try(const Credentials& credentials) {
  Secret<char> text;
  text.text() = fSource.Written();
  if (text.text().size() > Secret<char>::kLongest / 4) throw DataError(name() + ": the connection string is too long");
  // psqlODBC takes braces around a user for a part of the name.
  const bool needsBraces = credentials.user.find_first_of(";{}") != std::string::npos;
  if (!credentials.user.empty() && fSource.Find("UID") == nullptr)
    AppendConnectionKey(text.text(), "UID", credentials.user, needsBraces);
  if (credentials.hasPassword) AppendConnectionKey(text.text(), "PWD", credentials.password.text(), true);
  Secret<char16_t> wide;
  AppendWide(text.text(), wide.text());
  return SQL_SUCCEEDED(SQLDriverConnectW(fConnection.get(), nullptr, reinterpret_cast<SQLWCHAR*>(wide.text().data()),
                                         static_cast<SQLSMALLINT>(wide.text().size()), nullptr, 0, nullptr,
                                         SQL_DRIVER_NOPROMPT));
}

std::string OdbcSession::Info(SQLUSMALLINT what) const {
  return ReadText(fForm, [&](SQLPOINTER buffer, SQLSMALLINT bytes, SQLSMALLINT* length) {
    return (fForm == TextForm::Narrow ? SQLGetInfo : SQLGetInfoW)(fConnection.get(), what, buffer, bytes, length);
  });
}

SQLUINTEGER OdbcSession::InfoBits(SQLUSMALLINT what) const {
  SQLUINTEGER bits = 0;
  return SQL_SUCCEEDED(SQLGetInfo(fConnection.get(), what, &bits, sizeof bits, nullptr)) ? bits : 0;
}

SQLUSMALLINT OdbcSession::InfoCode(SQLUSMALLINT what) const {
  SQLUSMALLINT code = 0;
  return SQL_SUCCEEDED(SQLGetInfo(fConnection.get(), what, &code, sizeof code, nullptr)) ? code : SQLUSMALLINT{0};
}

std::unique_ptr<OdbcHandle> OdbcSession::NewStatement() const {
  auto statement = std::make_unique<OdbcHandle>(SQL_HANDLE_STMT, fConnection);
  // What looks like an escape of ODBC's is a part of a name. Not every driver knows the attribute, or the escapes.
  SQLSetStmtAttr(statement->get(), SQL_ATTR_NOSCAN, OdbcNumber(SQL_NOSCAN_ON), SQL_IS_UINTEGER);
  return statement;
}

bool OdbcSession::RunOn(const OdbcHandle& statement, const std::string& query) const {
  SQLRETURN result = SQL_ERROR;
  if (fForm == TextForm::Narrow) {
    std::string text = query;
    result =
        SQLExecDirect(statement.get(), reinterpret_cast<SQLCHAR*>(text.data()), static_cast<SQLINTEGER>(text.size()));
  } else {
    std::u16string text = WideText(query);
    result =
        SQLExecDirectW(statement.get(), reinterpret_cast<SQLWCHAR*>(text.data()), static_cast<SQLINTEGER>(text.size()));
  }
  return SQL_SUCCEEDED(result) || result == SQL_NO_DATA;
}

std::unique_ptr<OdbcHandle> OdbcSession::Execute(const std::string& query) const {
  std::unique_ptr<OdbcHandle> statement = NewStatement();
  if (!RunOn(*statement, query)) Fail(*statement, OdbcStep::Asking);
  return statement;
}

std::optional<std::vector<OdbcDiagnosis>> OdbcSession::ProblemsOf(const std::string& query) const {
  const std::unique_ptr<OdbcHandle> statement = NewStatement();
  if (RunOn(*statement, query)) return std::nullopt;
  return statement->Diagnoses(fForm);
}

std::unique_ptr<OdbcHandle> OdbcSession::ExecuteWhole(const std::string& query) const {
  if (!fOwnCursors) return Execute(query);
  SQLSetConnectAttr(fConnection.get(), kPostgresUsesCursors, OdbcNumber(0), SQL_IS_UINTEGER);
  std::unique_ptr<OdbcHandle> statement;
  try {
    statement = Execute(query);
  } catch (const DataError&) {
    SQLSetConnectAttr(fConnection.get(), kPostgresUsesCursors, OdbcNumber(1), SQL_IS_UINTEGER);
    throw;
  }
  SQLSetConnectAttr(fConnection.get(), kPostgresUsesCursors, OdbcNumber(1), SQL_IS_UINTEGER);
  return statement;
}

void OdbcSession::Fail(const OdbcHandle& handle, OdbcStep step) const { Fail(handle.Diagnoses(fForm), step); }

void OdbcSession::Fail(const std::vector<OdbcDiagnosis>& diagnoses, OdbcStep step) const {
  throw DataError(DescribeFault(fSource, step, diagnoses, fEnvironment));
}

void OdbcSession::FindForm() {
  constexpr std::array<std::string_view, 2> kLetters = {"\xc3\xa4\xe2\x82\xac\xf0\x9d\x84\x9e", "\xc3\xa4\xe2\x82\xac"};
  for (const std::string_view letters : kLetters) {
    for (const std::string_view tail : kTailsOfConstants) {
      for (const TextForm form : {TextForm::Wide, TextForm::Narrow}) {
        fForm = form;
        try {
          OdbcRows rows(*this, Execute(fmt::format("SELECT '{}' AS a{}", letters, tail)), {CellFetching::Pieces});
          if (rows.Next() && rows.Text(0) == letters) return;
        } catch (const DataError&) {
          // Another form or tail may do.
        }
      }
    }
  }
  fForm = TextForm::Wide;
}

void OdbcSession::FindFetching() {
  const SQLUINTEGER abilities = InfoBits(SQL_GETDATA_EXTENSIONS);
  constexpr SQLUINTEGER kRow = SQL_GD_ANY_COLUMN | SQL_GD_ANY_ORDER | SQL_GD_BOUND;
  if ((abilities & kRow) != kRow) return;
  if ((abilities & SQL_GD_BLOCK) != 0 && Recovers(CellFetching::BoundBlock))
    fFetching = CellFetching::BoundBlock;
  else if (Recovers(CellFetching::BoundRow))
    fFetching = CellFetching::BoundRow;
}

/// Whether cells that do not fit into their buffers come whole, from every row of a block.
bool OdbcSession::Recovers(CellFetching fetching) {
  constexpr std::size_t kShort = 8;
  const std::vector<std::string> texts = {"a longer text than fits: \xc3\xa4\xe2\x82\xac\xf0\x9d\x84\x9e", "short",
                                          "another one that is longer than its buffer \xc3\xa4"};
  for (const std::string_view tail : kTailsOfConstants) {
    std::string query;
    for (const std::string& text : texts)
      query += fmt::format("{}SELECT '{}' AS a{}", query.empty() ? "" : " UNION ALL ", text, tail);
    try {
      OdbcRows rows(*this, Execute(query), {fetching, kShort});
      std::vector<std::string> read;
      while (rows.Next()) read.emplace_back(rows.Text(0).value_or(""));
      return std::is_permutation(read.begin(), read.end(), texts.begin(), texts.end());
    } catch (const DataError&) {
      // Another tail may do.
    }
  }
  return false;
}

void OdbcSession::BeginReading() {
  if (fIsPostgres) {
    // Not every engine of the family has each of them.
    for (const char* const setting : {"SET SESSION CHARACTERISTICS AS TRANSACTION READ ONLY", "SET TIME ZONE 'UTC'",
                                      "SET extra_float_digits = 3", "SET cursor_tuple_fraction = 1"})
      ProblemsOf(setting);
  }
  SQLSetConnectAttr(fConnection.get(), SQL_ATTR_ACCESS_MODE, OdbcNumber(SQL_MODE_READ_ONLY), SQL_IS_UINTEGER);
  if (InfoCode(SQL_TXN_CAPABLE) == SQL_TC_NONE) return;
  const SQLUINTEGER levels = InfoBits(SQL_TXN_ISOLATION_OPTION);
  for (const SQLUINTEGER level : {SQLUINTEGER{SQL_TXN_REPEATABLE_READ}, SQLUINTEGER{SQL_TXN_SERIALIZABLE}}) {
    if ((levels & level) == 0) continue;
    SQLSetConnectAttr(fConnection.get(), SQL_ATTR_TXN_ISOLATION, OdbcNumber(level), SQL_IS_UINTEGER);
    break;
  }
  SQLSetConnectAttr(fConnection.get(), SQL_ATTR_AUTOCOMMIT, OdbcNumber(SQL_AUTOCOMMIT_OFF), SQL_IS_UINTEGER);
}

}  // namespace runtime::data
