// Tables over random data, compared with a naive count in rational numbers.
#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "host/aggregation/table.h"
#include "host/data/datasource.h"

#include "runtime/aggregation/binding.h"
#include "runtime/data/builder.h"
#include "tests/unit/aggregation/support/random.h"
#include "tests/unit/aggregation/support/rational.h"
#include "tests/unit/aggregation/support/reference.h"
#include "tests/unit/aggregation/support/testdataset.h"

namespace {

using namespace TableEncryptionCodes;
using reference::Value;

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

double RandomNumber(Random& random, int kind) {
  if (random.OneIn(6)) return kNaN;
  switch (kind) {
    case 0:
      return static_cast<double>(random.Below(7)) - 1.0;
    case 1:
      return static_cast<double>(random.Below(400)) - 200.0;
    case 2:
      return static_cast<double>(random.Below(100000)) - 50000.0;
    case 3:
      return static_cast<double>(random.Below(40)) / 8.0;
    case 4:
      return random.Unit() * 100.0 - 50.0;
    case 5:
      return random.Of<double>({0.0, -0.0, 1e308, -1e308, std::numeric_limits<double>::max(), 5e-324, -5e-324,
                                2.2250738585072014e-308, 1e-310, 1.0, 3e9, -3e9, 0.1});
    default:
      return std::ldexp(random.Unit() - 0.5, static_cast<int>(random.Below(2000)) - 1000);
  }
}

std::string RandomText(Random& random, bool few) {
  static const std::vector<std::string> texts{"", "a", "b", "ab", "A", "\xC3\xA9", "zz", " x"};
  if (few) return random.Of(texts);
  return "t" + std::to_string(random.Below(300));
}

double RandomWeight(Random& random, int kind) {
  if (random.OneIn(8)) return 0.0;
  switch (kind) {
    case 0:
      return static_cast<double>(random.Below(4));
    case 1:
      return static_cast<double>(random.Below(16)) / 4.0;
    case 2:
      return random.Unit() * 3.0;
    case 3:
      return random.Unit() * 1e-3;
    case 4:
      return random.Of<double>({1e300, 1e-300, 5e-324, 1.0, 0.5, 1e17, std::ldexp(1.0, 60)});
    default:
      return std::ldexp(random.Unit(), static_cast<int>(random.Below(60)) - 30);
  }
}

struct World {
  std::shared_ptr<const TestDataset> dataset;
  int variables = 0;
};

World MakeWorld(Random& random, std::size_t rows) {
  runtime::data::DatasetBuilder builder;
  TestData data;
  const std::size_t variables = 1 + random.Below(5);
  for (std::size_t i = 0; i < variables; ++i) {
    const std::string name = "v" + std::to_string(i);
    TestColumn column;
    column.isText = random.OneIn(3);
    if (column.isText) {
      const bool few = !random.OneIn(3);
      for (std::size_t row = 0; row < rows; ++row) column.texts.push_back(RandomText(random, few));
      auto& variable = builder.AddString(name).Width(5);
      if (random.OneIn(2)) variable.Missing(std::string());
      if (random.OneIn(3)) variable.Missing(RandomText(random, few));
      for (std::size_t labels = random.Below(4); labels > 0; --labels)
        variable.ValueLabel(RandomText(random, few), "label");
      if (random.OneIn(8)) variable.Format(kFormatAHex, 10);
    } else {
      const auto kind = static_cast<int>(random.Below(7));
      for (std::size_t row = 0; row < rows; ++row) column.numbers.push_back(RandomNumber(random, kind));
      auto& variable = builder.AddNumeric(name);
      const auto value = [&] {
        const double number = RandomNumber(random, random.OneIn(2) ? kind : 0);
        return std::isnan(number) ? 1.0 : number;
      };
      for (std::size_t missing = random.Below(3); missing > 0; --missing) variable.Missing(value());
      if (random.OneIn(4)) variable.MissingRange(-std::numeric_limits<double>::infinity(), -1.0);
      if (random.OneIn(6)) variable.MissingRange(2.0, 2.5);
      for (std::size_t labels = random.Below(5); labels > 0; --labels) variable.ValueLabel(value(), "label");
    }
    data.columns.push_back(std::move(column));
  }
  const std::size_t mostInChunk = random.OneIn(4) ? 1 : 1 + random.Below(rows + 1);
  for (std::size_t end = 0; end < rows;) {
    end = std::min(rows, end + 1 + random.Below(mostInChunk));
    data.chunkEnds.push_back(static_cast<std::int64_t>(end));
  }
  if (!random.OneIn(3)) {
    const auto kind = static_cast<int>(random.Below(6));
    const bool changes = random.OneIn(4);
    for (std::size_t row = 0; row < rows; ++row)
      data.weights.push_back(RandomWeight(random, changes ? static_cast<int>(random.Below(6)) : kind));
    std::int64_t begin = 0;
    for (const std::int64_t end : data.chunkEnds) {
      const bool isUnweighted = random.OneIn(6);
      data.unweightedChunks.push_back(isUnweighted);
      if (isUnweighted) std::fill(data.weights.begin() + begin, data.weights.begin() + end, 1.0);
      begin = end;
    }
  }
  data.tablePerChunk = random.OneIn(3);
  data.storageSeed = static_cast<unsigned>(random.Below(1000));
  return {std::make_shared<TestDataset>(builder.Build()->dictionary(), std::move(data)), static_cast<int>(variables)};
}

enum class Kind { Variable, Listed, CategorySet, DichotomySet, Scale };

/// One table with what was asked of it and the rows that it took.
struct TableUnderTest {
  Kind kind = Kind::Variable;
  std::vector<int> variables;
  std::vector<Value> list;
  std::vector<std::string> paddedTexts;  // what the list's categories point to
  std::vector<OBS> numbers;
  Value counted;
  std::vector<double> cutPoints;
  bool hasTotal = true;
  std::unique_ptr<AggregationTable> table;
  AggregationVariable* dimension = nullptr;  // owned by the table
  std::vector<std::size_t> taken;
  std::size_t dropsAt = 0;  // takes no more rows from this one on

  reference::Dimension Expected(const TestDataset& dataset, std::size_t rowsTaken) const {
    const std::vector<std::size_t> rows(taken.begin(), taken.begin() + static_cast<std::ptrdiff_t>(rowsTaken));
    const reference::Rows all{dataset.data(), dataset.dictionary(), rows};
    switch (kind) {
      case Kind::Variable:
        return CountVariable(all, variables.front(), nullptr);
      case Kind::Listed:
        return CountVariable(all, variables.front(), &list);
      case Kind::CategorySet:
        return CountCategorySet(all, variables);
      case Kind::DichotomySet:
        return CountDichotomySet(all, variables, counted);
      case Kind::Scale:
        break;
    }
    return {};
  }
};

constexpr StatisticCodes kScaleCodes[] = {kValid, kMissing, kMean, kStdDev};

void MakeList(TableUnderTest& under, Random& random, const TestDataset& dataset) {
  const int variable = under.variables.front();
  const TestColumn& column = dataset.data().columns[static_cast<std::size_t>(variable)];
  std::set<Value> chosen;
  for (std::size_t i = 0; i < 6; ++i) {
    if (column.isText) {
      chosen.insert({true, 0.0, random.OneIn(3) ? "never" : RandomText(random, true)});
    } else {
      const double number = column.numbers.empty() ? 1.0 : column.numbers[random.Below(column.numbers.size())];
      chosen.insert({false, std::isnan(number) ? 12345.0 : number + 0.0, {}});
    }
  }
  under.list.assign(chosen.begin(), chosen.end());
  std::shuffle(under.list.begin(), under.list.end(), random.engine);
  const int width = dataset.dictionary().variables[static_cast<std::size_t>(variable)]->width;
  under.numbers.resize(under.list.size());
  under.paddedTexts.resize(under.list.size());
  std::vector<ParsedCategory*> categories;
  for (std::size_t i = 0; i < under.list.size(); ++i) {
    under.numbers[i].number = under.list[i].number;
    under.paddedTexts[i] = under.list[i].text;
    under.paddedTexts[i].resize(static_cast<std::size_t>(std::max(width, 1)), ' ');
    const OBS* value = column.isText ? reinterpret_cast<const OBS*>(under.paddedTexts[i].data()) : &under.numbers[i];
    categories.push_back(new ParsedCategory(*value, 0));
  }
  under.dimension->SetCategoryList(categories);
}

void SetUp(TableUnderTest& under, Random& random, const World& world, MAVO_InputCaseIterator& iterator) {
  const TestDataset& dataset = *world.dataset;
  const auto anyVariable = [&] { return static_cast<int>(random.Below(static_cast<std::size_t>(world.variables))); };
  under.kind = static_cast<Kind>(random.Below(5));
  under.table = std::make_unique<AggregationTable>(iterator, false, true, -1);
  AggregationCube* cube = under.table->CreateCube();
  const bool isSet = under.kind == Kind::CategorySet || under.kind == Kind::DichotomySet;
  for (std::size_t members = isSet ? random.Below(6) : 1; members > 0; --members)
    under.variables.push_back(anyVariable());

  if (under.kind == Kind::Scale) {
    const int variable = under.variables.front();
    std::vector<AggregationStatistic> statistics;
    for (const StatisticCodes code : kScaleCodes) statistics.emplace_back(variable, code);
    under.cutPoints = {25.0, 50.0, 75.0};
    if (random.OneIn(3)) under.cutPoints = {99.5, 0.1, random.Unit() * 100.0};
    for (const double cutPoint : under.cutPoints) {
      statistics.emplace_back(variable, kPercentile);
      statistics.back().SetPTileCutPoint(cutPoint);
    }
    cube->CreateCubeAggregator();
    cube->AddScaleStatistics(statistics);
    return;
  }

  std::string countedText(16, ' ');
  OBS countedNumber{};
  switch (under.kind) {
    case Kind::CategorySet:
      under.dimension = new AggregationMCSet(under.variables, "set");
      break;
    case Kind::DichotomySet: {
      bool isText = false;
      if (!under.variables.empty()) {
        const auto& first = *dataset.dictionary().variables[static_cast<std::size_t>(under.variables.front())];
        isText = first.print.type == kFormatA;
      }
      under.counted =
          isText ? Value{true, 0.0, RandomText(random, true)} : Value{false, static_cast<double>(random.Below(5)), {}};
      std::copy(under.counted.text.begin(), under.counted.text.end(), countedText.begin());
      countedNumber.number = under.counted.number;
      const OBS* counted = isText ? reinterpret_cast<const OBS*>(countedText.data()) : &countedNumber;
      under.dimension = new AggregationMDSet(under.variables, "set", counted, isText ? 2 : 8, false);
      break;
    }
    default:
      under.dimension = new AggregationVariable(under.variables.front(), "variable");
      if (under.kind == Kind::Listed) MakeList(under, random, dataset);
      break;
  }
  under.hasTotal = !random.OneIn(5);
  if (under.hasTotal) under.dimension->SetIsTotalNo(false);
  under.dimension->SetSecondaryFlag(false);
  cube->AddCategoricalVariable(under.dimension, kFirstDimension);
  cube->CreateCubeAggregator();
  // The counted value may be gone from here on.
  std::fill(countedText.begin(), countedText.end(), '#');
  countedNumber.number = -1.0;
  cube->AddCategoryAndTotalStatistics({AggregationStatistic(kCount), AggregationStatistic(kPercent)}, under.dimension,
                                      {AggregationStatistic(kMissing), AggregationStatistic(kTotal)});
}

void ExpectScale(const TableUnderTest& under, const CubeAggregator& aggregator, const TestDataset& dataset) {
  const reference::Rows rows{dataset.data(), dataset.dictionary(), under.taken};
  const reference::Scale expected = Summarise(rows, under.variables.front(), under.cutPoints);
  const StatValues* cell = aggregator.GetStatValues({}, -1);
  ASSERT_NE(cell, nullptr);
  std::vector<double> numbers{NearestOf(expected.valid), NearestOf(expected.missing), expected.mean,
                              expected.deviation};
  numbers.insert(numbers.end(), expected.percentiles.begin(), expected.percentiles.end());
  ASSERT_EQ(cell->NumOfValues(), static_cast<int>(numbers.size()));
  for (int j = 0; j < cell->NumOfValues(); ++j)
    EXPECT_PRED2(SameNumber, cell->GetStatValue(j).GetValue1(), numbers[static_cast<std::size_t>(j)])
        << "statistic " << j;
}

void ExpectDimension(const TableUnderTest& under, const CubeAggregator& aggregator, const TestDataset& dataset) {
  const reference::Dimension expected = under.Expected(dataset, under.taken.size());
  TableDimension* dimension = under.dimension->GetTableDimension();
  EXPECT_EQ(dimension->GetNumberOfValues(), expected.values);
  const std::vector<AggregationCategory*> categories = dimension->GetCategoryPointers();
  ASSERT_EQ(categories.size(), expected.categories.size() + (under.hasTotal ? 1 : 0));
  for (std::size_t k = 0; k < expected.categories.size(); ++k) {
    const reference::Category& category = expected.categories[k];
    EXPECT_EQ(categories[k]->GetCode(), category.code);
    EXPECT_EQ(categories[k]->GetText(), category.text);
    EXPECT_EQ(categories[k]->GetValue(), category.value.number);
    EXPECT_FALSE(categories[k]->IsTotal());
    const StatValues* cell = aggregator.GetStatValues({categories[k]}, -1);
    ASSERT_EQ(cell != nullptr, category.hasCell);
    if (cell == nullptr) continue;
    EXPECT_PRED2(SameNumber, cell->GetStatValue(0).GetValue1(), NearestOf(category.weight));
    const mpq_class percent = expected.total == 0 ? mpq_class(0) : mpq_class(100 * category.weight / expected.total);
    EXPECT_PRED2(SameNumber, cell->GetStatValue(1).GetValue1(), NearestOf(percent));
  }
  if (!under.hasTotal) return;
  EXPECT_TRUE(categories.back()->IsTotal());
  const StatValues* total = aggregator.GetStatValues({categories.back()}, -1);
  ASSERT_NE(total, nullptr);
  EXPECT_PRED2(SameNumber, total->GetStatValue(0).GetValue1(), NearestOf(expected.missing));
  EXPECT_PRED2(SameNumber, total->GetStatValue(1).GetValue1(), NearestOf(expected.total));
}

/// Binds the aggregation library as a session would.
class Bound {
 public:
  explicit Bound(runtime::aggregation::AggregationBinding binding)
      : fBinding(std::move(binding)), fPrevious(runtime::aggregation::BindAggregation(&fBinding)) {}
  ~Bound() { runtime::aggregation::BindAggregation(fPrevious); }
  Bound(const Bound&) = delete;
  Bound& operator=(const Bound&) = delete;

 private:
  runtime::aggregation::AggregationBinding fBinding;
  runtime::aggregation::AggregationBinding* fPrevious;
};

/// Every other run keeps all values for percentiles in a file, every third has threads.
runtime::aggregation::AggregationBinding BindingOf(std::uint64_t seed) {
  static runtime::machine::ThreadPool pool(3);
  runtime::aggregation::AggregationBinding binding;
  binding.percentileMemory = seed % 2 == 0 ? 1 : 0;
  binding.pool = seed % 3 == 0 ? &pool : nullptr;
  return binding;
}

void RunOnce(std::uint64_t seed, std::size_t mostRows, std::size_t askOneIn) {
  SCOPED_TRACE("seed " + std::to_string(seed));
  const Bound bound(BindingOf(seed));
  Random random(seed);
  const std::size_t rows = random.Below(mostRows + 1);
  const World world = MakeWorld(random, rows);
  auto source = std::make_unique<MAVO_DataSource>(world.dataset);
  std::unique_ptr<MAVO_InputCaseIterator> iterator(source->NewCaseIterator(0));
  std::vector<TableUnderTest> tables(1 + random.Below(4));
  for (TableUnderTest& under : tables) {
    SetUp(under, random, world, *iterator);
    under.dropsAt = random.OneIn(3) ? random.Below(rows + 1) : rows;
  }

  const bool skips = random.OneIn(3);
  const std::size_t stopsAt = random.OneIn(4) ? random.Below(rows + 1) : rows + 1;
  std::size_t row = 0;
  while (row != stopsAt && iterator->NextCase() != 0) {
    for (TableUnderTest& under : tables) {
      const auto ask = [&] {
        if (under.dimension == nullptr || !random.OneIn(askOneIn)) return;
        const int values = under.table->GetTableMetaData()->GetDimension(0)->GetNumberOfValues();
        ASSERT_EQ(values, under.Expected(*world.dataset, under.taken.size()).values) << "at row " << row;
      };
      ask();
      if (row >= under.dropsAt || (skips && random.OneIn(4))) continue;
      for (std::size_t times = skips && random.OneIn(6) ? 2 : 1; times > 0; --times) {
        under.table->AddNewCase();
        under.taken.push_back(row);
      }
      ask();
    }
    if (testing::Test::HasFatalFailure()) return;
    ++row;
  }

  // The cursor may die before the results are made, or after.
  if (random.OneIn(3)) iterator.reset();
  std::vector<std::unique_ptr<CubeAggregator>> aggregators;
  for (TableUnderTest& under : tables) aggregators.emplace_back(under.table->GetCubeAggregators().front());
  iterator.reset();
  source.reset();
  for (std::size_t i = 0; i < tables.size(); ++i) {
    if (tables[i].kind == Kind::Scale)
      ExpectScale(tables[i], *aggregators[i], *world.dataset);
    else
      ExpectDimension(tables[i], *aggregators[i], *world.dataset);
  }
}

TEST(RandomTables, agreeWithANaiveCountOverShortData) {
  for (std::uint64_t seed = 1; seed <= 3000 && !HasFailure(); ++seed) RunOnce(seed, 30, 3);
}

TEST(RandomTables, agreeWithANaiveCountOverLongerData) {
  for (std::uint64_t seed = 1; seed <= 150 && !HasFailure(); ++seed) RunOnce(100000 + seed, 600, 40);
}

TEST(RandomTables, agreeWithANaiveCountWhereValuesAreMany) {
  for (std::uint64_t seed = 1; seed <= 150 && !HasFailure(); ++seed) RunOnce(200000 + seed, 6000, 2000);
}

}  // namespace
