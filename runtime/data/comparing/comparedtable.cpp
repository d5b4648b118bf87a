#include "runtime/data/comparing/comparedtable.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <string_view>
#include <unordered_map>
#include <unordered_set>

#include "runtime/data/dictionary/formattext.h"
#include "runtime/data/dictionary/measurewords.h"
#include "runtime/data/dictionary/numberwords.h"
#include "runtime/data/dictionary/valuelabels.h"
#include "runtime/data/dictionary/variablenames.h"

namespace runtime::data {
namespace {

std::string_view WithoutTrailingBlanks(std::string_view text) {
  const std::size_t last = text.find_last_not_of(' ');
  return text.substr(0, last == std::string_view::npos ? 0 : last + 1);
}

std::string Digits(double number) {
  if (std::isfinite(number)) return NumberWords(number);
  return number < 0 ? "LO" : "HI";
}

std::vector<ComparedLabel> LabelsOf(const MAVO_VLImplPointer& labels, int width) {
  std::vector<ComparedLabel> entries;
  MAVO_ValueLabelMap map(labels);
  const OBS* value = nullptr;
  const char* label = nullptr;
  while (map.GetNextPair(value, label) != 0) {
    std::string words;
    if (width == 0)
      words = Digits(value->number);
    else
      words = WithoutTrailingBlanks({reinterpret_cast<const char*>(value), static_cast<std::size_t>(width)});
    entries.push_back({std::move(words), label});
  }
  return entries;
}

std::vector<std::string> WordsOf(const MissingRule& rule) {
  std::vector<std::string> words;
  for (const double value : rule.values) words.push_back(Digits(value));
  for (const MissingRule::Range& range : rule.ranges) words.push_back(Digits(range.low) + ".." + Digits(range.high));
  for (const std::string& text : rule.texts) words.emplace_back(WithoutTrailingBlanks(text));
  std::sort(words.begin(), words.end());
  words.erase(std::unique(words.begin(), words.end()), words.end());
  return words;
}

/// Attributes may repeat their names: the values then stand one behind the other.
std::vector<std::pair<std::string, std::string>> AttributesOf(const DatasourceAttributes& attributes) {
  std::vector<std::pair<std::string, std::string>> joined;
  std::unordered_map<std::string, std::size_t> places;
  for (std::size_t i = 0; i < attributes.Size(); ++i) {
    const auto [place, isNew] = places.emplace(attributes.Name(i), joined.size());
    if (isNew) joined.emplace_back(attributes.Name(i), std::string());
    std::string& text = joined[place->second].second;
    for (const std::string& value : attributes.Values(i)) text += (text.empty() ? "" : "\n") + value;
  }
  return joined;
}

void AddLine(const std::string& line, std::string& text) {
  text += line;
  text += '\n';
}

ComparedType TypeOf(const VariableRecord& variable) {
  if (variable.width > 0) return ComparedType::String;
  return IsTemporalFormat(variable.print.type) ? ComparedType::Date : ComparedType::Numeric;
}

ComparedVariable VariableToCompare(const VariableRecord& variable, bool saysFormat) {
  ComparedVariable compared;
  compared.name = variable.name;
  compared.label = variable.label;
  compared.type = TypeOf(variable);
  if (saysFormat) compared.format = WriteFormatText(variable.print);
  compared.level = MeasureWord(variable.level);
  compared.role = RoleWord(variable.role);
  compared.labels = LabelsOf(variable.valueLabels, variable.width);
  compared.missing = WordsOf(variable.missing);
  compared.attributes = AttributesOf(variable.attributes);
  return compared;
}

std::vector<std::string> NamesOf(const TableDescriptor& descriptor) {
  std::vector<std::string> originals;
  originals.reserve(descriptor.fields.size());
  for (const FieldDescriptor& field : descriptor.fields) originals.push_back(field.name);
  return MakeVariableNames(originals);
}

/// The variables that a dictionary file gives a format.
std::unordered_set<std::string> VariablesWithFormat(const TableDescriptor& source) {
  std::unordered_set<std::string> variables;
  const std::vector<std::string> names = NamesOf(source);
  for (std::size_t i = 0; i < names.size(); ++i)
    if (source.fields[i].format) variables.insert(names[i]);
  return variables;
}

ComparedTable TableOf(const Dictionary& dictionary, const std::unordered_set<std::string>& withFormat) {
  ComparedTable table;
  table.label = dictionary.label;
  if (dictionary.weight >= 0) table.weight = dictionary.variables[static_cast<std::size_t>(dictionary.weight)]->name;
  for (const DSDocument& document : dictionary.documents) {
    if (!table.documents.empty()) table.documents += '\n';
    for (std::size_t line = 0; line < document.Size(); ++line)
      AddLine(document[static_cast<int>(line)], table.documents);
  }
  table.attributes = AttributesOf(dictionary.attributes);
  table.variables.reserve(dictionary.variables.size());
  for (const auto& variable : dictionary.variables)
    table.variables.push_back(VariableToCompare(*variable, withFormat.contains(variable->name)));
  for (const VariableSet& set : dictionary.sets) {
    const bool isDichotomy = set.GetType() == VariableSet::kDichotomySet;
    table.sets.push_back({set.GetName(kKeepCase), set.GetLabel(), isDichotomy, set.GetVariableNames(kKeepCase),
                          isDichotomy ? set.GetValue() : std::string()});
  }
  return table;
}

bool ReadsAsNumber(const LabelledValue& entry) {
  if (entry.isNumber) return true;
  const MissingRule rule = MakeMissingRule({entry}, {}, FieldDialect(), false);
  return !rule.values.empty();
}

std::optional<ComparedType> TypeOf(FieldType type) {
  switch (type) {
    case FieldType::Inferred:
      return std::nullopt;
    case FieldType::String:
      return ComparedType::String;
    case FieldType::Integer:
    case FieldType::Number:
    case FieldType::Boolean:
    case FieldType::Year:
      return ComparedType::Numeric;
    default:
      return ComparedType::Date;
  }
}

/// Whether the values of a field are texts; where its type is not said, its labelled values tell.
bool HoldsTexts(const FieldDescriptor& field) {
  if (const auto type = TypeOf(field.dialect.type)) return *type == ComparedType::String;
  for (const auto* entries : {&field.categories, &field.valueLabels})
    for (const LabelledValue& entry : *entries)
      if (!ReadsAsNumber(entry)) return true;
  return false;
}

ComparedVariable VariableToCompare(const FieldDescriptor& field, const std::string& name, const std::string& origin) {
  ComparedVariable compared;
  compared.name = name;
  compared.label = field.title;
  if (!compared.label && name != field.name && !field.name.empty()) compared.label = field.name;
  compared.type = TypeOf(field.dialect.type);
  if (field.format) compared.format = WriteFormatText(*field.format);
  compared.level = field.measure;
  compared.role = field.role;
  const bool isString = HoldsTexts(field);
  const int width =
      isString ? std::max({static_cast<int>(LongestLabelledText(field)), field.maxLength.value_or(1), 1}) : 0;
  std::vector<Note> ignored;  // of values that are none; who opens the data is told
  compared.labels =
      LabelsOf(MAVO_VLImplPointer(MakeValueLabels(&field, field.dialect.type, width, origin, ignored)), width);
  compared.missing = WordsOf(MakeMissingRule(field.missingValues, field.missingRanges, field.dialect, isString));
  compared.attributes = AttributesOf(field.attributes);
  return compared;
}

}  // namespace

ComparedTable TableToCompare(const Dictionary& dictionary, const TableDescriptor* source) {
  return TableOf(dictionary, source == nullptr ? std::unordered_set<std::string>() : VariablesWithFormat(*source));
}

ComparedTable TableToCompare(const TableDescriptor& descriptor) {
  ComparedTable table;
  table.isDictionaryAlone = true;
  table.label = descriptor.label;
  for (const std::vector<std::string>& lines : descriptor.documents) {
    if (!table.documents.empty()) table.documents += '\n';
    for (const std::string& line : lines) AddLine(line, table.documents);
  }
  table.attributes = AttributesOf(descriptor.attributes);

  const std::vector<std::string> names = NamesOf(descriptor);
  std::unordered_map<std::string, std::string> nameOfField;
  for (std::size_t i = 0; i < names.size(); ++i) {
    table.variables.push_back(VariableToCompare(descriptor.fields[i], names[i], descriptor.origin));
    nameOfField.emplace(descriptor.fields[i].name, names[i]);
  }
  const auto nameOf = [&nameOfField](const std::string& field) {
    const auto found = nameOfField.find(field);
    return found == nameOfField.end() ? field : found->second;
  };
  if (descriptor.weight) table.weight = nameOf(*descriptor.weight);
  for (const SetDescriptor& set : descriptor.sets) {
    ComparedSet compared{set.name.starts_with('$') ? set.name : "$" + set.name,
                         set.label,
                         set.isDichotomy,
                         {},
                         set.isDichotomy ? set.countedValue : std::string()};
    for (const std::string& member : set.variables) compared.variables.push_back(nameOf(member));
    table.sets.push_back(std::move(compared));
  }
  return table;
}

}  // namespace runtime::data
