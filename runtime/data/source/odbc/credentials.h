// Who connects, and how he proves it.
#pragma once

#include <string>

#include "runtime/data/source/odbc/secret.h"

namespace runtime::data {

/// From the environment: CODEBOOK_ODBC_USER and CODEBOOK_ODBC_PASSWORD.
struct Credentials {
  Credentials();

  std::string user;
  Secret<char> password;
  bool hasPassword = false;
};

/// Asks for the password on the terminal, without showing it. False when there is no terminal. Throws DataError when
/// the question is broken off.
bool AskPassword(const std::string& source, Secret<char>& password);

}  // namespace runtime::data
