#include "runtime/data/dictionary/tableschema.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <string>
#include <unordered_map>
#include <utility>

#include <fmt/format.h>

#include "runtime/data/dictionary/formattext.h"
#include "runtime/data/dictionary/measurewords.h"

namespace runtime::data {
namespace {

FieldType TypeOf(const std::string& word) {
  static const std::unordered_map<std::string, FieldType> kNumeric = {
      {"integer", FieldType::Integer}, {"number", FieldType::Number},       {"boolean", FieldType::Boolean},
      {"year", FieldType::Year},       {"date", FieldType::Date},           {"datetime", FieldType::DateTime},
      {"time", FieldType::Time},       {"yearmonth", FieldType::YearMonth}, {"duration", FieldType::Duration}};
  const auto found = kNumeric.find(word);
  return found == kNumeric.end() ? FieldType::String : found->second;
}

/// An entry of a list of values with labels: an object with `value` and perhaps `label`, or the bare value.
LabelledValue ReadLabelledValue(const JsonPlace& entry) {
  if (!entry.isObject()) return {entry.Scalar(), entry.isNumber(), std::nullopt};
  const JsonPlace value = entry.Need("value");
  LabelledValue labelled{value.Scalar(), value.isNumber(), entry.FindText("label")};
  if (labelled.label && labelled.label->empty()) labelled.label.reset();
  return labelled;
}

std::vector<LabelledValue> ReadLabelledValues(const JsonPlace& list) {
  std::vector<LabelledValue> values;
  for (const JsonPlace& entry : list.Entries()) values.push_back(ReadLabelledValue(entry));
  return values;
}

std::optional<double> FindBound(const JsonPlace& range, const char* key) {
  const std::optional<JsonPlace> bound = range.Find(key);
  if (!bound) return std::nullopt;
  return bound->Number();
}

std::vector<MissingRangeDescriptor> ReadMissingRanges(const JsonPlace& list) {
  std::vector<MissingRangeDescriptor> ranges;
  for (const JsonPlace& entry : list.Entries()) {
    const MissingRangeDescriptor range{FindBound(entry, "min"), FindBound(entry, "max")};
    if (!range.min && !range.max) entry.Fail("a range of missing values needs \"min\", \"max\" or both");
    if (range.min && range.max && *range.min > *range.max)
      entry.Fail(fmt::format("the range begins at {} and ends before it, at {}", *range.min, *range.max));
    ranges.push_back(range);
  }
  return ranges;
}

void ReadCodebook(const JsonPlace& codebook, FieldDescriptor& field, std::vector<Note>& notes) {
  NoteUnknownMembers(codebook, {"format", "measure", "role", "valueLabels", "missingRanges", "attributes"}, notes);
  if (const auto format = codebook.Find("format")) {
    const FormatReading reading = ReadFormatText(format->Text());
    if (!reading.problem.empty()) format->Fail(reading.problem);
    field.format = reading.format;
  }
  if (const auto measure = codebook.Find("measure")) {
    if (!MeasurementLevelOf(measure->Text()))
      measure->Fail(fmt::format("\"{}\" is no measurement level; write one of {}", measure->Text(), kMeasureWords));
    field.measure = measure->Text();
  }
  if (const auto role = codebook.Find("role")) {
    if (!RoleOf(role->Text())) role->Fail(fmt::format("\"{}\" is no role; write one of {}", role->Text(), kRoleWords));
    field.role = role->Text();
  }
  if (const auto labels = codebook.Find("valueLabels")) field.valueLabels = ReadLabelledValues(*labels);
  if (const auto ranges = codebook.Find("missingRanges")) field.missingRanges = ReadMissingRanges(*ranges);
  if (const auto attributes = codebook.Find("attributes")) ReadAttributes(*attributes, field.attributes);
}

void ReadMaxLength(const JsonPlace& constraints, FieldDescriptor& field) {
  const auto length = constraints.Find("maxLength");
  if (!length) return;
  const double bytes = length->Number();
  if (!(bytes >= 0 && bytes <= std::numeric_limits<int>::max()) || bytes != std::floor(bytes))
    length->Fail("the greatest length must be a whole number that is not negative");
  field.maxLength = static_cast<int>(bytes);
}

void ReadTypeProperties(const JsonPlace& place, FieldDialect& dialect) {
  if (const auto type = place.FindText("type")) dialect.type = TypeOf(*type);
  if (const auto format = place.FindText("format"))
    dialect.format = format->rfind("fmt:", 0) == 0 ? format->substr(4) : *format;
  if (const auto decimal = place.Find("decimalChar")) {
    dialect.decimalChar = decimal->Text();
    if (dialect.decimalChar.empty()) decimal->Fail("the decimal character is empty; leave it out for a period");
  }
  if (const auto group = place.FindText("groupChar")) dialect.groupChar = *group;
  if (!dialect.groupChar.empty() && dialect.groupChar == dialect.decimalChar)
    place.Fail("\"groupChar\" and \"decimalChar\" are the same");
  if (const auto bare = place.FindFlag("bareNumber")) dialect.bareNumber = *bare;
  if (const auto values = place.Find("trueValues")) dialect.trueValues = values->Texts();
  if (const auto values = place.Find("falseValues")) dialect.falseValues = values->Texts();
}

FieldDescriptor ReadField(const JsonPlace& place, const std::vector<LabelledValue>& schemaMissing,
                          std::vector<Note>& notes) {
  FieldDescriptor field;
  field.name = place.Need("name").Text();
  field.title = place.FindText("title");
  if (field.title && field.title->empty()) field.title.reset();
  field.description = place.FindText("description");
  ReadTypeProperties(place, field.dialect);
  const auto missing = place.Find("missingValues");
  field.missingValues = missing ? ReadLabelledValues(*missing) : schemaMissing;
  if (const auto categories = place.Find("categories")) {
    field.categories = ReadLabelledValues(*categories);
    field.hasCategories = true;
  }
  field.categoriesOrdered = place.FindFlag("categoriesOrdered").value_or(false);
  if (const auto constraints = place.Find("constraints")) ReadMaxLength(*constraints, field);
  if (const auto codebook = place.Find("codebook")) ReadCodebook(*codebook, field, notes);
  if (field.description && !field.description->empty()) field.attributes.Add("Description", {*field.description});
  return field;
}

SetDescriptor ReadSet(const JsonPlace& place) {
  SetDescriptor set;
  const JsonPlace name = place.Need("name");
  set.name = name.Text();
  if (set.name.empty() || set.name == "$") name.Fail("a set needs a name, such as \"$languages\"");
  set.label = place.FindText("label").value_or("");
  const JsonPlace type = place.Need("type");
  if (type.Text() != "category" && type.Text() != "dichotomy")
    type.Fail(fmt::format("\"{}\" is no type of set; write \"category\" or \"dichotomy\"", type.Text()));
  set.isDichotomy = type.Text() == "dichotomy";
  const JsonPlace variables = place.Need("variables");
  set.variables = variables.Texts();
  if (set.variables.empty()) variables.Fail("a set needs at least one variable");
  if (const auto counted = place.Find("countedValue")) set.countedValue = counted->Scalar();
  if (set.isDichotomy && !place.Find("countedValue"))
    place.Fail("a dichotomy set needs \"countedValue\", the value that stands for yes");
  if (const auto labels = place.Find("categoryLabels")) {
    if (labels->Text() != "variableLabels" && labels->Text() != "countedValues")
      labels->Fail(fmt::format("\"{}\" is not known; write \"variableLabels\" or \"countedValues\"", labels->Text()));
    set.labelledByCountedValues = set.isDichotomy && labels->Text() == "countedValues";
  }
  return set;
}

}  // namespace

std::vector<std::string> SplitLines(const std::string& text) {
  std::vector<std::string> lines;
  for (std::size_t at = 0; at < text.size();) {
    const std::size_t end = std::min(text.find_first_of("\r\n", at), text.size());
    lines.push_back(text.substr(at, end - at));
    const bool pair = end + 1 < text.size() && text[end] == '\r' && text[end + 1] == '\n';
    at = end + (pair ? 2 : 1);
  }
  return lines;
}

std::vector<std::vector<std::string>> ReadDocuments(const JsonPlace& list) {
  std::vector<std::vector<std::string>> documents;
  for (const JsonPlace& entry : list.Entries())
    documents.push_back(entry.isText() ? SplitLines(entry.Text()) : entry.Texts());
  return documents;
}

void NoteUnknownMembers(const JsonPlace& codebook, const std::vector<std::string>& known, std::vector<Note>& notes) {
  for (const auto& [name, member] : codebook.Members()) {
    if (std::find(known.begin(), known.end(), name) != known.end()) continue;
    notes.push_back({false, fmt::format("{}: this property is not known and not used; known here: {}", member.Where(),
                                        fmt::join(known, ", "))});
  }
}

void ReadAttributes(const JsonPlace& object, DatasourceAttributes& attributes) {
  for (const auto& [name, value] : object.Members()) {
    if (value.isText()) {
      attributes.Add(name, {value.Text()});
      continue;
    }
    if (!value.isList()) value.Fail("the value of an attribute must be a text or a list of texts");
    attributes.Add(name, value.Texts());
  }
}

void ReadWeightAndSets(const JsonPlace& codebook, TableDescriptor& table) {
  if (!table.weight) {
    table.weight = codebook.FindText("weight");
    if (table.weight && table.weight->empty()) table.weight.reset();
  }
  if (!table.sets.empty()) return;
  if (const auto sets = codebook.Find("multipleResponseSets"))
    for (const JsonPlace& set : sets->Entries()) table.sets.push_back(ReadSet(set));
}

void ReadTableSchema(const JsonPlace& schema, TableDescriptor& table, std::vector<Note>& notes) {
  table.hasSchema = true;
  if (const auto missing = schema.Find("missingValues"))
    table.missingValues = ReadLabelledValues(*missing);
  else
    table.missingValues = {LabelledValue{}};
  const std::vector<JsonPlace> fields = schema.Need("fields").Entries();
  table.fields.reserve(fields.size());
  std::unordered_map<std::string, std::size_t> indexOfName;
  for (const JsonPlace& place : fields) {
    table.fields.push_back(ReadField(place, table.missingValues, notes));
    const std::string& name = table.fields.back().name;
    const auto [first, isNew] = indexOfName.emplace(name, table.fields.size() - 1);
    if (!isNew)
      place.Fail(fmt::format("the field name \"{}\" stands twice, first as field {}; every field needs its own name",
                             name, first->second + 1));
  }
  if (const auto codebook = schema.Find("codebook")) {
    NoteUnknownMembers(*codebook, {"weight", "multipleResponseSets", "documents", "attributes"}, notes);
    ReadWeightAndSets(*codebook, table);
    if (const auto documents = codebook->Find("documents")) table.documents = ReadDocuments(*documents);
    if (const auto attributes = codebook->Find("attributes")) ReadAttributes(*attributes, table.attributes);
  }
}

}  // namespace runtime::data
