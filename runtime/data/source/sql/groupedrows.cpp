#include "runtime/data/source/sql/groupedrows.h"

#include <utility>

#include "runtime/data/source/sql/exactwhole.h"
#include "runtime/data/source/sql/typegroups.h"

namespace runtime::data {

mpz_class WeightOfGroup(const RawGroups& groups, std::size_t group) {
  return groups.weighted() ? groups.weight(group) : mpz_class(static_cast<long>(groups.cases(group)));
}

void GroupedRows::Add(std::size_t cell, const mpz_class& weight) {
  std::vector<double> parts;
  AppendDoubles(weight, fUnit, parts);
  fCells.push_back(static_cast<std::uint32_t>(cell));
  fWeights.push_back(parts.empty() ? 0.0 : parts.front());
  for (std::size_t part = 1; part < parts.size(); ++part) {
    fFurtherCells.push_back(static_cast<std::uint32_t>(cell));
    fFurtherWeights.push_back(parts[part]);
  }
}

void GroupedRows::EndStretch() {
  fCells.insert(fCells.end(), fFurtherCells.begin(), fFurtherCells.end());
  fWeights.insert(fWeights.end(), fFurtherWeights.begin(), fFurtherWeights.end());
  fFurtherCells.clear();
  fFurtherWeights.clear();
}

CountedGroups GroupedRows::Take(const std::vector<StoredColumn>& columns) {
  EndStretch();
  CountedGroups counted;
  for (const StoredColumn& column : columns) counted.columns.push_back(Gather(column, fCells));
  counted.rows = static_cast<std::int64_t>(fCells.size());
  counted.weights = std::move(fWeights);
  return counted;
}

}  // namespace runtime::data
