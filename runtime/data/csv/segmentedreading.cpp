#include "runtime/data/csv/segmentedreading.h"

#include <algorithm>
#include <utility>

#include <fmt/format.h>

namespace runtime::data {

namespace {

constexpr std::size_t kFewestBytes = std::size_t{256} << 10;
constexpr std::size_t kMostBytes = std::size_t{4} << 20;
constexpr std::size_t kMostBytesOfWideFiles = std::size_t{32} << 20;
constexpr std::size_t kSegments = 16;        // of a small file
constexpr std::size_t kRowsOfSegment = 768;  // at least, in a wide file

/// Small enough that all threads have work, large enough that what is done once a segment and column counts little.
std::size_t SegmentBytes(const std::vector<CsvPart>& parts, std::size_t total) {
  std::size_t rowBytes = 0;
  for (const CsvPart& part : parts) {
    const std::string_view text = part.input->text();
    const std::size_t end = text.find_first_of("\r\n", std::min(part.header.rowsBegin, text.size()));
    rowBytes = std::max(rowBytes, std::min(end, text.size()) - std::min(part.header.rowsBegin, text.size()));
  }
  const std::size_t most = std::clamp(rowBytes * kRowsOfSegment, kMostBytes, kMostBytesOfWideFiles);
  return std::clamp(total / kSegments, kFewestBytes, most);
}

}  // namespace

SegmentedReading::SegmentedReading(const std::vector<CsvPart>& parts, const ColumnTypers& typers, RowGroups& groups,
                                   bool strict, ReadingManner manner)
    : fParts(parts), fTypers(typers), fGroups(groups), fStrict(strict), fManner(std::move(manner)) {
  for (const CsvPart& part : parts) {
    fTotalBytes += part.input->text().size();
    fReadUpTo.push_back(part.header.rowsBegin);
    fFindings.push_back(part.header.findings);
  }
  PlanSegments(fManner.segmentBytes > 0 ? fManner.segmentBytes : SegmentBytes(parts, fTotalBytes));
  const int threads = fManner.pool ? fManner.pool->threads() : 1;
  // One reader more than threads, so that who has read ahead need not wait for the joining.
  fReaders = threads == 1 ? 1 : static_cast<std::size_t>(threads) + 1;
}

SegmentedReading::~SegmentedReading() = default;

void SegmentedReading::PlanSegments(std::size_t segmentBytes) {
  for (std::size_t part = 0; part < fParts.size(); ++part) {
    const std::size_t size = fParts[part].input->text().size();
    for (std::size_t begin = fParts[part].header.rowsBegin; begin < size; begin += segmentBytes)
      fSegments.push_back({part, begin, std::min(begin + segmentBytes, size)});
  }
}

void SegmentedReading::Run() {
  if (fManner.pool == nullptr || fManner.pool->threads() == 1 || fSegments.size() < 2) {
    Work();
    return;
  }
  fManner.pool->ForEach(static_cast<std::size_t>(fManner.pool->threads()), [this](std::size_t) {
    try {
      Work();
    } catch (...) {
      const std::lock_guard lock(fMutex);
      fFailed = true;
      fChanged.notify_all();
      throw;
    }
  });
}

void SegmentedReading::Work() {
  std::unique_lock lock(fMutex);
  while (true) {
    // The reader first: who has taken a segment always has what it needs to read it.
    std::unique_ptr<SegmentReader> reader = TakeReader(lock);
    if (!reader) return;
    if (fNextToRead == fSegments.size()) {
      fFree.push_back(std::move(reader));
      fChanged.notify_all();
      return;
    }
    const std::size_t segment = fNextToRead++;
    lock.unlock();
    ReadSegment(*reader, segment);
    lock.lock();
    fReady.emplace(segment, std::move(reader));
    JoinReady(lock);
  }
}

/// Null when there is nothing more to do.
std::unique_ptr<SegmentReader> SegmentedReading::TakeReader(std::unique_lock<std::mutex>& lock) {
  while (fFree.empty() && fReaders == 0 && !fFailed && fNextToRead < fSegments.size()) fChanged.wait(lock);
  if (fFailed || fNextToRead == fSegments.size()) return nullptr;
  if (fFree.empty()) {
    --fReaders;
    return std::make_unique<SegmentReader>(fTypers);
  }
  std::unique_ptr<SegmentReader> reader = std::move(fFree.back());
  fFree.pop_back();
  return reader;
}

void SegmentedReading::ReadSegment(SegmentReader& reader, std::size_t segment) const {
  const Segment& wanted = fSegments[segment];
  const CsvPart& part = fParts[wanted.part];
  const bool isFirst = wanted.begin == part.header.rowsBegin;
  const std::string_view text = part.input->text();
  const std::size_t begin = isFirst ? wanted.begin : GuessRecordBegin(text.substr(0, wanted.end), wanted.begin - 1);
  reader.Read(part, std::min(begin, text.size()), wanted.end, isFirst);
}

void SegmentedReading::JoinReady(std::unique_lock<std::mutex>& lock) {
  if (fIsJoining) return;  // who is at it takes this segment too
  fIsJoining = true;
  for (auto next = fReady.find(fNextToJoin); next != fReady.end() && !fFailed; next = fReady.find(fNextToJoin)) {
    std::unique_ptr<SegmentReader> reader = std::move(next->second);
    fReady.erase(next);
    lock.unlock();
    Join(*reader, fSegments[fNextToJoin]);
    lock.lock();
    ++fNextToJoin;
    fFree.push_back(std::move(reader));
    fChanged.notify_all();
  }
  fIsJoining = false;
}

void SegmentedReading::Join(SegmentReader& reader, const Segment& segment) {
  const CsvPart& part = fParts[segment.part];
  std::size_t& readUpTo = fReadUpTo[segment.part];
  // A record of an earlier segment may have reached beyond this one.
  if (reader.begin() != readUpTo || reader.wasGivenUp())
    reader.Read(part, readUpTo, std::max(readUpTo, segment.end), true);
  if (reader.hasInvalidText()) throw InvalidText{segment.part};

  ScanFindings& findings = fFindings[segment.part];
  const PiecePlace place{fRows, findings.lineEnds};
  findings.Append(reader.findings());
  findings.ThrowFirstError(part.input->name(), part.header.names.size(), fStrict);
  fRows += reader.findings().rows;
  if (fRows > kMostCases)
    throw DataError(fmt::format("{}: the data has more than {} cases, which cannot be worked with; split the file",
                                part.input->name(), kMostCases));
  std::size_t stored = 0;
  for (std::size_t column = 0; column < fTypers.size(); ++column)
    if (const ColumnPiece* piece = reader.piece(column))
      fTypers[column]->Join(*piece, place, reader.group().Cells(stored++));
  fGroups.Append(std::move(reader.group()));

  part.input->Release(part.input->text().substr(readUpTo, reader.end() - readUpTo));
  fBytesRead += reader.end() - readUpTo;
  readUpTo = reader.end();
  if (fManner.onProgress)
    fManner.onProgress({fRows, static_cast<double>(fBytesRead) / static_cast<double>(fTotalBytes)});
}

}  // namespace runtime::data
