#include <algorithm>
#include <cstddef>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <utility>
#include <vector>

#include <fmt/format.h>

#include "runtime/data/dictionary/assemble.h"
#include "runtime/data/dictionary/variablenames.h"
#include "runtime/data/foldedname.h"

namespace runtime::data {
namespace {

constexpr std::size_t kMostTold = 20;  // of fields, and of columns, that stay alone

/// Tells what does not fit; the first such thing is an error when strict.
class Misfits {
 public:
  Misfits(bool strict, std::vector<Note>& notes) : fStrict(strict), fNotes(notes) {}
  void Tell(std::string text) {
    if (fStrict) throw DataError(text);
    fNotes.push_back({false, std::move(text), NoteTopic::Fields});
  }
  /// One of many of a kind; `count` counts them.
  void TellOneOfMany(std::size_t& count, std::string text) {
    if (count++ < kMostTold) Tell(std::move(text));
  }
  void TellOfMore(std::size_t count, const std::string& origin, const char* what) {
    if (count > kMostTold) Tell(fmt::format("{}: {} further {}", origin, count - kMostTold, what));
  }

 private:
  bool fStrict;
  std::vector<Note>& fNotes;
};

std::string_view WordOf(FieldsMatch match) {
  switch (match) {
    case FieldsMatch::Exact:
      return "exact";
    case FieldsMatch::Equal:
      return "equal";
    case FieldsMatch::Subset:
      return "subset";
    case FieldsMatch::Superset:
      return "superset";
    case FieldsMatch::Partial:
      return "partial";
    case FieldsMatch::ByName:
      break;
  }
  return "";
}

/// Fields and columns on their way to one another.
class Matching {
 public:
  Matching(const TableDescriptor& descriptor, const std::vector<std::string>& columns)
      : fields(descriptor.fields), headers(columns), columnOf(fields.size(), columns.size()), fieldOf(columns.size()) {}

  void Pair(std::size_t field, std::size_t column) {
    columnOf[field] = column;
    fieldOf[column] = &fields[field];
  }
  bool HasColumn(std::size_t field) const { return columnOf[field] < headers.size(); }

  void ByPosition() {
    for (std::size_t i = 0; i < std::min(fields.size(), headers.size()); ++i)
      if (!HasColumn(i) && fieldOf[i] == nullptr) Pair(i, i);
  }

  /// Of several of one name the first meets the first. `key` is the form in which names are compared.
  template <class Key>
  void ByName(Key key) {
    std::unordered_map<std::string, std::vector<std::size_t>> columnsOfName;  // the first one last
    for (std::size_t column = headers.size(); column-- > 0;)
      if (fieldOf[column] == nullptr) columnsOfName[key(headers[column])].push_back(column);
    for (std::size_t field = 0; field < fields.size(); ++field) {
      if (HasColumn(field)) continue;
      const auto found = columnsOfName.find(key(fields[field].name));
      if (found == columnsOfName.end() || found->second.empty()) continue;
      Pair(field, found->second.back());
      found->second.pop_back();
    }
  }

  /// A column whose header is empty or stands twice meets the field of the name that its variable gets.
  void ByMadeName() {
    std::unordered_set<std::string> seen;
    std::vector<std::size_t> nameless;
    for (std::size_t column = 0; column < headers.size(); ++column)
      if ((headers[column].empty() || !seen.insert(FoldName(headers[column])).second) && fieldOf[column] == nullptr)
        nameless.push_back(column);
    if (nameless.empty()) return;
    const std::vector<std::string> made = MakeVariableNames(headers);
    std::unordered_map<std::string_view, std::size_t> columnOfName;
    for (const std::size_t column : nameless) columnOfName.emplace(made[column], column);
    for (std::size_t field = 0; field < fields.size(); ++field) {
      const auto found = columnOfName.find(fields[field].name);
      if (!HasColumn(field) && found != columnOfName.end() && fieldOf[found->second] == nullptr)
        Pair(field, found->second);
    }
  }

  const std::vector<FieldDescriptor>& fields;
  const std::vector<std::string>& headers;
  std::vector<std::size_t> columnOf;  // of each field; the number of columns when it has none
  std::vector<const FieldDescriptor*> fieldOf;
};

/// The data must have the fields of the schema in their order. Columns still meet their fields by name, since another
/// order in the file is more likely than a wrong header; the rest meet by position.
void MatchExactly(Matching& matching, const std::string& origin, Misfits& misfits) {
  std::size_t inOtherOrder = 0;
  for (std::size_t field = 0; field < matching.fields.size(); ++field)
    if (matching.HasColumn(field) && matching.columnOf[field] != field) ++inOtherOrder;
  if (inOtherOrder > 0)
    misfits.Tell(
        fmt::format("{}: the columns of the data stand in another order than the fields (\"fieldsMatch\" is "
                    "\"exact\"); they are matched by name",
                    origin));
  std::size_t told = 0;
  for (std::size_t i = 0; i < std::min(matching.fields.size(), matching.headers.size()); ++i) {
    if (matching.HasColumn(i) || matching.fieldOf[i] != nullptr) continue;
    misfits.TellOneOfMany(
        told, fmt::format("{}: column {} of the data is named \"{}\", and the field there \"{}\" (\"fieldsMatch\" is "
                          "\"exact\"); they are taken for the same",
                          origin, i + 1, matching.headers[i], matching.fields[i].name));
    matching.Pair(i, i);
  }
  misfits.TellOfMore(told, origin, "columns have another name than their fields");
}

void TellLonelyFields(const Matching& matching, const std::string& origin, const std::string& rule, Misfits& misfits) {
  std::size_t told = 0;
  for (std::size_t field = 0; field < matching.fields.size(); ++field)
    if (!matching.HasColumn(field))
      misfits.TellOneOfMany(
          told, fmt::format("{}: field \"{}\" has no column in the data{}", origin, matching.fields[field].name, rule));
  misfits.TellOfMore(told, origin, "fields have no column in the data");
}

void TellLonelyColumns(const Matching& matching, const std::string& origin, const std::string& rule, Misfits& misfits) {
  std::size_t told = 0;
  for (std::size_t column = 0; column < matching.headers.size(); ++column)
    if (matching.fieldOf[column] == nullptr)
      misfits.TellOneOfMany(told, fmt::format("{}: column {} \"{}\" of the data has no field; its type is inferred{}",
                                              origin, column + 1, matching.headers[column], rule));
  misfits.TellOfMore(told, origin, "columns of the data have no field");
}

}  // namespace

std::vector<const FieldDescriptor*> MatchFields(const TableDescriptor& descriptor,
                                                const std::vector<std::string>& headers, bool strict,
                                                std::vector<Note>& notes) {
  Matching matching(descriptor, headers);
  if (!descriptor.hasSchema) return matching.fieldOf;
  Misfits misfits(strict, notes);
  const FieldsMatch match = descriptor.fieldsMatch;
  if (!descriptor.dialect.header.value_or(true)) {
    matching.ByPosition();
  } else {
    matching.ByName([](const std::string& name) -> const std::string& { return name; });
    if (!descriptor.dialect.caseSensitiveHeader.value_or(true))
      matching.ByName([](const std::string& name) { return FoldName(name); });
    matching.ByMadeName();
    if (match == FieldsMatch::Exact) MatchExactly(matching, descriptor.origin, misfits);
  }
  const std::string rule =
      match == FieldsMatch::ByName ? std::string() : fmt::format(" (\"fieldsMatch\" is \"{}\")", WordOf(match));
  if (match == FieldsMatch::Partial) {
    bool any = descriptor.fields.empty();
    for (const FieldDescriptor* field : matching.fieldOf) any = any || field != nullptr;
    if (!any) misfits.Tell(fmt::format("{}: no field has a column in the data{}", descriptor.origin, rule));
    return matching.fieldOf;
  }
  if (match != FieldsMatch::Superset) TellLonelyFields(matching, descriptor.origin, rule, misfits);
  if (match != FieldsMatch::Subset) TellLonelyColumns(matching, descriptor.origin, rule, misfits);
  return matching.fieldOf;
}

}  // namespace runtime::data
