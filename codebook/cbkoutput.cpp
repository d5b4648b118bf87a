#include "codebook/cbkoutput.h"

#include <array>
#include <cstdio>
#include <string_view>

namespace codebook {

BpString fixedText(const std::string& text) { return BpString(text, true); }

BpString dataText(const std::string& text) { return BpString(text, false); }

BpString noneText() { return fixedText("<none>"); }

std::string elementName(const std::string& name, std::size_t index, std::size_t count) {
  if (count == 1) return name;
  // The digits of the count, floor(log10(count)) + 1, without going through a rounded logarithm.
  const int width = static_cast<int>(std::to_string(count).size());
  const std::string number = std::to_string(index + 1);
  return name + "[" + std::string(static_cast<std::size_t>(width) - number.size(), '0') + number + "]";
}

bool isHiddenAttribute(const std::string& name) { return name.starts_with("@") || name.starts_with("$@"); }

bool isReservedAttribute(const std::string& name) { return name.starts_with("$"); }

std::string attributeValueText(const std::string& value) { return value.empty() ? " " : value; }

namespace {

/// Built on first use and kept for the life of the module. Unnamed codes are empty.
const std::array<std::string_view, 87>& formatNames() {
  static const std::array<std::string_view, 87> names = [] {
    std::array<std::string_view, 87> table{};
    table[kFormatA] = "A";
    table[kFormatAHex] = "AHEX";
    table[kFormatComma] = "COMMA";
    table[kFormatDollar] = "DOLLAR";
    table[kFormatF] = "F";
    table[kFormatIB] = "IB";
    table[kFormatPIBHex] = "PIBHEX";
    table[kFormatP] = "P";
    table[kFormatPIB] = "PIB";
    table[kFormatPK] = "PK";
    table[kFormatRB] = "RB";
    table[kFormatRBHex] = "RBHEX";
    table[kFormatZ] = "Z";
    table[kFormatN] = "N";
    table[kFormatE] = "E";
    table[kFormatDate] = "DATE";
    table[kFormatTime] = "TIME";
    table[kFormatDateTime] = "DATETIME";
    table[kFormatADate] = "ADATE";
    table[kFormatJDate] = "JDATE";
    table[kFormatDTime] = "DTIME";
    table[kFormatWkDay] = "WKDAY";
    table[kFormatMonth] = "MONTH";
    table[kFormatMoYr] = "MOYR";
    table[kFormatQYr] = "QYR";
    table[kFormatWkYr] = "WKYR";
    table[kFormatPct] = "PCT";
    table[kFormatDot] = "DOT";
    table[kFormatCCA] = "CCA";
    table[kFormatCCB] = "CCB";
    table[kFormatCCC] = "CCC";
    table[kFormatCCD] = "CCD";
    table[kFormatCCE] = "CCE";
    table[kFormatEDate] = "EDATE";
    table[kFormatSDate] = "SDATE";
    table[kFormatG] = "G";
    table[kFormatMTime] = "MTIME";
    table[kFormatYMDHMS] = "YMDHMS";
    return table;
  }();
  return names;
}

}  // namespace

std::string formatText(const MAVO_Format& format) {
  const std::string_view known = format.type < formatNames().size() ? formatNames()[format.type] : std::string_view();
  std::string text(known.empty() ? std::string_view("badFormat") : known);
  text += std::to_string(format.width);
  if (format.decimals != 0) text += "." + std::to_string(format.decimals);
  return text;
}

BpDimension makeRows(BpPivotTable& table) {
  BpDimension rows = table.Dimension(fixedText("Attributes"), BpPivotTable::kCreationOrder);
  rows.Position(BpDimension::kRows, 1, true, false);
  return rows;
}

namespace {

BpDimension makeColumns(BpPivotTable& table) {
  BpDimension columns = table.Dimension(fixedText("Values"), BpPivotTable::kCreationOrder);
  columns.Position(BpDimension::kColumns, 1, true, false);
  return columns;
}

}  // namespace

ValueColumns::ValueColumns(BpPivotTable& table)
    : dimension(makeColumns(table)),
      value(dimension.Category(fixedText("Value"))),
      count(dimension.Category(fixedText("Count"))),
      percent(dimension.Category(fixedText("Percent"))) {}

CategoryValue::CategoryValue(const MAVO_Variable& variable, double number, const std::string& text)
    : fIsString(variable.GetType() != 0) {
  fNumber.number = number;
  if (!fIsString) return;
  fText = text;
  const auto width = static_cast<std::size_t>(variable.GetType());
  if (fText.size() < width) fText.resize(width, ' ');
}

const OBS* CategoryValue::obs() const { return fIsString ? reinterpret_cast<const OBS*>(fText.data()) : &fNumber; }

}  // namespace codebook
