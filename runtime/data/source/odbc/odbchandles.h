// ODBC's handles, each closed by its owner, and what ODBC says when a call fails.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include <sql.h>
#include <sqlext.h>

namespace runtime::data {

/// Which functions and texts a driver understands: those of bytes in UTF-8, or the wide ones in UTF-16.
enum class TextForm { Narrow, Wide };

/// A fault or a warning as ODBC reports it.
struct OdbcDiagnosis {
  std::string state;  // five characters, see ODBC's SQLSTATEs
  std::int32_t native = 0;
  std::string words;  // on one line, without the names of ODBC's parts before them
};

/// A handle of ODBC and those made from it; freed in reverse.
class OdbcHandle {
 public:
  /// An environment.
  OdbcHandle();
  /// A connection of an environment, or a statement of a connection. Throws DataError when memory runs out.
  OdbcHandle(SQLSMALLINT kind, const OdbcHandle& parent);
  ~OdbcHandle();
  OdbcHandle(const OdbcHandle&) = delete;
  OdbcHandle& operator=(const OdbcHandle&) = delete;

  SQLHANDLE get() const { return fHandle; }
  /// What the last call said, first what matters most; never empty. REQUIRES: it did not succeed.
  std::vector<OdbcDiagnosis> Diagnoses(TextForm form) const;

 private:
  SQLSMALLINT fKind;
  SQLHANDLE fHandle = SQL_NULL_HANDLE;
};

/// What stands in a buffer before its first zero byte.
inline std::string BeforeZero(const std::string& buffer) { return buffer.substr(0, buffer.find('\0')); }

/// A short text that a function of ODBC's writes into a buffer of so many bytes; empty when it fails. In the driver's
/// own form: the manager's way from one to the other reads beyond its buffers (2.3.11).
std::string ReadText(TextForm form,
                     const std::function<SQLRETURN(SQLPOINTER buffer, SQLSMALLINT bytes, SQLSMALLINT* length)>& read);

/// A whole number where ODBC wants a pointer.
SQLPOINTER OdbcNumber(std::uintptr_t number);

/// An installed driver or a data source, and what ODBC knows of it: of a driver "Key=value" texts, of a data source the
/// name of its driver.
struct OdbcEntry {
  std::string name;
  std::vector<std::string> facts;
};
std::vector<OdbcEntry> InstalledDrivers(const OdbcHandle& environment);
std::vector<OdbcEntry> KnownSources(const OdbcHandle& environment);

}  // namespace runtime::data
