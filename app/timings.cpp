#include "app/timings.h"

#include <chrono>
#include <ctime>
#include <fstream>
#include <string_view>

#include <fmt/format.h>

namespace app {

namespace {

constexpr std::array<std::string_view, kStages> kNames = {"read", "pass", "percentiles", "tables", "write"};

}  // namespace

Seconds SecondsNow() {
  timespec cpu{};
  clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &cpu);
  return {std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count(),
          static_cast<double>(cpu.tv_sec) + 1e-9 * static_cast<double>(cpu.tv_nsec)};
}

std::int64_t PeakMemory() {
  // Not what getrusage says: that counts the memory of whoever began this program, if it was more.
  std::ifstream status("/proc/self/status");
  constexpr std::string_view kPeak = "VmHWM:";
  for (std::string line; std::getline(status, line);)
    if (line.starts_with(kPeak)) return std::stoll(line.substr(kPeak.size())) * 1024;
  return 0;
}

void Timings::EndStage(const Seconds& now) {
  if (!fStage) return;
  Seconds& spent = fSpent[static_cast<std::size_t>(*fStage)];
  spent.wall += now.wall - fStageStart.wall;
  spent.cpu += now.cpu - fStageStart.cpu;
}

void Timings::Begin(Stage stage) {
  const Seconds now = fClock();
  EndStage(now);
  fStage = stage;
  fStageStart = now;
}

void Timings::End() {
  const Seconds now = fClock();
  EndStage(now);
  fStage.reset();
  // The processor time counts from the program's start, which is earlier than the first stage.
  fTotal = {now.wall - fStart.wall, now.cpu};
}

std::string Timings::Json(std::int64_t peakMemory) const {
  std::string line = "{";
  for (std::size_t i = 0; i < kStages; ++i)
    line += fmt::format("\"{}\": {{\"wall\": {:.6f}, \"cpu\": {:.6f}}}, ", kNames[i], fSpent[i].wall, fSpent[i].cpu);
  return line + fmt::format("\"total\": {{\"wall\": {:.6f}, \"cpu\": {:.6f}}}, \"memory\": {}}}", fTotal.wall,
                            fTotal.cpu, peakMemory);
}

std::string Timings::Table(std::int64_t peakMemory) const {
  const auto row = [](std::string_view name, const Seconds& spent) {
    return fmt::format("  {:<11}  {:>9.3f}  {:>9.3f}\n", name, spent.wall, spent.cpu);
  };
  std::string table = fmt::format("  {:<11}  {:>9}  {:>9}\n", "", "wall s", "CPU s");
  for (std::size_t i = 0; i < kStages; ++i) table += row(kNames[i], fSpent[i]);
  table += row("total", fTotal);
  return table + fmt::format("  {:<11}  {:>9.1f} MB", "peak memory", static_cast<double>(peakMemory) / 1e6);
}

}  // namespace app
