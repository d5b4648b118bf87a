#include "runtime/aggregation/counting/chunkweights.h"

#include <algorithm>
#include <bit>
#include <cmath>

#include "runtime/aggregation/exact/binary64.h"

namespace runtime::aggregation {

namespace {

struct BitRange {
  int lowest = 0;  // exponent of the lowest bit; 0 when all weights are whole
  int top = 1;     // all weights are below 2^top
};

BitRange FindBitRange(const double* weights, std::size_t rows) {
  BitRange range;
  for (std::size_t i = 0; i < rows; ++i) {
    const Binary64 parts = TakeApart(weights[i]);
    if (parts.significand == 0) continue;
    range.lowest = std::min(range.lowest, parts.exponent + std::countr_zero(parts.significand));
    range.top = std::max(range.top, parts.exponent + static_cast<int>(std::bit_width(parts.significand)));
  }
  return range;
}

template <class Integer>
void FillInUnits(const double* weights, std::size_t rows, int shift, std::vector<Integer>& scaled,
                 std::vector<UInt128>& before) {
  scaled.resize(rows);
  before.resize(rows + 1);
  UInt128 sum = 0;
  for (std::size_t i = 0; i < rows; ++i) {
    scaled[i] = InUnitsOf<Integer>(weights[i], shift);
    before[i] = sum;
    sum += scaled[i];
  }
  before[rows] = sum;
}

}  // namespace

ChunkWeights WeightScaler::Scale(const double* weights, std::size_t rows) {
  ChunkWeights result;
  if (weights == nullptr) return result;
  result.exact = weights;
  result.form = ChunkWeights::Form::Wide;
  const BitRange range = FindBitRange(weights, rows);
  const int shift = std::max(fShift, -range.lowest);
  const int top = std::max(fTop, range.top);
  if (shift + top > kMostBits) return result;

  fShift = result.shift = shift;
  fTop = top;
  result.above = std::ldexp(1.0, top);
  if (shift + top <= 63) {
    FillInUnits(weights, rows, shift, fNarrow, fBefore);
    result.before = fBefore.data();
    result.narrow = fNarrow.data();
    result.form = ChunkWeights::Form::Narrow;
    return result;
  }
  FillInUnits(weights, rows, shift, fBroad, fBefore);
  result.before = fBefore.data();
  result.broad = fBroad.data();
  result.form = ChunkWeights::Form::Broad;
  return result;
}

void WeightScaler::Release() {
  fNarrow = {};
  fBroad = {};
  fBefore = {};
}

}  // namespace runtime::aggregation
