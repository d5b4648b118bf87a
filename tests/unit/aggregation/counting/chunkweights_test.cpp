#include "runtime/aggregation/counting/chunkweights.h"

#include <cmath>
#include <cstdint>
#include <vector>

#include <gtest/gtest.h>

#include "runtime/aggregation/counting/weightsums.h"

namespace runtime::aggregation {
namespace {

using Form = ChunkWeights::Form;

class Weights {
 public:
  /// One more chunk, all of whose rows go to slot 0.
  Form Add(const std::vector<double>& weights) {
    if (fSums.slots() == 0) fSums.Resize(1);
    const ChunkWeights scaled = fScaler.Scale(weights.data(), weights.size());
    const std::vector<std::uint32_t> slots(weights.size(), 0);
    fSums.Add(slots.data(), slots.size(), scaled, 0);
    return scaled.form;
  }
  double Sum() const { return NearestDouble(fSums.Total(0)); }

 private:
  WeightScaler fScaler;
  WeightSums fSums;
};

TEST(ChunkWeights, withoutWeightsEveryCaseIsAUnit) {
  WeightScaler scaler;
  EXPECT_EQ(scaler.Scale(nullptr, 5).form, Form::Units);
}

TEST(ChunkWeights, ordinaryWeightsAreSummedInFixedPoint) {
  Weights weights;
  EXPECT_EQ(weights.Add({1.5, 0.0, 2.25}), Form::Narrow);
  EXPECT_EQ(weights.Sum(), 3.75);
}

TEST(ChunkWeights, aFinerUnitRescalesTheSumsSoFar) {
  Weights weights;
  EXPECT_EQ(weights.Add({1.5}), Form::Narrow);
  EXPECT_EQ(weights.Add({0.1, 1000.0}), Form::Broad);
  EXPECT_EQ(weights.Add({std::ldexp(1.0, -20)}), Form::Broad);
  EXPECT_EQ(weights.Sum(), 1.5 + 0.1 + 1000.0 + std::ldexp(1.0, -20));
}

TEST(ChunkWeights, theUnitStaysWhenTheMemoryIsGivenBack) {
  WeightScaler scaler;
  const double fine = std::ldexp(1.0, -20);
  EXPECT_EQ(scaler.Scale(&fine, 1).shift, 20);
  scaler.Release();
  const double coarse = 2.0;
  const ChunkWeights scaled = scaler.Scale(&coarse, 1);
  EXPECT_EQ(scaled.shift, 20);
  EXPECT_EQ(scaled.narrow[0], std::uint64_t{2} << 20);
}

TEST(ChunkWeights, weightsTooFarApartAreSummedInWideAccumulators) {
  Weights weights;
  EXPECT_EQ(weights.Add({1.0}), Form::Narrow);
  EXPECT_EQ(weights.Add({1e300, 1e-300}), Form::Wide);
  EXPECT_EQ(weights.Add({5e-324}), Form::Wide);
  EXPECT_EQ(weights.Sum(), 1e300);
}

TEST(ChunkWeights, fixedPointKeepsRoomForItsSums) {
  Weights weights;
  std::vector<double> far(1000, std::ldexp(1.0, 60));
  far.push_back(std::ldexp(1.0, -60));  // 121 bits apart: 1000 of them would not fit into 128 bits
  weights.Add(far);
  EXPECT_EQ(weights.Sum(), std::ldexp(1000.0, 60));
}

TEST(ChunkWeights, aSumBeyondTheLargestDoubleIsSystemMissing) {
  Weights weights;
  EXPECT_EQ(weights.Add({1.7e308, 1.7e308}), Form::Wide);
  EXPECT_TRUE(std::isnan(weights.Sum()));
}

TEST(ChunkWeights, tenthsAddUpToTheNearestDoubleOfTheirExactSum) {
  Weights weights;
  weights.Add(std::vector<double>(10, 0.1));
  EXPECT_EQ(weights.Sum(), 1.0);  // ten additions of doubles would give 0.9999999999999999
}

}  // namespace
}  // namespace runtime::aggregation
