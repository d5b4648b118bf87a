// Columns with too many values to fetch: what is to be known of them, asked for in a few questions.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include <gmpxx.h>

#include "host/data/missingrule.h"

#include "runtime/data/source/sql/groupqueries.h"
#include "runtime/data/source/sql/sqltable.h"

namespace runtime::data {

/// A column of numbers or texts, and what its first rows hold.
struct ManyValuedColumn {
  std::size_t column = 0;
  bool isText = false;
  std::vector<double> firstNumbers;  // the distinct finite ones, ascending
  int decimals = 0;                  // most among them
};

/// Of all rows.
struct ManyValuedFacts {
  // Of numbers.
  bool hasNumbers = false;
  std::string lowestText;  // as the database writes them
  std::string highestText;
  double lowest = 0.0;
  double highest = 0.0;
  bool allWhole = true;
  bool allFinite = true;  // whole numbers are
  int decimals = 0;
  bool decimalsAreKnown = true;  // else no question short of fetching all values finds them
  // Of texts.
  std::int64_t longestText = 0;  // bytes without blanks at the end
};

/// In the order of the columns.
std::vector<ManyValuedFacts> FindFacts(SqlTable& table, const GroupQueries& queries,
                                       const std::vector<ManyValuedColumn>& columns);

/// A number with the sum of the weights of its cases, in units of the weight.
struct WeightedNumber {
  double value = 0.0;
  mpz_class weight;
};

/// What a scale variable is counted by.
struct ScaleSummary {
  bool isKnown = true;  // else its numbers lie too far apart to be summed in whole numbers
  mpz_class valid;      // weight of the valid cases
  // Sums of w x and w x^2 whose exact sums are meant.
  std::vector<double> valueSums;
  std::vector<double> squareSums;
  /// The weight of all valid values, ascending: exactly as they are around the quartiles, and elsewhere gathered at the
  /// highest value of each stretch, so that the quartiles are those of all values.
  std::vector<WeightedNumber> values;
  double lowest = 0.0;  // valid value
  bool areWhole = false;
};

struct ScaleRequest {
  ManyValuedColumn column;
  ManyValuedFacts facts;
  MissingRule missing;
};

/// The weight of the valid values between each two neighbouring edges, in units of the weight; see
/// CaseGroups::WeightsBetween. REQUIRES: as SummarizeScales.
std::vector<mpz_class> CountBetween(SqlTable& table, const GroupQueries& queries, const ScaleRequest& request,
                                    const std::vector<double>& edges);

/// REQUIRES: the dialect has whole numbers of any length (decimalType), edgesBelow and wide sums; the weight is no
/// pairs.
std::vector<ScaleSummary> SummarizeScales(SqlTable& table, const GroupQueries& queries,
                                          const std::vector<ScaleRequest>& requests);

}  // namespace runtime::data
