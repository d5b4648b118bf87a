#include "runtime/aggregation/table/cursorwork.h"

#include <algorithm>
#include <map>
#include <utility>

#include "runtime/aggregation/binding.h"
#include "runtime/aggregation/table/tableengine.h"

namespace runtime::aggregation {

namespace {

using Registry = std::map<const CaseCursor*, std::weak_ptr<CursorWork>>;

/// A run passes its cases on one thread, so every thread knows its own cursors.
Registry& CursorsOfThread() {
  thread_local Registry registry;
  return registry;
}

// Waking threads up for less, in cells and in values, costs more than it brings.
constexpr std::size_t kCellsWorthSharing = 32768;
constexpr std::size_t kCellsOfTask = 8192;
constexpr std::size_t kTasksOfThread = 8;
constexpr std::size_t kValuesWorthSharing = 8192;

machine::ThreadPool* PoolOfThread() {
  const AggregationBinding* binding = CurrentAggregation();
  return binding == nullptr ? nullptr : binding->pool;
}

std::int64_t MemoryForValues() {
  const AggregationBinding* binding = CurrentAggregation();
  return binding == nullptr ? 0 : binding->percentileMemory;
}

bool AreSketchesWanted() {
  const AggregationBinding* binding = CurrentAggregation();
  return binding != nullptr && binding->onCounted;
}

}  // namespace

std::shared_ptr<CursorWork> CursorWork::Of(CaseCursor& cursor) {
  std::weak_ptr<CursorWork>& known = CursorsOfThread()[&cursor];
  std::shared_ptr<CursorWork> work = known.lock();
  // A dead cursor's place may be taken by a new one at the same address.
  if (work == nullptr || work->fCursor != &cursor) known = work = std::make_shared<CursorWork>(cursor);
  return work;
}

CursorWork::CursorWork(CaseCursor& cursor)
    : fCursor(&cursor),
      fChunk(cursor, cursor.GroupsFor({})),
      fWantsSketches(AreSketchesWanted()),
      fFromTheBeginning(cursor.chunkBegin == 0 && !cursor.exhausted()),
      fMemory(std::make_shared<ValueMemory>(MemoryForValues())) {
  fAllCases.Resize(1);
  cursor.AddListener(this);
}

CursorWork::~CursorWork() {
  if (fCursor == nullptr) return;
  fCursor->RemoveListener(this);
  CursorsOfThread().erase(fCursor);
}

void CursorWork::Remove(TableEngine& table) {
  const auto found = std::find(fTables.begin(), fTables.end(), &table);
  if (found != fTables.end()) fTables.erase(found);
}

std::unique_ptr<ScaledChunk> CursorWork::GroupsFor(const CountingRequest& request) {
  const CaseGroups* const groups = fCursor->GroupsFor(request);
  return groups == nullptr ? nullptr : std::make_unique<ScaledChunk>(*fCursor, groups);
}

/// Calls work(table) for the tables, in tasks of about the same size; `cells` are those of all.
template <class Work>
void CursorWork::ShareOut(machine::ThreadPool& pool, const std::vector<TableEngine*>& tables, std::size_t cells,
                          Work work) {
  // What the tables share is made before they go apart.
  PresentChunk();
  const auto tasks = static_cast<std::size_t>(pool.threads()) * kTasksOfThread;
  const std::size_t cellsOfTask = std::max(kCellsOfTask, cells / tasks);
  const std::size_t tablesOfTask = std::max<std::size_t>(1, cellsOfTask * tables.size() / cells);
  const std::size_t count = (tables.size() + tablesOfTask - 1) / tablesOfTask;
  pool.ForEach(count, [&](std::size_t task) {
    const std::size_t end = std::min(tables.size(), (task + 1) * tablesOfTask);
    for (std::size_t table = task * tablesOfTask; table < end; ++table) work(*tables[table]);
  });
}

void CursorWork::CountPending() {
  std::size_t cells = 0;
  for (const TableEngine* table : fTables) cells += table->PendingCells();
  machine::ThreadPool* pool = PoolOfThread();
  if (cells < kCellsWorthSharing || pool == nullptr || pool->threads() == 1) {
    for (TableEngine* table : fTables) table->LeaveChunk();
    return;
  }
  ShareOut(*pool, fTables, cells, [](TableEngine& table) { table.LeaveChunk(); });
}

void CursorWork::SearchAhead() {
  if (std::exchange(fSearchedChunk, fCursor->chunkBegin) == fCursor->chunkBegin) return;
  machine::ThreadPool* pool = PoolOfThread();
  if (pool == nullptr || pool->threads() == 1) return;
  std::vector<TableEngine*> searching;
  std::size_t cells = 0;
  for (TableEngine* table : fTables) {
    if (!table->WantsSearch()) continue;
    searching.push_back(table);
    cells += table->RowsToSearch();
  }
  if (cells < kCellsWorthSharing) return;
  ShareOut(*pool, searching, cells, [](TableEngine& table) { table.SearchChunk(); });
}

void CursorWork::LeaveChunk() {
  if (fFailure) return;
  try {
    CountPending();
    const Chunk& chunk = PresentChunk();
    fAllCases.AddRows(0, chunk.rows(), chunk.weights, 0);
  } catch (...) {
    fFailure = std::current_exception();
    if (!fCursor->leaving()) throw;
  }
}

std::optional<CasesPassed> CursorWork::AllCases() const {
  if (fCursor == nullptr || !fCursor->exhausted() || !fFromTheBeginning) return std::nullopt;
  return CasesPassed{fCursor->row, fAllCases.Total(0)};
}

void CursorWork::BeginResults() {
  if (std::exchange(fResultsBegan, true)) return;
  const AggregationBinding* binding = CurrentAggregation();
  if (binding == nullptr) return;
  if (binding->onResultsBegin) binding->onResultsBegin();
  if (!binding->onCasesWeighed) return;
  if (const std::optional<CasesPassed> all = AllCases()) binding->onCasesWeighed(NearestDouble(all->weight));
}

void CursorWork::FinishTables() {
  struct Cost {
    std::size_t values;
    TableEngine* table;
  };
  std::vector<Cost> costs;
  std::size_t values = 0;
  for (TableEngine* table : fTables) {
    if (!table->hasRequest()) continue;
    costs.push_back({table->ValuesToFinish(), table});
    values += costs.back().values;
  }
  // All at once: taking them off the list one by one would be work in the square of their number.
  fTables.erase(
      std::remove_if(fTables.begin(), fTables.end(), [](const TableEngine* table) { return table->hasRequest(); }),
      fTables.end());
  // The longest work first, so that no thread is left alone with it at the end.
  std::stable_sort(costs.begin(), costs.end(), [](const Cost& a, const Cost& b) { return a.values > b.values; });
  const std::optional<CasesPassed> allCases = AllCases();
  machine::ThreadPool* pool = PoolOfThread();
  if (pool == nullptr || values < kValuesWorthSharing)
    for (const Cost& cost : costs) cost.table->ComputeResults(allCases);
  else
    pool->ForEach(costs.size(), [&](std::size_t i) { costs[i].table->ComputeResults(allCases); });
  for (const Cost& cost : costs) cost.table->Detach();
}

void CursorWork::CursorGone() {
  CursorsOfThread().erase(fCursor);
  // Tables take themselves off the list, and the last one takes this object with it.
  const std::vector<TableEngine*> tables = std::exchange(fTables, {});
  const std::optional<CasesPassed> allCases = AllCases();
  fCursor = nullptr;
  for (TableEngine* table : tables) table->CursorGone(allCases);
}

}  // namespace runtime::aggregation
