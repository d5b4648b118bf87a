// A JSON file and places in it, for readers that must tell where something is wrong.
#pragma once

#include <cstddef>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "runtime/data/open.h"

namespace runtime::data {

/// Members of an object keep the order in which they stand in the file.
using Json = nlohmann::ordered_json;

/// Deepest nesting of lists and objects that is read; a dictionary needs about ten levels.
inline constexpr int kDeepestJson = 100;
/// Largest file that is read as JSON.
inline constexpr std::size_t kMostJsonBytes = std::size_t{128} << 20;

/// Reads a file as JSON in UTF-8; a byte order mark is tolerated. Throws DataError: what is wrong, with line and
/// column. A property that stands twice in its object is told in `notes` (null: not told), once a file.
Json ReadJsonFile(const std::string& path, std::vector<Note>* notes = nullptr);
/// The same for text; `origin` names it in messages.
Json ParseJson(const std::string& text, const std::string& origin, std::vector<Note>* notes = nullptr);

/// A value in a JSON file that knows its place. The file's tree must outlive it. Everything that finds another type
/// than asked for throws DataError.
class JsonPlace {
 public:
  JsonPlace(const Json& value, std::string file) : fValue(&value), fFile(std::move(file)) {}

  const Json& value() const { return *fValue; }

  bool isObject() const { return fValue->is_object(); }
  bool isList() const { return fValue->is_array(); }
  bool isText() const { return fValue->is_string(); }
  bool isNumber() const { return fValue->is_number(); }
  bool isFlag() const { return fValue->is_boolean(); }
  bool isNull() const { return fValue->is_null(); }

  /// The member of an object; absent also when it is null. Throws when this is no object.
  std::optional<JsonPlace> Find(std::string_view key) const;
  /// The same, for a member that must be there.
  JsonPlace Need(std::string_view key) const;
  /// The members of an object in their order, null ones too.
  std::vector<std::pair<std::string, JsonPlace>> Members() const;
  /// The entries of a list.
  std::vector<JsonPlace> Entries() const;

  const std::string& Text() const;
  double Number() const;
  bool Flag() const;
  /// A text, a number or a truth value as text: numbers in the shortest form that reads back the same.
  std::string Scalar() const;
  /// A list of texts.
  std::vector<std::string> Texts() const;
  /// The value written as JSON.
  std::string Written() const;

  std::optional<std::string> FindText(std::string_view key) const;
  std::optional<bool> FindFlag(std::string_view key) const;

  /// FILE: /place/in/it
  std::string Where() const;
  /// Throws DataError "FILE: /place/in/it: problem".
  [[noreturn]] void Fail(const std::string& problem) const;

 private:
  JsonPlace(const Json& value, std::string file, std::string pointer)
      : fValue(&value), fFile(std::move(file)), fPointer(std::move(pointer)) {}
  [[noreturn]] void FailType(const char* wanted) const;

  const Json* fValue;
  std::string fFile;
  std::string fPointer;
};

}  // namespace runtime::data
