// All tables that are fed from one cursor.
#pragma once

#include <cstdint>
#include <exception>
#include <memory>
#include <optional>
#include <vector>

#include "host/data/casecursor.h"

#include "runtime/aggregation/counting/chunk.h"
#include "runtime/aggregation/counting/keptvalues.h"
#include "runtime/aggregation/counting/weightsums.h"
#include "runtime/machine/threadpool.h"

namespace runtime::aggregation {

class TableEngine;

/// All that a cursor has gone through.
struct CasesPassed {
  std::int64_t rows = 0;
  WeightTotal weight;
};

/// Works the tables' pending rows through before the cursor leaves a chunk, and scales the chunk's weights once for all
/// of them, unless each has groups of its own. The tables are independent of each other within a chunk, and so are
/// their results behind the last one: both are shared out among the threads of the calling thread's binding.
class CursorWork : public ChunkListener {
 public:
  /// The one of this cursor on the calling thread.
  static std::shared_ptr<CursorWork> Of(CaseCursor& cursor);

  explicit CursorWork(CaseCursor& cursor);
  ~CursorWork() override;
  CursorWork(const CursorWork&) = delete;
  CursorWork& operator=(const CursorWork&) = delete;

  void Add(TableEngine& table) { fTables.push_back(&table); }
  void Remove(TableEngine& table);

  const CaseCursor& cursor() const { return *fCursor; }
  /// The groups that a table counts instead of cases; null where the cursor walks over cases. REQUIRES: before the
  /// first case, for a request that no table has had yet.
  std::unique_ptr<ScaledChunk> GroupsFor(const CountingRequest& request);
  /// Over groups those that stand for the cases themselves. REQUIRES: the cursor stands in a chunk.
  const Chunk& PresentChunk() { return fChunk.Present(); }

  /// Searches the rest of the chunk for new values in all tables that want it, once a chunk, where several threads can
  /// share the work.
  void SearchAhead();

  /// Whether the tables are to sketch what they count.
  bool wantsSketches() const { return fWantsSketches; }
  /// Where the tables keep values.
  const std::shared_ptr<ValueMemory>& memory() const { return fMemory; }
  /// The results of a table are about to be computed.
  void BeginResults();
  /// Null where the cursor has not gone through all cases, or had begun before.
  std::optional<CasesPassed> AllCases() const;
  /// Ends the counting for all tables. REQUIRES: the cursor is exhausted.
  void FinishTables();
  /// What a table's work threw while it was not to be told; nothing is counted behind it. Null: nothing.
  const std::exception_ptr& failure() const { return fFailure; }

  void LeaveChunk() override;
  void CursorGone() override;

 private:
  void CountPending();
  template <class Work>
  void ShareOut(machine::ThreadPool& pool, const std::vector<TableEngine*>& tables, std::size_t cells, Work work);

  CaseCursor* fCursor;  // null when it is gone
  std::vector<TableEngine*> fTables;
  ScaledChunk fChunk;
  WeightSums fAllCases;  // in its one slot: of the chunks left so far
  const bool fWantsSketches;
  const bool fFromTheBeginning;      // none was left before
  std::int64_t fSearchedChunk = -1;  // chunkBegin of the chunk that was searched ahead; negative: none
  std::shared_ptr<ValueMemory> fMemory;
  bool fResultsBegan = false;
  std::exception_ptr fFailure;
};

}  // namespace runtime::aggregation
