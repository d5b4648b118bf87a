#include "runtime/data/open.h"

#include <algorithm>
#include <cstddef>
#include <filesystem>
#include <set>
#include <system_error>
#include <utility>

#include <fmt/format.h>

#include "runtime/data/csv/readcsv.h"
#include "runtime/data/dictionary/assemble.h"
#include "runtime/data/dictionary/readdictionary.h"
#include "runtime/data/source/tablesource.h"
#include "runtime/data/store/columnardataset.h"
#include "runtime/data/typing/quotedcell.h"
#include "runtime/data/typing/sourcereading.h"

namespace runtime::data {

namespace {

constexpr const char* kStandardInput = "-";

/// What is to be read: the data files of one table and their dictionary.
struct Input {
  std::vector<std::string> dataPaths;
  std::optional<TableDescriptor> descriptor;
};

/// Before the dictionary is looked for, so that a mistyped path is told as such.
void CheckThatDataIsThere(const std::string& path) {
  if (path == kStandardInput) return;
  std::error_code error;
  const std::filesystem::file_status status = std::filesystem::status(path, error);
  if (status.type() == std::filesystem::file_type::directory)
    throw DataError(fmt::format("{}: this is a directory; name a data file or a datapackage.json in it", path));
  if (status.type() != std::filesystem::file_type::not_found) return;
  if (path.find("://") != std::string::npos)
    throw DataError(fmt::format("{}: connections to databases are not read yet; give a file", path));
  throw DataError(fmt::format("{}: there is no such file", path));
}

Input FindInput(const OpenOptions& options, std::vector<Note>& notes) {
  CheckThatDataIsThere(options.path);
  Input input;
  if (options.path != kStandardInput && NamesDataPackage(options.path)) {
    if (options.dictionary)
      throw DataError(
          fmt::format("{}: a data package is its own dictionary; give the data file to use another one", options.path));
    input.descriptor = ReadDictionary({options.path, options.resource, std::nullopt, options.schemas}, notes);
    input.dataPaths = input.descriptor->dataPaths;
    if (input.dataPaths.empty() && input.descriptor->inlineData) input.dataPaths = {options.path};
    if (input.dataPaths.empty()) throw DataError(fmt::format("{}: the resource names no data file", options.path));
    return input;
  }

  input.dataPaths = {options.path};
  std::optional<std::string> dictionary = options.dictionary;
  if (!dictionary && options.path != kStandardInput) dictionary = FindDictionary(options.path);
  if (dictionary)
    input.descriptor = ReadDictionary({*dictionary, options.resource, options.path, options.schemas}, notes);
  else if (options.resource)
    throw DataError(fmt::format("{}: there is no data package with a resource {}; leave out --resource or give -d",
                                options.path, QuotedCell(*options.resource)));
  return input;
}

std::vector<ColumnPlan> PlanFor(const TableDescriptor* descriptor, const std::vector<const FieldDescriptor*>& fields) {
  std::vector<ColumnPlan> plans;
  plans.reserve(fields.size());
  for (const FieldDescriptor* field : fields) {
    ColumnPlan plan;
    if (field != nullptr)
      plan = {field->dialect, field->missingValues,
              fmt::format("{}: field {}", descriptor->origin, QuotedCell(field->name))};
    else if (descriptor != nullptr)
      plan.missing = descriptor->missingValues;
    else
      plan.missing = {LabelledValue{}};
    plans.push_back(std::move(plan));
  }
  return plans;
}

/// What the dialect makes of a cell, and what JSON has no value for, is an empty cell, which then is missing.
void AddEmptyText(std::vector<LabelledValue>& missing) {
  for (const LabelledValue& entry : missing)
    if (entry.value.empty()) return;
  missing.push_back({});
}

void MakeNullsMissing(TableDescriptor& descriptor) {
  if (!descriptor.inlineData && !descriptor.dialect.nullSequence) return;
  AddEmptyText(descriptor.missingValues);
  for (FieldDescriptor& field : descriptor.fields) AddEmptyText(field.missingValues);
}

/// Columns of JSON texts stay texts, unless a field says otherwise.
void KeepTextColumns(const InlineTable& data, const std::vector<std::string>& headers, std::vector<ColumnPlan>& plans) {
  for (std::size_t column = 0; column < plans.size(); ++column)
    if (plans[column].dialect.type == FieldType::Inferred &&
        std::find(data.textColumns.begin(), data.textColumns.end(), headers[column]) != data.textColumns.end())
      plans[column].dialect.type = FieldType::String;
}

}  // namespace

OpenedDataset OpenDataset(const OpenOptions& options) {
  OpenedDataset opened;
  std::vector<Note>& notes = opened.notes;
  Input input = FindInput(options, notes);
  // The weight that is asked for stands instead of the dictionary's, which may then be as wrong as it likes.
  if (options.weight && input.descriptor) input.descriptor->weight.reset();
  if (input.descriptor) MakeNullsMissing(*input.descriptor);
  const TableDescriptor* descriptor = input.descriptor ? &*input.descriptor : nullptr;
  const std::string& dataPath = input.dataPaths.front();

  std::vector<const FieldDescriptor*> fields;
  const PlanColumns plan = [&](const std::vector<std::string>& headers, std::vector<Note>& notesOfPlan) {
    fields.assign(headers.size(), nullptr);
    if (descriptor != nullptr) fields = MatchFields(*descriptor, headers, options.strict, notesOfPlan);
    std::vector<ColumnPlan> plans = PlanFor(descriptor, fields);
    if (descriptor != nullptr && descriptor->inlineData) KeepTextColumns(*descriptor->inlineData, headers, plans);
    return plans;
  };

  ReadingOptions reading;
  reading.strict = options.strict;
  reading.manner = {options.pool.get(), options.segmentBytes, options.onProgress};
  if (options.columnMemory > 0) reading.memory->left = options.columnMemory;
  TypedTable table;
  if (descriptor != nullptr && descriptor->inlineData) {
    InlineTable& data = *input.descriptor->inlineData;
    std::vector<CsvInput> inputs;
    inputs.push_back({dataPath, std::move(data.csv)});
    table = ReadCsvInputs(std::move(inputs), data.dialect, plan, reading, notes);
  } else if (IsTableFile(dataPath)) {
    if (input.dataPaths.size() > 1)
      throw DataError(fmt::format("{}: a resource of several files is read from CSV only", dataPath));
    const auto source = OpenTableFile(dataPath, options.pool ? options.pool->threads() : 1);
    std::vector<std::string> names;
    for (const SourceColumn& column : source->columns()) names.push_back(column.name);
    table = ReadSource(*source, plan(names, notes), dataPath, reading, notes);
  } else {
    const TextDialect dialect = descriptor ? descriptor->dialect : TextDialect{};
    table = ReadCsv(input.dataPaths, dialect, plan, reading, notes);
  }

  std::vector<DescribedColumn> described;
  for (std::size_t i = 0; i < table.columns.size(); ++i) described.push_back({&table.columns[i].facts, fields[i]});
  std::optional<std::string> fileOfData;
  if (dataPath != kStandardInput) fileOfData = dataPath;
  Dictionary dictionary = AssembleDictionary(descriptor, described, fileOfData, notes);
  if (options.weight) OverrideWeight(dictionary, *options.weight);

  std::vector<StoredColumn> columns;
  columns.reserve(table.columns.size());
  for (TypedColumn& column : table.columns) columns.push_back(std::move(column.column));
  std::set<const RowGroups*> tables;
  for (const StoredColumn& column : columns) tables.insert(column.groups.get());
  for (const RowGroups* cells : tables) opened.columnBytes += cells->bytes();
  opened.dataset =
      std::make_shared<ColumnarDataset>(std::move(dictionary), std::move(columns), table.rows, options.chunkRows);
  return opened;
}

}  // namespace runtime::data
