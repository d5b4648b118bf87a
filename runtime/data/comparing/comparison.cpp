#include "runtime/data/comparing/comparison.h"

#include <algorithm>
#include <utility>

namespace runtime::data {

std::string_view ChangeCode(ChangeKind kind) {
  constexpr std::array<std::string_view, kChangeKinds> kCodes = {"file-label-changed",  "weight-changed",
                                                                 "documents-changed",   "order-changed",
                                                                 "set-added",           "set-removed",
                                                                 "set-label-changed",   "set-type-changed",
                                                                 "set-members-changed", "set-counted-value-changed",
                                                                 "attribute-added",     "attribute-removed",
                                                                 "attribute-changed",   "name-case-changed",
                                                                 "label-changed",       "type-changed",
                                                                 "format-changed",      "level-changed",
                                                                 "role-changed",        "value-label-added",
                                                                 "value-label-removed", "value-label-changed",
                                                                 "code-moved",          "missing-added",
                                                                 "missing-removed",     "missing-share-moved",
                                                                 "value-share-moved",   "mean-moved"};
  return kCodes[static_cast<std::size_t>(kind)];
}

bool NamesWhatItIsAbout(ChangeKind kind) {
  switch (kind) {
    case ChangeKind::FileLabelChanged:
    case ChangeKind::WeightChanged:
    case ChangeKind::DocumentsChanged:
    case ChangeKind::OrderChanged:
    case ChangeKind::NameCaseChanged:
    case ChangeKind::LabelChanged:
    case ChangeKind::TypeChanged:
    case ChangeKind::FormatChanged:
    case ChangeKind::LevelChanged:
    case ChangeKind::RoleChanged:
    case ChangeKind::MissingShareMoved:
    case ChangeKind::MeanMoved:
      return false;
    default:
      return true;
  }
}

Change TextChange(ChangeKind kind, std::string about, std::optional<std::string> before,
                  std::optional<std::string> after) {
  Change change;
  change.kind = kind;
  change.about = std::move(about);
  change.before = std::move(before);
  change.after = std::move(after);
  return change;
}

bool VariableComparison::hasMoved() const {
  return std::any_of(changes.begin(), changes.end(),
                     [](const Change& change) { return change.numberBefore.has_value(); });
}

bool Comparison::differs() const {
  return !file.empty() || std::any_of(variables.begin(), variables.end(),
                                      [](const VariableComparison& variable) { return variable.differs(); });
}

ComparisonCounts Count(const Comparison& comparison) {
  ComparisonCounts counts;
  const auto count = [&counts](const std::vector<Change>& changes) {
    for (const Change& change : changes) ++counts.changes[static_cast<std::size_t>(change.kind)];
  };
  count(comparison.file);
  for (const VariableComparison& variable : comparison.variables) {
    count(variable.changes);
    if (variable.isAdded())
      ++counts.added;
    else if (variable.isRemoved())
      ++counts.removed;
    else if (variable.renamed)
      ++counts.renamed;
    else
      ++(variable.changes.empty() ? counts.same : counts.changed);
  }
  return counts;
}

}  // namespace runtime::data
