#include "runtime/data/source/sql/pieces.h"

#include <algorithm>
#include <cmath>

#include <fmt/format.h>

namespace runtime::data {

namespace {

/// number 2^power, a double.
std::string Scaled(const SqlDialect& dialect, const std::string& number, int power) {
  return fmt::format("{} * {}", number, dialect.CastToDouble(NumberLiteral(std::ldexp(1.0, power))));
}

/// floor(number 2^power), a double.
std::string Cut(const SqlDialect& dialect, const std::string& number, int power) {
  return fmt::format("FLOOR({})", Scaled(dialect, number, power));
}

}  // namespace

std::optional<PiecePlan> PlanPieces(int top, int lowest, int bits) {
  constexpr int kFarthest = 900;  // powers of two and products with them stay normal numbers
  constexpr int kMostPieces = 6;
  const int span = std::max(1, top - lowest);
  const PiecePlan plan{bits, top, (span + bits - 1) / bits};
  if (plan.count > kMostPieces || top > kFarthest || plan.lowestExponent() < -kFarthest) return std::nullopt;
  return plan;
}

std::string PieceExpression(const SqlDialect& dialect, const std::string& number, const PiecePlan& plan, int i) {
  if (plan.count == 1) return dialect.CastToWhole(Scaled(dialect, number, -plan.exponent(i)));
  const std::string cut = Cut(dialect, number, -plan.exponent(i));
  if (i == 0) return dialect.CastToWhole(cut);
  return dialect.CastToWhole(fmt::format("{} - {} * {}", cut, Cut(dialect, number, -plan.exponent(i - 1)),
                                         dialect.CastToDouble(NumberLiteral(std::ldexp(1.0, plan.bits)))));
}

std::string HasBitsBelow(const SqlDialect& dialect, const std::string& number, const PiecePlan& plan) {
  const int power = -plan.lowestExponent();
  return fmt::format("{} <> {}", Cut(dialect, number, power), Scaled(dialect, number, power));
}

}  // namespace runtime::data
