// Exact arithmetic on sums and products of doubles, and its one rounding at the end.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include <gmp.h>

#include "runtime/aggregation/exact/fixedsum.h"
#include "runtime/aggregation/exact/int128.h"

namespace runtime::aggregation {

/// A number integer x 2^exponent. Every operation is exact.
class Dyadic {
 public:
  Dyadic() { mpz_init(fInteger); }
  /// REQUIRES: a finite value.
  explicit Dyadic(double value);
  Dyadic(UInt128 integer, int exponent);
  template <std::size_t Limbs, int UnitExponent>
  explicit Dyadic(const FixedSum<Limbs, UnitExponent>& sum) : Dyadic(sum.limbs().data(), Limbs, UnitExponent) {}
  ~Dyadic() { mpz_clear(fInteger); }
  Dyadic(const Dyadic& other) : fExponent(other.fExponent) { mpz_init_set(fInteger, other.fInteger); }
  Dyadic(Dyadic&& other) noexcept : Dyadic() { Swap(other); }
  Dyadic& operator=(const Dyadic& other);
  Dyadic& operator=(Dyadic&& other) noexcept;

  Dyadic& operator+=(const Dyadic& other);
  Dyadic& operator-=(const Dyadic& other);
  Dyadic& operator*=(const Dyadic& other);
  friend Dyadic operator+(Dyadic a, const Dyadic& b) { return a += b; }
  friend Dyadic operator-(Dyadic a, const Dyadic& b) { return a -= b; }
  friend Dyadic operator*(Dyadic a, const Dyadic& b) { return a *= b; }

  /// -1, 0 or 1.
  int sign() const { return mpz_sgn(fInteger); }
  friend int Compare(const Dyadic& a, const Dyadic& b) { return (a - b).sign(); }
  friend bool operator==(const Dyadic& a, const Dyadic& b) { return Compare(a, b) == 0; }
  friend bool operator<(const Dyadic& a, const Dyadic& b) { return Compare(a, b) < 0; }
  friend bool operator<=(const Dyadic& a, const Dyadic& b) { return Compare(a, b) <= 0; }
  friend bool operator>=(const Dyadic& a, const Dyadic& b) { return Compare(a, b) >= 0; }

  /// The largest integer n with n x 2^-shift <= this / divisor; 0 for a negative number, all ones where it needs more
  /// than 128 bits.
  UInt128 FloorInUnits(int shift, unsigned divisor) const;

  // Rounded once, to nearest, ties to even; an infinity where the number is beyond the largest double.
  friend double NearestDouble(const Dyadic& number);
  /// REQUIRES: divisor > 0.
  friend double NearestQuotient(const Dyadic& dividend, const Dyadic& divisor);
  /// The square root of dividend / divisor. REQUIRES: dividend >= 0, divisor > 0.
  friend double NearestRootOfQuotient(const Dyadic& dividend, const Dyadic& divisor);

 private:
  Dyadic(const std::uint64_t* limbs, std::size_t count, int unitExponent);
  void Swap(Dyadic& other) noexcept;
  /// Brings the integer to a lower exponent.
  void LowerTo(long exponent);

  mpz_t fInteger;
  long fExponent = 0;
};

double NearestDouble(const Dyadic& number);
double NearestQuotient(const Dyadic& dividend, const Dyadic& divisor);
double NearestRootOfQuotient(const Dyadic& dividend, const Dyadic& divisor);

}  // namespace runtime::aggregation
