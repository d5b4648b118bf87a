#include "runtime/aggregation/counting/percentiles.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <map>
#include <optional>
#include <span>

#include "runtime/aggregation/exact/binary64.h"

namespace runtime::aggregation {

namespace {

constexpr double kSystemMissing = std::numeric_limits<double>::quiet_NaN();
constexpr std::size_t kSmallRange = 48;

/// What stands around t: c_i, x_i (none when t < c_1), x_{i+1} and w_{i+1}. REQUIRES: t < W.
template <class Weight>
struct Neighbours {
  std::optional<double> lower;
  double upper = 0.0;
  Weight below{};        // c_i
  Weight upperWeight{};  // w_{i+1}
};

/// `hundredfold` is 100 t.
double Interpolate(const Neighbours<Dyadic>& around, const Dyadic& hundredfold) {
  if (!around.lower) return around.upper;
  const Dyadic hundred(100.0);
  const Dyadic distance = hundredfold - hundred * around.below;  // 100 d
  if (distance >= hundred) return around.upper;
  // The result is x_i + distance / divisor x (x_{i+1} - x_i).
  const bool spreadsOverOne = around.upperWeight >= Dyadic(1.0);
  const Dyadic divisor = spreadsOverOne ? hundred : hundred * around.upperWeight;
  const Dyadic lower(*around.lower);
  return NearestQuotient(divisor * lower + distance * (Dyadic(around.upper) - lower), divisor);
}

/// Weights as multiples of 2^-shift.
class Selection {
 public:
  struct Target {
    UInt128 threshold;  // the largest multiple that is not above t
    Neighbours<UInt128> around;
  };

  Selection(WeightedValues& values, int shift) : fValues(values), fShift(shift), fUnit(UInt128{1} << shift) {
    std::sort(values.counted.begin(), values.counted.end(),
              [](const auto& a, const auto& b) { return a.first < b.first; });
    fCumulative.reserve(values.counted.size() + 1);
    fCumulative.push_back(0);
    for (const auto& [value, weight] : values.counted)
      fCumulative.push_back(fCumulative.back() + (weight.InUnits() << (shift - weight.shift)));
    NarrowWeights();
  }

  /// REQUIRES: targets in rising order, each below `total`, the sum of all weights.
  void Run(std::span<Target> targets, UInt128 total) {
    Select({0, fValues.values.size(), 0, fValues.counted.size(), 0, total, std::nullopt}, targets);
  }

 private:
  /// Part of the values that lies between two values: [begin, end) of the plain, [first, last) of the counted ones.
  struct Range {
    std::size_t begin, end;
    std::size_t first, last;
    UInt128 below;                // weight of all smaller values
    UInt128 upTo;                 // the same with the range's own
    std::optional<double> lower;  // the largest smaller value
  };

  UInt128 WeightAt(std::size_t i) const {
    if (!fNarrow.empty()) return fNarrow[i];
    return fValues.weights.empty() ? fUnit : InUnitsOf<UInt128>(fValues.weights[i], fShift);
  }
  void NarrowWeights();

  void Select(Range range, std::span<Target> targets);
  void WalkSmall(const Range& range, std::span<Target> targets);
  double Pivot(const Range& range, UInt128 threshold);
  /// Brings the values for which `isWanted` holds to the front of [begin, end); gives their end and adds their weight.
  template <class Wanted, class Weight>
  std::size_t PartWeighted(std::size_t begin, std::size_t end, Wanted isWanted, Weight* weights);
  template <class Wanted>
  std::size_t Part(std::size_t begin, std::size_t end, Wanted isWanted, UInt128& weight);

  WeightedValues& fValues;
  int fShift;
  UInt128 fUnit;
  std::vector<std::uint64_t> fNarrow;  // the weights in units, in place of the doubles, where 64 bits hold them all
  std::vector<UInt128> fCumulative;    // of the counted values: weight of the first i
  std::uint64_t fRandom = 0x2545F4914F6CDD1Du;
};

void Selection::NarrowWeights() {
  std::vector<double>& weights = fValues.weights;
  if (weights.empty() || *std::max_element(weights.begin(), weights.end()) >= std::ldexp(1.0, 64 - fShift)) return;
  fNarrow.reserve(weights.size());
  for (const double weight : weights) fNarrow.push_back(InUnitsOf<std::uint64_t>(weight, fShift));
  std::vector<double>().swap(weights);
}

template <class Wanted, class Weight>
std::size_t Selection::PartWeighted(std::size_t begin, std::size_t end, Wanted isWanted, Weight* weights) {
  double* values = fValues.values.data();
  std::size_t kept = begin;
  for (std::size_t i = begin; i < end; ++i) {
    const double value = values[i];
    const Weight itsWeight = weights[i];
    values[i] = values[kept];
    weights[i] = weights[kept];
    values[kept] = value;
    weights[kept] = itsWeight;
    kept += isWanted(value) ? std::size_t{1} : std::size_t{0};
  }
  return kept;
}

template <class Wanted>
std::size_t Selection::Part(std::size_t begin, std::size_t end, Wanted isWanted, UInt128& weight) {
  double* values = fValues.values.data();
  std::size_t kept = begin;
  // Each value is swapped to the boundary and the boundary moves or not: no branch to mispredict.
  if (fValues.weights.empty() && fNarrow.empty()) {
    for (std::size_t i = begin; i < end; ++i) {
      const double value = values[i];
      values[i] = values[kept];
      values[kept] = value;
      kept += isWanted(value) ? std::size_t{1} : std::size_t{0};
    }
    weight += UInt128{kept - begin} << fShift;
    return kept;
  }
  if (!fNarrow.empty()) {
    kept = PartWeighted(begin, end, isWanted, fNarrow.data());
    for (std::size_t i = begin; i < kept; ++i) weight += fNarrow[i];
    return kept;
  }
  kept = PartWeighted(begin, end, isWanted, fValues.weights.data());
  for (std::size_t i = begin; i < kept; ++i) weight += WeightAt(i);
  return kept;
}

/// A value of the range near the threshold: of a random sample the one whose place in the sample corresponds.
double Selection::Pivot(const Range& range, UInt128 threshold) {
  const std::size_t count = range.end - range.begin;
  const std::size_t sampleSize = count < 4096 ? 15 : 127;
  double sample[127];
  for (std::size_t i = 0; i < sampleSize; ++i) {
    fRandom ^= fRandom << 13;
    fRandom ^= fRandom >> 7;
    fRandom ^= fRandom << 17;
    sample[i] = fValues.values[range.begin + fRandom % count];
  }
  const double wanted = static_cast<double>(threshold - range.below);
  // The place is only a guess, which is enough for a pivot.
  const double share = std::clamp(wanted / static_cast<double>(range.upTo - range.below), 0.0, 1.0);
  double* nth = sample + std::lround(share * static_cast<double>(sampleSize - 1));
  std::nth_element(sample, nth, sample + sampleSize);
  return *nth;
}

void Selection::WalkSmall(const Range& range, std::span<Target> targets) {
  std::vector<std::pair<double, UInt128>> entries;
  for (std::size_t i = range.begin; i < range.end; ++i) entries.emplace_back(fValues.values[i], WeightAt(i));
  std::sort(entries.begin(), entries.end(), [](const auto& a, const auto& b) { return a.first < b.first; });

  std::size_t plain = 0;
  std::size_t counted = range.first;
  std::size_t target = 0;
  UInt128 below = range.below;
  std::optional<double> lower = range.lower;
  while (target < targets.size()) {
    const bool hasPlain = plain < entries.size();
    const bool hasCounted = counted < range.last;
    const double value = !hasCounted ? entries[plain].first
                         : !hasPlain ? fValues.counted[counted].first
                                     : std::min(entries[plain].first, fValues.counted[counted].first);
    UInt128 weight = 0;
    for (; plain < entries.size() && entries[plain].first == value; ++plain) weight += entries[plain].second;
    if (hasCounted && fValues.counted[counted].first == value) {
      weight += fCumulative[counted + 1] - fCumulative[counted];
      ++counted;
    }
    for (; target < targets.size() && targets[target].threshold < below + weight; ++target)
      targets[target].around = {lower, value, below, weight};
    below += weight;
    lower = value;
  }
}

void Selection::Select(Range range, std::span<Target> targets) {
  while (!targets.empty()) {
    if (range.end - range.begin <= kSmallRange) {
      WalkSmall(range, targets);
      return;
    }
    const double pivot = Pivot(range, targets[targets.size() / 2].threshold);
    const auto countedAt = [&](auto compare) {
      const auto begin = fValues.counted.begin();
      const auto found = std::partition_point(begin + static_cast<std::ptrdiff_t>(range.first),
                                              begin + static_cast<std::ptrdiff_t>(range.last), compare);
      return static_cast<std::size_t>(found - begin);
    };
    const std::size_t countedLess = countedAt([pivot](const auto& entry) { return entry.first < pivot; });
    const std::size_t countedEqual = countedAt([pivot](const auto& entry) { return entry.first <= pivot; });
    UInt128 lessEnd = range.below + fCumulative[countedLess] - fCumulative[range.first];
    const std::size_t less = Part(
        range.begin, range.end, [pivot](double value) { return value < pivot; }, lessEnd);
    UInt128 equalEnd = lessEnd + fCumulative[countedEqual] - fCumulative[countedLess];
    const std::size_t equal = Part(
        less, range.end, [pivot](double value) { return value == pivot; }, equalEnd);

    const auto firstIn = [&](UInt128 bound) {
      return static_cast<std::size_t>(
          std::partition_point(targets.begin(), targets.end(),
                               [bound](const Target& target) { return target.threshold < bound; }) -
          targets.begin());
    };
    const std::size_t inLess = firstIn(lessEnd);
    const std::size_t inEqual = firstIn(equalEnd);
    if (inEqual > inLess) {
      std::optional<double> lower = range.lower;
      if (less > range.begin)
        lower = *std::max_element(fValues.values.begin() + static_cast<std::ptrdiff_t>(range.begin),
                                  fValues.values.begin() + static_cast<std::ptrdiff_t>(less));
      if (countedLess > range.first) {
        const double last = fValues.counted[countedLess - 1].first;
        lower = less > range.begin ? std::max(*lower, last) : last;
      }
      for (std::size_t i = inLess; i < inEqual; ++i) targets[i].around = {lower, pivot, lessEnd, equalEnd - lessEnd};
    }
    Select({range.begin, less, range.first, countedLess, range.below, lessEnd, range.lower}, targets.first(inLess));
    range = {equal, range.end, countedEqual, range.last, equalEnd, range.upTo, pivot};
    targets = targets.subspan(inEqual);
  }
}

double LargestValue(const WeightedValues& values) {
  double largest = -std::numeric_limits<double>::infinity();
  for (const auto& [value, weight] : values.counted) largest = std::max(largest, value);
  for (const double value : values.values) largest = std::max(largest, value);
  return largest;
}

/// For weights too far apart for a common unit: sorted, with exact sums.
class SortedWalk {
 public:
  explicit SortedWalk(const WeightedValues& values) {
    for (const auto& [value, weight] : values.counted) fWeights[value] += weight.Exact();
    for (std::size_t i = 0; i < values.values.size(); ++i)
      fWeights[values.values[i]] += Dyadic(values.weights.empty() ? 1.0 : values.weights[i]);
  }

  /// REQUIRES: hundredfold < 100 W.
  Neighbours<Dyadic> Around(const Dyadic& hundredfold) const {
    Neighbours<Dyadic> around;
    const Dyadic hundred(100.0);
    for (const auto& [value, weight] : fWeights) {
      around.upper = value;
      around.upperWeight = weight;
      if (hundredfold < hundred * (around.below + weight)) break;
      around.below += weight;
      around.lower = value;
    }
    return around;
  }

 private:
  std::map<double, Dyadic> fWeights;
};

}  // namespace

std::vector<double> Percentiles(WeightedValues& values, const WeightTotal& total,
                                const std::vector<double>& cutPoints) {
  std::vector<double> results(cutPoints.size(), kSystemMissing);
  if (total.IsZero() || cutPoints.empty()) return results;

  const Dyadic exactTotal = total.Exact();
  const Dyadic hundredTotal = Dyadic(100.0) * exactTotal;
  std::vector<Dyadic> hundredfold;  // 100 t
  std::vector<std::size_t> inside;  // cut points with t < W, by rising t
  for (std::size_t i = 0; i < cutPoints.size(); ++i) {
    hundredfold.push_back(std::isfinite(cutPoints[i]) ? (exactTotal + Dyadic(1.0)) * Dyadic(cutPoints[i]) : Dyadic());
    if (!std::isfinite(cutPoints[i])) continue;
    if (hundredfold[i] >= hundredTotal)
      results[i] = LargestValue(values);
    else
      inside.push_back(i);
  }
  std::sort(inside.begin(), inside.end(), [&](std::size_t a, std::size_t b) { return cutPoints[a] < cutPoints[b]; });

  if (total.wide != nullptr) {
    const SortedWalk walk(values);
    for (const std::size_t i : inside) results[i] = Interpolate(walk.Around(hundredfold[i]), hundredfold[i]);
    return results;
  }

  std::vector<Selection::Target> targets;
  for (const std::size_t i : inside) targets.push_back({hundredfold[i].FloorInUnits(total.shift, 100), {}});
  Selection(values, total.shift).Run(targets, total.InUnits());
  for (std::size_t i = 0; i < targets.size(); ++i) {
    const Neighbours<UInt128>& around = targets[i].around;
    const Neighbours<Dyadic> exact{around.lower, around.upper, Dyadic(around.below, -total.shift),
                                   Dyadic(around.upperWeight, -total.shift)};
    results[inside[i]] = Interpolate(exact, hundredfold[inside[i]]);
  }
  return results;
}

}  // namespace runtime::aggregation
