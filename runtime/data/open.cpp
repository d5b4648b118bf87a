#include "runtime/data/open.h"

#include <algorithm>
#include <cstddef>
#include <set>
#include <utility>

#include <fmt/format.h>

#include "runtime/data/checking/readingfacts.h"
#include "runtime/data/checking/setmembers.h"
#include "runtime/data/columnplans.h"
#include "runtime/data/csv/readcsv.h"
#include "runtime/data/dictionary/assemble.h"
#include "runtime/data/dictionary/embeddeddictionary.h"
#include "runtime/data/dictionary/readdictionary.h"
#include "runtime/data/dictionary/writing/describe.h"
#include "runtime/data/inputfiles.h"
#include "runtime/data/opensql.h"
#include "runtime/data/source/sql/rowssource.h"
#include "runtime/data/source/sql/sqltable.h"
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

/// What lies beside the files, if it is one for all of them.
std::optional<std::string> FindDictionaryOfAll(const std::vector<std::string>& dataPaths) {
  std::optional<std::string> dictionary = FindDictionary(dataPaths.front());
  for (std::size_t i = 1; dictionary && i < dataPaths.size(); ++i)
    if (FindDictionary(dataPaths[i]) != dictionary) return std::nullopt;
  return dictionary;
}

Input FindInput(const OpenOptions& options, std::vector<Note>& notes) {
  Input input;
  std::vector<std::string> paths = {options.path};
  paths.insert(paths.end(), options.furtherPaths.begin(), options.furtherPaths.end());
  input.dataPaths = FindDataFiles(paths);
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

  const std::string& first = input.dataPaths.front();
  std::optional<std::string> dictionary = options.dictionary;
  if (!dictionary && options.dictionaryBeside && first != kStandardInput)
    dictionary = FindDictionaryOfAll(input.dataPaths);
  if (dictionary)
    input.descriptor = ReadDictionary({*dictionary, options.resource, first, options.schemas}, notes);
  else if (options.resource)
    throw DataError(fmt::format("{}: there is no data package with a resource {}; leave out --resource or give -d",
                                options.path, QuotedCell(*options.resource)));
  return input;
}

/// A table of a database has no file beside which a dictionary could lie.
Input FindInput(const SqlTable& table, const OpenOptions& options, std::vector<Note>& notes) {
  Input input;
  input.dataPaths = {table.name()};
  if (options.dictionary) input.descriptor = ReadDictionaryOfTable(table, options, notes);
  return input;
}

std::unique_ptr<TableSource> RowsOf(SqlTable& table, const OpenOptions& options) {
  std::vector<SqlRelation> relations;
  for (const SqlPlace& place : table.places()) relations.push_back({place.connection.get(), place.relation});
  return OpenSqlRows(std::move(relations), table.columns(), options.onQuery);
}

std::shared_ptr<const ReadingFacts> FactsOfReading(const TableDescriptor* descriptor,
                                                   const std::vector<DescribedColumn>& columns) {
  auto facts = std::make_shared<ReadingFacts>();
  for (const DescribedColumn& column : columns) {
    facts->columns.push_back(*column.facts);
    facts->fieldOfColumn.push_back(
        column.field == nullptr ? -1 : static_cast<int>(column.field - descriptor->fields.data()));
  }
  if (descriptor != nullptr) facts->dictionary = *descriptor;
  return facts;
}

}  // namespace

OpenedDataset OpenDataset(const OpenOptions& options) {
  std::shared_ptr<SqlTable> database;
  if (IsSqlAddress(options.path)) {
    database = OpenSqlTable(options);
    if (options.countInDatabase && CanCount(*database)) return OpenInDatabase(options, database);
  }
  for (const std::string& path : options.furtherPaths)
    if (!database && IsSqlAddress(path))
      throw DataError(
          fmt::format("{}: this is a database, and {} is a file; files and databases are not read as one table", path,
                      options.path));
  if (options.query && !database)
    throw DataError(
        fmt::format("{}: this is no database that could be asked a query; leave out --query", options.path));
  OpenedDataset opened;
  std::vector<Note>& notes = opened.notes;
  if (database && options.countInDatabase)
    notes.push_back({false, fmt::format("{}: the engine cannot group this table or query; its rows are fetched and "
                                        "counted here",
                                        database->name())});
  Input input = database ? FindInput(*database, options, notes) : FindInput(options, notes);
  const TableDescriptor* descriptor = input.descriptor ? Prepared(*input.descriptor, options) : nullptr;
  const std::string& dataPath = input.dataPaths.front();

  const bool fileHasTypes = database || (!(descriptor != nullptr && descriptor->inlineData) && IsTableFile(dataPath));
  std::vector<const FieldDescriptor*> fields;
  const PlanColumns plan = [&](const std::vector<std::string>& headers, std::vector<Note>& notesOfPlan) {
    fields.assign(headers.size(), nullptr);
    if (descriptor != nullptr) fields = MatchFields(*descriptor, headers, options.strict, notesOfPlan);
    std::vector<ColumnPlan> plans = PlanFor(descriptor, fields);
    if (descriptor != nullptr && descriptor->inlineData) KeepTextColumns(*descriptor->inlineData, headers, plans);
    if (!options.inference && !fileHasTypes) InferNothing(plans);
    return plans;
  };

  ReadingOptions reading;
  reading.explainTypes = options.explainTypes;
  reading.strict = options.strict;
  reading.manner = {options.pool.get(), options.segmentBytes, options.onProgress};
  if (options.columnMemory > 0) reading.memory->left = options.columnMemory;
  TypedTable table;
  if (descriptor != nullptr && descriptor->inlineData) {
    InlineTable& data = *input.descriptor->inlineData;
    std::vector<CsvInput> inputs;
    inputs.push_back({dataPath, std::move(data.csv)});
    table = ReadCsvInputs(std::move(inputs), data.dialect, plan, reading, notes);
  } else if (fileHasTypes) {
    const int threads = options.pool ? options.pool->threads() : 1;
    const auto source = database ? RowsOf(*database, options) : OpenTableFiles(input.dataPaths, options.table, threads);
    if (descriptor == nullptr && options.dictionaryBeside && !database) {
      input.descriptor = ReadEmbeddedDictionary(dataPath, source->metadata(), options, notes);
      if (input.descriptor) descriptor = Prepared(*input.descriptor, options);
    }
    std::vector<std::string> names;
    for (const SourceColumn& column : source->columns()) names.push_back(column.name);
    table = ReadSource(*source, plan(names, notes), dataPath, reading, notes);
  } else {
    if (options.table) throw DataError(fmt::format("{}: only SQLite files hold tables; leave out --table", dataPath));
    const TextDialect dialect = descriptor ? descriptor->dialect : TextDialect{};
    table = ReadCsv(input.dataPaths, dialect, plan, reading, notes);
  }

  if (options.explainTypes) opened.types = TypeDecisions(table, fields, fileHasTypes);
  std::vector<DescribedColumn> described;
  for (std::size_t i = 0; i < table.columns.size(); ++i)
    described.push_back({&table.columns[i].facts, fields[i], database ? database->columns()[i].description : ""});
  std::optional<std::string> fileOfData;
  if (dataPath != kStandardInput) fileOfData = dataPath;
  if (options.forChecking) {
    opened.reading = FactsOfReading(descriptor, described);
    if (input.descriptor) input.descriptor->sets = SetsOfKnownMembers(*opened.reading);
  }
  Dictionary dictionary = AssembleDictionary(descriptor, described, fileOfData, notes);
  if (database) dictionary.fileSpec = FileSpecOfTable(*database);
  if (options.weight) OverrideWeight(dictionary, *options.weight);
  if (options.describe) {
    TableDescriptor description = Describe(dictionary, described, descriptor);
    if (description.dataPaths.empty() && fileOfData && !database) description.dataPaths = {*fileOfData};
    opened.description = std::make_shared<const TableDescriptor>(std::move(description));
  }

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
