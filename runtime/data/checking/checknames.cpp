// Fields against columns, and names that are not told apart.
#include "runtime/data/checking/checknames.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <unordered_map>

#include <fmt/format.h>

#include "runtime/data/foldedname.h"
#include "runtime/data/typing/quotedcell.h"

namespace runtime::data {
namespace {

Finding About(CheckCode code, const std::string& file, const std::string& name, std::size_t column, std::string what) {
  Finding finding;
  finding.code = code;
  finding.file = file;
  finding.variable = name;
  finding.column = static_cast<int>(column);
  finding.what = std::move(what);
  return finding;
}

/// `things` is "column" or "field".
void CheckNames(const std::vector<std::string>& names, const char* thing, const std::string& file, bool haveColumns,
                std::vector<Finding>& findings) {
  std::unordered_map<std::string, std::size_t> firstOfName;
  std::unordered_map<std::string, std::size_t> firstOfFolded;
  std::vector<std::size_t> nameless;
  for (std::size_t i = 0; i < names.size(); ++i) {
    const std::string& name = names[i];
    const std::size_t column = haveColumns ? i + 1 : 0;
    if (name.empty()) {
      nameless.push_back(i + 1);
      continue;
    }
    const auto [first, isNew] = firstOfName.emplace(name, i);
    if (!isNew) {
      findings.push_back(About(CheckCode::RepeatedName, file, name, column,
                               fmt::format("{}s {} and {} have the same name", thing, first->second + 1, i + 1)));
      continue;
    }
    // Of fields with columns it was told already.
    if (!haveColumns) continue;
    const auto [alike, isOther] = firstOfFolded.emplace(FoldName(name), i);
    if (!isOther)
      findings.push_back(About(CheckCode::NamesDifferInCase, file, name, column,
                               fmt::format("the {}s {} and {} differ in nothing but capitals", thing,
                                           QuotedCell(names[alike->second]), QuotedCell(name))));
  }
  if (nameless.empty()) return;
  constexpr std::size_t kMostNamed = 20;
  const std::size_t named = std::min(nameless.size(), kMostNamed);
  std::string list =
      fmt::format("{}", fmt::join(nameless.begin(), nameless.begin() + static_cast<std::ptrdiff_t>(named), ", "));
  if (named < nameless.size()) list += fmt::format(" and {} more", nameless.size() - named);
  Finding& finding = findings.emplace_back(
      About(CheckCode::RepeatedName, file, "", haveColumns ? nameless.front() : 0,
            nameless.size() == 1 ? fmt::format("{} {} has no name", thing, list)
                                 : fmt::format("{} {}s have no name: {}", nameless.size(), thing, list)));
  finding.count = static_cast<std::int64_t>(nameless.size());
}

}  // namespace

void CheckFieldsAndNames(const ReadingFacts& reading, const std::string& dataFile, std::vector<Finding>& findings) {
  std::vector<std::string> headers;
  for (const ColumnFacts& facts : reading.columns) headers.push_back(facts.header);
  const bool hasHeader = !reading.dictionary || reading.dictionary->dialect.header.value_or(true);
  if (!reading.dictionary || !reading.dictionary->hasSchema) {
    if (hasHeader) CheckNames(headers, "column", dataFile, true, findings);
    return;
  }
  const TableDescriptor& dictionary = *reading.dictionary;
  std::vector<bool> hasColumn(dictionary.fields.size(), false);
  for (const int field : reading.fieldOfColumn)
    if (field >= 0) hasColumn[static_cast<std::size_t>(field)] = true;
  if (dictionary.fieldsMatch != FieldsMatch::Superset && dictionary.fieldsMatch != FieldsMatch::Partial)
    for (std::size_t field = 0; field < hasColumn.size(); ++field)
      if (!hasColumn[field])
        findings.push_back(About(CheckCode::FieldWithoutColumn, dictionary.origin, dictionary.fields[field].name, 0,
                                 "the data have no column of this name"));
  if (dictionary.fieldsMatch != FieldsMatch::Subset && dictionary.fieldsMatch != FieldsMatch::Partial)
    for (std::size_t column = 0; column < headers.size(); ++column)
      if (reading.fieldOfColumn[column] < 0)
        findings.push_back(About(CheckCode::ColumnWithoutField, dataFile, headers[column], column + 1,
                                 fmt::format("{} has no field of this name", dictionary.origin)));
  if (hasHeader) CheckNames(headers, "column", dataFile, true, findings);
  std::vector<std::string> names;
  for (const FieldDescriptor& field : dictionary.fields) names.push_back(field.name);
  CheckNames(names, "field", dictionary.origin, false, findings);
}

}  // namespace runtime::data
