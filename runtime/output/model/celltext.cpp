#include "host/output/celltext.h"

#include <string_view>
#include <utility>

#include "runtime/output/binding.h"
#include "runtime/output/format/valueformat.h"
#include "runtime/output/language/catalog.h"
#include "runtime/output/model/report.h"

using runtime::output::CellContent;
using runtime::output::ContentOrigin;
using runtime::output::SharedContent;

namespace {

/// A procedure's own word in the language of the report.
std::string Translated(std::string text) {
  const runtime::output::OutputBinding* binding = runtime::output::CurrentOutput();
  if (binding == nullptr || binding->catalog == nullptr) return text;
  return std::string(binding->catalog->Translate(text));
}

SharedContent TextContent(std::string text, bool fixed) {
  auto content = std::make_shared<CellContent>();
  content->text = fixed ? Translated(std::move(text)) : std::move(text);
  content->fixed = fixed;
  return content;
}

SharedContent NumberContent(double value, BpFormatSpec format) {
  auto content = std::make_shared<CellContent>();
  content->kind = CellContent::Kind::Number;
  content->text = runtime::output::FormatNumber(value, format);
  content->number = value;
  content->format = format;
  return content;
}

SharedContent DataValueContent(const MAVO_Variable& variable, const OBS* value) {
  auto content = std::make_shared<CellContent>();
  content->kind = CellContent::Kind::DataValue;
  auto origin = std::make_unique<ContentOrigin>();
  origin->variable = variable.GetName();
  BpFormatSpec& format = content->format;
  variable.GetFormatEx(format.type, format.width, format.decimals);
  if (const int width = variable.GetType(); width > 0) {
    std::string_view text(value->bytes, static_cast<std::size_t>(width));
    text = text.substr(0, text.find_last_not_of(' ') + 1);
    origin->isString = true;
    origin->stringValue = text;
    content->text = runtime::output::FormatText(text, format.type);
  } else {
    content->number = value->number;
    content->text = runtime::output::FormatNumber(value->number, format);
  }
  content->origin = std::move(origin);
  return content;
}

SharedContent VariableContent(const MAVO_Variable& variable, BpVariable::Show show) {
  auto content = std::make_shared<CellContent>();
  content->kind = CellContent::Kind::Variable;
  const char* label = show == BpVariable::kLabel ? variable.GetLabel() : nullptr;
  content->text = label == nullptr ? variable.GetName() : label;
  content->origin = std::make_unique<const ContentOrigin>(ContentOrigin{variable.GetName(), false, {}, show});
  return content;
}

}  // namespace

BpCellText::BpCellText(SharedContent content) : fContent(std::move(content)) {}
BpCellText::~BpCellText() = default;
BpCellText::BpCellText(const BpCellText&) = default;
BpCellText& BpCellText::operator=(const BpCellText&) = default;

BpString::BpString(std::string text, bool fixed) : BpCellText(TextContent(std::move(text), fixed)) {}
BpString::~BpString() = default;
BpString::BpString(const BpString&) = default;
BpString& BpString::operator=(const BpString&) = default;

BpNumber::BpNumber(double value, BpFormatSpec format) : BpCellText(NumberContent(value, format)) {}
BpNumber::~BpNumber() = default;
BpNumber::BpNumber(const BpNumber&) = default;
BpNumber& BpNumber::operator=(const BpNumber&) = default;

// Both preferences show the formatted value: what a label would add stands in a cell of its own.
BpDataValue::BpDataValue(const MAVO_Variable& variable, const OBS* value, Preference)
    : BpCellText(DataValueContent(variable, value)) {}
BpDataValue::~BpDataValue() = default;
BpDataValue::BpDataValue(const BpDataValue&) = default;
BpDataValue& BpDataValue::operator=(const BpDataValue&) = default;

BpVariable::BpVariable(const MAVO_Variable& variable, Show show) : BpCellText(VariableContent(variable, show)) {}
BpVariable::~BpVariable() = default;
BpVariable::BpVariable(const BpVariable&) = default;
BpVariable& BpVariable::operator=(const BpVariable&) = default;
