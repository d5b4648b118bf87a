// The counters and the selection of percentiles one by one, below the tables. Run
// build/release/bench/counting_benchmark; an item is a cell or a value.
#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <limits>
#include <memory>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include <benchmark/benchmark.h>

#include "host/aggregation/dimension.h"
#include "host/data/datasource.h"

#include "runtime/aggregation/counting/dimensioncounter.h"
#include "runtime/aggregation/counting/percentiles.h"
#include "runtime/aggregation/counting/scalecounter.h"
#include "runtime/aggregation/exact/moments.h"
#include "runtime/data/builder.h"

namespace {

using namespace runtime::aggregation;
using namespace TableEncryptionCodes;

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr std::size_t kRows = 1 << 18;
constexpr std::size_t kMembers = 50;

using Draw = std::function<double(std::mt19937_64&)>;

double unit(std::mt19937_64& random) { return static_cast<double>(random() >> 11) * 0x1p-53; }

std::vector<double> drawn(std::size_t count, const Draw& draw) {
  std::mt19937_64 random(1);
  std::vector<double> numbers(count);
  for (double& number : numbers) number = draw(random);
  return numbers;
}

double code(std::mt19937_64& random) {
  const auto drawnCode = random() % 20;
  return drawnCode == 0 ? kNaN : drawnCode == 1 ? -9.0 : 1.0 + static_cast<double>(random() % 7);
}
double cents(std::mt19937_64& random) { return std::round(unit(random) * 1.7e6) / 100.0; }
double anyWeight(std::mt19937_64& random) { return 0.5 + static_cast<double>(random() % 1000) / 1000.0; }
double skewed(std::mt19937_64& random) { return std::exp(12.0 * unit(random) * unit(random)); }
double withOutliers(std::mt19937_64& random) { return random() % 1000 == 5 ? 1e300 : unit(random); }
double scattered(std::mt19937_64& random) {
  return std::ldexp(unit(random) - 0.5, static_cast<int>(random() % 2000) - 1000);
}

/// A source of one kind of column, and the walk over it.
class Source {
 public:
  Source(const Draw& draw, std::size_t columns, bool weighted) : fSource(Build(draw, columns, weighted)) {}

  MAVO_DataSource& source() { return fSource; }

  /// Calls work(chunk) for all chunks.
  template <class Work>
  void Walk(Work work) {
    const std::unique_ptr<MAVO_InputCaseIterator> iterator(fSource.NewCaseIterator(0));
    CaseCursor& cursor = iterator->Cursor();
    WeightScaler scaler;
    while (cursor.Next()) {
      const auto rows = static_cast<std::size_t>(cursor.chunkEnd - cursor.chunkBegin);
      work(Chunk{&cursor, scaler.Scale(cursor.Weights(), rows)});
      cursor.row = cursor.chunkEnd - 1;
    }
  }

 private:
  static std::shared_ptr<const runtime::data::Dataset> Build(const Draw& draw, std::size_t columns, bool weighted) {
    runtime::data::DatasetBuilder builder;
    const std::vector<double> cells = drawn(kRows, draw);
    for (std::size_t i = 0; i < columns; ++i) builder.AddNumeric("v" + std::to_string(i), cells).Missing(-9.0);
    if (weighted) {
      builder.AddNumeric("w", drawn(kRows, anyWeight));
      builder.Weight("w");
    }
    return builder.Build();
  }

  MAVO_DataSource fSource;
};

void tellCells(benchmark::State& state, std::size_t cells) {
  state.counters["cell"] = benchmark::Counter(
      static_cast<double>(cells), benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}

void countDimension(benchmark::State& state, Source& source, const AggregationVariable& dimension, bool searches) {
  for (auto _ : state) {
    const auto counter = MakeDimensionCounter(dimension, source.source());
    std::vector<FirstAppearance> found;
    source.Walk([&](const Chunk& chunk) {
      for (std::size_t row = 0; searches && row < chunk.rows();)
        row = counter->FindNewValues(chunk, row, std::min<std::size_t>(4096, chunk.rows() - row), found);
      counter->CountRows(chunk, 0, chunk.rows());
    });
    benchmark::DoNotOptimize(counter->Finish());
  }
  tellCells(state, kRows * dimension.variables().size());
}

void countVariable(benchmark::State& state, const Draw& draw, bool searches, bool weighted) {
  Source source(draw, 1, weighted);
  countDimension(state, source, AggregationVariable(0, "v"), searches);
}

std::vector<int> members() {
  std::vector<int> indices;
  for (std::size_t i = 0; i < kMembers; ++i) indices.push_back(static_cast<int>(i));
  return indices;
}

void countCategorySet(benchmark::State& state, bool weighted) {
  Source source(code, kMembers, weighted);
  countDimension(state, source, AggregationMCSet(members(), "s"), true);
}

void countDichotomySet(benchmark::State& state, bool weighted) {
  Source source(code, kMembers, weighted);
  OBS counted{};
  counted.number = 1.0;
  countDimension(state, source, AggregationMDSet(members(), "s", &counted, 8, false), true);
}

void countScale(benchmark::State& state, const Draw& draw, bool quartiles, bool weighted) {
  Source source(draw, 1, weighted);
  std::vector<AggregationStatistic> statistics;
  for (const StatisticCodes statistic : {kValid, kMissing, kMean, kStdDev}) statistics.emplace_back(0, statistic);
  for (const double cutPoint : {25.0, 50.0, 75.0}) {
    if (!quartiles) break;
    statistics.emplace_back(0, kPercentile);
    statistics.back().SetPTileCutPoint(cutPoint);
  }
  for (auto _ : state) {
    ScaleCounter counter(statistics, source.source(), nullptr);
    source.Walk([&](const Chunk& chunk) { counter.CountRows(chunk, 0, chunk.rows()); });
    benchmark::DoNotOptimize(counter.Finish());
  }
  tellCells(state, kRows);
}

void sumMoments(benchmark::State& state, const Draw& draw, bool weighted) {
  const std::vector<double> values = drawn(kRows, draw);
  const std::vector<double> weights = drawn(kRows, anyWeight);
  for (auto _ : state) {
    MomentSums sums;
    for (std::size_t first = 0; first < kRows; first += 4096) {
      if (weighted)
        sums.AddNarrow(values.data() + first, weights.data() + first, 54, 4096);
      else
        sums.AddUnits(values.data() + first, 4096);
    }
    benchmark::DoNotOptimize(sums);
  }
  tellCells(state, kRows);
}

/// Quartiles of values in memory, or (`limit` bytes) mostly in a file.
void selectQuartiles(benchmark::State& state, const Draw& draw, bool weighted, std::int64_t limit) {
  const std::vector<double> values = drawn(kRows, draw);
  const std::vector<double> weights = drawn(kRows, anyWeight);
  KeptValues kept(std::make_shared<ValueMemory>(limit));
  WeightTotal total;
  total.shift = weighted ? 54 : 0;
  for (std::size_t i = 0; i < kRows; ++i) {
    while (kept.next(weighted).room == 0) kept.OpenNext(true, weighted);
    const KeptValues::Place place = kept.next(weighted);
    *place.values = values[i];
    if (weighted) *place.weights = weights[i];
    kept.Written(1, 2.0);
    total.scaled += static_cast<UInt128>(std::ldexp(weights[i], 54));
  }
  if (!weighted) {
    total.scaled = 0;
    total.units = kRows;
  }
  for (auto _ : state) benchmark::DoNotOptimize(Percentiles({{}, &kept}, total, {25, 50, 75}));
  tellCells(state, kRows);
}

void add(const std::string& name, const std::function<void(benchmark::State&, bool)>& work) {
  for (const bool weighted : {false, true})
    benchmark::RegisterBenchmark((name + (weighted ? "/weighted" : "")).c_str(), [work,
                                                                                  weighted](benchmark::State& state) {
      work(state, weighted);
    })->Unit(benchmark::kMicrosecond);
}

/// Numbers of so many different values.
Draw distinct(std::uint64_t count) {
  return [count](std::mt19937_64& random) { return static_cast<double>(random() % count) + 0.25; };
}

}  // namespace

int main(int argc, char** argv) {
  for (const bool searches : {false, true}) {
    const std::string suffix = searches ? "/searched" : "";
    add("variable/codes" + suffix,
        [searches](benchmark::State& state, bool weighted) { countVariable(state, code, searches, weighted); });
    for (const std::uint64_t count : {100u, 10'000u, 1'000'000u})
      add("variable/doubles/" + std::to_string(count) + suffix,
          [searches, count](benchmark::State& state, bool weighted) {
            countVariable(state, distinct(count), searches, weighted);
          });
  }
  add("categorySet", countCategorySet);
  add("dichotomySet", countDichotomySet);
  add("scale/codes", [](benchmark::State& state, bool weighted) { countScale(state, code, true, weighted); });
  add("scale/doubles", [](benchmark::State& state, bool weighted) { countScale(state, cents, false, weighted); });
  add("scale/doubles/quartiles",
      [](benchmark::State& state, bool weighted) { countScale(state, cents, true, weighted); });
  add("moments/oneMagnitude", [](benchmark::State& state, bool weighted) { sumMoments(state, cents, weighted); });
  add("moments/allMagnitudes", [](benchmark::State& state, bool weighted) { sumMoments(state, scattered, weighted); });
  const std::pair<const char*, Draw> shapes[] = {
      {"even", cents}, {"skewed", skewed}, {"outliers", withOutliers}, {"allMagnitudes", scattered}};
  for (const auto& [name, draw] : shapes) {
    for (const std::int64_t limit : {std::int64_t{0}, std::int64_t{1'000'000}})
      add(std::string("quartiles/") + name + (limit == 0 ? "" : "/file"),
          [draw = draw, limit](benchmark::State& state, bool weighted) {
            selectQuartiles(state, draw, weighted, limit);
          });
  }
  benchmark::Initialize(&argc, argv);
  benchmark::RunSpecifiedBenchmarks();
}
