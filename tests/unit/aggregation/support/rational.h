// Rational arithmetic and rounding for the naive reference, independent of the library's own.
#pragma once

#include <cmath>
#include <limits>

#include <gmpxx.h>

/// The nearest double, ties to even; NaN where it is beyond the largest double.
double NearestOf(const mpq_class& exact);
/// The double nearest to the square root. REQUIRES: exact >= 0.
double NearestRootOf(const mpq_class& exact);

inline bool SameNumber(double a, double b) { return a == b || (std::isnan(a) && std::isnan(b)); }
