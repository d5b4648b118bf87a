#include "runtime/data/comparing/matchvariables.h"

#include <functional>
#include <string>
#include <unordered_map>
#include <utility>

#include "runtime/data/foldedname.h"

namespace runtime::data {
namespace {

/// What two variables must share; empty: this one has nothing of the kind. Parts end with a character that no text of a
/// dictionary holds.
using Key = std::function<std::string(const ComparedVariable&)>;

constexpr char kEnd = '\0';

std::string ValueLabels(const ComparedVariable& variable) {
  std::string text;
  for (const ComparedLabel& label : variable.labels) text += label.value + kEnd + label.label + kEnd;
  return text;
}

std::string Type(const ComparedVariable& variable) {
  return variable.type ? std::to_string(static_cast<int>(*variable.type)) : std::string();
}

std::string LabelLabelsType(const ComparedVariable& variable) {
  if (!variable.label || variable.labels.empty() || !variable.type) return {};
  return *variable.label + kEnd + Type(variable) + kEnd + ValueLabels(variable);
}

std::string LabelLabels(const ComparedVariable& variable) {
  if (!variable.label || variable.labels.empty()) return {};
  return *variable.label + kEnd + ValueLabels(variable);
}

std::string LabelTypeAlone(const ComparedVariable& variable) {
  return variable.label && variable.type && variable.labels.empty() ? *variable.label + kEnd + Type(variable)
                                                                    : std::string();
}

std::string LabelType(const ComparedVariable& variable) {
  return variable.label && variable.type ? *variable.label + kEnd + Type(variable) : std::string();
}

struct Pass {
  Key key;
  RenameEvidence evidence;
};

class Matcher {
 public:
  Matcher(const ComparedTable& before, const ComparedTable& after)
      : fBefore(before), fAfter(after), fMatches(after.variables.size()), fTaken(before.variables.size(), false) {}

  std::vector<VariableMatch> Match() {
    MatchNames([](const ComparedVariable& variable) { return variable.name; });
    MatchNames([](const ComparedVariable& variable) { return FoldName(variable.name); });
    const Pass passes[] = {{LabelLabelsType, {true, true, 1.0}},
                           {LabelLabels, {true, false, 0.9}},
                           {LabelTypeAlone, {false, true, 0.8}},
                           {LabelType, {false, true, 0.6}}};
    for (const Pass& pass : passes) ProposeRenames(pass);
    return std::move(fMatches);
  }

 private:
  void MatchNames(const Key& key) {
    std::unordered_map<std::string, std::size_t> places;
    for (std::size_t i = 0; i < fTaken.size(); ++i)
      if (!fTaken[i]) places.emplace(key(fBefore.variables[i]), i);
    for (std::size_t j = 0; j < fMatches.size(); ++j) {
      if (fMatches[j].before) continue;
      const auto found = places.find(key(fAfter.variables[j]));
      if (found == places.end() || fTaken[found->second]) continue;
      Pair(found->second, j);
    }
  }

  void Pair(std::size_t before, std::size_t after) {
    fMatches[after].before = before;
    fTaken[before] = true;
  }

  struct Holders {
    std::size_t countBefore = 0;
    std::size_t countAfter = 0;
    std::size_t before = 0;
    std::size_t after = 0;
  };

  void ProposeRenames(const Pass& pass) {
    std::unordered_map<std::string, Holders> holders;
    for (std::size_t i = 0; i < fTaken.size(); ++i) {
      if (fTaken[i]) continue;
      std::string key = pass.key(fBefore.variables[i]);
      if (key.empty()) continue;
      Holders& held = holders[std::move(key)];
      ++held.countBefore;
      held.before = i;
    }
    for (std::size_t j = 0; j < fMatches.size(); ++j) {
      if (fMatches[j].before) continue;
      const auto found = holders.find(pass.key(fAfter.variables[j]));
      if (found == holders.end()) continue;
      ++found->second.countAfter;
      found->second.after = j;
    }
    for (const auto& [key, held] : holders) {
      if (held.countBefore != 1 || held.countAfter != 1) continue;
      Pair(held.before, held.after);
      fMatches[held.after].renamed = pass.evidence;
    }
  }

  const ComparedTable& fBefore;
  const ComparedTable& fAfter;
  std::vector<VariableMatch> fMatches;
  std::vector<bool> fTaken;  // of the old wave
};

}  // namespace

std::vector<VariableMatch> MatchVariables(const ComparedTable& before, const ComparedTable& after) {
  return Matcher(before, after).Match();
}

}  // namespace runtime::data
