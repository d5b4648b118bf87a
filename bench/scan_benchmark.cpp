// Cutting CSV alone: finding the marks of structure (bytes a second) and making cells of them (an item is a cell), next
// to cutting a byte at a time. Run build/release/bench/scan_benchmark.
#include <cstddef>
#include <cstdint>
#include <random>
#include <string>
#include <string_view>
#include <vector>

#include <benchmark/benchmark.h>

#include "runtime/data/csv/encoding.h"
#include "runtime/data/csv/recordscanner.h"
#include "runtime/data/csv/segmentscanner.h"
#include "runtime/data/csv/structuremarks.h"

namespace {

using runtime::data::CellBlock;
using runtime::data::CsvDialect;
using runtime::data::FirstInvalidUtf8;
using runtime::data::RecordScanner;
using runtime::data::ScanLimits;
using runtime::data::SegmentScanner;
using runtime::data::StructureMarker;
using runtime::data::StructureMarks;

/// As much as a thread takes at once, so that what is measured is the cutting and not the memory.
constexpr std::size_t kBytes = std::size_t{1} << 20;

enum class Kind { Codes, Survey, QuotedCodes, QuotedTexts, DoubledQuotes, Accented };

/// Answer codes of which 5 % are blank and 3 % have two characters.
void AddCode(std::mt19937& random, std::string& text) {
  const auto lot = random() % 100;
  if (lot < 5) return;
  if (lot < 8)
    text += "-9";
  else
    text += static_cast<char>('1' + random() % 7);
}

void AddLetters(std::mt19937& random, std::string& text) {
  for (auto letters = 3 + random() % 30; letters > 0; --letters) text += static_cast<char>('a' + random() % 26);
}

void AddCell(Kind kind, std::size_t column, std::mt19937& random, std::string& text) {
  switch (kind) {
    case Kind::Codes:
      return AddCode(random, text);
    case Kind::Survey:
      if (column % 20 == 19) return AddLetters(random, text);
      if (column % 20 != 4 && column % 20 != 11 && column % 20 != 17) return AddCode(random, text);
      text += std::to_string(random() % 10'000) + "." + std::to_string(10 + random() % 90);
      return;
    case Kind::QuotedCodes:
      text += '"';
      AddCode(random, text);
      text += '"';
      return;
    case Kind::QuotedTexts:
      text += '"';
      AddLetters(random, text);
      if (random() % 4 == 0) text += ", ";
      AddLetters(random, text);
      text += '"';
      return;
    case Kind::DoubledQuotes:
      text += "\"say \"\"";
      AddLetters(random, text);
      text += "\"\"\"";
      return;
    case Kind::Accented:
      for (auto words = 1 + random() % 5; words > 0; --words) {
        text += random() % 2 == 0 ? "é" : "жи";
        AddLetters(random, text);
      }
      return;
  }
}

struct Text {
  std::string bytes;
  std::int64_t cells = 0;
};

Text MakeText(Kind kind, std::size_t columns) {
  std::mt19937 random(1);
  Text text;
  while (text.bytes.size() < kBytes) {
    for (std::size_t column = 0; column < columns; ++column) {
      if (column > 0) text.bytes += ',';
      AddCell(kind, column, random, text.bytes);
      ++text.cells;
    }
    text.bytes += '\n';
  }
  text.bytes.reserve(text.bytes.size() + CellBlock::kReadAhead);
  return text;
}

void CountBytes(benchmark::State& state, const Text& text) {
  state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations()) * static_cast<std::int64_t>(text.bytes.size()));
}

void CountCells(benchmark::State& state, const Text& text) {
  CountBytes(state, text);
  const double cells = static_cast<double>(state.iterations()) * static_cast<double>(text.cells);
  state.counters["time/cell"] = benchmark::Counter(cells, benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}

/// A window without quotes is listed too.
void mark(benchmark::State& state, Kind kind) {
  const Text text = MakeText(kind, 20);
  const StructureMarker marker(text.bytes, CsvDialect{}, ScanLimits{}.windowWords);
  StructureMarks marks;
  for (auto _ : state) {
    std::size_t at = 0;
    while (at < text.bytes.size()) {
      marker.Mark(at, at == 0, marks);
      at = marks.end();
      benchmark::DoNotOptimize(marks.cellEnds.data());
    }
  }
  CountBytes(state, text);
}

void checkUtf8(benchmark::State& state, Kind kind) {
  const Text text = MakeText(kind, 20);
  for (auto _ : state) benchmark::DoNotOptimize(FirstInvalidUtf8(text.bytes));
  CountBytes(state, text);
}

void cut(benchmark::State& state, Kind kind, std::size_t columns) {
  const Text text = MakeText(kind, columns);
  SegmentScanner scanner(text.bytes, CsvDialect{}, columns);
  CellBlock block;
  for (auto _ : state) {
    scanner.Begin(0, text.bytes.size());
    while (scanner.Next(block)) benchmark::DoNotOptimize(block.cells);
  }
  CountCells(state, text);
}

void cutByteByByte(benchmark::State& state, Kind kind, std::size_t columns) {
  const Text text = MakeText(kind, columns);
  std::vector<std::string_view> cells;
  for (auto _ : state) {
    RecordScanner scanner(text.bytes, CsvDialect{});
    while (scanner.Next(cells)) {
      if (cells.size() < 16'384) continue;
      benchmark::DoNotOptimize(cells.data());
      cells.clear();
      scanner.ReleaseTexts();
    }
    cells.clear();
  }
  CountCells(state, text);
}

BENCHMARK_CAPTURE(mark, quotedTexts, Kind::QuotedTexts);
BENCHMARK_CAPTURE(mark, survey, Kind::Survey);
BENCHMARK_CAPTURE(checkUtf8, survey, Kind::Survey);
BENCHMARK_CAPTURE(checkUtf8, accented, Kind::Accented);
BENCHMARK_CAPTURE(cut, codes_500, Kind::Codes, 500);
BENCHMARK_CAPTURE(cut, codes_20, Kind::Codes, 20);
BENCHMARK_CAPTURE(cut, codes_3, Kind::Codes, 3);
BENCHMARK_CAPTURE(cut, survey_20, Kind::Survey, 20);
BENCHMARK_CAPTURE(cut, survey_500, Kind::Survey, 500);
BENCHMARK_CAPTURE(cut, survey_5000, Kind::Survey, 5000);
BENCHMARK_CAPTURE(cut, quotedCodes_20, Kind::QuotedCodes, 20);
BENCHMARK_CAPTURE(cut, quotedTexts_20, Kind::QuotedTexts, 20);
BENCHMARK_CAPTURE(cut, doubledQuotes_20, Kind::DoubledQuotes, 20);
BENCHMARK_CAPTURE(cutByteByByte, codes_500, Kind::Codes, 500);
BENCHMARK_CAPTURE(cutByteByByte, codes_20, Kind::Codes, 20);
BENCHMARK_CAPTURE(cutByteByByte, survey_500, Kind::Survey, 500);
BENCHMARK_CAPTURE(cutByteByByte, quotedCodes_20, Kind::QuotedCodes, 20);
BENCHMARK_CAPTURE(cutByteByByte, quotedTexts_20, Kind::QuotedTexts, 20);
BENCHMARK_CAPTURE(cutByteByByte, doubledQuotes_20, Kind::DoubledQuotes, 20);

}  // namespace

BENCHMARK_MAIN();
