// The different values of a column, with how often and where first each was met.
#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include "runtime/data/dataset.h"

namespace runtime::data {

struct DistinctValue {
  double number = 0.0;
  std::string_view text;  // of a string variable, without trailing blanks; lives as long as the dataset
  std::int64_t count = 0;
  std::int64_t firstRow = 0;  // from 0
};

struct DistinctValues {
  bool isString = false;
  std::vector<DistinctValue> values;  // numbers ascending, texts by bytes
  std::int64_t rows = 0;
  std::int64_t systemMissing = 0;           // cells
  std::int64_t firstSystemMissingRow = -1;  // from 0; -1: none
};

/// One walk over the column. Unweighted; user-missing values are values like others. Beyond some ten thousand different
/// numbers the cells are sorted instead of looked up, which takes 16 bytes a case for the time of the call.
DistinctValues CollectDistinctValues(const Dataset& dataset, int variable);

}  // namespace runtime::data
