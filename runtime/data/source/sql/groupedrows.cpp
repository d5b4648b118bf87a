#include "runtime/data/source/sql/groupedrows.h"

#include <utility>

#include "runtime/data/source/sql/exactwhole.h"
#include "runtime/data/source/sql/typegroups.h"

namespace runtime::data {

mpz_class WeightOfGroup(const RawGroups& groups, std::size_t group) {
  return groups.weighted() ? groups.weight(group) : mpz_class(static_cast<long>(groups.cases(group)));
}

void GroupedRows::Add(std::size_t cell, const mpz_class& weight) {
  const std::size_t before = fWeights.size();
  AppendDoubles(weight, fUnit, fWeights);
  if (fWeights.size() == before) fWeights.push_back(0.0);
  fCells.resize(fWeights.size(), static_cast<std::uint32_t>(cell));
}

CountedGroups GroupedRows::Take(const std::vector<StoredColumn>& columns) {
  CountedGroups counted;
  for (const StoredColumn& column : columns) counted.columns.push_back(Gather(column, fCells));
  counted.rows = static_cast<std::int64_t>(fCells.size());
  counted.weights = std::move(fWeights);
  return counted;
}

}  // namespace runtime::data
