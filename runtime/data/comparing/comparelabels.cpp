#include "runtime/data/comparing/comparelabels.h"

#include <optional>
#include <string>
#include <unordered_map>
#include <unordered_set>

namespace runtime::data {
namespace {

/// The value of each label; nothing for one that stands at several.
std::unordered_map<std::string, std::optional<std::string>> ValuesOfLabels(const std::vector<ComparedLabel>& labels) {
  std::unordered_map<std::string, std::optional<std::string>> values;
  for (const ComparedLabel& label : labels) {
    const auto [place, isNew] = values.emplace(label.label, label.value);
    if (!isNew) place->second.reset();
  }
  return values;
}

}  // namespace

std::vector<Change> CompareLabels(const std::vector<ComparedLabel>& before, const std::vector<ComparedLabel>& after) {
  std::vector<Change> changes;
  const auto valuesBefore = ValuesOfLabels(before);
  std::unordered_set<std::string> moved;
  const auto valuesAfter = ValuesOfLabels(after);
  for (const auto& [label, value] : valuesAfter) {
    const auto found = valuesBefore.find(label);
    if (value && found != valuesBefore.end() && found->second && *found->second != *value) moved.insert(label);
  }

  std::unordered_map<std::string, const ComparedLabel*> labelsAfter;
  for (const ComparedLabel& label : after) labelsAfter.emplace(label.value, &label);
  std::unordered_map<std::string, const ComparedLabel*> labelsBefore;
  for (const ComparedLabel& label : before) labelsBefore.emplace(label.value, &label);
  const auto staying = [&moved](const std::unordered_map<std::string, const ComparedLabel*>& labels,
                                const std::string& value) -> const ComparedLabel* {
    const auto found = labels.find(value);
    return found == labels.end() || moved.contains(found->second->label) ? nullptr : found->second;
  };

  for (const ComparedLabel& label : before) {
    if (moved.contains(label.label)) {
      changes.push_back(TextChange(ChangeKind::CodeMoved, label.label, label.value, valuesAfter.at(label.label)));
      continue;
    }
    const ComparedLabel* const now = staying(labelsAfter, label.value);
    if (now == nullptr)
      changes.push_back(TextChange(ChangeKind::ValueLabelRemoved, label.value, label.label, std::nullopt));
    else if (now->label != label.label)
      changes.push_back(TextChange(ChangeKind::ValueLabelChanged, label.value, label.label, now->label));
  }
  for (const ComparedLabel& label : after)
    if (!moved.contains(label.label) && staying(labelsBefore, label.value) == nullptr)
      changes.push_back(TextChange(ChangeKind::ValueLabelAdded, label.value, std::nullopt, label.label));
  return changes;
}

}  // namespace runtime::data
