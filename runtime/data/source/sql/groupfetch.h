// The groups of columns, as the database counts them.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

#include "runtime/data/source/sql/groupqueries.h"
#include "runtime/data/source/sql/rawgroups.h"
#include "runtime/data/source/sql/sqltable.h"

namespace runtime::data {

/// Fetches groups with the queries' weight. Groups whose cases are not all rows throw DataError.
class GroupFetch {
 public:
  /// `table` and `queries` are used as long as this is.
  GroupFetch(SqlTable& table, const GroupQueries& queries) : fTable(table), fQueries(queries) {}

  /// How many rows there are.
  void SetRows(std::int64_t rows) { fRows = rows; }

  /// The groups of a column; none when there are more than `most`.
  std::optional<RawGroups> OfColumn(std::size_t column, std::optional<std::int64_t> most) const;
  /// The groups of each column, in one scan: by grouping sets, or of all columns together.
  enum class Scan { GroupingSets, Joint };
  std::vector<RawGroups> OfColumns(const std::vector<std::size_t>& columns, Scan scan) const;
  /// Adds all groups of a column to some that may be there already, without cases.
  void AddAll(std::size_t column, RawGroups& groups) const;

  /// Throws DataError when a column has not as many cases as there are rows.
  void CheckCases(std::size_t column, std::int64_t counted) const;

 private:
  void TakeRow(RawGroups& groups, SqlRows& rows, std::size_t at) const;
  void TakeJointRow(std::vector<RawGroups>& groups, SqlRows& rows) const;

  SqlTable& fTable;
  const GroupQueries& fQueries;
  std::int64_t fRows = 0;
};

}  // namespace runtime::data
