#include "runtime/data/opensql.h"

#include <cstddef>
#include <optional>
#include <utility>

#include <fmt/format.h>

#include "runtime/data/columnplans.h"
#include "runtime/data/dictionary/assemble.h"
#include "runtime/data/dictionary/readdictionary.h"
#include "runtime/data/source/sql/groupqueries.h"
#include "runtime/data/source/sql/sqlcell.h"
#include "runtime/data/source/sql/sqlgroups.h"
#include "runtime/data/store/groupeddataset.h"
#include "runtime/data/typing/quotedcell.h"
#include "runtime/data/typing/readcolumn.h"
#include "runtime/data/typing/typesteps.h"
#include "runtime/data/typing/unreadablecells.h"

namespace runtime::data {

namespace {

std::vector<std::string> HeadersOf(const SqlTable& table) {
  std::vector<std::string> headers;
  for (const SqlColumn& column : table.columns()) headers.push_back(column.name);
  return headers;
}

/// A table with its dictionary, while it is put together.
class DatabaseReading {
 public:
  DatabaseReading(const OpenOptions& options, std::shared_ptr<SqlTable> table)
      : fOptions(options), fTable(std::move(table)), fHeaders(HeadersOf(*fTable)) {
    if (options.resource && !options.dictionary)
      throw DataError(fmt::format(
          "{}: a database has no resources; leave out --resource, or name the data package with -d", fTable->name()));
    if (options.dictionary) {
      fDescriptor = ReadDictionaryOfTable(*fTable, options, fNotes);
      Prepared(*fDescriptor, options);
    }
    fFields.assign(fHeaders.size(), nullptr);
    if (fDescriptor) fFields = MatchFields(*fDescriptor, fHeaders, options.strict, fNotes);
  }

  OpenedDataset Open() {
    const auto groups = std::make_shared<SqlGroups>(fTable, PlanFor(descriptor(), fFields), fOptions.onProgress);
    // Which column is the weight is a matter of the dictionary, which is whole only when the columns were read. What
    // the columns' types alone give is nearly always the same.
    std::optional<WeightColumn> weight = WeightOf(DictionaryOfTypes());
    std::vector<Note> notes;
    Dictionary dictionary;
    for (bool isSettled = false; !isSettled;) {
      groups->Read(weight);
      notes.clear();
      dictionary = DictionaryOf(*groups, notes);
      const std::optional<WeightColumn> meant = WeightOf(dictionary);
      isSettled = meant.has_value() == weight.has_value() && (!meant || meant->column == weight->column);
      weight = meant;
    }
    std::vector<MissingRule> missing;
    for (const auto& variable : dictionary.variables) missing.push_back(variable->missing);
    groups->SetMissing(std::move(missing));

    OpenedDataset opened;
    opened.notes = std::move(fNotes);
    opened.notes.insert(opened.notes.end(), notes.begin(), notes.end());
    if (fOptions.explainTypes) opened.types = Types(*groups);
    const std::int64_t rows = groups->rows();
    opened.dataset = std::make_shared<GroupedDataset>(std::move(dictionary), groups, rows, fOptions.chunkRows);
    return opened;
  }

 private:
  const TableDescriptor* descriptor() const { return fDescriptor ? &*fDescriptor : nullptr; }

  Dictionary Assemble(const std::vector<const ColumnFacts*>& facts, std::vector<Note>& notes) const {
    std::vector<DescribedColumn> described;
    for (std::size_t i = 0; i < facts.size(); ++i)
      described.push_back({facts[i], fFields[i], fTable->columns()[i].description});
    Dictionary dictionary = AssembleDictionary(descriptor(), described, fTable->name(), notes);
    dictionary.fileSpec = FileSpecOfTable(*fTable);
    if (fOptions.weight) OverrideWeight(dictionary, *fOptions.weight);
    return dictionary;
  }

  /// What the dictionary would be of columns without values; nothing where that cannot be.
  std::optional<Dictionary> DictionaryOfTypes() const {
    const std::vector<ColumnPlan> plans = PlanFor(descriptor(), fFields);
    std::vector<ColumnFacts> ofColumns(plans.size());
    std::vector<const ColumnFacts*> facts;
    for (std::size_t i = 0; i < plans.size(); ++i) {
      const FieldType declared = plans[i].dialect.type;
      ofColumns[i].header = fHeaders[i];
      ofColumns[i].inferred = declared == FieldType::Inferred;
      ofColumns[i].type = ofColumns[i].inferred ? FieldTypeOf(fTable->columns()[i].type) : declared;
      facts.push_back(&ofColumns[i]);
    }
    try {
      std::vector<Note> unused;
      return Assemble(facts, unused);
    } catch (const DataError&) {
      return std::nullopt;  // said again, and rightly, when the columns are there
    }
  }

  Dictionary DictionaryOf(const SqlGroups& groups, std::vector<Note>& notes) const {
    const std::vector<ColumnPlan> plans = PlanFor(descriptor(), fFields);
    std::vector<const ColumnFacts*> facts;
    for (const TypedColumn& column : groups.columns()) facts.push_back(&column.facts);
    ReportUnreadableCells(fTable->name(), facts, fOptions.strict, notes);
    NoteStrayCells(fTable->name(), groups.columns(), plans, notes,
                   [&](std::size_t column) { return fTable->columns()[column].isMixed; });
    return Assemble(facts, notes);
  }

  static std::optional<WeightColumn> WeightOf(const std::optional<Dictionary>& dictionary) {
    if (!dictionary || dictionary->weight < 0) return std::nullopt;
    const auto column = static_cast<std::size_t>(dictionary->weight);
    return WeightColumn{column, dictionary->variables[column]->missing};
  }

  std::vector<TypeDecision> Types(const SqlGroups& groups) const {
    TypedTable table;
    table.columns = groups.columns();
    table.steps.resize(table.columns.size());
    table.rows = groups.rows();
    return TypeDecisions(table, fFields, true);
  }

  const OpenOptions& fOptions;
  std::shared_ptr<SqlTable> fTable;
  std::vector<std::string> fHeaders;
  std::vector<Note> fNotes;
  std::optional<TableDescriptor> fDescriptor;
  std::vector<const FieldDescriptor*> fFields;
};

}  // namespace

std::shared_ptr<SqlTable> OpenSqlTable(const OpenOptions& options) {
  SqlTableOptions wanted;
  wanted.addresses = {options.path};
  for (const std::string& path : options.furtherPaths) {
    if (!IsSqlAddress(path))
      throw DataError(
          fmt::format("{}: this is no address of a database, and {} is one; files and databases are not read "
                      "as one table",
                      path, wanted.addresses.front()));
    wanted.addresses.push_back(path);
  }
  wanted.table = options.table;
  wanted.query = options.query;
  wanted.onQuery = options.onQuery;
  wanted.connect = options.connect;
  return std::make_shared<SqlTable>(wanted);
}

std::string FileSpecOfTable(const SqlTable& table) { return table.sourceName() + '\\' + table.tableName(); }

TableDescriptor ReadDictionaryOfTable(const SqlTable& table, const OpenOptions& options, std::vector<Note>& notes) {
  return ReadDictionary({*options.dictionary, options.resource, options.path, options.schemas, HeadersOf(table)},
                        notes);
}

bool CanCount(SqlTable& table) {
  SqlConnection& connection = *table.first().connection;
  SqlPlace noRows;
  noRows.relation = fmt::format("(SELECT * FROM {} WHERE 1 = 0) e", table.first().relation);
  noRows.arms = {noRows.relation};
  connection.Keep();
  try {
    table.AskFirst(GroupQueries(table).Groups(noRows, 0, std::nullopt), [](SqlRows&) {});
    return true;
  } catch (const DataError&) {
    connection.BackTo();
    return false;
  }
}

OpenedDataset OpenInDatabase(const OpenOptions& options, std::shared_ptr<SqlTable> table) {
  return DatabaseReading(options, std::move(table)).Open();
}

}  // namespace runtime::data
