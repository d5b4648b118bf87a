#include "runtime/data/source/sql/weightplan.h"

#include <algorithm>
#include <cmath>
#include <string_view>
#include <utility>

#include <fmt/format.h>

#include "runtime/data/source/sql/exactwhole.h"
#include "runtime/data/source/sql/pieces.h"
#include "runtime/data/source/sql/sqlcell.h"

namespace runtime::data {

namespace {

constexpr std::size_t kMostWeightGroups = 20'000;
constexpr int kBitsBelowSample = 20;  // all rows may hold smaller weights than the first ones

bool IsValidWeight(double number, const MissingRule& missing) {
  return number > 0.0 && std::isfinite(number) && !missing.holds(number);
}

/// Bits of a piece whose sum over all rows the engine holds.
int BitsOfPiece(const SqlDialect& dialect, std::int64_t rows) {
  constexpr int kBits = 62;
  constexpr int kBitsOfDouble = 52;
  return dialect.sumsAreWide ? kBits : std::min(kBitsOfDouble, kBits - TopBit(static_cast<double>(rows)));
}

/// The highest and lowest bits of weights.
struct BitRange {
  int top = 1;
  int lowest = 0;

  void Include(double number, const MissingRule& missing) {
    if (!IsValidWeight(number, missing)) return;
    top = std::max(top, TopBit(number));
    lowest = std::min(lowest, LowestBit(number));
  }
};

bool SetPieces(SqlWeight& planned, const BitRange& range, int bits) {
  constexpr int kFewestBits = 8;
  const std::optional<PiecePlan> pieces = PlanPieces(range.top, range.lowest, bits);
  if (!pieces || bits < kFewestBits) return false;
  planned.pieces = *pieces;
  planned.unit = pieces->lowestExponent();
  return true;
}

SqlWeight InPieces(const SqlDialect& dialect, const GroupQueries& queries, const WeightColumn& weight) {
  SqlWeight planned;
  planned.form = SqlWeight::Form::Pieces;
  planned.column = weight.column;
  const std::string number = queries.Number(weight.column);
  planned.counts = ValidWeightCondition(dialect, number, weight.missing);
  planned.number =
      fmt::format("CASE WHEN {} THEN {} ELSE {} END", planned.counts, number, dialect.CastToDouble(NumberLiteral(0.0)));
  return planned;
}

/// How many rows have a weight with bits below the pieces.
std::int64_t RowsWithBitsBelow(SqlTable& table, const GroupQueries& queries, const SqlWeight& planned) {
  std::int64_t found = 0;
  table.Ask(
      [&](const SqlPlace& place) {
        return queries.Summary(
            place, planned.number + " AS w",
            fmt::format("SUM(CASE WHEN {} THEN 1 ELSE 0 END)", HasBitsBelow(table.dialect(), "w", planned.pieces)));
      },
      [&](SqlRows& answer) { found += WholeCell(answer, 0); });
  return found;
}

}  // namespace

mpz_class WeightOfNumber(double number, const MissingRule& missing, int unit) {
  return IsValidWeight(number, missing) ? MultipleOf(number, unit) : mpz_class(0);
}

mpz_class WeightOfCell(const std::optional<std::string>& cell, SqlType type, const SqlWeight& weight,
                       const MissingRule& missing) {
  if (!cell) return 0;
  if (weight.form == SqlWeight::Form::Pairs) {
    const auto found = weight.ofText.find(*cell);
    return found == weight.ofText.end() ? mpz_class(0) : found->second;
  }
  return WeightOfNumber(NumberOfCell(type, *cell), missing, weight.unit);
}

std::optional<SqlWeight> PlanKnownWeight(const SqlDialect& dialect, const GroupQueries& queries,
                                         const WeightColumn& weight, SqlType type, const RawGroups& groups,
                                         std::int64_t rows) {
  SqlWeight planned = InPieces(dialect, queries, weight);
  planned.hasFewValues = groups.size() <= kMostWeightGroups;
  BitRange range;
  bool allCount = true;
  for (std::size_t i = 0; i < groups.size(); ++i) {
    const double number = groups.isNull(i) ? NAN : NumberOfCell(type, groups.text(i));
    range.Include(number, weight.missing);
    allCount = allCount && IsValidWeight(number, weight.missing);
  }
  if (allCount) {
    planned.counts.clear();
    planned.number = queries.Number(weight.column);
  }
  if (!SetPieces(planned, range, BitsOfPiece(dialect, rows))) return std::nullopt;
  return planned;
}

std::optional<SqlWeight> PlanManyValuedWeight(SqlTable& table, const GroupQueries& queries, const WeightColumn& weight,
                                              const std::vector<std::optional<std::string>>& cells, std::int64_t rows) {
  const SqlDialect& dialect = table.dialect();
  SqlWeight planned = InPieces(dialect, queries, weight);
  BitRange range;
  for (const std::optional<std::string>& cell : cells)
    if (cell) range.Include(NumberOfCell(table.columns()[weight.column].type, *cell), weight.missing);
  table.Ask(
      [&](const SqlPlace& place) {
        return fmt::format(
            "SELECT {} FROM ({}) g", dialect.CastToText("hi", SqlType::Double),
            queries.Summary(place, planned.number + " AS w", fmt::format("MAX(w) AS hi, {} AS n", dialect.countRows)));
      },
      [&](SqlRows& answer) {
        if (const auto text = answer.Text(0))
          range.top = std::max(range.top, TopBit(NumberOfCell(SqlType::Double, *text)));
      });
  const int bits = BitsOfPiece(dialect, rows);
  range.lowest -= kBitsBelowSample;
  for (;; range.lowest -= 2 * bits) {
    if (!SetPieces(planned, range, bits)) return std::nullopt;
    if (RowsWithBitsBelow(table, queries, planned) == 0) return planned;
  }
}

SqlWeight PlanPairs(const WeightColumn& weight, const RawGroups& groups, const std::vector<double>& numbers) {
  SqlWeight planned;
  planned.form = SqlWeight::Form::Pairs;
  planned.column = weight.column;
  for (const double number : numbers)
    if (IsValidWeight(number, weight.missing)) planned.unit = std::min(planned.unit, LowestBit(number));
  for (std::size_t i = 0; i < groups.size(); ++i)
    if (IsValidWeight(numbers[i], weight.missing))
      planned.ofText.emplace(groups.text(i), MultipleOf(numbers[i], planned.unit));
  return planned;
}

RawGroups WithOwnWeights(const RawGroups& groups, const std::vector<double>& numbers, const SqlWeight& planned,
                         const MissingRule& missing) {
  RawGroups weighed(true);
  for (std::size_t i = 0; i < groups.size(); ++i) {
    const std::size_t group =
        weighed.Enter(groups.isNull(i) ? std::nullopt : std::optional<std::string_view>(groups.text(i)));
    weighed.AddCases(group, groups.cases(i));
    weighed.AddWeight(group, WeightOfNumber(numbers[i], missing, planned.unit) * static_cast<long>(groups.cases(i)));
  }
  return weighed;
}

}  // namespace runtime::data
