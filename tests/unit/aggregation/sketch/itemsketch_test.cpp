// What tables tell of the items that they counted, against a naive count.
#include "runtime/aggregation/sketch/itemsketch.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "host/aggregation/table.h"
#include "host/data/datasource.h"

#include "runtime/aggregation/binding.h"
#include "runtime/aggregation/sketch/binedges.h"
#include "runtime/data/builder.h"
#include "tests/unit/aggregation/support/rational.h"
#include "tests/unit/aggregation/support/reference.h"
#include "tests/unit/aggregation/support/testdataset.h"

namespace runtime::aggregation {
namespace {

using namespace TableEncryptionCodes;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

struct Setting {
  int threads = 1;
  std::int64_t memory = 0;
  bool asksQuartiles = false;
};

/// The tables of a test, over one cursor.
class Tables {
 public:
  Tables(const std::shared_ptr<const data::Dataset>& dataset, Setting setting = {})
      : fSetting(setting), fPool(setting.threads), fSource(dataset) {
    fBinding.pool = &fPool;
    fBinding.percentileMemory = setting.memory;
    fBinding.onCounted = [this](ItemSketch&& sketch) { fSketches.push_back(std::move(sketch)); };
    fPrevious = BindAggregation(&fBinding);
    fCases.reset(fSource.NewCaseIterator(0));
  }
  ~Tables() { BindAggregation(fPrevious); }
  Tables(const Tables&) = delete;
  Tables& operator=(const Tables&) = delete;

  Tables& Scale(int variable) {
    std::vector<AggregationStatistic> statistics{AggregationStatistic(variable, kValid)};
    if (fSetting.asksQuartiles) {
      statistics.emplace_back(variable, kPercentile);
      statistics.back().SetPTileCutPoint(75.0);
    }
    Add().AddScaleStatistics(statistics);
    return *this;
  }
  Tables& Categorical(AggregationVariable* dimension) {
    dimension->SetIsTotalNo(false);
    AggregationCube& cube = Add();
    cube.AddCategoricalVariable(dimension, kFirstDimension);
    cube.CreateCubeAggregator();
    return *this;
  }
  /// Of the cases the first so many; the tables take the others.
  std::vector<ItemSketch> Sketches(int leftOut = 0, int mostCases = 1 << 30) {
    for (int i = 0; i < mostCases && fCases->NextCase() != 0; ++i)
      if (i >= leftOut)
        for (const auto& table : fTables) table->AddNewCase();
    return Finish();
  }
  std::vector<ItemSketch> Finish() {
    for (const auto& table : fTables) delete table->GetCubeAggregators().front();
    return std::move(fSketches);
  }
  MAVO_InputCaseIterator& cases() { return *fCases; }
  void DropCases() { fCases.reset(); }

 private:
  AggregationCube& Add() {
    fTables.push_back(std::make_unique<AggregationTable>(*fCases, false, true, -1));
    return *fTables.back()->CreateCube();
  }

  Setting fSetting;
  machine::ThreadPool fPool;
  AggregationBinding fBinding;
  AggregationBinding* fPrevious = nullptr;
  MAVO_DataSource fSource;
  std::unique_ptr<MAVO_InputCaseIterator> fCases;
  std::vector<std::unique_ptr<AggregationTable>> fTables;
  std::vector<ItemSketch> fSketches;
};

std::shared_ptr<const data::Dataset> OneVariable(std::vector<double> values) {
  data::DatasetBuilder builder;
  builder.AddNumeric("x", std::move(values)).Missing(99.0);
  return builder.Build();
}

ItemSketch SketchOf(std::vector<double> values) {
  std::vector<ItemSketch> sketches = Tables(OneVariable(std::move(values))).Scale(0).Sketches();
  EXPECT_THAT(sketches, SizeIs(1));
  return sketches.empty() ? ItemSketch() : sketches.front();
}

std::vector<double> WeightsOf(const ItemSketch& sketch) {
  std::vector<double> weights;
  for (const HistogramBin& bin : sketch.bins) weights.push_back(bin.weight);
  return weights;
}

TEST(ItemSketch, ofAScaleVariableHasMeanQuartilesAndHistogram) {
  const ItemSketch sketch = SketchOf({1, 2, 2, 4, kNaN, 99});
  EXPECT_EQ(sketch.variable, 0);
  EXPECT_EQ(sketch.total, 6.0);
  EXPECT_EQ(sketch.missing, 2.0);
  EXPECT_EQ(sketch.mean, 2.25);
  EXPECT_THAT(sketch.quartiles, ElementsAre(1.25, 2.0, 3.5));
  EXPECT_THAT(WeightsOf(sketch), ElementsAre(1, 2, 0, 1));
  EXPECT_EQ(sketch.bins.front().from, 0.5);
  EXPECT_EQ(sketch.bins.back().to, 4.5);
}

TEST(ItemSketch, withoutValidValuesHasTotalAndMissingOnly) {
  const ItemSketch sketch = SketchOf({kNaN, 99});
  EXPECT_EQ(sketch.total, 2.0);
  EXPECT_EQ(sketch.missing, 2.0);
  EXPECT_TRUE(std::isnan(sketch.mean));
  EXPECT_THAT(sketch.quartiles, IsEmpty());
  EXPECT_THAT(sketch.bins, IsEmpty());
}

TEST(ItemSketch, ofOneValueHasOneClass) {
  const ItemSketch whole = SketchOf({3, 3});
  EXPECT_THAT(WeightsOf(whole), ElementsAre(2));
  EXPECT_EQ(whole.bins[0].from, 2.5);
  EXPECT_EQ(whole.bins[0].to, 3.5);
  for (const double value : {0.25, 1e300, 5e-324, -1e308}) {
    const ItemSketch sketch = SketchOf({value, value});
    EXPECT_THAT(WeightsOf(sketch), ElementsAre(2));
    EXPECT_EQ(sketch.bins[0].from, value);
    EXPECT_EQ(sketch.bins[0].to, value);
  }
}

TEST(ItemSketch, valueOnAnEdgeBelongsToTheClassAboveButForTheHighest) {
  // Quartiles 2.5, 5, 7.5: 2 x 5 / cbrt(3) = 6.9, nice 5; so narrower until there are five.
  const ItemSketch sketch = SketchOf({0, 2.5, 5, 5, 7.5, 10});
  EXPECT_EQ(sketch.bins.size(), 5u);
  EXPECT_THAT(WeightsOf(sketch), ElementsAre(1, 1, 2, 1, 1));
  EXPECT_EQ(sketch.bins.back().to, 10.0);
}

TEST(ItemSketch, extremeValuesHaveSoundClasses) {
  const double most = std::numeric_limits<double>::max();
  for (const std::vector<double>& values : {std::vector<double>{-1e308, 1e308, 0, 5},
                                            {-most, most},
                                            {0, 5e-324},
                                            {5e-324, -5e-324, 1e-310, 0},
                                            {1e300, 1e-300}}) {
    const ItemSketch sketch = SketchOf(values);
    double weight = 0.0;
    ASSERT_THAT(sketch.bins, Not(IsEmpty()));
    for (const HistogramBin& bin : sketch.bins) {
      EXPECT_LT(bin.from, bin.to);
      weight += bin.weight;
    }
    EXPECT_EQ(weight, static_cast<double>(values.size()));
  }
}

TEST(ItemSketch, ofACategoricalVariableHasTotalAndMissing) {
  const std::vector<ItemSketch> sketches =
      Tables(OneVariable({1, 2, kNaN, 99, 99})).Categorical(new AggregationVariable(0, "x")).Sketches();
  ASSERT_THAT(sketches, SizeIs(1));
  EXPECT_EQ(sketches[0].variable, 0);
  EXPECT_EQ(sketches[0].total, 5.0);
  EXPECT_EQ(sketches[0].missing, 3.0);
  EXPECT_TRUE(std::isnan(sketches[0].mean));
  EXPECT_THAT(sketches[0].bins, IsEmpty());
}

TEST(ItemSketch, ofASetCountsCasesWithoutAResponseAsMissing) {
  data::DatasetBuilder builder;
  builder.AddNumeric("a", {1, kNaN, kNaN});
  builder.AddNumeric("b", {2, 2, kNaN});
  const std::vector<ItemSketch> sketches =
      Tables(builder.Build()).Categorical(new AggregationMCSet({0, 1}, "Both")).Sketches();
  ASSERT_THAT(sketches, SizeIs(1));
  EXPECT_EQ(sketches[0].variable, -1);
  EXPECT_EQ(sketches[0].name, "Both");
  EXPECT_THAT(sketches[0].members, ElementsAre(0, 1));
  EXPECT_EQ(sketches[0].total, 3.0);
  EXPECT_EQ(sketches[0].missing, 1.0);
}

TEST(ItemSketch, ofAStringTreatedAsScaleHasTotalAndMissing) {
  data::DatasetBuilder builder;
  builder.AddString("s", {"a", "", "b"}).Missing(std::string());
  const std::vector<ItemSketch> sketches = Tables(builder.Build()).Scale(0).Sketches();
  ASSERT_THAT(sketches, SizeIs(1));
  EXPECT_EQ(sketches[0].missing, 1.0);
  EXPECT_THAT(sketches[0].bins, IsEmpty());
}

TEST(ItemSketch, comesInTheOrderInWhichResultsAreAskedFor) {
  data::DatasetBuilder builder;
  for (const char* name : {"a", "b", "c"}) builder.AddNumeric(name, {1, 2});
  const std::vector<ItemSketch> sketches =
      Tables(builder.Build()).Scale(2).Categorical(new AggregationVariable(0, "a")).Scale(1).Sketches();
  ASSERT_THAT(sketches, SizeIs(3));
  EXPECT_EQ(sketches[0].variable, 2);
  EXPECT_EQ(sketches[1].variable, 0);
  EXPECT_EQ(sketches[2].variable, 1);
}

TEST(ItemSketch, isNotToldOfATableThatDidNotTakeEveryCase) {
  EXPECT_THAT(Tables(OneVariable({1, 2, 3})).Scale(0).Sketches(1), IsEmpty());
  EXPECT_THAT(Tables(OneVariable({1, 2, 3})).Scale(0).Sketches(0, 2), IsEmpty()) << "the cursor has cases left";
  EXPECT_THAT(Tables(OneVariable({1, 2, 3})).Categorical(new AggregationVariable(0, "x")).Sketches(1), IsEmpty());
}

TEST(ItemSketch, isToldWhenTheCasesAreGoneAlready) {
  Tables tables(OneVariable({1, 2}));
  tables.Scale(0);
  EXPECT_THAT(tables.Sketches(), SizeIs(1));
  Tables gone(OneVariable({1, 2}));
  gone.Categorical(new AggregationVariable(0, "x"));
  while (gone.cases().NextCase() != 0) {
  }
  gone.DropCases();
  EXPECT_THAT(gone.Finish(), IsEmpty()) << "no case was taken";
}

TEST(ItemSketch, weightsAreSummedExactly) {
  data::DatasetBuilder builder;
  builder.AddNumeric("x", {1, 1, 1, 2});
  builder.AddNumeric("w", {0.1, 0.2, 0.3, -1});
  builder.Weight("w");
  const std::vector<ItemSketch> sketches = Tables(builder.Build()).Scale(0).Sketches();
  ASSERT_THAT(sketches, SizeIs(1));
  EXPECT_EQ(sketches[0].total, 0.6) << "0.1 + 0.2 + 0.3 added one by one is more";
  EXPECT_THAT(WeightsOf(sketches[0]), ElementsAre(0.6));
}

/// Values of many kinds: few and many, whole and not, near and far.
std::vector<double> RandomValues(std::mt19937_64& random, std::size_t rows) {
  const auto unit = [&random] { return static_cast<double>(random() >> 11) * 0x1p-53; };
  const auto kind = random() % 8;
  std::vector<double> values;
  for (std::size_t row = 0; row < rows; ++row) {
    double value = 0.0;
    switch (kind) {
      case 0:
        value = static_cast<double>(random() % 40);
        break;
      case 1:
        value = static_cast<double>(random() % 100000);
        break;
      case 2:
        value = unit() * 100.0;
        break;
      case 3:
        value = std::ldexp(unit() - 0.5, static_cast<int>(random() % 2000) - 1000);
        break;
      case 4:
        value = 3e9 + static_cast<double>(random() % 30);
        break;
      case 5:
        value = static_cast<double>(random() % 50) / 4.0;
        break;
      case 6:  // missing codes so many that the values are no longer counted, then few whole numbers
        value = row < 200 ? 1e9 + static_cast<double>(row) + 0.5 : static_cast<double>(random() % 12) + 5e9;
        break;
      default:
        value = random() % 50 == 0 ? 1e12 : 1.0 + unit();
        break;
    }
    values.push_back(random() % 9 == 0 ? kNaN : value);
  }
  return values;
}

TestData RandomData(std::mt19937_64& random, std::size_t rows) {
  TestData data;
  TestColumn column;
  column.numbers = RandomValues(random, rows);
  data.columns.push_back(std::move(column));
  const auto weights = random() % 4;
  for (std::size_t row = 0; weights > 0 && row < rows; ++row) {
    const double unit = static_cast<double>(random() >> 11) * 0x1p-53;
    data.weights.push_back(weights == 1   ? static_cast<double>(random() % 3)
                           : weights == 2 ? unit
                                          : std::ldexp(unit, static_cast<int>(random() % 400) - 200));
  }
  const std::size_t chunk = 1 + random() % (2 * rows);
  for (std::size_t end = 0; end < rows;) {
    end = std::min(rows, end + chunk);
    data.chunkEnds.push_back(static_cast<std::int64_t>(end));
  }
  data.storageSeed = static_cast<unsigned>(random() % 1000);
  return data;
}

void ExpectAsCountedNaively(const ItemSketch& sketch, const TestDataset& dataset) {
  std::vector<std::size_t> taken(static_cast<std::size_t>(dataset.data().rows()));
  for (std::size_t row = 0; row < taken.size(); ++row) taken[row] = row;
  const reference::Rows rows{dataset.data(), dataset.dictionary(), taken};
  const reference::Scale expected = Summarise(rows, 0, {25.0, 50.0, 75.0});
  EXPECT_EQ(sketch.total, NearestOf(mpq_class(expected.valid + expected.missing)));
  EXPECT_EQ(sketch.missing, NearestOf(expected.missing));
  EXPECT_PRED2(SameNumber, sketch.mean, expected.mean);
  if (expected.valid == 0) {
    EXPECT_THAT(sketch.bins, IsEmpty());
    return;
  }
  EXPECT_EQ(sketch.quartiles, expected.percentiles);

  std::vector<std::pair<double, mpq_class>> values;
  double lowest = std::numeric_limits<double>::infinity();
  double highest = -lowest;
  bool areWhole = true;
  for (const std::size_t row : taken) {
    const auto value = rows.At(0, row);
    if (!value || rows.IsUserMissing(0, *value) || rows.Weight(row) == 0) continue;
    values.emplace_back(value->number, rows.Weight(row));
    lowest = std::min(lowest, value->number);
    highest = std::max(highest, value->number);
    areWhole = areWhole && std::trunc(value->number) == value->number;
  }
  std::vector<double> edges;
  if (areWhole && highest - lowest < 40)
    for (double edge = lowest - 0.5; edge < highest + 1; ++edge) edges.push_back(edge);
  else
    edges = BinEdges({lowest, highest, expected.percentiles[0], expected.percentiles[2], NearestOf(expected.valid)});
  ASSERT_EQ(sketch.bins.size(), edges.size() - 1);
  for (std::size_t i = 0; i < sketch.bins.size(); ++i) {
    EXPECT_EQ(sketch.bins[i].from, edges[i]);
    EXPECT_EQ(sketch.bins[i].to, edges[i + 1]);
    mpq_class weight;
    const bool isLast = i + 1 == sketch.bins.size();
    for (const auto& [value, itsWeight] : values)
      if (value >= edges[i] && (value < edges[i + 1] || (isLast && value == edges[i + 1]))) weight += itsWeight;
    EXPECT_EQ(sketch.bins[i].weight, NearestOf(weight)) << "class " << i;
  }
}

TEST(ItemSketch, isThatOfANaiveCount) {
  std::mt19937_64 random(20261121);
  for (int round = 0; round < 150; ++round) {
    SCOPED_TRACE("round " + std::to_string(round));
    const std::size_t rows = round % 10 == 0 ? 6000 : 2 + random() % 900;
    data::DatasetBuilder builder;
    auto& variable = builder.AddNumeric("x").Missing(7.0);
    if (round % 2 == 0) variable.MissingRange(1e9, 2e9);
    const auto dataset = std::make_shared<TestDataset>(builder.Build()->dictionary(), RandomData(random, rows));
    // Values that are all the same are the subject of a test above.
    for (const Setting& setting : {Setting{1, 0, false}, Setting{3, 0, true}, Setting{1, 1, false}}) {
      const std::vector<ItemSketch> sketches = Tables(dataset, setting).Scale(0).Sketches();
      ASSERT_THAT(sketches, SizeIs(1));
      ExpectAsCountedNaively(sketches[0], *dataset);
    }
    if (::testing::Test::HasFailure()) break;
  }
}

TEST(ItemSketch, ofManyTablesOnSeveralThreadsIsThatOfOne) {
  std::mt19937_64 random(3);
  data::DatasetBuilder builder;
  for (int i = 0; i < 12; ++i) builder.AddNumeric("v" + std::to_string(i), RandomValues(random, 20000));
  const auto dataset = builder.Build(5000);
  const auto sketch = [&dataset](Setting setting) {
    Tables tables(dataset, setting);
    for (int i = 0; i < 12; ++i) tables.Scale(i);
    return tables.Sketches();
  };
  const std::vector<ItemSketch> first = sketch({});
  ASSERT_THAT(first, SizeIs(12));
  for (const Setting& setting : {Setting{4, 0, false}, Setting{2, 100000, true}}) {
    const std::vector<ItemSketch> other = sketch(setting);
    ASSERT_THAT(other, SizeIs(12));
    for (std::size_t i = 0; i < 12; ++i) {
      EXPECT_EQ(first[i].variable, other[i].variable);
      EXPECT_EQ(first[i].mean, other[i].mean);
      EXPECT_EQ(first[i].quartiles, other[i].quartiles);
      EXPECT_EQ(WeightsOf(first[i]), WeightsOf(other[i]));
      for (std::size_t bin = 0; bin < first[i].bins.size(); ++bin)
        EXPECT_EQ(first[i].bins[bin].from, other[i].bins[bin].from);
    }
  }
}

TEST(CasesWeighed, areToldForAWholePassOnly) {
  std::vector<double> told;
  AggregationBinding binding;
  binding.onCasesWeighed = [&told](double weight) { told.push_back(weight); };
  AggregationBinding* const previous = BindAggregation(&binding);
  data::DatasetBuilder builder;
  builder.AddNumeric("x", {1, 2, 3});
  builder.AddNumeric("w", {0.1, 0.2, 0.3});
  builder.Weight("w");
  const auto dataset = builder.Build(2);
  for (const int cases : {2, 3, 4}) {
    MAVO_DataSource source(dataset);
    const std::unique_ptr<MAVO_InputCaseIterator> walk(source.NewCaseIterator(0));
    AggregationTable table(*walk, false, true, -1);
    AggregationTable other(*walk, false, true, -1);
    for (AggregationTable* each : {&table, &other})
      each->CreateCube()->AddScaleStatistics({AggregationStatistic(0, kValid)});
    for (int i = 0; i < cases && walk->NextCase() != 0; ++i) table.AddNewCase();
    for (AggregationTable* each : {&table, &other}) delete each->GetCubeAggregators().front();
  }
  BindAggregation(previous);
  EXPECT_THAT(told, ElementsAre(0.6)) << "once, and only of the pass that found no further case";
}

}  // namespace
}  // namespace runtime::aggregation
