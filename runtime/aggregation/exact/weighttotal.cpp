#include "runtime/aggregation/exact/weighttotal.h"

#include <cmath>
#include <limits>

namespace runtime::aggregation {

namespace {

constexpr std::uint64_t kExactPercentLimit = (std::uint64_t{1} << 53) / 100;

}  // namespace

Dyadic WeightTotal::Exact() const {
  Dyadic sum(InUnits(), -shift);
  if (wide != nullptr) sum += *wide;
  return sum;
}

WeightTotal& WeightTotal::operator+=(const WeightTotal& other) {
  units += other.units;
  if (other.shift > shift) {
    scaled <<= other.shift - shift;
    shift = other.shift;
  }
  scaled += other.scaled << (shift - other.shift);
  if (other.wide != nullptr) wide = wide == nullptr ? other.wide : std::make_shared<const Dyadic>(*wide + *other.wide);
  return *this;
}

double NearestDouble(const WeightTotal& total) {
  if (total.wide == nullptr) return std::ldexp(static_cast<double>(total.InUnits()), -total.shift);
  const double rounded = NearestDouble(total.Exact());
  return std::isinf(rounded) ? std::numeric_limits<double>::quiet_NaN() : rounded;
}

double Percent(const WeightTotal& part, const WeightTotal& whole) {
  if (whole.IsZero()) return 0.0;
  const bool onlyUnits = part.scaled == 0 && whole.scaled == 0 && part.wide == nullptr && whole.wide == nullptr;
  // Both operands are exact doubles, so the division rounds once.
  if (onlyUnits && part.units <= kExactPercentLimit && whole.units <= kExactPercentLimit)
    return static_cast<double>(100 * part.units) / static_cast<double>(whole.units);
  return NearestQuotient(Dyadic(100.0) * part.Exact(), whole.Exact());
}

}  // namespace runtime::aggregation
