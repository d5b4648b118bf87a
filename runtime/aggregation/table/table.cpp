#include "host/aggregation/table.h"

#include <functional>

#include "runtime/aggregation/table/tableengine.h"

CubeAggregator::CubeAggregator(runtime::aggregation::TableEngine& engine)
    : fEngine(engine), fCells(engine.categories().size() + 1) {}

// The table, and the engine with it, may be gone.
CubeAggregator::~CubeAggregator() = default;

StatValues* CubeAggregator::GetStatValues(const std::vector<const AggregationCategory*>& categories, int) const {
  const std::vector<AggregationCategory>& all = fEngine.categories();
  std::size_t cell = all.size();
  if (categories.size() > 1) return nullptr;
  if (!categories.empty()) {
    const AggregationCategory* category = categories.front();
    const AggregationCategory* first = all.data();
    const std::less<const AggregationCategory*> before;
    if (all.empty() || before(category, first) || !before(category, first + all.size())) return nullptr;
    cell = static_cast<std::size_t>(category - first);
  }
  if (fCells[cell] == nullptr) fCells[cell] = fEngine.MakeCell(cell);
  return fCells[cell].get();
}

AggregationCube::AggregationCube(runtime::aggregation::TableEngine& engine) : fEngine(engine) {}
AggregationCube::~AggregationCube() = default;

void AggregationCube::AddCategoricalVariable(AggregationVariable* dimension, TableEncryptionCodes::DimensionPosition) {
  fEngine.SetDimension(std::unique_ptr<AggregationVariable>(dimension));
}

void AggregationCube::CreateCubeAggregator() { fEngine.CreateTableDimension(); }

void AggregationCube::AddScaleStatistics(const std::vector<AggregationStatistic>& statistics) {
  fEngine.AddScaleStatistics(statistics);
}

void AggregationCube::AddCategoryAndTotalStatistics(const std::vector<AggregationStatistic>& perCategory,
                                                    AggregationVariable*,
                                                    const std::vector<AggregationStatistic>& inTotal) {
  fEngine.SetCellStatistics(perCategory, inTotal);
}

AggregationTable::AggregationTable(MAVO_InputCaseIterator& iterator, bool, bool, int)
    : fCursor(&iterator.Cursor()), fEngine(std::make_unique<runtime::aggregation::TableEngine>(*this, iterator)) {}

AggregationTable::~AggregationTable() = default;

AggregationCube* AggregationTable::CreateCube() { return &fEngine->Cube(); }

void AggregationTable::BeginPendingRows() { fEngine->BeginRun(); }

std::vector<CubeAggregator*> AggregationTable::GetCubeAggregators() {
  fEngine->Finish();
  if (!fEngine->hasCube()) return {};
  return {new CubeAggregator(*fEngine)};
}
