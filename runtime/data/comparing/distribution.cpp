#include "runtime/data/comparing/distribution.h"

#include <cmath>
#include <cstddef>
#include <limits>
#include <unordered_map>
#include <utility>

namespace runtime::data {
namespace {

/// Sums of weights are rounded once; their quotients by a few units in the last place more.
constexpr double kRounding = 1e-9;

bool Moved(double before, double after, double least) {
  const double distance = std::abs(before - after);
  return distance > kRounding && distance >= least - kRounding;
}

Change Movement(ChangeKind kind, std::string about, double before, double after, double size) {
  Change change;
  change.kind = kind;
  change.about = std::move(about);
  change.numberBefore = before;
  change.numberAfter = after;
  change.size = size;
  return change;
}

struct Shares {
  const ValueWeight* before = nullptr;
  const ValueWeight* after = nullptr;
};

double Share(const ValueWeight* value, double valid) { return value == nullptr ? 0.0 : 100.0 * value->weight / valid; }

void CompareValues(const Distribution& before, const Distribution& after, double least, std::vector<Change>& changes) {
  std::unordered_map<std::string, std::string> newCodes;
  for (const Change& change : changes)
    if (change.kind == ChangeKind::CodeMoved) newCodes.emplace(*change.before, *change.after);

  std::vector<Shares> shares;
  std::unordered_map<std::string, std::size_t> places;  // by the code of the new wave
  for (const ValueWeight& value : before.values) {
    const auto moved = newCodes.find(value.value);
    places.emplace(moved == newCodes.end() ? value.value : moved->second, shares.size());
    shares.push_back({&value, nullptr});
  }
  for (const ValueWeight& value : after.values) {
    const auto found = places.find(value.value);
    if (found == places.end())
      shares.push_back({nullptr, &value});
    else
      shares[found->second].after = &value;
  }
  for (const Shares& pair : shares) {
    const double was = Share(pair.before, before.valid);
    const double is = Share(pair.after, after.valid);
    if (!Moved(was, is, least)) continue;
    const ValueWeight& value = pair.after == nullptr ? *pair.before : *pair.after;
    changes.push_back(Movement(ChangeKind::ValueShareMoved, value.value, was, is, std::abs(was - is)));
    if (value.shown != value.value) changes.back().aboutLabel = value.shown;
  }
}

void CompareMeans(const Distribution& before, const Distribution& after, double least, std::vector<Change>& changes) {
  if (!before.mean || !after.mean) return;
  const double was = before.mean->number;
  const double is = after.mean->number;
  const auto spread = [](const Distribution& of) { return of.deviation ? of.deviation->number : 0.0; };
  const double unit = std::sqrt((spread(before) * spread(before) + spread(after) * spread(after)) / 2);
  if (!(std::abs(was - is) > 0.0)) return;
  const double size = unit > 0.0 ? std::abs(was - is) / unit : std::numeric_limits<double>::infinity();
  if (!Moved(0.0, size, least)) return;
  changes.push_back(Movement(ChangeKind::MeanMoved, {}, was, is, size));
  changes.back().before = before.mean->shown;
  changes.back().after = after.mean->shown;
}

}  // namespace

void CompareDistributions(const Distributions& before, const Distributions& after, const Thresholds& thresholds,
                          Comparison& comparison) {
  for (VariableComparison& variable : comparison.variables) {
    if (variable.isAdded() || variable.isRemoved()) continue;
    const auto was = before.find(variable.before);
    const auto is = after.find(variable.after);
    if (was == before.end() || is == after.end()) continue;
    if (!(was->second.total() > 0.0) || !(is->second.total() > 0.0)) continue;
    const double missingBefore = was->second.missingShare();
    const double missingAfter = is->second.missingShare();
    if (Moved(missingBefore, missingAfter, thresholds.missing))
      variable.changes.push_back(Movement(ChangeKind::MissingShareMoved, {}, missingBefore, missingAfter,
                                          std::abs(missingBefore - missingAfter)));
    if (was->second.isScale != is->second.isScale) continue;
    if (!(was->second.valid > 0.0) || !(is->second.valid > 0.0)) continue;
    if (was->second.isScale)
      CompareMeans(was->second, is->second, thresholds.mean, variable.changes);
    else
      CompareValues(was->second, is->second, thresholds.value, variable.changes);
  }
}

}  // namespace runtime::data
