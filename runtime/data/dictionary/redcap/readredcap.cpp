#include "runtime/data/dictionary/redcap/readredcap.h"

#include <algorithm>
#include <unordered_set>
#include <utility>

#include <fmt/format.h>

#include "runtime/data/dictionary/redcap/redcapfield.h"
#include "runtime/data/dictionary/redcap/redcaptable.h"
#include "runtime/data/typing/quotedcell.h"

namespace runtime::data {
namespace {

/// Puts the fields of all rows together.
class RedcapReader {
 public:
  RedcapReader(const std::string& path, const std::vector<std::string>& headers, std::vector<Note>& notes)
      : fPath(path), fColumns(headers.begin(), headers.end()), fNotes(notes) {
    fTable.origin = path;
    fTable.hasSchema = true;
    fTable.missingValues = {LabelledValue{}};
  }

  void Take(const RedcapRow& row) {
    const std::string& name = row[RedcapColumn::Name];
    if (name.empty())
      throw DataError(fmt::format("{}:{}: this row has no field name; every field needs one", fPath, row.line));
    if (row[RedcapColumn::Form] != fForm) {
      EndForm();
      fForm = row[RedcapColumn::Form];
      fSection.clear();
    }
    if (!row[RedcapColumn::Section].empty()) fSection = row[RedcapColumn::Section];
    NoteType(row);
    std::vector<FieldDescriptor> fields = MakeRedcapFields(row, fSection);
    for (FieldDescriptor& field : fields) DropRepeatedCodes(row, field);
    SetDescriptor set = row[RedcapColumn::Type] == "checkbox" ? SetOf(row, fields) : SetDescriptor();
    bool isRepeated = false;
    for (FieldDescriptor& field : fields) isRepeated = !Add(std::move(field), row) || isRepeated;
    if (!set.variables.empty() && !isRepeated) fTable.sets.push_back(std::move(set));
  }

  TableDescriptor Finish() {
    EndForm();
    return std::move(fTable);
  }

 private:
  void Tell(const RedcapRow& row, const std::string& problem) {
    fNotes.push_back(
        {false, fmt::format("{}:{}: field {} {}", fPath, row.line, QuotedCell(row[RedcapColumn::Name]), problem)});
  }

  void NoteType(const RedcapRow& row) {
    static const std::unordered_set<std::string> kTypes = {"text",      "notes",       "radio", "dropdown", "checkbox",
                                                           "yesno",     "truefalse",   "calc",  "slider",   "file",
                                                           "signature", "descriptive", "sql"};
    const std::string& type = row[RedcapColumn::Type];
    if (kTypes.count(type) == 0)
      Tell(row, fmt::format("has the type {}, which is not known; its type is inferred", QuotedCell(type)));
    const bool needsChoices = type == "radio" || type == "dropdown" || type == "checkbox";
    if (needsChoices && ReadRedcapChoices(row[RedcapColumn::Choices]).empty())
      Tell(row, "has no choices; they are written as 1, Yes | 2, No");
  }

  void DropRepeatedCodes(const RedcapRow& row, FieldDescriptor& field) {
    std::unordered_set<std::string> codes;
    const auto isRepeated = [&](const LabelledValue& category) {
      if (codes.insert(category.value).second) return false;
      Tell(row, fmt::format("has the code {} twice; the first one holds", QuotedCell(category.value)));
      return true;
    };
    std::vector<LabelledValue> kept;
    for (LabelledValue& category : field.categories)
      if (!isRepeated(category)) kept.push_back(std::move(category));
    field.categories = std::move(kept);
  }

  SetDescriptor SetOf(const RedcapRow& row, const std::vector<FieldDescriptor>& members) {
    SetDescriptor set;
    set.name = "$" + row[RedcapColumn::Name];
    set.label = row[RedcapColumn::Label];
    set.isDichotomy = true;
    set.countedValue = "1";
    std::vector<std::string> absent;
    for (const FieldDescriptor& member : members) {
      const bool isKnown = std::find(set.variables.begin(), set.variables.end(), member.name) != set.variables.end();
      const bool isThere = fColumns.empty() || fColumns.count(member.name) > 0;
      if (!isThere)
        absent.push_back(QuotedCell(member.name));
      else if (!isKnown)
        set.variables.push_back(member.name);
    }
    if (!absent.empty() && !set.variables.empty())
      Tell(row, fmt::format("becomes the set {} without {}, which the data do not hold", QuotedCell(set.name),
                            fmt::join(absent, ", ")));
    return set;
  }

  /// False for a field that is there already.
  bool Add(FieldDescriptor field, const RedcapRow& row) {
    if (!fNames.insert(field.name).second) {
      fNotes.push_back({false, fmt::format("{}:{}: there is a field {} before this one; the first one holds", fPath,
                                           row.line, QuotedCell(field.name))});
      return false;
    }
    fTable.fields.push_back(std::move(field));
    return true;
  }

  void EndForm() {
    FieldDescriptor state = MakeFormState(fForm);
    if (!fForm.empty() && fColumns.count(state.name) > 0 && fNames.insert(state.name).second)
      fTable.fields.push_back(std::move(state));
  }

  const std::string& fPath;
  std::unordered_set<std::string> fColumns;  // of the data, empty when they are not known
  std::vector<Note>& fNotes;
  TableDescriptor fTable;
  std::unordered_set<std::string> fNames;
  std::string fForm;
  std::string fSection;
};

}  // namespace

bool IsRedcapDictionary(const std::string& path) {
  try {
    std::vector<Note> unused;
    return ReadRedcapTable(path, unused).isDictionary;
  } catch (const DataError&) {
    return false;
  }
}

TableDescriptor ReadRedcap(const std::string& path, const std::function<std::vector<std::string>()>& headers,
                           std::vector<Note>& notes) {
  const RedcapTable table = ReadRedcapTable(path, notes);
  if (!table.isDictionary)
    throw DataError(path +
                    ": this is no REDCap data dictionary; its header must name the field, its type and its label");
  RedcapReader reader(path, headers ? headers() : std::vector<std::string>(), notes);
  for (const RedcapRow& row : table.rows) reader.Take(row);
  return reader.Finish();
}

}  // namespace runtime::data
