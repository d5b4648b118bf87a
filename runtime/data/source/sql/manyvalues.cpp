#include "runtime/data/source/sql/manyvalues.h"

#include <algorithm>
#include <cmath>
#include <numeric>
#include <optional>

#include <fmt/format.h>

#include "runtime/data/open.h"
#include "runtime/data/source/numbercolumn.h"
#include "runtime/data/source/sql/sqlcell.h"

namespace runtime::data {

namespace {

constexpr std::size_t kColumnsAtOnce = 40;
constexpr int kMostDecimals = 16;
constexpr std::int64_t kFewValues = 1000;
constexpr std::int64_t kManyValues = 100'000;

/// The condition that a column of numbers is neither infinite nor NaN.
std::string IsFinite(const SqlTable& table, const GroupQueries& queries, std::size_t column) {
  return ValidCondition(table.dialect(), queries.Number(column), {});
}

/// A column as a finite double, NULL where it is none.
std::string FiniteNumber(const SqlTable& table, const GroupQueries& queries, std::size_t column, bool allFinite) {
  std::string number = queries.Number(column);
  if (allFinite) return number;
  return fmt::format("CASE WHEN {} THEN {} END", IsFinite(table, queries, column), number);
}

/// Whether a finite number `f` may have more decimals than these. Where it says no, it has not: a quotient of a whole
/// number and a power of ten, rounded once, is the double that the decimal number reads as; and the shortest text of a
/// double has 17 digits at most, so that a number with many digits before the point has few behind it.
std::string MayHaveMoreDecimals(const SqlDialect& dialect, const std::string& f, int decimals) {
  constexpr int kDigitsOfDouble = 17;
  const auto literal = [&](double number) { return dialect.CastToDouble(NumberLiteral(number)); };
  if (decimals == 0) return fmt::format("{0} <> FLOOR({0})", f);
  // What rules out most numbers stands first.
  return fmt::format(
      "abs({0}) < {4} AND {0} <> FLOOR({0}) AND (abs({0}) * {1} >= {2} OR FLOOR(abs({0}) * {1} + {3}) / {1} <> "
      "abs({0}))",
      f, literal(std::pow(10.0, decimals)), literal(2251799813685248.0), literal(0.5),
      literal(std::pow(10.0, kDigitsOfDouble - 1 - decimals)));
}

double NumberOr(SqlRows& rows, std::size_t column, double otherwise) {
  const std::optional<std::string_view> text = rows.Text(column);
  return text ? NumberOfCell(SqlType::Double, *text) : otherwise;
}

/// Whether the engine tells the decimals of a column's numbers, zeros at their end counted.
bool HasWrittenDecimals(const SqlDialect& dialect, SqlType type) {
  return type == SqlType::Decimal && dialect.writtenDecimals != nullptr;
}

/// The facts of one question's columns. `allFinite`: the numbers are taken to be finite, and MIN and MAX tell whether
/// they are.
void AskFacts(SqlTable& table, const GroupQueries& queries, const std::vector<const ManyValuedColumn*>& columns,
              const std::vector<ManyValuedFacts*>& facts, bool allFinite) {
  const SqlDialect& dialect = table.dialect();
  std::string within;
  // Nothing but extremes would be sought by sorting, and then rows would be fetched from other servers.
  std::string list = dialect.countRows;
  for (std::size_t i = 0; i < columns.size(); ++i) {
    const ManyValuedColumn& column = *columns[i];
    const SqlType type = table.columns()[column.column].type;
    const char* const comma = i > 0 ? ", " : "";
    if (column.isText) {
      const std::string text = type == SqlType::Text || type == SqlType::FixedText
                                   ? queries.Key(column.column)
                                   : dialect.CastToText(table.quoted(column.column), type);
      within += fmt::format("{}{} AS c{}", comma, text, i);
      list += fmt::format(", MAX({})",
                          fmt::format(fmt::runtime(dialect.byteLength),
                                      fmt::format(fmt::runtime(dialect.withoutBlanks), fmt::format("c{}", i))));
      continue;
    }
    const std::string& itself = table.quoted(column.column);
    const bool isSure = allFinite || type == SqlType::Whole;
    const std::string finite =
        isSure ? itself : fmt::format("CASE WHEN {} THEN {} END", IsFinite(table, queries, column.column), itself);
    within += fmt::format("{}{} AS c{}", comma, finite, i);
    for (const char* const extreme : {"MIN", "MAX"})
      list += ", " + dialect.CastToText(fmt::format("{}(c{})", extreme, i), type);
    if (type == SqlType::Whole) continue;
    if (HasWrittenDecimals(dialect, type)) {
      list += fmt::format(", MAX({})", fmt::format(fmt::runtime(dialect.writtenDecimals), fmt::format("c{}", i)));
      if (column.decimals == 0) list += fmt::format(", SUM(CASE WHEN c{0} <> FLOOR(c{0}) THEN 1 ELSE 0 END)", i);
      continue;
    }
    within += fmt::format(", {} AS f{}", FiniteNumber(table, queries, column.column, isSure), i);
    list += fmt::format(", SUM(CASE WHEN {} THEN 1 ELSE 0 END)",
                        MayHaveMoreDecimals(dialect, fmt::format("f{}", i), std::min(column.decimals, kMostDecimals)));
  }
  const auto takeExtremes = [](SqlRows& rows, std::size_t at, ManyValuedFacts& known) {
    const std::optional<std::string_view> low = rows.Text(at);
    const std::optional<std::string_view> high = rows.Text(at + 1);
    if (!low || !high) return;
    const double lowest = NumberOfCell(SqlType::Double, *low);
    const double highest = NumberOfCell(SqlType::Double, *high);
    if (!std::isfinite(lowest) || !std::isfinite(highest)) {
      known.allFinite = false;
      return;
    }
    if (!known.hasNumbers || lowest < known.lowest) known.lowest = lowest, known.lowestText = *low;
    if (!known.hasNumbers || highest > known.highest) known.highest = highest, known.highestText = *high;
    known.hasNumbers = true;
  };
  table.Ask([&](const SqlPlace& place) { return queries.Summary(place, within, list, {}, true); },
            [&](SqlRows& rows) {
              std::size_t at = 1;
              for (std::size_t i = 0; i < columns.size(); ++i) {
                const ManyValuedColumn& column = *columns[i];
                ManyValuedFacts& known = *facts[i];
                if (column.isText) {
                  known.longestText = std::max(known.longestText, WholeCell(rows, at++));
                  continue;
                }
                takeExtremes(rows, at, known);
                at += 2;
                const SqlType type = table.columns()[column.column].type;
                if (type == SqlType::Whole) continue;
                if (HasWrittenDecimals(dialect, type)) {
                  known.decimals =
                      static_cast<int>(std::clamp<std::int64_t>(WholeCell(rows, at++), known.decimals, kMostDecimals));
                  if (column.decimals > 0 || WholeCell(rows, at++) > 0) known.allWhole = false;
                  continue;
                }
                if (WholeCell(rows, at++) > 0) known.allWhole = known.decimalsAreKnown = false;
                if (column.decimals > 0) known.allWhole = false;
              }
            });
}

/// Numbers that may have more decimals than `decimals`, at most so many of each arm.
std::vector<double> NumbersWithMoreDecimals(SqlTable& table, const GroupQueries& queries, std::size_t column,
                                            bool allFinite, int decimals, std::int64_t most) {
  const SqlDialect& dialect = table.dialect();
  std::vector<double> numbers;
  table.Ask(
      [&](const SqlPlace& place) {
        return fmt::format("SELECT {} FROM ({}) g", dialect.CastToText("f", SqlType::Double),
                           SqlTable::OverArms(place, [&](const std::string& arm) {
                             const std::string rest = fmt::format("FROM (SELECT {} AS f FROM {}) s WHERE {} GROUP BY f",
                                                                  FiniteNumber(table, queries, column, allFinite), arm,
                                                                  MayHaveMoreDecimals(dialect, "f", decimals));
                             const std::string select = dialect.FirstRowsOf("f", rest, most);
                             return place.arms.size() > 1 ? "(" + select + ")" : select;
                           }));
      },
      [&](SqlRows& rows) { numbers.push_back(NumberOr(rows, 0, 0.0)); });
  return numbers;
}

/// Fetches numbers with ever more decimals until there are none.
void FindDecimals(SqlTable& table, const GroupQueries& queries, const ManyValuedColumn& column,
                  ManyValuedFacts& facts) {
  facts.decimals = std::min(column.decimals, kMostDecimals);
  std::int64_t most = kFewValues;
  while (!facts.decimalsAreKnown && facts.decimals < kMostDecimals) {
    const std::vector<double> numbers =
        NumbersWithMoreDecimals(table, queries, column.column, facts.allFinite, facts.decimals, most);
    const int found = WithDecimalsOf(numbers.data(), numbers.size(), facts.decimals);
    if (found > facts.decimals) {
      facts.decimals = found;
      continue;
    }
    // Those that are left are so large that only their texts tell: all of them have been seen, or there are too many.
    if (static_cast<std::int64_t>(numbers.size()) < most) break;
    if (most == kManyValues) return;
    most = kManyValues;
  }
  facts.decimalsAreKnown = true;
}

}  // namespace

std::vector<ManyValuedFacts> FindFacts(SqlTable& table, const GroupQueries& queries,
                                       const std::vector<ManyValuedColumn>& columns) {
  std::vector<ManyValuedFacts> facts(columns.size());
  const auto ask = [&](const std::vector<std::size_t>& which, bool allFinite) {
    for (std::size_t first = 0; first < which.size(); first += kColumnsAtOnce) {
      std::vector<const ManyValuedColumn*> asked;
      std::vector<ManyValuedFacts*> found;
      for (std::size_t i = first; i < std::min(which.size(), first + kColumnsAtOnce); ++i) {
        asked.push_back(&columns[which[i]]);
        found.push_back(&facts[which[i]]);
      }
      AskFacts(table, queries, asked, found, allFinite);
    }
  };
  std::vector<std::size_t> all(columns.size());
  std::iota(all.begin(), all.end(), std::size_t{0});
  const bool maySuppose = table.dialect().nanIsGreatest;
  ask(all, maySuppose);
  if (maySuppose) {
    std::vector<std::size_t> notFinite;
    for (const std::size_t i : all) {
      if (facts[i].allFinite) continue;
      facts[i] = {};
      notFinite.push_back(i);
    }
    ask(notFinite, false);
    for (const std::size_t i : notFinite) facts[i].allFinite = false;
  } else {
    for (const std::size_t i : all)
      facts[i].allFinite = columns[i].isText || table.columns()[columns[i].column].type == SqlType::Whole;
  }
  for (std::size_t i = 0; i < columns.size(); ++i) {
    if (columns[i].isText) continue;
    const SqlType type = table.columns()[columns[i].column].type;
    if (type != SqlType::Whole && !HasWrittenDecimals(table.dialect(), type))
      FindDecimals(table, queries, columns[i], facts[i]);
  }
  return facts;
}

}  // namespace runtime::data
