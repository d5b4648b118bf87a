#include "runtime/data/dictionary/assemble.h"

#include <algorithm>
#include <cstddef>
#include <filesystem>
#include <limits>
#include <memory>
#include <system_error>
#include <utility>

#include <fmt/format.h>

#include "runtime/data/dictionary/assemblesets.h"
#include "runtime/data/dictionary/formats.h"
#include "runtime/data/dictionary/formattext.h"
#include "runtime/data/dictionary/headernotes.h"
#include "runtime/data/dictionary/measurewords.h"
#include "runtime/data/dictionary/valuelabels.h"
#include "runtime/data/dictionary/variablenames.h"

namespace runtime::data {
namespace {

[[noreturn]] void FailField(const std::string& origin, const FieldDescriptor& field, const std::string& problem) {
  throw DataError(fmt::format("{}: field \"{}\": {}", origin, field.name, problem));
}

/// At least 1; wide enough for the longest value, for the declared length, and for every value that has a label, so
/// that no label is lost.
int StringWidth(const ColumnFacts& facts, const FieldDescriptor* field) {
  std::size_t width = std::max<std::size_t>(1, facts.longestValue);
  if (field) {
    width = std::max(width, LongestLabelledText(*field));
    if (field->maxLength) width = std::max(width, static_cast<std::size_t>(*field->maxLength));
  }
  return static_cast<int>(std::min<std::size_t>(width, std::numeric_limits<int>::max()));
}

void CheckFormat(const std::string& origin, const FieldDescriptor& field, const VariableRecord& variable) {
  const bool ofStrings = IsStringFormat(field.format->type);
  if (ofStrings == (variable.width > 0)) return;
  FailField(origin, field,
            fmt::format("the format {} is one of {}, and the variable is {}", WriteFormatText(*field.format),
                        ofStrings ? "strings" : "numbers", ofStrings ? "numeric" : "a string"));
}

MAVO_Variable_Enumerations::MeasurementLevel LevelOf(const std::string& origin, const ColumnFacts& facts,
                                                     const FieldDescriptor* field) {
  if (!field) return DefaultLevel(facts);
  if (field->measure) {
    const auto level = MeasurementLevelOf(*field->measure);
    if (!level)
      FailField(origin, *field,
                fmt::format("\"{}\" is no measurement level; write one of {}", *field->measure, kMeasureWords));
    return *level;
  }
  if (!field->hasCategories) return DefaultLevel(facts);
  return field->categoriesOrdered ? MAVO_Variable_Enumerations::kLevelOrdinal
                                  : MAVO_Variable_Enumerations::kLevelNominal;
}

MAVO_Variable_Enumerations::Role RoleOfField(const std::string& origin, const FieldDescriptor* field) {
  if (!field || !field->role) return MAVO_Variable_Enumerations::kRoleInput;
  const auto role = RoleOf(*field->role);
  if (!role) FailField(origin, *field, fmt::format("\"{}\" is no role; write one of {}", *field->role, kRoleWords));
  return *role;
}

std::optional<std::string> LabelOf(const std::string& original, const std::string& name,
                                   const DescribedColumn& column) {
  if (column.field && column.field->title) return column.field->title;
  if (!column.comment.empty()) return column.comment;
  if (original != name && !original.empty()) return original;
  return std::nullopt;
}

std::shared_ptr<const VariableRecord> MakeVariable(const std::string& name, const std::string& original,
                                                   const DescribedColumn& column, const TableDescriptor* descriptor,
                                                   std::vector<Note>& notes) {
  static const FieldDialect kPlain;
  static const std::vector<LabelledValue> kEmptyIsMissing = {LabelledValue{}};
  static const std::string kNoOrigin;
  const FieldDescriptor* field = column.field;
  const std::string& origin = descriptor ? descriptor->origin : kNoOrigin;
  const bool isString = column.facts->isString();
  auto variable = std::make_shared<VariableRecord>();
  variable->name = name;
  variable->label = LabelOf(original, name, column);
  variable->width = isString ? StringWidth(*column.facts, field) : 0;
  variable->print = DefaultFormat(*column.facts, variable->width);
  if (field && field->format) {
    CheckFormat(origin, *field, *variable);
    variable->print = *field->format;
  }
  variable->write = variable->print;
  variable->level = LevelOf(origin, *column.facts, field);
  variable->role = RoleOfField(origin, field);
  variable->valueLabels =
      MAVO_VLImplPointer(MakeValueLabels(field, column.facts->type, variable->width, origin, notes));
  if (!field) {
    variable->missing = MakeMissingRule(descriptor ? descriptor->missingValues : kEmptyIsMissing, {}, kPlain, isString);
    return variable;
  }
  if (isString && !field->missingRanges.empty())
    FailField(origin, *field, "ranges of missing values are for numeric variables, and the variable is a string");
  variable->missing = MakeMissingRule(field->missingValues, field->missingRanges, field->dialect, isString);
  variable->attributes = field->attributes;
  return variable;
}

/// The absolute path with a backslash before the file's name, so that a path of any platform yields name and location.
std::string FileSpecOf(const std::string& dataPath) {
  namespace fs = std::filesystem;
  std::error_code error;
  fs::path absolute = fs::absolute(dataPath, error);
  if (error) absolute = dataPath;
  absolute = absolute.lexically_normal();
  return absolute.parent_path().string() + '\\' + absolute.filename().string();
}

/// Dictionary index of the weight. `where` is what comes before the problem in a message.
int WeightIndexOf(const Dictionary& dictionary, int index, const std::string& name, const std::string& where) {
  if (index < 0)
    throw DataError(fmt::format("{}there is no variable \"{}\" to weight by; name one of the dataset", where, name));
  if (dictionary.variables[static_cast<std::size_t>(index)]->width > 0)
    throw DataError(fmt::format("{}the weight variable \"{}\" is a string; a weight must be numeric", where, name));
  return index;
}

void DescribeFile(const TableDescriptor& descriptor, Dictionary& dictionary) {
  dictionary.label = descriptor.label;
  for (const std::vector<std::string>& lines : descriptor.documents) dictionary.documents.emplace_back(lines);
  dictionary.attributes = descriptor.attributes;
}

}  // namespace

Dictionary AssembleDictionary(const TableDescriptor* descriptor, const std::vector<DescribedColumn>& columns,
                              const std::optional<std::string>& dataPath, std::vector<Note>& notes) {
  std::vector<std::string> originals;
  std::vector<std::string> fieldNames;
  for (const DescribedColumn& column : columns) {
    originals.push_back(column.field ? column.field->name : column.facts->header);
    fieldNames.push_back(column.field ? column.field->name : std::string());
  }
  const std::vector<std::string> names = MakeVariableNames(originals);
  // A file that is said to have no header row has nothing to mend there.
  if (!descriptor || descriptor->dialect.header.value_or(true))
    TellChangedHeaders(originals, names, dataPath.value_or("standard input"), notes);
  Dictionary dictionary;
  dictionary.variables.reserve(columns.size());
  for (std::size_t i = 0; i < columns.size(); ++i)
    dictionary.variables.push_back(MakeVariable(names[i], originals[i], columns[i], descriptor, notes));
  dictionary.IndexNames();
  if (dataPath) dictionary.fileSpec = FileSpecOf(*dataPath);
  if (!descriptor) return dictionary;
  DescribeFile(*descriptor, dictionary);
  const VariablesByField variables(dictionary, fieldNames);
  if (descriptor->weight)
    dictionary.weight =
        WeightIndexOf(dictionary, variables.Find(*descriptor->weight), *descriptor->weight, descriptor->origin + ": ");
  dictionary.sets = AssembleSets(*descriptor, dictionary, variables, columns, notes);
  return dictionary;
}

void OverrideWeight(Dictionary& dictionary, const std::string& name) {
  dictionary.weight = name.empty() ? -1 : WeightIndexOf(dictionary, dictionary.FindVariable(name), name, "");
}

}  // namespace runtime::data
