#include "runtime/data/source/sql/sqlgroups.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <map>
#include <utility>

#include <fmt/format.h>

#include "runtime/data/source/numbercolumn.h"
#include "runtime/data/source/sql/exactwhole.h"
#include "runtime/data/source/sql/groupedrows.h"
#include "runtime/data/source/sql/sqlcell.h"
#include "runtime/data/source/sql/typegroups.h"
#include "runtime/data/typing/quotedcell.h"
#include "runtime/data/typing/readcolumn.h"

namespace runtime::data {

namespace {

constexpr std::int64_t kMostFirstRows = 5000;
constexpr std::int64_t kFewestFirstRows = 200;
constexpr std::int64_t kFirstCells = 500'000;  // of all columns
// Of a column that is fetched as it is: so many, or one a number of rows, which is little beside fetching the rows.
constexpr std::int64_t kMostGroups = 50'000;
constexpr std::int64_t kRowsOfGroup = 30;
constexpr std::int64_t kMostGroupsOfAny = 500'000;
constexpr double kMostJointGroups = 4000.0;
constexpr std::size_t kColumnsTogether = 30;  // grouped in one scan

bool IsText(SqlType type) { return type == SqlType::Text || type == SqlType::FixedText; }
bool IsExactNumber(SqlType type) {
  return type == SqlType::Whole || type == SqlType::Decimal || type == SqlType::Double;
}

std::optional<std::string_view> View(const std::optional<std::string>& cell) {
  return cell ? std::optional<std::string_view>(*cell) : std::nullopt;
}

/// How many values a column has when so many of its first rows are different and values are equally likely: of n rows
/// drawn from D values about n^2 / 2D meet one drawn before.
double LikelyValues(std::size_t distinct, std::size_t rows) {
  if (distinct >= rows) return std::numeric_limits<double>::infinity();
  const auto drawn = static_cast<double>(rows);
  return drawn * drawn / (2.0 * static_cast<double>(rows - distinct));
}

bool IsZero(std::string_view text) { return text.find_first_not_of("-0.") == std::string_view::npos; }

/// The group of a cell. Of 0 and -0, which are equal, the database writes now one and now the other.
std::optional<std::size_t> FindGroup(const RawGroups& groups, std::optional<std::string_view> text) {
  const std::optional<std::size_t> found = groups.Find(text);
  if (found || !text) return found;
  for (const std::string_view zero : {"0", "-0", "0.0", "-0.0"})
    if (const std::optional<std::size_t> other = groups.Find(zero); other && IsZero(*text)) return other;
  return std::nullopt;
}

}  // namespace

SqlGroups::SqlGroups(std::shared_ptr<SqlTable> table, std::vector<ColumnPlan> plans,
                     machine::ProgressListener onProgress)
    : fTable(std::move(table)),
      fPlans(std::move(plans)),
      fOnProgress(std::move(onProgress)),
      fQueries(*fTable),
      fFetch(*fTable, fQueries) {}

SqlGroups::~SqlGroups() = default;

void SqlGroups::Tell(std::size_t columnsDone) const {
  if (!fOnProgress || fColumns.empty()) return;
  const double share = static_cast<double>(columnsDone) / static_cast<double>(fColumns.size());
  fOnProgress({static_cast<std::int64_t>(share * static_cast<double>(fRows)), share});
}

void SqlGroups::CountRows() {
  fRows = 0;
  fAllWeight = 0;
  fTable->Ask([&](const SqlPlace& place) { return fQueries.Rows(place); },
              [&](SqlRows& rows) {
                const std::int64_t cases = WholeCell(rows, 0);
                fRows += cases;
                if (fQueries.weight().form != SqlWeight::Form::Pairs)
                  fAllWeight += fQueries.weight().WeightOf(rows, 1, static_cast<long>(cases));
              });
  fFetch.SetRows(fRows);
}

void SqlGroups::ReadFirstRows() {
  fHasFirstRows = true;
  FindMergingCollations();
  const auto columns = static_cast<std::int64_t>(fColumns.size());
  const std::int64_t rows = std::clamp(kFirstCells / columns, kFewestFirstRows, kMostFirstRows);
  if (fRows <= rows) return;  // few rows need no looking ahead
  fTable->AskFirst(fQueries.FirstRows(fTable->first(), rows), [&](SqlRows& answer) {
    Cells& cells = fFirstRows.emplace_back(fColumns.size());
    for (std::size_t column = 0; column < cells.size(); ++column)
      if (const std::optional<std::string_view> text = answer.Text(column)) cells[column] = std::string(*text);
  });
}

/// A collation that takes different texts for equal would merge their groups. Where the database knows such a one at
/// all, texts are compared byte by byte.
void SqlGroups::FindMergingCollations() {
  const char* const question = fTable->dialect().mergingCollations;
  if (question == nullptr) return;
  SqlConnection& connection = *fTable->first().connection;
  std::int64_t collations = 0;
  connection.Keep();
  try {
    fTable->AskFirst(question, [&](SqlRows& rows) { collations = WholeCell(rows, 0); });
  } catch (const DataError&) {
    connection.BackTo();  // an older version, which has none
  }
  for (std::size_t column = 0; collations > 0 && column < fColumns.size(); ++column)
    if (IsText(itself(column).type)) fQueries.CompareBytes(column);
}

bool SqlGroups::IsNumeric(std::size_t column) const {
  const FieldType declared = fPlans[column].dialect.type;
  const FieldType type = fColumns[column].type;
  // Numbers with decimals that are declared whole are read one by one, for some of them are not.
  const bool isDeclaredWhole = type == FieldType::Number && declared == FieldType::Integer;
  return type != FieldType::String && !isDeclaredWhole &&
         (declared == FieldType::Inferred || NumbersServe(type, declared));
}

std::int64_t SqlGroups::MostGroups() const { return std::clamp(fRows / kRowsOfGroup, kMostGroups, kMostGroupsOfAny); }

bool SqlGroups::MayStayUngrouped(std::size_t column) const {
  const FieldType declared = fPlans[column].dialect.type;
  if (IsText(itself(column).type)) return declared == FieldType::Inferred || declared == FieldType::String;
  return IsExactNumber(itself(column).type) && IsNumeric(column) && CanSummarize(column);
}

bool SqlGroups::CanSummarize(std::size_t column) const {
  const SqlDialect& dialect = fTable->dialect();
  return dialect.decimalType != nullptr && dialect.edgesBelow != nullptr && dialect.sumsAreWide &&
         IsExactNumber(itself(column).type) && fQueries.weight().form != SqlWeight::Form::Pairs;
}

void SqlGroups::Read(const std::optional<WeightColumn>& weight) {
  fColumns.clear();
  fColumns.resize(fTable->columns().size());
  fTyped.clear();
  fTyped.resize(fColumns.size());
  for (std::size_t column = 0; column < fColumns.size(); ++column)
    fColumns[column].type = FieldTypeOf(itself(column).type);
  fQueries.SetWeight({});
  CountRows();
  if (!fHasFirstRows) ReadFirstRows();
  if (weight) {
    PlanWeight(*weight);
    if (!fColumns[weight->column].isComplete) CountRows();  // for the weight of all
  }
  GroupFirstRows();

  std::size_t done = 0;
  for (const std::vector<std::size_t>& columns : Scans(ChooseColumnsToGroup())) {
    GroupTogether(columns);
    Tell(done += columns.size());
  }
  std::vector<std::size_t> ungrouped;
  for (std::size_t column = 0; column < fColumns.size(); ++column)
    if (!fColumns[column].isComplete) ungrouped.push_back(column);
  DescribeUngrouped(ungrouped);
  for (std::size_t column = 0; column < fColumns.size(); ++column)
    if (fColumns[column].isComplete) Type(column);
  Tell(fColumns.size());
}

// The weight.

void SqlGroups::PlanWeight(const WeightColumn& weight) {
  fMissingOfWeight = weight.missing;
  const std::size_t column = weight.column;
  const SqlType type = itself(column).type;
  const bool isNumeric = IsExactNumber(type) && IsNumeric(column);
  std::optional<SqlWeight> planned;
  if (isNumeric && Group(column, MostGroups())) {
    planned = PlanKnownWeight(fTable->dialect(), fQueries, weight, type, fColumns[column].groups, fRows);
  } else if (isNumeric) {
    Cells cells;
    for (const Cells& row : fFirstRows) cells.push_back(row[column]);
    planned = PlanManyValuedWeight(*fTable, fQueries, weight, cells, fRows);
    if (planned) return fQueries.SetWeight(std::move(*planned));
  }
  Complete(column);
  Type(column);
  const std::vector<double> numbers = NumbersOf(fTyped[column].column);
  fQueries.SetWeight(planned ? std::move(*planned) : PlanPairs(weight, fColumns[column].groups, numbers));
  KeepOwnGroupsOfWeight(weight, numbers);
}

/// The weight's own column needs no counting with weights, for its groups say how heavy they are; nor do all rows.
void SqlGroups::KeepOwnGroupsOfWeight(const WeightColumn& weight, const std::vector<double>& numbers) {
  RawGroups& groups = fColumns[weight.column].groups;
  groups = WithOwnWeights(groups, numbers, fQueries.weight(), weight.missing);
  fAllWeight = 0;
  for (std::size_t i = 0; i < groups.size(); ++i) fAllWeight += groups.weight(i);
}

// The groups.

void SqlGroups::GroupFirstRows() {
  const bool weighted = fQueries.weight().weighted();
  for (Column& column : fColumns) {
    column.first = RawGroups(weighted);
    if (!column.isComplete) column.groups = RawGroups(weighted);
  }
  for (const Cells& cells : fFirstRows) {
    const SqlWeight& its = fQueries.weight();
    const mpz_class weight =
        weighted ? WeightOfCell(cells[its.column], itself(its.column).type, its, fMissingOfWeight) : mpz_class(1);
    for (std::size_t column = 0; column < fColumns.size(); ++column) {
      RawGroups& groups = fColumns[column].first;
      const std::size_t group = groups.Enter(View(cells[column]));
      groups.AddCases(group, 1);
      if (weighted) groups.AddWeight(group, weight);
    }
  }
}

/// Up to how many values that its first rows make likely a column is worth grouping. Of texts no more than tables are
/// made of; who wants longer ones asks again. Whole numbers are quickly summed up, and have rather more values than
/// likely ones; summing up others takes longer than fetching many groups.
double SqlGroups::MostLikelyValues(std::size_t column) const {
  constexpr double kMostTexts = 1000.0;
  constexpr double kOfWhole = 0.3;
  constexpr double kOfOthers = 2.0;
  const SqlType type = itself(column).type;
  if (IsText(type)) return kMostTexts;
  return (type == SqlType::Whole ? kOfWhole : kOfOthers) * static_cast<double>(MostGroups());
}

std::vector<std::size_t> SqlGroups::ChooseColumnsToGroup() {
  std::vector<std::size_t> together;
  const std::size_t sampled = fFirstRows.size();
  for (std::size_t column = 0; column < fColumns.size(); ++column) {
    if (fColumns[column].isComplete) continue;
    const std::size_t distinct = fColumns[column].first.size();
    if (sampled == 0 || distinct * 5 <= sampled) {
      together.push_back(column);
      continue;
    }
    if (!MayStayUngrouped(column)) {
      Complete(column);
      continue;
    }
    // NULL, which may fill most of a column, is no value met again.
    const std::optional<std::size_t> null = fColumns[column].first.Find(std::nullopt);
    const std::size_t nulls = null ? static_cast<std::size_t>(fColumns[column].first.cases(*null)) : 0;
    if (LikelyValues(distinct - (null ? 1 : 0), sampled - nulls) <= MostLikelyValues(column))
      Group(column, MostGroups());
  }
  return together;
}

/// Which columns are grouped in one scan: columns of few values together, as long as the groups of all together stay
/// few; their sums are those of each column. Counting so costs a scan and one look-up a row, for all of them, and it is
/// done in parallel and on other servers like any grouping.
std::vector<std::vector<std::size_t>> SqlGroups::Scans(std::vector<std::size_t> columns) const {
  const auto valuesOf = [&](std::size_t column) { return static_cast<double>(fColumns[column].first.size() + 1); };
  std::vector<std::vector<std::size_t>> scans;
  if (fFirstRows.empty()) {  // a small table
    const bool inOneScan = fTable->dialect().hasGroupingSets && !fTable->hasArms();
    const std::size_t atOnce = inOneScan ? kColumnsTogether : 1;
    for (std::size_t i = 0; i < columns.size(); ++i) {
      if (i % atOnce == 0) scans.emplace_back();
      scans.back().push_back(columns[i]);
    }
    return scans;
  }
  std::stable_sort(columns.begin(), columns.end(),
                   [&](std::size_t a, std::size_t b) { return valuesOf(a) < valuesOf(b); });
  double groups = 0.0;
  for (const std::size_t column : columns) {
    if (scans.empty() || groups * valuesOf(column) > kMostJointGroups || scans.back().size() == kColumnsTogether) {
      scans.emplace_back();
      groups = 1.0;
    }
    scans.back().push_back(column);
    groups *= valuesOf(column);
  }
  return scans;
}

void SqlGroups::GroupTogether(const std::vector<std::size_t>& columns) {
  if (columns.size() == 1) {
    const bool mayStay = MayStayUngrouped(columns.front());
    Group(columns.front(), mayStay ? std::optional<std::int64_t>(MostGroups()) : std::nullopt);
    return;
  }
  const GroupFetch::Scan scan = fFirstRows.empty() ? GroupFetch::Scan::GroupingSets : GroupFetch::Scan::Joint;
  std::vector<RawGroups> groups = fFetch.OfColumns(columns, scan);
  for (std::size_t i = 0; i < columns.size(); ++i) {
    fColumns[columns[i]].groups = std::move(groups[i]);
    fColumns[columns[i]].isComplete = true;
  }
}

bool SqlGroups::Group(std::size_t column, std::optional<std::int64_t> most) {
  std::optional<RawGroups> groups = fFetch.OfColumn(column, most);
  if (!groups) return false;
  fColumns[column].groups = std::move(*groups);
  fColumns[column].isComplete = true;
  return true;
}

void SqlGroups::Complete(std::size_t column) {
  if (!fColumns[column].isComplete) Group(column, std::nullopt);
}

// What the columns hold.

ManyValuedColumn SqlGroups::ManyValued(std::size_t column) const {
  ManyValuedColumn many;
  many.column = column;
  many.isText = !IsNumeric(column);
  if (many.isText) return many;
  const RawGroups& first = fColumns[column].first;
  for (std::size_t i = 0; i < first.size(); ++i) {
    const double number = first.isNull(i) ? NAN : NumberOfCell(itself(column).type, first.text(i));
    if (!std::isnan(number)) many.firstNumbers.push_back(number);
  }
  std::sort(many.firstNumbers.begin(), many.firstNumbers.end());
  many.firstNumbers.erase(std::unique(many.firstNumbers.begin(), many.firstNumbers.end()), many.firstNumbers.end());
  many.decimals = WithDecimalsOf(many.firstNumbers.data(), many.firstNumbers.size(), 0);
  return many;
}

void SqlGroups::DescribeUngrouped(const std::vector<std::size_t>& columns) {
  std::vector<ManyValuedColumn> many;
  for (const std::size_t column : columns) many.push_back(ManyValued(column));
  std::vector<ManyValuedFacts> facts = FindFacts(*fTable, fQueries, many);
  std::vector<std::size_t> asTexts;
  for (std::size_t i = 0; i < columns.size(); ++i) {
    Column& column = fColumns[columns[i]];
    column.facts = std::move(facts[i]);
    const bool isBeyond = !many[i].isText && itself(columns[i]).type != SqlType::Double && column.facts.hasNumbers &&
                          std::max(-column.facts.lowest, column.facts.highest) >= kLargestWhole;
    if (isBeyond || !column.facts.decimalsAreKnown)
      Complete(columns[i]);
    else
      TypeUngrouped(columns[i]);
  }
}

void SqlGroups::Type(std::size_t column) {
  Column& itsGroups = fColumns[column];
  if (HasWholesBeyondDoubles(itself(column).type, itsGroups.groups)) itsGroups.type = FieldType::String;
  fTyped[column] = TypeGroups(itself(column), itsGroups.type, fPlans[column], itsGroups.groups);
}

void SqlGroups::TypeUngrouped(std::size_t column) {
  const Column& known = fColumns[column];
  TypedColumn& typed = fTyped[column];
  typed = TypeGroups(itself(column), known.type, fPlans[column], known.first);
  typed.facts.rows = fRows;
  if (typed.facts.isString()) {
    typed.facts.longestValue = std::max(typed.facts.longestValue, static_cast<std::size_t>(known.facts.longestText));
    return;
  }
  if (typed.facts.type == FieldType::Number)
    typed.facts.decimals = std::max(typed.facts.decimals, known.facts.decimals);
  if (known.facts.hasNumbers)
    typed.facts.values.Include({true, known.facts.allWhole, known.facts.lowest, known.facts.highest});
}

// Answers to a cursor.

CountedGroups SqlGroups::AllCases() const {
  GroupedRows rows(fQueries.weight());
  rows.Add(0, fAllWeight);
  return rows.Take({});
}

CountedGroups SqlGroups::OfColumn(std::size_t column) const {
  const RawGroups& groups = fColumns[column].groups;
  GroupedRows rows(fQueries.weight());
  for (std::size_t i = 0; i < groups.size(); ++i) rows.Add(i, WeightOfGroup(groups, i));
  return rows.Take({fTyped[column].column});
}

CountedGroups SqlGroups::OfFirstRows(std::size_t column) const {
  const RawGroups& first = fColumns[column].first;
  GroupedRows rows(fQueries.weight());
  for (std::size_t i = 0; i < first.size(); ++i) rows.Add(i, WeightOfGroup(first, i));
  CountedGroups counted = rows.Take({fTyped[column].column});
  counted.isComplete = false;
  return counted;
}

CountedGroups SqlGroups::OfSummary(const ScaleSummary& summary) const {
  std::vector<double> numbers;
  GroupedRows rows(fQueries.weight());
  mpz_class missing = fAllWeight - summary.valid;
  if (missing > 0) {
    rows.Add(numbers.size(), missing);
    numbers.push_back(std::numeric_limits<double>::quiet_NaN());
  }
  for (const WeightedNumber& number : summary.values) {
    rows.Add(numbers.size(), number.weight);
    numbers.push_back(number.value);
  }
  CountedGroups counted = rows.Take({NumbersColumn(numbers)});
  counted.hasMoments = true;
  counted.valueSums = summary.valueSums;
  counted.squareSums = summary.squareSums;
  counted.lowest = summary.lowest;
  counted.areWhole = summary.areWhole;
  counted.highest = summary.values.empty() ? 0.0 : summary.values.back().value;
  return counted;
}

CountedGroups SqlGroups::OfListed(std::size_t column, const std::vector<double>& listed) {
  enum Kind : std::int64_t { kListed, kOther, kMissing };
  const SqlDialect& dialect = fTable->dialect();
  const MissingRule& missing = fMissing[column];
  const std::string number = fQueries.Number(column);
  std::vector<std::string> literals;
  for (const double value : listed) literals.push_back(dialect.CastToDouble(NumberLiteral(value)));
  const std::string isListed = fmt::format("{} IN ({})", number, fmt::join(literals, ", "));
  const std::string within =
      fmt::format("CASE WHEN {0} THEN {1} WHEN {2} THEN {3} ELSE {4} END AS k, CASE WHEN {0} THEN {5} END AS c{6}",
                  isListed, std::int64_t{kListed}, ValidCondition(dialect, number, missing), std::int64_t{kOther},
                  std::int64_t{kMissing}, number, fQueries.WeightWithin());
  double other = 0.5;  // any valid number that is not listed
  while (missing.holds(other) || std::find(listed.begin(), listed.end(), other) != listed.end()) other += 1.0;
  std::map<std::pair<std::int64_t, double>, mpz_class> weights;
  std::int64_t cases = 0;
  fTable->Ask(
      [&](const SqlPlace& place) {
        return fQueries.Grouped(place, within, {{"k", ""}, {"c", dialect.CastToText("c", SqlType::Double)}});
      },
      [&](SqlRows& rows) {
        const std::int64_t kind = WholeCell(rows, 0);
        const double value = kind == kListed ? NumberOfCell(SqlType::Double, rows.Text(1).value_or("")) : other;
        const std::int64_t itsCases = WholeCell(rows, 2);
        cases += itsCases;
        weights[{kind, value}] += fQueries.weight().WeightOf(rows, 3, static_cast<long>(itsCases));
      });
  fFetch.CheckCases(column, cases);
  std::vector<double> numbers;
  GroupedRows rows(fQueries.weight());
  for (const auto& [key, weight] : weights) {
    rows.Add(numbers.size(), weight);
    numbers.push_back(key.first == kMissing ? std::numeric_limits<double>::quiet_NaN() : key.second);
  }
  return rows.Take({NumbersColumn(numbers)});
}

CountedGroups SqlGroups::Joint(const std::vector<int>& variables) {
  std::vector<std::size_t> columns;
  for (const int variable : variables) columns.push_back(static_cast<std::size_t>(variable));
  for (const std::size_t column : columns) {
    if (fColumns[column].isComplete) continue;
    Complete(column);
    Type(column);
  }
  std::vector<std::vector<std::uint32_t>> groupOfRow(columns.size());
  std::vector<mpz_class> weights;
  std::int64_t cases = 0;
  fTable->Ask([&](const SqlPlace& place) { return fQueries.JointGroups(place, columns); },
              [&](SqlRows& rows) {
                for (std::size_t i = 0; i < columns.size(); ++i) {
                  const std::optional<std::size_t> group = FindGroup(fColumns[columns[i]].groups, rows.Text(i));
                  if (!group)
                    throw DataError(
                        fmt::format("{}: column {}: the database gave a value that it had not before; the "
                                    "table changes while it is read; run it again",
                                    fTable->name(), QuotedCell(itself(columns[i]).name)));
                  groupOfRow[i].push_back(static_cast<std::uint32_t>(*group));
                }
                const std::int64_t itsCases = WholeCell(rows, columns.size());
                cases += itsCases;
                weights.push_back(fQueries.weight().WeightOf(rows, columns.size() + 1, static_cast<long>(itsCases)));
              });
  if (cases != fRows)
    throw DataError(
        fmt::format("{}: the groups of the set with column {} have {} rows and the table has {}; a part of "
                    "the data did not answer, and no result can be trusted",
                    fTable->name(), QuotedCell(itself(columns.front()).name), cases, fRows));
  std::vector<StoredColumn> stored;
  for (std::size_t i = 0; i < columns.size(); ++i) stored.push_back(Gather(fTyped[columns[i]].column, groupOfRow[i]));
  GroupedRows rows(fQueries.weight());
  for (std::size_t i = 0; i < weights.size(); ++i) rows.Add(i, weights[i]);
  return rows.Take(stored);
}

std::vector<CountedGroups> SqlGroups::Count(const std::vector<CountingRequest>& requests) {
  std::vector<CountedGroups> answers(requests.size());
  std::vector<ScaleRequest> scales;
  std::vector<std::size_t> requestOfScale;
  for (std::size_t i = 0; i < requests.size(); ++i) {
    const CountingRequest& request = requests[i];
    if (request.variables.empty()) {
      answers[i] = AllCases();
      continue;
    }
    if (request.variables.size() > 1) {
      answers[i] = Joint(request.variables);
      continue;
    }
    const auto column = static_cast<std::size_t>(request.variables.front());
    const bool isScale = request.kind == CountingRequest::Kind::Scale;
    if (!fColumns[column].isComplete && isScale && IsNumeric(column) && CanSummarize(column)) {
      scales.push_back({ManyValued(column), fColumns[column].facts, fMissing[column]});
      requestOfScale.push_back(i);
      continue;
    }
    if (!fColumns[column].isComplete && request.listed && IsNumeric(column) && CanSummarize(column)) {
      answers[i] = OfListed(column, *request.listed);
      continue;
    }
    if (!fColumns[column].isComplete && isScale) {
      Complete(column);
      Type(column);
    }
    answers[i] = fColumns[column].isComplete ? OfColumn(column) : OfFirstRows(column);
  }
  std::vector<ScaleSummary> summaries = SummarizeScales(*fTable, fQueries, scales);
  for (std::size_t i = 0; i < scales.size(); ++i) {
    const std::size_t column = scales[i].column.column;
    if (summaries[i].isKnown) {
      answers[requestOfScale[i]] = OfSummary(summaries[i]);
      continue;
    }
    Complete(column);
    Type(column);
    answers[requestOfScale[i]] = OfColumn(column);
  }
  return answers;
}

CountedGroups SqlGroups::CountAll(const CountingRequest& request) {
  const auto column = static_cast<std::size_t>(request.variables.front());
  // The groups of the first rows stand first, as they were given; then all of them with what is left of their weight.
  const RawGroups& first = fColumns[column].first;
  RawGroups all(fQueries.weight().weighted());
  for (std::size_t i = 0; i < first.size(); ++i)
    all.Enter(first.isNull(i) ? std::nullopt : std::optional<std::string_view>(first.text(i)));
  fFetch.AddAll(column, all);
  fColumns[column].groups = std::move(all);
  fColumns[column].isComplete = true;
  Type(column);
  const RawGroups& groups = fColumns[column].groups;
  GroupedRows rows(fQueries.weight());
  for (std::size_t i = 0; i < first.size(); ++i) rows.Add(i, WeightOfGroup(first, i));
  rows.EndStretch();
  for (std::size_t i = 0; i < groups.size(); ++i) {
    const mpz_class given = i < first.size() ? WeightOfGroup(first, i) : mpz_class(0);
    const mpz_class left = WeightOfGroup(groups, i) - given;
    if (i >= first.size() || left != 0) rows.Add(i, left);
  }
  return rows.Take({fTyped[column].column});
}

std::vector<double> SqlGroups::WeightsBetween(const CountingRequest& request, const std::vector<double>& edges) {
  const std::lock_guard<std::mutex> lock(fAsking);
  const auto column = static_cast<std::size_t>(request.variables.front());
  const ScaleRequest scale{ManyValued(column), fColumns[column].facts, fMissing[column]};
  std::vector<double> nearest;
  for (const mpz_class& weight : CountBetween(*fTable, fQueries, scale, edges))
    nearest.push_back(NearestDouble(weight, fQueries.weight().weighted() ? fQueries.weight().unit : 0));
  // A sum beyond the doubles is system-missing, as all such sums are.
  for (double& weight : nearest)
    if (!std::isfinite(weight)) weight = std::numeric_limits<double>::quiet_NaN();
  return nearest;
}

}  // namespace runtime::data
