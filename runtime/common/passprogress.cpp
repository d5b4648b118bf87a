#include "runtime/common/passprogress.h"

namespace runtime::common {

namespace {

// A chunk may be as short as one case.
constexpr std::int64_t kStepsOfPass = 1000;
constexpr std::int64_t kStepOfUnknownPass = 4096;

}  // namespace

PassProgress::PassProgress(CaseCursor& cursor, std::int64_t cases, const machine::ProgressListener& tell)
    : fCursor(&cursor), fCases(cases), fTell(tell) {
  cursor.AddListener(this);
}

PassProgress::~PassProgress() {
  if (fCursor != nullptr) fCursor->RemoveListener(this);
}

void PassProgress::LeaveChunk() {
  if (!fIsLast) {
    // The tables came after this object. From its new place it is told once more, of this chunk too.
    fIsLast = true;
    fCursor->RemoveListener(this);
    fCursor->AddListener(this);
    return;
  }
  const std::int64_t done = fCursor->row + 1;
  if (!fTell || (done < fTellAt && done != fCases)) return;
  fTellAt = done + (fCases < 0 ? kStepOfUnknownPass : fCases / kStepsOfPass);
  fTell({done, fCases > 0 ? static_cast<double>(done) / static_cast<double>(fCases) : 0.0});
}

}  // namespace runtime::common
