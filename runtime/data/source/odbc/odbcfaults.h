// What went wrong with a database, in words that say what to do.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "runtime/data/source/odbc/connectionstring.h"
#include "runtime/data/source/odbc/odbchandles.h"

namespace runtime::data {

/// What was being done.
enum class OdbcStep { Connecting, Asking, Reading };

/// A whole message. `diagnoses` as OdbcHandle gives them. What is there when a data source or driver is missing is
/// asked of `environment`. `secret`, unless it is empty, does not appear in it.
std::string DescribeFault(const ConnectionString& source, OdbcStep step, const std::vector<OdbcDiagnosis>& diagnoses,
                          const OdbcHandle& environment, std::string_view secret = {});

/// Whether the server wants a password, or another one.
bool IsAboutPassword(const OdbcDiagnosis& diagnosis);
bool IsAboutPermission(const OdbcDiagnosis& diagnosis);

}  // namespace runtime::data
