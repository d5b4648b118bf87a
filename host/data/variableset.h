// Multiple response sets.
#pragma once

#include <string>
#include <vector>

#include "host/common/api.h"

/// How a name is wanted: as it is stored (the only form that this host gives).
enum ChangeCase : int { kKeepCase = 2 };
/// Which sets are wanted: multiple response sets (the only kind that this host has).
enum VarSetsType : int { kMultipleResponseSets = 1 };

/// A set's name as the dictionary lists it.
class HOST_API VariableSetImpl {
 public:
  explicit VariableSetImpl(std::string name);
  ~VariableSetImpl();
  VariableSetImpl(const VariableSetImpl&);
  VariableSetImpl(VariableSetImpl&&) noexcept;
  VariableSetImpl& operator=(const VariableSetImpl&);
  VariableSetImpl& operator=(VariableSetImpl&&) noexcept;

  /// Begins with "$".
  const std::string& Name() const { return fName; }

 private:
  std::string fName;
};

/// A multiple response set with its details.
class HOST_API VariableSet {
 public:
  enum VariableSetType : int { kNone = 0, kCategorySet = 1, kDichotomySet = 2 };

  VariableSet();
  ~VariableSet();
  VariableSet(const VariableSet&);
  VariableSet(VariableSet&&) noexcept;
  VariableSet& operator=(const VariableSet&);
  VariableSet& operator=(VariableSet&&) noexcept;

  std::string GetName(ChangeCase) const { return fName; }  // with its leading "$"
  std::string GetLabel() const { return fLabel; }          // empty when there is none
  VariableSetType GetType() const { return fType; }
  /// The members' names, in set order.
  std::vector<std::string> GetVariableNames(ChangeCase) const { return fVariableNames; }
  /// The counted value of a dichotomy set, as text.
  std::string GetValue() const { return fValue; }
  bool qIsEnhancedDichotomy() const { return fEnhancedDichotomy; }
  bool qUseVariableCategoryLabels() const { return fUseVariableCategoryLabels; }

  void SetName(std::string name);
  void SetLabel(std::string label);
  void SetType(VariableSetType type) { fType = type; }
  void SetVariableNames(std::vector<std::string> names);
  void SetValue(std::string value);
  /// The categories of a dichotomy set are labelled by the members' labels of the counted value.
  void SetLabelledByCountedValues(bool labelled) { fEnhancedDichotomy = fUseVariableCategoryLabels = labelled; }

 private:
  std::string fName;
  std::string fLabel;
  VariableSetType fType = kNone;
  std::vector<std::string> fVariableNames;
  std::string fValue;
  bool fEnhancedDichotomy = false;
  bool fUseVariableCategoryLabels = false;
};
