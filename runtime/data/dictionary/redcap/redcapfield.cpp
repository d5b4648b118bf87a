#include "runtime/data/dictionary/redcap/redcapfield.h"

#include <algorithm>
#include <string_view>

#include "runtime/data/dictionary/jsonfile.h"
#include "runtime/data/lowerascii.h"
#include "runtime/data/typing/numbertext.h"

namespace runtime::data {
namespace {

std::string_view Stripped(std::string_view text) {
  constexpr std::string_view kBlanks = " \t\r\n";
  const std::size_t first = text.find_first_not_of(kBlanks);
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(kBlanks) - first + 1);
}

bool StartsWith(const std::string& text, std::string_view beginning) {
  return text.compare(0, beginning.size(), beginning) == 0;
}

LabelledValue Labelled(std::string value, std::string label) { return {std::move(value), false, std::move(label)}; }

/// Codes such as 01 are texts, for the data hold them like that.
FieldType TypeOfCodes(const std::vector<LabelledValue>& choices) {
  bool areIntegers = true;
  for (const LabelledValue& choice : choices) {
    NumberReading reading;
    NumberShape shape;
    if (!ReadNumberText(choice.value, reading, shape) || shape.leadingZero || shape.hasPlus) return FieldType::String;
    areIntegers = areIntegers && !shape.hasPoint && !shape.hasExponent;
  }
  if (choices.empty()) return FieldType::Inferred;
  return areIntegers ? FieldType::Integer : FieldType::Number;
}

/// Dates are exported with the year first, however they are entered.
FieldDialect DialectOfValidation(const std::string& validation) {
  FieldDialect dialect;
  if (validation == "integer") dialect.type = FieldType::Integer;
  if (StartsWith(validation, "number")) {
    dialect.type = FieldType::Number;
    if (validation.find("comma_decimal") != std::string::npos) dialect.decimalChar = ",";
  }
  if (StartsWith(validation, "date_")) dialect.type = FieldType::Date;
  if (StartsWith(validation, "datetime_")) {
    dialect.type = FieldType::DateTime;
    dialect.format = StartsWith(validation, "datetime_seconds_") ? "%Y-%m-%d %H:%M:%S" : "%Y-%m-%d %H:%M";
  }
  if (validation == "time" || validation == "time_hh_mm_ss") {
    dialect.type = FieldType::Time;
    dialect.format = validation == "time" ? "%H:%M" : "%H:%M:%S";
  }
  constexpr std::string_view kTexts[] = {"email", "phone",      "zipcode", "postalcode", "ssn",
                                         "mrn",   "alpha_only", "vmrn",    "time_mm_ss"};
  if (std::any_of(std::begin(kTexts), std::end(kTexts),
                  [&](std::string_view text) { return StartsWith(validation, text); }))
    dialect.type = FieldType::String;
  return dialect;
}

std::string Yes(const std::string& cell) {
  return cell == "y" || cell == "Y" || cell == "yes" || cell == "1" ? "yes" : cell;
}

void AddAttribute(FieldDescriptor& field, const char* name, std::string value) {
  if (!value.empty()) field.attributes.Add(name, {std::move(value)});
}

void AddAttributes(const RedcapRow& row, const std::string& section, FieldDescriptor& field) {
  const bool isComputed = row[RedcapColumn::Type] == "calc" || row[RedcapColumn::Type] == "sql";
  AddAttribute(field, "Form", row[RedcapColumn::Form]);
  AddAttribute(field, "Section", section);
  AddAttribute(field, "FieldType", row[RedcapColumn::Type]);
  if (isComputed) AddAttribute(field, "Calculation", row[RedcapColumn::Choices]);
  if (row[RedcapColumn::Type] == "slider") AddAttribute(field, "SliderLabels", row[RedcapColumn::Choices]);
  AddAttribute(field, "Notes", row[RedcapColumn::Note]);
  AddAttribute(field, "Validation", row[RedcapColumn::Validation]);
  AddAttribute(field, "Identifier", Yes(row[RedcapColumn::Identifier]));
  AddAttribute(field, "BranchingLogic", row[RedcapColumn::Branching]);
  AddAttribute(field, "Required", Yes(row[RedcapColumn::Required]));
  AddAttribute(field, "CustomAlignment", row[RedcapColumn::Alignment]);
  AddAttribute(field, "QuestionNumber", row[RedcapColumn::QuestionNumber]);
  AddAttribute(field, "MatrixGroup", row[RedcapColumn::MatrixGroup]);
  AddAttribute(field, "MatrixRanking", Yes(row[RedcapColumn::MatrixRanking]));
  AddAttribute(field, "Annotation", row[RedcapColumn::Annotation]);
}

/// Bounds are numbers where the field is, and texts of dates otherwise.
void AddBounds(const RedcapRow& row, FieldDescriptor& field) {
  const bool isNumeric = field.dialect.type == FieldType::Integer || field.dialect.type == FieldType::Number;
  Json constraints = Json::object();
  for (const auto& [name, column] : {std::pair{"minimum", RedcapColumn::Minimum}, {"maximum", RedcapColumn::Maximum}}) {
    const std::string& bound = row[column];
    NumberReading reading;
    if (bound.empty()) continue;
    if (!isNumeric || !ReadNumberText(bound, reading))
      constraints[name] = bound;
    else if (reading.decimals == 0 && reading.isExact)
      constraints[name] = static_cast<std::int64_t>(reading.value);
    else
      constraints[name] = reading.value;
  }
  if (!constraints.empty()) field.extras.push_back({"constraints", constraints.dump()});
}

FieldDescriptor MakeField(const RedcapRow& row) {
  const std::string& type = row[RedcapColumn::Type];
  FieldDescriptor field;
  field.name = row[RedcapColumn::Name];
  field.missingValues = {LabelledValue{}};
  if (!row[RedcapColumn::Label].empty()) field.title = row[RedcapColumn::Label];
  if (type == "radio" || type == "dropdown") {
    field.categories = ReadRedcapChoices(row[RedcapColumn::Choices]);
    field.dialect.type = TypeOfCodes(field.categories);
  } else if (type == "yesno") {
    field.categories = {Labelled("1", "Yes"), Labelled("0", "No")};
    field.dialect.type = FieldType::Integer;
  } else if (type == "truefalse") {
    field.categories = {Labelled("1", "True"), Labelled("0", "False")};
    field.dialect.type = FieldType::Integer;
  } else if (type == "slider") {
    field.dialect.type = FieldType::Number;
    field.measure = "scale";
  } else if (type == "notes" || type == "file" || type == "signature") {
    field.dialect.type = FieldType::String;
  } else if (type == "text") {
    field.dialect = DialectOfValidation(row[RedcapColumn::Validation]);
  }
  field.hasCategories = !field.categories.empty();
  return field;
}

}  // namespace

std::vector<LabelledValue> ReadRedcapChoices(const std::string& text) {
  std::vector<LabelledValue> choices;
  for (std::size_t at = 0; at <= text.size();) {
    const std::size_t end = std::min(text.find_first_of("|\n", at), text.size());
    const std::string_view choice = Stripped(std::string_view(text).substr(at, end - at));
    at = end + 1;
    const std::size_t comma = choice.find(',');
    LabelledValue entry{std::string(Stripped(choice.substr(0, comma))), false, std::nullopt};
    if (entry.value.empty()) continue;
    const std::string_view label =
        comma == std::string_view::npos ? std::string_view() : Stripped(choice.substr(comma + 1));
    if (!label.empty()) entry.label = std::string(label);
    choices.push_back(std::move(entry));
  }
  return choices;
}

std::string CheckboxColumn(const std::string& name, const std::string& code) {
  std::string column = name + "___";
  for (const char byte : code) {
    const char lower = LowerAscii(byte);
    column += (lower >= 'a' && lower <= 'z') || (lower >= '0' && lower <= '9') ? lower : '_';
  }
  return column;
}

std::vector<FieldDescriptor> MakeRedcapFields(const RedcapRow& row, const std::string& section) {
  const std::string& type = row[RedcapColumn::Type];
  if (type == "descriptive") return {};
  std::vector<FieldDescriptor> fields;
  if (type != "checkbox") {
    fields.push_back(MakeField(row));
    AddAttributes(row, section, fields.back());
    AddBounds(row, fields.back());
    return fields;
  }
  for (const LabelledValue& choice : ReadRedcapChoices(row[RedcapColumn::Choices])) {
    FieldDescriptor field;
    field.name = CheckboxColumn(row[RedcapColumn::Name], choice.value);
    field.missingValues = {LabelledValue{}};
    field.title = choice.label ? choice.label : choice.value;
    field.dialect.type = FieldType::Integer;
    field.categories = {Labelled("1", "Checked"), Labelled("0", "Unchecked")};
    field.hasCategories = true;
    AddAttribute(field, "Question", row[RedcapColumn::Label]);
    AddAttributes(row, section, field);
    fields.push_back(std::move(field));
  }
  return fields;
}

FieldDescriptor MakeFormState(const std::string& form) {
  FieldDescriptor field;
  field.name = form + "_complete";
  field.missingValues = {LabelledValue{}};
  field.title = "State of the form";
  field.dialect.type = FieldType::Integer;
  field.categories = {Labelled("0", "Incomplete"), Labelled("1", "Unverified"), Labelled("2", "Complete")};
  field.hasCategories = true;
  AddAttribute(field, "Form", form);
  return field;
}

}  // namespace runtime::data
