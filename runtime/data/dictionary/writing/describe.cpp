#include "runtime/data/dictionary/writing/describe.h"

#include <cmath>
#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>

#include "runtime/data/dictionary/formattext.h"
#include "runtime/data/dictionary/measurewords.h"
#include "runtime/data/dictionary/numberwords.h"
#include "runtime/data/dictionary/valuelabels.h"

namespace runtime::data {
namespace {

/// The type of a variable of which only the record is known.
FieldType TypeOfRecord(const VariableRecord& variable) {
  if (variable.width > 0) return FieldType::String;
  switch (variable.print.type) {
    case kFormatDate:
    case kFormatADate:
    case kFormatEDate:
    case kFormatSDate:
    case kFormatJDate:
    case kFormatQYr:
    case kFormatWkYr:
      return FieldType::Date;
    case kFormatMoYr:
      return FieldType::YearMonth;
    case kFormatDateTime:
    case kFormatYMDHMS:
      return FieldType::DateTime;
    case kFormatTime:
    case kFormatMTime:
      return FieldType::Time;
    case kFormatDTime:
      return FieldType::Duration;
    default:
      return FieldType::Number;
  }
}

/// A value of the variable as a dictionary file names it.
LabelledValue NamedValue(const OBS& value, int width) {
  if (width == 0) return {NumberWords(value.number), true, std::nullopt};
  std::string_view text(reinterpret_cast<const char*>(&value), static_cast<std::size_t>(width));
  const std::size_t last = text.find_last_not_of(' ');
  return {std::string(text.substr(0, last == std::string_view::npos ? 0 : last + 1)), false, std::nullopt};
}

std::vector<LabelledValue> LabelsOf(const MAVO_VLImplPointer& labels, int width) {
  std::vector<LabelledValue> entries;
  MAVO_ValueLabelMap map(labels);
  const OBS* value = nullptr;
  const char* label = nullptr;
  while (map.GetNextPair(value, label) != 0) {
    entries.push_back(NamedValue(*value, width));
    entries.back().label = label;
  }
  return entries;
}

bool SameLabels(const std::vector<LabelledValue>& a, const std::vector<LabelledValue>& b) {
  if (a.size() != b.size()) return false;
  for (std::size_t i = 0; i < a.size(); ++i)
    if (a[i].value != b[i].value || a[i].label != b[i].label) return false;
  return true;
}

/// The labels in force go to the list that can say all of them; where the field says them already, it stays as it is.
void DescribeLabels(const VariableRecord& variable, FieldDescriptor& field) {
  const std::vector<LabelledValue> wanted = LabelsOf(variable.valueLabels, variable.width);
  std::vector<Note> ignored;
  const FieldType type = field.dialect.type;
  const bool fits = variable.width == 0 || static_cast<std::size_t>(variable.width) >= LongestLabelledText(field);
  if (fits) {
    const MAVO_VLImplPointer said(MakeValueLabels(&field, type, variable.width, {}, ignored));
    if (SameLabels(LabelsOf(said, variable.width), wanted)) return;
  }
  for (auto* entries : {&field.categories, &field.missingValues})
    for (LabelledValue& entry : *entries) entry.label.reset();
  field.valueLabels = wanted;
}

bool SameRule(const MissingRule& a, const MissingRule& b) {
  if (a.values != b.values || a.texts != b.texts || a.ranges.size() != b.ranges.size()) return false;
  for (std::size_t i = 0; i < a.ranges.size(); ++i)
    if (a.ranges[i].low != b.ranges[i].low || a.ranges[i].high != b.ranges[i].high) return false;
  return true;
}

std::optional<double> Bound(double bound) { return std::isfinite(bound) ? std::optional(bound) : std::nullopt; }

void DescribeMissing(const VariableRecord& variable, FieldDescriptor& field) {
  const bool isString = variable.width > 0;
  if (SameRule(MakeMissingRule(field.missingValues, field.missingRanges, field.dialect, isString), variable.missing))
    return;
  field.missingValues.clear();
  field.missingRanges.clear();
  if (!isString) field.missingValues.emplace_back();  // an empty cell
  for (const double code : variable.missing.values)
    field.missingValues.push_back({NumberWords(code), true, std::nullopt});
  for (const std::string& text : variable.missing.texts) field.missingValues.push_back({text, false, std::nullopt});
  for (const MissingRule::Range& range : variable.missing.ranges)
    field.missingRanges.push_back({Bound(range.low), Bound(range.high)});
}

FieldDescriptor DescribeVariable(const VariableRecord& variable, const DescribedColumn& column,
                                 const std::vector<LabelledValue>& missingOfSchema) {
  FieldDescriptor field;
  if (column.field) {
    field = *column.field;
  } else {
    field.name = column.facts ? column.facts->header : variable.name;
    if (field.name.empty()) field.name = variable.name;
    field.missingValues = missingOfSchema;
    field.attributes = variable.attributes;
  }
  if (field.dialect.type == FieldType::Inferred)
    field.dialect.type = column.facts ? column.facts->type : TypeOfRecord(variable);
  field.title = variable.label;
  field.format = variable.print;
  field.measure = MeasureWord(variable.level);
  field.role = RoleWord(variable.role);
  DescribeMissing(variable, field);
  DescribeLabels(variable, field);
  return field;
}

SetDescriptor DescribeSet(const VariableSet& set, const std::unordered_map<std::string, std::string>& fieldOfVariable) {
  SetDescriptor described;
  described.name = set.GetName(kKeepCase);
  described.label = set.GetLabel();
  described.isDichotomy = set.GetType() == VariableSet::kDichotomySet;
  for (const std::string& member : set.GetVariableNames(kKeepCase)) {
    const auto field = fieldOfVariable.find(member);
    described.variables.push_back(field == fieldOfVariable.end() ? member : field->second);
  }
  if (described.isDichotomy) described.countedValue = set.GetValue();
  described.labelledByCountedValues = set.qUseVariableCategoryLabels();
  return described;
}

}  // namespace

TableDescriptor Describe(const Dictionary& dictionary, const std::vector<DescribedColumn>& columns,
                         const TableDescriptor* source) {
  TableDescriptor table;
  if (source) {
    table = *source;
    table.fields.clear();
    table.sets.clear();
    table.weight.reset();
    table.documents.clear();
  }
  table.hasSchema = true;
  if (!source) table.missingValues = {LabelledValue{}};

  std::unordered_map<std::string, std::string> fieldOfVariable;
  table.fields.reserve(dictionary.variables.size());
  for (std::size_t i = 0; i < dictionary.variables.size(); ++i) {
    const VariableRecord& variable = *dictionary.variables[i];
    table.fields.push_back(
        DescribeVariable(variable, columns.empty() ? DescribedColumn() : columns[i], table.missingValues));
    fieldOfVariable.emplace(variable.name, table.fields.back().name);
  }
  if (dictionary.weight >= 0) table.weight = table.fields[static_cast<std::size_t>(dictionary.weight)].name;
  for (const VariableSet& set : dictionary.sets) table.sets.push_back(DescribeSet(set, fieldOfVariable));
  table.label = dictionary.label;
  for (const DSDocument& document : dictionary.documents) {
    std::vector<std::string> lines;
    for (std::size_t line = 0; line < document.Size(); ++line) lines.push_back(document[static_cast<int>(line)]);
    table.documents.push_back(std::move(lines));
  }
  table.attributes = dictionary.attributes;
  return table;
}

}  // namespace runtime::data
