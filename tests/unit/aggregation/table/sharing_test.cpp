// Tables of one cursor on several threads, with little memory, and when something goes wrong.
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <limits>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "host/aggregation/table.h"
#include "host/data/datasource.h"

#include "runtime/aggregation/binding.h"
#include "runtime/data/builder.h"
#include "runtime/machine/spillfile.h"
#include "tests/unit/aggregation/support/testdataset.h"

namespace {

using namespace TableEncryptionCodes;
using runtime::aggregation::AggregationBinding;

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr std::size_t kRows = 24000;
constexpr int kVariables = 8;

class Bound {
 public:
  explicit Bound(AggregationBinding& binding) : fPrevious(runtime::aggregation::BindAggregation(&binding)) {}
  ~Bound() { runtime::aggregation::BindAggregation(fPrevious); }
  Bound(const Bound&) = delete;
  Bound& operator=(const Bound&) = delete;

 private:
  AggregationBinding* fPrevious;
};

class Environment {
 public:
  Environment(const char* name, const char* value) : fName(name) {
    const char* before = std::getenv(name);
    if (before != nullptr) fBefore = before;
    setenv(name, value, 1);
  }
  ~Environment() {
    if (fBefore.empty())
      unsetenv(fName);
    else
      setenv(fName, fBefore.c_str(), 1);
  }
  Environment(const Environment&) = delete;
  Environment& operator=(const Environment&) = delete;

 private:
  const char* fName;
  std::string fBefore;
};

/// Six numeric variables of different kinds and two of texts. `weights`: 0 none, 1 fine fractions, 2 far apart.
std::shared_ptr<TestDataset> MakeDataset(std::size_t chunkRows, int weights, unsigned storageSeed) {
  std::mt19937_64 random(11);
  const auto unit = [&random] { return static_cast<double>(random() >> 11) * 0x1p-53; };
  runtime::data::DatasetBuilder builder;
  TestData data;
  for (int v = 0; v < kVariables; ++v) {
    const std::string name = "v" + std::to_string(v);
    TestColumn column;
    column.isText = v >= 6;
    for (std::size_t row = 0; row < kRows; ++row) {
      if (column.isText) {
        column.texts.push_back("t" + std::to_string(random() % (v == 6 ? 5 : 3000)));
        continue;
      }
      const double drawn = unit();
      const double kinds[] = {
          1.0 + static_cast<double>(random() % 7), static_cast<double>(random() % 3000),    drawn * 1e4,
          std::round(drawn * 1e5) / 100.0 - 300.0, static_cast<double>(random() % 1000000), drawn - 0.5};
      column.numbers.push_back(random() % 9 == 0 ? kNaN : kinds[v]);
    }
    if (column.isText)
      builder.AddString(name).Width(8);
    else
      builder.AddNumeric(name).Missing(3.0);
    data.columns.push_back(std::move(column));
  }
  for (std::size_t row = 0; weights > 0 && row < kRows; ++row)
    data.weights.push_back(weights == 1 ? std::round(unit() * 3000.0) / 1000.0
                                        : std::ldexp(unit(), static_cast<int>(random() % 400) - 200));
  for (std::size_t end = chunkRows; end < kRows; end += chunkRows)
    data.chunkEnds.push_back(static_cast<std::int64_t>(end));
  data.chunkEnds.push_back(kRows);
  data.storageSeed = storageSeed;
  return std::make_shared<TestDataset>(builder.Build()->dictionary(), std::move(data));
}

/// A table of each kind over each variable.
class Tables {
 public:
  explicit Tables(std::shared_ptr<const TestDataset> dataset)
      : fSource(std::make_unique<MAVO_DataSource>(std::move(dataset))), fIterator(fSource->NewCaseIterator(0)) {
    for (int v = 0; v < kVariables; ++v) {
      Scale(v);
      Categorical(new AggregationVariable(v, "v"));
    }
    Categorical(new AggregationMCSet({0, 1, 0}, "set"));
    OBS counted{};
    counted.number = 4.0;
    Categorical(new AggregationMDSet({0, 1, 4}, "set", &counted, 8, false));
  }

  MAVO_InputCaseIterator& iterator() { return *fIterator; }
  std::vector<std::unique_ptr<AggregationTable>>& tables() { return fTables; }
  void DropIterator() { fIterator.reset(); }

  void TakeCase() {
    for (std::unique_ptr<AggregationTable>& table : fTables) table->AddNewCase();
  }
  void Pass() {
    while (fIterator->NextCase() != 0) TakeCase();
  }

  /// All that the tables tell, as text; doubles with every bit.
  std::vector<std::string> Results() {
    std::vector<std::string> results;
    const auto tell = [&results](const StatValues* cell) {
      char text[40];
      for (int j = 0; cell != nullptr && j < cell->NumOfValues(); ++j) {
        std::snprintf(text, sizeof text, "%a", cell->GetStatValue(j).GetValue1());
        results.emplace_back(text);
      }
    };
    for (std::size_t i = 0; i < fTables.size(); ++i) {
      const std::unique_ptr<CubeAggregator> aggregator(fTables[i]->GetCubeAggregators().front());
      if (fDimensions[i] == nullptr) {
        tell(aggregator->GetStatValues({}, -1));
        continue;
      }
      for (const AggregationCategory* category : fDimensions[i]->GetTableDimension()->GetCategoryPointers()) {
        results.push_back(category->GetText());
        tell(aggregator->GetStatValues({category}, -1));
      }
    }
    return results;
  }

 private:
  void Scale(int variable) {
    fTables.push_back(std::make_unique<AggregationTable>(*fIterator, false, true, -1));
    fDimensions.push_back(nullptr);
    std::vector<AggregationStatistic> statistics;
    for (const StatisticCodes code : {kValid, kMissing, kMean, kStdDev}) statistics.emplace_back(variable, code);
    for (const double cutPoint : {25.0, 50.0, 75.0}) {
      statistics.emplace_back(variable, kPercentile);
      statistics.back().SetPTileCutPoint(cutPoint);
    }
    fTables.back()->CreateCube()->AddScaleStatistics(statistics);
  }

  void Categorical(AggregationVariable* dimension) {
    fTables.push_back(std::make_unique<AggregationTable>(*fIterator, false, true, -1));
    fDimensions.push_back(dimension);
    dimension->SetIsTotalNo(false);
    AggregationCube* cube = fTables.back()->CreateCube();
    cube->AddCategoricalVariable(dimension, kFirstDimension);
    cube->CreateCubeAggregator();
    cube->AddCategoryAndTotalStatistics({AggregationStatistic(kCount), AggregationStatistic(kPercent)}, dimension,
                                        {AggregationStatistic(kMissing), AggregationStatistic(kTotal)});
  }

  std::unique_ptr<MAVO_DataSource> fSource;
  std::unique_ptr<MAVO_InputCaseIterator> fIterator;
  std::vector<std::unique_ptr<AggregationTable>> fTables;
  std::vector<AggregationVariable*> fDimensions;  // owned by the tables; null: scale
};

std::vector<std::string> ResultsOf(std::size_t chunkRows, int weights, unsigned storageSeed,
                                   AggregationBinding binding) {
  const Bound bound(binding);
  Tables tables(MakeDataset(chunkRows, weights, storageSeed));
  tables.Pass();
  return tables.Results();
}

TEST(Sharing, doesNotChangeAnyResult) {
  runtime::machine::ThreadPool two(2);
  runtime::machine::ThreadPool five(5);
  for (const int weights : {0, 1, 2}) {
    const std::vector<std::string> expected = ResultsOf(kRows, weights, 0, {});
    ASSERT_GT(expected.size(), 100u);
    for (const std::size_t chunkRows : {std::size_t{7}, std::size_t{1024}, kRows}) {
      AggregationBinding binding;
      binding.pool = chunkRows == 1024 ? &five : &two;
      binding.percentileMemory = chunkRows == kRows ? 0 : 100'000;
      EXPECT_TRUE(ResultsOf(chunkRows, weights, static_cast<unsigned>(chunkRows), binding) == expected)
          << "chunks of " << chunkRows << ", weights " << weights;
    }
  }
}

TEST(Sharing, tellsOnceAPassThatResultsBegin) {
  int told = 0;
  AggregationBinding binding;
  binding.onResultsBegin = [&told] { ++told; };
  const Bound bound(binding);
  Tables tables(MakeDataset(4096, 0, 0));
  tables.Pass();
  EXPECT_EQ(told, 0);
  tables.Results();
  EXPECT_EQ(told, 1);
}

TEST(Sharing, ofTablesThatEndBeforeTheCasesLeavesTheOthersGoingOn) {
  Tables tables(MakeDataset(4096, 0, 0));
  for (int row = 0; row < 5000; ++row) {
    ASSERT_NE(tables.iterator().NextCase(), 0);
    tables.TakeCase();
  }
  const std::unique_ptr<CubeAggregator> first(tables.tables()[0]->GetCubeAggregators().front());
  tables.Pass();
  const std::unique_ptr<CubeAggregator> second(tables.tables()[2]->GetCubeAggregators().front());
  const auto cases = [](const CubeAggregator& aggregator) {
    const StatValues* cell = aggregator.GetStatValues({}, -1);
    return cell->GetStatValue(0).GetValue1() + cell->GetStatValue(1).GetValue1();
  };
  EXPECT_EQ(cases(*first), 5000.0);
  EXPECT_EQ(cases(*second), static_cast<double>(kRows));
}

TEST(Sharing, passesOnThatTheFileCannotBeMade) {
  const Environment environment("TMPDIR", "/nowhere/at/all");
  runtime::machine::ThreadPool pool(2);
  AggregationBinding binding;
  binding.percentileMemory = 1;
  for (const bool threads : {false, true}) {
    binding.pool = threads ? &pool : nullptr;
    const Bound bound(binding);
    Tables tables(MakeDataset(8192, 1, 0));
    EXPECT_THROW(tables.Pass(), runtime::machine::SpillError);
    EXPECT_THROW(tables.tables()[4]->GetCubeAggregators(), runtime::machine::SpillError);
  }
}

TEST(Sharing, keepsWhatGoesWrongWhileTheCursorDiesForTheResults) {
  const Environment environment("TMPDIR", "/nowhere/at/all");
  AggregationBinding binding;
  binding.percentileMemory = 1;
  const Bound bound(binding);
  Tables tables(MakeDataset(kRows, 1, 0));
  for (int row = 0; row < 20000; ++row) {
    ASSERT_NE(tables.iterator().NextCase(), 0);
    tables.TakeCase();
  }
  tables.DropIterator();
  EXPECT_THROW(tables.tables()[4]->GetCubeAggregators(), runtime::machine::SpillError);
}

}  // namespace
