// Sums of doubles that an engine forms without rounding.
#pragma once

#include <optional>
#include <string>

#include "runtime/data/source/sql/dialect.h"

namespace runtime::data {

/// Doubles are taken apart into whole numbers of a few bits each, the high ones first. With x below 2^top, the pieces
/// of x are
///   p_0 = floor(x 2^s_0),   p_i = floor(x 2^s_i) - floor(x 2^s_(i-1)) 2^bits,   s_i = (i + 1) bits - top,
/// and x is the sum of p_i 2^-s_i when no bit of x lies below the last unit. REQUIRES: at most 53 bits where x may be
/// negative, at most 62 elsewhere. Every step is exact in floating point: multiplying by powers of two, rounding down,
/// and taking away what stands in front of the same number. So the sums of the pieces, which are sums of whole numbers,
/// give the exact sum of the doubles, in any order of adding. (The idea of Demmel and Nguyen, "Fast Reproducible
/// Floating-Point Summation", ARITH 21 (2013), with whole numbers as bins.)
struct PiecePlan {
  int bits = 0;
  int top = 0;
  int count = 0;

  /// The exponent of the unit of piece i.
  int exponent(int i) const { return top - (i + 1) * bits; }
  int lowestExponent() const { return exponent(count - 1); }
};

/// A plan for numbers whose highest and lowest bits are these; none when they lie too far apart or too far out.
std::optional<PiecePlan> PlanPieces(int top, int lowest, int bits);

/// Piece i of `number`, an expression of doubles, as a 64-bit whole number. Of a number with bits below it, the only
/// piece of a plan is not defined.
std::string PieceExpression(const SqlDialect& dialect, const std::string& number, const PiecePlan& plan, int i);

/// Whether any bit of `number` lies below the pieces.
std::string HasBitsBelow(const SqlDialect& dialect, const std::string& number, const PiecePlan& plan);

}  // namespace runtime::data
