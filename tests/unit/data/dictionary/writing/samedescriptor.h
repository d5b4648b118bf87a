// Comparing descriptors whole.
#pragma once

#include <algorithm>
#include <sstream>
#include <string>
#include <vector>

#include "runtime/data/dictionary/descriptor.h"
#include "runtime/data/dictionary/formattext.h"
#include "runtime/data/dictionary/jsonfile.h"

namespace runtime::data {

/// A descriptor as lines of text, one a fact; equal texts for equal descriptors. Extras are ordered by name, for the
/// order of properties means nothing.
inline std::string AllFacts(const TableDescriptor& table) {
  std::ostringstream out;
  const auto text = [](const std::string& value) {
    return Json(value).dump(-1, ' ', true, Json::error_handler_t::replace);
  };
  const auto texts = [&](const std::vector<std::string>& values) {
    std::string all;
    for (const std::string& value : values) all += text(value) + " ";
    return all;
  };
  const auto values = [&](const char* name, const std::vector<LabelledValue>& list) {
    for (const LabelledValue& value : list)
      out << name << " " << (value.isNumber ? "number " : "text ") << text(value.value) << " "
          << (value.label ? text(*value.label) : "-") << "\n";
  };
  const auto attributes = [&](const DatasourceAttributes& list) {
    for (std::size_t i = 0; i < list.Size(); ++i)
      out << "attribute " << text(list.Name(i)) << ": " << texts(list.Values(i)) << "\n";
  };
  const auto extras = [&](const char* name, const std::vector<ExtraProperty>& list) {
    std::vector<std::string> lines;
    for (const ExtraProperty& extra : list)
      lines.push_back(text(extra.name) + " = " + nlohmann::json::parse(extra.json).dump(-1, ' ', true));
    std::sort(lines.begin(), lines.end());
    for (const std::string& line : lines) out << name << " " << line << "\n";
  };
  const auto optional = [&](const char* name, const auto& value, auto write) {
    if (value) out << name << " " << write(*value) << "\n";
  };
  const auto plain = [](const auto& value) { return value; };

  optional("label", table.label, text);
  optional("weight", table.weight, text);
  out << "match " << static_cast<int>(table.fieldsMatch) << "\n";
  values("missing", table.missingValues);
  for (const SetDescriptor& set : table.sets)
    out << "set " << text(set.name) << text(set.label) << set.isDichotomy << texts(set.variables)
        << text(set.countedValue) << set.labelledByCountedValues << "\n";
  for (const std::vector<std::string>& document : table.documents) out << "document " << texts(document) << "\n";
  attributes(table.attributes);
  extras("extra", table.extras);
  extras("resource", table.resourceExtras);
  extras("package", table.packageExtras);
  const TextDialect& dialect = table.dialect;
  optional("delimiter", dialect.delimiter, text);
  optional("quoteChar", dialect.quoteChar, text);
  optional("doubleQuote", dialect.doubleQuote, plain);
  optional("header", dialect.header, plain);
  optional("skipInitialSpace", dialect.skipInitialSpace, plain);
  optional("encoding", dialect.encoding, text);
  optional("escapeChar", dialect.escapeChar, text);
  optional("nullSequence", dialect.nullSequence, text);
  optional("lineTerminator", dialect.lineTerminator, text);
  optional("commentChar", dialect.commentChar, text);
  for (const auto row : dialect.commentRows) out << "commentRow " << row << "\n";
  for (const auto row : dialect.headerRows) out << "headerRow " << row << "\n";
  optional("headerJoin", dialect.headerJoin, text);
  optional("caseSensitiveHeader", dialect.caseSensitiveHeader, plain);
  extras("dialect", dialect.extras);

  for (const FieldDescriptor& field : table.fields) {
    out << "FIELD " << text(field.name) << " type " << static_cast<int>(field.dialect.type) << "\n";
    optional("title", field.title, text);
    optional("description", field.description, text);
    out << "written " << text(field.dialect.format) << text(field.dialect.decimalChar) << text(field.dialect.groupChar)
        << field.dialect.bareNumber << texts(field.dialect.trueValues) << "/ " << texts(field.dialect.falseValues)
        << "\n";
    values("missing", field.missingValues);
    for (const MissingRangeDescriptor& range : field.missingRanges)
      out << "range " << (range.min ? Json(*range.min).dump() : "-") << " "
          << (range.max ? Json(*range.max).dump() : "-") << "\n";
    if (field.hasCategories) out << "has categories, ordered " << field.categoriesOrdered << "\n";
    values("category", field.categories);
    values("valueLabel", field.valueLabels);
    optional("maxLength", field.maxLength, plain);
    optional("format", field.format, WriteFormatText);
    optional("measure", field.measure, text);
    optional("role", field.role, text);
    attributes(field.attributes);
    extras("extra", field.extras);
  }
  return out.str();
}

}  // namespace runtime::data
