#include "runtime/aggregation/exact/moments.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <limits>
#include <memory>

#include "runtime/aggregation/exact/binary64.h"
#include "runtime/aggregation/exact/exponentbins.h"

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

/// One a thread and kind, empty between calls.
template <class Bin>
ExponentBins<Bin>& BinsOfThread() {
  thread_local const std::unique_ptr<ExponentBins<Bin>> bins = std::make_unique<ExponentBins<Bin>>();
  return *bins;
}

/// Adds part by part, as much as the bins hold at once.
template <class Bin, class WeightOf>
void AddInBins(const double* values, std::size_t count, int shift, WeightOf weightOf, ProductSum& sum,
               SquareSum& squares) {
  ExponentBins<Bin>& bins = BinsOfThread<Bin>();
  for (std::size_t first = 0; first < count; first += ExponentBins<Bin>::kMostValues) {
    const std::size_t part = std::min(count - first, ExponentBins<Bin>::kMostValues);
    bins.Add(values + first, part, [first, weightOf](std::size_t i) { return weightOf(first + i); });
    bins.MoveTo(shift, sum, squares);
  }
}

}  // namespace

void MomentSums::AddUnits(const double* values, std::size_t count) {
  AddInBins<UnitBin>(
      values, count, 0, [](std::size_t) { return std::uint64_t{1}; }, fSum, fSquares);
}

void MomentSums::AddNarrow(const double* values, const double* weights, int shift, std::size_t count) {
  // A power of two: the product is exact, and whole.
  const double scale = std::ldexp(1.0, shift);
  const auto unitsOf = [weights, scale](std::size_t i) {
    return static_cast<std::uint64_t>(static_cast<std::int64_t>(weights[i] * scale));
  };
  AddInBins<WeightedBin>(values, count, shift, unitsOf, fSum, fSquares);
}

void MomentSums::AddInUnits(const double* values, const std::uint64_t* units, int shift, std::size_t count) {
  AddInBins<WeightedBin>(
      values, count, shift, [units](std::size_t i) { return units[i]; }, fSum, fSquares);
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

void MomentSums::AddParts(std::span<const double> products, std::span<const double> squares) {
  for (const double part : products) fSum.Add(part);
  for (const double part : squares) fSquares.Add(part);
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
