// How the weights of groups are summed without rounding.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include <gmpxx.h>

#include "host/data/missingrule.h"

#include "runtime/data/source/sql/pieces.h"
#include "runtime/data/source/sql/sqlconnection.h"

namespace runtime::data {

/// The weights of a question's groups. A case whose weight is missing, negative, zero or infinite has weight 0.
struct SqlWeight {
  enum class Form {
    None,    // every case has weight 1
    Pieces,  // the engine sums whole numbers
    Pairs    // the engine counts pairs of value and weight, and they are summed here
  };

  Form form = Form::None;
  std::size_t column = 0;  // of the weight
  std::string number;      // Pieces: the weight as an expression of doubles, 0 where it does not count
  std::string counts;      // Pieces: the condition that a case has a weight; empty when all have
  PiecePlan pieces;
  bool hasFewValues = false;                          // Pieces: so few that they make groups
  int unit = 0;                                       // weights are multiples of 2^unit
  std::unordered_map<std::string, mpz_class> ofText;  // Pairs: the weight of a cell, in units; absent: 0

  bool weighted() const { return form != Form::None; }
  /// How many columns of an answer hold the weight.
  std::size_t answerColumns() const;
  /// The weight of a group of `cases` cases, from the columns of an answer that begin at `at`.
  mpz_class WeightOf(SqlRows& rows, std::size_t at, long cases) const;
};

/// The condition that `number`, a double, is a valid weight.
std::string ValidWeightCondition(const SqlDialect& dialect, const std::string& number, const MissingRule& missing);

/// The condition that a double is a value: finite and not user-missing.
std::string ValidCondition(const SqlDialect& dialect, const std::string& number, const MissingRule& missing);

}  // namespace runtime::data
