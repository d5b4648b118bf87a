#include "runtime/aggregation/counting/selection.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>

#include "runtime/aggregation/exact/binary64.h"
#include "runtime/aggregation/exact/fixedsum.h"

namespace runtime::aggregation {

namespace {

constexpr std::size_t kFewestBuckets = 64;
constexpr std::size_t kMostBucketsOfCases = 2048;  // without weights; what fits into the first-level cache
// So few values are sorted.
constexpr std::size_t kSmallRange = 96;
// Values taken out of their blocks at most: 16 MB with their weights.
constexpr std::size_t kMostTakenOut = std::size_t{1} << 20;
// So many values show which map parts them better.
constexpr std::size_t kSample = 256;
constexpr double kInfinity = std::numeric_limits<double>::infinity();

/// The place of a finite double in the order of all doubles.
std::uint64_t KeyOf(double value) {
  const auto bits = std::bit_cast<std::uint64_t>(value);
  return (bits >> 63) != 0 ? ~bits : bits | (std::uint64_t{1} << 63);
}

/// Bucket 0 is that of the lowest value, the last at most that of the highest. Each step is monotone, so the whole is.
struct LinearMap {
  double low;
  double scale;

  std::uint32_t operator()(double value) const {
    return static_cast<std::uint32_t>(static_cast<std::int32_t>((value - low) * scale));
  }
};

struct KeyMap {
  std::uint64_t low;
  int shift;

  std::uint32_t operator()(double value) const { return static_cast<std::uint32_t>((KeyOf(value) - low) >> shift); }
};

/// Weights as whole multiples of 2^-shift.
class UnitArithmetic {
 public:
  using Sum = UInt128;
  using Target = UnitTarget;
  using Cell = UInt128;
  static constexpr std::size_t kMostBuckets = 1024;

  UnitArithmetic(const WeightedValues& values, int shift)
      : fShift(shift),
        fScale(std::ldexp(1.0, shift)),
        fHasWeights(values.kept != nullptr && values.kept->hasWeights()),
        fIsNarrow(fHasWeights && values.kept->aboveWeights() <= std::ldexp(1.0, 63 - shift)) {}

  bool hasWeights() const { return fHasWeights; }
  /// Whether every weight is below 2^63 units.
  bool isNarrow() const { return fIsNarrow; }
  Sum OfCases(std::uint64_t cases) const { return UInt128{cases} << fShift; }
  Sum OfTotal(const WeightTotal& total) const { return total.InUnits() << (fShift - total.shift); }
  Sum OfCell(const Cell& cell) const { return cell; }
  Sum OfWeight(double weight) const { return InUnitsOf<UInt128>(weight, fShift); }
  void AddTo(Cell& cell, double weight) const { cell += OfWeight(weight); }
  /// REQUIRES: isNarrow.
  void AddNarrowTo(Cell& cell, double weight) const {
    // A power of two: the product is exact, and whole.
    cell += static_cast<std::uint64_t>(static_cast<std::int64_t>(weight * fScale));
  }
  static bool IsBelow(const Target& target, const Sum& cumulative) { return target.threshold < cumulative; }

 private:
  int fShift;
  double fScale;
  bool fHasWeights;
  bool fIsNarrow;
};

/// Weights too far apart for a common unit.
class ExactArithmetic {
 public:
  using Sum = Dyadic;
  using Target = ExactTarget;
  using Cell = WideWeightSum;
  static constexpr std::size_t kMostBuckets = 256;

  explicit ExactArithmetic(const WeightedValues& values)
      : fHasWeights(values.kept != nullptr && values.kept->hasWeights()) {}

  bool hasWeights() const { return fHasWeights; }
  static bool isNarrow() { return false; }
  static Sum OfCases(std::uint64_t cases) { return Dyadic(UInt128{cases}, 0); }
  static Sum OfTotal(const WeightTotal& total) { return total.Exact(); }
  static Sum OfCell(const Cell& cell) { return Dyadic(cell); }
  static Sum OfWeight(double weight) { return Dyadic(weight); }
  static void AddTo(Cell& cell, double weight) { cell.Add(weight); }
  static void AddNarrowTo(Cell& cell, double weight) { cell.Add(weight); }
  static bool IsBelow(const Target& target, const Sum& cumulative) {
    return target.hundredfold < Dyadic(100.0) * cumulative;
  }

 private:
  bool fHasWeights;
};

/// Values taken out of the kept ones; the weights stay empty where every one is 1.
struct TakenOut {
  std::vector<double> values;
  std::vector<double> weights;
};

template <class Arithmetic>
class Selector {
  using Sum = typename Arithmetic::Sum;
  using Target = typename Arithmetic::Target;
  using Cell = typename Arithmetic::Cell;
  using Block = KeptValues::Block;

 public:
  Selector(const WeightedValues& values, const Arithmetic& arithmetic)
      : fCounted(values.counted), fKept(values.kept), fArithmetic(arithmetic) {
    fCumulative.reserve(fCounted.size() + 1);
    fCumulative.push_back(Sum());
    for (const auto& [value, weight] : fCounted)
      fCumulative.push_back(fCumulative.back() + fArithmetic.OfTotal(weight));
  }

  void Run(std::span<Target> targets, const Sum& total) {
    Range all;
    all.weight = total;
    all.last = fCounted.size();
    if (fKept != nullptr) {
      all.count = fKept->count();
      all.Cover(fKept->lowest(), fKept->highest());
    }
    Select(all, nullptr, targets);
  }

 private:
  /// All values from `low` to `high`: those of a source, and the counted ones [first, last).
  struct Range {
    double low = kInfinity;
    double high = -kInfinity;
    std::uint64_t count = 0;  // of the source's values
    bool isPart = false;      // of its source
    std::size_t first = 0;
    std::size_t last = 0;
    Sum weight{};
    Sum below{};                  // weight of all smaller values
    std::optional<double> lower;  // the largest smaller value
    bool byKey = false;           // a linear map did not part the values

    void Cover(double from, double to) {
      low = std::min(low, from);
      high = std::max(high, to);
    }
  };

  /// A bucket in which targets lie.
  struct Wanted {
    Range range;
    std::span<Target> targets;
    TakenOut values;
    std::uint32_t bucket = 0;
    std::size_t before = 0;  // the last bucket before it that has values of the source, plus 1; 0: there is none
  };

  /// What a bucket's values are looked at for: as those of a wanted one, or for the largest below one.
  struct Role {
    Wanted* wanted = nullptr;
    double largest = -kInfinity;
  };

  /// Calls visit(value, weight) for the range's values, weight 1 for those without. Null: the kept ones are the source.
  template <class Visit>
  void ForEachValue(const Range& range, const TakenOut* taken, Visit visit) const {
    const auto visitBlock = [&](const Block& block) {
      for (std::size_t i = 0; i < block.count; ++i) {
        const double value = block.values[i];
        if (range.isPart && (value < range.low || value > range.high)) continue;
        visit(value, block.weights == nullptr ? 1.0 : block.weights[i]);
      }
    };
    ForEachBlock(taken, visitBlock);
  }

  template <class Visit>
  void ForEachBlock(const TakenOut* taken, Visit visit) const {
    if (taken != nullptr)
      visit(
          Block{taken->values.data(), taken->weights.empty() ? nullptr : taken->weights.data(), taken->values.size()});
    else if (fKept != nullptr)
      fKept->ForEachBlock(visit);
  }

  void Select(Range range, const TakenOut* taken, std::span<Target> targets);
  template <class Map>
  std::size_t FullestBucket(const Map& map, const Range& range, const TakenOut* taken) const;
  template <class Map>
  void SelectBy(const Map& map, const Range& range, const TakenOut* taken, std::span<Target> targets);
  template <class Map>
  void FillBuckets(const Map& map, const Range& range, const TakenOut* taken);
  template <class Map>
  std::vector<Wanted> FindWanted(const Map& map, const Range& range, std::span<Target> targets);
  template <class Map>
  bool TakeOut(const Map& map, const Range& range, const TakenOut* taken, std::vector<Wanted>& wanted);
  void Walk(const Range& range, const TakenOut* taken, std::span<Target> targets);

  const std::vector<std::pair<double, WeightTotal>>& fCounted;
  const KeptValues* fKept;
  const Arithmetic& fArithmetic;
  std::vector<Sum> fCumulative;  // of the counted values: weight of the first i

  // Of one histogram; used again by the next.
  std::size_t fBuckets = 0;
  std::vector<std::uint64_t> fCases;  // values without a weight, by bucket
  std::vector<Cell> fWeights;         // of those with one
};

template <class Arithmetic>
void Selector<Arithmetic>::Select(Range range, const TakenOut* taken, std::span<Target> targets) {
  if (range.first < range.last) range.Cover(fCounted[range.first].first, fCounted[range.last - 1].first);
  if (range.low == range.high) {
    for (Target& target : targets) target.around = {range.lower, range.low, range.below, range.weight};
    return;
  }
  if (range.count <= kSmallRange) {
    Walk(range, taken, targets);
    return;
  }
  const std::size_t most = fArithmetic.hasWeights() ? Arithmetic::kMostBuckets : kMostBucketsOfCases;
  fBuckets = std::clamp(std::bit_floor(static_cast<std::size_t>(range.count / 8)), kFewestBuckets, most);
  const std::uint64_t low = KeyOf(range.low);
  const int bits = static_cast<int>(std::bit_width(KeyOf(range.high) - low));
  const KeyMap byKey{low, std::max(0, bits - static_cast<int>(std::countr_zero(fBuckets)))};
  const double scale = static_cast<double>(fBuckets - 1) / (range.high - range.low);
  const LinearMap linear{range.low, scale};
  if (range.byKey || !std::isnormal(scale) ||
      2 * FullestBucket(byKey, range, taken) < FullestBucket(linear, range, taken))
    SelectBy(byKey, range, taken, targets);
  else
    SelectBy(linear, range, taken, targets);
}

/// How many values of a sample a map puts into one bucket.
template <class Arithmetic>
template <class Map>
std::size_t Selector<Arithmetic>::FullestBucket(const Map& map, const Range& range, const TakenOut* taken) const {
  static const std::vector<double> kNone;
  const std::vector<double>& values = taken != nullptr ? taken->values : fKept != nullptr ? fKept->sample() : kNone;
  const std::size_t step = std::max<std::size_t>(1, values.size() / kSample);
  std::vector<std::uint16_t> buckets(fBuckets);
  std::uint16_t fullest = 0;
  for (std::size_t i = 0; i < values.size(); i += step)
    if (values[i] >= range.low && values[i] <= range.high) fullest = std::max(fullest, ++buckets[map(values[i])]);
  return fullest;
}

template <class Arithmetic>
template <class Map>
void Selector<Arithmetic>::SelectBy(const Map& map, const Range& range, const TakenOut* taken,
                                    std::span<Target> targets) {
  FillBuckets(map, range, taken);
  std::vector<Wanted> wanted = FindWanted(map, range, targets);
  const bool tookOut = TakeOut(map, range, taken, wanted);
  for (Wanted& bucket : wanted) {
    bucket.range.isPart = !tookOut;
    bucket.range.byKey = bucket.range.count > range.count / 4;
    Select(std::move(bucket.range), tookOut ? &bucket.values : taken, bucket.targets);
    bucket.values = {};
  }
}

template <class Arithmetic>
template <class Map>
void Selector<Arithmetic>::FillBuckets(const Map& map, const Range& range, const TakenOut* taken) {
  fCases.assign(fBuckets, 0);
  if (fArithmetic.hasWeights()) fWeights.assign(fBuckets, Cell());
  std::uint64_t* const cases = fCases.data();
  Cell* const weights = fWeights.data();
  ForEachBlock(taken, [&](const Block& block) {
    const auto fill = [&](auto add) {
      if (range.isPart) {
        for (std::size_t i = 0; i < block.count; ++i)
          if (block.values[i] >= range.low && block.values[i] <= range.high) add(map(block.values[i]), i);
      } else {
        for (std::size_t i = 0; i < block.count; ++i) add(map(block.values[i]), i);
      }
    };
    if (block.weights == nullptr)
      fill([&](std::uint32_t bucket, std::size_t) { ++cases[bucket]; });
    else if (fArithmetic.isNarrow())
      fill([&](std::uint32_t bucket, std::size_t i) { fArithmetic.AddNarrowTo(weights[bucket], block.weights[i]); });
    else
      fill([&](std::uint32_t bucket, std::size_t i) { fArithmetic.AddTo(weights[bucket], block.weights[i]); });
  });
}

template <class Arithmetic>
template <class Map>
auto Selector<Arithmetic>::FindWanted(const Map& map, const Range& range, std::span<Target> targets)
    -> std::vector<Wanted> {
  std::vector<Wanted> wanted;
  Sum cumulative = range.below;
  std::size_t counted = range.first;
  std::size_t before = 0;
  for (std::uint32_t bucket = 0; bucket < fBuckets && !targets.empty(); ++bucket) {
    Sum weight = fArithmetic.OfCases(fCases[bucket]);
    if (fArithmetic.hasWeights()) weight += fArithmetic.OfCell(fWeights[bucket]);
    const bool hasValues = !(weight == Sum());
    const std::size_t firstCounted = counted;
    while (counted < range.last && map(fCounted[counted].first) == bucket) ++counted;
    weight += fCumulative[counted] - fCumulative[firstCounted];
    Sum next = cumulative + weight;
    std::size_t inBucket = 0;
    while (inBucket < targets.size() && Arithmetic::IsBelow(targets[inBucket], next)) ++inBucket;
    if (inBucket > 0) {
      Wanted& found = wanted.emplace_back();
      found.range.first = firstCounted;
      found.range.last = counted;
      found.range.weight = weight;
      found.range.below = cumulative;
      found.range.lower = firstCounted > range.first ? fCounted[firstCounted - 1].first : range.lower;
      found.targets = targets.first(inBucket);
      found.bucket = bucket;
      found.before = before;
      targets = targets.subspan(inBucket);
    }
    if (hasValues) before = bucket + std::size_t{1};
    cumulative = std::move(next);
  }
  return wanted;
}

template <class Arithmetic>
template <class Map>
bool Selector<Arithmetic>::TakeOut(const Map& map, const Range& range, const TakenOut* taken,
                                   std::vector<Wanted>& wanted) {
  // By bucket: the number of its role, 0 for the many that have none.
  std::vector<std::uint16_t> numbers(fBuckets);
  std::vector<Role> roles(1);
  const auto roleOf = [&](std::size_t bucket) -> Role& {
    if (numbers[bucket] == 0) {
      numbers[bucket] = static_cast<std::uint16_t>(roles.size());
      roles.emplace_back();
    }
    return roles[numbers[bucket]];
  };
  for (Wanted& bucket : wanted) {
    roleOf(bucket.bucket).wanted = &bucket;
    if (bucket.before > 0) roleOf(bucket.before - 1);
  }

  bool takesOut = true;
  std::size_t takenOut = 0;
  const auto take = [&](Role& role, double value, double weight) {
    role.largest = std::max(role.largest, value);
    if (role.wanted == nullptr) return;
    Wanted& bucket = *role.wanted;
    bucket.range.Cover(value, value);
    ++bucket.range.count;
    if (!takesOut) return;
    bucket.values.values.push_back(value);
    if (fArithmetic.hasWeights()) bucket.values.weights.push_back(weight);
    if (++takenOut <= kMostTakenOut || taken != nullptr) return;
    takesOut = false;
    for (Wanted& other : wanted) other.values = {};
  };
  ForEachBlock(taken, [&](const Block& block) {
    const auto look = [&](std::size_t i) {
      const std::uint16_t number = numbers[map(block.values[i])];
      if (number != 0) take(roles[number], block.values[i], block.weights == nullptr ? 1.0 : block.weights[i]);
    };
    if (range.isPart) {
      for (std::size_t i = 0; i < block.count; ++i)
        if (block.values[i] >= range.low && block.values[i] <= range.high) look(i);
    } else {
      for (std::size_t i = 0; i < block.count; ++i) look(i);
    }
  });

  for (Wanted& bucket : wanted) {
    if (bucket.before == 0) continue;
    const double largest = roles[numbers[bucket.before - 1]].largest;
    bucket.range.lower = bucket.range.lower ? std::max(*bucket.range.lower, largest) : largest;
  }
  return takesOut;
}

template <class Arithmetic>
void Selector<Arithmetic>::Walk(const Range& range, const TakenOut* taken, std::span<Target> targets) {
  std::vector<std::pair<double, double>> entries;  // value and weight
  entries.reserve(range.count);
  ForEachValue(range, taken, [&entries](double value, double weight) { entries.emplace_back(value, weight); });
  std::sort(entries.begin(), entries.end());

  std::size_t plain = 0;
  std::size_t counted = range.first;
  Sum below = range.below;
  std::optional<double> lower = range.lower;
  while (!targets.empty()) {
    double nextPlain = kInfinity;
    double nextCounted = kInfinity;
    if (plain < entries.size()) nextPlain = entries[plain].first;
    if (counted < range.last) nextCounted = fCounted[counted].first;
    const double value = std::min(nextPlain, nextCounted);
    Sum weight{};
    for (; plain < entries.size() && entries[plain].first == value; ++plain)
      weight += fArithmetic.OfWeight(entries[plain].second);
    if (nextCounted == value) {
      weight += fCumulative[counted + 1] - fCumulative[counted];
      ++counted;
    }
    Sum next = below + weight;
    for (; !targets.empty() && Arithmetic::IsBelow(targets.front(), next); targets = targets.subspan(1))
      targets.front().around = {lower, value, below, weight};
    below = std::move(next);
    lower = value;
  }
}

}  // namespace

void SelectInUnits(const WeightedValues& values, int shift, UInt128 total, std::span<UnitTarget> targets) {
  const UnitArithmetic arithmetic(values, shift);
  Selector<UnitArithmetic>(values, arithmetic).Run(targets, total);
}

void SelectExactly(const WeightedValues& values, const Dyadic& total, std::span<ExactTarget> targets) {
  const ExactArithmetic arithmetic(values);
  Selector<ExactArithmetic>(values, arithmetic).Run(targets, total);
}

}  // namespace runtime::aggregation
