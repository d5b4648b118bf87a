#include "runtime/data/source/odbc/odbchandles.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <utility>

#include <sqlucode.h>

#include "runtime/data/csv/encoding.h"
#include "runtime/data/open.h"
#include "runtime/data/source/odbc/widetext.h"

namespace runtime::data {
namespace {

/// A driver of bytes reports through the manager's wide function as if its bytes were Latin letters, and a wide driver
/// through the other one likewise: then the bytes themselves are UTF-8.
std::string WithoutDetour(const std::u16string& wide) {
  std::string bytes;
  for (const char16_t unit : wide) {
    if (unit > 0xFF) break;
    bytes += static_cast<char>(unit);
  }
  if (bytes.size() == wide.size() && FirstInvalidUtf8(bytes) == std::string_view::npos) return bytes;
  std::string text;
  AppendUtf8(wide.data(), wide.size(), text);
  return text;
}

/// On one line, and without "[maker][part]" before the words.
std::string PlainWords(std::string_view words) {
  while (!words.empty() && words.front() == '[' && words.find(']') != std::string_view::npos)
    words.remove_prefix(words.find(']') + 1);
  for (const std::string_view severity : {"ERROR: ", "FATAL: "})
    if (words.substr(0, severity.size()) == severity) words.remove_prefix(severity.size());
  // psqlODBC's second line.
  const std::size_t tail = words.find("\nError while executing the query");
  if (tail != std::string_view::npos) words = words.substr(0, tail);
  std::string line;
  for (const char byte : words) {
    const bool isBlank = byte == ' ' || byte == '\t' || byte == '\r' || byte == '\n';
    if (!isBlank)
      line += byte;
    else if (!line.empty() && line.back() != ' ')
      line += ' ';
  }
  // After where the server is.
  constexpr std::string_view kFatal = ": FATAL: ";
  const std::size_t fatal = line.find(kFatal);
  if (fatal != std::string::npos) line.replace(fatal, kFatal.size(), ": ");
  while (!line.empty() && (line.back() == ' ' || line.back() == ';' || line.back() == '.')) line.pop_back();
  return line;
}

/// Faults before warnings.
int RankOf(const OdbcDiagnosis& diagnosis) { return diagnosis.state.substr(0, 2) == "01" ? 1 : 0; }

bool ReadDiagnosis(SQLSMALLINT kind, SQLHANDLE handle, SQLSMALLINT record, TextForm form, OdbcDiagnosis& diagnosis) {
  constexpr SQLSMALLINT kLongest = 4096;
  SQLINTEGER native = 0;
  SQLSMALLINT length = 0;
  if (form == TextForm::Narrow) {
    SQLCHAR state[SQL_SQLSTATE_SIZE + 1] = {};
    std::string words(kLongest, '\0');
    if (!SQL_SUCCEEDED(SQLGetDiagRec(kind, handle, record, state, &native, reinterpret_cast<SQLCHAR*>(words.data()),
                                     kLongest, &length)))
      return false;
    diagnosis = {reinterpret_cast<const char*>(state), native, PlainWords(BeforeZero(words))};
  } else {
    SQLWCHAR state[SQL_SQLSTATE_SIZE + 1] = {};
    std::u16string words(kLongest, u'\0');
    if (!SQL_SUCCEEDED(SQLGetDiagRecW(kind, handle, record, state, &native, reinterpret_cast<SQLWCHAR*>(words.data()),
                                      kLongest, &length)))
      return false;
    words.resize(std::min(words.find(u'\0'), words.size()));
    diagnosis = {"", native, PlainWords(WithoutDetour(words))};
    for (std::size_t i = 0; i < SQL_SQLSTATE_SIZE && state[i] != 0; ++i) diagnosis.state += static_cast<char>(state[i]);
  }
  return true;
}

}  // namespace

OdbcHandle::OdbcHandle() : fKind(SQL_HANDLE_ENV) {
  if (!SQL_SUCCEEDED(SQLAllocHandle(SQL_HANDLE_ENV, SQL_NULL_HANDLE, &fHandle)))
    throw DataError("odbc: ODBC's manager cannot be started");
  SQLSetEnvAttr(fHandle, SQL_ATTR_ODBC_VERSION, OdbcNumber(SQL_OV_ODBC3), SQL_IS_INTEGER);
}

OdbcHandle::OdbcHandle(SQLSMALLINT kind, const OdbcHandle& parent) : fKind(kind) {
  if (!SQL_SUCCEEDED(SQLAllocHandle(kind, parent.fHandle, &fHandle)))
    throw DataError("odbc: " + parent.Diagnoses(TextForm::Wide).front().words);
}

OdbcHandle::~OdbcHandle() { SQLFreeHandle(fKind, fHandle); }

std::vector<OdbcDiagnosis> OdbcHandle::Diagnoses(TextForm form) const {
  constexpr SQLSMALLINT kMost = 20;
  std::vector<OdbcDiagnosis> diagnoses;
  OdbcDiagnosis diagnosis;
  for (SQLSMALLINT record = 1; record <= kMost && ReadDiagnosis(fKind, fHandle, record, form, diagnosis); ++record)
    diagnoses.push_back(std::move(diagnosis));
  if (diagnoses.empty()) diagnoses.push_back({"HY000", 0, "the driver gives no reason"});
  std::stable_sort(diagnoses.begin(), diagnoses.end(),
                   [](const OdbcDiagnosis& a, const OdbcDiagnosis& b) { return RankOf(a) < RankOf(b); });
  return diagnoses;
}

std::string ReadText(TextForm form,
                     const std::function<SQLRETURN(SQLPOINTER buffer, SQLSMALLINT bytes, SQLSMALLINT* length)>& read) {
  std::array<char16_t, 512> buffer{};
  SQLSMALLINT length = 0;
  // The last unit stays a zero whatever is written.
  if (!SQL_SUCCEEDED(read(buffer.data(), static_cast<SQLSMALLINT>(sizeof buffer - sizeof(char16_t)), &length)))
    return "";
  if (form == TextForm::Narrow) return reinterpret_cast<const char*>(buffer.data());
  std::string text;
  AppendUtf8(buffer.data(), std::char_traits<char16_t>::length(buffer.data()), text);
  return text;
}

// The interface is C's: some attributes are numbers, others places.
SQLPOINTER OdbcNumber(std::uintptr_t number) {
  return reinterpret_cast<SQLPOINTER>(number);  // NOLINT(performance-no-int-to-ptr)
}

std::vector<OdbcEntry> InstalledDrivers(const OdbcHandle& environment) {
  constexpr SQLSMALLINT kLongest = 4096;
  std::vector<OdbcEntry> drivers;
  std::string name(kLongest, '\0');
  std::string facts(kLongest, '\0');
  SQLSMALLINT nameLength = 0;
  SQLSMALLINT factsLength = 0;
  SQLUSMALLINT direction = SQL_FETCH_FIRST;
  while (SQL_SUCCEEDED(SQLDrivers(environment.get(), direction, reinterpret_cast<SQLCHAR*>(name.data()), kLongest,
                                  &nameLength, reinterpret_cast<SQLCHAR*>(facts.data()), kLongest, &factsLength))) {
    direction = SQL_FETCH_NEXT;
    OdbcEntry& driver = drivers.emplace_back();
    driver.name = BeforeZero(name);
    // Each fact ends with a zero byte, the last with two.
    for (const char* fact = facts.c_str(); *fact != '\0'; fact += driver.facts.back().size() + 1)
      driver.facts.emplace_back(fact);
  }
  return drivers;
}

std::vector<OdbcEntry> KnownSources(const OdbcHandle& environment) {
  constexpr SQLSMALLINT kLongest = 1024;
  std::vector<OdbcEntry> sources;
  std::string name(kLongest, '\0');
  std::string driver(kLongest, '\0');
  SQLSMALLINT nameLength = 0;
  SQLSMALLINT driverLength = 0;
  SQLUSMALLINT direction = SQL_FETCH_FIRST;
  while (
      SQL_SUCCEEDED(SQLDataSources(environment.get(), direction, reinterpret_cast<SQLCHAR*>(name.data()), kLongest,
                                   &nameLength, reinterpret_cast<SQLCHAR*>(driver.data()), kLongest, &driverLength))) {
    direction = SQL_FETCH_NEXT;
    sources.push_back({BeforeZero(name), {BeforeZero(driver)}});
  }
  return sources;
}

}  // namespace runtime::data
