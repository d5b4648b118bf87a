#include "runtime/aggregation/sketch/histogram.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <memory>
#include <utility>

#include "runtime/aggregation/exact/binary64.h"
#include "runtime/aggregation/exact/fixedsum.h"
#include "runtime/aggregation/sketch/binedges.h"

namespace runtime::aggregation {

namespace {

/// Classes between edges, with the weights that have been added to them.
class Bins {
 public:
  /// `shift`: of the sum of all weights; `exactWeights`: these have no common unit.
  Bins(std::vector<double> edges, int shift, bool exactWeights)
      : fEdges(std::move(edges)),
        fBins(fEdges.empty() ? 0 : fEdges.size() - 1),
        fShift(shift),
        fCases(fBins),
        fUnits(fBins),
        fWide(exactWeights ? fBins : 0),
        fCounted(fBins) {
    if (fBins > 0) fBinsOfOne = static_cast<double>(fBins) / (fEdges.back() - fEdges.front());
  }

  void Add(double value, const WeightTotal& weight) { fCounted[BinOf(value)] += weight; }

  void Add(const KeptValues::Block& block, bool isNarrow) {
    if (block.weights == nullptr) {
      for (std::size_t i = 0; i < block.count; ++i) ++fCases[BinOf(block.values[i])];
    } else if (!fWide.empty()) {
      for (std::size_t i = 0; i < block.count; ++i) fWide[BinOf(block.values[i])].Add(block.weights[i]);
    } else if (isNarrow) {
      // A power of two: the product is exact, and whole.
      const double scale = std::ldexp(1.0, fShift);
      for (std::size_t i = 0; i < block.count; ++i)
        fUnits[BinOf(block.values[i])] +=
            static_cast<std::uint64_t>(static_cast<std::int64_t>(block.weights[i] * scale));
    } else {
      for (std::size_t i = 0; i < block.count; ++i)
        fUnits[BinOf(block.values[i])] += InUnitsOf<UInt128>(block.weights[i], fShift);
    }
  }

  std::vector<HistogramBin> Weighed() const {
    std::vector<HistogramBin> bins;
    for (std::size_t i = 0; i < fBins; ++i) {
      WeightTotal weight{fCases[i], fUnits[i], fShift, nullptr};
      if (!fWide.empty()) weight.wide = std::make_shared<const Dyadic>(fWide[i]);
      weight += fCounted[i];
      bins.push_back({fEdges[i], fEdges[i + 1], NearestDouble(weight)});
    }
    return bins;
  }

 private:
  /// The guess is wrong by rounding only, but for ranges beyond the doubles.
  std::size_t BinOf(double value) const {
    const double guess = (value - fEdges.front()) * fBinsOfOne;
    const auto last = static_cast<double>(fBins - 1);
    std::size_t bin = guess > 0.0 ? static_cast<std::size_t>(std::min(guess, last)) : 0;
    while (bin > 0 && value < fEdges[bin]) --bin;
    while (bin + 1 < fBins && value >= fEdges[bin + 1]) ++bin;
    return bin;
  }

  std::vector<double> fEdges;
  std::size_t fBins;
  double fBinsOfOne = 0.0;  // classes in a range of 1
  int fShift;
  std::vector<std::uint64_t> fCases;  // kept values of weight 1
  std::vector<UInt128> fUnits;        // weights of kept values x 2^-fShift
  std::vector<WideWeightSum> fWide;   // those without a common unit; empty where there are none
  std::vector<WeightTotal> fCounted;
};

bool IsWhole(double value) { return std::floor(value) == value; }

bool AreWhole(const KeptValues::Block& block) { return std::all_of(block.values, block.values + block.count, IsWhole); }

}  // namespace

std::vector<HistogramBin> Histogram(const WeightedValues& values, const WeightTotal& total,
                                    const std::vector<double>& quartiles) {
  if (total.IsZero()) return {};
  BinBasis basis{std::numeric_limits<double>::infinity(), -std::numeric_limits<double>::infinity(), quartiles[0],
                 quartiles[2], NearestDouble(total)};
  if (values.kept != nullptr && values.kept->count() > 0) {
    basis.lowest = values.kept->lowest();
    basis.highest = values.kept->highest();
  }
  if (!values.counted.empty()) {
    basis.lowest = std::min(basis.lowest, values.counted.front().first);
    basis.highest = std::max(basis.highest, values.counted.back().first);
  }
  // The sum may be beyond the largest double.
  if (std::isnan(basis.weight)) basis.weight = std::numeric_limits<double>::max();

  const bool exactWeights = total.wide != nullptr;
  std::vector<double> wholeEdges = WholeNumberEdges(basis.lowest, basis.highest);
  bool areWhole = !wholeEdges.empty() && std::all_of(values.counted.begin(), values.counted.end(),
                                                     [](const auto& counted) { return IsWhole(counted.first); });
  if (basis.lowest == basis.highest && !areWhole) return {{basis.lowest, basis.highest, NearestDouble(total)}};
  if (!areWhole) wholeEdges.clear();
  Bins whole(std::move(wholeEdges), total.shift, exactWeights);
  // Whether the kept values are whole as well is known behind the walk only.
  const bool areAllCounted = values.kept == nullptr || values.kept->count() == 0;
  const bool needsOthers = !areWhole || (!areAllCounted && basis.lowest < basis.highest);
  Bins others(needsOthers ? BinEdges(basis) : std::vector<double>(), total.shift, exactWeights);

  for (const auto& [value, weight] : values.counted) {
    if (areWhole) whole.Add(value, weight);
    if (needsOthers) others.Add(value, weight);
  }
  if (!areAllCounted) {
    const bool isNarrow = values.kept->aboveWeights() <= std::ldexp(1.0, 63 - total.shift);
    values.kept->ForEachBlock([&](const KeptValues::Block& block) {
      areWhole = areWhole && AreWhole(block);
      if (areWhole) whole.Add(block, isNarrow);
      if (needsOthers) others.Add(block, isNarrow);
    });
  }
  return areWhole ? whole.Weighed() : others.Weighed();
}

std::vector<HistogramBin> HistogramOf(const CaseGroups& groups, const BinBasis& basis, bool areWhole) {
  std::vector<double> edges = areWhole ? WholeNumberEdges(basis.lowest, basis.highest) : std::vector<double>();
  if (edges.empty() && basis.lowest == basis.highest) return {{basis.lowest, basis.highest, basis.weight}};
  if (edges.empty()) edges = BinEdges(basis);
  const std::vector<double> weights = groups.WeightsBetween(edges);
  std::vector<HistogramBin> bins;
  for (std::size_t i = 0; i + 1 < edges.size(); ++i) bins.push_back({edges[i], edges[i + 1], weights.at(i)});
  return bins;
}

}  // namespace runtime::aggregation
