#include "runtime/data/source/sql/exactwhole.h"

#include <bit>
#include <cmath>
#include <cstdint>
#include <stdexcept>
#include <string>

namespace runtime::data {

namespace {

constexpr int kMantissaBits = 53;

/// The whole number that the double's mantissa is, with its sign; `exponent` becomes that of its unit.
std::int64_t Mantissa(double value, int& exponent) {
  const double fraction = std::frexp(value, &exponent);
  exponent -= kMantissaBits;
  return static_cast<std::int64_t>(std::ldexp(fraction, kMantissaBits));
}

}  // namespace

mpz_class WholeOfText(std::string_view text) {
  if (const std::size_t point = text.find('.'); point != std::string_view::npos) {
    if (text.find_first_not_of('0', point + 1) != std::string_view::npos) throw std::invalid_argument("a fraction");
    text = text.substr(0, point);
  }
  // The library passes over blanks and knows no plus sign.
  const bool hasSign = !text.empty() && (text.front() == '+' || text.front() == '-');
  const std::string_view digits = text.substr(hasSign ? 1 : 0);
  if (digits.empty() || digits.find_first_not_of("0123456789") != std::string_view::npos)
    throw std::invalid_argument("no whole number");
  const mpz_class whole(std::string(digits), 10);
  return text.front() == '-' ? mpz_class(-whole) : whole;
}

mpz_class MultipleOf(double value, int exponent) {
  int itsExponent = 0;
  mpz_class whole = static_cast<long>(Mantissa(value, itsExponent));
  if (itsExponent >= exponent)
    mpz_mul_2exp(whole.get_mpz_t(), whole.get_mpz_t(), static_cast<mp_bitcnt_t>(itsExponent - exponent));
  else
    mpz_tdiv_q_2exp(whole.get_mpz_t(), whole.get_mpz_t(), static_cast<mp_bitcnt_t>(exponent - itsExponent));
  return whole;
}

void AppendDoubles(const mpz_class& whole, int exponent, std::vector<double>& doubles) {
  mpz_class rest = whole;
  while (rest != 0) {
    const auto bits = static_cast<int>(mpz_sizeinbase(rest.get_mpz_t(), 2));
    const int dropped = bits > kMantissaBits ? bits - kMantissaBits : 0;
    mpz_class front;
    mpz_tdiv_q_2exp(front.get_mpz_t(), rest.get_mpz_t(), static_cast<mp_bitcnt_t>(dropped));
    doubles.push_back(std::ldexp(front.get_d(), exponent + dropped));
    mpz_tdiv_r_2exp(rest.get_mpz_t(), rest.get_mpz_t(), static_cast<mp_bitcnt_t>(dropped));
  }
}

double NearestDouble(const mpz_class& whole, int exponent) {
  std::vector<double> parts;
  AppendDoubles(whole, exponent, parts);
  if (parts.empty()) return 0.0;
  if (parts.size() == 1) return parts[0];
  // One addition rounds once. What lies behind the second part matters only where that is a half to the last bit.
  int unused = 0;
  const bool isTie = parts.size() > 2 && std::abs(std::frexp(parts[1], &unused)) == 0.5;
  return parts[0] + (isTie ? std::nextafter(parts[1], 2.0 * parts[1]) : parts[1]);
}

int LowestBit(double value) {
  int exponent = 0;
  const std::int64_t mantissa = Mantissa(value, exponent);
  return exponent + std::countr_zero(static_cast<std::uint64_t>(mantissa));
}

int TopBit(double value) {
  int exponent = 0;
  std::frexp(value, &exponent);
  return exponent;
}

}  // namespace runtime::data
