// The statistics of scale variables with very many values: one scan for the sums of all of them, one a variable for how
// its values lie, and then only the values around the quartiles.
#include <algorithm>
#include <bit>
#include <cmath>
#include <functional>
#include <limits>
#include <map>
#include <optional>
#include <utility>

#include <fmt/format.h>

#include "runtime/data/open.h"
#include "runtime/data/source/sql/exactwhole.h"
#include "runtime/data/source/sql/manyvalues.h"
#include "runtime/data/source/sql/pieces.h"
#include "runtime/data/source/sql/sqlcell.h"

namespace runtime::data {

namespace {

constexpr std::size_t kColumnsAtOnce = 20;
constexpr int kBitsOfProducts = 31;  // a product of two pieces has 62 bits
constexpr int kBitsOfDecimals = 52;
constexpr int kBitsBelowSample = 20;  // all rows may hold smaller numbers than the first ones
constexpr std::size_t kEdgesOfSample = 500;
constexpr int kEqualSteps = 400;
constexpr std::uint64_t kStepsOfOrder = 32;
constexpr std::int64_t kFetchedAtMost = 100'000;  // cases of a stretch whose values are fetched
constexpr std::size_t kColumnsFetched = 4;        // in one question
constexpr std::int64_t kRowsOfSample = 5000;

/// Numbers of a variable from `from` to below `to`.
struct Stretch {
  double from = 0.0;
  double to = 0.0;
  std::int64_t cases = 0;
  mpz_class weight = 0;
  double lowest = std::numeric_limits<double>::infinity();
  double highest = -std::numeric_limits<double>::infinity();
};

/// One variable while it is summed up.
struct Scale {
  const ScaleRequest* request = nullptr;
  std::optional<PiecePlan> plan;
  ScaleSummary summary;
  std::int64_t cases = 0;  // valid
  bool hasBitsBelow = false;
  std::vector<mpz_class> valueSums;   // by piece; weighted: one
  std::vector<mpz_class> squareSums;  // by pair of pieces
  std::map<double, mpz_class> values;
  std::int64_t casesOfValues = 0;
  std::vector<Stretch> toFetch;  // whose values are not in `values` yet
};

class Summarizing {
 public:
  Summarizing(SqlTable& table, const GroupQueries& queries)
      : fTable(table),
        fQueries(queries),
        fDialect(table.dialect()),
        fWeighted(queries.weight().weighted()),
        fByWeight(fWeighted && queries.weight().hasFewValues) {}

  void PlanSums(Scale& scale, int bitsBelow) const {
    const ManyValuedFacts& facts = scale.request->facts;
    const int bits = fWeighted && !fByWeight ? kBitsOfDecimals : kBitsOfProducts;
    int top = std::max(1, TopBit(std::max(std::abs(facts.lowest), std::abs(facts.highest))));
    int lowest = 0;
    if (facts.allWhole) {
      top = (top + bits - 1) / bits * bits;  // the last piece's unit is 1
    } else {
      lowest = top;
      for (const double number : scale.request->column.firstNumbers)
        if (number != 0.0) lowest = std::min(lowest, LowestBit(number));
      lowest -= bitsBelow;
    }
    scale.plan = PlanPieces(top, lowest, bits);
  }

  void AskSums(const std::vector<Scale*>& scales) {
    for (Scale* scale : scales) {
      scale->cases = 0;
      scale->hasBitsBelow = false;
      scale->summary.valid = 0;
      scale->valueSums.clear();
      scale->squareSums.clear();
    }
    Levels levels;
    for (std::size_t i = 0; i < scales.size(); ++i) {
      const ScaleRequest& request = *scales[i]->request;
      levels.numbers.push_back(
          fmt::format("{} AS v{}", IsOnePiece(*scales[i]) ? ValidWhole(request) : ValidNumber(request), i));
      AddSumsOf(*scales[i], i, levels);
    }
    if (fByWeight) {
      levels.pieces.emplace_back("w");
    } else if (fWeighted) {
      levels.pieces.push_back(Decimal("w", fQueries.weight().pieces) + " AS wn");
    }
    fTable.Ask([&](const SqlPlace& place) { return LevelsOver(place, levels); },
               [&](SqlRows& rows) {
                 // Behind the sums stands the weight of the group.
                 const mpz_class weight =
                     fByWeight ? fQueries.weight().WeightOf(rows, levels.sums.size(), 1) : mpz_class(1);
                 std::size_t at = 0;
                 for (Scale* scale : scales) TakeSums(*scale, rows, at, weight);
               });
  }

  /// The sums as doubles, once they are complete.
  void FinishSums(Scale& scale) const {
    const PiecePlan& plan = *scale.plan;
    ScaleSummary& summary = scale.summary;
    const int unit = fWeighted ? fQueries.weight().unit : 0;
    if (fWeighted && !fByWeight) {
      AppendDoubles(scale.valueSums[0], unit + plan.lowestExponent(), summary.valueSums);
      AppendDoubles(scale.squareSums[0], unit + 2 * plan.lowestExponent(), summary.squareSums);
      return;
    }
    std::size_t pair = 0;
    for (int i = 0; i < plan.count; ++i) {
      AppendDoubles(scale.valueSums[static_cast<std::size_t>(i)], unit + plan.exponent(i), summary.valueSums);
      for (int j = i; j < plan.count; ++j, ++pair)
        AppendDoubles(i == j ? scale.squareSums[pair] : mpz_class(scale.squareSums[pair] * 2),
                      unit + plan.exponent(i) + plan.exponent(j), summary.squareSums);
    }
  }

  /// Finds out how the values lie, but for those of stretches that are to be fetched.
  void FindStretches(Scale& scale) {
    const double infinity = std::numeric_limits<double>::infinity();
    const ManyValuedFacts& facts = scale.request->facts;
    scale.summary.lowest = infinity;
    CutStretch(scale, EdgesOf(scale.request->column.firstNumbers, facts.lowest, facts.highest), -infinity, infinity, 0);
  }

  /// Fetches what is to be fetched. Where that is little, several variables share a question.
  void FetchValues(const std::vector<Scale*>& scales) {
    std::vector<Scale*> together;
    std::int64_t cases = 0;
    const auto fetch = [&] {
      if (!together.empty()) AskValues(together);
      together.clear();
      cases = 0;
    };
    for (Scale* scale : scales) {
      if (scale->toFetch.empty()) continue;
      std::int64_t itsCases = 0;
      for (const Stretch& stretch : scale->toFetch) itsCases += stretch.cases;
      if (cases + itsCases > kFetchedAtMost || together.size() == kColumnsFetched) fetch();
      together.push_back(scale);
      cases += itsCases;
    }
    fetch();
  }

  void FinishValues(Scale& scale) const {
    if (scale.casesOfValues != scale.cases)
      throw DataError(fmt::format(
          "{}: column {}: the engine found {} valid values in one question and {} in another; "
          "a part of the data did not answer, and no result can be trusted",
          fTable.name(), fTable.columns()[scale.request->column.column].name, scale.cases, scale.casesOfValues));
    scale.summary.areWhole = scale.request->facts.allWhole;
    for (auto& [value, weight] : scale.values) scale.summary.values.push_back({value, std::move(weight)});
  }

  std::vector<mpz_class> WeightsOfStretches(const Scale& scale, const std::vector<double>& edges) {
    const double infinity = std::numeric_limits<double>::infinity();
    std::vector<mpz_class> weights;
    for (Stretch& stretch : AskStretches(scale, edges, -infinity, infinity))
      weights.push_back(std::move(stretch.weight));
    return weights;
  }

 private:
  std::string ValidNumber(const ScaleRequest& request) const {
    return WhereValid(request, fQueries.Number(request.column.column));
  }

  /// `value`, an expression, where the variable is valid and the case has a weight; else NULL.
  std::string WhereValid(const ScaleRequest& request, const std::string& value) const {
    std::string condition = fQueries.weight().counts;
    if (!request.facts.allFinite || !request.missing.empty())
      condition += (condition.empty() ? "" : " AND ") +
                   ValidCondition(fDialect, fQueries.Number(request.column.column), request.missing);
    return condition.empty() ? value : fmt::format("CASE WHEN {} THEN {} END", condition, value);
  }

  /// Whether the variable is a column of whole numbers that are small enough to be multiplied as they are.
  bool IsOnePiece(const Scale& scale) const {
    return fTable.columns()[scale.request->column.column].type == SqlType::Whole && scale.plan->count == 1 &&
           (!fWeighted || fByWeight);
  }

  std::string ValidWhole(const ScaleRequest& request) const {
    return WhereValid(request, fDialect.CastToWhole(fTable.quoted(request.column.column)));
  }

  std::string Decimal(const std::string& number, const PiecePlan& plan) const {
    std::string decimal;
    for (int i = 0; i < plan.count; ++i) {
      const std::string piece =
          fmt::format("CAST({} AS {})", PieceExpression(fDialect, number, plan, i), fDialect.decimalType);
      decimal = i == 0 ? piece : fmt::format("({} * {} + {})", decimal, std::uint64_t{1} << plan.bits, piece);
    }
    return decimal;
  }

  /// A statement in three levels, so that each number is made once a row, and each of its pieces: the numbers, their
  /// pieces, the sums.
  struct Levels {
    std::vector<std::string> numbers;
    std::vector<std::string> pieces;
    std::vector<std::string> sums;
  };

  std::string LevelsOver(const SqlPlace& place, const Levels& levels) const {
    const char* const fence = fTable.Fence(place);
    const auto over = [&](const std::string& sums, const char* behind) {
      return SqlTable::OverArms(place, [&](const std::string& arm) {
        return fmt::format("SELECT {} FROM (SELECT {} FROM (SELECT {}{} FROM {}{}) s{}) t{}", sums,
                           fmt::join(levels.pieces, ", "), fmt::join(levels.numbers, ", "), fQueries.WeightWithin(),
                           arm, fence, fence, behind);
      });
    };
    if (!fByWeight) return over(fmt::format("{}", fmt::join(levels.sums, ", ")), "");
    // An arm gives nothing but its sums and the weight; what is made of the weight is made behind all of them.
    std::string within;
    std::string answer;
    for (std::size_t i = 0; i < levels.sums.size(); ++i) {
      within += fmt::format("{} AS s{}, ", levels.sums[i], i);
      answer += fmt::format("s{}, ", i);
    }
    for (int i = 0; i < fQueries.weight().pieces.count; ++i)
      answer += (i > 0 ? ", " : "") + PieceExpression(fDialect, "w", fQueries.weight().pieces, i);
    return fmt::format("SELECT {} FROM ({}) g", answer, over(within + "w", " GROUP BY w"));
  }

  void AddSumsOf(const Scale& scale, std::size_t i, Levels& levels) const {
    const PiecePlan& plan = *scale.plan;
    const std::string v = fmt::format("v{}", i);
    levels.pieces.push_back(v);
    levels.sums.push_back(fmt::format("COUNT({})", v));
    if (MayHaveBitsBelow(scale)) {
      levels.pieces.push_back(fmt::format("CASE WHEN {} THEN 1 ELSE 0 END AS h{}", HasBitsBelow(fDialect, v, plan), i));
      levels.sums.push_back(fmt::format("SUM(h{})", i));
    }
    if (fWeighted && !fByWeight) {
      levels.pieces.push_back(fmt::format("{} AS x{}", Decimal(v, plan), i));
      levels.sums.push_back(fmt::format("SUM(CASE WHEN {} IS NOT NULL THEN wn END)", v));
      levels.sums.push_back(fmt::format("SUM(wn * x{})", i));
      levels.sums.push_back(fmt::format("SUM(wn * x{0} * x{0})", i));
      return;
    }
    for (int piece = 0; piece < plan.count; ++piece) {
      const std::string itself = IsOnePiece(scale) ? v : PieceExpression(fDialect, v, plan, piece);
      levels.pieces.push_back(fmt::format("{} AS x{}_{}", itself, i, piece));
      levels.sums.push_back(fmt::format("SUM(x{}_{})", i, piece));
    }
    for (int one = 0; one < plan.count; ++one)
      for (int other = one; other < plan.count; ++other)
        levels.sums.push_back(fmt::format("SUM(x{0}_{1} * x{0}_{2})", i, one, other));
  }

  static bool MayHaveBitsBelow(const Scale& scale) { return !scale.request->facts.allWhole; }

  static void AddTo(std::vector<mpz_class>& sums, std::size_t i, SqlRows& rows, std::size_t column,
                    const mpz_class& weight) {
    if (sums.size() <= i) sums.resize(i + 1);
    if (const std::optional<std::string_view> text = rows.Text(column)) sums[i] += weight * WholeOfText(*text);
  }

  /// `weight`: of each case of the row's group, where the groups are those of the weight.
  void TakeSums(Scale& scale, SqlRows& rows, std::size_t& at, const mpz_class& weight) const {
    const std::int64_t cases = WholeCell(rows, at++);
    scale.cases += cases;
    if (MayHaveBitsBelow(scale)) scale.hasBitsBelow = WholeCell(rows, at++) > 0 || scale.hasBitsBelow;
    if (fWeighted && !fByWeight) {
      if (const std::optional<std::string_view> text = rows.Text(at++)) scale.summary.valid += WholeOfText(*text);
      AddTo(scale.valueSums, 0, rows, at++, weight);
      AddTo(scale.squareSums, 0, rows, at++, weight);
      return;
    }
    scale.summary.valid += weight * static_cast<long>(cases);
    const auto count = static_cast<std::size_t>(scale.plan->count);
    for (std::size_t i = 0; i < count; ++i) AddTo(scale.valueSums, i, rows, at++, weight);
    for (std::size_t i = 0; i < count * (count + 1) / 2; ++i) AddTo(scale.squareSums, i, rows, at++, weight);
  }

  /// Edges above the lowest value, of three kinds: between equal shares of a sample, which fit its shape; in equal
  /// steps, for a sample may come from one corner of the table; and in equal steps of the doubles' own order, so that
  /// a few rounds part any two numbers, however far the others lie.
  static std::vector<double> EdgesOf(const std::vector<double>& sample, double lowest, double highest) {
    std::vector<double> edges;
    const std::size_t step = std::max<std::size_t>(1, sample.size() / kEdgesOfSample);
    for (std::size_t i = step; i < sample.size(); i += step) edges.push_back(sample[i]);
    for (int i = 1; i < kEqualSteps; ++i) {
      const double share = static_cast<double>(i) / kEqualSteps;
      edges.push_back(lowest * (1.0 - share) + highest * share);
    }
    const std::int64_t from = PlaceOf(lowest);
    const std::uint64_t span = static_cast<std::uint64_t>(PlaceOf(highest)) - static_cast<std::uint64_t>(from);
    for (std::uint64_t i = 1; i <= kStepsOfOrder; ++i)
      edges.push_back(NumberAt(from + static_cast<std::int64_t>(span / kStepsOfOrder * i)));
    edges.push_back(highest);
    std::sort(edges.begin(), edges.end());
    edges.erase(std::unique(edges.begin(), edges.end()), edges.end());
    std::erase_if(edges, [&](double edge) { return !(edge > lowest && edge <= highest); });
    return edges;
  }

  /// The place of a number in the order of all doubles, and the number at a place.
  static std::int64_t PlaceOf(double number) {
    const auto bits = std::bit_cast<std::int64_t>(number + 0.0);
    return bits < 0 ? std::numeric_limits<std::int64_t>::min() - bits : bits;
  }
  static double NumberAt(std::int64_t place) {
    return std::bit_cast<double>(place < 0 ? std::numeric_limits<std::int64_t>::min() - place : place);
  }

  std::string Literal(double number) const { return fDialect.CastToDouble(NumberLiteral(number)); }

  /// The number of the stretch in which a number lies: of edges at or below it.
  std::string StretchOf(const std::string& number, const std::vector<double>& edges) const {
    return fmt::format(fmt::runtime(fDialect.edgesBelow), number, fmt::format("{}", fmt::join(edges, ",")));
  }

  std::string Between(const std::string& number, double from, double to) const {
    std::string condition = number + " IS NOT NULL";
    if (std::isfinite(from)) condition += fmt::format(" AND {} >= {}", number, Literal(from));
    if (std::isfinite(to)) condition += fmt::format(" AND {} < {}", number, Literal(to));
    return condition;
  }

  mpz_class WeightOf(SqlRows& rows, std::size_t column, std::int64_t cases) const {
    return fQueries.weight().WeightOf(rows, column, static_cast<long>(cases));
  }

  std::string WeightColumns() const {
    std::string columns;
    if (fWeighted)
      for (int i = 0; i < fQueries.weight().pieces.count; ++i) columns += fmt::format(", p{}", i);
    return columns;
  }

  /// The stretches that the edges cut out of the numbers from `from` to below `to`, empty ones too.
  std::vector<Stretch> AskStretches(const Scale& scale, const std::vector<double>& edges, double from, double to) {
    std::vector<Stretch> stretches(edges.size() + 1);
    for (std::size_t i = 0; i < stretches.size(); ++i) {
      stretches[i].from = i == 0 ? from : edges[i - 1];
      stretches[i].to = i == edges.size() ? to : edges[i];
    }
    const std::string number = ValidNumber(*scale.request);
    // The stretch is made where the number is, for the planner takes a name for one of few values, as these are, and
    // groups in parallel; of an expression it thinks that it has as many values as the column.
    const auto query = [&](const SqlPlace& place) {
      return fmt::format(
          "SELECT b, n, {}, {}{} FROM ({}) g", fDialect.CastToText("lo", SqlType::Double),
          fDialect.CastToText("hi", SqlType::Double), WeightColumns(),
          SqlTable::OverArms(place, [&](const std::string& arm) {
            return fmt::format(
                "SELECT b, {} AS n, MIN(v) AS lo, MAX(v) AS hi{} FROM (SELECT {} AS b, {} AS v{} FROM {}{}) s WHERE {} "
                "GROUP BY b",
                fDialect.countRows, fQueries.WeightSums(), StretchOf(number, edges), number, fQueries.WeightWithin(),
                arm, fTable.Fence(place), Between("v", from, to));
          }));
    };
    fTable.Ask(query, [&](SqlRows& rows) {
      Stretch& found = stretches.at(static_cast<std::size_t>(WholeCell(rows, 0)));
      const std::int64_t cases = WholeCell(rows, 1);
      found.cases += cases;
      found.lowest = std::min(found.lowest, NumberOfCell(SqlType::Double, rows.Text(2).value_or("")));
      found.highest = std::max(found.highest, NumberOfCell(SqlType::Double, rows.Text(3).value_or("")));
      found.weight += WeightOf(rows, 4, cases);
    });
    return stretches;
  }

  /// All values of the variables' stretches that are to be fetched, in one question: groups of what each variable has
  /// of its own there.
  void AskValues(const std::vector<Scale*>& scales) {
    std::string numbers;
    std::string values;
    std::string names;
    std::string answered;
    std::string any;
    for (std::size_t i = 0; i < scales.size(); ++i) {
      const char* const comma = i > 0 ? ", " : "";
      const std::string v = fmt::format("v{}", i);
      const std::string name = fmt::format("b{}", i);
      std::string within;
      for (const Stretch& stretch : scales[i]->toFetch)
        within += fmt::format("{}({})", within.empty() ? "" : " OR ", Between(v, stretch.from, stretch.to));
      numbers += fmt::format("{}{} AS {}", comma, ValidNumber(*scales[i]->request), v);
      values += fmt::format("{}CASE WHEN {} THEN {} END AS {}", comma, within, v, name);
      names += comma + name;
      answered += comma + fDialect.CastToText(name, SqlType::Double);
      any += (i > 0 ? " OR " : "") + within;
    }
    const auto query = [&](const SqlPlace& place) {
      return fmt::format(
          "SELECT {}, n{} FROM ({}) g", answered, WeightColumns(),
          SqlTable::OverArms(place, [&](const std::string& arm) {
            return fmt::format(
                "SELECT {}, {} AS n{} FROM (SELECT {}{} FROM (SELECT {}{} FROM {}{}) s WHERE {}) t GROUP BY {}", names,
                fDialect.countRows, fQueries.WeightSums(), values, fWeighted ? ", w" : "", numbers,
                fQueries.WeightWithin(), arm, fTable.Fence(place), any, names);
          }));
    };
    fTable.Ask(query, [&](SqlRows& rows) {
      const std::int64_t cases = WholeCell(rows, scales.size());
      const mpz_class weight = WeightOf(rows, scales.size() + 1, cases);
      for (std::size_t i = 0; i < scales.size(); ++i) {
        const std::optional<std::string_view> text = rows.Text(i);
        if (!text) continue;
        scales[i]->casesOfValues += cases;
        scales[i]->values[NumberOfCell(SqlType::Double, *text)] += weight;
      }
    });
  }

  /// Some values of a stretch, for finer edges.
  std::vector<double> SampleOf(const Scale& scale, double from, double to) {
    const std::string number = ValidNumber(*scale.request);
    std::vector<double> sample;
    fTable.Ask(
        [&](const SqlPlace& place) {
          return fDialect.FirstRowsOf(
              fDialect.CastToText("v", SqlType::Double),
              fmt::format("FROM (SELECT {} AS v FROM {}) s WHERE {}", number, place.relation, Between("v", from, to)),
              kRowsOfSample);
        },
        [&](SqlRows& rows) { sample.push_back(NumberOfCell(SqlType::Double, rows.Text(0).value_or(""))); });
    std::sort(sample.begin(), sample.end());
    sample.erase(std::unique(sample.begin(), sample.end()), sample.end());
    return sample;
  }

  /// Whether a quartile is found among cases of which `before` weigh less and which weigh `weight` themselves.
  bool HoldsQuartile(const Scale& scale, const mpz_class& before, const mpz_class& weight) const {
    // The quartile stands at (W + 1) p / 100 of the weight.
    const int unit = fWeighted ? fQueries.weight().unit : 0;
    mpz_class one = 1;
    one <<= static_cast<mp_bitcnt_t>(-unit);
    const mpz_class above = before + weight;
    for (int quarter = 1; quarter <= 3; ++quarter) {
      const mpz_class at = (scale.summary.valid + one) * quarter;
      if (4 * before <= at && at < 4 * above) return true;
    }
    return false;
  }

  /// Takes in the values from `from` to below `to`, `before` being the weight of all smaller ones.
  void CutStretch(Scale& scale, const std::vector<double>& edges, double from, double to, mpz_class before) {
    for (const Stretch& stretch : AskStretches(scale, edges, from, to)) {
      if (stretch.cases == 0) continue;
      scale.summary.lowest = std::min(scale.summary.lowest, stretch.lowest);
      if (stretch.lowest == stretch.highest || !HoldsQuartile(scale, before, stretch.weight)) {
        scale.values[stretch.highest + 0.0] += stretch.weight;
        scale.casesOfValues += stretch.cases;
      } else if (stretch.cases <= kFetchedAtMost) {
        scale.toFetch.push_back(stretch);
      } else {
        CutStretch(scale, EdgesOf(SampleOf(scale, stretch.from, stretch.to), stretch.lowest, stretch.highest),
                   stretch.from, stretch.to, before);
      }
      before += stretch.weight;
    }
  }

  SqlTable& fTable;
  const GroupQueries& fQueries;
  const SqlDialect& fDialect;
  bool fWeighted;
  bool fByWeight;  // the weight has few values: sums are formed for each of them, and weighted here
};

/// Sums up all that can be; what lies too deep is asked again with more pieces.
void AskAllSums(Summarizing& summarizing, std::vector<Scale>& scales) {
  std::vector<Scale*> open;
  for (Scale& scale : scales) {
    if (!scale.request->facts.hasNumbers) continue;
    summarizing.PlanSums(scale, kBitsBelowSample);
    open.push_back(&scale);
  }
  for (int bitsBelow = kBitsBelowSample; !open.empty(); bitsBelow += 2 * kBitsOfProducts) {
    std::vector<Scale*> again;
    for (std::size_t first = 0; first < open.size(); first += kColumnsAtOnce) {
      std::vector<Scale*> asked;
      for (std::size_t i = first; i < std::min(open.size(), first + kColumnsAtOnce); ++i) {
        if (bitsBelow > kBitsBelowSample) summarizing.PlanSums(*open[i], bitsBelow);
        if (open[i]->plan)
          asked.push_back(open[i]);
        else
          open[i]->summary.isKnown = false;
      }
      if (asked.empty()) continue;
      summarizing.AskSums(asked);
      for (Scale* scale : asked) {
        if (scale->hasBitsBelow)
          again.push_back(scale);
        else
          summarizing.FinishSums(*scale);
      }
    }
    open = std::move(again);
  }
}

}  // namespace

std::vector<mpz_class> CountBetween(SqlTable& table, const GroupQueries& queries, const ScaleRequest& request,
                                    const std::vector<double>& edges) {
  Scale scale;
  scale.request = &request;
  std::vector<mpz_class> weights = Summarizing(table, queries).WeightsOfStretches(scale, edges);
  // Nothing lies below the first edge; what lies at the last one belongs to the stretch before it.
  std::vector<mpz_class> between(weights.begin() + 1, weights.end() - 1);
  between.back() += weights.back();
  return between;
}

std::vector<ScaleSummary> SummarizeScales(SqlTable& table, const GroupQueries& queries,
                                          const std::vector<ScaleRequest>& requests) {
  Summarizing summarizing(table, queries);
  std::vector<Scale> scales(requests.size());
  for (std::size_t i = 0; i < requests.size(); ++i) scales[i].request = &requests[i];
  AskAllSums(summarizing, scales);
  std::vector<Scale*> known;
  for (Scale& scale : scales)
    if (scale.summary.isKnown && scale.cases > 0) known.push_back(&scale);
  for (Scale* scale : known) summarizing.FindStretches(*scale);
  summarizing.FetchValues(known);
  for (Scale* scale : known) summarizing.FinishValues(*scale);
  std::vector<ScaleSummary> summaries;
  summaries.reserve(scales.size());
  for (Scale& scale : scales) summaries.push_back(std::move(scale.summary));
  return summaries;
}

}  // namespace runtime::data
