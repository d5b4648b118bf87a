// The pass over the cases alone: module loop, counting and results, over columns that stand in memory. One kind of
// column at a time, so that a change of one counter shows. Run build/release/bench/pass_benchmark; an item is a cell,
// the time is that of the thread's work, without its waiting for a processor.
#include <cmath>
#include <cstdint>
#include <limits>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>
#include <time.h>

#include "runtime/common/session.h"
#include "runtime/data/builder.h"

extern "C" void CODEBOOK();

namespace {

using runtime::data::DatasetBuilder;
using Dataset = std::shared_ptr<const runtime::data::Dataset>;

constexpr std::size_t kRows = 100'000;
constexpr std::size_t kColumns = 20;
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

enum class Kind { Codes, Whole, Doubles, NominalDoubles, Strings, CategorySet, DichotomySet };

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

std::vector<double> numbers(std::mt19937& random, Kind kind) {
  if (kind != Kind::Whole && kind != Kind::Doubles && kind != Kind::NominalDoubles) return codes(random);
  std::vector<double> cells(kRows);
  for (double& cell : cells) {
    if (kind == Kind::Whole)
      cell = drawBelow(random, 90);
    else if (kind == Kind::Doubles)
      cell = std::round(drawBelow(random, 1'000'000) * 1.7) / 100.0;
    else
      cell = drawBelow(random, 150) / 10.0;
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
      continue;
    }
    const bool isScale = kind == Kind::Doubles || kind == Kind::Whole;
    auto& variable = builder.AddNumeric(names.back(), numbers(random, kind));
    variable.Level(isScale ? MAVO_Variable_Enumerations::kLevelScale : MAVO_Variable_Enumerations::kLevelNominal);
    if (!isScale) variable.Missing(-9.0);
  }
  if (kind == Kind::CategorySet) builder.AddCategorySet("$s", names);
  if (kind == Kind::DichotomySet) builder.AddDichotomySet("$s", names, "1");
  if (weighted) {
    std::vector<double> weights(kRows);
    for (double& weight : weights) weight = 0.5 + drawBelow(random, 1000) / 1000.0;
    builder.AddNumeric("w", weights);
    builder.Weight("w");
  }
  return builder.Build();
}

/// Seconds that the calling thread has worked.
double secondsWorked() {
  timespec now{};
  clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
  return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) * 1e-9;
}

void passCases(benchmark::State& state, Kind kind, bool weighted) {
  const Dataset dataset = makeDataset(kind, weighted);
  const bool isSet = kind == Kind::CategorySet || kind == Kind::DichotomySet;
  const char* command = isSet ? "CODEBOOK $s." : "CODEBOOK v0 TO v19.";
  for (auto _ : state) {
    double begin = 0.0;
    double end = 0.0;
    runtime::common::SessionOptions options;
    options.onPassBegins = [&begin] { begin = secondsWorked(); };
    options.onTablesBegin = [&end] { end = secondsWorked(); };
    runtime::common::Session session(dataset, {{"CODEBOOK", &CODEBOOK}}, options);
    session.Run(command);
    state.SetIterationTime(end - begin);
  }
  const auto cells = static_cast<double>(kRows * kColumns);
  state.counters["cell"] =
      benchmark::Counter(cells, benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}

/// Unweighted and weighted.
void passBoth(const char* name, Kind kind) {
  for (const bool weighted : {false, true})
    benchmark::RegisterBenchmark((std::string(name) + (weighted ? "/weighted" : "")).c_str(), passCases, kind, weighted)
        ->UseManualTime()
        ->Unit(benchmark::kMillisecond);
}

}  // namespace

int main(int argc, char** argv) {
  passBoth("codes", Kind::Codes);
  passBoth("wholeScale", Kind::Whole);
  passBoth("doubles", Kind::Doubles);
  passBoth("nominalDoubles", Kind::NominalDoubles);
  passBoth("strings", Kind::Strings);
  passBoth("categorySet", Kind::CategorySet);
  passBoth("dichotomySet", Kind::DichotomySet);
  benchmark::Initialize(&argc, argv);
  benchmark::RunSpecifiedBenchmarks();
}
