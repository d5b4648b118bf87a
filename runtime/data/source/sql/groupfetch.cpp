#include "runtime/data/source/sql/groupfetch.h"

#include <fmt/format.h>

#include "runtime/data/open.h"
#include "runtime/data/typing/quotedcell.h"

namespace runtime::data {

std::optional<RawGroups> GroupFetch::OfColumn(std::size_t column, std::optional<std::int64_t> most) const {
  if (!most) {
    RawGroups groups(fQueries.weight().weighted());
    AddAll(column, groups);
    return groups;
  }
  RawGroups groups(fQueries.weight().weighted());
  std::int64_t answers = 0;
  const std::int64_t limit = *most + 1;
  fTable.Ask([&](const SqlPlace& place) { return fQueries.Groups(place, column, limit); },
             [&](SqlRows& rows) {
               ++answers;
               TakeRow(groups, rows, 0);
             });
  // Of several places it is not known which one gave how many: all together must stay below the limit of one.
  if (answers >= limit) return std::nullopt;
  CheckCases(column, groups.allCases());
  return groups;
}

void GroupFetch::AddAll(std::size_t column, RawGroups& groups) const {
  fTable.Ask([&](const SqlPlace& place) { return fQueries.Groups(place, column, std::nullopt); },
             [&](SqlRows& rows) { TakeRow(groups, rows, 0); }, AnswerLength::Long);
  CheckCases(column, groups.allCases());
}

std::vector<RawGroups> GroupFetch::OfColumns(const std::vector<std::size_t>& columns, Scan scan) const {
  std::vector<RawGroups> groups;
  for (std::size_t i = 0; i < columns.size(); ++i) groups.emplace_back(fQueries.weight().weighted());
  if (scan == Scan::GroupingSets)
    fTable.Ask([&](const SqlPlace& place) { return fQueries.GroupingSets(place, columns); },
               [&](SqlRows& rows) { TakeRow(groups.at(static_cast<std::size_t>(WholeCell(rows, 0))), rows, 1); });
  else
    fTable.Ask([&](const SqlPlace& place) { return fQueries.JointGroups(place, columns); },
               [&](SqlRows& rows) { TakeJointRow(groups, rows); });
  for (std::size_t i = 0; i < columns.size(); ++i) CheckCases(columns[i], groups[i].allCases());
  return groups;
}

void GroupFetch::TakeRow(RawGroups& groups, SqlRows& rows, std::size_t at) const {
  const std::size_t group = groups.Enter(rows.Text(at));
  const std::int64_t cases = WholeCell(rows, at + 1);
  groups.AddCases(group, cases);
  if (groups.weighted()) groups.AddWeight(group, fQueries.weight().WeightOf(rows, at + 2, static_cast<long>(cases)));
}

void GroupFetch::TakeJointRow(std::vector<RawGroups>& groups, SqlRows& rows) const {
  const std::int64_t cases = WholeCell(rows, groups.size());
  const mpz_class weight = fQueries.weight().WeightOf(rows, groups.size() + 1, static_cast<long>(cases));
  for (std::size_t i = 0; i < groups.size(); ++i) {
    const std::size_t group = groups[i].Enter(rows.Text(i));
    groups[i].AddCases(group, cases);
    if (groups[i].weighted()) groups[i].AddWeight(group, weight);
  }
}

void GroupFetch::CheckCases(std::size_t column, std::int64_t counted) const {
  if (counted == fRows) return;
  throw DataError(
      fmt::format("{}: column {}: the groups that the database counted have {} rows and the table has {}; a "
                  "part of the data did not answer, or it changes while it is read, and no result can be "
                  "trusted; run it again when all parts are there",
                  fTable.name(), QuotedCell(fTable.columns()[column].name), counted, fRows));
}

}  // namespace runtime::data
