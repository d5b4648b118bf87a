// How far a pass over the cases has come.
#pragma once

#include <cstdint>

#include "host/data/casecursor.h"

#include "runtime/machine/progress.h"

namespace runtime::common {

/// Tells a listener, at the end of a chunk, of the cases that have been counted; some thousand times a pass at most.
/// The cursor may go earlier than this object, or later.
class PassProgress : public ChunkListener {
 public:
  /// `cases`: what the cursor will walk over, negative when not known. `tell` is called on the cursor's thread and must
  /// outlive this object. Nothing is told when it is empty.
  PassProgress(CaseCursor& cursor, std::int64_t cases, const machine::ProgressListener& tell);
  ~PassProgress() override;
  PassProgress(const PassProgress&) = delete;
  PassProgress& operator=(const PassProgress&) = delete;

  void LeaveChunk() override;
  void CursorGone() override { fCursor = nullptr; }

 private:
  CaseCursor* fCursor;  // null: gone
  const std::int64_t fCases;
  const machine::ProgressListener& fTell;
  bool fIsLast = false;      // behind the tables, which count the chunk when they are told of its end
  std::int64_t fTellAt = 0;  // cases
};

}  // namespace runtime::common
