#include "runtime/data/checking/setmembers.h"

#include <algorithm>
#include <cstddef>
#include <unordered_set>
#include <utility>

#include "runtime/data/dictionary/variablenames.h"
#include "runtime/data/foldedname.h"

namespace runtime::data {
namespace {

/// The names by which a set can call its members: those of fields with a column, and those of variables.
class NamesOfMembers {
 public:
  explicit NamesOfMembers(const ReadingFacts& reading) {
    std::vector<std::string> originals;
    for (std::size_t i = 0; i < reading.columns.size(); ++i) {
      const FieldDescriptor* field = reading.FieldOf(i);
      originals.push_back(field != nullptr ? field->name : reading.columns[i].header);
      if (field != nullptr) fFields.insert(field->name);
    }
    for (const std::string& name : MakeVariableNames(originals)) fFolded.insert(FoldName(name));
  }
  bool Hold(const std::string& name) const { return fFields.count(name) > 0 || fFolded.count(FoldName(name)) > 0; }

 private:
  std::unordered_set<std::string> fFields;
  std::unordered_set<std::string> fFolded;
};

}  // namespace

std::vector<UnknownSetMember> UnknownSetMembers(const ReadingFacts& reading) {
  std::vector<UnknownSetMember> unknown;
  if (reading.dictionary->sets.empty()) return unknown;
  const NamesOfMembers names(reading);
  for (const SetDescriptor& set : reading.dictionary->sets)
    for (const std::string& member : set.variables)
      if (!names.Hold(member)) unknown.push_back({set.name, member});
  return unknown;
}

std::vector<SetDescriptor> SetsOfKnownMembers(const ReadingFacts& reading) {
  const NamesOfMembers names(reading);
  std::vector<SetDescriptor> sets = reading.dictionary->sets;
  for (SetDescriptor& set : sets)
    set.variables.erase(std::remove_if(set.variables.begin(), set.variables.end(),
                                       [&](const std::string& member) { return !names.Hold(member); }),
                        set.variables.end());
  sets.erase(std::remove_if(sets.begin(), sets.end(), [](const SetDescriptor& set) { return set.variables.empty(); }),
             sets.end());
  return sets;
}

}  // namespace runtime::data
