// Reading the files of a table by segments, on all threads.
#pragma once

#include <condition_variable>
#include <cstdint>
#include <map>
#include <memory>
#include <mutex>
#include <stdexcept>
#include <vector>

#include "runtime/data/csv/segmentreader.h"
#include "runtime/data/store/readingoptions.h"

namespace runtime::data {

/// A part's text holds bytes that are no UTF-8: it is to be repaired and everything read anew.
struct InvalidText {
  std::size_t part;
};

/// The text is cut at even distances, where records are supposed to begin; threads read the segments, each ahead of the
/// others, and one at a time they are joined in the order of the text. A supposed begin is proven when the segment
/// before ended there; else the segment is read once more, from the right place.
class SegmentedReading {
 public:
  /// Reads the columns of `typers` and appends their cells to `groups`. `strict`: a row of a wrong length is an error.
  SegmentedReading(const std::vector<CsvPart>& parts, const ColumnTypers& typers, RowGroups& groups, bool strict,
                   ReadingManner manner);
  ~SegmentedReading();

  /// Reads everything. Throws DataError, InvalidText, SpillError.
  void Run();

  std::int64_t rows() const { return fRows; }
  /// Of each part.
  const std::vector<ScanFindings>& findings() const { return fFindings; }

 private:
  struct Segment {
    std::size_t part;
    std::size_t begin;  // about
    std::size_t end;
  };

  void PlanSegments(std::size_t segmentBytes);
  void Work();
  std::unique_ptr<SegmentReader> TakeReader(std::unique_lock<std::mutex>& lock);
  void ReadSegment(SegmentReader& reader, std::size_t segment) const;
  void JoinReady(std::unique_lock<std::mutex>& lock);
  void Join(SegmentReader& reader, const Segment& segment);

  const std::vector<CsvPart>& fParts;
  const ColumnTypers& fTypers;
  RowGroups& fGroups;
  const bool fStrict;
  const ReadingManner fManner;
  std::vector<Segment> fSegments;
  std::size_t fTotalBytes = 0;

  // Of the joining, which one thread at a time does.
  std::vector<ScanFindings> fFindings;
  std::vector<std::size_t> fReadUpTo;  // of each part: where the next record begins
  std::int64_t fRows = 0;
  std::size_t fBytesRead = 0;

  std::mutex fMutex;
  std::condition_variable fChanged;
  std::vector<std::unique_ptr<SegmentReader>> fFree;
  std::size_t fReaders = 0;
  std::size_t fNextToRead = 0;
  std::size_t fNextToJoin = 0;
  bool fIsJoining = false;
  bool fFailed = false;
  std::map<std::size_t, std::unique_ptr<SegmentReader>> fReady;
};

}  // namespace runtime::data
