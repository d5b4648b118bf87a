#include "runtime/data/source/sql/sqlweight.h"

#include <cmath>
#include <limits>

#include <fmt/format.h>

#include "runtime/data/open.h"
#include "runtime/data/source/sql/exactwhole.h"

namespace runtime::data {

namespace {

std::string Literal(const SqlDialect& dialect, double number) { return dialect.CastToDouble(NumberLiteral(number)); }

/// `, and number is not user-missing`, with the leading AND; empty without missing values.
std::string NotMissing(const SqlDialect& dialect, const std::string& number, const MissingRule& missing) {
  std::string condition;
  for (const double value : missing.values) condition += fmt::format(" AND {} <> {}", number, Literal(dialect, value));
  for (const MissingRule::Range& range : missing.ranges) {
    std::string outside;
    if (std::isfinite(range.low)) outside = fmt::format("{} < {}", number, Literal(dialect, range.low));
    if (std::isfinite(range.high))
      outside += fmt::format("{}{} > {}", outside.empty() ? "" : " OR ", number, Literal(dialect, range.high));
    condition += outside.empty() ? " AND 1 = 0" : " AND (" + outside + ")";
  }
  return condition;
}

}  // namespace

std::size_t SqlWeight::answerColumns() const {
  switch (form) {
    case Form::None:
      return 0;
    case Form::Pieces:
      return static_cast<std::size_t>(pieces.count);
    case Form::Pairs:
      return 1;
  }
  return 0;
}

mpz_class SqlWeight::WeightOf(SqlRows& rows, std::size_t at, long cases) const {
  if (form == Form::None) return cases;
  if (form == Form::Pairs) {
    const std::optional<std::string_view> text = rows.Text(at);
    const auto found = text ? ofText.find(std::string(*text)) : ofText.end();
    return found == ofText.end() ? mpz_class(0) : found->second * cases;
  }
  mpz_class weight = 0;
  for (int piece = 0; piece < pieces.count; ++piece) {
    weight <<= static_cast<mp_bitcnt_t>(pieces.bits);
    const std::optional<std::string_view> text = rows.Text(at + static_cast<std::size_t>(piece));
    if (text) weight += WholeOfText(*text);
  }
  return weight;
}

std::string ValidWeightCondition(const SqlDialect& dialect, const std::string& number, const MissingRule& missing) {
  return fmt::format("{0} > {1} AND {0} <= {2}{3}", number, Literal(dialect, 0.0),
                     Literal(dialect, std::numeric_limits<double>::max()), NotMissing(dialect, number, missing));
}

std::string ValidCondition(const SqlDialect& dialect, const std::string& number, const MissingRule& missing) {
  return fmt::format("abs({0}) <= {1}{2}", number, Literal(dialect, std::numeric_limits<double>::max()),
                     NotMissing(dialect, number, missing));
}

}  // namespace runtime::data
