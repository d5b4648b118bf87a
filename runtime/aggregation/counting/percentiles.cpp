#include "runtime/aggregation/counting/percentiles.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>

namespace runtime::aggregation {

namespace {

constexpr double kSystemMissing = std::numeric_limits<double>::quiet_NaN();

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

double LargestValue(const WeightedValues& values) {
  double largest = values.kept == nullptr ? -std::numeric_limits<double>::infinity() : values.kept->highest();
  if (!values.counted.empty()) largest = std::max(largest, values.counted.back().first);
  return largest;
}

}  // namespace

std::vector<double> Percentiles(const WeightedValues& values, const WeightTotal& total,
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

  if (inside.empty()) return results;

  if (total.wide != nullptr) {
    std::vector<ExactTarget> targets;
    for (const std::size_t i : inside) targets.push_back({hundredfold[i], {}});
    SelectExactly(values, exactTotal, targets);
    for (std::size_t i = 0; i < targets.size(); ++i)
      results[inside[i]] = Interpolate(targets[i].around, targets[i].hundredfold);
    return results;
  }

  std::vector<UnitTarget> targets;
  for (const std::size_t i : inside) targets.push_back({hundredfold[i].FloorInUnits(total.shift, 100), {}});
  SelectInUnits(values, total.shift, total.InUnits(), targets);
  for (std::size_t i = 0; i < targets.size(); ++i) {
    const Neighbours<UInt128>& around = targets[i].around;
    const Neighbours<Dyadic> exact{around.lower, around.upper, Dyadic(around.below, -total.shift),
                                   Dyadic(around.upperWeight, -total.shift)};
    results[inside[i]] = Interpolate(exact, hundredfold[inside[i]]);
  }
  return results;
}

}  // namespace runtime::aggregation
