#include "tests/unit/aggregation/support/rational.h"

#include <bit>
#include <cstdint>

namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();

/// 2^1024 stands for infinity, so that what lies half-way to it rounds as it should.
mpq_class ExactOf(double value) {
  if (!std::isinf(value)) return mpq_class(value);
  mpz_class power;
  mpz_ui_pow_ui(power.get_mpz_t(), 2, 1024);
  return mpq_class(power);
}

/// The nearest double to x >= 0, where isAbove(m) tells whether m > x and isAt(m) whether m == x: a search over the
/// doubles in their order, which is that of their bits.
template <class IsAbove, class IsAt>
double Search(IsAbove isAbove, IsAt isAt) {
  std::uint64_t low = 0;                                         // not above x
  std::uint64_t high = std::bit_cast<std::uint64_t>(kInfinity);  // one past the candidates
  while (low + 1 < high) {
    const std::uint64_t middle = low + (high - low) / 2;
    if (isAbove(ExactOf(std::bit_cast<double>(middle))))
      high = middle;
    else
      low = middle;
  }
  const mpq_class half = (ExactOf(std::bit_cast<double>(low)) + ExactOf(std::bit_cast<double>(low + 1))) / 2;
  const bool up = isAt(half) ? low % 2 != 0 : !isAbove(half);
  const double nearest = std::bit_cast<double>(up ? low + 1 : low);
  return std::isinf(nearest) ? std::numeric_limits<double>::quiet_NaN() : nearest;
}

}  // namespace

double NearestOf(const mpq_class& exact) {
  const mpq_class magnitude = abs(exact);
  const double nearest =
      Search([&](const mpq_class& m) { return m > magnitude; }, [&](const mpq_class& m) { return m == magnitude; });
  return exact < 0 ? -nearest : nearest;
}

double NearestRootOf(const mpq_class& exact) {
  return Search([&](const mpq_class& m) { return m * m > exact; }, [&](const mpq_class& m) { return m * m == exact; });
}
