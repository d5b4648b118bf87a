// What can stand in a label or a cell of a pivot table.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "host/common/api.h"
#include "host/data/obs.h"
#include "host/data/variable.h"

namespace runtime::output {
struct CellContent;
}

/// How a number is shown: format type, width (0: as wide as needed), decimals. Given by BpProcedure.
struct BpFormatSpec {
  FormatType type = kFormatF;
  int width = 0;
  int decimals = 0;
};

/// Common base: holds what is shown. Copies share it.
class HOST_API BpCellText {
 public:
  virtual ~BpCellText();
  BpCellText(const BpCellText&);
  BpCellText& operator=(const BpCellText&);

  const std::shared_ptr<const runtime::output::CellContent>& content() const { return fContent; }

 protected:
  explicit BpCellText(std::shared_ptr<const runtime::output::CellContent> content);

 private:
  std::shared_ptr<const runtime::output::CellContent> fContent;
};

/// A text. `fixed` is true for a procedure's own words (which a translation may replace), false for text from the data.
class HOST_API BpString : public BpCellText {
 public:
  BpString(std::string text, bool fixed);
  ~BpString() override;
  BpString(const BpString&);
  BpString& operator=(const BpString&);
};

/// A number with its format. A NaN is system-missing.
class HOST_API BpNumber : public BpCellText {
 public:
  BpNumber(double value, BpFormatSpec format);
  ~BpNumber() override;
  BpNumber(const BpNumber&);
  BpNumber& operator=(const BpNumber&);
};

/// A data value shown as the variable's print format shows it. The value is copied (a string's full width).
class HOST_API BpDataValue : public BpCellText {
 public:
  enum Preference : int { kFormattedValue = 0, kFormattedValueFromLabels = 2 };

  /// `value` is not null; of a string variable it has the variable's width in bytes.
  BpDataValue(const MAVO_Variable& variable, const OBS* value, Preference preference);
  ~BpDataValue() override;
  BpDataValue(const BpDataValue&);
  BpDataValue& operator=(const BpDataValue&);
};

/// A variable by name, or by label (by name where it has none).
class HOST_API BpVariable : public BpCellText {
 public:
  enum Show : int { kName = 0, kLabel = 1 };

  BpVariable(const MAVO_Variable& variable, Show show);
  ~BpVariable() override;
  BpVariable(const BpVariable&);
  BpVariable& operator=(const BpVariable&);
};
