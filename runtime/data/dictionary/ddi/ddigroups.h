// Groups of variables, and the weight among them.
#pragma once

#include <string>
#include <unordered_map>
#include <vector>

#include "runtime/data/dictionary/ddi/ddivariable.h"

namespace runtime::data {

/// The variables of one file, and what refers to them.
struct DdiVariables {
  std::vector<DdiVariable> variables;
  std::unordered_map<std::string, std::size_t> indexOfId;
  std::unordered_map<std::string, std::size_t> indexOfName;
  std::unordered_map<std::string, std::size_t> elsewhere;  // IDs of variables of other files
  /// The columns of the data, empty when they are not known.
  std::unordered_map<std::string, std::size_t> columns;

  bool IsInData(std::size_t variable) const {
    return columns.empty() || columns.count(variables[variable].field.name) > 0;
  }
};

/// Reads the `varGrp` of a `dataDscr`: those of the type multipleResp become sets, the others the attribute Group of
/// their variables.
void ReadDdiGroups(pugi::xml_node dataDscr, DdiVariables& variables, TableDescriptor& table, KeptElements& kept,
                   RepeatedNotes& notes);

/// The weight: the variable that `wgt-var` of most variables, else the first one, refers to; else the first one that is
/// marked as a weight. Several are told.
void FindDdiWeight(const DdiVariables& variables, const XmlDocument& document, TableDescriptor& table,
                   std::vector<Note>& notes);

}  // namespace runtime::data
