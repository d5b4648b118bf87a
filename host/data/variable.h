// A variable of the dictionary and its value labels.
#pragma once

#include <cstddef>
#include <memory>
#include <string>

#include "host/common/api.h"
#include "host/data/attributes.h"
#include "host/data/format.h"
#include "host/data/missingrule.h"
#include "host/data/obs.h"

namespace runtime::data {
struct VariableRecord;
struct ValueLabelList;
}  // namespace runtime::data

namespace MAVO_Variable_Enumerations {
enum MeasurementLevel : int { kLevelUnknown = 0, kLevelNominal = 1, kLevelOrdinal = 2, kLevelScale = 3 };
enum Role : int { kRoleInput = 0, kRoleTarget = 1, kRoleBoth = 2, kRoleNone = 3, kRolePartition = 4, kRoleSplit = 5 };
}  // namespace MAVO_Variable_Enumerations

/// A handle to a variable's value labels. The labels live as long as a handle or the dictionary does.
class HOST_API MAVO_VLImplPointer {
 public:
  MAVO_VLImplPointer();
  explicit MAVO_VLImplPointer(std::shared_ptr<const runtime::data::ValueLabelList> labels);
  ~MAVO_VLImplPointer();
  MAVO_VLImplPointer(const MAVO_VLImplPointer&);
  MAVO_VLImplPointer(MAVO_VLImplPointer&&) noexcept;
  MAVO_VLImplPointer& operator=(const MAVO_VLImplPointer&);
  MAVO_VLImplPointer& operator=(MAVO_VLImplPointer&&) noexcept;

 private:
  friend class MAVO_ValueLabelMap;
  std::shared_ptr<const runtime::data::ValueLabelList> fLabels;
};

/// A walk over, and look-ups in, a variable's value labels. Pairs come ordered by value: numbers ascending, strings by
/// bytes. The values and labels pointed at live as long as the dictionary.
class HOST_API MAVO_ValueLabelMap {
 public:
  explicit MAVO_ValueLabelMap(const MAVO_VLImplPointer& labels);
  ~MAVO_ValueLabelMap();
  MAVO_ValueLabelMap(const MAVO_ValueLabelMap&) = delete;
  MAVO_ValueLabelMap& operator=(const MAVO_ValueLabelMap&) = delete;

  unsigned int Size() const;
  /// Puts the walk before the first pair; a new map stands there.
  void Reset();
  /// Non-zero while it delivers the next pair; the arguments are left alone at the end.
  int GetNextPair(const OBS*& value, const char*& label) const;
  /// The label of a value, null when it has none.
  const char* GetLabel(const OBS* value) const;
  /// The same for a value given as text: of a string variable the value's text (trailing blanks do not matter), of a
  /// numeric one the number that the text reads as.
  const char* GetLabel(const std::string& text) const;

 private:
  std::shared_ptr<const runtime::data::ValueLabelList> fLabels;
  mutable std::size_t fNext = 0;
};

/// A variable of the dictionary: a cheap handle; copies share the record. Texts and references that it gives stay valid
/// while any copy lives.
class HOST_API MAVO_Variable {
 public:
  using MeasurementLevel = MAVO_Variable_Enumerations::MeasurementLevel;
  using Role = MAVO_Variable_Enumerations::Role;

  explicit MAVO_Variable(std::shared_ptr<const runtime::data::VariableRecord> record);
  ~MAVO_Variable();
  MAVO_Variable(const MAVO_Variable&);
  MAVO_Variable(MAVO_Variable&&) noexcept;
  MAVO_Variable& operator=(const MAVO_Variable&);
  MAVO_Variable& operator=(MAVO_Variable&&) noexcept;

  const char* GetName() const;   // never null
  const char* GetLabel() const;  // null when there is none
  /// 0 for a numeric variable, else the string width in bytes.
  int GetType() const;
  /// The print format.
  void GetFormatEx(FormatType& type, int& width, int& decimals) const;
  /// The write format.
  MAVO_Format GetWriteFormatEx() const;
  MeasurementLevel GetMeasurementLevel() const;
  Role GetRole() const;
  const DatasourceAttributes& GetAttributes() const;
  const MAVO_VLImplPointer& GetValueLabels() const;
  /// Non-zero when the value is user-missing. For a string variable `value` has the variable's full width.
  int IsMissing(const OBS* value) const;
  /// The rule behind IsMissing, for libraries that test whole columns.
  const MissingRule& GetMissingRule() const;

 private:
  std::shared_ptr<const runtime::data::VariableRecord> fRecord;
};
