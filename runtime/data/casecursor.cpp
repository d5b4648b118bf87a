#include "host/data/casecursor.h"

#include <algorithm>
#include <utility>

#include "host/data/caseiterator.h"

StringTable::~StringTable() = default;

ChunkListener::~ChunkListener() = default;

CaseGroups::~CaseGroups() = default;

std::vector<double> CaseGroups::WeightsBetween(const std::vector<double>&) const { return {}; }

CaseCursor::CaseCursor() = default;

const CaseGroups* CaseCursor::GroupsFor(const CountingRequest&) { return nullptr; }

// A derived class has said farewell already, while its columns could still be read; here only a forgotten farewell is
// made good, so that no listener keeps a pointer to a cursor that is gone.
CaseCursor::~CaseCursor() {
  fLeaving = true;
  for (ChunkListener* listener : std::exchange(fListeners, {}))
    if (listener != nullptr) listener->CursorGone();
}

void CaseCursor::AddListener(ChunkListener* listener) { fListeners.push_back(listener); }

void CaseCursor::RemoveListener(ChunkListener* listener) {
  const auto found = std::find(fListeners.begin(), fListeners.end(), listener);
  if (found == fListeners.end()) return;
  // A listener may go away while the listeners are being told: its place stays until all have been.
  if (fTelling)
    *found = nullptr;
  else
    fListeners.erase(found);
}

void CaseCursor::TellListeners() {
  fTelling = true;
  try {
    // By index: a listener may add another one.
    for (std::size_t i = 0; i < fListeners.size(); ++i)
      if (fListeners[i] != nullptr) fListeners[i]->LeaveChunk();
  } catch (...) {
    fTelling = false;
    throw;
  }
  fTelling = false;
  fListeners.erase(std::remove(fListeners.begin(), fListeners.end(), nullptr), fListeners.end());
}

void CaseCursor::Farewell() {
  fLeaving = true;
  if (row >= 0 && !fExhausted) TellListeners();
  for (ChunkListener* listener : std::exchange(fListeners, {}))
    if (listener != nullptr) listener->CursorGone();
}

bool CaseCursor::StepToNextChunk() {
  if (fExhausted) return false;
  if (row >= 0) TellListeners();
  if (LoadNextChunk()) {
    row = chunkBegin;
    return true;
  }
  fExhausted = true;
  row = chunkEnd;
  return false;
}

MAVO_InputCaseIterator::MAVO_InputCaseIterator(const MAVO_DataSource& source, std::unique_ptr<CaseCursor> cursor)
    : fSource(source), fCursor(std::move(cursor)) {}

MAVO_InputCaseIterator::~MAVO_InputCaseIterator() = default;
