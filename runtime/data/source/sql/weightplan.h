// How the weight of a table is summed: what is to be known of its column, and the weights that follow from it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include <gmpxx.h>

#include "host/data/missingrule.h"

#include "runtime/data/source/sql/groupqueries.h"
#include "runtime/data/source/sql/rawgroups.h"
#include "runtime/data/source/sql/sqltable.h"
#include "runtime/data/source/sql/sqlweight.h"

namespace runtime::data {

/// The weight of a table's cases.
struct WeightColumn {
  std::size_t column = 0;
  MissingRule missing;
};

/// The weight with which a number weighs its case, in units of 2^unit; 0 where it is none. REQUIRES: the unit is that
/// of a plan that has seen the number.
mpz_class WeightOfNumber(double number, const MissingRule& missing, int unit);

/// The weight of a row by its cell.
mpz_class WeightOfCell(const std::optional<std::string>& cell, SqlType type, const SqlWeight& weight,
                       const MissingRule& missing);

/// A plan for a column of numbers whose values are all known, with their cases: in pieces of whole numbers; none when
/// the weights lie too far apart.
std::optional<SqlWeight> PlanKnownWeight(const SqlDialect& dialect, const GroupQueries& queries,
                                         const WeightColumn& weight, SqlType type, const RawGroups& groups,
                                         std::int64_t rows);

/// The same for a column of too many values. `cells`: those of the first rows.
std::optional<SqlWeight> PlanManyValuedWeight(SqlTable& table, const GroupQueries& queries, const WeightColumn& weight,
                                              const std::vector<std::optional<std::string>>& cells, std::int64_t rows);

/// A plan by pairs of value and weight; `numbers` is what the groups' texts were read to.
SqlWeight PlanPairs(const WeightColumn& weight, const RawGroups& groups, const std::vector<double>& numbers);

/// The groups of the weight's own column, each as heavy as its number says; `numbers` as many as groups.
RawGroups WithOwnWeights(const RawGroups& groups, const std::vector<double>& numbers, const SqlWeight& planned,
                         const MissingRule& missing);

}  // namespace runtime::data
