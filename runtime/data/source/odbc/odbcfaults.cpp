#include "runtime/data/source/odbc/odbcfaults.h"

#include <algorithm>
#include <array>
#include <cstddef>

#include <fmt/format.h>

#include "runtime/data/lowerascii.h"
#include "runtime/data/typing/quotedcell.h"

namespace runtime::data {
namespace {

bool StateIsIn(const OdbcDiagnosis& diagnosis, std::initializer_list<std::string_view> states) {
  return std::any_of(states.begin(), states.end(), [&](std::string_view state) {
    return std::string_view(diagnosis.state).substr(0, state.size()) == state;
  });
}

bool HasWord(const OdbcDiagnosis& diagnosis, std::string_view word) {
  return LowerAscii(diagnosis.words).find(word) != std::string::npos;
}

bool IsLostConnection(const OdbcDiagnosis& diagnosis) {
  return StateIsIn(diagnosis, {"08", "57P01", "57P02", "57P03", "HYT01"}) ||
         HasWord(diagnosis, "server closed the connection") || HasWord(diagnosis, "no connection to the server") ||
         HasWord(diagnosis, "terminating connection");
}

std::string ListOf(const std::vector<OdbcEntry>& entries) {
  std::string list;
  for (const OdbcEntry& entry : entries) list += (list.empty() ? "" : ", ") + QuotedCell(entry.name);
  return list.empty() ? "none" : list;
}

bool IsThere(const std::vector<OdbcEntry>& entries, const std::string& name) {
  return std::any_of(entries.begin(), entries.end(),
                     [&](const OdbcEntry& entry) { return LowerAscii(entry.name) == LowerAscii(name); });
}

std::string UnknownSource(const ConnectionString& source, const OdbcHandle& environment) {
  constexpr std::string_view kPlaces = "they stand in ~/.odbc.ini and /etc/odbc.ini (\"odbcinst -j\" tells the places)";
  const std::string* const name = source.Find("DSN");
  if (name == nullptr) return "the connection string names neither a data source (DSN=) nor a driver (Driver=)";
  return fmt::format("there is no data source {}; those there are: {}; {}", QuotedCell(*name),
                     ListOf(KnownSources(environment)), kPlaces);
}

std::string MissingDriver(const ConnectionString& source, const OdbcHandle& environment, const std::string& words) {
  const std::string* const name = source.Find("Driver");
  const std::vector<OdbcEntry> drivers = InstalledDrivers(environment);
  if (name != nullptr && name->find('/') == std::string::npos && !IsThere(drivers, *name))
    return fmt::format(
        "the ODBC driver {} is not installed; those installed: {}; install its package, or name one of these",
        QuotedCell(*name), ListOf(drivers));
  return fmt::format(
      "the ODBC driver cannot be loaded: {}; install its package, or mend its place in /etc/odbcinst.ini", words);
}

std::string FaultOfConnecting(const ConnectionString& source, const OdbcDiagnosis& fault,
                              const OdbcHandle& environment) {
  if (HasWord(fault, "can't open lib") || StateIsIn(fault, {"IM003", "IM004", "IM005"}))
    return MissingDriver(source, environment, fault.words);
  if (StateIsIn(fault, {"IM002"})) return UnknownSource(source, environment);
  if (IsAboutPassword(fault))
    return fmt::format(
        "the server refuses the user or the password: {}; put them into the data source (~/.odbc.ini) or into "
        "CODEBOOK_ODBC_USER and CODEBOOK_ODBC_PASSWORD",
        fault.words);
  if (StateIsIn(fault, {"HYT0"})) return fmt::format("the server did not answer in time: {}", fault.words);
  return fmt::format("cannot connect: {}", fault.words);
}

std::string FaultOfQuery(OdbcStep step, const OdbcDiagnosis& fault) {
  if (IsLostConnection(fault)) return fmt::format("the connection was lost: {}; run the command again", fault.words);
  if (IsAboutPermission(fault))
    return fmt::format("the user may not read this: {}; the owner can allow it with GRANT SELECT", fault.words);
  if (StateIsIn(fault, {"57014", "HYT00"}))
    return fmt::format("the server broke the query off: {}; a longer statement timeout may help", fault.words);
  if (StateIsIn(fault, {"25006"})) return fmt::format("only reading is allowed: {}", fault.words);
  return fmt::format("{}: {}", step == OdbcStep::Reading ? "the rows cannot be read" : "the query fails", fault.words);
}

void Mask(std::string& message, std::string_view secret) {
  if (secret.empty()) return;
  for (std::size_t at = message.find(secret); at != std::string::npos; at = message.find(secret, at))
    message.replace(at, secret.size(), "***");
}

}  // namespace

bool IsAboutPassword(const OdbcDiagnosis& diagnosis) {
  return StateIsIn(diagnosis, {"28"}) || (StateIsIn(diagnosis, {"08"}) && HasWord(diagnosis, "password"));
}

bool IsAboutPermission(const OdbcDiagnosis& diagnosis) {
  return StateIsIn(diagnosis, {"42501"}) || HasWord(diagnosis, "permission") || HasWord(diagnosis, "privilege") ||
         HasWord(diagnosis, "access denied");
}

std::string DescribeFault(const ConnectionString& source, OdbcStep step, const std::vector<OdbcDiagnosis>& diagnoses,
                          const OdbcHandle& environment, std::string_view secret) {
  const OdbcDiagnosis& fault = diagnoses.front();
  std::string message =
      step == OdbcStep::Connecting ? FaultOfConnecting(source, fault, environment) : FaultOfQuery(step, fault);
  Mask(message, secret);
  return source.Name() + ": " + message;
}

}  // namespace runtime::data
