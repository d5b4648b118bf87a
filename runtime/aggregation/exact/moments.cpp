#include "runtime/aggregation/exact/moments.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>
#include <memory>

#include "runtime/aggregation/exact/binary64.h"

namespace runtime::aggregation {

namespace {

template <std::size_t N>
std::array<std::uint64_t, N + 1> Multiply(const std::array<std::uint64_t, N>& factor, std::uint64_t by) {
  std::array<std::uint64_t, N + 1> product;
  std::uint64_t carry = 0;
  for (std::size_t i = 0; i < N; ++i) {
    const UInt128 limb = UInt128{factor[i]} * by + carry;
    product[i] = LowHalf(limb);
    carry = HighHalf(limb);
  }
  product[N] = carry;
  return product;
}

/// Significands and their squares summed apart by sign and exponent: with the exponent given, the sums are plain
/// integer additions. Values are handed on to the wide sums once per call, not once per value.
class ExponentBins {
 public:
  // 2^22 squares of 106 bits fit into 128 bits.
  static constexpr std::size_t kMostValues = std::size_t{1} << 22;

  /// REQUIRES: count <= kMostValues.
  void Add(const double* values, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i) {
      const auto bits = std::bit_cast<std::uint64_t>(values[i]);
      const std::uint64_t key = bits >> 52;
      const std::uint64_t biased = key & 0x7FF;
      const std::uint64_t significand = (bits & kSignificandMask) | (std::uint64_t{biased != 0} << 52);
      fLowest = std::min(fLowest, biased);
      fHighest = std::max(fHighest, biased);
      Bin& bin = fBins[key];
      bin.sum += significand;
      bin.squares += UInt128{significand} * significand;
    }
  }

  /// Moves all into the wide sums.
  void MoveTo(ProductSum& sum, SquareSum& squares) {
    for (std::uint64_t biased = fLowest; biased <= fHighest; ++biased) {
      const int exponent = biased == 0 ? kSmallestExponent : static_cast<int>(biased) - 1075;
      for (const bool negative : {false, true}) {
        Bin& bin = fBins[biased | (std::uint64_t{negative} << 11)];
        if (bin.sum == 0) continue;
        sum.Add(bin.sum, exponent, negative);
        squares.Add(bin.squares, 2 * exponent, false);
        bin = Bin();
      }
    }
    fLowest = kNone;
    fHighest = 0;
  }

 private:
  struct Bin {
    UInt128 sum = 0;
    UInt128 squares = 0;
  };
  static constexpr std::uint64_t kNone = 0x7FF;

  std::array<Bin, 4096> fBins{};  // by sign and biased exponent, the upper 12 bits of a double
  std::uint64_t fLowest = kNone;  // biased exponents met
  std::uint64_t fHighest = 0;
};

/// One a thread, empty between calls.
ExponentBins& Bins() {
  thread_local const std::unique_ptr<ExponentBins> bins = std::make_unique<ExponentBins>();
  return *bins;
}

}  // namespace

void MomentSums::AddUnits(const double* values, std::size_t count) {
  ExponentBins& bins = Bins();
  while (count > 0) {
    const std::size_t part = std::min(count, ExponentBins::kMostValues);
    bins.Add(values, part);
    bins.MoveTo(fSum, fSquares);
    values += part;
    count -= part;
  }
}

void MomentSums::AddWeighted(const double* values, const double* weights, std::size_t count) {
  for (std::size_t i = 0; i < count; ++i) {
    const Binary64 value = TakeApart(values[i]);
    const Binary64 weight = TakeApart(weights[i]);
    const UInt128 product = UInt128{value.significand} * weight.significand;
    const std::array<std::uint64_t, 2> limbs{LowHalf(product), HighHalf(product)};
    fSum.Add(limbs, value.exponent + weight.exponent, value.negative);
    fSquares.Add(Multiply(limbs, value.significand), 2 * value.exponent + weight.exponent, false);
  }
}

void MomentSums::AddCounted(double value, const WeightTotal& weight) {
  const Binary64 parts = TakeApart(value);
  const UInt128 units = weight.InUnits();
  const std::array<std::uint64_t, 2> limbs{LowHalf(units), HighHalf(units)};
  const auto product = Multiply(limbs, parts.significand);
  fSum.Add(product, parts.exponent - weight.shift, parts.negative);
  fSquares.Add(Multiply(product, parts.significand), 2 * parts.exponent - weight.shift, false);
  if (weight.wide == nullptr) return;
  const Dyadic exactValue(value);
  const Dyadic wideProduct = exactValue * *weight.wide;
  fWideSum += wideProduct;
  fWideSquares += wideProduct * exactValue;
}

double MomentSums::Mean(const WeightTotal& weight) const {
  if (weight.IsZero()) return std::numeric_limits<double>::quiet_NaN();
  return NearestQuotient(Sum(), weight.Exact());
}

double MomentSums::StandardDeviation(const WeightTotal& weight) const {
  const Dyadic total = weight.Exact();
  const Dyadic degreesOfFreedom = total - Dyadic(1.0);
  if (degreesOfFreedom.sign() <= 0) return std::numeric_limits<double>::quiet_NaN();
  const Dyadic sum = Sum();
  const Dyadic squares = Dyadic(fSquares) + fWideSquares;
  const double deviation = NearestRootOfQuotient(total * squares - sum * sum, total * degreesOfFreedom);
  return std::isinf(deviation) ? std::numeric_limits<double>::quiet_NaN() : deviation;
}

}  // namespace runtime::aggregation
