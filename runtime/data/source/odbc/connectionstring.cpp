#include "runtime/data/source/odbc/connectionstring.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <utility>

#include <fmt/format.h>

#include "runtime/data/lowerascii.h"
#include "runtime/data/open.h"

namespace runtime::data {
namespace {

std::string_view WithoutBlanks(std::string_view text) {
  while (!text.empty() && (text.front() == ' ' || text.front() == '\t')) text.remove_prefix(1);
  while (!text.empty() && (text.back() == ' ' || text.back() == '\t')) text.remove_suffix(1);
  return text;
}

[[noreturn]] void FailAt(std::size_t place, std::string_view what) {
  throw DataError(
      fmt::format("odbc: {} in key {} of the connection string; it is written \"odbc:DSN=name\" or "
                  "\"odbc:Driver={{name}};Key=value\"",
                  what, place));
}

/// Reads a value in braces, a closing one in it standing twice, and gives the bytes read; 0 when it does not end.
std::size_t ReadBraced(std::string_view text, std::string& value) {
  for (std::size_t i = 1; i < text.size(); ++i) {
    if (text[i] != '}') {
      value += text[i];
    } else if (i + 1 < text.size() && text[i + 1] == '}') {
      value += text[i++];
    } else {
      return i + 1;
    }
  }
  return 0;
}

bool HoldsSecret(const ConnectionKey& key) {
  static constexpr std::array<std::string_view, 8> kSecrets = {"pwd",   "passw",  "passphrase", "secret",
                                                               "token", "apikey", "api_key",    "privatekey"};
  const std::string name = LowerAscii(key.key);
  const auto isIn = [](const std::string& text) {
    return std::any_of(kSecrets.begin(), kSecrets.end(),
                       [&](std::string_view word) { return text.find(word) != std::string::npos; });
  };
  // psqlODBC hands the words of this one on to the client library, which takes a password among them.
  return isIn(name) || (name == "pqopt" && isIn(LowerAscii(key.value)));
}

}  // namespace

ConnectionString::ConnectionString(std::string_view text) {
  std::size_t place = 0;
  while (true) {
    while (!text.empty() && (text.front() == ';' || text.front() == ' ')) text.remove_prefix(1);
    if (text.empty()) break;
    ++place;
    const std::size_t equals = text.find('=');
    if (equals == std::string_view::npos || text.substr(0, equals).find(';') != std::string_view::npos)
      FailAt(place, "there is no \"=\"");
    ConnectionKey key;
    key.key = WithoutBlanks(text.substr(0, equals));
    if (key.key.empty()) FailAt(place, "there is no name before \"=\"");
    text = WithoutBlanks(text.substr(equals + 1));
    key.isBraced = !text.empty() && text.front() == '{';
    if (key.isBraced) {
      const std::size_t length = ReadBraced(text, key.value);
      if (length == 0) FailAt(place, "the brace does not end");
      text = WithoutBlanks(text.substr(length));
      if (!text.empty() && text.front() != ';') FailAt(place, "something stands behind the brace");
    } else {
      const std::string_view value = text.substr(0, text.find(';'));
      key.value = WithoutBlanks(value);
      text.remove_prefix(value.size());
    }
    if (HoldsSecret(key))
      throw DataError(fmt::format(
          "odbc: the connection string holds a password ({}), which the list of processes would show to everybody; put "
          "it into the data source (~/.odbc.ini) or into the environment variable CODEBOOK_ODBC_PASSWORD",
          key.key));
    fKeys.push_back(std::move(key));
  }
  if (fKeys.empty())
    throw DataError(
        "odbc: the connection string is missing; it is written \"odbc:DSN=name\" or "
        "\"odbc:Driver={name};Key=value\"");
}

const std::string* ConnectionString::Find(std::string_view key) const {
  for (const ConnectionKey& there : fKeys)
    if (LowerAscii(there.key) == LowerAscii(std::string(key))) return &there.value;
  return nullptr;
}

std::string ConnectionString::Name() const {
  constexpr std::array<std::string_view, 7> kShown = {"dsn",  "driver", "server",  "servername",
                                                      "host", "port",   "database"};
  std::string shown;
  for (const ConnectionKey& key : fKeys)
    if (std::find(kShown.begin(), kShown.end(), LowerAscii(key.key)) != kShown.end())
      AppendConnectionKey(shown, key.key, key.value, key.isBraced);
  return "odbc:" + shown;
}

std::string ConnectionString::Written() const {
  std::string text;
  for (const ConnectionKey& key : fKeys) AppendConnectionKey(text, key.key, key.value, key.isBraced);
  return text;
}

void ConnectionString::AddMissing(std::string_view key, std::string_view value) {
  if (!Find(key)) fKeys.push_back({std::string(key), std::string(value)});
}

void AppendConnectionKey(std::string& text, std::string_view key, std::string_view value, bool isBraced) {
  if (!text.empty()) text += ';';
  text += key;
  text += isBraced ? "={" : "=";
  for (const char byte : value) {
    text += byte;
    if (isBraced && byte == '}') text += byte;
  }
  if (isBraced) text += '}';
}

}  // namespace runtime::data
