#include "runtime/data/comparing/comparetables.h"

#include <algorithm>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "runtime/data/comparing/comparelabels.h"
#include "runtime/data/comparing/matchvariables.h"
#include "runtime/data/foldedname.h"

namespace runtime::data {
namespace {

using Attributes = std::vector<std::pair<std::string, std::string>>;
using Text = std::optional<std::string>;

/// An empty label is none.
Text Said(const Text& text) { return text && !text->empty() ? text : std::nullopt; }

std::optional<std::string> TypeWord(const std::optional<ComparedType>& type) {
  if (!type) return std::nullopt;
  switch (*type) {
    case ComparedType::Numeric:
      return "numeric";
    case ComparedType::String:
      return "string";
    default:
      return "date";
  }
}

std::string Joined(const std::vector<std::string>& names) {
  std::string text;
  for (const std::string& name : names) text += (text.empty() ? "" : " ") + name;
  return text;
}

bool SameNames(const std::vector<std::string>& a, const std::vector<std::string>& b) {
  return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                    [](const std::string& x, const std::string& y) { return FoldName(x) == FoldName(y); });
}

class TableComparer {
 public:
  TableComparer(const ComparedTable& before, const ComparedTable& after)
      : fBefore(before), fAfter(after), fBothAlone(before.isDictionaryAlone && after.isDictionaryAlone) {}

  Comparison Compare() {
    const std::vector<VariableMatch> matches = MatchVariables(fBefore, fAfter);
    CompareFile(matches);
    CompareVariables(matches);
    return std::move(fComparison);
  }

 private:
  static void AddIfChanged(ChangeKind kind, const Text& before, const Text& after, std::vector<Change>& changes) {
    if (before != after) changes.push_back(TextChange(kind, {}, before, after));
  }

  static void CompareAttributes(const Attributes& before, const Attributes& after, std::vector<Change>& changes) {
    std::unordered_map<std::string, const std::string*> valuesAfter;
    for (const auto& [name, value] : after) valuesAfter.emplace(name, &value);
    for (const auto& [name, value] : before) {
      const auto now = valuesAfter.find(name);
      if (now == valuesAfter.end()) {
        changes.push_back(TextChange(ChangeKind::AttributeRemoved, name, value, std::nullopt));
        continue;
      }
      if (*now->second != value) changes.push_back(TextChange(ChangeKind::AttributeChanged, name, value, *now->second));
      valuesAfter.erase(now);
    }
    for (const auto& [name, value] : after)
      if (valuesAfter.contains(name))
        changes.push_back(TextChange(ChangeKind::AttributeAdded, name, std::nullopt, value));
  }

  void CompareFile(const std::vector<VariableMatch>& matches) {
    std::vector<Change>& changes = fComparison.file;
    AddIfChanged(ChangeKind::FileLabelChanged, Said(fBefore.label), Said(fAfter.label), changes);
    const auto folded = [](const Text& name) { return name ? FoldName(*name) : std::string(); };
    if (folded(fBefore.weight) != folded(fAfter.weight))
      changes.push_back(TextChange(ChangeKind::WeightChanged, {}, fBefore.weight, fAfter.weight));
    AddIfChanged(ChangeKind::DocumentsChanged, Said(fBefore.documents), Said(fAfter.documents), changes);
    CompareAttributes(fBefore.attributes, fAfter.attributes, changes);
    CompareOrder(matches);
    CompareSets();
  }

  /// The first variable that stands behind others than it did is named.
  void CompareOrder(const std::vector<VariableMatch>& matches) {
    std::vector<std::size_t> places;  // in the old wave
    std::vector<std::size_t> at;      // of the same in the new one
    for (std::size_t j = 0; j < matches.size(); ++j) {
      if (!matches[j].before || matches[j].renamed) continue;
      places.push_back(*matches[j].before);
      at.push_back(j);
    }
    std::vector<std::size_t> sorted = places;
    std::sort(sorted.begin(), sorted.end());
    const auto [was, is] = std::mismatch(sorted.begin(), sorted.end(), places.begin());
    if (was == sorted.end()) return;
    fComparison.file.push_back(TextChange(ChangeKind::OrderChanged, {}, fBefore.variables[*was].name,
                                          fAfter.variables[at[static_cast<std::size_t>(is - places.begin())]].name));
  }

  void CompareSets() {
    std::vector<Change>& changes = fComparison.file;
    std::unordered_map<std::string, const ComparedSet*> setsAfter;
    for (const ComparedSet& set : fAfter.sets) setsAfter.emplace(FoldName(set.name), &set);
    for (const ComparedSet& set : fBefore.sets) {
      const auto now = setsAfter.find(FoldName(set.name));
      if (now == setsAfter.end()) {
        changes.push_back(TextChange(ChangeKind::SetRemoved, set.name, Joined(set.variables), std::nullopt));
        continue;
      }
      CompareSet(set, *now->second);
      setsAfter.erase(now);
    }
    for (const ComparedSet& set : fAfter.sets)
      if (setsAfter.contains(FoldName(set.name)))
        changes.push_back(TextChange(ChangeKind::SetAdded, set.name, std::nullopt, Joined(set.variables)));
  }

  void CompareSet(const ComparedSet& before, const ComparedSet& after) {
    std::vector<Change>& changes = fComparison.file;
    const auto add = [&](ChangeKind kind, const std::string& was, const std::string& is) {
      changes.push_back(TextChange(kind, after.name, Said(was), Said(is)));
    };
    const auto kind = [](const ComparedSet& set) { return set.isDichotomy ? "dichotomy" : "category"; };
    if (before.label != after.label) add(ChangeKind::SetLabelChanged, before.label, after.label);
    if (before.isDichotomy != after.isDichotomy) add(ChangeKind::SetTypeChanged, kind(before), kind(after));
    if (!SameNames(before.variables, after.variables))
      add(ChangeKind::SetMembersChanged, Joined(before.variables), Joined(after.variables));
    if (before.isDichotomy && after.isDichotomy && before.countedValue != after.countedValue)
      changes.push_back(
          TextChange(ChangeKind::SetCountedValueChanged, after.name, before.countedValue, after.countedValue));
  }

  void CompareVariables(const std::vector<VariableMatch>& matches) {
    std::vector<bool> found(fBefore.variables.size(), false);
    for (std::size_t j = 0; j < matches.size(); ++j) {
      const ComparedVariable& now = fAfter.variables[j];
      VariableComparison variable;
      variable.after = now.name;
      variable.label = now.label.value_or("");
      if (matches[j].before) {
        const ComparedVariable& was = fBefore.variables[*matches[j].before];
        found[*matches[j].before] = true;
        variable.before = was.name;
        if (variable.label.empty()) variable.label = was.label.value_or("");
        variable.renamed = matches[j].renamed;
        CompareVariable(was, now, variable);
      }
      fComparison.variables.push_back(std::move(variable));
    }
    for (std::size_t i = 0; i < found.size(); ++i) {
      if (found[i]) continue;
      VariableComparison variable;
      variable.before = fBefore.variables[i].name;
      variable.label = fBefore.variables[i].label.value_or("");
      fComparison.variables.push_back(std::move(variable));
    }
  }

  /// Silence differs from a word only between two dictionary files.
  void AddIfSaidOtherwise(ChangeKind kind, const Text& before, const Text& after, std::vector<Change>& changes) const {
    if (fBothAlone || (before && after)) AddIfChanged(kind, before, after, changes);
  }

  void CompareVariable(const ComparedVariable& before, const ComparedVariable& after,
                       VariableComparison& variable) const {
    std::vector<Change>& changes = variable.changes;
    if (!variable.renamed && before.name != after.name)
      changes.push_back(TextChange(ChangeKind::NameCaseChanged, {}, before.name, after.name));
    AddIfChanged(ChangeKind::LabelChanged, Said(before.label), Said(after.label), changes);
    AddIfSaidOtherwise(ChangeKind::TypeChanged, TypeWord(before.type), TypeWord(after.type), changes);
    AddIfSaidOtherwise(ChangeKind::FormatChanged, before.format, after.format, changes);
    AddIfSaidOtherwise(ChangeKind::LevelChanged, before.level, after.level, changes);
    AddIfSaidOtherwise(ChangeKind::RoleChanged, before.role, after.role, changes);
    for (Change& change : CompareLabels(before.labels, after.labels)) changes.push_back(std::move(change));
    CompareMissing(before.missing, after.missing, changes);
    CompareAttributes(before.attributes, after.attributes, changes);
  }

  /// Both are sorted.
  static void CompareMissing(const std::vector<std::string>& before, const std::vector<std::string>& after,
                             std::vector<Change>& changes) {
    for (const std::string& value : before)
      if (!std::binary_search(after.begin(), after.end(), value))
        changes.push_back(TextChange(ChangeKind::MissingRemoved, value, std::nullopt, std::nullopt));
    for (const std::string& value : after)
      if (!std::binary_search(before.begin(), before.end(), value))
        changes.push_back(TextChange(ChangeKind::MissingAdded, value, std::nullopt, std::nullopt));
  }

  const ComparedTable& fBefore;
  const ComparedTable& fAfter;
  const bool fBothAlone;
  Comparison fComparison;
};

}  // namespace

Comparison CompareTables(const ComparedTable& before, const ComparedTable& after) {
  return TableComparer(before, after).Compare();
}

}  // namespace runtime::data
