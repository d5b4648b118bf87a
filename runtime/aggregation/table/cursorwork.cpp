#include "runtime/aggregation/table/cursorwork.h"

#include <algorithm>
#include <map>
#include <utility>

#include "runtime/aggregation/table/tableengine.h"

namespace runtime::aggregation {

namespace {

using Registry = std::map<const CaseCursor*, std::weak_ptr<CursorWork>>;

/// A run passes its cases on one thread, so every thread knows its own cursors.
Registry& CursorsOfThread() {
  thread_local Registry registry;
  return registry;
}

}  // namespace

std::shared_ptr<CursorWork> CursorWork::Of(CaseCursor& cursor) {
  std::weak_ptr<CursorWork>& known = CursorsOfThread()[&cursor];
  std::shared_ptr<CursorWork> work = known.lock();
  // A dead cursor's place may be taken by a new one at the same address.
  if (work == nullptr || work->fCursor != &cursor) known = work = std::make_shared<CursorWork>(cursor);
  return work;
}

CursorWork::CursorWork(CaseCursor& cursor) : fCursor(&cursor), fChunk{&cursor, {}} { cursor.AddListener(this); }

CursorWork::~CursorWork() {
  if (fCursor == nullptr) return;
  fCursor->RemoveListener(this);
  CursorsOfThread().erase(fCursor);
}

void CursorWork::Remove(TableEngine& table) { fTables.erase(std::find(fTables.begin(), fTables.end(), &table)); }

const Chunk& CursorWork::PresentChunk() {
  if (fScaledChunk != fCursor->chunkBegin) {
    const auto rows = static_cast<std::size_t>(fCursor->chunkEnd - fCursor->chunkBegin);
    fChunk.weights = fScaler.Scale(fCursor->Weights(), rows);
    fScaledChunk = fCursor->chunkBegin;
  }
  return fChunk;
}

void CursorWork::LeaveChunk() {
  for (TableEngine* table : fTables) table->LeaveChunk();
  fScaledChunk = -1;
}

void CursorWork::CursorGone() {
  CursorsOfThread().erase(fCursor);
  // Tables take themselves off the list, and the last one takes this object with it.
  const std::vector<TableEngine*> tables = std::exchange(fTables, {});
  fCursor = nullptr;
  for (TableEngine* table : tables) table->CursorGone();
}

}  // namespace runtime::aggregation
