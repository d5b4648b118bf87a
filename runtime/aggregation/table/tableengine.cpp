#include "runtime/aggregation/table/tableengine.h"

#include <algorithm>
#include <limits>
#include <new>
#include <stdexcept>
#include <utility>

#include "runtime/aggregation/binding.h"

namespace runtime::aggregation {

using namespace TableEncryptionCodes;

namespace {

/// Stands in for the cursor once the counting has ended.
class NoCases : public CaseCursor {
 public:
  ColumnView Column(int) const override { return {}; }
  const double* Weights() const override { return nullptr; }

 protected:
  bool LoadNextChunk() override { return false; }
};

const CaseCursor& NoCursor() {
  static const NoCases cursor;
  return cursor;
}

std::vector<int> EachOnce(const std::vector<int>& variables) {
  std::vector<int> once;
  for (const int variable : variables)
    if (std::find(once.begin(), once.end(), variable) == once.end()) once.push_back(variable);
  return once;
}

bool IsInDictionary(int variable, const MAVO_DataSource& source) {
  return variable >= 0 && variable < static_cast<int>(source.ColumnCount());
}

/// A table's dimension of the kind that Base names.
template <class Base>
class CountedDimension final : public Base {
 public:
  CountedDimension(TableEngine& engine, const TableProgress& progress) : Base(progress), fEngine(engine) {}

  std::vector<AggregationCategory*> GetCategoryPointers() override {
    std::vector<AggregationCategory*> pointers;
    pointers.reserve(fEngine.categories().size());
    for (AggregationCategory& category : fEngine.categories()) pointers.push_back(&category);
    return pointers;
  }

 private:
  int CountValues() const override { return fEngine.NumberOfValues(); }

  TableEngine& fEngine;
};

/// What the categories of a dimension are counted from.
CountingRequest RequestOf(const AggregationVariable& dimension, const MAVO_DataSource& source) {
  CountingRequest request{CountingRequest::Kind::Categories, EachOnce(dimension.variables())};
  const bool isVariable = dimension.kind() == AggregationVariable::Kind::Variable;
  if (!isVariable || dimension.categories().empty()) return request;
  if (source.GetVariable(dimension.variables().front()).GetType() > 0) return request;
  request.listed.emplace();
  for (const std::unique_ptr<ParsedCategory>& category : dimension.categories())
    request.listed->push_back(category->value()->number);
  return request;
}

}  // namespace

TableEngine::TableEngine(AggregationTable& table, MAVO_InputCaseIterator& iterator)
    : fTable(table),
      fWork(CursorWork::Of(iterator.Cursor())),
      fSource(iterator.Source()),
      fSketches(fWork->wantsSketches()) {
  fWork->Add(*this);
}

TableEngine::~TableEngine() {
  if (fWork != nullptr) fWork->Remove(*this);
}

AggregationCube& TableEngine::Cube() {
  if (fCube == nullptr) fCube = std::make_unique<AggregationCube>(*this);
  return *fCube;
}

void TableEngine::SetDimension(std::unique_ptr<AggregationVariable> dimension) {
  if (fDimension != nullptr)
    throw std::logic_error("aggregation cube: a second dimension, " + dimension->name() + ", behind " +
                           fDimension->name());
  fDimension = std::move(dimension);
}

template <class Base>
TableDimension* TableEngine::PutDimension() {
  static_assert(sizeof(CountedDimension<Base>) <= AggregationTable::kDimensionBytes);
  return new (fTable.fDimensionRoom) CountedDimension<Base>(*this, fTable.fProgress);
}

void TableEngine::CreateTableDimension() {
  if (fDimension == nullptr || fTableDimension != nullptr) return;
  fCounter = MakeDimensionCounter(*fDimension, fSource);
  fDimensionGroups = fWork->GroupsFor(RequestOf(*fDimension, fSource));
  switch (fDimension->kind()) {
    case AggregationVariable::Kind::Variable:
      fTableDimension.reset(PutDimension<TableDimension>());
      break;
    case AggregationVariable::Kind::CategorySet:
      fTableDimension.reset(PutDimension<TableMCSet>());
      break;
    case AggregationVariable::Kind::DichotomySet:
      fTableDimension.reset(PutDimension<TableMDSet>());
      break;
  }
  fDimension->setTableDimension(fTableDimension.get());
  fTable.fMetadata.fDimension = fTableDimension.get();
}

void TableEngine::AddScaleStatistics(const std::vector<AggregationStatistic>& statistics) {
  fScaleStatistics.insert(fScaleStatistics.end(), statistics.begin(), statistics.end());
  if (fScaleStatistics.empty()) return;
  fScaleCounter = std::make_unique<ScaleCounter>(fScaleStatistics, fSource, fWork->memory(), fSketches);
  CountingRequest request;  // of statistics without a variable: the cases
  if (const int variable = fScaleStatistics.front().GetVariable(); IsInDictionary(variable, fSource))
    request = {CountingRequest::Kind::Scale, {variable}};
  fScaleGroups = fWork->GroupsFor(request);
}

void TableEngine::SetCellStatistics(std::vector<AggregationStatistic> perCategory,
                                    std::vector<AggregationStatistic> inTotal) {
  fPerCategory = std::move(perCategory);
  fInTotal = std::move(inTotal);
}

TableEngine::RowRange TableEngine::RowsOf(const Chunk& chunk, RowRange range) {
  const std::size_t end = std::min(range.first + range.count, chunk.rows());
  return {range.first, end > range.first ? end - range.first : 0};
}

TableEngine::RowRange TableEngine::PendingInChunk() const {
  const CaseCursor& cursor = fWork->cursor();
  const std::int64_t first = std::max(fTable.fProgress.pending.begin, cursor.chunkBegin);
  const std::int64_t end = std::min(fTable.fProgress.pending.end, cursor.chunkEnd);
  if (end <= first) return {0, 0};
  return {static_cast<std::size_t>(first - cursor.chunkBegin), static_cast<std::size_t>(end - first)};
}

void TableEngine::SearchUpTo(const Chunk& chunk, std::size_t row) {
  if (fSearchedUpTo >= row) return;
  const std::size_t end = std::min(chunk.rows(), std::max(row, fSearchedUpTo + fSearchStep));
  fSearchStep = std::min(2 * fSearchStep, kLargestSearchStep);
  fSearchedUpTo = fCounter->FindNewValues(chunk, fSearchedUpTo, end - fSearchedUpTo, fFound);
}

void TableEngine::KeepFoundBefore(std::size_t row) {
  for (; fKept < fFound.size() && fFound[fKept].row < row; ++fKept) ++fTable.fProgress.watch.count;
}

void TableEngine::ForgetFound() {
  for (std::size_t i = fKept; i < fFound.size(); ++i) fCounter->Unmark(fFound[i].slot);
  fFound.clear();
  fKept = 0;
}

int TableEngine::NumberOfValues() {
  if (fWork == nullptr) return fTable.fProgress.watch.count;
  const RowRange pending = PendingInChunk();
  if (!fSearches) {
    fSearches = true;
    fTable.fProgress.watch.count = fCounter->MarkCountedValues();
    fSearchedUpTo = pending.first;
  }
  if (pending.count == 0) return fTable.fProgress.watch.count;
  if (WantsSearch()) fWork->SearchAhead();
  const Chunk& chunk = PresentOfDimension();
  const std::size_t rows = chunk.rows();
  const std::size_t end = std::min(pending.first + pending.count, rows);
  SearchUpTo(chunk, end);
  KeepFoundBefore(end);
  const CaseCursor& cursor = fWork->cursor();
  if (fKept < fFound.size())
    fTable.fProgress.watch.nextNewRow = cursor.chunkBegin + static_cast<std::int64_t>(fFound[fKept].row);
  else if (fSearchedUpTo < rows)
    fTable.fProgress.watch.nextNewRow = cursor.chunkBegin + static_cast<std::int64_t>(fSearchedUpTo);
  else
    fTable.fProgress.watch.nextNewRow = cursor.chunkEnd;
  return fTable.fProgress.watch.count;
}

void TableEngine::FlushDimension(RowRange pending) {
  const Chunk& chunk = PresentOfDimension();
  const RowRange rows = RowsOf(chunk, pending);
  if (fSearches && rows.count > 0) {
    const std::size_t end = rows.first + rows.count;
    SearchUpTo(chunk, end);
    KeepFoundBefore(end);
    ForgetFound();
  }
  if (rows.count > 0) fCounter->CountRows(chunk, rows.first, rows.count);
  if (fDimensionGroups != nullptr) fDimensionGroups->ReleaseWeights();
}

void TableEngine::FlushScale(RowRange pending) {
  const Chunk& chunk = PresentOfScale();
  const RowRange rows = RowsOf(chunk, pending);
  if (rows.count > 0) fScaleCounter->CountRows(chunk, rows.first, rows.count);
  if (fScaleGroups != nullptr) fScaleGroups->ReleaseWeights();
}

void TableEngine::Flush() {
  const RowRange pending = PendingInChunk();
  if (pending.count > 0) {
    if (fCounter != nullptr) FlushDimension(pending);
    if (fScaleCounter != nullptr) FlushScale(pending);
  }
  fTable.fProgress.pending.begin = fTable.fProgress.pending.end;
  fTable.fProgress.watch.nextNewRow = fSearches ? fTable.fProgress.pending.end : -1;
}

bool TableEngine::WantsSearch() const {
  if (!fSearches || fSearchedUpTo > 0) return false;
  const RowRange pending = PendingInChunk();
  return pending.first == 0 && pending.count > 0;
}

void TableEngine::SearchChunk() {
  const Chunk& chunk = PresentOfDimension();
  SearchUpTo(chunk, chunk.rows());
}

std::size_t TableEngine::RowsToSearch() const {
  if (fDimensionGroups != nullptr) return fDimensionGroups->unweighted().rows();
  return static_cast<std::size_t>(fWork->cursor().chunkEnd - fWork->cursor().chunkBegin);
}

std::size_t TableEngine::PendingCells() const {
  const RowRange pending = PendingInChunk();
  if (pending.count == 0) return 0;
  const std::size_t columns = fDimension == nullptr ? 1 : std::max<std::size_t>(1, fDimension->variables().size());
  if (fDimensionGroups == nullptr && fScaleGroups == nullptr) return pending.count * columns;
  std::size_t cells = 0;
  if (fDimensionGroups != nullptr) cells += RowsOf(fDimensionGroups->unweighted(), pending).count * columns;
  if (fScaleGroups != nullptr) cells += RowsOf(fScaleGroups->unweighted(), pending).count;
  return cells;
}

void TableEngine::LeaveChunk() {
  Flush();
  fSearchedUpTo = 0;
}

void TableEngine::BeginRun() {
  if (fWork == nullptr) return;
  Flush();
  const CaseCursor& cursor = fWork->cursor();
  fTable.fProgress.pending = {cursor.row, cursor.row + 1};
  fTable.fProgress.watch.nextNewRow = -1;
  fSearchedUpTo = static_cast<std::size_t>(std::max<std::int64_t>(0, cursor.row - cursor.chunkBegin));
  fSearchStep = kFirstSearchStep;
}

void TableEngine::CursorGone(const std::optional<CasesPassed>& allCases) {
  fTable.fProgress.pending.begin = fTable.fProgress.pending.end;
  const std::shared_ptr<CursorWork> work = std::exchange(fWork, nullptr);
  fFailure = work->failure();
  if (!fFailure) ComputeResults(allCases);
  Detach();
}

void TableEngine::Detach() {
  if (fWork != nullptr) fWork->Remove(*this);
  fWork.reset();
  fDimensionGroups.reset();
  fScaleGroups.reset();
  fTable.fCursor = &NoCursor();
  // No row follows these, and none is beyond what the watch knows.
  fTable.fProgress.pending = {-2, -2};
  fTable.fProgress.watch.nextNewRow = std::numeric_limits<std::int64_t>::max();
}

void TableEngine::Finish() {
  if (fWork != nullptr) {
    // Detaching the last table takes the work away.
    const std::shared_ptr<CursorWork> work = fWork;
    if (work->failure()) std::rethrow_exception(work->failure());
    work->BeginResults();
    if (work->cursor().exhausted()) {
      work->FinishTables();
    } else {
      Flush();
      ComputeResults(std::nullopt);
    }
    if (fWork != nullptr) Detach();
  }
  if (fFailure) std::rethrow_exception(fFailure);
  if (!fSketch) return;
  const AggregationBinding* binding = CurrentAggregation();
  if (binding != nullptr && binding->onCounted) binding->onCounted(std::move(*fSketch));
  fSketch.reset();
}

std::size_t TableEngine::ValuesToFinish() const {
  return (fCounter == nullptr ? 0 : fCounter->slots()) + (fScaleCounter == nullptr ? 0 : fScaleCounter->keptValues());
}

void TableEngine::ComputeResults(const std::optional<CasesPassed>& allCases) noexcept {
  try {
    MakeResults(allCases);
  } catch (...) {
    fFailure = std::current_exception();
  }
}

ItemSketch TableEngine::SketchOfDimension() const {
  ItemSketch sketch;
  if (fDimension->kind() == AggregationVariable::Kind::Variable) {
    sketch.variable = fDimension->variables().front();
  } else {
    sketch.name = fDimension->name();
    sketch.members = fDimension->variables();
  }
  sketch.total = NearestDouble(fCounts.total);
  sketch.missing = NearestDouble(fCounts.missing);
  return sketch;
}

void TableEngine::MakeResults(const std::optional<CasesPassed>& allCases) {
  // Over groups a table may have come to the last of them and still not have taken the last row: it dropped out.
  const bool tookLast = allCases && (allCases->rows == 0 || fTable.fProgress.pending.end == allCases->rows);
  const auto countedAll = [&](const WeightTotal& total) {
    return tookLast && total.Exact() == allCases->weight.Exact();
  };
  if (fCounter != nullptr) {
    if (!fSearches) fTable.fProgress.watch.count = fCounter->MarkCountedValues();
    fCounts = fCounter->Finish();
    fCounter.reset();
    MakeCategories();
    if (fSketches && countedAll(fCounts.total)) fSketch = SketchOfDimension();
  }
  if (fScaleCounter != nullptr) {
    const CaseGroups* const groups = fScaleGroups == nullptr ? nullptr : fScaleGroups->unweighted().groups;
    fScaleResults = fScaleCounter->Finish(groups == nullptr ? nullptr : groups->moments());
    if (fSketches && countedAll(fScaleCounter->total())) fSketch = fScaleCounter->Sketch(groups);
    fScaleCounter.reset();
  }
}

void TableEngine::MakeCategories() {
  fCategories.reserve(fCounts.categories.size() + 1);
  for (CountedCategory& category : fCounts.categories)
    fCategories.emplace_back(category.value, category.code, std::move(category.text), false);
  if (!fDimension->hasTotal()) return;
  const bool isSet = fDimension->kind() != AggregationVariable::Kind::Variable;
  fCategories.emplace_back(0.0, isSet ? -1 : static_cast<int>(fCategories.size()), std::string(), true);
}

std::vector<double> TableEngine::CellValues(const std::vector<AggregationStatistic>& statistics,
                                            const WeightTotal& weight) const {
  std::vector<double> values;
  values.reserve(statistics.size());
  for (const AggregationStatistic& statistic : statistics) {
    switch (statistic.GetSummaryStatistic()) {
      case kCount:
        values.push_back(NearestDouble(weight));
        break;
      case kPercent:
        values.push_back(Percent(weight, fCounts.total));
        break;
      case kMissing:
        values.push_back(NearestDouble(fCounts.missing));
        break;
      case kTotal:
        values.push_back(NearestDouble(fCounts.total));
        break;
      case kMean:
      case kStdDev:
      case kValid:
      case kPercentile:
        values.push_back(std::numeric_limits<double>::quiet_NaN());
        break;
    }
  }
  return values;
}

std::unique_ptr<StatValues> TableEngine::MakeCell(std::size_t category) const {
  const bool isCategory = category < fCounts.categories.size();
  if (category == fCategories.size() && !fScaleStatistics.empty())
    return std::make_unique<StatValues>(fScaleResults, fScaleStatistics);
  const std::vector<AggregationStatistic>& statistics = isCategory ? fPerCategory : fInTotal;
  if (fDimension == nullptr || statistics.empty()) return nullptr;
  if (isCategory && !fCounts.categories[category].hasCell) return nullptr;
  const WeightTotal& weight = isCategory ? fCounts.categories[category].weight : fCounts.total;
  return std::make_unique<StatValues>(CellValues(statistics, weight), statistics);
}

}  // namespace runtime::aggregation
