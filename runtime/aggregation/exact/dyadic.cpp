#include "runtime/aggregation/exact/dyadic.h"

#include <cmath>
#include <limits>
#include <utility>
#include <vector>

#include "runtime/aggregation/exact/binary64.h"

namespace runtime::aggregation {

namespace {

constexpr long kDoubleBits = 53;

void SetFromLimbs(mpz_t integer, const std::uint64_t* limbs, std::size_t count) {
  mpz_import(integer, count, -1, sizeof(std::uint64_t), 0, 0, limbs);
}

long BitLength(const mpz_t integer) { return static_cast<long>(mpz_sizeinbase(integer, 2)); }

/// (integer + something) x 2^exponent, rounded to nearest, ties to even; something is in (0, 1) when `inexact`, else 0.
/// REQUIRES: integer >= 0, and of at least 55 bits when inexact.
double Round(const mpz_t integer, long exponent, bool inexact) {
  if (mpz_sgn(integer) == 0) return 0.0;
  const long length = BitLength(integer);
  // The last bit that the double can hold: 53 bits, fewer in the subnormal range.
  const long lastBit = std::max(exponent + length - kDoubleBits, static_cast<long>(kSmallestExponent));
  if (exponent + length > 1025) return std::numeric_limits<double>::infinity();
  const long dropped = lastBit - exponent;
  if (dropped <= 0) return std::ldexp(mpz_get_d(integer), static_cast<int>(exponent));

  mpz_t kept;
  mpz_init(kept);
  mpz_tdiv_q_2exp(kept, integer, static_cast<mp_bitcnt_t>(dropped));
  const bool half = mpz_tstbit(integer, static_cast<mp_bitcnt_t>(dropped - 1)) != 0;
  const bool beyondHalf = inexact || mpz_scan1(integer, 0) < static_cast<mp_bitcnt_t>(dropped - 1);
  if (half && (beyondHalf || mpz_tstbit(kept, 0) != 0)) mpz_add_ui(kept, kept, 1);
  const double significand = mpz_get_d(kept);
  mpz_clear(kept);
  return std::ldexp(significand, static_cast<int>(lastBit));
}

}  // namespace

Dyadic::Dyadic(double value) {
  const Binary64 parts = TakeApart(value);
  mpz_init(fInteger);
  SetFromLimbs(fInteger, &parts.significand, 1);
  if (parts.negative) mpz_neg(fInteger, fInteger);
  fExponent = parts.exponent;
}

Dyadic::Dyadic(UInt128 integer, int exponent) : fExponent(exponent) {
  const std::array<std::uint64_t, 2> limbs{LowHalf(integer), HighHalf(integer)};
  mpz_init(fInteger);
  SetFromLimbs(fInteger, limbs.data(), limbs.size());
}

Dyadic::Dyadic(const std::uint64_t* limbs, std::size_t count, int unitExponent) : fExponent(unitExponent) {
  mpz_init(fInteger);
  const bool negative = limbs[count - 1] >> 63 != 0;
  // A wide sum mostly holds numbers of few limbs: what only repeats the sign above and is zero below is left out.
  const std::uint64_t sign = negative ? ~std::uint64_t{0} : 0;
  while (count > 0 && limbs[count - 1] == sign) --count;
  for (; count > 0 && limbs[0] == 0; ++limbs, --count) fExponent += 64;
  if (!negative) {
    SetFromLimbs(fInteger, limbs, count);
    return;
  }
  // -x = ~x + 1 in two's complement.
  std::vector<std::uint64_t> complement(limbs, limbs + count);
  for (std::uint64_t& limb : complement) limb = ~limb;
  SetFromLimbs(fInteger, complement.data(), count);
  mpz_add_ui(fInteger, fInteger, 1);
  mpz_neg(fInteger, fInteger);
}

Dyadic& Dyadic::operator=(const Dyadic& other) {
  if (this == &other) return *this;
  mpz_set(fInteger, other.fInteger);
  fExponent = other.fExponent;
  return *this;
}

Dyadic& Dyadic::operator=(Dyadic&& other) noexcept {
  Swap(other);
  return *this;
}

void Dyadic::Swap(Dyadic& other) noexcept {
  mpz_swap(fInteger, other.fInteger);
  std::swap(fExponent, other.fExponent);
}

void Dyadic::LowerTo(long exponent) {
  mpz_mul_2exp(fInteger, fInteger, static_cast<mp_bitcnt_t>(fExponent - exponent));
  fExponent = exponent;
}

Dyadic& Dyadic::operator+=(const Dyadic& other) {
  if (fExponent > other.fExponent) LowerTo(other.fExponent);
  if (fExponent == other.fExponent) {
    mpz_add(fInteger, fInteger, other.fInteger);
    return *this;
  }
  Dyadic lowered(other);
  lowered.LowerTo(fExponent);
  mpz_add(fInteger, fInteger, lowered.fInteger);
  return *this;
}

Dyadic& Dyadic::operator-=(const Dyadic& other) {
  if (fExponent > other.fExponent) LowerTo(other.fExponent);
  if (fExponent == other.fExponent) {
    mpz_sub(fInteger, fInteger, other.fInteger);
    return *this;
  }
  Dyadic lowered(other);
  lowered.LowerTo(fExponent);
  mpz_sub(fInteger, fInteger, lowered.fInteger);
  return *this;
}

Dyadic& Dyadic::operator*=(const Dyadic& other) {
  mpz_mul(fInteger, fInteger, other.fInteger);
  fExponent += other.fExponent;
  return *this;
}

UInt128 Dyadic::FloorInUnits(int shift, unsigned divisor) const {
  if (sign() <= 0) return 0;
  mpz_t units;
  mpz_init(units);
  const long exponent = fExponent + shift;
  // floor(floor(x) / divisor) = floor(x / divisor) for a whole divisor.
  if (exponent >= 0)
    mpz_mul_2exp(units, fInteger, static_cast<mp_bitcnt_t>(exponent));
  else
    mpz_fdiv_q_2exp(units, fInteger, static_cast<mp_bitcnt_t>(-exponent));
  mpz_fdiv_q_ui(units, units, divisor);
  UInt128 result = ~UInt128{0};
  if (mpz_sizeinbase(units, 2) <= 128) {
    std::array<std::uint64_t, 2> limbs{};
    mpz_export(limbs.data(), nullptr, -1, sizeof(std::uint64_t), 0, 0, units);
    result = (UInt128{limbs[1]} << 64) | limbs[0];
  }
  mpz_clear(units);
  return result;
}

double NearestDouble(const Dyadic& number) {
  if (number.sign() == 0) return 0.0;
  Dyadic magnitude(number);
  mpz_abs(magnitude.fInteger, magnitude.fInteger);
  const double rounded = Round(magnitude.fInteger, magnitude.fExponent, false);
  return number.sign() < 0 ? -rounded : rounded;
}

double NearestQuotient(const Dyadic& dividend, const Dyadic& divisor) {
  if (dividend.sign() == 0) return 0.0;
  // Scaled so that the integer quotient has at least 64 bits; what the division leaves over only matters as "some".
  const long scale = std::max(0L, 65 + BitLength(divisor.fInteger) - BitLength(dividend.fInteger));
  Dyadic quotient(dividend);
  mpz_abs(quotient.fInteger, quotient.fInteger);
  mpz_mul_2exp(quotient.fInteger, quotient.fInteger, static_cast<mp_bitcnt_t>(scale));
  Dyadic remainder;
  mpz_tdiv_qr(quotient.fInteger, remainder.fInteger, quotient.fInteger, divisor.fInteger);
  const double rounded =
      Round(quotient.fInteger, dividend.fExponent - divisor.fExponent - scale, remainder.sign() != 0);
  return dividend.sign() < 0 ? -rounded : rounded;
}

double NearestRootOfQuotient(const Dyadic& dividend, const Dyadic& divisor) {
  if (dividend.sign() == 0) return 0.0;
  // The quotient gets at least 128 bits and an even exponent: its root then has at least 64 bits. The root of the
  // quotient's integer part is the integer part of the quotient's root.
  long scale = std::max(0L, 129 + BitLength(divisor.fInteger) - BitLength(dividend.fInteger));
  long exponent = dividend.fExponent - divisor.fExponent - scale;
  if (exponent % 2 != 0) {
    ++scale;
    --exponent;
  }
  Dyadic quotient(dividend);
  mpz_mul_2exp(quotient.fInteger, quotient.fInteger, static_cast<mp_bitcnt_t>(scale));
  Dyadic remainder;
  mpz_tdiv_qr(quotient.fInteger, remainder.fInteger, quotient.fInteger, divisor.fInteger);
  bool inexact = remainder.sign() != 0;
  Dyadic root;
  mpz_sqrtrem(root.fInteger, remainder.fInteger, quotient.fInteger);
  inexact = inexact || remainder.sign() != 0;
  return Round(root.fInteger, exponent / 2, inexact);
}

}  // namespace runtime::aggregation
