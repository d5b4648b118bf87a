#include "runtime/data/typing/columnfacts.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace runtime::data {

namespace {

int DigitsOfWholePart(double magnitude) {
  int digits = 1;
  for (double power = 10.0; magnitude >= power; power *= 10.0) ++digits;
  return digits;
}

}  // namespace

ValueSummary Summarize(const double* values, std::size_t count) {
  double low = std::numeric_limits<double>::infinity();
  double high = -std::numeric_limits<double>::infinity();
  bool allIntegers = true;
  for (std::size_t i = 0; i < count; ++i) {
    const double value = values[i];
    low = value < low ? value : low;
    high = value > high ? value : high;
    allIntegers = allIntegers && (std::trunc(value) == value || std::isnan(value));
  }
  if (low > high) return {};
  return {true, allIntegers, low, high};
}

void ValueFacts::Add(const double* values, std::size_t count, const ValueSummary& summary) {
  if (!summary.hasValues) return;
  fMinimum = fHasValues ? std::min(fMinimum, summary.minimum) : summary.minimum;
  fMaximum = fHasValues ? std::max(fMaximum, summary.maximum) : summary.maximum;
  fHasValues = true;
  fAllIntegers = fAllIntegers && summary.allIntegers;
  if (!fewIntegers()) return;
  for (std::size_t i = 0; i < count; ++i)
    if (!std::isnan(values[i]) && values[i] != fLastSeen) Remember(values[i]);
}

void ValueFacts::Remember(double value) {
  fLastSeen = value;
  if (value >= -kSmallRange && value < kSmallRange) {
    const auto bit = static_cast<unsigned>(static_cast<int>(value) + kSmallRange);
    const std::uint64_t mask = std::uint64_t{1} << (bit % 64);
    if ((fSeenSmall[bit / 64] & mask) != 0) return;
    fSeenSmall[bit / 64] |= mask;
  } else if (std::find(fDistinct.begin(), fDistinct.end(), value) != fDistinct.end()) {
    return;
  }
  if (fDistinct.size() < kMostDistinct)
    fDistinct.push_back(value);
  else
    fManyDistinct = true;
}

std::vector<double> ValueFacts::DistinctIntegers() const {
  if (!fewIntegers()) return {};
  std::vector<double> values = fDistinct;
  std::sort(values.begin(), values.end());
  return values;
}

int ValueFacts::IntegerColumns() const {
  if (!fHasValues) return 1;
  int columns = 1;
  if (fMaximum >= 0.0) columns = DigitsOfWholePart(fMaximum);
  if (fMinimum < 0.0) columns = std::max(columns, 1 + DigitsOfWholePart(-fMinimum));
  return columns;
}

}  // namespace runtime::data
