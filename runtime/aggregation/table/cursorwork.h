// All tables that are fed from one cursor.
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "host/data/casecursor.h"

#include "runtime/aggregation/counting/chunk.h"

namespace runtime::aggregation {

class TableEngine;

/// Works the tables' pending rows through before the cursor leaves a chunk, and scales the chunk's weights once for all
/// of them. The tables are independent of each other within a chunk.
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
  /// REQUIRES: the cursor stands in a chunk.
  const Chunk& PresentChunk();

  void LeaveChunk() override;
  void CursorGone() override;

 private:
  CaseCursor* fCursor;  // null when it is gone
  std::vector<TableEngine*> fTables;
  WeightScaler fScaler;
  Chunk fChunk;
  std::int64_t fScaledChunk = -1;  // chunkBegin of the chunk whose weights are scaled; negative: none
};

}  // namespace runtime::aggregation
