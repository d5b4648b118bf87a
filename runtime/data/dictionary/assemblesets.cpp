#include "runtime/data/dictionary/assemblesets.h"

#include <algorithm>
#include <cstddef>

#include <fmt/format.h>

#include "host/data/names.h"

#include "runtime/data/dictionary/fieldvalue.h"
#include "runtime/data/dictionary/variablenames.h"
#include "runtime/data/typing/numbertext.h"

namespace runtime::data {
namespace {

struct SetContext {
  const TableDescriptor& descriptor;
  const SetDescriptor& set;
  const Dictionary& dictionary;
  const std::vector<DescribedColumn>& columns;

  [[noreturn]] void Fail(const std::string& problem) const {
    throw DataError(fmt::format("{}: multiple response set \"{}\": {}", descriptor.origin, set.name, problem));
  }
  const VariableRecord& Variable(int index) const { return *dictionary.variables[static_cast<std::size_t>(index)]; }
};

std::vector<int> FindMembers(const SetContext& context, const VariablesByField& variables) {
  std::vector<int> members;
  for (const std::string& name : context.set.variables) {
    const int index = variables.Find(name);
    if (index < 0)
      context.Fail(fmt::format("there is no variable \"{}\" in the data; name the members by their fields", name));
    members.push_back(index);
  }
  const bool isString = context.Variable(members.front()).width > 0;
  for (const int member : members)
    if ((context.Variable(member).width > 0) != isString)
      context.Fail(fmt::format("\"{}\" and \"{}\" are not of one kind; the members must be all numeric or all strings",
                               context.Variable(members.front()).name, context.Variable(member).name));
  return members;
}

/// The counted value of numeric members as the number's text: a truth value of booleans becomes 0 or 1.
std::string CountedNumber(const SetContext& context, int firstMember) {
  const DescribedColumn& column = context.columns[static_cast<std::size_t>(firstMember)];
  const std::string& counted = context.set.countedValue;
  NumberReading plain;
  if (ReadNumberText(Trimmed(counted), plain)) return counted;
  const std::optional<double> value = FieldValues(column.field, column.facts->type).Of({counted, false, std::nullopt});
  if (!value)
    context.Fail(
        fmt::format("the counted value \"{}\" is no number, and the members are numeric", context.set.countedValue));
  return fmt::format("{}", *value);
}

std::string SetName(const SetContext& context, NamesInUse& used, std::vector<Note>& notes) {
  const std::string& given = context.set.name;
  const std::string rest = given.front() == '$' ? given.substr(1) : given;
  const bool wellFormed = rest.find('\0') == std::string::npos && ValidateMAVOName(rest.c_str()) == 0;
  std::string name = used.Claim("$" + (wellFormed ? rest : MakeWellFormed(rest)), 1);
  if (name != given)
    notes.push_back({false, fmt::format("{}: multiple response set \"{}\" is named {}: a set's name is a $ and a name "
                                        "that no other set has",
                                        context.descriptor.origin, given, name)});
  return name;
}

void NoteHexMembers(const SetContext& context, const std::vector<int>& members, std::vector<Note>& notes) {
  for (const int member : members) {
    const VariableRecord& variable = context.Variable(member);
    if (variable.width > 0 && variable.print.type == kFormatAHex)
      notes.push_back(
          {false, fmt::format("{}: multiple response set \"{}\": \"{}\" is printed in hexadecimal (AHEX), so "
                              "it never equals the counted value \"{}\"; give it the format A",
                              context.descriptor.origin, context.set.name, variable.name, context.set.countedValue)});
  }
}

}  // namespace

VariablesByField::VariablesByField(const Dictionary& dictionary, const std::vector<std::string>& fieldNames)
    : fDictionary(dictionary) {
  for (std::size_t i = 0; i < fieldNames.size(); ++i)
    if (!fieldNames[i].empty()) fIndexOfField.emplace(fieldNames[i], static_cast<int>(i));
}

int VariablesByField::Find(const std::string& name) const {
  const auto found = fIndexOfField.find(name);
  return found == fIndexOfField.end() ? fDictionary.FindVariable(name) : found->second;
}

std::vector<VariableSet> AssembleSets(const TableDescriptor& descriptor, const Dictionary& dictionary,
                                      const VariablesByField& variables, const std::vector<DescribedColumn>& columns,
                                      std::vector<Note>& notes) {
  std::vector<VariableSet> sets;
  NamesInUse used;
  for (const SetDescriptor& described : descriptor.sets) {
    const SetContext context{descriptor, described, dictionary, columns};
    const std::vector<int> members = FindMembers(context, variables);
    std::vector<std::string> names;
    for (const int member : members) names.push_back(context.Variable(member).name);
    VariableSet set;
    set.SetName(SetName(context, used, notes));
    set.SetLabel(described.label);
    set.SetType(described.isDichotomy ? VariableSet::kDichotomySet : VariableSet::kCategorySet);
    set.SetVariableNames(std::move(names));
    if (described.isDichotomy) {
      const bool isString = context.Variable(members.front()).width > 0;
      set.SetValue(isString ? described.countedValue : CountedNumber(context, members.front()));
      NoteHexMembers(context, members, notes);
    }
    set.SetLabelledByCountedValues(described.labelledByCountedValues);
    sets.push_back(std::move(set));
  }
  return sets;
}

}  // namespace runtime::data
