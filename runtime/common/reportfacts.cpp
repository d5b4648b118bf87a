#include "runtime/common/reportfacts.h"

#include <cstddef>
#include <map>
#include <set>
#include <string>
#include <unordered_set>

#include "runtime/data/foldedname.h"
#include "runtime/output/format/kinds.h"

namespace runtime::common {

using output::ItemFacts;

namespace {

/// Of an absolute path with a backslash between directory and file name.
std::string FileName(const std::string& fileSpec) {
  const std::size_t backslash = fileSpec.rfind('\\');
  return backslash == std::string::npos ? fileSpec : fileSpec.substr(backslash + 1);
}

ItemFacts::Type TypeOf(const data::VariableRecord& variable) {
  if (variable.width > 0) return ItemFacts::Type::String;
  const bool isDate = output::IsDateOrTime(static_cast<FormatType>(variable.print.type));
  return isDate ? ItemFacts::Type::Date : ItemFacts::Type::Numeric;
}

ItemFacts::Level LevelOf(const data::VariableRecord& variable) {
  switch (variable.level) {
    case MAVO_Variable_Enumerations::kLevelUnknown:
      break;
    case MAVO_Variable_Enumerations::kLevelNominal:
      return ItemFacts::Level::Nominal;
    case MAVO_Variable_Enumerations::kLevelOrdinal:
      return ItemFacts::Level::Ordinal;
    case MAVO_Variable_Enumerations::kLevelScale:
      return ItemFacts::Level::Scale;
  }
  return ItemFacts::Level::Unknown;
}

ItemFacts::Role RoleOf(const data::VariableRecord& variable) {
  switch (variable.role) {
    case MAVO_Variable_Enumerations::kRoleInput:
      break;
    case MAVO_Variable_Enumerations::kRoleTarget:
      return ItemFacts::Role::Target;
    case MAVO_Variable_Enumerations::kRoleBoth:
      return ItemFacts::Role::Both;
    case MAVO_Variable_Enumerations::kRoleNone:
      return ItemFacts::Role::None;
    case MAVO_Variable_Enumerations::kRolePartition:
      return ItemFacts::Role::Partition;
    case MAVO_Variable_Enumerations::kRoleSplit:
      return ItemFacts::Role::Split;
  }
  return ItemFacts::Role::Input;
}

ItemFacts FactsOfVariable(const data::VariableRecord& variable, int position) {
  ItemFacts facts;
  facts.name = variable.name;
  facts.label = variable.label.value_or(std::string());
  facts.type = TypeOf(variable);
  facts.level = LevelOf(variable);
  facts.role = RoleOf(variable);
  facts.position = position;
  return facts;
}

ItemFacts FactsOfSet(const VariableSet& set, const std::string& name) {
  ItemFacts facts;
  facts.name = name;
  facts.label = set.GetLabel();
  facts.type =
      set.GetType() == VariableSet::kDichotomySet ? ItemFacts::Type::DichotomySet : ItemFacts::Type::CategorySet;
  facts.level = ItemFacts::Level::Nominal;
  facts.items = set.GetVariableNames(kKeepCase);
  return facts;
}

}  // namespace

output::ReportFacts FactsOf(const data::Dataset& dataset) {
  const data::Dictionary& dictionary = dataset.dictionary();
  output::ReportFacts facts;
  if (dictionary.fileSpec) facts.file = FileName(*dictionary.fileSpec);
  facts.label = dictionary.label.value_or(std::string());
  facts.cases = dataset.caseCount();
  if (dictionary.weight >= 0) {
    const data::VariableRecord& weight = *dictionary.variables[static_cast<std::size_t>(dictionary.weight)];
    facts.weight = weight.name;
    facts.weightLabel = weight.label.value_or(std::string());
  }
  facts.variables = static_cast<std::int64_t>(dictionary.variables.size());
  return facts;
}

std::vector<ItemFacts> DescribedItems(const data::Dictionary& dictionary, const output::Report& report) {
  std::unordered_set<std::string> titles;
  std::map<std::string, std::set<std::string>> setTitles;  // by folded name
  for (const auto& procedure : report.procedures) {
    for (const auto& table : procedure->tables) {
      if (table->title->fixed) continue;
      const std::string& title = table->title->text;
      titles.insert(title);
      if (title.starts_with('$')) setTitles[data::FoldName(title)].insert(title);
    }
  }

  std::vector<ItemFacts> items;
  for (std::size_t i = 0; i < dictionary.variables.size(); ++i)
    if (titles.count(dictionary.variables[i]->name) > 0)
      items.push_back(FactsOfVariable(*dictionary.variables[i], static_cast<int>(i) + 1));
  for (const VariableSet& set : dictionary.sets)
    for (const std::string& title : setTitles[data::FoldName(set.GetName(kKeepCase))])
      items.push_back(FactsOfSet(set, title));
  return items;
}

}  // namespace runtime::common
