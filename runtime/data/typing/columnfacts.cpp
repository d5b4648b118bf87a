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

void ValueFacts::Include(const ValueSummary& summary) {
  if (!summary.hasValues) return;
  fMinimum = fHasValues ? std::min(fMinimum, summary.minimum) : summary.minimum;
  fMaximum = fHasValues ? std::max(fMaximum, summary.maximum) : summary.maximum;
  fHasValues = true;
  fAllIntegers = fAllIntegers && summary.allIntegers;
}

void ValueFacts::RememberOther(double value) {
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

void ValueFacts::Join(const ValueFacts& next) {
  Include({next.fHasValues, next.fAllIntegers, next.fMinimum, next.fMaximum});
  if (!fewIntegers()) return;
  for (const double value : next.fDistinct) Remember(value);
  fManyDistinct = fManyDistinct || next.fManyDistinct;
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

void ColumnFacts::Join(const ColumnFacts& next, std::int64_t rowsBefore, std::int64_t linesBefore) {
  rows += next.rows;
  blankCells += next.blankCells;
  unreadableCells += next.unreadableCells;
  for (const UnreadableCell& cell : next.unreadable) {
    if (unreadable.size() == kCellsKept) break;
    unreadable.push_back(cell);
    unreadable.back().row += rowsBefore;
    if (cell.line > 0) unreadable.back().line += linesBefore;
  }
  roundedCells += next.roundedCells;
  if (zeroPaddedCells == 0) firstZeroPadded = next.firstZeroPadded;
  zeroPaddedCells += next.zeroPaddedCells;
  if (firstFractionRow == 0 && next.firstFractionRow > 0) {
    firstFractionRow = rowsBefore + next.firstFractionRow;
    firstFraction = next.firstFraction;
  }
  longestValue = std::max(longestValue, next.longestValue);
  decimals = std::max(decimals, next.decimals);
  values.Join(next.values);
}

}  // namespace runtime::data
