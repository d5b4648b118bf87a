#include "runtime/data/records.h"

#include "runtime/data/foldedname.h"

namespace runtime::data {

int Dictionary::FindVariable(const std::string& name) const {
  const auto found = fIndexOfFoldedName.find(FoldName(name));
  return found == fIndexOfFoldedName.end() ? -1 : found->second;
}

void Dictionary::IndexNames() {
  fIndexOfFoldedName.clear();
  fIndexOfFoldedName.reserve(variables.size());
  int index = 0;
  for (const auto& variable : variables) fIndexOfFoldedName.emplace(FoldName(variable->name), index++);
}

}  // namespace runtime::data
