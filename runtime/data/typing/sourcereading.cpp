#include "runtime/data/typing/sourcereading.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <mutex>
#include <utility>

#include <fmt/format.h>

#include "runtime/data/typing/readcolumn.h"
#include "runtime/data/typing/typesteps.h"
#include "runtime/data/typing/unreadablecells.h"

namespace runtime::data {

namespace {

constexpr std::size_t kMostRowsOfGroup = 65'536;
constexpr std::size_t kFewestRowsOfGroup = 256;
constexpr std::size_t kCellsOfGroup = std::size_t{4} * 1024 * 1024;  // of all columns of the table

/// How far the reading of all columns is; what the threads that read share.
class SharedReading {
 public:
  SharedReading(const TableSource& table, const ReadingOptions& options)
      : fCells(static_cast<double>(table.rowCount()) * static_cast<double>(table.columns().size())),
        fRows(table.rowCount()),
        fOptions(options) {}

  /// Takes in the next group of some columns. Throws SpillError.
  void Append(RowGroups& groups, RowGroup group) {
    const std::lock_guard<std::mutex> lock(fMutex);
    fCellsRead += static_cast<double>(group.rows()) * static_cast<double>(group.columns());
    groups.Append(std::move(group));  // counts the memory of all groups
    if (!fOptions.manner.onProgress || fCells <= 0.0) return;
    const double share = std::min(1.0, fCellsRead / fCells);
    fOptions.manner.onProgress({static_cast<std::int64_t>(share * static_cast<double>(fRows)), share});
  }

 private:
  double fCells;
  std::int64_t fRows;
  const ReadingOptions& fOptions;
  std::mutex fMutex;
  double fCellsRead = 0.0;
};

/// Reads some neighbouring columns, from a stream of their own into groups of their own. The groups of all columns of a
/// table have the same rows.
class ColumnsReading {
 public:
  /// REQUIRES: first < end.
  ColumnsReading(TableSource& table, const std::vector<ColumnPlan>& plans, std::size_t first, std::size_t end,
                 const ReadingOptions& options)
      : fTable(table),
        fFirst(first),
        fGroups(std::make_shared<RowGroups>(options.memory)),
        fRowsOfGroup(std::clamp(kCellsOfGroup / table.columns().size(), kFewestRowsOfGroup, kMostRowsOfGroup)) {
    for (std::size_t column = first; column < end; ++column)
      fColumns.push_back(std::make_unique<ReadColumn>(table.columns()[column], plans[column]));
  }

  /// About how long it takes, in columns of whole numbers.
  int cost() const {
    int cost = 0;
    for (std::size_t i = 0; i < fColumns.size(); ++i) {
      const FieldType type = fTable.columns()[fFirst + i].type;
      const bool isWhole = type == FieldType::Integer || type == FieldType::Boolean;
      cost += fColumns[i]->isText() ? 4 : (isWhole ? 1 : 3);
    }
    return cost;
  }

  void Run(SharedReading& shared) {
    std::vector<StreamColumn> wanted;
    for (std::size_t i = 0; i < fColumns.size(); ++i) wanted.push_back({fFirst + i, fColumns[i]->isText()});
    const std::unique_ptr<TableStream> stream = fTable.Open(wanted);
    std::size_t rowsInGroup = 0;
    while (const std::size_t count = stream->Next()) {
      for (std::size_t first = 0; first < count;) {
        const std::size_t taken = std::min(count - first, fRowsOfGroup - rowsInGroup);
        for (std::size_t i = 0; i < fColumns.size(); ++i) stream->Take(i, first, taken, *fColumns[i]);
        first += taken;
        rowsInGroup += taken;
        if (rowsInGroup < fRowsOfGroup) continue;
        CloseGroup(rowsInGroup, shared);
        rowsInGroup = 0;
      }
    }
    if (rowsInGroup > 0) CloseGroup(rowsInGroup, shared);
  }

  /// After Run.
  void AppendTo(std::vector<TypedColumn>& columns) const {
    for (std::size_t i = 0; i < fColumns.size(); ++i)
      columns.push_back({{fGroups, i, fColumns[i]->strings()}, fColumns[i]->Finish()});
  }

 private:
  void CloseGroup(std::size_t rows, SharedReading& shared) {
    RowGroup group(rows, fColumns.size());
    for (const auto& column : fColumns) {
      column->EndGroup();
      group.AddColumn(column->storage());
    }
    group.Allocate();
    for (std::size_t i = 0; i < fColumns.size(); ++i) fColumns[i]->Store(group.Cells(i), rows, fGroups->rows());
    shared.Append(*fGroups, std::move(group));
  }

  TableSource& fTable;
  std::size_t fFirst;
  std::vector<std::unique_ptr<ReadColumn>> fColumns;
  std::shared_ptr<RowGroups> fGroups;
  std::size_t fRowsOfGroup;
};

}  // namespace

TypedTable ReadSource(TableSource& table, const std::vector<ColumnPlan>& plans, const std::string& source,
                      const ReadingOptions& options, std::vector<Note>& notes) {
  if (table.rowCount() > kMostCases)
    throw DataError(fmt::format("{}: the data has {} cases, and more than {} cannot be worked with; split the file",
                                source, table.rowCount(), kMostCases));
  machine::ThreadPool* const pool = options.manner.pool;
  const std::size_t atOnce = table.ColumnsOfStream(pool ? pool->threads() : 1);
  std::vector<std::unique_ptr<ColumnsReading>> readings;
  for (std::size_t first = 0; first < table.columns().size(); first += atOnce)
    readings.push_back(std::make_unique<ColumnsReading>(table, plans, first,
                                                        std::min(first + atOnce, table.columns().size()), options));
  SharedReading shared(table, options);
  // The longest first, so that no thread is left alone with it at the end.
  std::vector<ColumnsReading*> order;
  for (const auto& reading : readings) order.push_back(reading.get());
  std::stable_sort(order.begin(), order.end(),
                   [](const ColumnsReading* a, const ColumnsReading* b) { return a->cost() > b->cost(); });
  const auto run = [&](std::size_t reading) { order[reading]->Run(shared); };
  if (pool)
    pool->ForEach(readings.size(), run);
  else
    for (std::size_t reading = 0; reading < readings.size(); ++reading) run(reading);

  TypedTable read;
  read.rows = table.rowCount();
  for (const auto& reading : readings) reading->AppendTo(read.columns);
  std::vector<const ColumnFacts*> facts;
  for (const TypedColumn& column : read.columns) facts.push_back(&column.facts);
  ReportUnreadableCells(source, facts, options.strict, notes);
  NoteStrayCells(source, read.columns, plans, notes,
                 [&](std::size_t column) { return table.columns()[column].isMixed; });
  return read;
}

}  // namespace runtime::data
