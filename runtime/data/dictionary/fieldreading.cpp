#include "runtime/data/dictionary/fieldreading.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <string>

#include <fmt/format.h>

#include "runtime/data/dictionary/extras.h"
#include "runtime/data/dictionary/formattext.h"
#include "runtime/data/dictionary/labelledvalues.h"
#include "runtime/data/dictionary/measurewords.h"
#include "runtime/data/dictionary/tableschema.h"
#include "runtime/data/dictionary/typewords.h"

namespace runtime::data {
namespace {

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

void ReadCodebook(const JsonPlace& codebook, FieldDescriptor& field, const SchemaContext& context) {
  NoteUnknownMembers(codebook,
                     {"format", "measure", "role", "values", "valueLabels", "missingRanges", "attributes", "ddi"},
                     context.notes, field.extras);
  KeepDdiExtras(codebook, field.extras);
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
  // Values that a DDI-Codebook lists without labels say nothing about the level.
  if (const auto values = codebook.Find("values"); values && !field.hasCategories)
    field.categories = ReadLabelledValues(*values, context.deviations);
  if (const auto labels = codebook.Find("valueLabels"))
    field.valueLabels = ReadLabelledValues(*labels, context.deviations);
  if (const auto ranges = codebook.Find("missingRanges")) field.missingRanges = ReadMissingRanges(*ranges);
  if (const auto attributes = codebook.Find("attributes")) ReadAttributes(*attributes, field.attributes);
}

/// The word of `type`: of a list such as ["integer", "null"] the one that is no null.
std::optional<JsonPlace> FindTypeWord(const JsonPlace& place, Deviations& deviations) {
  std::optional<JsonPlace> type = place.Find("type");
  if (!type || !type->isList()) return type;
  std::vector<JsonPlace> words = type->Entries();
  words.erase(
      std::remove_if(words.begin(), words.end(),
                     [](const JsonPlace& word) { return word.isNull() || (word.isText() && word.Text() == "null"); }),
      words.end());
  if (words.size() != 1) type->Fail("a field has one type; the list names several or none");
  deviations.Add(Deviation::WrappedValue, *type, "a list of one value stands here for the value, and is taken as such");
  return words.front();
}

void ReadType(const JsonPlace& place, FieldDescriptor& field, Deviations& deviations) {
  const std::optional<JsonPlace> type = FindTypeWord(place, deviations);
  if (!type) {
    deviations.Add(Deviation::NoType, place,
                   fmt::format("field \"{}\" has no \"type\"; it is inferred from the data", field.name));
    return;
  }
  const TypeWord word = TypeOfWord(type->Text());
  field.dialect.type = word.type;
  if (!word.of)
    deviations.Add(Deviation::UnknownType, *type,
                   fmt::format("\"{}\" is no type of Table Schema; the cells are taken as texts", type->Text()));
  else if (!word.isStandard)
    deviations.Add(Deviation::OtherTypeWord, *type,
                   fmt::format("\"{}\" is no type of Table Schema, and is taken for \"{}\"", type->Text(), *word.of));
  // A type of its own that reads as text.
  if (word.type == FieldType::String && word.of != "string")
    field.extras.push_back({"type", word.isStandard || !word.of ? type->Written() : Json(*word.of).dump()});
}

void ReadTypeProperties(const JsonPlace& place, FieldDialect& dialect, Deviations& deviations) {
  if (const auto format = FindText(place, "format", deviations))
    dialect.format = format->rfind("fmt:", 0) == 0 ? format->substr(4) : *format;
  if (const auto decimal = FindUnwrapped(place, "decimalChar", deviations)) {
    dialect.decimalChar = decimal->Text();
    if (dialect.decimalChar.empty()) decimal->Fail("the decimal character is empty; leave it out for a period");
  }
  if (const auto group = FindText(place, "groupChar", deviations)) dialect.groupChar = *group;
  if (!dialect.groupChar.empty() && dialect.groupChar == dialect.decimalChar)
    place.Fail("\"groupChar\" and \"decimalChar\" are the same");
  if (const auto bare = FindFlag(place, "bareNumber", deviations)) dialect.bareNumber = *bare;
  if (const auto values = place.Find("trueValues")) dialect.trueValues = TextsOf(*values, deviations);
  if (const auto values = place.Find("falseValues")) dialect.falseValues = TextsOf(*values, deviations);
}

/// `title`, or `label` where that stands for it.
void ReadTitle(const JsonPlace& place, FieldDescriptor& field, Deviations& deviations) {
  field.title = FindText(place, "title", deviations);
  if (field.title && field.title->empty()) {
    deviations.Add(Deviation::EmptyTitle, place, fmt::format("field \"{}\" has an empty title", field.name));
    field.title.reset();
  }
  const auto label = FindUnwrapped(place, "label", deviations);
  if (!label) return;
  if (field.title || !label->isText() || label->Text().empty()) {
    field.extras.push_back({"label", label->Written()});
    return;
  }
  deviations.Add(Deviation::LabelForTitle, *label, "\"label\" stands here for \"title\", and is taken as such");
  field.title = label->Text();
}

void ReadMaxLength(const JsonPlace& length, FieldDescriptor& field) {
  const double bytes = length.Number();
  if (!(bytes >= 0 && bytes <= std::numeric_limits<int>::max()) || bytes != std::floor(bytes))
    length.Fail("the greatest length must be a whole number that is not negative");
  field.maxLength = static_cast<int>(bytes);
}

/// The values of `enum` that are texts, numbers or truth values; those of lists and objects are no categories.
bool ReadEnum(const JsonPlace& list, FieldDescriptor& field, Deviations& deviations) {
  bool all = true;
  for (const JsonPlace& entry : EntriesOf(list, deviations)) {
    if (entry.isObject() || entry.isList() || entry.isNull())
      all = false;
    else
      field.categories.push_back(ReadLabelledValue(entry));
  }
  field.hasCategories = !field.categories.empty();
  return all && field.hasCategories;
}

/// What is not understood of the constraints is kept; so is an `enum` that "categories" cannot say again.
void ReadConstraints(const JsonPlace& constraints, FieldDescriptor& field, Deviations& deviations) {
  Json kept = Json::object();
  for (const auto& [name, value] : constraints.Members()) {
    bool understood = false;
    if (name == "maxLength" && !value.isNull()) {
      ReadMaxLength(value, field);
      understood = true;
    }
    if (name == "enum" && !field.hasCategories && !value.isNull())
      understood = ReadEnum(value, field, deviations) &&
                   (field.dialect.type == FieldType::String || field.dialect.type == FieldType::Integer);
    if (!understood) kept[name] = value.value();
  }
  if (!kept.empty()) field.extras.push_back({"constraints", kept.dump()});
}

void ReadCategoriesOf(const JsonPlace& place, FieldDescriptor& field, const SchemaContext& context) {
  const auto categories = place.Find("categories");
  if (!categories) return;
  if (categories->isObject()) {
    if (!context.readCategories)
      categories->Fail(
          "the categories stand in a resource, and this schema belongs to no data package; list them here");
    field.categories = context.readCategories(*categories);
  } else {
    field.categories = ReadLabelledValues(*categories, context.deviations);
  }
  field.hasCategories = true;
}

}  // namespace

std::optional<std::vector<LabelledValue>> FindMissingValues(const JsonPlace& object, Deviations& deviations) {
  if (const auto missing = object.Find("missingValues")) return ReadLabelledValues(*missing, deviations);
  for (const char* spelling : {"missing_values", "missingvalues", "missingValue"}) {
    const auto missing = object.Find(spelling);
    if (!missing) continue;
    deviations.Add(Deviation::OtherSpelling, *missing,
                   fmt::format("\"{}\" stands here for \"missingValues\", and is taken as such", spelling));
    return ReadLabelledValues(*missing, deviations);
  }
  return std::nullopt;
}

FieldDescriptor ReadField(const JsonPlace& place, const std::vector<LabelledValue>& missingOfSchema,
                          const SchemaContext& context) {
  Deviations& deviations = context.deviations;
  FieldDescriptor field;
  field.name = Unwrapped(place.Need("name"), deviations).Text();
  ReadTitle(place, field, deviations);
  field.description = FindText(place, "description", deviations);
  ReadType(place, field, deviations);
  ReadTypeProperties(place, field.dialect, deviations);
  field.missingValues = FindMissingValues(place, deviations).value_or(missingOfSchema);
  ReadCategoriesOf(place, field, context);
  field.categoriesOrdered = FindFlag(place, "categoriesOrdered", deviations).value_or(false);
  if (const auto constraints = place.Find("constraints")) ReadConstraints(*constraints, field, deviations);
  if (const auto codebook = place.Find("codebook")) ReadCodebook(*codebook, field, context);
  KeepExtras(place,
             {"name", "title", "label", "description", "type", "format", "decimalChar", "groupChar", "bareNumber",
              "trueValues", "falseValues", "missingValues", "missing_values", "missingvalues", "missingValue",
              "categories", "categoriesOrdered", "constraints", "codebook"},
             field.extras);
  if (field.description && !field.description->empty()) field.attributes.Add("Description", {*field.description});
  return field;
}

}  // namespace runtime::data
