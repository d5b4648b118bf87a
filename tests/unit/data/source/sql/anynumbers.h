// Random numbers and their exact sums, for tests.
#pragma once

#include <cmath>
#include <random>
#include <vector>

#include <gmpxx.h>

namespace runtime::data {

/// A positive double of 53 random bits or fewer, 2^lowest at least and below 2^(highest + 53).
inline double AnyPositive(std::mt19937_64& random, int lowest, int highest) {
  const int exponent = lowest + static_cast<int>(random() % static_cast<unsigned>(highest - lowest + 1));
  return std::ldexp(static_cast<double>((random() >> (11 + random() % 53)) | 1U), exponent);
}

inline mpq_class ExactSum(const std::vector<double>& numbers) {
  mpq_class sum = 0;
  for (const double number : numbers) sum += mpq_class(number);
  return sum;
}

/// whole x 2^exponent.
inline mpq_class Scaled(const mpz_class& whole, int exponent) {
  mpq_class scaled = whole;
  if (exponent >= 0)
    mpq_mul_2exp(scaled.get_mpq_t(), scaled.get_mpq_t(), static_cast<mp_bitcnt_t>(exponent));
  else
    mpq_div_2exp(scaled.get_mpq_t(), scaled.get_mpq_t(), static_cast<mp_bitcnt_t>(-exponent));
  return scaled;
}

}  // namespace runtime::data
