// The values that a list of a dictionary names, for look-up.
#pragma once

#include <string>
#include <unordered_set>
#include <vector>

#include "runtime/data/checking/variablecheck.h"

namespace runtime::data {

class NamedValues {
 public:
  NamedValues(const std::vector<LabelledValue>& entries, const VariableCheck& check);
  bool Hold(const DistinctValue& value) const;

 private:
  bool fIsString;
  std::unordered_set<double> fNumbers;
  std::unordered_set<std::string> fTexts;
};

}  // namespace runtime::data
