// ODBC's connection strings: "Key=value;Key={value; with signs}".
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace runtime::data {

struct ConnectionKey {
  std::string key;    // as it is written
  std::string value;  // without braces
  bool isBraced = false;
};

/// What stands behind "odbc:" in an address, cut into its keys.
class ConnectionString {
 public:
  /// Throws DataError for a text that is no connection string and for one that holds a password: the list of processes
  /// shows it to everybody. No message repeats a value.
  explicit ConnectionString(std::string_view text);

  const std::vector<ConnectionKey>& keys() const { return fKeys; }
  /// The value of a key, whatever its case; null when it is not there.
  const std::string* Find(std::string_view key) const;
  /// How messages name the source: "odbc:" and those keys that say which database it is; nothing else of the string.
  std::string Name() const;
  /// The string as drivers take it.
  std::string Written() const;
  /// Adds a key where there is none of its name.
  void AddMissing(std::string_view key, std::string_view value);

 private:
  std::vector<ConnectionKey> fKeys;
};

/// Appends "Key=value" or "Key={value}" to a connection string.
void AppendConnectionKey(std::string& text, std::string_view key, std::string_view value, bool isBraced);

}  // namespace runtime::data
