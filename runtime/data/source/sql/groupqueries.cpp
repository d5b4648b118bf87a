#include "runtime/data/source/sql/groupqueries.h"

#include <fmt/format.h>

namespace runtime::data {

namespace {

bool IsText(const SqlColumn& column) { return column.type == SqlType::Text || column.type == SqlType::FixedText; }

std::string Joined(const std::vector<std::string>& parts) { return fmt::format("{}", fmt::join(parts, ", ")); }

}  // namespace

GroupQueries::GroupQueries(const SqlTable& table)
    : fTable(table), fDialect(table.dialect()), fComparesBytes(table.columns().size(), !fDialect.comparesBytes) {}

std::string GroupQueries::Key(std::size_t column) const {
  const SqlColumn& itself = fTable.columns()[column];
  std::string key = fTable.quoted(column);
  if (!IsText(itself)) return key;
  if (fDialect.castsKeys && itself.type == SqlType::Text) key = fDialect.CastToText(key, itself.type);
  if (fComparesBytes[column] && fDialect.binaryText != nullptr)
    key = fmt::format(fmt::runtime(fDialect.binaryText), key);
  return key;
}

std::string GroupQueries::Number(std::size_t column) const { return fDialect.CastToDouble(fTable.quoted(column)); }

std::string GroupQueries::WeightWithin() const {
  switch (fWeight.form) {
    case SqlWeight::Form::None:
      return {};
    case SqlWeight::Form::Pieces:
      return fmt::format(", {} AS w", fWeight.number);
    case SqlWeight::Form::Pairs:
      return fmt::format(", {} AS u", Key(fWeight.column));
  }
  return {};
}

std::string GroupQueries::WeightSums() const {
  std::string sums;
  if (fWeight.form == SqlWeight::Form::Pieces)
    for (int i = 0; i < fWeight.pieces.count; ++i)
      sums += fmt::format(", SUM({}) AS p{}", PieceExpression(fDialect, "w", fWeight.pieces, i), i);
  return sums;
}

std::string GroupQueries::WeightGroup() const { return fWeight.form == SqlWeight::Form::Pairs ? ", u" : ""; }

std::string GroupQueries::WeightAnswer() const {
  std::string list;
  if (fWeight.form == SqlWeight::Form::Pairs)
    return ", " + fDialect.CastToText("u", fTable.columns()[fWeight.column].type);
  if (fWeight.form == SqlWeight::Form::Pieces)
    for (int i = 0; i < fWeight.pieces.count; ++i) list += fmt::format(", p{}", i);
  return list;
}

std::string GroupQueries::Summary(const SqlPlace& place, const std::string& inner, const std::string& list,
                                  const std::string& behind, bool needsFence) const {
  return SqlTable::OverArms(place, [&](const std::string& arm) {
    // Sums of pieces name the weight several times.
    const bool isFenced = needsFence || fWeight.form == SqlWeight::Form::Pieces;
    return fmt::format("SELECT {} FROM (SELECT {} FROM {}{}) s{}", list, inner, arm,
                       isFenced ? fTable.Fence(place) : "", behind);
  });
}

std::string GroupQueries::Rows(const SqlPlace& place) const {
  const bool hasPieces = fWeight.form == SqlWeight::Form::Pieces;
  return Summary(place, "1 AS one" + (hasPieces ? WeightWithin() : ""), fDialect.countRows + WeightSums());
}

std::string GroupQueries::FirstRows(const SqlPlace& place, std::int64_t rows) const {
  std::vector<std::string> cells;
  for (std::size_t column = 0; column < fTable.columns().size(); ++column)
    cells.push_back(fDialect.CastToText(fTable.quoted(column), fTable.columns()[column].type));
  return fDialect.FirstRowsOf(Joined(cells), "FROM " + place.relation, rows);
}

std::string GroupQueries::Groups(const SqlPlace& place, std::size_t column, std::optional<std::int64_t> most) const {
  // Within and without, the columns stand in the same order, and nothing bounds an arm: only then does PostgreSQL ask
  // the servers of all arms at once.
  const std::string arms = Summary(place, Key(column) + " AS c" + WeightWithin(),
                                   fmt::format("c AS v, {} AS n{}{}", fDialect.countRows, WeightGroup(), WeightSums()),
                                   " GROUP BY c" + WeightGroup());
  const std::string text = fDialect.CastToText("v", fTable.columns()[column].type);
  const std::string list = text + AnswerColumns(place);
  const std::string rest = fmt::format("FROM ({}) g{}", arms, Merging(place, "v"));
  return most ? fDialect.FirstRowsOf(list, rest, *most) : fmt::format("SELECT {} {}", list, rest);
}

/// The cases and the weight of a finished answer. What the arms have in common is added up before it is sent here.
std::string GroupQueries::AnswerColumns(const SqlPlace& place) const {
  if (place.arms.size() <= 1 || fWeight.form != SqlWeight::Form::Pieces)
    return (place.arms.size() > 1 ? ", SUM(n)" : ", n") + WeightAnswer();
  std::string sums = ", SUM(n)";
  for (int i = 0; i < fWeight.pieces.count; ++i) sums += fmt::format(", SUM(p{})", i);
  return sums;
}

/// Behind the arms: what makes one answer of theirs.
std::string GroupQueries::Merging(const SqlPlace& place, const std::string& names) const {
  return place.arms.size() > 1 ? " GROUP BY " + names + WeightGroup() : "";
}

std::string GroupQueries::GroupingSets(const SqlPlace& place, const std::vector<std::size_t>& columns) const {
  std::vector<std::string> keys;
  std::vector<std::string> sets;
  std::string which;
  std::string text;
  for (std::size_t i = 0; i < columns.size(); ++i) {
    const std::string name = fmt::format("c{}", i);
    keys.push_back(Key(columns[i]) + " AS " + name);
    sets.push_back("(" + name + WeightGroup() + ")");
    which += fmt::format(" WHEN GROUPING({}) = 0 THEN {}", name, i);
    text += fmt::format(" WHEN GROUPING({}) = 0 THEN {}", name,
                        fDialect.CastToText(name, fTable.columns()[columns[i]].type));
  }
  const std::string pairs = fWeight.form == SqlWeight::Form::Pairs ? WeightAnswer() + " AS u" : std::string();
  return Summary(place, Joined(keys) + WeightWithin(),
                 fmt::format("CASE{} END AS k, CASE{} END AS v, {} AS n{}{}", which, text, fDialect.countRows, pairs,
                             WeightSums()),
                 " GROUP BY GROUPING SETS (" + Joined(sets) + ")");
}

std::string GroupQueries::JointGroups(const SqlPlace& place, const std::vector<std::size_t>& columns) const {
  std::vector<std::string> within;
  std::vector<GroupedName> names;
  for (std::size_t i = 0; i < columns.size(); ++i) {
    const std::string name = fmt::format("c{}", i);
    within.push_back(Key(columns[i]) + " AS " + name);
    names.push_back({name, fDialect.CastToText(name, fTable.columns()[columns[i]].type)});
  }
  return Grouped(place, Joined(within) + WeightWithin(), names);
}

std::string GroupQueries::Grouped(const SqlPlace& place, const std::string& within,
                                  const std::vector<GroupedName>& names) const {
  std::vector<std::string> plain;
  std::vector<std::string> answered;
  for (const GroupedName& name : names) {
    plain.push_back(name.name);
    answered.push_back(name.text.empty() ? name.name : name.text);
  }
  // Within and without, the columns stand in the same order, and nothing bounds an arm: only then does PostgreSQL ask
  // the servers of all arms at once.
  return fmt::format(
      "SELECT {}{} FROM ({}) g{}", Joined(answered), AnswerColumns(place),
      Summary(place, within,
              fmt::format("{}, {} AS n{}{}", Joined(plain), fDialect.countRows, WeightGroup(), WeightSums()),
              " GROUP BY " + Joined(plain) + WeightGroup()),
      Merging(place, Joined(plain)));
}

}  // namespace runtime::data
