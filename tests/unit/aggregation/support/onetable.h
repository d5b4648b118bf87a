// One table over all cases of a dataset, as a procedure sets it up.
#pragma once

#include <cmath>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "host/aggregation/table.h"
#include "host/data/datasource.h"

#include "runtime/data/builder.h"

/// Kept together for a test: the source, the iterator, the table, its results.
class OneTable {
 public:
  explicit OneTable(runtime::data::DatasetBuilder& builder, std::int64_t chunkRows = 0)
      : OneTable(builder.Build(chunkRows)) {}
  explicit OneTable(std::shared_ptr<const runtime::data::Dataset> dataset)
      : fSource(std::move(dataset)),
        fIterator(fSource.NewCaseIterator(0)),
        fTable(std::make_unique<AggregationTable>(*fIterator, false, true, -1)),
        fCube(fTable->CreateCube()) {}

  /// The table owns the dimension.
  OneTable& Categorical(AggregationVariable* dimension) {
    fDimension = dimension;
    dimension->SetIsTotalNo(false);
    fCube->AddCategoricalVariable(dimension, TableEncryptionCodes::kFirstDimension);
    fCube->CreateCubeAggregator();
    using namespace TableEncryptionCodes;
    fCube->AddCategoryAndTotalStatistics({AggregationStatistic(kCount), AggregationStatistic(kPercent)}, dimension,
                                         {AggregationStatistic(kMissing), AggregationStatistic(kTotal)});
    return *this;
  }

  OneTable& Scale(int variable) {
    using namespace TableEncryptionCodes;
    std::vector<AggregationStatistic> statistics;
    for (const StatisticCodes code : {kValid, kMissing, kMean, kStdDev}) statistics.emplace_back(variable, code);
    for (const double cutPoint : {25.0, 50.0, 75.0}) {
      statistics.emplace_back(variable, kPercentile);
      statistics.back().SetPTileCutPoint(cutPoint);
    }
    fCube->CreateCubeAggregator();
    fCube->AddScaleStatistics(statistics);
    return *this;
  }

  OneTable& Pass() {
    while (fIterator->NextCase() != 0) fTable->AddNewCase();
    return Finish();
  }

  OneTable& Finish() {
    fAggregator.reset(fTable->GetCubeAggregators().front());
    return *this;
  }

  MAVO_DataSource& source() { return fSource; }
  MAVO_InputCaseIterator& iterator() { return *fIterator; }
  void DropIterator() { fIterator.reset(); }
  void DropTable() { fTable.reset(); }
  void DropResults() { fAggregator.reset(); }
  AggregationTable& table() { return *fTable; }
  AggregationCube& cube() { return *fCube; }
  CubeAggregator& results() { return *fAggregator; }
  int NumberOfValues() { return fTable->GetTableMetaData()->GetDimension(0)->GetNumberOfValues(); }
  std::vector<AggregationCategory*> Categories() { return fDimension->GetTableDimension()->GetCategoryPointers(); }

  /// The texts of the categories without the total.
  std::vector<std::string> Texts() {
    std::vector<std::string> texts;
    for (const AggregationCategory* category : Categories())
      if (!category->IsTotal()) texts.push_back(category->GetText());
    return texts;
  }
  std::vector<int> Codes() {
    std::vector<int> codes;
    for (const AggregationCategory* category : Categories())
      if (!category->IsTotal()) codes.push_back(category->GetCode());
    return codes;
  }
  /// Value j of every category's cell; -1 where the cell has no values.
  std::vector<double> CellValues(int j) {
    std::vector<double> values;
    for (const AggregationCategory* category : Categories()) {
      if (category->IsTotal()) continue;
      const StatValues* cell = fAggregator->GetStatValues({category}, -1);
      values.push_back(cell == nullptr ? -1.0 : cell->GetStatValue(j).GetValue1());
    }
    return values;
  }
  std::vector<double> Counts() { return CellValues(0); }
  std::vector<double> Percents() { return CellValues(1); }
  double Missing() { return fAggregator->GetStatValues({Categories().back()}, -1)->GetStatValue(0).GetValue1(); }
  double Total() { return fAggregator->GetStatValues({Categories().back()}, -1)->GetStatValue(1).GetValue1(); }
  /// Valid, Missing, Mean, StdDev, three quartiles.
  double ScaleValue(int j) { return fAggregator->GetStatValues({}, -1)->GetStatValue(j).GetValue1(); }

 private:
  MAVO_DataSource fSource;
  std::unique_ptr<MAVO_InputCaseIterator> fIterator;
  std::unique_ptr<AggregationTable> fTable;
  AggregationCube* fCube;
  AggregationVariable* fDimension = nullptr;
  std::unique_ptr<CubeAggregator> fAggregator;
};
