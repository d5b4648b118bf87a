// The dictionary as the runtime stores it. Immutable once a dataset is open; the host classes are handles to it.
#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

#include "host/data/attributes.h"
#include "host/data/format.h"
#include "host/data/missingrule.h"
#include "host/data/obs.h"
#include "host/data/variable.h"
#include "host/data/variableset.h"

namespace runtime::data {

/// A variable's value labels, ordered by value: numbers ascending, strings by bytes. No value stands twice.
struct ValueLabelList {
  struct Entry {
    OBS number{};      // of a numeric variable
    std::string text;  // of a string variable, blank-padded to the width
    std::string label;
  };

  int width = 0;  // 0: numeric
  std::vector<Entry> entries;
};

/// One variable. `width` is 0 for a numeric variable, else the string width in bytes, at least 1.
struct VariableRecord {
  std::string name;
  std::optional<std::string> label;
  int width = 0;
  MAVO_Format print;
  MAVO_Format write;
  MAVO_Variable_Enumerations::MeasurementLevel level = MAVO_Variable_Enumerations::kLevelUnknown;
  MAVO_Variable_Enumerations::Role role = MAVO_Variable_Enumerations::kRoleInput;
  DatasourceAttributes attributes;
  MAVO_VLImplPointer valueLabels;
  MissingRule missing;
};

/// The dictionary of a dataset.
struct Dictionary {
  std::vector<std::shared_ptr<const VariableRecord>> variables;
  std::vector<VariableSet> sets;
  int weight = -1;                      // dictionary index, negative: unweighted
  std::optional<std::string> fileSpec;  // absolute path, a backslash between directory and file name
  std::optional<std::string> label;
  std::vector<DSDocument> documents;
  DatasourceAttributes attributes;

  /// Dictionary index of a name, without regard to case; -1 when there is none. REQUIRES: IndexNames was called after
  /// the last change of `variables`.
  int FindVariable(const std::string& name) const;
  void IndexNames();

 private:
  std::unordered_map<std::string, int> fIndexOfFoldedName;
};

}  // namespace runtime::data
