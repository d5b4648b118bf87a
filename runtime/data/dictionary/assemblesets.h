// Multiple response sets and the weight, from the names that a descriptor gives to the variables of the dictionary.
#pragma once

#include <string>
#include <unordered_map>
#include <vector>

#include "runtime/data/dictionary/assemble.h"
#include "runtime/data/dictionary/descriptor.h"
#include "runtime/data/open.h"
#include "runtime/data/records.h"

namespace runtime::data {

/// Finds variables by the name of their field, else by their own name.
class VariablesByField {
 public:
  /// `fieldNames` has the field's name of every variable, empty for a variable without a field.
  VariablesByField(const Dictionary& dictionary, const std::vector<std::string>& fieldNames);
  /// Dictionary index, -1 when there is none.
  int Find(const std::string& name) const;

 private:
  const Dictionary& fDictionary;
  std::unordered_map<std::string, int> fIndexOfField;
};

/// `columns` are those of the variables. Throws DataError for unknown members, members of both kinds, and a
/// counted value that numeric members cannot have.
std::vector<VariableSet> AssembleSets(const TableDescriptor& descriptor, const Dictionary& dictionary,
                                      const VariablesByField& variables, const std::vector<DescribedColumn>& columns,
                                      std::vector<Note>& notes);

}  // namespace runtime::data
