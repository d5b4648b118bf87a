// The pass over the cases alone: module loop, counting and results, over columns that stand in memory. One kind of
// column at a time, so that a change of one counter shows. Run build/release/bench/pass_benchmark; an item is a cell.
#include <chrono>
#include <cmath>
#include <cstdint>
#include <limits>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>

#include "runtime/common/session.h"
#include "runtime/data/builder.h"

extern "C" void CODEBOOK();

namespace {

using runtime::data::DatasetBuilder;
using Dataset = std::shared_ptr<const runtime::data::Dataset>;

constexpr std::size_t kRows = 100'000;
constexpr std::size_t kColumns = 20;
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

enum class Kind { Codes, Doubles, Strings, DichotomySet };

/// A whole number below `limit`.
double drawBelow(std::mt19937& random, std::uint32_t limit) { return static_cast<double>(random() % limit); }

std::vector<double> codes(std::mt19937& random) {
  std::vector<double> cells(kRows);
  for (double& cell : cells) {
    const double draw = drawBelow(random, 20);
    cell = draw == 0.0 ? kNaN : draw == 1.0 ? -9.0 : 1.0 + drawBelow(random, 7);
  }
  return cells;
}

Dataset makeDataset(Kind kind, bool weighted) {
  std::mt19937 random(1);
  DatasetBuilder builder;
  std::vector<std::string> names;
  for (std::size_t column = 0; column < kColumns; ++column) {
    names.push_back("v" + std::to_string(column));
    if (kind == Kind::Strings) {
      std::vector<std::string> cells(kRows);
      for (std::string& cell : cells) cell = "answer " + std::to_string(random() % 9);
      builder.AddString(names.back(), cells);
    } else if (kind == Kind::Doubles) {
      std::vector<double> cells(kRows);
      for (double& cell : cells) cell = std::round(drawBelow(random, 1'000'000) * 1.7) / 100.0;
      builder.AddNumeric(names.back(), cells);
    } else {
      builder.AddNumeric(names.back(), codes(random)).Level(MAVO_Variable_Enumerations::kLevelNominal).Missing(-9.0);
    }
  }
  if (kind == Kind::DichotomySet) builder.AddDichotomySet("$s", names, "1");
  if (weighted) {
    std::vector<double> weights(kRows);
    for (double& weight : weights) weight = 0.5 + drawBelow(random, 1000) / 1000.0;
    builder.AddNumeric("w", weights);
    builder.Weight("w");
  }
  return builder.Build();
}

void passCases(benchmark::State& state, Kind kind, bool weighted) {
  using Clock = std::chrono::steady_clock;
  const Dataset dataset = makeDataset(kind, weighted);
  const char* command = kind == Kind::DichotomySet ? "CODEBOOK $s." : "CODEBOOK v0 TO v19.";
  for (auto _ : state) {
    Clock::time_point begin;
    Clock::time_point end;
    runtime::common::SessionOptions options;
    options.onPassBegins = [&begin] { begin = Clock::now(); };
    options.onTablesBegin = [&end] { end = Clock::now(); };
    runtime::common::Session session(dataset, {{"CODEBOOK", &CODEBOOK}}, options);
    session.Run(command);
    state.SetIterationTime(std::chrono::duration<double>(end - begin).count());
  }
  state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations()) * static_cast<std::int64_t>(kRows * kColumns));
}

BENCHMARK_CAPTURE(passCases, codes, Kind::Codes, false)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(passCases, codesWeighted, Kind::Codes, true)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(passCases, doubles, Kind::Doubles, false)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(passCases, doublesWeighted, Kind::Doubles, true)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(passCases, strings, Kind::Strings, false)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(passCases, dichotomySet, Kind::DichotomySet, false)->UseManualTime()->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
