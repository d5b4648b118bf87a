// Groups as rows of a cursor.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include <gmpxx.h>

#include "runtime/data/source/sql/rawgroups.h"
#include "runtime/data/source/sql/sqlweight.h"
#include "runtime/data/store/groupeddataset.h"

namespace runtime::data {

/// The weight of a group; its cases where none is kept.
mpz_class WeightOfGroup(const RawGroups& groups, std::size_t group);

/// Collects rows: each is a cell of a column, or of several, with a weight. A weight that no double holds is spread
/// over several rows of the same cell, never more than its cases; all but the first of them stand behind the first rows
/// of all.
class GroupedRows {
 public:
  explicit GroupedRows(const SqlWeight& weight) : fUnit(weight.weighted() ? weight.unit : 0) {}

  void Add(std::size_t cell, const mpz_class& weight);
  /// What is added from here on stands behind all rows added before.
  void EndStretch();
  /// The rows of these columns, whose cells Add named.
  CountedGroups Take(const std::vector<StoredColumn>& columns);

 private:
  int fUnit;
  std::vector<std::uint32_t> fCells;
  std::vector<double> fWeights;
  // Further rows of the stretch.
  std::vector<std::uint32_t> fFurtherCells;
  std::vector<double> fFurtherWeights;
};

}  // namespace runtime::data
