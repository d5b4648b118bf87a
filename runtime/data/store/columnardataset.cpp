#include "runtime/data/store/columnardataset.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

#include <fmt/format.h>

#include "runtime/data/open.h"

namespace runtime::data {

namespace {

/// A case without a valid positive weight counts nothing.
double ValidWeight(double weight, const MissingRule& missing) {
  // A comparison with NaN is false.
  return weight > 0.0 && !missing.holds(weight) ? weight : 0.0;
}

template <typename Integer>
void WholeWeights(const ColumnView& view, std::size_t rows, const MissingRule& missing, double* weights) {
  const auto* const cells = static_cast<const Integer*>(view.cells);
  for (std::size_t row = 0; row < rows; ++row)
    weights[row] = cells[row] == std::numeric_limits<Integer>::min() ? 0.0 : ValidWeight(cells[row], missing);
}

void WeightsOf(const ColumnView& view, std::size_t rows, const MissingRule& missing, double* weights) {
  switch (view.storage) {
    case ColumnStorage::Int8:
      return WholeWeights<std::int8_t>(view, rows, missing, weights);
    case ColumnStorage::Int16:
      return WholeWeights<std::int16_t>(view, rows, missing, weights);
    case ColumnStorage::Int32:
      return WholeWeights<std::int32_t>(view, rows, missing, weights);
    case ColumnStorage::Float64: {
      const auto* const cells = static_cast<const double*>(view.cells);
      for (std::size_t row = 0; row < rows; ++row) weights[row] = ValidWeight(cells[row], missing);
      return;
    }
    case ColumnStorage::StringCode:
      std::fill_n(weights, rows, 0.0);
  }
}

}  // namespace

class ColumnarCursor : public CaseCursor {
 public:
  explicit ColumnarCursor(const ColumnarDataset& dataset)
      : fDataset(dataset), fCells(dataset.fTables.size()), fBuffers(dataset.fTables.size()) {}
  ~ColumnarCursor() override { Farewell(); }

  ColumnView Column(int variable) const override {
    const auto at = static_cast<std::size_t>(variable);
    const StoredColumn& column = fDataset.fColumns[at];
    ColumnView view = column.groups->View(fGroup, fCells[fDataset.fTableOfColumn[at]], column.column, fRowInGroup);
    view.strings = column.strings.get();
    return view;
  }

  const double* Weights() const override { return fDataset.dictionary().weight < 0 ? nullptr : fWeights.data(); }

 protected:
  bool LoadNextChunk() override {
    if (chunkEnd >= fDataset.fRows) return false;
    const RowGroups* const table = fDataset.fTables.empty() ? nullptr : fDataset.fTables.front().get();
    fRowInGroup += static_cast<std::size_t>(chunkEnd - chunkBegin);
    if (table != nullptr && (chunkEnd == 0 || fRowInGroup == table->rowsOf(fGroup))) {
      fGroup = chunkEnd == 0 ? 0 : fGroup + 1;
      fRowInGroup = 0;
      for (std::size_t i = 0; i < fCells.size(); ++i) fCells[i] = fDataset.fTables[i]->Load(fGroup, fBuffers[i]);
    }
    const std::size_t left =
        table == nullptr ? static_cast<std::size_t>(fDataset.fRows - chunkEnd) : table->rowsOf(fGroup) - fRowInGroup;
    const std::size_t rows = fDataset.fChunkRows > 0 ? std::min(left, fDataset.fChunkRows) : left;
    chunkBegin = chunkEnd;
    chunkEnd += static_cast<std::int64_t>(rows);
    FindWeights(rows);
    return true;
  }

 private:
  void FindWeights(std::size_t rows) {
    const int weight = fDataset.dictionary().weight;
    if (weight < 0) return;
    fWeights.resize(rows);
    WeightsOf(Column(weight), rows, fDataset.dictionary().variables[static_cast<std::size_t>(weight)]->missing,
              fWeights.data());
  }

  const ColumnarDataset& fDataset;
  std::size_t fGroup = 0;
  std::size_t fRowInGroup = 0;
  std::vector<const std::byte*> fCells;  // of the group, by table
  std::vector<std::vector<std::byte>> fBuffers;
  std::vector<double> fWeights;  // of the chunk
};

ColumnarDataset::ColumnarDataset(Dictionary dictionary, std::vector<StoredColumn> columns, std::int64_t rows,
                                 std::int64_t chunkRows)
    : Dataset(std::move(dictionary)),
      fColumns(std::move(columns)),
      fRows(rows),
      fChunkRows(static_cast<std::size_t>(std::max<std::int64_t>(chunkRows, 0))) {
  if (rows > kMostCases)
    throw DataError(
        fmt::format("The data has {} cases; more than {} cannot be worked with. Split the file.", rows, kMostCases));
  for (const StoredColumn& column : fColumns) {
    const auto found = std::find(fTables.begin(), fTables.end(), column.groups);
    fTableOfColumn.push_back(static_cast<std::size_t>(found - fTables.begin()));
    if (found == fTables.end()) fTables.push_back(column.groups);
  }
}

ColumnarDataset::~ColumnarDataset() = default;

std::unique_ptr<CaseCursor> ColumnarDataset::NewCursor() const { return std::make_unique<ColumnarCursor>(*this); }

}  // namespace runtime::data
