#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <utility>

#include <fmt/format.h>

#include "runtime/data/open.h"
#include "runtime/data/store/columnstore.h"

namespace runtime::data {

namespace {

class ColumnarCursor : public CaseCursor {
 public:
  ColumnarCursor(const ColumnarDataset& dataset, std::int64_t blockRows, std::int64_t chunkRows)
      : fDataset(dataset),
        fRows(dataset.caseCount()),
        fBlockRows(blockRows),
        fChunkRows(chunkRows),
        fWeights(dataset.dictionary().weight < 0 ? nullptr : dataset.weights().data()) {}
  ~ColumnarCursor() override { Farewell(); }

  ColumnView Column(int variable) const override { return fDataset.column(variable).ViewFrom(chunkBegin); }
  const double* Weights() const override { return fWeights == nullptr ? nullptr : fWeights + chunkBegin; }

 protected:
  bool LoadNextChunk() override {
    if (chunkEnd >= fRows) return false;
    chunkBegin = chunkEnd;
    const std::int64_t blockEnd = (chunkBegin / fBlockRows + 1) * fBlockRows;
    chunkEnd = std::min({fRows, blockEnd, chunkBegin + fChunkRows});
    return true;
  }

 private:
  const ColumnarDataset& fDataset;
  const std::int64_t fRows;
  const std::int64_t fBlockRows;
  const std::int64_t fChunkRows;
  const double* const fWeights;
};

/// A case without a valid positive weight counts nothing.
std::vector<double> WeightsOf(const StoredColumn& column, const MissingRule& missing) {
  std::vector<double> weights(static_cast<std::size_t>(column.rows()));
  for (std::int64_t row = 0; row < column.rows(); ++row) {
    const double weight = column.Number(row);
    // A comparison with NaN is false.
    weights[static_cast<std::size_t>(row)] = weight > 0.0 && !missing.holds(weight) ? weight : 0.0;
  }
  return weights;
}

}  // namespace

ColumnarDataset::ColumnarDataset(Dictionary dictionary, std::vector<StoredColumn> columns, std::int64_t rows,
                                 std::int64_t chunkRows)
    : Dataset(std::move(dictionary)), fColumns(std::move(columns)), fRows(rows) {
  if (rows > kMostCases)
    throw DataError(
        fmt::format("The data has {} cases; more than {} cannot be worked with. Split the file.", rows, kMostCases));
  fBlockRows = fColumns.empty() ? std::max<std::int64_t>(rows, 1) : fColumns.front().blockRows();
  fChunkRows = chunkRows > 0 ? std::min(chunkRows, fBlockRows) : fBlockRows;
  const int weight = this->dictionary().weight;
  if (weight >= 0)
    fWeights = WeightsOf(column(weight), this->dictionary().variables[static_cast<std::size_t>(weight)]->missing);
}

ColumnarDataset::~ColumnarDataset() = default;

std::unique_ptr<CaseCursor> ColumnarDataset::NewCursor() const {
  return std::make_unique<ColumnarCursor>(*this, fBlockRows, fChunkRows);
}

}  // namespace runtime::data
