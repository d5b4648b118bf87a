// The values that a variable's percentiles are selected from.
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <memory>
#include <vector>

#include "runtime/machine/spillfile.h"

namespace runtime::aggregation {

/// The room that the values of several variables share, and the file for what is beyond it. Used by several threads.
class ValueMemory {
 public:
  /// `limit` in bytes; 0: no limit.
  explicit ValueMemory(std::int64_t limit) : fLimit(limit) {}

  /// False, and nothing is taken, where the limit would be passed.
  bool Take(std::size_t bytes);
  /// Takes, whatever the limit: every variable needs one block to write to.
  void Force(std::size_t bytes) { fTaken += static_cast<std::int64_t>(bytes); }
  void GiveBack(std::size_t bytes) { fTaken -= static_cast<std::int64_t>(bytes); }
  machine::SpillFile& file() { return fFile; }

 private:
  const std::int64_t fLimit;
  std::atomic<std::int64_t> fTaken{0};
  machine::SpillFile fFile;
};

/// The values of one variable with their weights, in the order in which they came; block by block, of which the last is
/// open for more. Blocks that are full go to the file when there is no room for another one.
class KeptValues {
 public:
  /// Values of a block: `weights` is null where every weight is 1.
  struct Block {
    const double* values;
    const double* weights;
    std::size_t count;
  };

  /// `memory` null: a room of its own, without limit.
  explicit KeptValues(std::shared_ptr<ValueMemory> memory = nullptr);
  ~KeptValues();
  KeptValues(const KeptValues&) = delete;
  KeptValues& operator=(const KeptValues&) = delete;

  /// Where the next values can be written, `room` of them; then Written says how many they were. `weights` is null
  /// where the block has none.
  struct Place {
    double* values;
    double* weights;
    std::size_t room;
  };
  /// Little room or none: the block is all but full, or one with weights is needed. What is to be done with it as it
  /// stands can be done then, before OpenNext.
  Place next(bool weighted) const;
  /// `above`: none of the weights reaches it.
  void Written(std::size_t count, double above);
  /// Closes the open block, keeping its values or not. Throws machine::SpillError.
  void OpenNext(bool keep, bool weighted);
  /// The block that is open for more, of count 0 while there is none.
  Block open() const;

  /// Values in all blocks.
  std::uint64_t count() const { return fClosedCount + fOpen.count; }
  // Of all values ever added; infinite the wrong way round when there was none.
  double lowest() const { return fLowest; }
  double highest() const { return fHighest; }
  bool hasWeights() const { return fOpen.weighted; }
  /// A bound, above 1, that no weight reaches.
  double aboveWeights() const { return fAboveWeights; }
  /// Some of the values, from all over the first few hundred thousand.
  const std::vector<double>& sample() const { return fSample; }
  /// Calls visit(block) for the blocks, in order. What a block points to stays only until visit returns. Throws
  /// machine::SpillError.
  template <class Visit>
  void ForEachBlock(Visit visit) const;

 private:
  struct Stored {
    std::unique_ptr<double[]> cells;  // null: in the file. Room for the values, then, when weighted, for the weights
    std::size_t room = 0;             // values
    std::size_t count = 0;
    bool weighted = false;
    std::uint64_t offset = 0;  // in the file: the values, then the weights

    std::size_t bytes() const { return (weighted ? 2 : 1) * room * sizeof(double); }
    Block view() const { return {cells.get(), weighted ? cells.get() + room : nullptr, count}; }
  };

  void WriteOpen();
  Block ReadBack(const Stored& block, std::vector<double>& buffer) const;

  static constexpr std::size_t kMostSample = 1024;
  static constexpr std::uint64_t kSampleStep = 256;
  static constexpr std::size_t kFirstRoom = 256;
  static constexpr std::uint64_t kShareOfNext = 4;
  static constexpr std::size_t kLargestRoom = 32768;
  static constexpr std::size_t kLargestRoomOfOne = 4096;  // where blocks are not kept

  std::shared_ptr<ValueMemory> fMemory;
  std::vector<Stored> fClosed;
  Stored fOpen;
  std::uint64_t fClosedCount = 0;
  double fLowest = std::numeric_limits<double>::infinity();
  double fHighest = -std::numeric_limits<double>::infinity();
  double fAboveWeights = 2.0;
  std::vector<double> fSample;
  std::uint64_t fNextSample = 0;  // number of the value that is next put into the sample, or one behind it
};

template <class Visit>
void KeptValues::ForEachBlock(Visit visit) const {
  std::vector<double> buffer;
  for (const Stored& block : fClosed) visit(block.cells == nullptr ? ReadBack(block, buffer) : block.view());
  if (fOpen.count > 0) visit(fOpen.view());
}

}  // namespace runtime::aggregation
