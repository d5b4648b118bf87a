#include "app/timings.h"

#include <chrono>
#include <ctime>

#include <fmt/format.h>

namespace app {

Timings::Timings() : fStart(Now()) {}

Timings::Clock Timings::Now() {
  timespec cpu{};
  clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &cpu);
  return {std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count(),
          static_cast<double>(cpu.tv_sec) + 1e-9 * static_cast<double>(cpu.tv_nsec)};
}

void Timings::EndStage() {
  if (fStage.empty()) return;
  const Clock now = Now();
  fSpent[fStage].wall += now.wall - fStageStart.wall;
  fSpent[fStage].cpu += now.cpu - fStageStart.cpu;
}

void Timings::Begin(const std::string& stage) {
  EndStage();
  fStage = stage;
  fStageStart = Now();
}

std::string Timings::Line() {
  EndStage();
  fStage.clear();
  const Clock now = Now();
  std::string line = "{";
  for (const auto& [stage, spent] : fSpent)
    line += fmt::format("\"{}\": {{\"wall\": {:.6f}, \"cpu\": {:.6f}}}, ", stage, spent.wall, spent.cpu);
  // The processor time counts from the program's start, which is earlier than the first stage.
  return line + fmt::format("\"total\": {{\"wall\": {:.6f}, \"cpu\": {:.6f}}}}}", now.wall - fStart.wall, now.cpu);
}

}  // namespace app
