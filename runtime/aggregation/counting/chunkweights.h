// The weights of a chunk's rows in the form in which they are summed.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "host/data/casecursor.h"

#include "runtime/aggregation/exact/int128.h"

namespace runtime::aggregation {

/// Row i of the chunk (0 is its first row) has the weight 1 (Units), narrow[i] x 2^-shift, broad[i] x 2^-shift or
/// exact[i] (Wide). Valid until the cursor leaves the chunk.
struct ChunkWeights {
  enum class Form { Units, Narrow, Broad, Wide };

  Form form = Form::Units;
  int shift = 0;
  const std::uint64_t* narrow = nullptr;
  const UInt128* broad = nullptr;
  const double* exact = nullptr;    // with every form but Units
  const UInt128* before = nullptr;  // Narrow and Broad: the sum of the weights of all rows before row i, x 2^-shift
  double above = 0.0;               // Narrow and Broad: a bound that no weight scaled so far reaches

  bool isScaled() const { return before != nullptr; }
  bool IsPositive(std::size_t row) const { return exact == nullptr || exact[row] > 0.0; }
};

/// Turns the weights of one cursor's chunks into whole multiples of a common power of two, as long as all weights met
/// (and 1) fit into 90 bits between their highest and lowest bit: 2^37 of them can then be summed in 128 bits without
/// rounding. Other chunks are summed as doubles in wide accumulators.
class WeightScaler {
 public:
  ChunkWeights Scale(const double* weights, std::size_t rows);
  /// Gives the memory of what was scaled back.
  void Release();

 private:
  static constexpr int kMostBits = 90;

  int fShift = 0;  // never lowered
  int fTop = 1;    // 2^fTop is above all weights scaled so far
  std::vector<std::uint64_t> fNarrow;
  std::vector<UInt128> fBroad;
  std::vector<UInt128> fBefore;
};

}  // namespace runtime::aggregation
