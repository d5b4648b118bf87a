#include "runtime/aggregation/counting/keptvalues.h"

#include <algorithm>
#include <utility>

namespace runtime::aggregation {

namespace {

/// Lowers and raises the two by the values, four at once: a comparison need not wait for the one before it.
void TakeExtremes(const double* values, std::size_t count, double& lowest, double& highest) {
  double low[4] = {lowest, lowest, lowest, lowest};
  double high[4] = {highest, highest, highest, highest};
  std::size_t i = 0;
  for (; i + 4 <= count; i += 4) {
    for (std::size_t lane = 0; lane < 4; ++lane) {
      low[lane] = values[i + lane] < low[lane] ? values[i + lane] : low[lane];
      high[lane] = values[i + lane] > high[lane] ? values[i + lane] : high[lane];
    }
  }
  for (; i < count; ++i) {
    low[0] = std::min(low[0], values[i]);
    high[0] = std::max(high[0], values[i]);
  }
  lowest = *std::min_element(low, low + 4);
  highest = *std::max_element(high, high + 4);
}

}  // namespace

bool ValueMemory::Take(std::size_t bytes) {
  const auto wanted = static_cast<std::int64_t>(bytes);
  const std::int64_t taken = fTaken.fetch_add(wanted) + wanted;
  if (fLimit <= 0 || taken <= fLimit) return true;
  fTaken -= wanted;
  return false;
}

KeptValues::KeptValues(std::shared_ptr<ValueMemory> memory)
    : fMemory(memory != nullptr ? std::move(memory) : std::make_shared<ValueMemory>(0)) {}

KeptValues::~KeptValues() {
  fMemory->GiveBack(fOpen.bytes());
  for (const Stored& block : fClosed)
    if (block.cells != nullptr) fMemory->GiveBack(block.bytes());
}

KeptValues::Block KeptValues::open() const { return fOpen.view(); }

KeptValues::Place KeptValues::next(bool weighted) const {
  if (weighted && !fOpen.weighted) return {nullptr, nullptr, 0};
  double* const values = fOpen.cells.get() + fOpen.count;
  return {values, fOpen.weighted ? values + fOpen.room : nullptr, fOpen.room - fOpen.count};
}

void KeptValues::Written(std::size_t count, double above) {
  if (count == 0) return;
  TakeExtremes(fOpen.cells.get() + fOpen.count, count, fLowest, fHighest);
  fAboveWeights = std::max(fAboveWeights, above);
  if (this->count() + count > fNextSample && fSample.size() < kMostSample) {
    fSample.push_back(fOpen.cells[fOpen.count]);
    fNextSample = this->count() + kSampleStep;
  }
  fOpen.count += count;
}

void KeptValues::WriteOpen() {
  Stored written;
  written.count = fOpen.count;
  written.weighted = fOpen.weighted;
  // Values and weights of a full block lie side by side.
  const bool atOnce = fOpen.count == fOpen.room;
  const std::size_t bytes = fOpen.count * sizeof(double);
  if (fOpen.weighted && !atOnce)
    std::copy_n(fOpen.cells.get() + fOpen.room, fOpen.count, fOpen.cells.get() + fOpen.count);
  written.offset = fMemory->file().Append(fOpen.cells.get(), fOpen.weighted ? 2 * bytes : bytes);
  fClosed.push_back(std::move(written));
  fClosedCount += fOpen.count;
  fOpen.count = 0;
}

void KeptValues::OpenNext(bool keep, bool weighted) {
  if (!keep) fOpen.count = 0;
  const bool sameKind = fOpen.room > 0 && (fOpen.weighted || !weighted);
  const std::size_t largest = keep ? kLargestRoom : kLargestRoomOfOne;
  if (sameKind && fOpen.count == 0 && fOpen.room >= largest) return;

  Stored next;
  next.weighted = weighted || fOpen.weighted;
  // A quarter of what is kept, so that little of it stays empty at the end.
  const std::size_t wanted = keep ? static_cast<std::size_t>(count() / kShareOfNext) : 2 * fOpen.room;
  next.room = std::clamp(wanted, kFirstRoom, largest);
  if (!fMemory->Take(next.bytes())) {
    if (fOpen.count > 0) WriteOpen();
    if (sameKind) return;
    fMemory->GiveBack(fOpen.bytes());
    fOpen = Stored();
    next.room = kFirstRoom;
    fMemory->Force(next.bytes());
  }
  next.cells = std::make_unique_for_overwrite<double[]>(next.bytes() / sizeof(double));
  if (fOpen.count > 0) {
    fClosedCount += fOpen.count;
    fClosed.push_back(std::move(fOpen));
  } else {
    fMemory->GiveBack(fOpen.bytes());
  }
  fOpen = std::move(next);
}

KeptValues::Block KeptValues::ReadBack(const Stored& block, std::vector<double>& buffer) const {
  buffer.resize(std::max(buffer.size(), 2 * block.count));
  const std::size_t cells = (block.weighted ? 2 : 1) * block.count;
  fMemory->file().Read(block.offset, buffer.data(), cells * sizeof(double));
  return {buffer.data(), block.weighted ? buffer.data() + block.count : nullptr, block.count};
}

}  // namespace runtime::aggregation
