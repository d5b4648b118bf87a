// What the tables share: their layout, and how attributes are named and listed.
#pragma once

#include <cstddef>
#include <string>

#include "host/data/attributes.h"
#include "host/data/format.h"
#include "host/data/variable.h"
#include "host/output/pivottable.h"

namespace codebook {

/// Where the internal checks of the tables stand.
inline constexpr const char* kOutputSource = "backend/codebook/cbkoutput";

/// Marks one of the module's own words for the catalogs of other languages, where it does not stand in fixedText
/// itself. Gives the text as it is.
constexpr const char* N_(const char* text) { return text; }

/// One of the module's own words, and a text from the data.
BpString fixedText(const std::string& text);
BpString dataText(const std::string& text);
/// "<none>", as a fixed text.
BpString noneText();

/// The row label of value `index` (from 0) of an attribute with `count` values: the bare name when there is one value,
/// else the name and a bracketed number from 1, padded with zeros to the digits of the count.
std::string elementName(const std::string& name, std::size_t index, std::size_t count);
/// The name begins with "@" or "$@".
bool isHiddenAttribute(const std::string& name);
/// The name begins with "$".
bool isReservedAttribute(const std::string& name);
/// An empty value shows as one blank, so that no cell is empty.
std::string attributeValueText(const std::string& value);

/// The name of a format and its width, and its decimals when it has any: "F8.2", "A20"; "badFormat" for an unknown
/// code.
std::string formatText(const MAVO_Format& format);

/// The dimension "Attributes", in the rows.
BpDimension makeRows(BpPivotTable& table);

/// The dimension "Values", in the columns, of the variable and set tables. A cell lands in the row created last.
struct ValueColumns {
  explicit ValueColumns(BpPivotTable& table);

  BpDimension dimension;
  BpCategory value;
  BpCategory count;
  BpCategory percent;
};

/// The bytes of a category's value as the host wants them: a number, or text blank-padded to a variable's width.
class CategoryValue {
 public:
  /// For a numeric variable `number` counts, for a string one `text`, of which nothing is cut.
  CategoryValue(const MAVO_Variable& variable, double number, const std::string& text);

  /// Valid while this object lives.
  const OBS* obs() const;

 private:
  OBS fNumber{};
  std::string fText;
  bool fIsString;
};

}  // namespace codebook
